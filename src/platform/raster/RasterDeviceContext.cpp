// The portable device. Every call reduces to a few primitives on the 32-bit
// surface (SpanPrimitives.h): spans and rectangles of a solid colour or an
// 8x8 pattern, and one-pixel Bresenham runs, each through an AND and an XOR
// mask so that all binary raster operations share one code path. Clipping
// to EffectiveClip() happens once, in the rasterizers that produce spans
// and runs, so the primitives never see a pixel off the surface. A clip of
// several rectangles (ClipRegion.h) cuts those spans and runs once more at
// the same place.
//
// The pixel rules are the platform's GDI in MM_TEXT, as run under Wine; the
// notes beside each call say which rule applies.
#include "RasterDeviceContext.h"

#include "ClipRegion.h"
#include "DashPattern.h"
#include "EllipseGeometry.h"
#include "HatchPatterns.h"
#include "LineRasterizer.h"
#include "PolygonRasterizer.h"
#include "SpanBuffer.h"
#include "SpanPrimitives.h"
#include "WidePen.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace bvx {

using raster::DashPattern;
using raster::DashState;
using raster::LineRun;
using raster::Paint;
using raster::Point64;
using raster::RopMasks;

namespace {

enum InteriorKind { kNoInterior = 0, kPolygonInterior = 1, kRoundRectInterior = 2, kRectInterior = 3 };


// Steps one visible run of a line, handing `plot` each pixel in turn. The
// run's fields are copied to locals first: a store through the pixel pointer
// may alias them, which would reload them for every pixel.
template <typename Plot>
void WalkRun(Bitmap& bitmap, const LineRun& run, Plot&& plot)
{
    uint32_t* base = bitmap.Pixels().data();
    const int64_t stride = bitmap.Width();
    int64_t offset = run.y * stride + run.x;
    const int64_t stepMajor = run.xMajor ? run.sx : run.sy * stride;
    const int64_t stepBoth = stepMajor + (run.xMajor ? run.sy * stride : run.sx);
    const int64_t bound = -int64_t(run.bias); // err + bias > 0
    const int64_t errMinor = run.errMinor, errMajor = run.errMajor;
    int64_t err = run.err;
    for (int64_t i = run.count; i > 0; --i) {
        plot(base[offset]);
        if (err > bound) {
            offset += stepBoth;
            err += errMinor;
        } else {
            offset += stepMajor;
            err += errMajor;
        }
    }
}

// The pixels a segment can touch.
DeviceRect SegmentBox(const Point64& a, const Point64& b)
{
    auto c = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
    return {c(std::min(a.x, b.x)), c(std::min(a.y, b.y)), c(std::max(a.x, b.x) + 1), c(std::max(a.y, b.y) + 1)};
}

void DrawSolidRun(Bitmap& bitmap, const LineRun& run, RopMasks masks)
{
    if (run.errMajor == 0 && run.xMajor) {
        // Horizontal: one span.
        const int64_t x0 = run.sx > 0 ? run.x : run.x - run.count + 1;
        raster::FillSpan(bitmap.Row(int32_t(run.y)).data() + x0, int32_t(run.count), masks);
        return;
    }
    if (masks.andMask == 0) {
        // Stores alone: no load waits on a cache line of the surface.
        WalkRun(bitmap, run, [v = masks.xorMask](uint32_t& pixel) { pixel = v; });
        return;
    }
    WalkRun(bitmap, run, [masks](uint32_t& pixel) { pixel = masks.Apply(pixel); });
}

} // namespace

// How the selected pen draws.
struct RasterDeviceContext::Stroke {
    enum class Kind { Null, Solid, Dashed, Wide } kind = Kind::Solid;
    int32_t width = 1; // device width: 0 for the null pen
    bool insideFrame = false;
    RopMasks fg{};
    RopMasks bg{}; // gaps of dashed pens: the back colour when opaque, else untouched
    DashPattern pattern{};
};

