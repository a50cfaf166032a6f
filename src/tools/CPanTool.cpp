#include "CPanTool.h"

#include "ToolBox.h"
#include "control/CadView.h"

namespace bvx {

void CPanTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    view.ShowPointerRole(PointerRole::Pan);
    BeginMouse(view, point);
    State = 1;
}

void CPanTool::OnMouseMove(CadView& view, uint32_t, const WorldPoint& point)
{
    view.ShowPointerRole(PointerRole::Pan);
    if (State != 1) return;
    // The press point stays where it was: as the world follows the mouse, the
    // point under the pointer comes back to it, which keeps each step small.
    view.World.Pan(Box.ToolLastPoint.x - point.x, Box.ToolLastPoint.y - point.y);
    view.Redraw(RedrawMode::Full);
}

void CPanTool::OnLButtonUp(CadView& view, uint32_t, const WorldPoint&)
{
    State = 0;
    ReleaseMouse(view);
}

} // namespace bvx
