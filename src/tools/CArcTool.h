// Draws arcs, pie slices and chords in four presses: the centre, the radii,
// the start angle and the end angle, each press moving the rubber band on to
// the next handle.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CArcTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;
};

} // namespace bvx