struct RasterDeviceContext::Scratch {
    std::vector<Point64> points;
    int64_t box[4] = {};
    int64_t ew = 0, eh = 0;
    raster::PolygonRasterizer polygon;
    raster::RoundRectScanner roundRect;
    raster::WidePenOutliner outliner;
    raster::SpanBuffer outline;
    raster::SpanBuffer interior;
    std::vector<uint32_t> row;
};

namespace {

bool ValidPen(const Pen& pen)
{
    const int32_t s = int32_t(pen.style);
    // PS_USERSTYLE from CreatePen draws as a solid pen of its width and
    // colour (there are no style entries to follow); unknown styles make no
    // pen, so selecting one changes nothing.
    return s >= 0 && s <= int32_t(PenStyle::UserStyle);
}

Paint BrushPaint(const Brush* brush, Rop2 rop, BackMode mode, ColorRef back)
{
    if (!brush) return Paint::Nop();
    switch (brush->style) {
    case BrushStyle::Solid: return Paint::Solid(raster::MasksFor(rop, brush->color));
    case BrushStyle::Hatched: {
        const RopMasks fg = raster::MasksFor(rop, brush->color);
        const RopMasks bg = mode == BackMode::Opaque ? raster::MasksFor(rop, back) : RopMasks{};
        return Paint::Pattern(raster::HatchBits(brush->hatch), fg, bg);
    }
    default: return Paint::Nop();
    }
}

} // namespace

RasterDeviceContext::RasterDeviceContext(BitmapHandle bitmap, int32_t dpiX, int32_t dpiY)
    : dpiX_(dpiX), dpiY_(dpiY), scratch_(std::make_unique<Scratch>())
{
    state_.bitmap = std::move(bitmap);
    // The platform's defaults: BLACK_PEN and WHITE_BRUSH.
    state_.pen = CreatePen(PenStyle::Solid, 0, kBlack);
    state_.brush = CreateSolidBrush(kWhite);
}

RasterDeviceContext::~RasterDeviceContext() = default;

// ---- selection and attributes -------------------------------------------

PenHandle RasterDeviceContext::SelectPen(PenHandle pen)
{
    if (!pen || !ValidPen(*pen)) return nullptr;
    std::swap(pen, state_.pen);
    return pen;
}

BrushHandle RasterDeviceContext::SelectBrush(BrushHandle brush)
{
    if (!brush) return nullptr;
    std::swap(brush, state_.brush);
    return brush;
}

FontHandle RasterDeviceContext::SelectFont(FontHandle font)
{
    if (!font) return nullptr;
    std::swap(font, state_.font);
    return font;
}

BitmapHandle RasterDeviceContext::SelectBitmap(BitmapHandle bitmap)
{
    if (!bitmap) return nullptr;
    std::swap(bitmap, state_.bitmap);
    return bitmap;
}

BackMode RasterDeviceContext::SetBkMode(BackMode mode)
{
    if (mode != BackMode::Opaque && mode != BackMode::Transparent) return BackMode(0);
    return std::exchange(state_.backMode, mode);
}

ColorRef RasterDeviceContext::SetBkColor(ColorRef color) { return std::exchange(state_.backColor, color & 0xFFFFFF); }

ColorRef RasterDeviceContext::SetTextColor(ColorRef color)
{
    return std::exchange(state_.textColor, color & 0xFFFFFF);
}

PolyFillMode RasterDeviceContext::SetPolyFillMode(PolyFillMode mode)
{
    if (mode != PolyFillMode::Alternate && mode != PolyFillMode::Winding) return PolyFillMode(0);
    return std::exchange(state_.fillMode, mode);
}

Rop2 RasterDeviceContext::SetROP2(Rop2 rop)
{
    if (int32_t(rop) < 1 || int32_t(rop) > 16) return Rop2(0);
    return std::exchange(state_.rop2, rop);
}

DeviceRect RasterDeviceContext::EffectiveClip() const
{
    if (!state_.bitmap) return {};
    DeviceRect r{0, 0, state_.bitmap->Width(), state_.bitmap->Height()};
    if (state_.hasClip) r = r.Intersected(state_.clip);
    return r;
}

