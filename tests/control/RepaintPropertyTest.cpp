// Partial repaints against a full repaint of the same drawing: after random
// changes, what the window shows must equal what a repaint from scratch
// paints, pixel for pixel.
#include "control/CadControl.h"
#include "hosts/cli/CliWindow.h"
#include "platform/raster/RasterDeviceContext.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace bvx {
namespace {

class Repaint : public ::testing::Test {
protected:
    Repaint()
    {
        window.Resize(kWidth, kHeight);
        PaintInvalid();
        control.WorldSet(0, 150, 200, 0);
        control.LayerOpen(u"Second");
        PaintInvalid();
    }

    // What a WM_PAINT does: only the invalid part reaches the window.
    void PaintInvalid()
    {
        if (std::unique_ptr<DeviceContext> dc = window.BeginPaint())
            control.OnDraw(&window, *dc, window.GetClientRect());
    }

    // Pixels where the window differs from the same drawing painted whole.
    int64_t DifferingPixels()
    {
        BitmapHandle fresh = CreateBitmap(kWidth, kHeight);
        RasterDeviceContext dc(fresh);
        control.Refresh();
        control.OnDraw(&window, dc, window.GetClientRect());
        int64_t differing = 0;
        for (int32_t y = 0; y < kHeight; ++y)
            for (int32_t x = 0; x < kWidth; ++x) differing += fresh->Row(y)[x] != window.Surface()->Row(y)[x];
        PaintInvalid(); // the refresh's own invalidation, so that the next step starts clean
        return differing;
    }

    static constexpr int32_t kWidth = 201;
    static constexpr int32_t kHeight = 151;
    CadControl control;
    script::CliWindow window;
};

TEST_F(Repaint, PartialRepaintsEqualAFullOneAfterRandomChanges)
{
    std::mt19937 rng(2024);
    auto coord = [&](int range) { return double(rng() % unsigned(range)); };
    std::vector<int32_t> shapes;
    std::ostringstream log;
    for (int step = 0; step < 600; ++step) {
        const int32_t any = shapes.empty() ? -1 : shapes[rng() % shapes.size()];
        const unsigned what = rng() % 10;
        switch (what) {
        case 0:
        case 1: {
            const double x = coord(180), y = coord(130);
            const int16_t layer = int16_t(1 + rng() % 2);
            int32_t n = rng() % 3 == 0   ? control.DrawEllipse(x, y, 2 + coord(30), 2 + coord(20), layer)
                        : rng() % 2 == 0 ? control.DrawRectangle(x, y, x + coord(50), y + coord(40), layer)
                                         : control.DrawLine(x, y, coord(200), coord(150), layer);
            control.PutShapePenWidth(n, int16_t(1 + rng() % 2));
            control.PutShapeBrushStyle(n, int16_t(rng() % 8));
            shapes.push_back(n);
            break;
        }
        case 2: control.ShapeTranslate(any, coord(41) - 20, coord(41) - 20); break;
        case 3:
            control.ShapeDelete(any);
            std::erase(shapes, any);
            break;
        case 4:
            control.PutShapeBrushFg(any, uint32_t(rng() & 0xFFFFFF));
            control.PutShapeBrushMode(any, int16_t(1 + rng() % 2));
            control.PutShapePenStyle(any, int16_t(rng() % 8));
            break;
        case 5: control.ShapeSelect(any, rng() % 2 == 0); break;
        case 6: control.ShapeSelect(-1, false); break;
        case 7: control.PutLayerAction(2, int16_t(control.GetLayerAction(2) ^ LayerActions::Show)); break;
        case 8: control.PutGridOn(!control.GetGridOn()); break;
        case 9: control.PutGridDrawOrder(int16_t(1 - control.GetGridDrawOrder())); break;
        }
        const char* const kWhat[] = {"add",     "add",       "move",     "delete",
                                     "restyle", "select",    "deselect", "show or hide layer 2",
                                     "grid",    "grid order"};
        log << step << ": " << kWhat[what] << " " << (what < 2 ? shapes.back() : any) << "\n";
        PaintInvalid();
        ASSERT_EQ(DifferingPixels(), 0) << log.str();
    }
}

// A pen wider than the margin a change invalidates around a shape's bounds
// leaves pixels outside it, by design. (Grid dots over the shapes do not: the
// grid is drawn over the dirty rectangle as the shapes drawn whole grew it.)
TEST_F(Repaint, WidePensLeaveTheirEdgesBehind)
{
    int32_t n = control.DrawLine(20, 75, 180, 75, 1);
    control.PutShapePenWidth(n, 15);
    PaintInvalid();
    EXPECT_GT(DifferingPixels(), 0);
}

} // namespace
} // namespace bvx
