// Places an empty text with one click, left selected so that typing fills it.
#pragma once

#include "CDrawTool.h"

namespace bvx {

class CTextTool : public CDrawTool {
public:
    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;
    int32_t CreateShape(CadView& view, int16_t type, int32_t layerNumber) override;
};

} // namespace bvx
