#include "world/Rounding.h"
#include "control/ViewFixture.h"
#include "platform/raster/RasterDeviceContext.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace bvx {
namespace {

using Shapes = testing::ViewFixture;

TEST_F(Shapes, ZeroSizeShapesStillHaveOnePixelBounds)
{
    auto* dot = AddRect(30, 30, 30, 30);
    EXPECT_EQ(dot->GetArea(), 0.0);
    DeviceRect b = dot->BoundsAsRect();
    EXPECT_EQ(b.right - b.left, 1);
    EXPECT_EQ(b.bottom - b.top, 1);
    auto* flat = AddEllipse(50, 50, 0, 0, 1, bvxCircle);
    EXPECT_FALSE(flat->BoundsAsRect().IsEmpty());
}

TEST_F(Shapes, BoundsWrapInSixteenBitsAndBadNumbersDoNotTrap)
{
    auto* huge = AddRect(0, 0, 40000, 10);
    EXPECT_LT(huge->Bounds.right, 0); // 40000 wraps in 16 bits
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    auto* bad = AddRect(nan, inf, -inf, 1e300);
    auto* badEllipse = AddEllipse(nan, 5, inf, nan);
    auto bitmap = CreateBitmap(101, 101);
    RasterDeviceContext dc(bitmap);
    for (CObjShape* s : std::initializer_list<CObjShape*>{huge, bad, badEllipse}) {
        s->Draw(dc, {0, 0, 101, 101}, view, 0);
        (void)s->HitTest({5, 5}, view);
        (void)s->HandleFromPoint({5, 5}, view);
        (void)s->HitHandle({5, 5}, 1, view);
        s->MoveHandle(1, {nan, nan}, view);
        (void)s->GetArea();
    }
}

// Distance of a point to the outline of an upright ellipse, by dense sampling.
double DistanceToEllipse(double cx, double cy, double rx, double ry, double x, double y)
{
    double best = 1e9;
    for (int i = 0; i < 2000; ++i) {
        double a = i * 2 * std::numbers::pi / 2000;
        best = std::min(best, std::hypot(cx + rx * std::cos(a) - x, cy + ry * std::sin(a) - y));
    }
    return best;
}

bool InsideEllipse(double cx, double cy, double rx, double ry, double x, double y)
{
    double u = (x - cx) / rx, v = (y - cy) / ry;
    return u * u + v * v < 1;
}

// Over a grid of device points: on the border method, a point within 2
// pixels of the outline always hits and one 9 or more away never does; on
// the inside method, the inside hits and the outside beyond 2 pixels not.
TEST_F(Shapes, EllipseHitTestFollowsTheTrueOutline)
{
    // World and device coincide up to the y flip at scale 1.
    auto* e = AddEllipse(50, 50, 30, 18);
    const double cx = 50, cy = 50; // device centre
    for (int method = 0; method < 2; ++method) {
        e->SetSearchMethod(int16_t(method));
        int checked = 0;
        for (int y = 20; y <= 80; y += 2)
            for (int x = 10; x <= 90; x += 2) {
                double d = DistanceToEllipse(cx, cy, 30, 18, x, y);
                bool inside = InsideEllipse(cx, cy, 30, 18, x, y);
                bool hit = e->HitTest({x, y}, view) != 0;
                if (method == 0)
                    EXPECT_TRUE((d > 2 || hit) && (d < 9 || !hit)) << x << "," << y;
                else
                    EXPECT_TRUE((!inside || d < 2 || hit) && (inside || d < 2 || !hit)) << x << "," << y;
                ++checked;
            }
        EXPECT_GT(checked, 1000);
    }
}

TEST_F(Shapes, RectangleHitTestUsesTheViewTolerance)
{
    auto* r = AddRect(20, 80, 70, 30); // device 20..70 by 20..70
    for (int y = 0; y <= 100; y += 1)
        for (int x = 0; x <= 100; x += 1) {
            double dx = std::max({20.0 - x, 0.0, x - 70.0}), dy = std::max({20.0 - y, 0.0, y - 70.0});
            bool inside = dx == 0 && dy == 0;
            double toEdge = inside ? std::min({x - 20.0, 70.0 - x, y - 20.0, 70.0 - y}) : std::hypot(dx, dy);
            bool hit = r->HitTest({x, y}, view) != 0;
            EXPECT_TRUE(toEdge > 2 || hit) << x << "," << y;
            EXPECT_TRUE(toEdge < 8 || !hit) << x << "," << y;
        }
    view.HitTolerance = 10;
    EXPECT_TRUE(r->HitTest({12, 40}, view));
    r->SetSearchMethod(kSearchInShape);
    EXPECT_TRUE(r->HitTest({45, 45}, view));
}

TEST_F(Shapes, LinesAreHitAlongTheirLength)
{
    auto* line = AddRect(10, 90, 90, 50, 1, bvxLine); // device (10,10) to (90,50)
    EXPECT_TRUE(line->HitTest({50, 30}, view));
    EXPECT_TRUE(line->HitTest({50, 32}, view));
    EXPECT_FALSE(line->HitTest({50, 40}, view));
    EXPECT_FALSE(line->HitTest({95, 52}, view));
}

TEST(HitSegment, BorderAndCrossingModes)
{
    // Vertical, horizontal, steep and shallow segments.
    EXPECT_TRUE(HitSegment({10, 0}, {10, 20}, {12, 10}, 0));
    EXPECT_FALSE(HitSegment({10, 0}, {10, 20}, {14, 10}, 0));
    EXPECT_TRUE(HitSegment({0, 5}, {20, 5}, {10, 8}, 0));
    EXPECT_FALSE(HitSegment({0, 5}, {20, 5}, {25, 5}, 0));
    EXPECT_TRUE(HitSegment({0, 0}, {10, 40}, {5, 20}, 0));
    EXPECT_FALSE(HitSegment({0, 0}, {10, 40}, {12, 20}, 0));
    EXPECT_TRUE(HitSegment({0, 0}, {40, 10}, {20, 5}, 0));
    EXPECT_FALSE(HitSegment({0, 0}, {40, 10}, {20, 12}, 0));
    // Order of the ends does not matter.
    EXPECT_EQ(HitSegment({40, 10}, {0, 0}, {20, 5}, 0), HitSegment({0, 0}, {40, 10}, {20, 5}, 0));
    // Crossing: a point right of the segment sees it on its left.
    EXPECT_TRUE(HitSegment({10, 0}, {10, 20}, {15, 10}, 1));
    EXPECT_FALSE(HitSegment({10, 0}, {10, 20}, {5, 10}, 1));
    EXPECT_FALSE(HitSegment({10, 0}, {10, 20}, {15, 20}, 1)); // the lower end is open
    // Extreme ends answer like any other diagonal.
    EXPECT_TRUE(HitSegment({INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}, {1, 1}, 0));
    EXPECT_FALSE(HitSegment({INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}, {100, 0}, 0));
}

TEST_F(Shapes, RectangleHandlesAndPoints)
{
    auto* r = AddRect(10, 20, 50, 80);
    EXPECT_EQ(r->GetHandleCount(), 8);
    EXPECT_EQ(r->GetHandlePoint(2, view), (WorldPoint{30, 20}));
    EXPECT_EQ(r->GetHandlePoint(4, view), (WorldPoint{50, 50}));
    EXPECT_EQ(r->GetHandlePoint(7, view), (WorldPoint{10, 80}));
    EXPECT_EQ(r->HandleToPoint(5), 1);
    EXPECT_EQ(r->HandleToPoint(3), -1);
    EXPECT_EQ(r->GetPointCount(), 2);
    EXPECT_EQ(r->GetPoint(2, view), (WorldPoint{}));

    auto* line = AddRect(0, 0, 10, 10, 1, bvxLine);
    EXPECT_EQ(line->GetHandleCount(), 2);
    EXPECT_EQ(line->GetHandlePoint(2, view), (WorldPoint{10, 10}));
    EXPECT_EQ(line->HandleToPoint(2), 1);
    EXPECT_EQ(line->GetPointCount(), 2);

    auto* round = AddRect(0, 0, 40, 20, 1, bvxRoundRectangle);
    EXPECT_EQ(round->GetHandleCount(), 9);
    EXPECT_EQ(round->GetPointCount(), 3);
    EXPECT_EQ(round->HandleToPoint(9), 2);
}

TEST_F(Shapes, PressOnTheBodyPicksAHandleByGrid)
{
    auto* r = AddRect(20, 80, 80, 20); // device 20..80 both ways, p1 top left
    EXPECT_EQ(r->HandleFromPoint({22, 22}, view), 1);
    EXPECT_EQ(r->HandleFromPoint({50, 22}, view), 2);
    EXPECT_EQ(r->HandleFromPoint({78, 22}, view), 3);
    EXPECT_EQ(r->HandleFromPoint({78, 50}, view), 4);
    EXPECT_EQ(r->HandleFromPoint({78, 78}, view), 5);
    EXPECT_EQ(r->HandleFromPoint({50, 50}, view), 9);
    // Flipped corners flip the grid with them.
    auto* flipped = AddRect(80, 20, 20, 80);
    EXPECT_EQ(flipped->HandleFromPoint({78, 78}, view), 1);
    auto* line = AddRect(10, 50, 90, 50, 1, bvxLine);
    EXPECT_EQ(line->HandleFromPoint({20, 50}, view), 1);
    EXPECT_EQ(line->HandleFromPoint({80, 50}, view), 2);
    EXPECT_EQ(r->NearestPoint({70, 70}, view), 1);
}

TEST_F(Shapes, DraggingHandlesMovesTheirCoordinates)
{
    auto* r = AddRect(10, 10, 50, 50);
    r->MoveHandle(3, {60, 5}, view);
    EXPECT_EQ(r->P2.x, 60);
    EXPECT_EQ(r->P1.y, 5);
    r->MoveHandle(5, {70, 70}, view);
    EXPECT_DOUBLE_EQ(view.ReadoutDistance, Distance(r->P1, r->P2));
    EXPECT_GT(view.ReadoutAngle, 0);
    r->MoveHandle(42, {1, 2}, view); // unknown handles move the first corner
    EXPECT_EQ(r->P1, (WorldPoint{1, 2}));

    auto* round = AddRect(0, 0, 40, 20, 1, bvxRoundRectangle);
    round->MoveHandle(9, {-100, -100}, view); // past the middle: stops there
    EXPECT_DOUBLE_EQ(round->Radius.x, 40);
    EXPECT_DOUBLE_EQ(round->Radius.y, -20); // the y sign of the world

    auto* twoPoint = AddRect(10, 10, 30, 20, 1, bvx2PointEllipse);
    twoPoint->MoveHandle(9, {2, 3}, view);
    EXPECT_EQ(twoPoint->P1, (WorldPoint{8, 13}));
    EXPECT_EQ(twoPoint->P2, (WorldPoint{32, 17}));
}

TEST_F(Shapes, OrthogonalDrawingSnapsLinesToAnAxis)
{
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

TEST_F(Shapes, TransformsMoveCornersAndCentres)
{
    auto* r = AddRect(40, 45, 60, 55);
    TransformRequest turn;
    turn.mode = TransformBits::Rotate;
    turn.angleDegrees = 90;
    turn.pivotX = 50;
    turn.pivotY = 50;
    r->Transform(view.World.BuildTransform(turn), view);
    EXPECT_NEAR(std::fabs(r->P2.x - r->P1.x), 10, 1e-6);
    EXPECT_NEAR(std::fabs(r->P2.y - r->P1.y), 20, 1e-6);

    auto* ellipse = AddEllipse(10, 10, 20, 8);
    ellipse->Transform(view.World.BuildTransform(turn), view);
    EXPECT_NEAR(ellipse->RadiusX, 0, 1e-6); // m[0] is the cosine: no turn for ellipses
    auto* circle = AddEllipse(10, 10, 5, 99, 1, bvxCircle);
    EXPECT_EQ(circle->RadiusY, 5); // a circle takes x for both
    TransformRequest scale;
    scale.mode = TransformBits::Scale;
    scale.scaleX = scale.scaleY = 3;
    circle->Transform(view.World.BuildTransform(scale), view);
    EXPECT_EQ(circle->Centre, (WorldPoint{30, 30}));
    EXPECT_EQ(circle->RadiusX, 5);
}

TEST_F(Shapes, ConversionsAmongRectanglesAndEllipses)
{
    auto* twoPoint = AddRect(10, 10, 30, 20, 1, bvx2PointEllipse);
    CEllipseShape ellipse;
    ASSERT_TRUE(twoPoint->ConvertTo(bvxEllipse, &ellipse, 0, 0, &view));
    EXPECT_EQ(ellipse.Centre, (WorldPoint{20, 15}));
    EXPECT_EQ(ellipse.RadiusX, 10);
    EXPECT_EQ(ellipse.RadiusY, 5);
    auto* thin = AddRect(10, 10, 10, 20, 1, bvx2PointEllipse);
    EXPECT_FALSE(thin->ConvertTo(bvxEllipse, &ellipse, 0, 0, &view));
    EXPECT_FALSE(twoPoint->ConvertTo(bvxEllipse, nullptr, 0, 0, &view));

    CRectShape rect;
    ASSERT_TRUE(ellipse.ConvertTo(bvx2PointEllipse, &rect, 0, 0, &view));
    EXPECT_EQ(rect.P1, (WorldPoint{10, 10}));
    EXPECT_EQ(rect.GetShapeType(), bvx2PointEllipse);
    auto* circle = AddEllipse(0, 0, 4, 4, 1, bvxCircle);
    CEllipseShape fromCircle;
    ASSERT_TRUE(circle->ConvertTo(bvxEllipse, &fromCircle, 0, 0, &view));
    EXPECT_EQ(fromCircle.RadiusY, 4);
    EXPECT_FALSE(ellipse.ConvertTo(bvxEllipse, &fromCircle, 0, 0, &view)); // only a circle becomes an ellipse
}

TEST_F(Shapes, EllipseHandlesSwapWithTheWorldsYDirection)
{
    auto* e = AddEllipse(50, 50, 20, 10);
    EXPECT_LT(Device(0, 0).y, 101);
    DevicePoint top = view.World.WorldToDevice(e->GetHandlePoint(1, view));
    EXPECT_LT(top.y, 50); // y up: handle 1 is above the centre on screen
    view.World.SetWorld(0, 0, 100, 100, 0);
    top = view.World.WorldToDevice(e->GetHandlePoint(1, view));
    EXPECT_GT(top.y, 50);
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
    EXPECT_EQ(AngleTenths(0, 0), 0);
    EXPECT_EQ(AngleTenths(0, -5), 2700);
    EXPECT_EQ(AngleTenths(-3, 0), 1800);
    EXPECT_EQ(AngleTenths(10, 10), 450);
    EXPECT_EQ(AngleTenths(-10, -10), 2250);
    EXPECT_EQ(AngleTenths(-10, 10), 1350);
    EXPECT_EQ(AngleTenths(10, -10), 3150);
    DevicePoint p[] = {{20, 0}};
    RotateDevicePoints(p, 900, {0, 0});
    EXPECT_EQ(p[0], (DevicePoint{0, -20})); // a quarter turn counter-clockwise on screen

    CadWorld w;
    w.SetClientRect({0, 0, 101, 101});
    EXPECT_NEAR(WorldAngle(w, {0, 0}, {0, 10}), std::numbers::pi / 2, 1e-12);
    EXPECT_EQ(WorldAngle(w, {0, 0}, {10, 0}), 0);
    EXPECT_TRUE(IsOnAxis({0, 0}, {5, 5}));
    EXPECT_FALSE(IsOnAxis({0, 0}, {5, 6}));
}

TEST(ShapeGeometry, PolarAndEccentricPointsDifferOffTheAxes)
{
    WorldPoint polar = PolarPoint({0, 0}, 2, 1, std::numbers::pi / 4);
    WorldPoint eccentric = EllipsePoint({0, 0}, 2, 1, std::numbers::pi / 4);
    EXPECT_NEAR(polar.x, polar.y, 1e-12); // on the 45-degree ray
    EXPECT_NEAR(eccentric.x, 2 * std::cos(std::numbers::pi / 4), 1e-12);
    EXPECT_EQ(PolarPoint({1, 1}, 0, 0, 1), (WorldPoint{}));
}

TEST(ShapeAttrRecord, FieldsKeepTheirWidthsAndSpareBits)
{
    ShapeAttr a = ShapeAttr::Default();
    EXPECT_EQ(a.PenBack(), 22u);
    EXPECT_EQ(a.BrushBg(), 22u);
    EXPECT_EQ(a.PenWidth(), 1u);
    a.SetBrushBg(33); // five bits: wraps
    EXPECT_EQ(a.BrushBg(), 1u);
    a.SetPenWidth(17);
    EXPECT_EQ(a.PenWidth(), 1u);
    a.SetBrushFg(255);
    EXPECT_EQ(a.BrushFg(), 255u);
    EXPECT_EQ(a.PenColor(), 0u);
    ShapeAttr withSpare = ShapeAttr::FromWords(0xE0000000u, 0xFFFFFE00u);
    withSpare.CopyFieldsFrom(a);
    EXPECT_EQ(withSpare.Word0() & 0xE0000000u, 0xE0000000u);
    EXPECT_EQ(withSpare.Word1() & 0xFFFFFE00u, 0xFFFFFE00u);
    EXPECT_EQ(withSpare.BrushFg(), 255u);
}

} // namespace
} // namespace bvx
