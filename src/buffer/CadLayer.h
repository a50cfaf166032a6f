// One layer of the drawing, and also the member list of a group: shapes
// back to front, a name, the pen and brush its shapes inherit, and what the
// user may do with its shapes.
#pragma once

#include "shapes/CObjShape.h"
#include "shapes/ShapeAttr.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bvx {

class ShapeContext;

// LayerAction bits.
namespace LayerActions {
constexpr int16_t Show = 1;
constexpr int16_t Find = 2;
constexpr int16_t Move = 4;
constexpr int16_t Size = 8;
constexpr int16_t All = 15;
} // namespace LayerActions

class CadLayer {
public:
    // A layer has its own attribute record; a group's list has none.
    explicit CadLayer(bool groupList = false);
    ~CadLayer();

    std::vector<std::unique_ptr<CObjShape>> Shapes;
    std::u16string Name;
    std::unique_ptr<ShapeAttr> Attr;
    int16_t LineType = 0;
    int16_t Action = LayerActions::All;
    std::array<uint8_t, 21> SearchMethods{};
    bool IsGroupList = false;

    void SetLineType(int16_t type) { LineType = (type >= 0 && type <= 3) ? type : 0; }
    void SetAction(int32_t action) { Action = int16_t(action & 15); }
    // Types without an inside have no choice, and out-of-range types none.
    void SetSearchMethod(int32_t type, int32_t method);
    int16_t GetSearchMethod(int32_t type) const;

    // Position in the list; the count when absent.
    size_t IndexOf(const CObjShape* shape) const;
    // Removes the shape from the list and hands it over; null if absent.
    std::unique_ptr<CObjShape> Take(const CObjShape* shape);

    // Paints the shapes not selected, growing `clip` by every shape drawn.
    // A group's list is given the record its members inherit.
    void Draw(DeviceContext& dc, DeviceRect& clip, ShapeContext& view, int32_t mode,
              const ShapeAttr* inherited = nullptr);

    // The layer search: the front-most shape under the point. `snap` moves
    // the pointer to the nearest handle; `wantShape` decides whether a plain
    // hit is returned.
    CObjShape* Search(DevicePoint point, bool snap, bool wantShape, int16_t action, ShapeContext& view);
};

} // namespace bvx
