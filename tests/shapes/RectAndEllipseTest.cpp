#include "ShapeTestSupport.h"
#include "control/ViewFixture.h"
#include "platform/DataRows.h"
#include "platform/raster/RasterDeviceContext.h"
#include "world/Rounding.h"

#include <limits>
#include <tuple>

namespace bvx::shapetest {
namespace {

using Shapes = bvx::testing::ViewFixture;
using std::pair, std::tuple;

// Zero-size shapes still have one-pixel bounds; bounds wrap in 16 bits; bad numbers do not trap.
TEST_F(Shapes, DegenerateSizesAndBadNumbers)
{
    auto* dot = AddRect(30, 30, 30, 30);
    const DeviceRect b = dot->BoundsAsRect();
    EXPECT_EQ(tuple(dot->GetArea(), b.right - b.left, b.bottom - b.top), tuple(0.0, 1, 1));
    EXPECT_FALSE(AddEllipse(50, 50, 0, 0, 1, bvxCircle)->BoundsAsRect().IsEmpty());
    auto* huge = AddRect(0, 0, 40000, 10);
    EXPECT_LT(huge->Bounds.right, 0); // 40000 wraps in 16 bits
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    auto bitmap = CreateBitmap(101, 101);
    RasterDeviceContext dc(bitmap);
    const std::initializer_list<CObjShape*> shapes{huge, AddRect(nan, inf, -inf, 1e300), AddEllipse(nan, 5, inf, nan)};
    for (CObjShape* s : shapes) {
        s->Draw(dc, {0, 0, 101, 101}, view, 0);
        (void)s->HitTest({5, 5}, view), (void)s->HandleFromPoint({5, 5}, view), (void)s->HitHandle({5, 5}, 1, view);
        s->MoveHandle(1, {nan, nan}, view);
        (void)s->GetArea();
    }
}

// Over a grid of device points (world and device coincide up to the y flip): on the border method, a point within 2
// pixels of the outline always hits and one 9 or more away never does; on the inside method, the inside hits and the
// outside beyond 2 pixels not.
TEST_F(Shapes, EllipseHitTestFollowsTheTrueOutline)
{
    auto* e = AddEllipse(50, 50, 30, 18);
    const Pts outline = EllipseSamples({50, 50}, 30, 18, 2000);
    for (int16_t method : {0, 1}) {
        e->SetSearchMethod(method);
        for (int y = 20; y <= 80; y += 2)
            for (int x = 10; x <= 90; x += 2) {
                const double d = ToNearest(outline, {double(x), double(y)});
                const bool inside = std::pow((x - 50) / 30.0, 2) + std::pow((y - 50) / 18.0, 2) < 1;
                const bool hit = e->HitTest({x, y}, view) != 0;
                EXPECT_TRUE(method == 0 ? (d > 2 || hit) && (d < 9 || !hit) : d < 2 || hit == inside) << x << "," << y;
            }
    }
}

TEST_F(Shapes, RectangleHitTestUsesTheViewTolerance)
{
    auto* r = AddRect(20, 80, 70, 30); // device 20..70 by 20..70
    for (int y = 0; y <= 100; y += 1)
        for (int x = 0; x <= 100; x += 1) {
            const double dx = std::max({20.0 - x, 0.0, x - 70.0}), dy = std::max({20.0 - y, 0.0, y - 70.0});
            const double toEdge = dx == 0 && dy == 0 ? std::min({x - 20.0, 70.0 - x, y - 20.0, 70.0 - y})
                                                     : std::hypot(dx, dy);
            const bool hit = r->HitTest({x, y}, view) != 0;
            EXPECT_TRUE((toEdge > 2 || hit) && (toEdge < 8 || !hit)) << x << "," << y;
        }
    view.HitTolerance = 10;
    EXPECT_TRUE(r->HitTest({12, 40}, view));
    r->SetSearchMethod(kSearchInShape);
    EXPECT_TRUE(r->HitTest({45, 45}, view));
}

TEST(HitSegment, BorderAndCrossingModes)
{
    const auto rows = test::DataRows("hit_segment.txt");
    EXPECT_EQ(rows.size(), 13u);
    for (const auto& row : rows) {
        int32_t v[8];
        for (size_t i = 0; i < 8; ++i) v[i] = std::stoi(row[i]);
        const DevicePoint a{v[0], v[1]}, b{v[2], v[3]}, p{v[4], v[5]};
        EXPECT_EQ(HitSegment(a, b, p, v[6]), v[7] != 0) << test::Joined(row);
        if (v[6] == 0) {
            EXPECT_EQ(HitSegment(b, a, p, 0), v[7] != 0) << "ends swapped: " << test::Joined(row);
        }
    }
}

TEST_F(Shapes, RectangleHandlesAndPoints)
{
    auto* r = AddRect(10, 20, 50, 80);
    auto* line = AddRect(0, 0, 10, 10, 1, bvxLine);
    auto* round = AddRect(0, 0, 40, 20, 1, bvxRoundRectangle);
    for (auto [s, handles, points] : {tuple{r, 8, 2}, {line, 2, 2}, {round, 9, 3}})
        EXPECT_EQ(pair(s->GetHandleCount(), int(s->GetPointCount())), pair(handles, points)) << handles;
    for (auto [s, h, at] : {tuple{r, 2, WorldPoint{30, 20}}, {r, 4, {50, 50}}, {r, 7, {10, 80}}, {line, 2, {10, 10}}})
        EXPECT_EQ(s->GetHandlePoint(h, view), at) << h;
    for (auto [s, h, point] : {tuple{r, 5, 1}, {r, 3, -1}, {line, 2, 1}, {round, 9, 2}})
        EXPECT_EQ(s->HandleToPoint(h), point) << h;
    EXPECT_EQ(r->GetPoint(2, view), (WorldPoint{}));
}

TEST_F(Shapes, PressOnTheBodyPicksAHandleByGrid)
{
    auto* r = AddRect(20, 80, 80, 20); // device 20..80 both ways, p1 top left
    auto* flipped = AddRect(80, 20, 20, 80); // flipped corners flip the grid with them
    auto* line = AddRect(10, 50, 90, 50, 1, bvxLine);
    for (auto [s, at, handle] : {tuple{r, DevicePoint{22, 22}, 1}, {r, {50, 22}, 2}, {r, {78, 22}, 3}, {r, {78, 50}, 4},
                                 {r, {78, 78}, 5}, {r, {50, 50}, 9}, {flipped, {78, 78}, 1}, {line, {20, 50}, 1},
                                 {line, {80, 50}, 2}})
        EXPECT_EQ(s->HandleFromPoint(at, view), handle) << at.x << "," << at.y;
    EXPECT_EQ(r->NearestPoint({70, 70}, view), 1);
}

TEST_F(Shapes, DraggingHandlesMovesTheirCoordinatesOrthogonallyWhenAsked)
{
    auto* r = AddRect(10, 10, 50, 50);
    r->MoveHandle(3, {60, 5}, view);
    EXPECT_EQ(pair(r->P2.x, r->P1.y), pair(60.0, 5.0));
    r->MoveHandle(5, {70, 70}, view);
    EXPECT_DOUBLE_EQ(view.ReadoutDistance, Distance(r->P1, r->P2));
    EXPECT_GT(view.ReadoutAngle, 0);
    r->MoveHandle(42, {1, 2}, view); // unknown handles move the first corner
    EXPECT_EQ(r->P1, (WorldPoint{1, 2}));
    auto* round = AddRect(0, 0, 40, 20, 1, bvxRoundRectangle);
    round->MoveHandle(9, {-100, -100}, view); // past the middle: stops there, with the y sign of the world
    EXPECT_EQ(round->Radius, (WorldPoint{40, -20}));
    auto* twoPoint = AddRect(10, 10, 30, 20, 1, bvx2PointEllipse);
    twoPoint->MoveHandle(9, {2, 3}, view);
    EXPECT_EQ(pair(twoPoint->P1, twoPoint->P2), pair(WorldPoint{8, 13}, WorldPoint{32, 17}));
    // Orthogonal drawing snaps lines to an axis.
    view.ViewDrawOrthogonal = 1;
    auto* line = AddRect(10, 10, 10, 10, 1, bvxLine);
    line->MoveHandle(2, {40, 14}, view);
    EXPECT_EQ(line->P2, (WorldPoint{40, 10}));
    line->MoveHandle(5, {12, 40}, view);
    EXPECT_EQ(line->P2, (WorldPoint{10, 40}));
    view.World.SetAngleMode(1);
    line->MoveHandle(5, {10, 60}, view);
    EXPECT_EQ(view.ReadoutAngle, std::floor(view.ReadoutAngle)); // whole degrees along an axis
}

// Turns and scales are a script case (scripts/rect_ellipse_transforms.bvxs).
// The conversions themselves are a script case (scripts/rect_ellipse_conversions.bvxs).
TEST_F(Shapes, AConversionNeedsSomewhereToPutItsResult)
{
    EXPECT_FALSE(AddRect(10, 10, 30, 20, 1, bvx2PointEllipse)->ConvertTo(bvxEllipse, nullptr, 0, 0, &view));
}

TEST_F(Shapes, EllipseHandlesSwapWithTheWorldsYDirection)
{
    auto* e = AddEllipse(50, 50, 20, 10);
    EXPECT_LT(Device(0, 0).y, 101);
    EXPECT_LT(view.World.WorldToDevice(e->GetHandlePoint(1, view)).y, 50); // y up: handle 1 is above the centre
    view.World.SetWorld(0, 0, 100, 100, 0);
    EXPECT_GT(view.World.WorldToDevice(e->GetHandlePoint(1, view)).y, 50);
    e->UpdateBounds(view);
    sink.events.clear();
    e->MoveHandle(2, {80, 50}, view);
    EXPECT_EQ(e->RadiusX, 30);
    EXPECT_EQ(sink.events, (std::vector<std::string>{"DrawRadius 30 10"}));
    e->MoveHandle(5, {10, 10}, view);
    EXPECT_EQ(e->Centre, (WorldPoint{10, 10}));
    EXPECT_EQ(sink.events.size(), 1u); // moving the centre fires nothing
}

TEST(ShapeGeometry, AngleHelpers)
{
    for (auto [dx, dy, tenths] : {tuple{0, 0, 0}, {0, -5, 2700}, {-3, 0, 1800}, {10, 10, 450}, {-10, -10, 2250},
                                  {-10, 10, 1350}, {10, -10, 3150}})
        EXPECT_EQ(AngleTenths(dx, dy), tenths) << dx << "," << dy;
    DevicePoint p[] = {{20, 0}};
    RotateDevicePoints(p, 900, {0, 0});
    EXPECT_EQ(p[0], (DevicePoint{0, -20})); // a quarter turn counter-clockwise on screen
    CadWorld w;
    w.SetClientRect({0, 0, 101, 101});
    EXPECT_NEAR(WorldAngle(w, {0, 0}, {0, 10}), kPi / 2, 1e-12);
    EXPECT_EQ(WorldAngle(w, {0, 0}, {10, 0}), 0);
    EXPECT_TRUE(IsOnAxis({0, 0}, {5, 5}) && !IsOnAxis({0, 0}, {5, 6}));
    // Polar and eccentric points differ off the axes.
    const WorldPoint polar = PolarPoint({0, 0}, 2, 1, kPi / 4), eccentric = EllipsePoint({0, 0}, 2, 1, kPi / 4);
    EXPECT_NEAR(polar.x, polar.y, 1e-12); // on the 45-degree ray
    EXPECT_NEAR(eccentric.x, 2 * std::cos(kPi / 4), 1e-12);
    EXPECT_EQ(PolarPoint({1, 1}, 0, 0, 1), (WorldPoint{}));
}

TEST(ShapeAttrRecord, FieldsKeepTheirWidthsAndSpareBits)
{
    ShapeAttr a = ShapeAttr::Default();
    EXPECT_EQ(tuple(a.PenBack(), a.BrushBg(), a.PenWidth()), tuple(22u, 22u, 1u));
    a.SetBrushBg(33); // five bits: wraps
    a.SetPenWidth(17);
    a.SetBrushFg(255);
    EXPECT_EQ(tuple(a.BrushBg(), a.PenWidth(), a.BrushFg(), a.PenColor()), tuple(1u, 1u, 255u, 0u));
    ShapeAttr withSpare = ShapeAttr::FromWords(0xE0000000u, 0xFFFFFE00u);
    withSpare.CopyFieldsFrom(a);
    EXPECT_EQ(tuple(withSpare.Word0() & 0xE0000000u, withSpare.Word1() & 0xFFFFFE00u, withSpare.BrushFg()),
              tuple(0xE0000000u, 0xFFFFFE00u, 255u));
}

} // namespace
} // namespace bvx::shapetest
