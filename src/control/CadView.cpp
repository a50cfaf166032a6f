#include "CadView.h"

#include "platform/DeviceContext.h"
#include "platform/raster/RasterDeviceContext.h"
#include "shapes/CGroupShape.h"
#include "tools/ToolBox.h"
#include "world/Rounding.h"

#include <algorithm>

namespace bvx {

namespace {
constexpr int32_t kShapeMargin = 4;
constexpr int32_t kSnapMarkerArm = 8;
constexpr int32_t kSnapMarkerMargin = kSnapMarkerArm + 1;
constexpr int32_t kCaretSize = 6;
} // namespace

CadView::CadView(HostWindow* window, EventSink* sink)
    : Owner(sink), Window(window), Tools(std::make_unique<ToolBox>())
{
    if (window) {
        World.ScreenDpiX = World.OutputDpiX = window->ScreenDpiX();
        World.ScreenDpiY = World.OutputDpiY = window->ScreenDpiY();
    }
}

CadView::~CadView() = default;

void CadView::InvalidateWindow(const DeviceRect* rect, bool erase)
{
    if (Window) {
        Window->InvalidateRect(rect, erase);
    } else if (ViewSink && !ViewChangeTold) {
        ViewChangeTold = true;
        ViewSink->OnViewChange();
    }
}

void CadView::Redraw(int32_t mode)
{
    // Without a window nothing is repainted, but mode 4 still deletes: a
    // script host must be able to delete the selection.
    if (!Window && mode != RedrawMode::DeleteSelection) return;
    switch (mode) {
    case RedrawMode::Full:
        RebuildBackBuffer = true;
        NeedRepaint = true;
        InvalidateWindow(nullptr, true);
        break;
    case RedrawMode::Selection:
        for (size_t i = 0; i < Buf.Selection.size(); ++i) InvalidateShape(Buf.Selection[i], true);
        break;
    case RedrawMode::DeleteSelection:
        while (!Buf.Selection.empty())
            if (!DeleteShape(Buf.Selection.front(), true)) Buf.Deselect(Buf.Selection.front());
        NeedRepaint = true;
        InvalidateWindow(nullptr, true);
        break;
    default:
        break;
    }
}

void CadView::InvalidateShape(const CObjShape* shape, bool commit)
{
    if (shape)
        DirtyRect = DirtyRect.United(InflatedRect(OrderedRect(shape->BoundsAsRect()), kShapeMargin, kShapeMargin));
    else
        DirtyRect = World.ClientRect;
    if (commit) {
        NeedRepaint = true;
        InvalidateWindow(&DirtyRect, true);
    } else {
        InvalidateWindow(nullptr, true);
    }
}

void CadView::InvalidateSnapMarker()
{
    DevicePoint p = World.WorldToDevice(Buf.SnapPoint);
    DeviceRect marker{p.x, p.y, p.x, p.y};
    marker = InflatedRect(marker, kSnapMarkerMargin, kSnapMarkerMargin);
    DirtyRect = DirtyRect.United(marker);
    NeedRepaint = true;
    InvalidateWindow(&marker, true);
}

void CadView::CancelMouse()
{
    if (!DrawInProgress) return;
    DrawAbort = true;
    Tools->ResetForCancel(CurrentTool);
    if (Buf.SnapMarkerUp) {
        InvalidateSnapMarker();
        Buf.SnapMarkerUp = 0;
    }
    if (Window) Window->ReleaseCapture();
    MouseActive = 0;
    DrawInProgress = false;
    Buf.FocusPoint = -1;
    if (Buf.Selection.empty()) return;
    CObjShape* first = Buf.Selection.front();
    // The shape under construction goes with the cancel.
    if (first->Number == -1)
        Buf.Deselect(first);
    else
        DeleteShape(first, true);
}

void CadView::ClearDrawing()
{
    CancelMouse();
    Buf.BackPic.reset();
    Buf.ClearAll();
    Buf.Pictures.Entries.clear();
    FontTable.ResetFonts();
    Buf.SnapMarkerUp = 0;
    Clear();
}

void CadView::SetMouseTool(int16_t tool)
{
    if (!IsDrawingTool(tool) && Buf.SnapMarkerUp) {
        InvalidateSnapMarker();
        Buf.SnapMarkerUp = 0;
    }
    CurrentTool = tool;
}

bool CadView::DeleteShape(CObjShape* shape, bool fireEvent)
{
    if (!shape) return false;
    const int32_t top = shape->Number;
    if (shape->GroupList() && Buf.FindShape(top) == shape) {
        // Members go first, the last first, each with its own event, and a
        // member group is emptied before it goes. Groups are held by number
        // on a stack of our own: a host may delete anything from an event,
        // and nesting may be deeper than the call stack allows.
        InvalidateShape(shape, false);
        if (shape->Selected) Buf.Deselect(shape);
        std::vector<int32_t> emptying{top};
        while (!emptying.empty()) {
            CObjShape* group = Buf.FindShape(emptying.back());
            CadLayer* members = group ? group->GroupList() : nullptr;
            if (!members || members->Shapes.empty()) {
                emptying.pop_back();
                if (members && !emptying.empty() && !RemoveShape(group, true)) return false;
                continue;
            }
            CObjShape* last = members->Shapes.back().get();
            const bool enter = last->GroupList() && !last->GroupList()->Shapes.empty() &&
                               Buf.FindShape(last->Number) == last;
            if (!enter) {
                if (!RemoveShape(last, true)) return false;
                continue;
            }
            InvalidateShape(last, false);
            if (last->Selected) Buf.Deselect(last);
            emptying.push_back(last->Number);
        }
        shape = Buf.FindShape(top);
        if (!shape) return false;
    }
    return RemoveShape(shape, fireEvent);
}

bool CadView::RemoveShape(CObjShape* shape, bool fireEvent)
{
    InvalidateShape(shape, false);
    if (shape->Selected) Buf.Deselect(shape);
    std::unique_ptr<CObjShape> owned;
    if (shape->Group == -1) {
        owned = Buf.DetachShape(shape);
    } else if (CGroupShape* group = AsGroup(Buf.FindShape(shape->Group))) {
        owned = group->RemoveMember(shape);
    }
    // A shape nobody held cannot be given up; it stays where it is.
    if (!owned) return false;
    if (shape->GetShapeType() == bvxPicture) {
        const auto* picture = static_cast<const CPictShape*>(shape);
        if (picture->HasImage()) Buf.Pictures.Release(picture->ImageName, Buf);
    }
    Buf.ForgetShape(shape);
    InvalidateShape(shape, true);
    int32_t number = shape->Number;
    owned.reset();
    if (fireEvent) Fire<&EventSink::ShapeNumberDeleted>(number);
    return true;
}

void CadView::ShowTextCaret(bool on)
{
    if (on && Buf.ShowTracker) {
        if (CaretOn) return;
        CaretOn = true;
        if (Window) {
            Window->CreateCaret(kCaretSize, kCaretSize);
            Window->SetCaretPos({CaretX, CaretY});
            Window->ShowCaret();
        }
        return;
    }
    if (!CaretOn) return;
    CaretOn = false;
    if (Window) {
        Window->HideCaret();
        Window->DestroyCaret();
    }
}

const ShapeAttr& CadView::EffectiveAttr(const CObjShape& shape) const
{
    static const ShapeAttr fallback = ShapeAttr::Default();
    const CObjShape* s = &shape;
    // A group chain is finite, but a damaged one must not spin.
    for (size_t depth = 0; s && depth <= Buf.ShapeMap.Size() + 1; ++depth) {
        if (s->Number == -1) return Buf.CurrentLayer && Buf.CurrentLayer->Attr ? *Buf.CurrentLayer->Attr : fallback;
        if (s->Attr) return *s->Attr;
        if (s->Group < 0) {
            const CadLayer* layer = Buf.Layer(s->Layer);
            return layer && layer->Attr ? *layer->Attr : fallback;
        }
        s = Buf.FindShape(s->Group);
    }
    return fallback;
}

void CadView::DrawWithAttr(DeviceContext& dc, CObjShape& shape, const ShapeAttr& attr, const DeviceRect& clip,
                           int32_t mode)
{
    PenHandle oldPen = dc.SelectPen(SelectPen(attr, World));
    BrushHandle oldBrush = dc.SelectBrush(SelectBrush(attr));
    BackMode oldMode = dc.SetBkMode(BackModeFor(attr));
    ColorRef oldBack = dc.SetBkColor(BackColorFor(attr));
    ColorRef oldText = dc.SetTextColor(PenFor(attr, World).color);
    shape.Draw(dc, clip, *this, mode);
    dc.SelectPen(oldPen);
    dc.SelectBrush(oldBrush);
    dc.SetBkMode(oldMode);
    dc.SetBkColor(oldBack);
    dc.SetTextColor(oldText);
}

void CadView::DrawSnapMarker(DeviceContext& dc)
{
    if (!Buf.SnapMarkerOn || !Buf.SnapMarkerUp) return;
    DevicePoint p = World.WorldToDevice(Buf.SnapPoint);
    PenHandle old = dc.SelectPen(SelectPen(Buf.SnapMarkerAttr, World));
    int64_t x = p.x, y = p.y;
    auto clamp32 = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
    dc.MoveToEx(clamp32(x - kSnapMarkerArm), clamp32(y - kSnapMarkerArm));
    dc.LineTo(clamp32(x + kSnapMarkerArm), clamp32(y + kSnapMarkerArm));
    dc.MoveToEx(clamp32(x + kSnapMarkerArm), clamp32(y - kSnapMarkerArm));
    dc.LineTo(clamp32(x - kSnapMarkerArm), clamp32(y + kSnapMarkerArm));
    dc.SelectPen(old);
}

int16_t CadView::LayerLineType(int16_t layer) const
{
    const CadLayer* owner = Buf.Layer(layer);
    return owner ? owner->LineType : 0;
}

void CadView::WithWindowDC(const std::function<void(DeviceContext&)>& measure)
{
    if (Window) {
        if (std::unique_ptr<DeviceContext> dc = Window->GetDC()) {
            measure(*dc);
            Window->ReleaseDC(std::move(dc));
            return;
        }
    }
    RasterDeviceContext memory;
    measure(memory);
}

const ShapeAttr& CadView::LayerLook(int16_t layer) const
{
    static const ShapeAttr fallback = ShapeAttr::Default();
    const CadLayer* owner = Buf.Layer(layer);
    return owner && owner->Attr ? *owner->Attr : fallback;
}

void CadView::SnapPointerTo(const WorldPoint& point, DevicePoint press)
{
    World.MoveCursorTo(point, press, World.CursorScreenPos, Window);
}

void CadView::ClearSelection(CObjShape* shape)
{
    if (shape) {
        InvalidateShape(shape, true);
        Buf.Deselect(shape);
    } else {
        Redraw(RedrawMode::Selection);
        Buf.Deselect(nullptr);
    }
}

int32_t CadView::CreateShape(int16_t type, int32_t layerNumber)
{
    CDrawTool* tool = Tools->ToolFor(type);
    return tool ? tool->CreateShape(*this, type, layerNumber) : -1;
}

void CadView::ChooseTool(int16_t tool)
{
    CancelMouse();
    if (CurrentTool == bvxNetSelect || CurrentTool == bvxNetZoom) Tools->Select.State = CSelectTool::Idle;
    SetMouseTool(tool);
}

WorldPoint CadView::SnapToLines(DevicePoint device, WorldPoint point, const CObjShape* skip)
{
    const int32_t oldNumber = Buf.SnapMarkerUp;
    const WorldPoint oldPoint = Buf.SnapPoint;
    double best = -1.0;
    int32_t bestNumber = 0;
    WorldPoint bestPoint{};
    constexpr int16_t kShownAndFound = LayerActions::Show | LayerActions::Find;
    for (size_t l = Buf.Layers.size(); l-- > 1;) {
        const CadLayer& layer = *Buf.Layers[l];
        if ((layer.Action & kShownAndFound) != kShownAndFound) continue;
        for (size_t i = layer.Shapes.size(); i-- > 0;) {
            CObjShape* shape = layer.Shapes[i].get();
            if (shape->GetShapeType() != bvxLine || shape == skip || !shape->HitTest(device, *this)) continue;
            const WorldPoint end = shape->GetPoint(shape->NearestPoint(device, *this), *this);
            const double distance = Distance(end, point);
            // Later lines are measured from the end already found.
            if (best <= 0 || distance < best) {
                best = distance;
                bestNumber = shape->Number;
                bestPoint = end;
                point = end;
            }
        }
    }
    if (bestNumber == 0) {
        if (oldNumber) InvalidateSnapMarker();
        Buf.SnapMarkerUp = 0;
        return point;
    }
    if (bestNumber != oldNumber || !(bestPoint == oldPoint)) {
        InvalidateSnapMarker();
        Buf.SnapMarkerUp = bestNumber;
        Buf.SnapPoint = bestPoint;
        if (!(bestPoint == oldPoint)) {
            InvalidateSnapMarker();
            Fire<&EventSink::WorldMouseSnap>(int16_t(1), bestPoint.x, bestPoint.y);
        }
    }
    return bestPoint;
}

void CadView::FireWorldMouseMove(int16_t shift, double x, double y, double magnitude, double angle)
{
    if (!Owner) return;
    // The only event whose values are rounded to the view's precisions.
    Owner->WorldMouseMove(shift, RoundTo(x, World.WorldCoordPrecision), RoundTo(y, World.WorldCoordPrecision),
                          RoundTo(magnitude, World.WorldCoordPrecision), RoundTo(angle, World.WorldAnglePrecision));
}

} // namespace bvx
