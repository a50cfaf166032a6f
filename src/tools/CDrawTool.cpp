#include "CDrawTool.h"

#include "ToolBox.h"
#include "control/CadView.h"

namespace bvx {

void CDrawTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point) { BeginMouse(view, point); }

void CDrawTool::BeginMouse(CadView& view, const WorldPoint& point)
{
    if (view.Window) view.Window->SetCapture();
    view.MouseActive = 1;
    Box.ToolLastPoint = point;
}

void CDrawTool::ReleaseMouse(CadView& view)
{
    if (view.Window) view.Window->ReleaseCapture();
    view.MouseActive = 0;
    view.DrawInProgress = false;
    if (State == 0) view.Buf.FocusPoint = -1;
    if (!view.ViewPersistMouseTool) view.SetMouseTool(bvxSelect);
}

void CDrawTool::BeginShape(CadView& view, CObjShape& shape, int32_t state, int32_t handle, const WorldPoint& point)
{
    view.DrawAbort = false;
    view.DrawInProgress = true;
    view.MouseActive = 1;
    if (view.Window) view.Window->SetCapture();
    view.ClearSelection(nullptr);
    Box.ToolLastPoint = point;
    State = state;
    Box.DrawnNumber = -1;
    view.Buf.Select(&shape);
    view.InvalidateShape(&shape, true);
    Box.Select.State = CSelectTool::Resizing;
    Box.ToolHandle = handle;
    view.Buf.FocusPoint = shape.HandleToPoint(handle);
    // Before the shape is in the document: the host may still refuse it.
    view.Fire<&EventSink::DrawBegin>(shape.GetShapeType(), point.x, point.y);
}

bool CDrawTool::CheckAbort(CadView& view)
{
    if (!view.DrawAbort) return false;
    AbortShape(view, nullptr, false);
    return true;
}

void CDrawTool::AbortShape(CadView& view, CObjShape* shape, bool destroy)
{
    if (!shape) return;
    view.Buf.ForgetShape(shape);
    if (destroy) {
        view.InvalidateShape(shape, true);
        view.Buf.Deselect(shape);
        // Gone without ShapeNumberDeleted; its number stays used.
        std::unique_ptr<CObjShape> gone = view.Buf.DetachShape(shape);
        State = 0;
    }
    Box.Select.State = CSelectTool::Idle;
    ReleaseMouse(view);
    Box.ToolHandle = 0;
    Box.DrawnNumber = -1;
    view.DrawAbort = false;
}

void CDrawTool::FinishShape(CadView& view, CObjShape& shape)
{
    ReleaseMouse(view);
    State = 0;
    Box.DrawnNumber = -1;
    view.Buf.Select(&shape);
    view.InvalidateShape(&shape, true);
    view.ShapeSelected(shape.GetShapeType(), shape.Number);
}

bool CDrawTool::StartShape(CadView& view, std::unique_ptr<CObjShape> shape, int32_t handle, const WorldPoint& point)
{
    shape->UpdateBounds(view);
    BeginShape(view, *shape, 1, handle, point);
    if (CheckAbort(view) || !view.Buf.CurrentLayer) {
        // Nothing else knows the shape yet: it goes here, and the mouse with it.
        view.Buf.Deselect(shape.get());
        State = 0;
        if (view.DrawInProgress) {
            Box.Select.State = CSelectTool::Idle;
            Box.ToolHandle = 0;
            ReleaseMouse(view);
        }
        return false;
    }
    // The number is known before the host hears of the shape.
    const int16_t type = shape->GetShapeType();
    Box.DrawnNumber = view.Buf.AddShape(std::move(shape), view, -1, -1, false)->Number;
    view.ShapeAdded(type, Box.DrawnNumber);
    return !CheckAbort(view);
}

void CDrawTool::CloseShape(CadView& view, const WorldPoint& point)
{
    CObjShape* shape = DrawnShape(view);
    if (!shape) {
        // The host took the shape away without cancelling: only the mouse is left.
        State = 0;
        Box.Select.State = CSelectTool::Idle;
        ReleaseMouse(view);
        return;
    }
    const int32_t number = shape->Number;
    view.Fire<&EventSink::DrawEnd>(shape->GetShapeType(), point.x, point.y);
    if (CheckAbort(view)) return;
    if (CObjShape* still = view.Buf.FindShape(number)) {
        FinishShape(view, *still);
    } else {
        State = 0;
        ReleaseMouse(view);
    }
}

bool CDrawTool::TakeBackOnSameSpot(CadView& view, const WorldPoint& point)
{
    CObjShape* shape = DrawnShape(view);
    if (!shape || point.x != Box.ToolLastPoint.x || point.y != Box.ToolLastPoint.y) return false;
    AbortShape(view, shape, true);
    return true;
}

CObjShape* CDrawTool::DrawnShape(CadView& view) const
{
    return Box.DrawnNumber == -1 ? nullptr : view.Buf.FindShape(Box.DrawnNumber);
}

int32_t CDrawTool::EnterNamed(CadView& view, std::unique_ptr<CObjShape> shape, int16_t type, int32_t layerNumber)
{
    shape->SetShapeType(uint8_t(type), ToolSearch(view, type, layerNumber));
    return view.Buf.EnterShape(std::move(shape), view, layerNumber);
}

int16_t CDrawTool::ToolSearch(const CadView& view, int16_t type, int32_t layerNumber)
{
    const CadLayer* layer = layerNumber == -1 ? view.Buf.CurrentLayer : view.Buf.Layer(layerNumber);
    return layer ? layer->GetSearchMethod(type) : kSearchOnBorder;
}

} // namespace bvx
