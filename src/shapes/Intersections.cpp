#include "Intersections.h"

#include "CEllipseShape.h"
#include "CPolyShape.h"
#include "CRectShape.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {

constexpr double kTiny = 1e-7;

double Slack(double v) { return (std::fabs(v) + 1) * kTiny; }

bool OnSegment(const WorldPoint& p, const WorldPoint& a, const WorldPoint& b)
{
    const double minX = std::min(a.x, b.x), maxX = std::max(a.x, b.x);
    const double minY = std::min(a.y, b.y), maxY = std::max(a.y, b.y);
    return p.x >= minX - Slack(minX) && p.x <= maxX + Slack(maxX) && p.y >= minY - Slack(minY) &&
           p.y <= maxY + Slack(maxY);
}

// What a shape is when it meets another: a segment, a path of points, a circle.
struct Figure {
    enum class Kind { None, Line, Path, Circle } kind = Kind::None;
    std::vector<WorldPoint> points; // the line's two ends, or the path
    bool closed = false;            // a polygon's last point joins its first
    WorldPoint centre{};
    double radius = 0;
};

Figure FigureOf(const CObjShape& shape)
{
    Figure f;
    const int16_t type = shape.GetShapeType();
    if (const auto* rect = dynamic_cast<const CRectShape*>(&shape)) {
        if (type == bvxLine) {
            f.kind = Figure::Kind::Line;
            f.points = {rect->P1, rect->P2};
        } else if (type == bvxRectangle) {
            // A rectangle meets others as the polygon of its corners.
            f.kind = Figure::Kind::Path;
            f.closed = true;
            f.points = {rect->P1, {rect->P2.x, rect->P1.y}, rect->P2, {rect->P1.x, rect->P2.y}};
        }
    } else if (const auto* poly = dynamic_cast<const CPolyShape*>(&shape)) {
        if (type == bvxPolyline || type == bvxPolygon || type == bvxFreehand) {
            f.kind = Figure::Kind::Path;
            f.closed = type == bvxPolygon;
            f.points = poly->Points;
        }
    } else if (const auto* ellipse = dynamic_cast<const CEllipseShape*>(&shape); ellipse && type == bvxCircle) {
        f.kind = Figure::Kind::Circle;
        f.centre = ellipse->Centre;
        f.radius = ellipse->RadiusX;
    }
    return f;
}

bool PathCross(const Figure& path, const Figure& other, std::vector<WorldPoint>& results)
{
    const size_t n = path.points.size();
    if (n < 2) return false;
    const size_t segments = path.closed ? n : n - 1;
    bool any = false;
    for (size_t i = 0; i < segments; ++i) {
        const WorldPoint& a = path.points[i];
        const WorldPoint& b = path.points[(i + 1) % n];
        switch (other.kind) {
        case Figure::Kind::Line: {
            WorldPoint p;
            if (SegmentsCross(a, b, other.points[0], other.points[1], p)) any |= AddUniquePoint(results, p);
            break;
        }
        case Figure::Kind::Path: {
            Figure segment;
            segment.kind = Figure::Kind::Line;
            segment.points = {a, b};
            any |= PathCross(other, segment, results);
            break;
        }
        case Figure::Kind::Circle: any |= SegmentCrossCircle(a, b, other.centre, other.radius, results); break;
        case Figure::Kind::None: break;
        }
    }
    return any;
}

} // namespace

bool SegmentsCross(const WorldPoint& a1, const WorldPoint& a2, const WorldPoint& b1, const WorldPoint& b2,
                   WorldPoint& out)
{
    const WorldPoint d{a2.x - a1.x, a2.y - a1.y}, e{b2.x - b1.x, b2.y - b1.y};
    const double den = d.y * e.x - d.x * e.y;
    // Parallel lines report nothing, overlapping ones included.
    if (den == 0) return false;
    const WorldPoint w{b1.x - a1.x, b1.y - a1.y};
    const double ua = (w.y * e.x - w.x * e.y) / den, ub = (w.y * d.x - w.x * d.y) / den;
    if (!(ua >= 0 && ua <= 1 && ub >= 0 && ub <= 1)) return false;
    out = {a1.x + ua * d.x, a1.y + ua * d.y};
    return true;
}

