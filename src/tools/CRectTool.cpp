#include "CRectTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CRectShape.h"

namespace bvx {

namespace {

// Names the shape; a new rounded rectangle's corners take 16 pixels at
// today's scale.
void PrepareShape(CRectShape& shape, int16_t type, int16_t search, const CadWorld& world)
{
    shape.SetShapeType(uint8_t(type), type == bvxLine ? kSearchOnBorder : search);
    if (type == bvxRoundRectangle) shape.Radius = world.DeviceSizeToWorld({16, 16});
}

} // namespace

void CRectTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    if (State == 0) {
        auto shape = std::make_unique<CRectShape>(point);
        PrepareShape(*shape, view.CurrentTool, ToolSearch(view, view.CurrentTool), view.World);
        StartShape(view, std::move(shape), 5, point);
        return;
    }
    if (!TakeBackOnSameSpot(view, point)) CloseShape(view, point);
}

void CRectTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CRectTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    auto shape = std::make_unique<CRectShape>();
    if (type >= bvxRectangle && type <= bvx2PointEllipse)
        PrepareShape(*shape, type, ToolSearch(view, type, layerNumber), view.World);
    return view.Buf.EnterShape(std::move(shape), view, layerNumber);
}

} // namespace bvx