raster::ClipRegion RasterDeviceContext::Clip() const { return {EffectiveClip(), state_.region.get()}; }

RasterDeviceContext::Stroke RasterDeviceContext::CurrentStroke() const
{
    Stroke s;
    const Pen& pen = *state_.pen;
    if (pen.style == PenStyle::Null) {
        s.kind = Stroke::Kind::Null;
        s.width = 0;
        return s;
    }
    const int64_t w = std::llabs(int64_t(pen.width));
    s.width = int32_t(std::clamp<int64_t>(w, 1, INT32_MAX));
    s.insideFrame = pen.style == PenStyle::InsideFrame;
    s.fg = raster::MasksFor(state_.rop2, pen.color);
    if (s.width > 1) {
        // Wide pens of CreatePen are never dashed: they draw solid.
        s.kind = Stroke::Kind::Wide;
    } else if (pen.style >= PenStyle::Dash && pen.style <= PenStyle::DashDotDot) {
        s.kind = Stroke::Kind::Dashed;
        s.pattern = raster::CosmeticDashPattern(pen.style);
        s.bg = state_.backMode == BackMode::Opaque ? raster::MasksFor(state_.rop2, state_.backColor) : RopMasks{};
    }
    return s;
}

// ---- strokes and fills --------------------------------------------------

void RasterDeviceContext::StrokeThin(const Stroke& stroke, bool closed)
{
    if (stroke.kind == Stroke::Kind::Null) return;
    const std::vector<Point64>& pts = scratch_->points;
    if (pts.size() < 2) return;
    Bitmap& bitmap = *state_.bitmap;
    const raster::ClipRegion clip = Clip();
    const size_t segments = closed ? pts.size() : pts.size() - 1;
    // A segment is clipped to each clip rectangle it meets; they never
    // overlap, so no pixel is drawn twice.
    auto eachRun = [&](const Point64& a, const Point64& b, auto&& draw) {
        clip.ForEachRect(SegmentBox(a, b), [&](const DeviceRect& r) {
            LineRun run;
            if (raster::ClipLine(a, b, r, run)) draw(run);
        });
    };
    if (stroke.kind == Stroke::Kind::Solid) {
        if (stroke.fg.IsNop()) return;
        for (size_t i = 0; i < segments; ++i)
            eachRun(pts[i], pts[i + 1 == pts.size() ? 0 : i + 1],
                    [&](const LineRun& run) { DrawSolidRun(bitmap, run, stroke.fg); });
        return;
    }
    // Dashed: the pattern runs on along the whole figure.
    DashState dash;
    dash.Reset(stroke.pattern);
    for (size_t i = 0; i < segments; ++i) {
        const Point64& a = pts[i];
        const Point64& b = pts[i + 1 == pts.size() ? 0 : i + 1];
        const DashState start = dash;
        eachRun(a, b, [&](const LineRun& run) {
            dash = start;
            dash.Skip(uint64_t(run.skipped));
            WalkRun(bitmap, run, [&](uint32_t& pixel) {
                pixel = (dash.mark ? stroke.fg : stroke.bg).Apply(pixel);
                dash.Step();
            });
        });
        dash = start;
        const int64_t length = std::max(std::llabs(b.x - a.x), std::llabs(b.y - a.y));
        dash.Skip(uint64_t(length));
    }
}

