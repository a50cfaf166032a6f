// The raster device against cairo's image surface with antialiasing off,
// doing the same work on a 1920 by 1080 surface, whole or clipped to an
// update region of several rectangles.
#include "RatioReporter.h"
#include "platform/raster/RasterDeviceContext.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace bvx;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

struct Segment {
    int x0, y0, x1, y1;
};

const std::vector<Segment>& RandomSegments()
{
    static const std::vector<Segment> segments = [] {
        std::mt19937 rng(1234);
        std::uniform_int_distribution<int> x(0, kWidth - 1), y(0, kHeight - 1);
        std::vector<Segment> s(100000);
        for (auto& seg : s) seg = {x(rng), y(rng), x(rng), y(rng)};
        return s;
    }();
    return segments;
}

const std::vector<DeviceRect>& RandomEllipses()
{
    static const std::vector<DeviceRect> boxes = [] {
        std::mt19937 rng(99);
        std::uniform_int_distribution<int> x(0, kWidth - 100), y(0, kHeight - 100), size(10, 100);
        std::vector<DeviceRect> b(10000);
        for (auto& r : b) {
            int l = x(rng), t = y(rng);
            r = {l, t, l + size(rng), t + size(rng)};
        }
        return b;
    }();
    return boxes;
}

// A closed walk of 1000 vertices jumping across the surface: it crosses
// itself thousands of times, so the two fill rules differ.
const std::vector<DevicePoint>& CrossingPolygon()
{
    static const std::vector<DevicePoint> points = [] {
        std::mt19937 rng(7);
        std::uniform_int_distribution<int> x(0, kWidth - 1), y(0, kHeight - 1);
        std::vector<DevicePoint> p(1000);
        for (auto& pt : p) pt = {x(rng), y(rng)};
        return p;
    }();
    return points;
}

// An update region of sixteen rectangles: a 4 by 4 grid of cells, each
// 400 by 200 with gaps between them, so that most figures cross several.
const std::vector<DeviceRect>& ClipGrid()
{
    static const std::vector<DeviceRect> rects = [] {
        std::vector<DeviceRect> r;
        for (int row = 0; row < 4; ++row)
            for (int col = 0; col < 4; ++col)
                r.push_back({col * 480 + 40, row * 270 + 35, col * 480 + 440, row * 270 + 235});
        return r;
    }();
    return rects;
}

// ---- ours ---------------------------------------------------------------

struct OurSurface {
    BitmapHandle bitmap = CreateBitmap(kWidth, kHeight);
    RasterDeviceContext dc{bitmap};
};

void SolidFillOurs(benchmark::State& state)
{
    OurSurface s;
    Brush brush{BrushStyle::Solid, {}, MakeRgb(10, 200, 30)};
    for (auto _ : state) {
        s.dc.FillRect({0, 0, kWidth, kHeight}, brush);
        benchmark::DoNotOptimize(s.bitmap->Pixels().data());
    }
}

void LinesOurs(benchmark::State& state, bool clipped)
{
    OurSurface s;
    if (clipped) s.dc.SelectClipRects(ClipGrid());
    s.dc.SelectPen(CreatePen(PenStyle::Solid, 1, MakeRgb(200, 0, 0)));
    for (auto _ : state) {
        for (const Segment& seg : RandomSegments()) {
            s.dc.MoveToEx(seg.x0, seg.y0);
            s.dc.LineTo(seg.x1, seg.y1);
        }
        benchmark::DoNotOptimize(s.bitmap->Pixels().data());
    }
}

void HatchedEllipsesOurs(benchmark::State& state, bool clipped)
{
    OurSurface s;
    if (clipped) s.dc.SelectClipRects(ClipGrid());
    s.dc.SelectPen(CreatePen(PenStyle::Null, 1, 0));
    s.dc.SelectBrush(CreateHatchBrush(HatchStyle::DiagCross, MakeRgb(0, 0, 200)));
    s.dc.SetBkMode(BackMode::Transparent);
    for (auto _ : state) {
        for (const DeviceRect& r : RandomEllipses()) s.dc.Ellipse(r.left, r.top, r.right, r.bottom);
        benchmark::DoNotOptimize(s.bitmap->Pixels().data());
    }
}

void PolygonOurs(benchmark::State& state, PolyFillMode mode)
{
    OurSurface s;
    s.dc.SelectPen(CreatePen(PenStyle::Null, 1, 0));
    s.dc.SelectBrush(CreateSolidBrush(MakeRgb(0, 120, 120)));
    s.dc.SetPolyFillMode(mode);
    for (auto _ : state) {
        s.dc.Polygon(CrossingPolygon());
        benchmark::DoNotOptimize(s.bitmap->Pixels().data());
    }
}

// ---- cairo --------------------------------------------------------------

