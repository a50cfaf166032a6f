// Drags the world with the mouse: the point pressed stays under the pointer.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CPanTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
};

} // namespace bvx
