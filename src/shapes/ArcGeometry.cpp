#include "ArcGeometry.h"

#include "CObjShape.h"
#include "platform/Region.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace bvx {

namespace {

// The sides an arc from one quadrant to another doesn't reach, and which
// come from its end points instead: 1 left, 2 top, 4 right, 8 bottom.
constexpr uint8_t kArcSideMask[4][4] = {
    {0, 13, 12, 4},
    {2, 0, 14, 6},
    {3, 1, 0, 7},
    {11, 9, 8, 0},
};
constexpr uint8_t kLeft = 1, kTop = 2, kRight = 4, kBottom = 8, kAllSides = 15;

constexpr int32_t kBandInflate = 4;
constexpr int32_t kBandWidth = 8;
constexpr double kRadiansToTenthDegrees = 572.9577951308232;
constexpr int64_t kFullTurnTenths = 3600;

int32_t Quadrant(bool up, bool left, int16_t signX)
{
    if (signX == 1) return up ? (left ? 2 : 1) : (left ? 3 : 4);
    return up ? (left ? 1 : 2) : (left ? 4 : 3);
}

} // namespace

int32_t QuadrantDevice(DevicePoint p, DevicePoint c) { return Quadrant(p.y < c.y, p.x <= c.x, 1); }

int32_t QuadrantWorld(const WorldPoint& p, const WorldPoint& c) { return Quadrant(p.y >= c.y, p.x <= c.x, 1); }

int32_t QuadrantDirected(const WorldPoint& p, const WorldPoint& c, int16_t signX, int16_t signY)
{
    const bool up = signY == 1 ? p.y < c.y : p.y >= c.y;
    return Quadrant(up, p.x <= c.x, signX);
}

void ArcBoundsDevice(DeviceRect& rect, DevicePoint p1, DevicePoint p2, bool closed)
{
    // Halved in 64 bits: a rectangle from a far-off world spans more than 31.
    const auto middle = [](int32_t low, int32_t high) { return int32_t((int64_t(high) - low) / 2 + low); };
    const DevicePoint m{middle(rect.left, rect.right), middle(rect.top, rect.bottom)};
    const int32_t q1 = QuadrantDevice(p1, m), q2 = QuadrantDevice(p2, m);
    uint8_t sides = 0;
    if (q1 != q2) {
        sides = kArcSideMask[q1 - 1][q2 - 1];
    } else {
        // In one quadrant either the arc stays there or it goes the long way round.
        const bool longWay = ((q1 == 1 || q1 == 2) && p1.x <= p2.x) || ((q1 == 3 || q1 == 4) && p2.x <= p1.x);
        sides = longWay ? 0 : kAllSides;
    }
    if (sides & kLeft) rect.left = std::min(p1.x, p2.x);
    if (sides & kTop) rect.top = std::min(p1.y, p2.y);
    if (sides & kRight) rect.right = std::max(p1.x, p2.x);
    if (sides & kBottom) rect.bottom = std::max(p1.y, p2.y);
    if (closed && !PtInRect(rect, m)) {
        rect.left = std::min(rect.left, m.x);
        rect.top = std::min(rect.top, m.y);
        rect.right = std::max(rect.right, m.x);
        rect.bottom = std::max(rect.bottom, m.y);
    }
}

void ArcBoundsWorld(WorldRect& rect, const WorldPoint& p1, const WorldPoint& p2, int16_t signX, int16_t signY,
                    bool closed)
{
    const WorldPoint m{(rect.right - rect.left) * 0.5 + rect.left, (rect.bottom - rect.top) * 0.5 + rect.top};
    const int32_t q1 = QuadrantDirected(p1, m, signX, signY), q2 = QuadrantDirected(p2, m, signX, signY);
    uint8_t sides = 0;
    if (q1 != q2) {
        sides = kArcSideMask[q1 - 1][q2 - 1];
    } else if (q1 == 1 || q1 == 2) {
        sides = (signX == 1 && p1.x > p2.x) || (signX != 1 && p2.x > p1.x) ? kAllSides : 0;
    } else {
        sides = (signX == 1 && p1.x < p2.x) || (signX != 1 && p2.x < p1.x) ? kAllSides : 0;
    }
    const double minX = std::min(p1.x, p2.x), maxX = std::max(p1.x, p2.x);
    const double minY = std::min(p1.y, p2.y), maxY = std::max(p1.y, p2.y);
    if (sides & kLeft) rect.left = signX == 1 ? minX : maxX;
    if (sides & kRight) rect.right = signX == 1 ? maxX : minX;
    if (sides & kTop) rect.top = signY == 1 ? minY : maxY;
    if (sides & kBottom) rect.bottom = signY == 1 ? maxY : minY;
    if (!closed) return;
    // Grown towards the centre along the directions of the axes.
    auto low = [](double a, double b, int16_t sign) { return sign == 1 ? std::min(a, b) : std::max(a, b); };
    auto high = [](double a, double b, int16_t sign) { return sign == 1 ? std::max(a, b) : std::min(a, b); };
    rect = {low(rect.left, m.x, signX), low(rect.top, m.y, signY), high(rect.right, m.x, signX),
            high(rect.bottom, m.y, signY)};
}

