// Cardinal splines through a list of control points: the span walk shared
// by painting, bounds, hit testing and conversion. A tension of 0.5 is the
// Catmull-Rom spline, the one the shapes use.
#pragma once

#include "world/WorldGeometry.h"

#include <span>

namespace bvx {

constexpr double kSplineTension = 0.5;

// The point at t in [0, 1] of the span from b to c, a before and d after.
WorldPoint SplinePoint(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c, const WorldPoint& d,
                       double tension, double t);

// Calls span(a, b, c, d) for each span in order; a closed curve also runs
// from the last point back to the first. The first and last points stand
// doubled as their own tangents. Fewer than three points make no span:
// the caller draws a dot or a straight pair.
template <typename Span> void ForEachSplineSpan(std::span<const WorldPoint> points, bool closed, Span span)
{
    const size_t n = points.size();
    if (n < 3) return;
    const bool loops = closed && n > 2;
    const size_t last = loops ? n + 1 : n;
    WorldPoint a = loops ? points[n - 1] : points[0];
    WorldPoint b = points[0], c = points[1], d = points[2];
    for (size_t i = 2; i <= last;) {
        span(a, b, c, d);
        a = b;
        b = c;
        c = d;
        ++i;
        if (i < last || (i == last && closed)) d = i < n ? points[i] : points[i - n];
    }
}

} // namespace bvx
