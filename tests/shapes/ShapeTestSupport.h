// What the shape tests share: plane geometry worked out here on its own, so that no answer comes from the code under
// test, and a control driven through the members a host calls.
#pragma once

#include "control/CadControl.h"
#include "control/HostDoubles.h"
#include "platform/DeviceContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace bvx::shapetest {

using Pts = std::vector<WorldPoint>;
constexpr double kPi = std::numbers::pi, kTwoPi = 2 * std::numbers::pi;
constexpr double kDegree = 0.01745329252; // the interface's degree, a little off pi / 180

inline double Dist(WorldPoint a, WorldPoint b) { return std::hypot(a.x - b.x, a.y - b.y); }
inline bool Near(WorldPoint a, WorldPoint b) { return Dist(a, b) < 1e-9; }
// How far `to` lies counter-clockwise of `from`, in [0, 2 pi).
inline double Ahead(double from, double to) { return std::fmod(std::fmod(to - from, kTwoPi) + kTwoPi, kTwoPi); }
inline bool SameAngle(double a, double b) { return std::min(Ahead(a, b), Ahead(b, a)) < 1e-12; }

struct Segment {
    WorldPoint a, b;
};
inline WorldPoint Along(Segment s, double t) { return {s.a.x + t * (s.b.x - s.a.x), s.a.y + t * (s.b.y - s.a.y)}; }
inline double Foot(WorldPoint p, Segment s) // 0 at the start, 1 at the end
{
    return ((p.x - s.a.x) * (s.b.x - s.a.x) + (p.y - s.a.y) * (s.b.y - s.a.y)) / std::pow(Dist(s.a, s.b), 2);
}
inline double ToSegment(WorldPoint p, Segment s)
{
    return s.a == s.b ? Dist(p, s.a) : Dist(p, Along(s, std::clamp(Foot(p, s), 0.0, 1.0)));
}
// The segments of a path of points, back to the first when closed.
inline std::vector<Segment> Edges(const Pts& p, bool closed)
{
    std::vector<Segment> s;
    for (size_t i = 1; i < p.size() + (closed && p.size() > 1 ? 1 : 0); ++i) s.push_back({p[i - 1], p[i % p.size()]});
    return s;
}
inline WorldPoint Exact(DevicePoint p) { return {double(p.x), double(p.y)}; }

// A box grown point by point.
struct Box {
    double l = 1e300, t = 1e300, r = -1e300, b = -1e300;
    void Take(WorldPoint p) { l = std::min(l, p.x), t = std::min(t, p.y), r = std::max(r, p.x), b = std::max(b, p.y); }
};

// `n` points of an upright ellipse evenly spaced in the eccentric angle, from angle 0.
inline Pts EllipseSamples(WorldPoint c, double rx, double ry, int n)
{
    Pts p;
    for (int i = 0; i < n; ++i) p.push_back({c.x + rx * std::cos(i * kTwoPi / n), c.y + ry * std::sin(i * kTwoPi / n)});
    return p;
}
inline double ToNearest(const Pts& samples, WorldPoint p)
{
    double best = 1e300;
    for (WorldPoint q : samples) best = std::min(best, Dist(p, q));
    return best;
}
// Twice the signed area of a closed ring of points.
inline double ShoelaceTwice(const Pts& v)
{
    double twice = 0;
    for (size_t i = 0, j = v.size() - 1; i < v.size(); j = i++) twice += v[j].x * v[i].y - v[i].x * v[j].y;
    return twice;
}

class ControlTest : public ::testing::Test {
protected:
    ControlTest() : control(&window, &sink) { View().World.SetClientRect(window.client); }
    CadView& View() { return control.View(); }
    // What the window shows, painted afresh.
    std::unique_ptr<DeviceContext> Painted()
    {
        std::unique_ptr<DeviceContext> dc = window.GetDC();
        View().Redraw(0);
        control.OnDraw(&window, *dc, window.GetClientRect());
        return dc;
    }
    int32_t Path(int16_t type, const Pts& points, int16_t layer = 1)
    {
        const int32_t n = control.ShapeAdd(type, layer);
        for (size_t i = 0; i < points.size(); ++i) control.ShapePointSet(n, int16_t(i), points[i].x, points[i].y);
        return n;
    }
    Pts Points(int32_t n)
    {
        Pts p;
        for (int16_t i = 0; i < control.GetShapePointCount(n); ++i)
            p.push_back({control.ShapePointGetX(n, i), control.ShapePointGetY(n, i)});
        return p;
    }
    testing::RecordingHostWindow window;
    testing::RecordingEventSink sink;
    CadControl control;
};

} // namespace bvx::shapetest