bool RasterDeviceContext::StrokeAndFill(const Stroke& stroke, bool closed, int interiorKind, PolyFillMode fillMode)
{
    raster::ClipRegion region = Clip();
    const DeviceRect& clip = region.Box();
    if (clip.IsEmpty()) return true;
    Scratch& sc = *scratch_;
    Bitmap& bitmap = *state_.bitmap;
    const Paint brush = interiorKind == kNoInterior
                            ? Paint::Nop()
                            : BrushPaint(state_.brush.get(), state_.rop2, state_.backMode, state_.backColor);
    const bool fill = interiorKind != kNoInterior && state_.brush && state_.brush->style != BrushStyle::Null &&
                      !brush.IsNop();

    auto interior = [&](auto&& sink) {
        switch (interiorKind) {
        case kPolygonInterior:
            sc.polygon.Scan(sc.points, fillMode, clip.top, clip.bottom, clip.left, clip.right, sink);
            break;
        case kRoundRectInterior:
            sc.roundRect.Scan(sc.box[0], sc.box[1], sc.box[2], sc.box[3], sc.ew, sc.eh, clip.top, clip.bottom,
                              clip.left, clip.right, sink);
            break;
        case kRectInterior: {
            const int64_t l = std::max<int64_t>(sc.box[0], clip.left), r = std::min<int64_t>(sc.box[2], clip.right);
            const int64_t t = std::max<int64_t>(sc.box[1], clip.top), b = std::min<int64_t>(sc.box[3], clip.bottom);
            if (l < r)
                for (int64_t y = t; y < b; ++y) sink(int32_t(y), int32_t(l), int32_t(r));
            break;
        }
        default: break;
        }
    };

    // The rasterizers keep to the box; the clip's rectangles cut further.
    auto paintClipped = [&](const Paint& paint, int32_t y, int32_t x0, int32_t x1) {
        region.ForEachSpan(y, x0, x1, [&](int32_t a, int32_t b) { paint.Span(bitmap, y, a, b); });
    };
    if (stroke.kind != Stroke::Kind::Wide) {
        // The interior first; the outline then draws over it. Busy fills
        // give many short spans: with one clip rectangle they go straight
        // to the brush.
        if (fill && region.IsRect()) {
            interior([&](int32_t y, int32_t x0, int32_t x1) { brush.Span(bitmap, y, x0, x1); });
        } else if (fill) {
            interior([&](int32_t y, int32_t x0, int32_t x1) { paintClipped(brush, y, x0, x1); });
        }
        StrokeThin(stroke, closed);
        return true;
    }
    // A wide outline is a region of its own; the interior excludes it, so
    // that each pixel is painted once whatever the raster operation.
    sc.outline.Clear();
    sc.outliner.Outline(sc.points, closed, stroke.width, clip, sc.outline);
    sc.outline.Normalize();
    if (fill) {
        sc.interior.Clear();
        interior([&](int32_t y, int32_t x0, int32_t x1) { sc.interior.Add(y, x0, x1); });
        sc.interior.Normalize();
        sc.interior.Subtract(sc.outline);
        for (const raster::RowSpan& s : sc.interior.Spans()) paintClipped(brush, s.y, s.x0, s.x1);
    }
    const Paint pen = Paint::Solid(stroke.fg);
    for (const raster::RowSpan& s : sc.outline.Spans()) paintClipped(pen, s.y, s.x0, s.x1);
    return true;
}

DevicePoint RasterDeviceContext::MoveToEx(int32_t x, int32_t y) { return std::exchange(state_.position, {x, y}); }

bool RasterDeviceContext::LineTo(int32_t x, int32_t y)
{
    const DevicePoint from = std::exchange(state_.position, {x, y});
    if (!state_.bitmap) return true;
    const Stroke stroke = CurrentStroke();
    std::vector<Point64>& pts = scratch_->points;
    pts.clear();
    pts.push_back({from.x, from.y});
    pts.push_back({x, y});
    if (stroke.kind == Stroke::Kind::Solid && !state_.region) {
        // The hot path: one segment, no interior, one clip rectangle.
        LineRun run;
        if (!stroke.fg.IsNop() && raster::ClipLine(pts[0], pts[1], EffectiveClip(), run))
            DrawSolidRun(*state_.bitmap, run, stroke.fg);
        return true;
    }
    return StrokeAndFill(stroke, false, kNoInterior, state_.fillMode);
}

