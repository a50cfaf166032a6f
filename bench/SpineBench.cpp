// The document's hot lookups: a shape by number among a million, and the
// layer search over 100,000 shapes whose cached bounds reject most of them.
#include "control/CadView.h"
#include "shapes/CRectShape.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace bvx;

void FillWithRectangles(CadView& view, int count, int perRow, double pitch)
{
    for (int i = 0; i < count; ++i) {
        CObjShape* r = view.Buf.FindShape(view.CreateShape(bvxRectangle, 1));
        double x = (i % perRow) * pitch, y = (i / perRow) * pitch;
        r->SetPoint(0, x, y, &view);
        r->SetPoint(1, x + pitch * 0.8, y + pitch * 0.8, &view);
    }
}

void FindShapeAmongAMillion(benchmark::State& state)
{
    static CadView view;
    static bool filled = false;
    if (!filled) {
        view.World.SetClientRect({0, 0, 1001, 1001});
        FillWithRectangles(view, 1000000, 1000, 1);
        filled = true;
    }
    std::mt19937 rng(5);
    std::uniform_int_distribution<int32_t> number(1, 1000000);
    // More numbers than the caches hold, so that each lookup pays its misses.
    std::vector<int32_t> numbers(1 << 22);
    for (auto& n : numbers) n = number(rng);
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(view.Buf.FindShape(numbers[i++ & (numbers.size() - 1)]));
    }
    state.SetLabel("ns per FindShape");
}

void LayerSearchRejectingByBounds(benchmark::State& state)
{
    CadView view;
    view.World.SetClientRect({0, 0, 1001, 1001});
    view.World.SetWorld(0, 1000, 1000, 0, 0);
    // 100,000 small rectangles on a 1000-unit world at one pixel per unit,
    // 3.16 units apart: a press meets at most a handful of bounds.
    FillWithRectangles(view, 100000, 316, 3.16);
    std::mt19937 rng(9);
    std::uniform_int_distribution<int32_t> coord(0, 1000);
    std::vector<DevicePoint> presses(1024);
    for (auto& p : presses) p = {coord(rng), coord(rng)};
    CadLayer& layer = *view.Buf.Layers[1];
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(layer.Search(presses[i++ & 1023], false, true, layer.Action, view));
    }
    state.SetLabel("ns per search of 100,000 shapes");
}

} // namespace

BENCHMARK(FindShapeAmongAMillion);
BENCHMARK(LayerSearchRejectingByBounds)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