bool SegmentCrossCircle(const WorldPoint& p1, const WorldPoint& p2, const WorldPoint& centre, double radius,
                        std::vector<WorldPoint>& results)
{
    const WorldPoint d{p2.x - p1.x, p2.y - p1.y};
    if (d.x == 0 && d.y == 0) return false;
    const double length = std::hypot(d.x, d.y);
    const WorldPoint u{d.x / length, d.y / length};
    const WorldPoint w{centre.x - p1.x, centre.y - p1.y};
    const double c = w.y * u.x - w.x * u.y;
    const double disc = radius * radius - c * c;
    if (disc < 0) return false;
    const double k = w.y * u.y + w.x * u.x;
    bool any = false;
    auto take = [&](double along) {
        const WorldPoint p{p1.x + along * u.x, p1.y + along * u.y};
        if (!OnSegment(p, p1, p2)) return;
        results.push_back(p);
        any = true;
    };
    if (disc == 0) {
        take(k);
    } else {
        const double h = std::sqrt(disc);
        take(k - h);
        take(k + h);
    }
    return any;
}

bool CirclesCross(const WorldPoint& c1, double r1, const WorldPoint& c2, double r2, std::vector<WorldPoint>& results)
{
    const double dx = c1.x - c2.x, dy = c1.y - c2.y, D = dx * dx + dy * dy;
    // Concentric circles, equal ones included, report nothing.
    if (D <= kTiny) return false;
    const double g = r2 * r2 - r1 * r1;
    const double K = 2 * (r2 * r2 + r1 * r1) * D - D * D - g * g;
    if (K < -kTiny) return false;
    const double i = 0.5 / D, t = 0.5 - g * i;
    const double xm = c1.x > c2.x + Slack(c2.x) ? c1.x - std::fabs(dx) * t : c1.x + std::fabs(dx) * t;
    const double ym = c1.y > c2.y + Slack(c2.y) ? c1.y - std::fabs(dy) * t : c1.y + std::fabs(dy) * t;
    if (std::fabs(K) > kTiny) {
        const double h = std::sqrt(K) * i;
        results.push_back({xm - h * dy, ym + h * dx});
        results.push_back({xm + h * dy, ym - h * dx});
    } else {
        results.push_back({xm, ym});
    }
    return true;
}

bool AddUniquePoint(std::vector<WorldPoint>& results, const WorldPoint& p)
{
    for (const WorldPoint& q : results)
        if (std::fabs(q.x - p.x) <= Slack(p.x) && std::fabs(q.y - p.y) <= Slack(p.y)) return false;
    results.push_back(p);
    return true;
}

bool CanIntersect(const CObjShape& shape) { return FigureOf(shape).kind != Figure::Kind::None; }

bool IntersectPoints(const CObjShape& self, const CObjShape& other, std::vector<WorldPoint>& results)
{
    using Kind = Figure::Kind;
    const Figure a = FigureOf(self), b = FigureOf(other);
    if (a.kind == Kind::None || b.kind == Kind::None) return false;
    if (a.kind == Kind::Path) return PathCross(a, b, results);
    if (a.kind == Kind::Line && b.kind == Kind::Line) {
        WorldPoint p;
        if (!SegmentsCross(a.points[0], a.points[1], b.points[0], b.points[1], p)) return false;
        results.push_back(p);
        return true;
    }
    if (a.kind == Kind::Line && b.kind == Kind::Circle)
        return SegmentCrossCircle(a.points[0], a.points[1], b.centre, b.radius, results);
    if (a.kind == Kind::Circle && b.kind == Kind::Line)
        return SegmentCrossCircle(b.points[0], b.points[1], a.centre, a.radius, results);
    if (a.kind == Kind::Circle && b.kind == Kind::Circle) return CirclesCross(a.centre, a.radius, b.centre, b.radius, results);
    // A line or circle against a path: the path's segments meet it.
    return PathCross(b, a, results);
}

} // namespace bvx
