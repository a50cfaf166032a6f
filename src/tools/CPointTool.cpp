#include "CPointTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CPointShape.h"

namespace bvx {

void CPointTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    // Begun and finished in the one press.
    if (StartShape(view, std::make_unique<CPointShape>(point), 1, point)) CloseShape(view, point);
}

void CPointTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CPointTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    if (type != bvxPoint) return -1;
    return view.Buf.EnterShape(std::make_unique<CPointShape>(), view, layerNumber);
}

} // namespace bvx
