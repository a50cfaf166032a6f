// Painting 100,000 small shapes that fill a 1920 by 1080 window: a full
// repaint against the repaint after one shape moved, each a whole paint
// including the copy to the window. The second should cost a small fraction
// of the first.
#include "control/CadControl.h"
#include "hosts/cli/CliWindow.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

using namespace bvx;

constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;
constexpr int kColumns = 400;
constexpr int kRows = 250;

struct Drawing {
    CadControl control;
    script::CliWindow window;
    int32_t moving = 0;

    Drawing()
    {
        window.Resize(kWidth, kHeight);
        Paint();
        control.WorldSet(0, kHeight - 1, kWidth - 1, 0);
        const double pitchX = double(kWidth - 1) / kColumns, pitchY = double(kHeight - 1) / kRows;
        for (int row = 0; row < kRows; ++row)
            for (int column = 0; column < kColumns; ++column) {
                double x = column * pitchX, y = row * pitchY;
                int32_t n = control.DrawRectangle(x, y, x + pitchX * 0.6, y + pitchY * 0.6, 1);
                if (row == kRows / 2 && column == kColumns / 2) moving = n;
            }
        control.PutLayerBrushStyle(1, 1);
        control.PutLayerBrushFg(1, 0x3060C0);
        Paint();
    }

    void Paint()
    {
        if (std::unique_ptr<DeviceContext> dc = window.BeginPaint())
            control.OnDraw(&window, *dc, window.GetClientRect());
    }
};

Drawing& TheDrawing()
{
    static Drawing drawing;
    return drawing;
}

void FullRepaint(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    for (auto _ : state) {
        d.control.Refresh();
        d.Paint();
    }
}

void RepaintAfterOneShapeMoved(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    double step = 0.5;
    for (auto _ : state) {
        d.control.ShapeTranslate(d.moving, step, 0);
        step = -step;
        d.Paint();
    }
}

} // namespace

BENCHMARK(FullRepaint)->Unit(benchmark::kMillisecond);
BENCHMARK(RepaintAfterOneShapeMoved)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
