#include "CPictTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CPictShape.h"

namespace bvx {

void CPictTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    if (State == 0) {
        auto shape = std::make_unique<CPictShape>(point);
        shape->SetShapeType(bvxPicture, ToolSearch(view, bvxPicture));
        // The rubber band drags the first corner; the press holds the second.
        StartShape(view, std::move(shape), 1, point);
        return;
    }
    if (TakeBackOnSameSpot(view, point)) return;
    const int32_t number = Box.DrawnNumber;
    CloseShape(view, point);
    if (number != -1 && State == 0 && view.Buf.FindShape(number)) view.Fire<&EventSink::PictureEntry>(number);
}

void CPictTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CPictTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    if (type != bvxPicture) return -1;
    const int32_t number = EnterNamed(view, std::make_unique<CPictShape>(), type, layerNumber);
    if (number != -1 && view.Buf.FindShape(number)) view.Fire<&EventSink::PictureEntry>(number);
    return number;
}

} // namespace bvx
