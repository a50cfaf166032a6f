// Draws circles in two presses and ellipses in three: the centre, then one
// radius, then (for an ellipse) the other.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CEllipseTool : public CDrawTool {
public:
    // The values of State while a shape is under way.
    static constexpr int32_t FirstRadius = 1;
    static constexpr int32_t SecondRadius = 2;

    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;
};

} // namespace bvx
