#include "CSelectTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "platform/WindowMessages.h"

#include <cmath>
#include <cstdlib>

namespace bvx {

namespace {

constexpr double kStillDelta = 1e-7;
// A net zoom smaller than this in both directions is taken for a click.
constexpr int32_t kZoomSlack = 5;

bool IsEllipseCentre(const CObjShape& shape, int32_t handle)
{
    const int16_t type = shape.GetShapeType();
    return handle == 5 && (type == bvxCircle || type == bvxEllipse);
}

bool IsArc(int16_t type) { return type >= bvxArc && type <= bvxChord; }

// Handles whose drag hands the shape the mouse's travel, not its position.
bool DragsByDifference(int16_t type, int32_t handle)
{
    return (handle == 9 && (type == bvx2PointEllipse || IsArc(type))) || (handle == 1 && IsArc(type));
}

int16_t LayerAction(const CadView& view, const CObjShape& shape)
{
    const CadLayer* layer = view.Buf.Layer(shape.Layer);
    return layer ? layer->Action : 0;
}

DeviceRect NetRect(DevicePoint a, DevicePoint b) { return DeviceRect{a.x, a.y, b.x, b.y}.Normalized(); }

} // namespace

void CSelectTool::ShowMovePointer(CadView& view)
{
    switch (view.Buf.ShapeMoveMode) {
    case 1: view.ShowPointerRole(PointerRole::MoveVertical); break;
    case 2: view.ShowPointerRole(PointerRole::MoveHorizontal); break;
    default: view.ShowPointerRole(PointerRole::MoveFree); break;
    }
}

void CSelectTool::OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point)
{
    const bool add = (flags & mk::Shift) && view.ViewKeySelect;
    const bool copy = (flags & mk::Control) && view.ViewKeyCopy;
    const DevicePoint device = view.World.WorldToDevice(point);
    if (IsNet()) {
        view.ShowPointerRole(State == NetSelect ? PointerRole::NetSelect : PointerRole::NetZoom);
        Box.ToolDeviceStart = Box.ToolDeviceCurrent = device;
        BeginMouse(view, point);
        return;
    }
    State = Idle;
    Box.ToolHandle = 0;
    if (!PressHandle(view, device)) return;
    if (State == Idle) PressShape(view, device, add, copy);

    if (State == Idle && !add) {
        // A press on empty ground is complete in itself: no net, no capture.
        view.ClearSelection(nullptr);
        return;
    }
    if (State != Idle) view.Redraw(RedrawMode::Selection);
    BeginMouse(view, point);
}

bool CSelectTool::PressHandle(CadView& view, DevicePoint device)
{
    if (view.Buf.Selection.size() != 1) return true;
    CObjShape& shape = *view.Buf.Selection.front();
    Box.ToolHandle = shape.HitHandle(device, 1, view);
    if (Box.ToolHandle == 0) return true;
    view.Buf.FocusPoint = shape.HandleToPoint(Box.ToolHandle);
    const int16_t action = LayerAction(view, shape);
    // A layer without Size keeps the handle: the press ends with nothing held.
    if (!(action & LayerActions::Size)) return false;
    if (IsEllipseCentre(shape, Box.ToolHandle)) {
        if (action & LayerActions::Move) {
            State = Moving;
            ShowMovePointer(view);
        }
        return true;
    }
    State = Resizing;
    view.SetPointer(shape.GetHandleCursor(view.Buf.Pointers.HandleRoles(), Box.ToolHandle));
    return true;
}

void CSelectTool::PressShape(CadView& view, DevicePoint device, bool add, bool copy)
{
    int16_t action = 0;
    CObjShape* hit = view.Buf.HitTest(device, false, true, action, view);
    if (!hit) return;
    State = (action & LayerActions::Move) ? Moving : Held;
    if (add && hit->Selected) {
        view.ClearSelection(hit);
        State = Idle;
        view.ShowPointerRole(PointerRole::Select);
        return;
    }
    // Without Shift a press on one of several selected shapes keeps them all
    // and moves the focus to it.
    if (!add && !hit->Selected) view.ClearSelection(nullptr);
    view.Buf.Select(hit);
    view.InvalidateShape(hit, true);
    view.ShapeSelected(hit->GetShapeType(), hit->Number);
    // The host may have answered the event: read the state afresh.
    if (copy) view.Buf.DuplicateSelection(view);
    if (State != Idle && State != Held) ShowMovePointer(view);
}

void CSelectTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    const bool copy = (flags & mk::Control) && view.ViewKeyCopy;
    if (view.CurrentTool == bvxNetSelect)
        view.ShowPointerRole(PointerRole::NetSelect);
    else if (view.CurrentTool == bvxNetZoom)
        view.ShowPointerRole(PointerRole::NetZoom);
    else if (view.CurrentTool == bvxSelect && copy && !view.MouseActive)
        view.ShowPointerRole(PointerRole::Copy);

    if (!view.MouseActive) {
        Hover(view, point);
        return;
    }
    if (IsNet()) {
        DragNet(view, point);
        return;
    }
    DragSelection(view, point);
}

void CSelectTool::Hover(CadView& view, const WorldPoint& point)
{
    if (view.CurrentTool != bvxSelect || view.Buf.Selection.size() != 1) return;
    CObjShape& shape = *view.Buf.Selection.front();
    if (!(LayerAction(view, shape) & LayerActions::Size)) return;
    Box.ToolHandle = shape.HitHandle(view.World.WorldToDevice(point), 1, view);
    if (Box.ToolHandle == 0) return;
    if (IsEllipseCentre(shape, Box.ToolHandle)) {
        State = Moving;
        ShowMovePointer(view);
    } else {
        State = Resizing;
        view.SetPointer(shape.GetHandleCursor(view.Buf.Pointers.HandleRoles(), Box.ToolHandle));
    }
}

