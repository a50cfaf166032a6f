#include "CTextShape.h"

#include "CRectShape.h"
#include "ShapeContext.h"
#include "buffer/CadFontTable.h"
#include "platform/CodePage.h"
#include "platform/DeviceContext.h"
#include "world/Rounding.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {
constexpr uint8_t kTextType = bvxText;
constexpr int32_t kCaretInset = 3;

DeviceRect BoxOf(const CTextShape::Corners& c)
{
    DeviceRect r{c[0].x, c[0].y, c[0].x, c[0].y};
    for (const DevicePoint& p : c) {
        r.left = std::min(r.left, p.x), r.top = std::min(r.top, p.y);
        r.right = std::max(r.right, p.x), r.bottom = std::max(r.bottom, p.y);
    }
    return r;
}
} // namespace

CTextShape::CTextShape() { SetShapeType(kTextType, 1); }

WorldPoint CTextShape::GetPoint(int16_t index, const ShapeContext&) const { return index == 0 ? Origin : WorldPoint{}; }

void CTextShape::Measure(DeviceContext& dc, int32_t fontHeight, DeviceRect& rect, DevicePoint& anchor,
                         Corners& corners) const
{
    TextMetrics tm;
    dc.GetTextMetricsA(tm);
    const std::string ansi = ToAnsi(Text);
    int32_t cx = 1, cy = std::abs(fontHeight);
    if (!ansi.empty()) {
        DeviceSize size;
        dc.GetTextExtentPoint32A(ansi, size);
        cx = size.cx, cy = size.cy;
        AbcWidth last;
        // The last character's overhang to its right is not the text's.
        if (dc.GetCharABCWidthsA(uint8_t(ansi.back()), uint8_t(ansi.back()), &last)) cx -= last.c;
    }
    const int32_t vertical = Font.Align() == 1   ? (tm.ascent - tm.internalLeading) / 2 + tm.internalLeading
                             : Font.Align() == 2 ? tm.ascent
                             : Font.Align() == 3 ? tm.height
                                                 : 0;
    const int32_t horizontal = Font.Justify() == 1 ? cx / 2 : Font.Justify() == 2 ? cx : 0;
    DevicePoint offset{horizontal, vertical};
    const int32_t turn = Font.Orientation();
    if (turn != 0) RotateDevicePoints({&offset, 1}, turn, {0, 0});
    // Device points may lie anywhere in 32 bits: the sums wrap as the
    // platform's would, without overflowing.
    auto wrap = [](int64_t v) { return WrapToInt32(double(v)); };
    const int64_t left = int64_t(anchor.x) - horizontal, top = int64_t(anchor.y) - vertical;
    rect = {wrap(left), wrap(top), wrap(left + cx + 1), wrap(top + cy + 1)};
    corners = {DevicePoint{rect.left, rect.top}, {rect.right, rect.top}, {rect.right, rect.bottom},
               {rect.left, rect.bottom}, {rect.left, rect.top}};
    if (turn != 0) {
        RotateDevicePoints(corners, turn, anchor);
        rect = BoxOf(corners);
    }
    anchor = {wrap(int64_t(anchor.x) - offset.x), wrap(int64_t(anchor.y) - offset.y)};
}

bool CTextShape::MeasuredCorners(ShapeContext& view, DeviceContext& dc, DeviceRect& rect, Corners& corners)
{
    const CLogFont& slot = view.Fonts().ResolveFont(Font, view.World);
    if (view.World.WorldHeightToDevice(Font.Height) <= 0) return false;
    FontHandle old = dc.SelectFont(slot.Font);
    DevicePoint anchor = view.World.WorldToDevice(Origin);
    Measure(dc, slot.Log.height, rect, anchor, corners);
    if (old) dc.SelectFont(std::move(old));
    return true;
}

void CTextShape::Render(ShapeContext& view, DeviceContext& dc, const DeviceRect& clip, bool paint)
{
    DevicePoint anchor = view.World.WorldToDevice(Origin);
    const CLogFont& slot = view.Fonts().ResolveFont(Font, view.World);
    // Too small to paint: the bounds stay as they were.
    if (view.World.WorldHeightToDevice(Font.Height) <= 0) return;
    FontHandle old = dc.SelectFont(slot.Font);
    DeviceRect rect;
    Corners corners;
    Measure(dc, slot.Log.height, rect, anchor, corners);
    StoreBounds(rect);
    view.CaretX = WrapToInt32(double(corners[1].x) - kCaretInset);
    view.CaretY = WrapToInt32(double(corners[1].y) - kCaretInset);
    if (paint && !rect.Intersected(clip).IsEmpty()) dc.TextOutA(anchor.x, anchor.y, ToAnsi(Text));
    if (old) dc.SelectFont(std::move(old));
}

