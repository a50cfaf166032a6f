// Text at scale: a full repaint of 10,000 texts that share two fonts, and
// the font table's resolving when texts of one slot alternate between two
// angles, which makes the slot's one cached font be made again each time.
#include "control/CadControl.h"
#include "hosts/cli/CliWindow.h"
#include "shapes/CTextShape.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace bvx;

void PaintTenThousandTexts(benchmark::State& state)
{
    CadControl control;
    script::CliWindow window;
    window.Resize(1001, 1001);
    auto paint = [&] {
        if (std::unique_ptr<DeviceContext> dc = window.BeginPaint()) control.OnDraw(&window, *dc, window.GetClientRect());
    };
    paint();
    control.WorldSet(0, 1000, 1000, 0);
    const int16_t fonts[2] = {control.FontOpen(u"Arial,10,N", 1), control.FontOpen(u"Times New Roman,14,B", 1)};
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> coord(0, 980);
    for (int i = 0; i < 10000; ++i)
        control.TextAdd(1, u"Text " + std::u16string(1, char16_t(u'A' + i % 26)), coord(rng), coord(rng), fonts[i % 2]);
    paint();
    for (auto _ : state) {
        control.Refresh();
        paint();
    }
    state.counters["texts_per_s"] = benchmark::Counter(10000, benchmark::Counter::kIsIterationInvariantRate);
    state.SetLabel("one full repaint, with the copy to the window");
}

// range(0): 1 a font that scales with the world, 0 one of fixed size;
// range(1): 0 keeps one angle, 1 alternates between two.
void ResolveFont(benchmark::State& state)
{
    CadControl control;
    control.View().World.SetClientRect({0, 0, 1001, 1001});
    const int16_t font = control.FontOpen(u"Arial,12,N", int16_t(state.range(0)));
    CadFontTable& table = control.View().FontTable;
    CTextFont refs[2] = {table.ReferenceTo(font), table.ReferenceTo(font)};
    refs[1].SetOrientation(state.range(1) ? 450 : 0);
    size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(table.ResolveFont(refs[i++ & 1], control.View().World).Font.get());
    state.SetLabel(std::string(state.range(0) ? "scaled, " : "fixed size, ") +
                   (state.range(1) ? "two angles in turn" : "one angle"));
}

} // namespace

BENCHMARK(PaintTenThousandTexts)->Unit(benchmark::kMillisecond);
BENCHMARK(ResolveFont)->Args({0, 0})->Args({0, 1})->Args({1, 0})->Args({1, 1});
BENCHMARK_MAIN();