bool RasterDeviceContext::Polyline(std::span<const DevicePoint> points)
{
    if (points.size() < 2) return false;
    if (!state_.bitmap) return true;
    std::vector<Point64>& pts = scratch_->points;
    pts.clear();
    for (const DevicePoint& p : points) pts.push_back({p.x, p.y});
    return StrokeAndFill(CurrentStroke(), false, kNoInterior, state_.fillMode);
}

bool RasterDeviceContext::Polygon(std::span<const DevicePoint> points)
{
    if (points.size() < 2) return false;
    if (!state_.bitmap) return true;
    std::vector<Point64>& pts = scratch_->points;
    pts.clear();
    for (const DevicePoint& p : points) pts.push_back({p.x, p.y});
    return StrokeAndFill(CurrentStroke(), true, kPolygonInterior, state_.fillMode);
}

// The box a pen draws a bounded figure in: normalized, empty when either
// side is zero; an inside-frame pen pulls it in so that the whole width of
// the line lies within the box.
bool RasterDeviceContext::PenDeviceRect(const Stroke& stroke, int64_t& left, int64_t& top, int64_t& right,
                                        int64_t& bottom) const
{
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
    if (left == right || top == bottom) return false;
    if (stroke.insideFrame) {
        left += stroke.width / 2;
        top += stroke.width / 2;
        right -= (stroke.width - 1) / 2;
        bottom -= (stroke.width - 1) / 2;
    }
    return true;
}

bool RasterDeviceContext::DrawRectangle(const Stroke& stroke, int64_t left, int64_t top, int64_t right,
                                        int64_t bottom)
{
    if (!PenDeviceRect(stroke, left, top, right, bottom)) return true;
    // The outline runs through the last column and row inside the box,
    // counter-clockwise from the top right.
    --right;
    --bottom;
    Scratch& sc = *scratch_;
    sc.points.assign({{right, top}, {left, top}, {left, bottom}, {right, bottom}});
    if (stroke.kind == Stroke::Kind::Wide) {
        sc.box[0] = left;
        sc.box[1] = top;
        sc.box[2] = right;
        sc.box[3] = bottom;
    } else {
        // The interior stops short of the pen: a one-pixel pen covers the
        // box's edge pixels; with the null pen the fill covers the box less
        // its last column and row.
        sc.box[0] = left + (stroke.width + 1) / 2;
        sc.box[1] = top + (stroke.width + 1) / 2;
        sc.box[2] = right - stroke.width / 2;
        sc.box[3] = bottom - stroke.width / 2;
    }
    return StrokeAndFill(stroke, true, kRectInterior, state_.fillMode);
}

bool RasterDeviceContext::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    if (!state_.bitmap) return true;
    return DrawRectangle(CurrentStroke(), left, top, right, bottom);
}

bool RasterDeviceContext::RoundRect(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t ellipseWidth,
                                    int32_t ellipseHeight)
{
    if (!state_.bitmap) return true;
    const Stroke stroke = CurrentStroke();
    int64_t l = left, t = top, r = right, b = bottom;
    if (!PenDeviceRect(stroke, l, t, r, b)) return true;
    const int64_t ew = std::min<int64_t>(r - l, std::llabs(int64_t(ellipseWidth)));
    const int64_t eh = std::min<int64_t>(b - t, std::llabs(int64_t(ellipseHeight)));
    // Corners of two pixels or less draw a plain rectangle.
    if (ew <= 2 || eh <= 2) return DrawRectangle(stroke, left, top, right, bottom);
    Scratch& sc = *scratch_;
    raster::RoundRectOutline(l, t, r, b, ew, eh, sc.points);
    sc.box[0] = l;
    sc.box[1] = t;
    sc.box[2] = r;
    sc.box[3] = b;
    sc.ew = ew;
    sc.eh = eh;
    return StrokeAndFill(stroke, true, kRoundRectInterior, state_.fillMode);
}

bool RasterDeviceContext::Ellipse(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    const int64_t w = std::llabs(int64_t(right) - left), h = std::llabs(int64_t(bottom) - top);
    return RoundRect(left, top, right, bottom, int32_t(std::min<int64_t>(w, INT32_MAX)),
                     int32_t(std::min<int64_t>(h, INT32_MAX)));
}

