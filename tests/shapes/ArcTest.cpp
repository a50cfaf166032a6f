// Arcs, pie slices and chords against geometry worked out here on its own: outlines sampled densely, areas as
// polygons, the three-point circle by its distances. Shapes are made and changed through the members a host calls.
#include "ShapeTestSupport.h"
#include "shapes/ArcGeometry.h"
#include "shapes/CArcShape.h"

#include <array>
#include <random>
#include <tuple>

namespace bvx::shapetest {
namespace {

double ScreenAngle(DevicePoint c, WorldPoint p) { return std::atan2(c.y - p.y, p.x - c.x); }
// A rectangle's box from corners in either order.
template <typename Rect> Box Of(const Rect& r)
{
    return {double(std::min(r.left, r.right)), double(std::min(r.top, r.bottom)), double(std::max(r.left, r.right)),
            double(std::max(r.top, r.bottom))};
}
bool Within(const Box& in, const Box& out, double slack)
{
    return in.l >= out.l - slack && in.t >= out.t - slack && in.r <= out.r + slack && in.b <= out.b + slack;
}

// Whether the device ends lie in one quadrant of the drawn ellipse's box and the box rule goes the long way round.
bool LongWayInOneQuadrant(DeviceRect r, DevicePoint p1, DevicePoint p2)
{
    const DevicePoint m{(r.right + 1 - r.left) / 2 + r.left, (r.bottom + 1 - r.top) / 2 + r.top};
    auto quadrant = [&](DevicePoint p) { return p.y < m.y ? (p.x <= m.x ? 2 : 1) : (p.x <= m.x ? 3 : 4); };
    return quadrant(p1) == quadrant(p2) && (quadrant(p1) <= 2 ? p1.x <= p2.x : p2.x <= p1.x);
}

// 1 if surely in the border method's band (in the ellipse of the box grown by 4, out of that of the box shrunk by 4),
// -1 if surely out, 0 within 2.5 pixels of either: regions drop their right and bottom edges and round to pixels.
int BandSide(const DeviceRect& e, DevicePoint p)
{
    auto outside = [&](int grow, double slack) {
        const double a = (e.right - e.left) / 2.0 + grow + slack, b = (e.bottom - e.top) / 2.0 + grow + slack;
        const double x = p.x - (e.left + e.right) / 2.0, y = p.y - (e.top + e.bottom) / 2.0;
        return x * x / (a * a) + y * y / (b * b) > 1;
    };
    return !outside(4, -2.5) && outside(-4, 2.5) ? 1 : outside(4, 2.5) || !outside(-4, -2.5) ? -1 : 0;
}

const double kWorlds[4][4] = {{0, 200, 200, 0}, {0, 0, 200, 200}, {200, 200, 0, 0}, {200, 0, 0, 200}};

class Arcs : public ControlTest {
protected:
    Arcs() { Window(401, kWorlds[0]); }
    void Window(int32_t size, const double (&world)[4])
    {
        window.client = {0, 0, size, size};
        View().World.SetClientRect(window.client);
        control.WorldSet(world[0], world[1], world[2], world[3]);
    }
    CArcShape* Make(int16_t type, double cx, double cy, double rx, double ry, double a, double b)
    {
        constexpr auto kDraw = std::array{&CadControl::DrawArc, &CadControl::DrawPieSlice, &CadControl::DrawChord};
        number = (control.*kDraw[type - bvxArc])(cx, cy, rx, ry, a, b, 1);
        return static_cast<CArcShape*>(View().Buf.FindShape(number));
    }
    DeviceRect EllipseRect(const CArcShape& arc)
    {
        const WorldPoint c = arc.Centre, r{std::fabs(arc.Radius.x), std::fabs(arc.Radius.y)};
        return OrderedRect(View().World.WorldRectToDevice({c.x - r.x, c.y - r.y}, {c.x + r.x, c.y + r.y}));
    }
    // The outline, and which of it the platform's Arc draws (in exact device positions): from the ray through the
    // device start point counter-clockwise on the screen to the ray through the end point; one ray is the whole.
    struct Outline {
        Pts world, drawn;
        DevicePoint c, s, e;
        double from, span;
    };
    Outline Sample(const CArcShape& arc, int n)
    {
        const CadWorld& w = View().World;
        Outline o{EllipseSamples(arc.Centre, arc.Radius.x, arc.Radius.y, n), {}, w.WorldToDevice(arc.Centre),
                  w.WorldToDevice(arc.GetHandlePoint(2, View())), w.WorldToDevice(arc.GetHandlePoint(3, View())), 0,
                  kTwoPi};
        o.from = ScreenAngle(o.c, Exact(o.s));
        if (o.s != o.e) o.span = Ahead(o.from, ScreenAngle(o.c, Exact(o.e)));
        for (const WorldPoint& p : o.world) {
            const WorldPoint d{(p.x - w.OriginX) * w.SignX * w.ScaleX + w.ClientRect.left,
                               (p.y - w.OriginY) * w.SignY * w.ScaleY + w.ClientRect.top};
            if (Ahead(o.from, ScreenAngle(o.c, d)) <= o.span) o.drawn.push_back(d);
        }
        return o;
    }
    int32_t number = -1;
};

TEST(ArcCircleThroughThreePoints, CentreIsEquidistantAndSweepFollowsTheScreenTurn)
{
    std::mt19937 rng(31);
    std::uniform_real_distribution<double> coord(-100, 100);
    const int16_t signs[4][2] = {{1, -1}, {1, 1}, {-1, -1}, {-1, 1}};
    for (int i = 0; i < 400; ++i) {
        WorldPoint p[3];
        for (WorldPoint& q : p) q = {coord(rng), coord(rng)};
        const double cross = (p[1].x - p[0].x) * (p[2].y - p[0].y) - (p[1].y - p[0].y) * (p[2].x - p[0].x);
        if (std::fabs(cross) < 1) continue; // nearly on one line: the centre is beyond any fair tolerance
        for (const auto& [sx, sy] : signs) {
            const ThreePointCircle c = CircleThroughWorld(p[0], p[1], p[2], sx, sy);
            for (const WorldPoint& q : p) EXPECT_NEAR(Distance(q, c.centre), c.radius, 1e-9 * (c.radius + 100)) << i;
            // On the screen x runs with SignX, y against SignY; sweep 1 meets the second point first.
            auto on = [&](WorldPoint q) { return std::atan2(-sy * (q.y - c.centre.y), sx * (q.x - c.centre.x)); };
            EXPECT_EQ(c.sweep, Ahead(on(p[0]), on(p[1])) < Ahead(on(p[0]), on(p[2])) ? 1 : 2) << i << " " << sx << sy;
        }
    }
    const WorldPoint lines[][3] = {{{0, 0}, {1, 1}, {2, 2}}, {{5, 5}, {5, 5}, {5, 5}}, {{1, 2}, {1, 2}, {7, 9}},
                                   {{0, 5}, {0, -3}, {0, 1e6}}, {{-4, 6}, {2, -3}, {-10, 15}}}; // none a circle
    for (const auto& l : lines)
        for (const auto& [sx, sy] : signs) {
            const ThreePointCircle c = CircleThroughWorld(l[0], l[1], l[2], sx, sy);
            EXPECT_TRUE(c.sweep == 0 && !std::isnan(c.radius) && !std::isnan(c.centre.x) && !std::isnan(c.centre.y));
        }
}

// Random arcs under the four axis directions. The drawn part lies in the device and world bounds, which are no larger,
// save where the box rule keeps the whole ellipse for ends in one quadrant. On the border method a press within 2
// pixels of the drawn curve (clear of its ends) or a pixel of a pie's radius or a chord hits; one over 5 pixels from
// all of them, or off the drawn angles, misses.
TEST_F(Arcs, BoundsAndBorderHitsFollowTheDrawnPart)
{
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(0, 1);
    const double margin = 0.3 * kPi / 180; // the band measures angles in tenths of degrees
    int hits = 0, misses = 0;
    for (const auto& wd : kWorlds) {
        Window(401, wd);
        const CadWorld& w = View().World;
        for (int i = 0; i < 45; ++i) {
            const int16_t type = int16_t(bvxArc + i % 3);
            double v[6];
            for (double& x : v) x = u(rng);
            const bool grid = i < 6; // the hit grid on a few arcs, of moderate size and at most 2 to 1
            const double rx = grid ? 25 + 20 * v[2] : 8 + 62 * v[2];
            const double ry = grid ? rx * (0.6 + 0.9 * v[3]) : 8 + 62 * v[3];
            CArcShape* arc = Make(type, 60 + 80 * v[0], 60 + 80 * v[1], rx, ry, (2 * v[4] - 1) * kTwoPi,
                                  (2 * v[5] - 1) * kTwoPi);
            const Outline o = Sample(*arc, 1000);
            // In the world the drawn part runs counter-clockwise when exactly one axis runs against the device's.
            const double a = arc->StartAngle, z = arc->EndAngle;
            Box device, world;
            for (const WorldPoint& p : o.world) {
                const double th = std::atan2(p.y - arc->Centre.y, p.x - arc->Centre.x);
                if (w.SignX * w.SignY < 0 ? Ahead(a, th) <= Ahead(a, z) : Ahead(th, a) <= Ahead(z, a)) world.Take(p);
            }
            for (const WorldPoint& p : o.drawn) device.Take(p);
            device.Take(Exact(o.s)), device.Take(Exact(o.e));
            for (int h : {2, 3}) world.Take(arc->GetHandlePoint(h, View()));
            if (type == bvxPieSlice) device.Take(Exact(o.c)), world.Take(arc->Centre);
            const DeviceRect b = arc->BoundsAsRect(), box = EllipseRect(*arc);
            SCOPED_TRACE(::testing::Message() << "world " << wd[0] << "," << wd[1] << " shape " << i);
            EXPECT_TRUE(Within(device, Of(b), 1.5));
            if (!Within(Of(b), device, 2)) {
                EXPECT_TRUE(LongWayInOneQuadrant(box, o.s, o.e) && std::abs(b.left - box.left) <= 1 &&
                            std::abs(b.right - box.right) <= 2);
            }
            const WorldRect wb = arc->GetWorldBounds(View());
            EXPECT_TRUE((wb.right - wb.left) * w.SignX >= 0 && (wb.bottom - wb.top) * w.SignY >= 0);
            EXPECT_TRUE(Within(world, Of(wb), 1e-9) && Within(Of(wb), world, 1e-3));
            if (!grid) continue;
            control.PutShapeSearchMethod(number, 0);
            std::vector<Segment> segments;
            if (type == bvxPieSlice) segments = {{Exact(o.c), Exact(o.s)}, {Exact(o.c), Exact(o.e)}};
            if (type == bvxChord) segments = {{Exact(o.s), Exact(o.e)}};
            for (int32_t y = box.top - 10; y <= box.bottom + 10; y += 2)
                for (int32_t x = box.left - 10; x <= box.right + 10; x += 2) {
                    const WorldPoint q{double(x), double(y)};
                    const double toDrawn = ToNearest(o.drawn, q);
                    double toSegment = 1e9;
                    bool onSegment = false;
                    for (const Segment& s : segments) {
                        const double d = ToSegment(q, s), t = Foot(q, s);
                        toSegment = std::min(toSegment, d); // clear of the ends:
                        onSegment |= d <= 1 && t > 0.05 && t < 0.95 && Dist(s.a, s.b) > 20;
                    }
                    const double at = Ahead(o.from, ScreenAngle(o.c, q));
                    const int band = BandSide(box, {x, y});
                    const bool within = at > margin && at < o.span - margin;
                    const bool mustHit = (toDrawn <= 2 && within && band == 1) || onSegment;
                    const bool beyond = at > o.span + margin && at < kTwoPi - margin;
                    const bool mustMiss = toDrawn > 5 && toSegment > 5 && (band == -1 || beyond);
                    if (!mustHit && !mustMiss) continue;
                    EXPECT_EQ(arc->HitTest({x, y}, View()) != 0, mustHit)
                        << "at " << x << "," << y << " to curve " << toDrawn << " to segment " << toSegment;
                    ++(mustHit ? hits : misses);
                }
        }
    }
    EXPECT_TRUE(hits > 4000 && misses > 140000) << hits << " " << misses;
}

// Hits worked out by hand are a script case (scripts/hits_by_hand.bvxs).
TEST_F(Arcs, HandlesPointsAndDrags)
{
    Window(101, {0, 100, 100, 0});
    CArcShape* arc = Make(bvxArc, 50, 50, 30, 20, 0.5, 4.0);
    // The centre, then the ends on the ellipse at their polar angles; a press on the centre answers 9 (the radii).
    const double angles[] = {0, 0.5, 4.0};
    for (int h = 1; h <= 3; ++h) {
        const WorldPoint p = arc->GetHandlePoint(h, View());
        const DevicePoint d = View().World.WorldToDevice(p);
        const double onEllipse = std::pow((p.x - 50) / 30, 2) + std::pow((p.y - 50) / 20, 2);
        EXPECT_TRUE(h == 1 ? Near(p, {50, 50}) : SameAngle(std::atan2(p.y - 50, p.x - 50), angles[h - 1]) &&
                                                     std::fabs(onEllipse - 1) < 1e-12);
        EXPECT_EQ(arc->HitHandle({d.x + 2, d.y - 2}, 1, View()), h == 1 ? 9 : h);
    }
    EXPECT_EQ(arc->HitHandle({35, 50}, 1, View()), 0);
    for (const auto& [handle, point] : {std::pair{1, -1}, std::pair{2, 2}, std::pair{3, 2}, std::pair{9, 1}})
        EXPECT_EQ(arc->HandleToPoint(handle), point) << handle;
    // Radii from (30, 20): 9 by difference, 1 to the point; orthogonal drawing equalizes them by the larger move.
    const std::tuple<bool, int, WorldPoint, WorldPoint> drags[] = {
        {false, 9, {3, -1}, {33, 19}},  {true, 9, {3, -1}, {33, 33}},  {true, 9, {1, -4}, {16, 16}},
        {false, 1, {12, 25}, {12, 25}}, {true, 1, {12, 25}, {25, 25}}, {true, 1, {40, 5}, {40, 40}}};
    for (const auto& [ortho, handle, move, radius] : drags) {
        control.ShapePointSet(number, 1, 30, 20);
        control.PutViewDrawOrthogonal(ortho);
        sink.events.clear();
        arc->MoveHandle(handle, move, View());
        const std::string event = "DrawRadius " + std::to_string(int(radius.x)) + " " + std::to_string(int(radius.y));
        EXPECT_TRUE(arc->Radius == radius && sink.events == std::vector<std::string>{event}) << handle << ortho;
    }
    control.PutViewDrawOrthogonal(false);
    // Angle handles: the point's angle about the centre; degrees in the read-out cut along an axis or diagonal.
    const std::tuple<int16_t, int, WorldPoint, double> turns[] = {
        {1, 2, {50 + 1e-8, 80}, 89}, {1, 3, {50 - 1e-8, 80}, 90}, {1, 2, {40, 60}, 135}, {1, 3, {60, 40}, 315},
        {1, 2, {60, 53}, std::atan2(3.0, 10.0) * 180 / kPi},      {0, 3, {60, 53}, std::atan2(3.0, 10.0)}};
    for (const auto& [angleMode, handle, point, readout] : turns) {
        control.PutAngleMode(angleMode);
        arc->MoveHandle(handle, point, View());
        const double angle = std::atan2(point.y - 50, point.x - 50);
        EXPECT_DOUBLE_EQ(handle == 2 ? arc->StartAngle : arc->EndAngle, angle + (angle < 0 ? kTwoPi : 0));
        EXPECT_NEAR(View().ReadoutAngle, readout, 1e-9) << point.x << "," << point.y;
    }
    // Point 2 goes in by kDegree in degree mode; how it reads out is a script case (scripts/arc_members.bvxs).
    arc = Make(bvxArc, 50, 50, 20, 20, kPi / 2 - 1e-9, 1.0);
    control.PutAngleMode(1);
    control.ShapePointSet(number, 2, 45, 300);
    EXPECT_TRUE(arc->StartAngle == 45 * kDegree && arc->EndAngle == 300 * kDegree);
    control.ShapePointSetX(number, 2, 10); // the end goes out and back in degrees, unrounded
    EXPECT_TRUE(arc->StartAngle == 10 * kDegree && std::fabs(arc->EndAngle - 300 * kDegree) < 1e-10);
    arc = Make(bvxChord, 50, 50, 20, 20, 30, 135);
    EXPECT_TRUE(arc->StartAngle == 30 * kDegree && arc->EndAngle == 135 * kDegree);
}

// Mirrors and uniform scales carry the centre and the ends along (a mirror swaps them); other scales the radii, as a
// script case shows (scripts/arc_scale.bvxs).
TEST_F(Arcs, TransformsKeepTheFigure)
{
    Window(101, {0, 100, 100, 0});
    CArcShape* arc = Make(bvxPieSlice, 40, 30, 30, 12, 0.4, 2.5);
    // ShapeReflect by mode, or LayerScale by factors, about (20, 10).
    const std::tuple<bool, int16_t, double, double> mirrors[] = {{0, 0, 1, -1}, {0, 1, -1, 1}, {0, 2, -1, -1},
                                                                 {1, 0, -2, -2}, {1, 0, -1, 1}, {1, 0, 1, -1}};
    for (const auto& [scale, mode, fx, fy] : mirrors) {
        auto map = [&](WorldPoint p) { return WorldPoint{20 + fx * (p.x - 20), 10 + fy * (p.y - 10)}; };
        const WorldPoint c = map(arc->Centre), r{arc->Radius.x * std::fabs(fx), arc->Radius.y * std::fabs(fy)};
        WorldPoint start = map(arc->PointAt(arc->StartAngle)), end = map(arc->PointAt(arc->EndAngle));
        if (fx * fy < 0) std::swap(start, end);
        scale ? control.LayerScale(1, 20, 10, fx, fy) : control.ShapeReflect(number, mode, 20, 10);
        EXPECT_TRUE(Near(arc->Centre, c) && Near(arc->Radius, r)) << scale << " " << mode;
        EXPECT_TRUE(Near(arc->PointAt(arc->StartAngle), start) && Near(arc->PointAt(arc->EndAngle), end)) << mode;
    }
    // Random mirrors (modes 0 to 2) and turns (3 ShapeRotate, 4 LayerRotate, the latter through kDegree once more in
    // degree mode): angles turn with the centre, by half a turn more once the cosine is negative, stay within two turns
    // either way, and radii stay.
    std::mt19937 rng(5);
    for (int i = 0; i < 400; ++i) {
        const int16_t deg = int16_t(int(rng() % 341) - 170), mode = int16_t(rng() % 5), angleMode = int16_t(rng() % 2);
        control.PutAngleMode(angleMode);
        const double r = deg * kDegree * (mode == 4 && angleMode ? kDegree : 1), s = arc->StartAngle;
        const double turn = mode == 2 ? kPi : mode < 2 ? 0 : r + (std::cos(r) < 0 ? kPi : 0);
        const WorldPoint c = arc->Centre, radius = arc->Radius;
        double a = s, b = arc->EndAngle;
        if (mode < 3) control.ShapeReflect(number, mode, 50, 50);
        if (mode == 3) control.ShapeRotate(number, deg, 50, 50);
        if (mode == 4) control.LayerRotate(1, deg, 50, 50);
        if (mode < 2) a = -(b + mode * kPi), b = -(s + mode * kPi);
        a += turn, b += turn;
        ASSERT_TRUE(std::fabs(arc->StartAngle) <= kTwoPi && std::fabs(arc->EndAngle) <= kTwoPi) << i;
        ASSERT_TRUE(SameAngle(arc->StartAngle, a) && SameAngle(arc->EndAngle, b)) << i << " mode " << mode;
        if (mode < 3) continue;
        EXPECT_TRUE(Near(arc->Centre, {50 + (c.x - 50) * std::cos(r) - (c.y - 50) * std::sin(r),
                                       50 + (c.x - 50) * std::sin(r) + (c.y - 50) * std::cos(r)}));
        EXPECT_TRUE(arc->Radius == radius && View().World.LastRotation == deg * (mode == 4 && angleMode ? kDegree : 1));
    }
}

// The area of a polygon through the figure, sampled counter-clockwise between the ends; a pie starts at the centre.
// Circles at any angles; ellipses with ends on the axes are a script case (scripts/arc_areas.bvxs).
TEST_F(Arcs, AreasOfPieAndChord)
{
    auto figureArea = [](int16_t type, double r, double a, double b) {
        Pts poly(type == bvxPieSlice ? 1 : 0);
        for (int i = 0; i <= 20000; ++i)
            poly.push_back({r * std::cos(a + Ahead(a, b) * i / 20000), r * std::sin(a + Ahead(a, b) * i / 20000)});
        return std::fabs(ShoelaceTwice(poly)) / 2;
    };
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> u(0, 1);
    for (int i = 0; i < 40; ++i) {
        const int16_t type = i % 2 ? bvxChord : bvxPieSlice;
        const double r = 5 + 40 * u(rng), a = u(rng) * kTwoPi, b = u(rng) * kTwoPi;
        Make(type, 50, 50, r, r, a, b);
        EXPECT_NEAR(control.GetShapeArea(number), figureArea(type, r, a, b), 1e-6 * r * r) << type << " " << a;
    }
}

} // namespace
} // namespace bvx::shapetest
