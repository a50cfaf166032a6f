// Point-list shapes against geometry worked out here on its own: crossings
// from the line and circle equations, areas by the shoelace formula, spline
// hits against a Catmull-Rom curve sampled here; all through the members.
#include "ShapeTestSupport.h"

#include <limits>
#include <random>
#include <tuple>

namespace bvx::shapetest {
namespace {

// A shape as the test sees it: a circle (or ellipse), or a line or path of points.
struct Figure {
    int16_t type;
    Pts points;
    WorldPoint centre{};
    double radius = 0;
    std::vector<Segment> Segments() const { return Edges(points, type == bvxPolygon || type == bvxRectangle); }
    double Off(WorldPoint p) const
    {
        double best = type == bvxCircle ? std::fabs(Dist(p, centre) - radius) : 1e300;
        for (const Segment& s : Segments()) best = std::min(best, ToSegment(p, s));
        return best;
    }
};
Figure Circle(double x, double y, double r) { return {bvxCircle, {}, {x, y}, r}; }
Figure Rect(WorldPoint a, WorldPoint b) { return {bvxRectangle, {a, {b.x, a.y}, b, {a.x, b.y}}}; }
Figure Through(int16_t type, Pts points) { return {type, std::move(points)}; }

// Where two figures meet; `clear` is false when a meeting lies too near an
// end or a tangent for the answer to be certain either way.
struct Meetings {
    Pts points;
    bool clear = true;
    Meetings(const Figure& f, const Figure& g)
    {
        auto within = [&](double t) {
            return (clear &= std::fabs(t) > 1e-6 && std::fabs(t - 1) > 1e-6), t > 0 && t < 1;
        };
        if (f.type == bvxCircle && g.type == bvxCircle) {
            // The common chord, on the line of the centres.
            const double d = Dist(f.centre, g.centre), r1 = f.radius, r2 = g.radius;
            const double a = (r1 * r1 - r2 * r2 + d * d) / (2 * d), h = std::sqrt(r1 * r1 - a * a) / d;
            const WorldPoint m = Along({f.centre, g.centre}, a / d),
                             e{g.centre.x - f.centre.x, g.centre.y - f.centre.y};
            clear = std::fabs(r1 * r1 - a * a) > 1e-6 * r1 * r1;
            if (h > 0) points = {{m.x - h * e.y, m.y + h * e.x}, {m.x + h * e.y, m.y - h * e.x}};
        } else if (f.type == bvxCircle || g.type == bvxCircle) {
            // Each segment's parametric form put into (x - cx)^2 + (y - cy)^2 = r^2.
            const Figure& c = f.type == bvxCircle ? f : g;
            for (const Segment& s : (f.type == bvxCircle ? g : f).Segments()) {
                const double dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
                const double fx = s.a.x - c.centre.x, fy = s.a.y - c.centre.y, qa = dx * dx + dy * dy;
                const double qb = 2 * (fx * dx + fy * dy),
                             disc = qb * qb - 4 * qa * (fx * fx + fy * fy - c.radius * c.radius);
                clear &= std::fabs(disc) > 1e-6 * qa * c.radius * c.radius;
                for (double sign : {-1, 1})
                    if (const double t = (-qb + sign * std::sqrt(disc)) / (2 * qa); disc > 0 && within(t))
                        points.push_back(Along(s, t));
            }
        } else {
            // Cramer's rule on the lines a x + b y = c.
            for (const auto& [s1, s2] : f.Segments())
                for (const auto& [t1, t2] : g.Segments()) {
                    const double A1 = s2.y - s1.y, B1 = s1.x - s2.x, C1 = A1 * s1.x + B1 * s1.y;
                    const double A2 = t2.y - t1.y, B2 = t1.x - t2.x, C2 = A2 * t1.x + B2 * t1.y,
                                 det = A1 * B2 - A2 * B1;
                    clear &= std::fabs(det) > 1e-6 * std::hypot(A1, B1) * std::hypot(A2, B2);
                    const WorldPoint p{(B2 * C1 - B1 * C2) / det, (A1 * C2 - A2 * C1) / det};
                    if (det != 0 && within(Foot(p, {s1, s2})) & within(Foot(p, {t1, t2}))) points.push_back(p);
                }
        }
    }
};

// Uniform Catmull-Rom in its matrix form: `perSpan` steps of t on each span,
// points 0 to `last` of them; an open curve doubles its end points, and short
// of a whole span at the end it takes its last point.
Pts SplineSamples(const Pts& c, bool closed, int perSpan, int last)
{
    const int n = int(c.size());
    auto at = [&](int i) { return closed ? c[size_t((i + n) % n)] : c[size_t(std::clamp(i, 0, n - 1))]; };
    auto q = [](double a, double b, double c, double d, double t) {
        return 0.5 * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t * t + (3 * b - a - 3 * c + d) * t * t * t);
    };
    Pts out;
    for (int k = 0; k < (closed ? n : n - 1); ++k)
        for (int j = 0; j <= last; ++j) {
            const WorldPoint a = at(k - 1), b = at(k), cc = at(k + 1), d = at(k + 2);
            out.push_back({q(a.x, b.x, cc.x, d.x, double(j) / perSpan), q(a.y, b.y, cc.y, d.y, double(j) / perSpan)});
        }
    if (!closed && last < perSpan) out.push_back(c.back());
    return out;
}

// Distance from a pixel to a path of pixels, and whether the border rule, which measures along an axis with
// whole-pixel slopes, is sure to hit it: within a pixel of a slanted segment, two of an upright or level one.
double Nearest(const Pts& path, bool closed, WorldPoint q, bool& sure)
{
    double nearest = 1e300;
    for (const Segment& s : Edges(path, closed)) {
        const double t = s.a == s.b ? -1 : Foot(q, s);
        nearest = std::min(nearest, ToSegment(q, s));
        sure |= t >= 0 && t <= 1 && Dist(q, Along(s, t)) <= (s.a.x == s.b.x || s.a.y == s.b.y ? 2 : 1);
    }
    return nearest;
}

class Poly : public ControlTest {
protected:
    int32_t Make(const Figure& f, int16_t layer = 1)
    {
        const Pts& p = f.points;
        const WorldPoint c = f.centre;
        if (f.type == bvxCircle) return control.DrawCircle(c.x, c.y, f.radius, layer);
        if (f.type == bvxLine) return control.DrawLine(p[0].x, p[0].y, p[1].x, p[1].y, layer);
        return f.type == bvxRectangle ? control.DrawRectangle(p[0].x, p[0].y, p[2].x, p[2].y, layer)
                                      : Path(f.type, p, layer);
    }
    // The rows of ShapeIntersectPoints: the partners' numbers and the points.
    std::pair<std::vector<int32_t>, Pts> Crossings(int32_t n, int16_t layer = -1)
    {
        const Variant v = control.ShapeIntersectPoints(n, layer);
        EXPECT_TRUE(v.TypeWord() == 0x200C && v.Dimensions() == 2 && v.Columns() == 3); // N by 3 variants, N may be 0
        std::pair<std::vector<int32_t>, Pts> rows;
        for (int32_t i = 0; v.Columns() == 3 && i < v.Rows(); ++i) {
            EXPECT_TRUE(v.At(i, 0).Type() == VarType::I4 && v.At(i, 1).Type() == VarType::R8);
            rows.first.push_back(int32_t(v.At(i, 0).Integer()));
            rows.second.push_back({v.At(i, 1).Real(), v.At(i, 2).Real()});
        }
        return rows;
    }
};

// Random meetings against the equations, each point also on both outlines.
// Fixed ones are a script case (scripts/crossings_by_hand.bvxs).
TEST_F(Poly, CrossingsMatchTheLineAndCircleEquations)
{
    std::vector<std::tuple<Figure, Figure, Pts>> pairs;
    std::mt19937 rng(2024);
    std::uniform_int_distribution<int> milli(0, 100000);
    auto at = [&] { return WorldPoint{milli(rng) / 1000.0, milli(rng) / 1000.0}; };
    auto random = [&](int16_t type) {
        if (type == bvxCircle) return Circle(at().x, at().y, 5 + milli(rng) / 3000.0);
        if (type == bvxRectangle) return Rect(at(), at());
        return type == bvxLine ? Through(type, {at(), at()}) : Through(type, {at(), at(), at(), at(), at()});
    };
    const int16_t kinds[] = {bvxLine, bvxCircle, bvxPolyline, bvxPolygon, bvxFreehand, bvxRectangle};
    for (int trial = 0; trial < 720; ++trial) {
        const Figure f = random(kinds[trial % 6]), g = random(kinds[trial / 6 % 6]);
        if (const Meetings want(f, g); want.clear) pairs.push_back({f, g, want.points});
    }
    size_t found = 0;
    for (size_t i = 0; i < pairs.size(); ++i) {
        const auto& [f, g, want] = pairs[i];
        const int32_t nf = Make(f), ng = Make(g);
        for (auto [self, partner] : {std::pair{nf, ng}, std::pair{ng, nf}}) {
            const auto [numbers, points] = Crossings(self);
            ASSERT_EQ(points.size(), want.size()) << "pair " << i << ": types " << f.type << ", " << g.type;
            EXPECT_EQ(numbers, std::vector<int32_t>(points.size(), partner));
            for (WorldPoint p : points) EXPECT_LT(std::max(f.Off(p), g.Off(p)), 1e-6) << i;
            for (WorldPoint p : want)
                EXPECT_TRUE(std::any_of(points.begin(), points.end(), [&](WorldPoint q) { return Dist(p, q) < 1e-6; }));
            found += points.size();
        }
        control.ShapeDelete(nf);
        control.ShapeDelete(ng);
    }
    EXPECT_GT(pairs.size(), 647u);
    EXPECT_GT(found, 2484u);
}

TEST_F(Poly, PolygonAreaIsTheShoelaceArea)
{
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> turn(0, 2 * kPi);
    std::uniform_int_distribution<int> radius(5, 500), offset(-1000000, 1000000);
    for (int i = 0; i < 200; ++i) {
        std::vector<double> angles(size_t(3 + i % 12));
        for (double& a : angles) a = turn(rng);
        std::sort(angles.begin(), angles.end()); // star-shaped about the offset
        const double ox = offset(rng), oy = offset(rng);
        Pts v; // whole numbers about the offset, so that the sum is exact
        double r;
        for (double a : angles) v.push_back({std::round((r = radius(rng)) * std::cos(a)), std::round(r * std::sin(a))});
        const double twice = ShoelaceTwice(v);
        for (WorldPoint& p : v) p = {p.x + ox, p.y + oy};
        EXPECT_EQ(control.GetShapeArea(Path(bvxPolygon, v)), std::fabs(twice) / 2) << i;
        EXPECT_EQ(control.GetShapeArea(Path(i % 2 ? bvxPolyline : bvxClosedSpline, v)), 0.0);
    }
    EXPECT_EQ(control.GetShapeArea(Path(bvxPolygon, {{0, 0}, {10, 0}})), 0.0);
}

// Over every pixel, on the border method: a pixel within sure reach of the
// outline hits, one beyond 5 pixels misses.
TEST_F(Poly, HitTestsFollowTheOutlineOverAGrid)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> whole(8, 92);
    std::uniform_real_distribution<double> real(15, 85);
    auto pick = [&](bool integral) { return integral ? double(whole(rng)) : real(rng); };
    auto points = [&](int n, bool integral) {
        Pts p(size_t(n), WorldPoint{});
        for (WorldPoint& q : p) q = {pick(integral), pick(integral)};
        return p;
    };
    const std::pair<int16_t, Pts> shapes[] = {
        {bvxPolyline, points(6, true)}, {bvxFreehand, points(8, true)}, {bvxSpline, points(5, false)},
        {bvxPolygon, {{20, 15}, {55, 30}, {85, 10}, {75, 55}, {90, 85}, {45, 70}, {10, 90}, {30, 50}}},
        {bvxPolygon, {{10, 10}, {60, 10}, {60, 40}, {85, 40}, {85, 90}, {10, 90}}}, {bvxClosedSpline, points(4, false)},
    };
    for (const auto& [type, given] : shapes) {
        const int32_t n = Path(type, given);
        const Pts held = Points(n);
        Pts path;
        for (WorldPoint p : type >= bvxSpline ? SplineSamples(held, type == bvxClosedSpline, 20, 20) : held)
            path.push_back(Exact(View().World.WorldToDevice(p)));
        Box box; // the stored box of the points in pixels, grown by 3, without its right and bottom edges
        for (WorldPoint p : held) box.Take(Exact(View().World.WorldToDevice(p)));
        int sure = 0, clear = 0;
        for (int y = 0; y <= 100; ++y)
            for (int x = 0; x <= 100; ++x) {
                bool near = false;
                const double gap = Nearest(path, type == bvxPolygon, {double(x), double(y)}, near);
                near &= x >= box.l - 3 && x < box.r + 3 && y >= box.t - 3 && y < box.b + 3;
                const int32_t hit = control.ShapeHitTest(x, 100 - y, 0);
                if (near || gap > 5) {
                    EXPECT_EQ(hit, near ? n : -1) << type << " at " << x << "," << y;
                }
                sure += near, clear += gap > 5;
            }
        EXPECT_TRUE(sure > 100 && clear > 3000) << type;
        control.ShapeDelete(n);
    }
}

