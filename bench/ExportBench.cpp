// The drawing written as a bitmap file: 10,000 shapes rendered off-screen at
// 4000 by 3000 pixels and saved as a 24-bit and as an 8-bit run-length BMP,
// each a whole ImageToBitmap call.
#include "control/CadControl.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>

namespace {

using namespace bvx;

void ExportDrawing(benchmark::State& state)
{
    CadControl control;
    control.View().World.SetClientRect({0, 0, 801, 601});
    control.WorldSet(0, 600, 800, 0);
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> x(0, 780), y(0, 580), size(3, 20);
    for (int i = 0; i < 10000; ++i) {
        const double px = x(rng), py = y(rng), s = size(rng);
        if (i % 3 == 0) control.DrawRectangle(px, py, px + s, py + s, 1);
        if (i % 3 == 1) control.DrawCircle(px, py, s / 2, 1);
        if (i % 3 == 2) control.DrawLine(px, py, px + s, py - s, 1);
    }
    control.PutLayerPenFg(1, 0x2050A0);
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "bvx_export_bench.bmp";
    const std::u16string name = file.u16string();
    const int16_t bits = int16_t(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(control.ImageToBitmap(name, 4000, 3000, bits, 0));
    state.counters["file_MB"] = double(std::filesystem::file_size(file)) / 1e6;
    state.SetLabel(bits == 24 ? "24 bits" : "8 bits, run-length");
    std::filesystem::remove(file);
}

} // namespace

BENCHMARK(ExportDrawing)->Arg(24)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
