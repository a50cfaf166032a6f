// The document: layers of numbered shapes, the number table, the selection,
// and the view modes that travel with the drawing.
#pragma once

#include "CadLayer.h"
#include "PictTable.h"
#include "PointerTable.h"
#include "ShapeIndex.h"
#include "shapes/CObjShape.h"
#include "shapes/ShapeAttr.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bvx {

class CGroupShape;
class ShapeContext;

class CadBuf {
public:
    CadBuf();
    ~CadBuf();

    std::vector<CObjShape*> Selection;       // in order of selection; owns nothing
    ShapeIndex ShapeMap;                     // every numbered shape, members too
    CadLayer* CurrentLayer = nullptr;
    std::unique_ptr<CPictShape> BackPic;   // the world's background picture; on no layer
    PictTable Pictures;
    std::vector<std::unique_ptr<CadLayer>> Layers;
    CObjShape* FocusShape = nullptr;
    int16_t FocusPoint = -1;
    int32_t NextShapeNumber = 0;
    int16_t CurrentLayerNumber = 1;
    bool ShowTracker = true;
    int16_t SnapToShape = 1;
    int16_t SnapToGrid = 1;
    int16_t SnapMode = 0;
    int32_t SnapMarkerUp = 0;
    WorldPoint SnapPoint{};
    bool SnapMarkerOn = true;
    ShapeAttr SnapMarkerAttr = ShapeAttr::Default();
    int16_t SelectMode = 0;
    int16_t CopyMode = 0;
    int16_t ShapeMoveMode = 0;
    int16_t MouseBounds = 0;
    PointerTable Pointers; // images and roles; kept by CadClearAll

    // Mode setters: a value out of range stores 0 (the grid snap -1).
    void SetSnapMode(int16_t mode);
    void SetSnapToGrid(int16_t mode) { SnapToGrid = (mode >= 0 && mode <= 2) ? mode : -1; }
    void SetSelectMode(int16_t mode) { SelectMode = (mode == 0 || mode == 1) ? mode : 0; }
    void SetCopyMode(int16_t mode) { CopyMode = (mode == 0 || mode == 1) ? mode : 0; }
    void SetShapeMoveMode(int16_t mode) { ShapeMoveMode = (mode >= 0 && mode <= 2) ? mode : 0; }
    void SetMouseBounds(int16_t mode) { MouseBounds = (mode == 0 || mode == 1) ? mode : 0; }

    // Layers.
    void Reset();
    int16_t AddLayer(const std::u16string& name);
    bool OpenLayer(int32_t n);
    bool IsLayer(int32_t n) const { return n >= 0 && n < int32_t(Layers.size()); }
    CadLayer* Layer(int32_t n) const { return IsLayer(n) ? Layers[size_t(n)].get() : nullptr; }
    bool RemoveLayer(int32_t n, ShapeContext& view);
    int16_t FindLayerByName(const std::u16string& name);
    bool CopyLayer(int32_t source, int32_t dest, bool createIfMissing, ShapeContext& view);
    void ClearLayer(int32_t n);

    // Shapes. AddShape takes ownership; layer -1 is the current layer and
    // number -1 hands out the next number.
    CObjShape* AddShape(std::unique_ptr<CObjShape> shape, ShapeContext& view, int32_t layer = -1, int32_t number = -1,
                        bool fireEvent = true);
    // Enters a shape (a group's members numbered too) and announces it; its
    // number, or -1 without the layer. A number, not the shape: the host may
    // delete it from the event.
    int32_t EnterShape(std::unique_ptr<CObjShape> shape, ShapeContext& view, int32_t layer = -1);
    CObjShape* FindShape(int32_t number) const;
    CObjShape* FindShapeDeep(int32_t number, int32_t& index) const;
    CObjShape* FindShapeByName(const std::u16string& text) const;
    // The list that holds the shape: its layer's, or its group's.
    CadLayer* OwnerList(const CObjShape* shape) const;
    // Out of its layer's list; the caller owns what comes back.
    std::unique_ptr<CObjShape> DetachShape(CObjShape* shape);
    // Out of the number table, members of a group with it.
    void ForgetShape(CObjShape* shape);

    // Z-order within the owning list; the last is the front.
    void ToFront(CObjShape* shape);
    void ToBack(CObjShape* shape);
    void ZOrderJump(CObjShape* shape, int32_t levels);
    void SetZOrder(CObjShape* shape, int32_t position);
    int32_t GetZOrder(const CObjShape* shape) const;

    // Selection.
    void Select(CObjShape* shape);
    bool Deselect(CObjShape* shape); // null: all
    void SelectInRect(const DeviceRect& rect, bool additive, ShapeContext& view);
    CObjShape* HitTest(DevicePoint point, bool snap, bool wantShape, int16_t& action, ShapeContext& view);
    void DuplicateSelection(ShapeContext& view);

    // Groups: the member list is the group's own CadLayer.
    bool GroupAddShape(CObjShape* group, CObjShape* shape);
    // The move itself, for a shape of a layer that may join the group;
    // false when no layer holds it.
    bool GroupAdopt(CGroupShape& group, CObjShape* shape);
    // Whether `group` is `shape` or lies somewhere inside it.
    bool IsWithin(const CObjShape* shape, const CObjShape* group) const;
    bool GroupAddSelection(CObjShape* group);
    bool GroupRemoveShape(CObjShape* group, CObjShape* shape);
    bool GroupRemoveAll(CObjShape* group);
    void NumberGroupMembers(CObjShape* group);

    // Whether a picture shape of any layer, at any depth of groups, shows
    // the picture table's entry of this name.
    bool PictureInUse(const std::string& name) const;

    // Clearing.
    void ForgetAll();
    void ClearAll();

    // Painting.
    void Draw(DeviceContext& dc, DeviceRect& clip, ShapeContext& view);
    // Grows `clip` as the layers do.
    void DrawSelection(DeviceContext& dc, DeviceRect& clip, ShapeContext& view);

private:
    void EmptyLayer(CadLayer& layer);
};

} // namespace bvx
