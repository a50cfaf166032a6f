// Places a point marker with one click.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CPointTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;
};

} // namespace bvx
