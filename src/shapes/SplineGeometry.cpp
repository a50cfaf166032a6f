#include "SplineGeometry.h"

namespace bvx {

WorldPoint SplinePoint(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c, const WorldPoint& d,
                       double tension, double t)
{
    const double t2 = t * t, t3 = t2 * t, s = tension;
    const double b0 = 2 * s * t2 - s * t - s * t3;
    const double b1 = (2 - s) * t3 + (s - 3) * t2 + 1;
    const double b2 = s * t + (s - 2) * t3 + (3 - 2 * s) * t2;
    const double b3 = s * t3 - s * t2;
    return {b0 * a.x + b1 * b.x + b2 * c.x + b3 * d.x, b0 * a.y + b1 * b.y + b2 * c.y + b3 * d.y};
}

} // namespace bvx
