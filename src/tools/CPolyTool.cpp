#include "CPolyTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "platform/WindowMessages.h"
#include "shapes/CPolyShape.h"

namespace bvx {

CPolyShape* CPolyTool::Poly(CadView& view) const
{
    return State == 0 ? nullptr : dynamic_cast<CPolyShape*>(DrawnShape(view));
}

void CPolyTool::OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point)
{
    CPolyShape* poly = nullptr;
    if (State == 0) {
        auto shape = std::make_unique<CPolyShape>();
        shape->SetShapeType(uint8_t(view.CurrentTool), ToolSearch(view, view.CurrentTool));
        shape->AddPoint(point);
        if (!StartShape(view, std::move(shape), 1, point)) return;
        poly = Poly(view);
    } else if ((poly = Poly(view))) {
        // The press leaves the rubber point behind and adds the one beneath the pointer.
        poly->AddPoint(point);
    }
    if (!poly) {
        CloseShape(view, point); // the host took the shape away: only the mouse is left
        return;
    }
    Box.ToolHandle = poly->GetPointCount();
    view.Buf.FocusPoint = Box.ToolHandle == 1 ? int16_t(1) : poly->HandleToPoint(Box.ToolHandle);
    if (Box.ToolHandle == 4 && poly->GetShapeType() == bvx3PointArc) {
        // The third press of a three-point arc completes it.
        OnLButtonDblClk(view, flags, point);
        return;
    }
    Box.ToolLastPoint = point;
}

void CPolyTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    CPolyShape* poly = Poly(view);
    if (!poly) return;
    if ((flags & mk::LButton) && poly->GetShapeType() == bvxFreehand) {
        // One point per mouse message, as the hand went.
        if (!poly->AddPoint(point)) return;
        Box.ToolHandle = poly->GetPointCount();
        Box.ToolLastPoint = point;
        poly->UpdateBounds(view);
        view.InvalidateShape(poly, true);
        return;
    }
    if (poly->GetPointCount() == 1) {
        // The rubber point is born on the first move.
        poly->AddPoint(Box.ToolLastPoint);
        Box.ToolHandle = poly->GetPointCount();
    }
    Box.Select.OnMouseMove(view, flags, point);
}

void CPolyTool::OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point)
{
    // A freehand curve ends when the button comes up.
    if (CPolyShape* poly = Poly(view); poly && poly->GetShapeType() == bvxFreehand)
        OnLButtonDblClk(view, flags, point);
}

void CPolyTool::OnLButtonDblClk(CadView& view, uint32_t, const WorldPoint& point)
{
    if (State == 0) return;
    CPolyShape* poly = Poly(view);
    if (!poly) {
        CloseShape(view, point);
        return;
    }
    const std::vector<WorldPoint>& p = poly->Points;
    const size_t n = p.size();
    if (n < 2 || (n == 2 && p[0] == p[1]) || (n == 3 && poly->GetShapeType() == bvxPolygon && p[0] == p[1])) {
        AbortShape(view, poly, true);
        return;
    }
    // The last point is the rubber point, or the double click's own second
    // press: where the pointer stands.
    view.InvalidateShape(poly, false);
    const WorldPoint end = p.back();
    poly->Points.pop_back();
    poly->UpdateBounds(view);
    Box.ToolHandle = poly->GetHandleCount();
    view.Buf.FocusPoint = poly->HandleToPoint(Box.ToolHandle);
    CloseShape(view, end);
}

int32_t CPolyTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    return EnterNamed(view, std::make_unique<CPolyShape>(), type, layerNumber);
}

} // namespace bvx