bool RasterDeviceContext::DrawArc(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                                  int32_t yStart, int32_t xEnd, int32_t yEnd, int kind)
{
    if (!state_.bitmap) return true;
    const Stroke stroke = CurrentStroke();
    int64_t l = left, t = top, r = right, b = bottom;
    if (!PenDeviceRect(stroke, l, t, r, b)) return true;
    const int64_t w = r - l, h = b - t;
    const Point64 centre{l + w / 2, t + h / 2};
    // The radials through the start and end points, relative to the centre;
    // the arc runs counter-clockwise (the default arc direction) from one to
    // the other, the whole ellipse when they meet.
    Scratch& sc = *scratch_;
    raster::ArcOutline(l, t, r, b, {xStart - centre.x, yStart - centre.y}, {xEnd - centre.x, yEnd - centre.y},
                       sc.points);
    if (kind == 2) sc.points.push_back(centre); // a pie closes through the centre
    if (sc.points.size() < 2) return true;
    // An arc is open (its last point stays undrawn); chords and pies close
    // and fill with the winding rule.
    return StrokeAndFill(stroke, kind > 0, kind > 0 ? kPolygonInterior : kNoInterior, PolyFillMode::Winding);
}

bool RasterDeviceContext::Arc(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                              int32_t yStart, int32_t xEnd, int32_t yEnd)
{
    return DrawArc(left, top, right, bottom, xStart, yStart, xEnd, yEnd, 0);
}

bool RasterDeviceContext::Pie(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                              int32_t yStart, int32_t xEnd, int32_t yEnd)
{
    return DrawArc(left, top, right, bottom, xStart, yStart, xEnd, yEnd, 2);
}

bool RasterDeviceContext::Chord(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                                int32_t yStart, int32_t xEnd, int32_t yEnd)
{
    return DrawArc(left, top, right, bottom, xStart, yStart, xEnd, yEnd, 1);
}

// ---- blits and pixels ---------------------------------------------------

// The rectangle of a blit at (x, y) of the given size: a negative size
// extends to the left of (or above) x + 1, as the platform mirrors it.
bool RasterDeviceContext::PatRect(int64_t x, int64_t y, int64_t width, int64_t height, const Brush* brush, Rop2 rop)
{
    if (!state_.bitmap) return true;
    int64_t l = x, r = x + width, t = y, b = y + height;
    if (l > r) {
        const int64_t tmp = l;
        l = r + 1;
        r = tmp + 1;
    }
    if (t > b) {
        const int64_t tmp = t;
        t = b + 1;
        b = tmp + 1;
    }
    const raster::ClipRegion region = Clip();
    const DeviceRect& clip = region.Box();
    const DeviceRect rect{int32_t(std::clamp<int64_t>(l, clip.left, clip.right)),
                          int32_t(std::clamp<int64_t>(t, clip.top, clip.bottom)),
                          int32_t(std::clamp<int64_t>(r, clip.left, clip.right)),
                          int32_t(std::clamp<int64_t>(b, clip.top, clip.bottom))};
    if (rect.IsEmpty()) return true;
    // The operations that ignore the pattern paint the whole rectangle
    // whatever the brush (BLACKNESS, WHITENESS, DSTINVERT even with a null
    // brush); the others go through the brush, hatch gaps included.
    const bool patternFree = rop == Rop2::Black || rop == Rop2::White || rop == Rop2::Not || rop == Rop2::Nop;
    const Paint paint = patternFree ? Paint::Solid(raster::MasksFor(rop, 0))
                                    : BrushPaint(brush, rop, state_.backMode, state_.backColor);
    region.ForEachRect(rect, [&](const DeviceRect& part) { paint.Rect(*state_.bitmap, part); });
    return true;
}