void CTextShape::Remeasure(ShapeContext& view)
{
    view.WithWindowDC([&](DeviceContext& dc) { Render(view, dc, {}, false); });
}

void CTextShape::AddChar(ShapeContext& view, uint8_t ch)
{
    Text += AnsiToUnicode(ch);
    Remeasure(view);
    view.InvalidateShape(this, true);
}

void CTextShape::Backspace(ShapeContext& view)
{
    if (Text.empty()) return;
    view.InvalidateShape(this, true);
    // Cut in the code page, so that the last character as it is drawn goes.
    std::string ansi = ToAnsi(Text);
    ansi.pop_back();
    Text = FromAnsi(ansi);
    Remeasure(view);
}

void CTextShape::SetText(ShapeContext& view, std::u16string text)
{
    Text = std::move(text);
    Remeasure(view);
}

void CTextShape::SetOrientation(ShapeContext& view, int32_t tenths)
{
    Font.SetOrientation(tenths);
    Remeasure(view);
}

bool CTextShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (view) view->InvalidateShape(this, false);
    if (index != 0) return false;
    Origin = {x, y};
    if (view) Remeasure(*view);
    return true;
}

void CTextShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    ApplyMatrix(matrix, Origin);
    const double turned = view.World.LastRotation;
    if (turned == 0) {
        Font.Width *= matrix.m[0];
        Font.Height *= std::fabs(matrix.m[4]);
    } else {
        // Whole degrees of the old orientation, turned, brought into 0 to
        // 360 (both included) by whole turns.
        double degrees = Font.Orientation() / 10 + turned;
        if (!std::isfinite(degrees)) degrees = 0;
        if (degrees > 360) degrees -= 360 * std::ceil((degrees - 360) / 360);
        if (degrees < 0) degrees += 360 * std::ceil(-degrees / 360);
        Font.SetOrientation(int32_t(std::clamp(degrees, 0.0, 360.0) * 10));
    }
    Remeasure(view);
}

void CTextShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    Render(view, dc, clip, true);
}

void CTextShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    Origin = {Origin.x + delta.x, Origin.y + delta.y};
    Remeasure(view);
}

int32_t CTextShape::HitTest(DevicePoint point, ShapeContext& view)
{
    if (!PtInRect(OrderedRect(BoundsAsRect()), point)) return 0;
    if (Font.Orientation() == 0) return 1;
    DeviceRect rect;
    Corners corners;
    bool measured = false;
    view.WithWindowDC([&](DeviceContext& dc) { measured = MeasuredCorners(view, dc, rect, corners); });
    if (!measured) return 0;
    int crossings = 0;
    for (size_t i = 0; i + 1 < corners.size(); ++i) crossings += HitSegment(corners[i], corners[i + 1], point, 1);
    return crossings % 2;
}

void CTextShape::MoveHandle(int32_t, WorldPoint point, ShapeContext& view)
{
    if (point.x == Origin.x && point.y == Origin.y) return;
    view.InvalidateShape(this, false);
    // The bounds follow at the next paint.
    Origin = point;
}

std::unique_ptr<CObjShape> CTextShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CTextShape>();
    CopyBaseTo(*copy);
    copy->Origin = Origin;
    copy->Text = Text;
    copy->Font = Font;
    copy->SetSearchMethod(1);
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

bool CTextShape::MeasureWorld(ShapeContext& view, WorldRect& rect)
{
    DeviceRect device;
    Corners corners;
    bool measured = false;
    view.WithWindowDC([&](DeviceContext& dc) { measured = MeasuredCorners(view, dc, device, corners); });
    if (!measured) return false;
    const WorldPoint a = view.World.DeviceToWorld({device.left, device.top});
    const WorldPoint b = view.World.DeviceToWorld({device.right, device.bottom});
    rect = {a.x, a.y, b.x, b.y};
    return true;
}

} // namespace bvx
