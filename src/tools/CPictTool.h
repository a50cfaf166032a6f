// Draws a picture's frame in two presses; the host is then asked for the
// picture to show in it.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CPictTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;
};

} // namespace bvx