bool RasterDeviceContext::PatBlt(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t rop)
{
    if (raster::Rop3UsesSource(rop)) return false;
    return PatRect(x, y, width, height, state_.brush.get(), raster::Rop2FromRop3(rop));
}

bool RasterDeviceContext::BitBlt(int32_t x, int32_t y, int32_t width, int32_t height, const DeviceContext& source,
                                 int32_t xSource, int32_t ySource, uint32_t rop)
{
    if (!raster::Rop3UsesSource(rop)) return PatBlt(x, y, width, height, rop);
    if (!state_.bitmap) return false;
    const BitmapHandle src = source.CurrentBitmap();
    if (!src) return false;
    if (width <= 0 || height <= 0) return true;
    // The destination rectangle, clipped to this device and to the part
    // the source surface can supply.
    const int64_t shiftX = int64_t(xSource) - x, shiftY = int64_t(ySource) - y;
    raster::ClipRegion region = Clip();
    const DeviceRect& clip = region.Box();
    const int64_t l = std::max<int64_t>({int64_t(x), clip.left, -shiftX});
    const int64_t t = std::max<int64_t>({int64_t(y), clip.top, -shiftY});
    const int64_t r = std::min<int64_t>({int64_t(x) + width, clip.right, src->Width() - shiftX});
    const int64_t b = std::min<int64_t>({int64_t(y) + height, clip.bottom, src->Height() - shiftY});
    if (l >= r || t >= b) return true;
    Bitmap& dst = *state_.bitmap;
    const int32_t count = int32_t(r - l);
    const bool same = src.get() == &dst;
    const bool upwards = same && shiftY < 0; // copy bottom rows first when moving down
    const uint8_t code = uint8_t(rop >> 16);
    const Paint pattern = raster::Rop3UsesPattern(rop)
                              ? BrushPaint(state_.brush.get(), Rop2::CopyPen, state_.backMode, state_.backColor)
                              : Paint::Nop();
    std::vector<uint32_t>& row = scratch_->row;
    row.resize(size_t(count));
    for (int64_t i = 0; i < b - t; ++i) {
        const int32_t dy = int32_t(upwards ? b - 1 - i : t + i);
        const uint32_t* s = src->Row(int32_t(dy + shiftY)).data() + (l + shiftX);
        uint32_t* d = dst.Row(dy).data() + l;
        if (rop == RasterOp::SrcCopy && region.IsRect()) {
            std::memmove(d, s, size_t(count) * sizeof(uint32_t));
            continue;
        }
        // The source row is read whole before any of it is written: with
        // several clip spans in the row, one may overwrite what another reads.
        std::memcpy(row.data(), s, size_t(count) * sizeof(uint32_t));
        region.ForEachSpan(dy, int32_t(l), int32_t(r), [&](int32_t x0, int32_t x1) {
            const size_t first = size_t(x0 - l), last = size_t(x1 - l);
            if (rop == RasterOp::SrcCopy) {
                std::memcpy(d + first, row.data() + first, (last - first) * sizeof(uint32_t));
                return;
            }
            for (size_t k = first; k < last; ++k) {
                const uint32_t p = pattern.At(int32_t(l + int64_t(k)), dy).xorMask;
                d[k] = raster::ApplyRop3(code, p, row[k], d[k]);
            }
        });
    }
    return true;
}

bool RasterDeviceContext::SetPixelV(int32_t x, int32_t y, ColorRef color)
{
    if (!state_.bitmap) return false;
    // The pixel goes through the current ROP2, as the platform's does.
    if (Clip().Contains(x, y)) {
        uint32_t& p = state_.bitmap->Row(y)[size_t(x)];
        p = raster::MasksFor(state_.rop2, color).Apply(p);
    }
    return true;
}

ColorRef RasterDeviceContext::GetPixel(int32_t x, int32_t y) const
{
    if (!state_.bitmap) return 0xFFFFFFFF;
    const Bitmap& b = *state_.bitmap;
    if (x < 0 || y < 0 || x >= b.Width() || y >= b.Height()) return 0xFFFFFFFF;
    return b.Pixel(x, y) & raster::kColorBits;
}