struct CairoSurface {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* cr = cairo_create(surface);
    CairoSurface() { cairo_set_antialias(cr, CAIRO_ANTIALIAS_NONE); }
    ~CairoSurface()
    {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    void Touch() const { benchmark::DoNotOptimize(cairo_image_surface_get_data(surface)); }
    void Clip(bool clipped)
    {
        if (!clipped) return;
        for (const DeviceRect& r : ClipGrid()) cairo_rectangle(cr, r.left, r.top, r.Width(), r.Height());
        cairo_clip(cr);
    }
};

void SolidFillCairo(benchmark::State& state)
{
    CairoSurface s;
    cairo_set_source_rgb(s.cr, 10 / 255.0, 200 / 255.0, 30 / 255.0);
    for (auto _ : state) {
        cairo_rectangle(s.cr, 0, 0, kWidth, kHeight);
        cairo_fill(s.cr);
        cairo_surface_flush(s.surface);
        s.Touch();
    }
}

void LinesCairo(benchmark::State& state, bool clipped)
{
    CairoSurface s;
    s.Clip(clipped);
    cairo_set_source_rgb(s.cr, 200 / 255.0, 0, 0);
    cairo_set_line_width(s.cr, 1.0);
    for (auto _ : state) {
        for (const Segment& seg : RandomSegments()) {
            // Pixel centres, as a one-pixel line is meant.
            cairo_move_to(s.cr, seg.x0 + 0.5, seg.y0 + 0.5);
            cairo_line_to(s.cr, seg.x1 + 0.5, seg.y1 + 0.5);
            cairo_stroke(s.cr);
        }
        cairo_surface_flush(s.surface);
        s.Touch();
    }
}

cairo_pattern_t* CairoDiagCrossHatch()
{
    cairo_surface_t* tile = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 8, 8);
    auto* data = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(tile));
    int stride = cairo_image_surface_get_stride(tile) / 4;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) data[y * stride + x] = (x == y || x == 7 - y) ? 0xFF0000C8u : 0u;
    cairo_surface_mark_dirty(tile);
    cairo_pattern_t* pattern = cairo_pattern_create_for_surface(tile);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_REPEAT);
    cairo_pattern_set_filter(pattern, CAIRO_FILTER_NEAREST);
    cairo_surface_destroy(tile);
    return pattern;
}

void HatchedEllipsesCairo(benchmark::State& state, bool clipped)
{
    CairoSurface s;
    s.Clip(clipped);
    cairo_pattern_t* hatch = CairoDiagCrossHatch();
    cairo_set_source(s.cr, hatch);
    for (auto _ : state) {
        for (const DeviceRect& r : RandomEllipses()) {
            double w = r.right - r.left, h = r.bottom - r.top;
            cairo_save(s.cr);
            cairo_translate(s.cr, r.left + w / 2, r.top + h / 2);
            cairo_scale(s.cr, w / 2, h / 2);
            cairo_arc(s.cr, 0, 0, 1, 0, 2 * std::numbers::pi);
            cairo_restore(s.cr);
            cairo_fill(s.cr);
        }
        cairo_surface_flush(s.surface);
        s.Touch();
    }
    cairo_pattern_destroy(hatch);
}

void PolygonCairo(benchmark::State& state, cairo_fill_rule_t rule)
{
    CairoSurface s;
    cairo_set_source_rgb(s.cr, 0, 120 / 255.0, 120 / 255.0);
    cairo_set_fill_rule(s.cr, rule);
    for (auto _ : state) {
        const auto& points = CrossingPolygon();
        cairo_move_to(s.cr, points[0].x, points[0].y);
        for (size_t i = 1; i < points.size(); ++i) cairo_line_to(s.cr, points[i].x, points[i].y);
        cairo_close_path(s.cr);
        cairo_fill(s.cr);
        cairo_surface_flush(s.surface);
        s.Touch();
    }
}

} // namespace

BENCHMARK(SolidFillOurs)->Name("solid_fill_1920x1080/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(SolidFillCairo)->Name("solid_fill_1920x1080/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinesOurs, whole, false)->Name("lines_100000/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinesCairo, whole, false)->Name("lines_100000/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(HatchedEllipsesOurs, whole, false)
    ->Name("hatched_ellipses_10000/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(HatchedEllipsesCairo, whole, false)
    ->Name("hatched_ellipses_10000/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinesOurs, grid, true)->Name("lines_100000_16_rects/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LinesCairo, grid, true)->Name("lines_100000_16_rects/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(HatchedEllipsesOurs, grid, true)
    ->Name("hatched_ellipses_16_rects/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(HatchedEllipsesCairo, grid, true)
    ->Name("hatched_ellipses_16_rects/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PolygonOurs, alt, PolyFillMode::Alternate)
    ->Name("polygon_1000_alternate/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PolygonCairo, alt, CAIRO_FILL_RULE_EVEN_ODD)
    ->Name("polygon_1000_alternate/cairo")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PolygonOurs, winding, PolyFillMode::Winding)
    ->Name("polygon_1000_winding/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PolygonCairo, winding, CAIRO_FILL_RULE_WINDING)
    ->Name("polygon_1000_winding/cairo")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bvx::bench::RatioReporter reporter("cairo");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
