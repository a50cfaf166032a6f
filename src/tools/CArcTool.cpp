#include "CArcTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CArcShape.h"

#include <cmath>

namespace bvx {

void CArcTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    if (State == 0) {
        auto shape = std::make_unique<CArcShape>(point);
        shape->SetShapeType(uint8_t(view.CurrentTool), ToolSearch(view, view.CurrentTool));
        StartShape(view, std::move(shape), 1, point);
        return;
    }
    // Each press hands the rubber band on: radii, start angle, end angle.
    ++Box.ToolHandle;
    if (State == 1) {
        if (!TakeBackOnSameSpot(view, point)) State = 2;
        return;
    }
    if (State == 2) {
        State = 3;
        return;
    }
    // A drag can leave the radii negative; the point that holds them can't.
    if (CObjShape* shape = DrawnShape(view)) {
        const WorldPoint radii = shape->GetPoint(1, view);
        shape->SetPoint(1, std::fabs(radii.x), std::fabs(radii.y), &view);
    }
    CloseShape(view, point);
}

void CArcTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CArcTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    return EnterNamed(view, std::make_unique<CArcShape>(), type, layerNumber);
}

} // namespace bvx