bool RasterDeviceContext::FillRect(const DeviceRect& rect, const Brush& brush)
{
    // PatBlt(PATCOPY) of the rectangle with the brush: right and bottom excluded.
    return PatRect(rect.left, rect.top, int64_t(rect.right) - rect.left, int64_t(rect.bottom) - rect.top, &brush,
                   Rop2::CopyPen);
}

bool RasterDeviceContext::FrameRect(const DeviceRect& rect, const Brush& brush)
{
    if (rect.right <= rect.left || rect.bottom <= rect.top) return false;
    const int64_t w = int64_t(rect.right) - rect.left, h = int64_t(rect.bottom) - rect.top;
    PatRect(rect.left, rect.top, 1, h, &brush, Rop2::CopyPen);
    PatRect(int64_t(rect.right) - 1, rect.top, 1, h, &brush, Rop2::CopyPen);
    PatRect(rect.left, rect.top, w, 1, &brush, Rop2::CopyPen);
    PatRect(rect.left, int64_t(rect.bottom) - 1, w, 1, &brush, Rop2::CopyPen);
    return true;
}

bool RasterDeviceContext::DrawFocusRect(const DeviceRect& rect)
{
    if (!state_.bitmap) return false;
    // A rectangle outline with the alternate pen (every other pixel along
    // the outline, from the top right counter-clockwise) inverting what is
    // there, no fill: drawing it twice restores the pixels.
    Stroke stroke;
    stroke.kind = Stroke::Kind::Dashed;
    stroke.width = 1;
    stroke.fg = raster::MasksFor(Rop2::XorPen, kWhite);
    stroke.bg = RopMasks{};
    stroke.pattern = raster::AlternatePattern();
    const BrushHandle brush = std::exchange(state_.brush, CreateNullBrush());
    DrawRectangle(stroke, rect.left, rect.top, rect.right, rect.bottom);
    state_.brush = brush;
    return true;
}

// ---- clipping and state -------------------------------------------------

void RasterDeviceContext::SetClip(Region region)
{
    state_.hasClip = true;
    state_.clip = region.GetRgnBox();
    state_.region = region.IsEmpty() || region.IsRect() ? nullptr : std::make_shared<const Region>(std::move(region));
}

bool RasterDeviceContext::IntersectClipRect(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    const DeviceRect r = DeviceRect{left, top, right, bottom}.Normalized();
    if (state_.region) {
        SetClip(state_.region->Intersected(r));
        return true;
    }
    state_.clip = state_.hasClip ? state_.clip.Intersected(r) : (r.IsEmpty() ? DeviceRect{} : r);
    state_.hasClip = true;
    return true;
}

void RasterDeviceContext::SelectClipRegion(const DeviceRect* rect)
{
    state_.region = nullptr;
    if (!rect) {
        state_.hasClip = false;
        state_.clip = {};
        return;
    }
    const DeviceRect r = rect->Normalized();
    state_.clip = r.IsEmpty() ? DeviceRect{} : r;
    state_.hasClip = true;
}

void RasterDeviceContext::SelectClipRects(std::span<const DeviceRect> rects) { SetClip(CreateRectsRgn(rects)); }

int32_t RasterDeviceContext::SaveDC()
{
    saved_.push_back(state_);
    return int32_t(saved_.size());
}

bool RasterDeviceContext::RestoreDC(int32_t saved)
{
    const int64_t depth = int64_t(saved_.size());
    // A negative value counts back from the most recent save.
    const int64_t level = saved < 0 ? depth + saved + 1 : saved;
    if (level <= 0 || level > depth) return false;
    state_ = std::move(saved_[size_t(level - 1)]);
    saved_.resize(size_t(level - 1));
    return true;
}

std::unique_ptr<DeviceContext> RasterDeviceContext::CreateCompatibleDC() const
{
    return std::make_unique<RasterDeviceContext>(nullptr, dpiX_, dpiY_);
}

} // namespace bvx
