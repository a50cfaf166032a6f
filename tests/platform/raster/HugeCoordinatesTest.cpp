// Coordinates anywhere in the 32-bit range: no overflow, and time spent on
// the visible part only.
#include "RasterTestUtil.h"
#include "platform/Region.h"

#include <gtest/gtest.h>


namespace bvx {
namespace {

using test::Surface;

constexpr int32_t kMin = INT32_MIN;
constexpr int32_t kMax = INT32_MAX;

struct HugeCase {
    const char* name;
    void (*draw)(RasterDeviceContext&);
    size_t marked = SIZE_MAX; // pixels drawn on the 64 by 64 surface, when known
};

const HugeCase kHuge[] = {
    {"line_diagonal", [](RasterDeviceContext& dc) { dc.MoveToEx(kMin, kMin); dc.LineTo(kMax, kMax); }, 64},
    {"line_across", [](RasterDeviceContext& dc) { dc.MoveToEx(kMax, 5); dc.LineTo(kMin, 5); }, 64},
    {"rectangle_filled", [](RasterDeviceContext& dc) {
         dc.SelectBrush(CreateSolidBrush(kBlack));
         dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
         dc.Rectangle(kMin, kMin, kMax, kMax);
     }, 4096},
    {"line_steep", [](RasterDeviceContext& dc) { dc.MoveToEx(kMin, kMax); dc.LineTo(10, kMin); }},
    {"line_flat", [](RasterDeviceContext& dc) { dc.MoveToEx(kMax, 7); dc.LineTo(kMin, 9); }},
    {"line_dashed", [](RasterDeviceContext& dc) {
         dc.SelectPen(CreatePen(PenStyle::DashDot, 1, 0));
         dc.MoveToEx(kMin, 3);
         dc.LineTo(kMax, 60);
     }},
    {"line_wide", [](RasterDeviceContext& dc) {
         dc.SelectPen(CreatePen(PenStyle::Solid, 9, 0));
         dc.MoveToEx(kMin, kMin);
         dc.LineTo(kMax, kMax - 5);
     }},
    {"polyline_wide_far_off", [](RasterDeviceContext& dc) {
         dc.SelectPen(CreatePen(PenStyle::Solid, 6, 0));
         const DevicePoint p[] = {{kMin, kMin}, {kMax, kMin}, {kMax, kMax}, {5, 5}};
         dc.Polyline(p);
     }},
    {"rectangle", [](RasterDeviceContext& dc) { dc.Rectangle(kMin, kMin, kMax, kMax); }},
    {"rectangle_wide", [](RasterDeviceContext& dc) {
         dc.SelectPen(CreatePen(PenStyle::InsideFrame, 25, 0));
         dc.SelectBrush(CreateHatchBrush(HatchStyle::Cross, 0));
         dc.Rectangle(kMin, -5, kMax, 40);
     }},
    {"ellipse", [](RasterDeviceContext& dc) {
         dc.SelectBrush(CreateHatchBrush(HatchStyle::DiagCross, 0));
         dc.Ellipse(kMin, kMin, kMax, kMax);
     }},
    {"ellipse_wide_pen", [](RasterDeviceContext& dc) {
         dc.SelectPen(CreatePen(PenStyle::Solid, 7, 0));
         dc.Ellipse(-3000000, 2, 3000000, 1000000000);
     }},
    {"roundrect", [](RasterDeviceContext& dc) { dc.RoundRect(kMin, kMin, kMax, 50, kMax, kMax); }},
    {"pie", [](RasterDeviceContext& dc) { dc.Pie(kMin, kMin, kMax, kMax, kMax, 0, 0, kMax); }},
    {"chord", [](RasterDeviceContext& dc) { dc.Chord(kMin, 0, kMax, kMax, kMin, kMin, kMax, kMax); }},
    {"arc", [](RasterDeviceContext& dc) { dc.Arc(-100000000, -50, 100000000, 120, 0, 0, 0, 0); }},
    {"polygon", [](RasterDeviceContext& dc) {
         dc.SelectBrush(CreateSolidBrush(0));
         dc.SetPolyFillMode(PolyFillMode::Winding);
         const DevicePoint p[] = {{kMin, kMin}, {kMax, 3}, {kMin, kMax}, {20, kMin}, {kMax, kMax}};
         dc.Polygon(p);
     }},
    {"patblt", [](RasterDeviceContext& dc) { dc.PatBlt(kMin, kMin, kMax, kMax, RasterOp::DstInvert); }},
    {"fillrect", [](RasterDeviceContext& dc) { dc.FillRect({kMin, kMin, kMax, kMax}, Brush{}); }},
    {"focus", [](RasterDeviceContext& dc) { dc.DrawFocusRect({kMin, kMin, kMax, kMax}); }},
    {"bitblt", [](RasterDeviceContext& dc) { dc.BitBlt(kMax, kMin, kMax, kMax, dc, kMin, kMax, RasterOp::SrcCopy); }},
};

class HugeCoordinates : public ::testing::TestWithParam<HugeCase> {
protected:
    // Only the visible part costs anything: a figure spanning 2^32 pixels
    // that was walked whole would not finish, and the suite's time limit
    // catches it. No clock is read here.
    static void DrawQuickly(RasterDeviceContext& dc) { GetParam().draw(dc); }
};

TEST_P(HugeCoordinates, DrawsQuicklyWithoutOverflow)
{
    Surface s(64, 64);
    DrawQuickly(s.dc);
    if (GetParam().marked != SIZE_MAX) {
        EXPECT_EQ(s.Marked().size(), GetParam().marked);
    }
}

// The same under a clip of several rectangles reaching to the limits, two
// given inverted: rows above 10 whole, rows from 20 on but for columns 30 to 39.
TEST_P(HugeCoordinates, StayInsideAClipOfSeveralRectangles)
{
    Surface s(64, 64);
    const DeviceRect clip[] = {{kMin, kMin, kMax, 10}, {kMax, kMax, 40, 20}, {30, kMax, kMin, 20}};
    s.dc.SelectClipRects(clip);
    DrawQuickly(s.dc);
    for (const auto& [x, y] : s.Marked()) EXPECT_TRUE(y < 10 || (y >= 20 && (x < 30 || x >= 40))) << x << "," << y;
}

INSTANTIATE_TEST_SUITE_P(Raster, HugeCoordinates, ::testing::ValuesIn(kHuge),
                         [](const ::testing::TestParamInfo<HugeCase>& info) { return std::string(info.param.name); });

TEST(HugeCoordinates, RegionsStayUsable)
{
    const Region rect = CreateRectRgn(kMin, kMin, kMax, kMax);
    EXPECT_TRUE(rect.PtInRegion(0, 0));
    EXPECT_TRUE(rect.PtInRegion(kMax - 1, kMin));
    EXPECT_FALSE(rect.PtInRegion(kMax, 0));
    const Region ellipse = CreateEllipticRgn(-2000000000, -2000000000, 2000000000, 2000000000);
    EXPECT_TRUE(ellipse.PtInRegion(0, 0));
    // The lower-left half of the plane.
    const DevicePoint tri[] = {{kMin, kMin}, {kMax, kMax}, {kMin, kMax}};
    const Region poly = CreatePolygonRgn(tri, PolyFillMode::Alternate);
    EXPECT_TRUE(poly.PtInRegion(50, 100));
    EXPECT_TRUE(poly.PtInRegion(-3000, 20));
    EXPECT_FALSE(poly.PtInRegion(100, 50));
    EXPECT_FALSE(poly.PtInRegion(3000, -20));
}

} // namespace
} // namespace bvx