void CSelectTool::DrawNet(CadView& view) const
{
    const DeviceRect net = NetRect(Box.ToolDeviceStart, Box.ToolDeviceCurrent);
    if (net.Width() == 0 || net.Height() == 0 || !view.Window) return;
    if (std::unique_ptr<DeviceContext> dc = view.Window->GetDC()) {
        dc->DrawFocusRect(net);
        view.Window->ReleaseDC(std::move(dc));
    }
}

void CSelectTool::DragNet(CadView& view, const WorldPoint& point)
{
    // Straight on the window, erased by drawing it again: no repaint per move.
    DrawNet(view);
    Box.ToolDeviceCurrent = view.World.WorldToDevice(point);
    DrawNet(view);
}

void CSelectTool::DragSelection(CadView& view, const WorldPoint& point)
{
    CadBuf& buf = view.Buf;
    if (buf.Selection.empty()) return;
    WorldPoint running = point;
    WorldPoint delta{running.x - Box.ToolLastPoint.x, running.y - Box.ToolLastPoint.y};
    // By index and with the size read each time: a shape's event may let
    // the host change the selection.
    for (size_t i = 0; i < buf.Selection.size(); ++i) {
        CObjShape* shape = buf.Selection[i];
        if (State == Moving) {
            if (buf.ShapeMoveMode == 1) delta.x = 0;
            if (buf.ShapeMoveMode == 2) delta.y = 0;
            shape->Move(delta, view);
            Box.ToolLastPoint = running;
            continue;
        }
        if ((State != Resizing && State != Held) || Box.ToolHandle == 0) continue;
        if (view.World.GridOn && buf.SnapToGrid == 2 && view.World.SnapToGrid(running)) {
            view.World.LastSnapWorld = running;
            view.World.LastSnapDevice = view.World.WorldToDevice(running);
            delta = {running.x - Box.ToolLastPoint.x, running.y - Box.ToolLastPoint.y};
        }
        if (DragsByDifference(shape->GetShapeType(), Box.ToolHandle)) {
            if (std::fabs(delta.x) < kStillDelta && std::fabs(delta.y) < kStillDelta) continue;
            const bool radii = Box.ToolHandle == 9;
            shape->MoveHandle(Box.ToolHandle, delta, view);
            // The centre handle's difference grows from the press on.
            if (radii) Box.ToolLastPoint = running;
            continue;
        }
        // The three-press ellipse steers the drag to the radius being set.
        if (Box.Ellipse.State == CEllipseTool::FirstRadius)
            Box.ToolHandle = 2;
        else if (Box.Ellipse.State == CEllipseTool::SecondRadius)
            Box.ToolHandle = 1;
        shape->MoveHandle(Box.ToolHandle, running, view);
    }
    // A handle's direction can flip during a drag.
    if (State == Resizing && view.CurrentTool == bvxSelect && !buf.Selection.empty())
        view.SetPointer(buf.Selection.front()->GetHandleCursor(buf.Pointers.HandleRoles(), Box.ToolHandle));
}

void CSelectTool::OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point)
{
    if (!view.MouseActive) return;
    view.Buf.FocusPoint = -1;
    if (IsNet()) {
        EndNet(view, point, (flags & mk::Shift) && view.ViewKeySelect);
    } else if (State != Idle) {
        view.Redraw(RedrawMode::Selection);
    }
    ReleaseMouse(view);
}

void CSelectTool::EndNet(CadView& view, const WorldPoint& point, bool add)
{
    Box.ToolDeviceCurrent = view.World.WorldToDevice(point);
    DrawNet(view);
    const DeviceRect net = NetRect(Box.ToolDeviceStart, Box.ToolDeviceCurrent);
    if (State == NetSelect) {
        if (!add) view.Redraw(RedrawMode::Selection);
        view.Buf.SelectInRect(net, add, view);
        view.Redraw(RedrawMode::Selection);
    } else {
        const int64_t dx = int64_t(Box.ToolDeviceCurrent.x) - Box.ToolDeviceStart.x;
        const int64_t dy = int64_t(Box.ToolDeviceCurrent.y) - Box.ToolDeviceStart.y;
        if (std::llabs(dx) <= kZoomSlack && std::llabs(dy) <= kZoomSlack) {
            State = Idle;
            return;
        }
        CadWorld& world = view.World;
        const WorldPoint a = world.DeviceToWorld(Box.ToolDeviceStart);
        const WorldPoint b = world.DeviceToWorld(Box.ToolDeviceCurrent);
        // The first corner is the one the axis counts from.
        auto first = [](double p, double q, int16_t sign) { return sign == 1 ? std::fmin(p, q) : std::fmax(p, q); };
        auto second = [](double p, double q, int16_t sign) { return sign == 1 ? std::fmax(p, q) : std::fmin(p, q); };
        world.SetWorld(first(a.x, b.x, world.SignX), first(a.y, b.y, world.SignY), second(a.x, b.x, world.SignX),
                       second(a.y, b.y, world.SignY), 0);
        view.Redraw(RedrawMode::Full);
    }
    State = Idle;
    view.Fire<&EventSink::WorldRectPos>(Box.ToolLastPoint.x, Box.ToolLastPoint.y, point.x, point.y);
}

void CSelectTool::OnLButtonDblClk(CadView& view, uint32_t flags, const WorldPoint& point)
{
    if (!((flags & mk::Shift) && view.ViewKeySelect)) return;
    int16_t action = 0;
    if (CObjShape* hit = view.Buf.HitTest(view.World.WorldToDevice(point), false, true, action, view))
        view.ClearSelection(hit);
}

} // namespace bvx
