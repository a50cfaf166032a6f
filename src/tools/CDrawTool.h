// The base of the mouse tools. A tool receives the left button and the
// moves, already turned into world points, and carries out one interaction:
// selecting, panning, or drawing one shape. Drawing is built on editing: a
// drawing tool puts its new shape in the document at the first press,
// selected, and lets the select tool drag one of its handles as the rubber
// band.
#pragma once

#include "shapes/ShapeTypes.h"
#include "world/WorldGeometry.h"

#include <cstdint>
#include <memory>

namespace bvx {

class CadView;
class CObjShape;
class ToolBox;

class CDrawTool {
public:
    explicit CDrawTool(ToolBox& box) : Box(box) {}
    virtual ~CDrawTool() = default;
    CDrawTool(const CDrawTool&) = delete;
    CDrawTool& operator=(const CDrawTool&) = delete;

    // 0 when idle; each tool gives the other values their meaning.
    int32_t State = 0;

    // `flags` is the mouse message's wParam: button and modifier bits.
    virtual void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point);
    virtual void OnLButtonDblClk(CadView&, uint32_t, const WorldPoint&) {}
    virtual void OnLButtonUp(CadView&, uint32_t, const WorldPoint&) {}
    virtual void OnMouseMove(CadView&, uint32_t, const WorldPoint&) {}
    // An empty shape of a type in a layer, entered there, without a mouse:
    // its number, or -1 for a type this tool doesn't make. A number, as the
    // host may delete the shape from the event that announces it.
    virtual int32_t CreateShape(CadView&, int16_t, int32_t) { return -1; }

    // The steps every tool shares.
    void BeginMouse(CadView& view, const WorldPoint& point);
    void ReleaseMouse(CadView& view);
    void BeginShape(CadView& view, CObjShape& shape, int32_t state, int32_t handle, const WorldPoint& point);
    // Whether the host cancelled from the event just fired.
    bool CheckAbort(CadView& view);
    void AbortShape(CadView& view, CObjShape* shape, bool destroy);
    void FinishShape(CadView& view, CObjShape& shape);

protected:
    // The first press of a shape drawn by clicks: begins the draw on the new
    // shape and enters it in the current layer. False when the host
    // cancelled on the way; the shape is then gone.
    bool StartShape(CadView& view, std::unique_ptr<CObjShape> shape, int32_t handle, const WorldPoint& point);
    // The last press: DrawEnd, then the shape is done unless the host
    // cancelled.
    void CloseShape(CadView& view, const WorldPoint& point);
    // A second press on the very spot of the first takes the shape back,
    // with no DrawEnd and no ShapeNumberDeleted. True when it did.
    bool TakeBackOnSameSpot(CadView& view, const WorldPoint& point);
    // The shape this tool is drawing, if it is still there.
    CObjShape* DrawnShape(CadView& view) const;
    // Names an empty shape by its type and the layer's search method, and
    // enters it there: what CreateShape does for most classes.
    static int32_t EnterNamed(CadView& view, std::unique_ptr<CObjShape> shape, int16_t type, int32_t layerNumber);
    // The search method a layer gives a type; the current layer's for -1.
    static int16_t ToolSearch(const CadView& view, int16_t type, int32_t layerNumber = -1);

    ToolBox& Box;
};

} // namespace bvx
