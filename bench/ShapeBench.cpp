// Point-list geometry at scale: the crossings of a 1,000-point polyline with
// a layer of 10,000 lines and circles, as a host asks for them, and spline
// hit tests, which walk the curve span by span for every press.
#include "control/CadControl.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using namespace bvx;

void IntersectPolylineWithLayer(benchmark::State& state)
{
    CadControl control;
    control.View().World.SetClientRect({0, 0, 1001, 1001});
    control.WorldSet(0, 1000, 1000, 0);
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> coord(0, 1000), step(-40, 40), size(2, 20);
    // A wandering path over the whole world: every partner's bounds meet its
    // bounds, so each one is tested against all 999 segments.
    const int32_t path = control.ShapeAdd(bvxPolyline, 1);
    double x = 500, y = 500;
    for (int16_t i = 0; i < 1000; ++i) {
        control.ShapePointSet(path, i, x, y);
        x = std::clamp(x + step(rng), 0.0, 1000.0);
        y = std::clamp(y + step(rng), 0.0, 1000.0);
    }
    for (int i = 0; i < 5000; ++i) {
        const double cx = coord(rng), cy = coord(rng);
        control.DrawLine(cx, cy, cx + step(rng), cy + step(rng), 1);
        control.DrawCircle(coord(rng), coord(rng), size(rng), 1);
    }
    int32_t rows = 0;
    for (auto _ : state) {
        const Variant found = control.ShapeIntersectPoints(path, -1);
        rows = found.Rows();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["crossings"] = rows;
    state.counters["segment_tests_per_s"] = benchmark::Counter(10000.0 * 999,
                                                               benchmark::Counter::kIsIterationInvariantRate);
    state.SetLabel("one ShapeIntersectPoints call");
}

// A spline of state.range(0) control points across a 1001-pixel window,
// pressed at random points inside its bounds, where the whole curve is walked.
void SplineHitTest(benchmark::State& state)
{
    CadControl control;
    control.View().World.SetClientRect({0, 0, 1001, 1001});
    control.WorldSet(0, 1000, 1000, 0);
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> coord(100, 900);
    const int32_t number = control.ShapeAdd(int16_t(state.range(1)), 1);
    for (int16_t i = 0; i < state.range(0); ++i) control.ShapePointSet(number, i, coord(rng), coord(rng));
    control.PutShapeSearchMethod(number, 0); // on the border: a miss walks every span
    CObjShape* spline = control.View().Buf.FindShape(number);
    const DeviceRect box = spline->BoundsAsRect();
    std::uniform_int_distribution<int32_t> px(box.left, box.right), py(box.top, box.bottom);
    std::vector<DevicePoint> presses(1024);
    for (auto& p : presses) p = {px(rng), py(rng)};
    size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(spline->HitTest(presses[i++ & 1023], control.View()));
    state.SetItemsProcessed(int64_t(state.iterations()));
    state.SetLabel(state.range(1) == bvxSpline ? "open spline, hit tests" : "closed spline, hit tests");
}

} // namespace

BENCHMARK(IntersectPolylineWithLayer)->Unit(benchmark::kMillisecond);
BENCHMARK(SplineHitTest)->ArgsProduct({{4, 16, 64}, {bvxSpline, bvxClosedSpline}});
BENCHMARK_MAIN();