bool HitArcBand(int16_t method, const WorldPoint& centre, const WorldPoint& radius, DevicePoint start,
                DevicePoint end, DevicePoint point, const CadWorld& world)
{
    const WorldPoint r{std::fabs(radius.x), std::fabs(radius.y)};
    DeviceRect e = OrderedRect(world.WorldRectToDevice({centre.x - r.x, centre.y - r.y}, {centre.x + r.x, centre.y + r.y}));
    if (method == 0) e = InflatedRect(e, kBandInflate, kBandInflate);
    if (!CreateEllipticRgn(e.left, e.top, e.right, e.bottom).PtInRegion(point.x, point.y)) return false;
    const DevicePoint c = world.WorldToDevice(centre);
    if (method == 1) {
        // The box's diagonal stands for the chord and the half width is not
        // centred: the inside has always been tested so.
        const DeviceRect chord = OrderedRect({start.x, start.y, end.x, end.y});
        int32_t crossings = 1;
        if (point.y >= chord.top && point.y <= chord.bottom) {
            crossings = HitSegment({chord.left, chord.top}, {chord.right, chord.bottom}, point, 1);
            const double dx = double(e.left) - c.x, dy = double(c.y) - point.y;
            const double square = dx * dx - dy * dy;
            // Beyond the ellipse's reach there is no crossing to count: a miss.
            if (square < 0) return false;
            if (point.x > RoundHalfDown(std::sqrt(square))) ++crossings;
        }
        return crossings % 2 == 1;
    }
    const DeviceRect inner = InflatedRect(e, -kBandWidth, -kBandWidth);
    if (CreateEllipticRgn(inner.left, inner.top, inner.right, inner.bottom).PtInRegion(point.x, point.y)) return false;
    auto tenths = [&](DevicePoint p) {
        int64_t a = int64_t(RoundHalfDown(std::atan2(double(c.y) - p.y, double(p.x) - c.x) * kRadiansToTenthDegrees));
        return a < 0 ? a + kFullTurnTenths : a;
    };
    int64_t s = tenths(start), t = tenths(end), p = tenths(point);
    if (s > t) {
        t += kFullTurnTenths;
        if (p < s) p += kFullTurnTenths;
    }
    if (s == t) {
        s = 0;
        t = kFullTurnTenths;
    }
    return p >= s && p <= t;
}

bool BeyondDeviceLimit(const DeviceRect& box)
{
    constexpr double kDeviceLimit = 32768 - (32768 + 1) * 1e-7;
    return std::fabs(double(box.right)) + std::fabs(double(box.left)) >= kDeviceLimit ||
           std::fabs(double(box.bottom)) + std::fabs(double(box.top)) >= kDeviceLimit;
}

ThreePointCircle CircleThroughWorld(WorldPoint p1, WorldPoint p2, WorldPoint p3, int16_t signX, int16_t signY)
{
    ThreePointCircle circle;
    circle.sweep = 1;
    for (int pass = 0; pass < 2; ++pass) {
        const double dx1 = p2.x - p1.x, dy1 = p2.y - p1.y, dx2 = p3.x - p1.x, dy2 = p3.y - p1.y;
        const double det = dy2 * dx1 - dx2 * dy1;
        if (det == 0 || !std::isfinite(det)) return {};
        if (det < 0) {
            // Taken the other way round, the same circle: the ends change places.
            std::swap(p1, p3);
            circle.sweep = 2;
            continue;
        }
        const double inv = 1 / (det + det);
        const double s1 = dx1 * dx1 + dy1 * dy1, s2 = dx2 * dx2 + dy2 * dy2;
        const double ux = (s1 * dy2 - s2 * dy1) * inv, uy = (s2 * dx1 - s1 * dx2) * inv;
        circle.centre = {p1.x + ux, p1.y + uy};
        circle.radius = std::sqrt(ux * ux + uy * uy);
        if (signX == signY) circle.sweep = 3 - circle.sweep;
        return circle;
    }
    return {};
}

DeviceRect CircleDeviceRect(const ThreePointCircle& circle, const CadWorld& world)
{
    const WorldPoint& c = circle.centre;
    return world.WorldRectToDevice({c.x - circle.radius, c.y - circle.radius}, {c.x + circle.radius, c.y + circle.radius});
}

} // namespace bvx
