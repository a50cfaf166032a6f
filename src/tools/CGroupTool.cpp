#include "CGroupTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CGroupShape.h"

namespace bvx {

void CGroupTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    BeginMouse(view, point);
    view.Fire<&EventSink::DrawBegin>(int16_t(bvxGroup), point.x, point.y);
    CreateShape(view, bvxGroup, view.Buf.CurrentLayerNumber);
    // Left unselected: there is nothing in it to show.
    ReleaseMouse(view);
    view.Fire<&EventSink::DrawEnd>(int16_t(bvxGroup), point.x, point.y);
}

void CGroupTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CGroupTool::CreateShape(CadView& view, int16_t, int32_t layerNumber)
{
    return view.Buf.EnterShape(std::make_unique<CGroupShape>(), view, layerNumber);
}

} // namespace bvx