// ShapeConvert's rows are a script case (scripts/point_list_conversions.bvxs);
// steps no script can write, never ending or not a number, are refused here,
// and the shape, its selection and the host stay as they were.
TEST_F(Poly, ConversionsRefuseStepsNoScriptCanWriteAndFullShapes)
{
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    const std::tuple<int32_t, int16_t, int16_t, double> rows[] = {
        {control.DrawThreePointArc(80, 50, 68, 74, 50, 80, 1), bvxPolyline, 1, inf},
        {control.DrawCircle(50, 50, 20, 1), bvxPolygon, 1, nan},
        {Path(bvxSpline, {{10, 10}, {30, 40}, {60, 20}, {90, 60}}), bvxPolyline, 0, inf}};
    for (const auto& [n, to, mode, value] : rows) {
        const int16_t type = control.GetShapeType(n);
        const Pts before = Points(n);
        control.ShapeSelect(n, false);
        sink.events.clear();
        EXPECT_FALSE(control.ShapeConvert(n, to, mode, value)) << type;
        EXPECT_TRUE(sink.events.empty() && control.GetShapeIsSelected(n));
        EXPECT_EQ(control.GetShapeType(n), type);
        EXPECT_EQ(Points(n), before);
    }
    EXPECT_FALSE(control.ShapeConvert(9999, bvxPolygon, 0, 0));
    // A full shape takes no point more; opened after a delete, it takes the one it needs.
    const int32_t full = control.DrawCircle(50, 50, 20, 1);
    ASSERT_TRUE(control.ShapeConvert(full, bvxPolygon, 1, 32766.5) && control.GetShapePointCount(full) == 32767);
    control.ShapePointSet(full, 32767, 1, 1);
    EXPECT_FALSE(control.ShapePointInsert(full, 0, 1, 1));
    EXPECT_TRUE(control.GetShapePointCount(full) == 32767 && control.ShapePointDelete(full, 0));
    EXPECT_TRUE(control.ShapeConvert(full, bvxPolyline, 3, 0) && control.GetShapePointCount(full) == 32767);
    EXPECT_EQ(Points(full).back(), Points(full).front());
}

} // namespace
} // namespace bvx::shapetest
