// Draws the point-list shapes: polylines, polygons and splines point by
// point until a double click, freehand curves in one drag, and three-point
// arcs in three presses. A rubber point at the end of the list follows the
// mouse.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CPolyShape;

class CPolyTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonDblClk(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;

private:
    // The shape under construction, found by its number: the host may have
    // deleted it from an event.
    CPolyShape* Poly(CadView& view) const;
};

} // namespace bvx
