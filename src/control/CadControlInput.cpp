// The window procedure: every message a host hands the control. Mouse
// messages become world points, go to the current tool and come out as
// events; the decisions of what a press means are the tools'.
#include "CadControl.h"

#include "platform/WindowMessages.h"
#include "tools/ToolBox.h"

#include <optional>

namespace bvx {

namespace {

// The tool menu of the right button, in the order it shows. The group
// tool isn't offered.
const std::vector<PopupMenuItem>& ToolMenu()
{
    static const std::vector<PopupMenuItem> items = {
        {bvxNetZoom, u"Net Zoom"},
        {bvxPan, u"Pan"},
        {bvxNetSelect, u"Net Select"},
        {bvxSelect, u"Select"},
        {99, u"", true},
        {bvxArc, u"Arc"},
        {bvx3PointArc, u"Arc (Three-Point)"},
        {bvxCircle, u"Circle"},
        {bvxChord, u"Chord"},
        {bvxEllipse, u"Ellipse"},
        {bvx2PointEllipse, u"Ellipse (Two-Point)"},
        {bvxFreehand, u"Freehand"},
        {bvxLine, u"Line"},
        {bvxPicture, u"Picture"},
        {bvxPieSlice, u"Pie Slice"},
        {bvxPoint, u"Point"},
        {bvxPolygon, u"Polygon"},
        {bvxPolyline, u"Polyline"},
        {bvxRectangle, u"Rectangle"},
        {bvxRoundRectangle, u"Rounded Rectangle"},
        {bvxSpline, u"Spline"},
        {bvxClosedSpline, u"Closed Spline"},
        {bvxText, u"Text"},
    };
    return items;
}

// Control notices a parent reflects back to the child that sent them.
bool IsReflected(uint32_t msg)
{
    if (msg < wm::Reflect) return false;
    const uint32_t m = msg - wm::Reflect;
    return (m >= 0x2B && m <= 0x2F) || m == 0x39 || m == 0x4E || m == wm::Command || m == wm::HScroll ||
           m == wm::VScroll || (m >= 0x132 && m <= 0x138) || m == 0x210;
}

int16_t Shift(uint64_t wParam) { return int16_t(wParam); }

} // namespace

int64_t CadControl::WindowProc(uint32_t msg, uint64_t wParam, int64_t lParam)
{
    switch (msg) {
    // Painting belongs to the host, which calls OnDraw with its device;
    // scroll messages are eaten so that none reaches a host by accident.
    case wm::Paint:
    case wm::SetFocus:
    case wm::KillFocus:
    case wm::EraseBackground:
    case wm::HScroll:
    case wm::VScroll: return 0;
    case wm::Char: OnChar(wParam); return 0;
    case wm::KeyDown: OnKeyDown(wParam); return 0;
    case wm::KeyUp: OnKeyUp(wParam); return 0;
    case wm::SetCursor: OnSetCursor(); return 0;
    case wm::MouseMove: OnMouseMove(wParam, lParam); return 0;
    case wm::LButtonDown:
        // The focus comes first, even for a press the bounds then refuse.
        if (view_.Window) view_.Window->SetFocus();
        OnLButtonDown(wParam, lParam);
        return 0;
    case wm::LButtonUp: OnLButtonUp(wParam, lParam); return 0;
    case wm::RButtonDown: OnRButtonDown(wParam, lParam); return 0;
    case wm::RButtonUp: OnRButtonUp(wParam, lParam); return 0;
    case wm::MenuSelect: return 1;
    case wm::Command: OnCommand(wParam); return 1;
    case wm::LButtonDblClk: OnLButtonDblClk(wParam, lParam); return 0;
    default: break;
    }
    if (!view_.Window) return 0;
    if (IsReflected(msg)) return view_.Window->DefaultProcedure(msg - wm::Reflect, wParam, lParam);
    return view_.Window->DefaultProcedure(msg, wParam, lParam);
}

WorldPoint CadControl::PressPoint(DevicePoint point) const
{
    const CadWorld& world = view_.World;
    return point == world.LastSnapDevice ? world.LastSnapWorld : world.DeviceToWorld(point);
}

bool CadControl::OutsideView(DevicePoint point) const
{
    const DeviceRect& r = view_.World.ClientRect;
    return point.x < r.left || point.x > r.right || point.y < r.top || point.y > r.bottom;
}

void CadControl::OnLButtonDown(uint64_t wParam, int64_t lParam)
{
    CDrawTool* tool = view_.ViewReady ? view_.Tools->FindTool(view_.CurrentTool) : nullptr;
    if (!tool) return;
    const DevicePoint device = PointFromLParam(lParam);
    if (view_.Buf.MouseBounds == 1 && OutsideView(device)) return;
    if (view_.Window) view_.World.CursorScreenPos = view_.Window->GetCursorPos();
    WorldPoint point = PressPoint(device);
    CadBuf& buf = view_.Buf;
    if (buf.SnapMode != 0 && IsDrawingTool(view_.CurrentTool) && buf.SnapMarkerUp != 0) {
        point = buf.SnapPoint;
        view_.InvalidateSnapMarker();
        buf.SnapMarkerUp = 0;
    }
    tool->OnLButtonDown(view_, uint32_t(wParam), point);
    // After the tool: the action says whether it took the mouse.
    view_.Fire<&EventSink::WorldMouseDown>(int16_t(1), Shift(wParam), view_.MouseActive, point.x, point.y);
}

void CadControl::OnLButtonUp(uint64_t wParam, int64_t lParam)
{
    CDrawTool* tool = view_.ViewReady ? view_.Tools->FindTool(view_.CurrentTool) : nullptr;
    if (!tool) return;
    const DevicePoint device = PointFromLParam(lParam);
    if ((view_.Buf.MouseBounds == 1 || view_.CurrentTool == bvxPan) && OutsideView(device)) {
        // A drag released outside is lost to the host; a pan still ends.
        if (view_.CurrentTool == bvxPan) tool->OnLButtonUp(view_, uint32_t(wParam), PressPoint(device));
        return;
    }
    const WorldPoint point = PressPoint(device);
    if (view_.Buf.SnapMode != 0) {
        view_.InvalidateSnapMarker();
        view_.Buf.SnapMarkerUp = 0;
    }
    view_.Fire<&EventSink::WorldMouseUp>(int16_t(1), Shift(wParam), point.x, point.y);
    if (view_.SkipNextClick)
        view_.SkipNextClick = false;
    else
        view_.Fire<&EventSink::Click>(point.x, point.y);
    tool->OnLButtonUp(view_, uint32_t(wParam), point);
}

void CadControl::OnLButtonDblClk(uint64_t wParam, int64_t lParam)
{
    CDrawTool* tool = view_.ViewReady ? view_.Tools->FindTool(view_.CurrentTool) : nullptr;
    if (!tool) return;
    const WorldPoint point = view_.World.DeviceToWorld(PointFromLParam(lParam));
    // The system sends the second up after this: it fires no Click.
    view_.SkipNextClick = true;
    view_.Fire<&EventSink::DblClick>(point.x, point.y);
    tool->OnLButtonDblClk(view_, uint32_t(wParam), point);
}

void CadControl::OnRButtonDown(uint64_t wParam, int64_t lParam)
{
    if (!view_.ViewReady) return;
    const DevicePoint device = PointFromLParam(lParam);
    CadWorld& world = view_.World;
    CadBuf& buf = view_.Buf;
    if (view_.Window) world.CursorScreenPos = view_.Window->GetCursorPos();
    const WorldPoint point = world.DeviceToWorld(device);
    view_.Fire<&EventSink::WorldMouseDown>(int16_t(2), Shift(wParam), view_.MouseActive, point.x, point.y);
    // The right button snaps; only with both snaps off does it offer the
    // tools, and not in the middle of a shape.
    if (buf.SnapToShape == 0 && buf.SnapToGrid == 0) {
        CDrawTool* tool = view_.Tools->FindTool(view_.CurrentTool);
        if ((view_.CurrentTool >= bvxNetZoom && view_.CurrentTool <= bvxSelect) || (tool && tool->State == 0))
            ShowToolMenu(device);
    }
    if (buf.SnapToShape != 0) {
        int16_t action = 0;
        if (buf.HitTest(device, true, false, action, view_)) {
            view_.Fire<&EventSink::WorldMouseSnap>(int16_t(1), world.LastSnapWorld.x, world.LastSnapWorld.y);
            return;
        }
    }
    if (buf.SnapToGrid == 1 && world.SnapCursorToGrid(world.CursorScreenPos, device, view_.Window))
        view_.Fire<&EventSink::WorldMouseSnap>(int16_t(2), world.LastSnapWorld.x, world.LastSnapWorld.y);
}

void CadControl::OnRButtonUp(uint64_t wParam, int64_t lParam)
{
    if (!view_.ViewReady || !view_.Tools->FindTool(view_.CurrentTool)) return;
    const WorldPoint point = PressPoint(PointFromLParam(lParam));
    // The right button never reaches the tool.
    view_.Fire<&EventSink::WorldMouseUp>(int16_t(2), Shift(wParam), point.x, point.y);
}

void CadControl::OnMouseMove(uint64_t wParam, int64_t lParam)
{
    CDrawTool* tool = view_.ViewReady ? view_.Tools->FindTool(view_.CurrentTool) : nullptr;
    if (!tool) return;
    const DevicePoint device = PointFromLParam(lParam);
    if (view_.Buf.MouseBounds == 1 && OutsideView(device)) return;
    WorldPoint point = PressPoint(device);
    CadBuf& buf = view_.Buf;
    const bool resizing = view_.CurrentTool == bvxSelect && view_.Tools->Select.State == CSelectTool::Resizing &&
                          (wParam & mk::LButton);
    if (buf.SnapMode != 0 && (IsDrawingTool(view_.CurrentTool) || resizing)) {
        // The line being drawn or resized must not snap to itself.
        const CObjShape* skip = tool->State != 0 && !buf.Selection.empty() ? buf.Selection.front() : nullptr;
        point = view_.SnapToLines(device, point, skip);
    } else if (buf.SnapMarkerUp != 0) {
        view_.InvalidateSnapMarker();
        buf.SnapMarkerUp = 0;
    }
    view_.ReadoutDistance = 0.0;
    view_.ReadoutAngle = 0.0;
    tool->OnMouseMove(view_, uint32_t(wParam), point);
    view_.FireWorldMouseMove(Shift(wParam), point.x, point.y, view_.ReadoutDistance, view_.ReadoutAngle);
}

void CadControl::OnSetCursor()
{
    // The negative tools show their own pointers.
    if (view_.CurrentTool == bvxSelect)
        view_.ShowPointerRole(PointerRole::Select);
    else if (view_.CurrentTool > bvxSelect)
        view_.ShowPointerRole(PointerRole::Draw);
}

void CadControl::OnKeyDown(uint64_t key)
{
    if (key == vk::Control && view_.CurrentTool == bvxSelect && view_.ViewKeyCopy && !view_.MouseActive)
        view_.ShowPointerRole(PointerRole::Copy);
    if (key == vk::Delete) {
        if (!view_.ViewKeyDelete) return;
        view_.CancelMouse();
        view_.Redraw(RedrawMode::DeleteSelection);
        return;
    }
    // Runs the queue, so that the key's character arrives now even in a
    // host that doesn't translate the control's keys.
    if (view_.Window) view_.Window->PumpMessages();
}

void CadControl::OnKeyUp(uint64_t key)
{
    const PointerTable& pointers = view_.Buf.Pointers;
    if (key == vk::Control && size_t(pointers.GetPointer()) == pointers.IndexOf(pointers.Role(PointerRole::Copy)))
        view_.ShowPointerRole(PointerRole::Select);
    if (view_.Window) view_.Window->PumpMessages();
}

void CadControl::OnCommand(uint64_t wParam)
{
    // Menu ids are tool numbers; the negative ones come as 16 bits.
    view_.ChooseTool(int16_t(uint16_t(wParam & 0xFFFF)));
}

void CadControl::ShowToolMenu(DevicePoint point)
{
    if (!view_.Window) return;
    const std::optional<int32_t> chosen = view_.Window->TrackPopupMenu(ToolMenu(), view_.Window->ClientToScreen(point));
    if (chosen) OnCommand(uint64_t(uint16_t(*chosen)));
}

} // namespace bvx
