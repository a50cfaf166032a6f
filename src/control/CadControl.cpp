// The automation surface's construction and the stock members; the other
// members live in one file per family (CadControlWorld, CadControlShapes,
// CadControlAttributes, CadControlSelection, CadControlTransforms,
// CadControlLayers).
#include "CadControl.h"

namespace bvx {

CadControl::CadControl(HostWindow* window, EventSink* sink) : view_(window, sink) {}

bool CadControl::UserMode() const { return !view_.Window || view_.Window->UserMode(); }

void CadControl::Refresh()
{
    view_.NeedRepaint = true;
    view_.RebuildBackBuffer = true;
    if (view_.Window) view_.Window->InvalidateRect(nullptr, false);
}

uint32_t CadControl::GetBackColor() { return backColor_; }

Status CadControl::PutBackColor(uint32_t color)
{
    if (color == backColor_) return {};
    backColor_ = color;
    view_.BackColorCopy = color;
    Refresh();
    return {};
}

} // namespace bvx
