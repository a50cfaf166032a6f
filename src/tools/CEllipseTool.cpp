#include "CEllipseTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CEllipseShape.h"

namespace bvx {

void CEllipseTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    switch (State) {
    case 0: {
        auto shape = std::make_unique<CEllipseShape>(point);
        shape->SetShapeType(uint8_t(view.CurrentTool), ToolSearch(view, view.CurrentTool));
        StartShape(view, std::move(shape), 1, point);
        return;
    }
    case FirstRadius:
        if (TakeBackOnSameSpot(view, point)) return;
        // An ellipse takes one more press, for its other radius.
        if (view.CurrentTool == bvxEllipse) {
            State = SecondRadius;
            return;
        }
        break;
    default:
        break;
    }
    CloseShape(view, point);
}

void CEllipseTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CEllipseTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    return EnterNamed(view, std::make_unique<CEllipseShape>(), type, layerNumber);
}

} // namespace bvx
