// The geometry every arc-like shape shares: which quadrant a point is in,
// the bounds of the part of an ellipse an arc covers, the band a press must
// land in, and the circle through three points.
#pragma once

#include "platform/Geometry.h"
#include "world/WorldGeometry.h"

#include <cstdint>

namespace bvx {

class CadWorld;

// Quadrants counted counter-clockwise on the screen from the upper right:
// in device coordinates, in world coordinates with y up, and in world
// coordinates under any axis directions.
int32_t QuadrantDevice(DevicePoint p, DevicePoint c);
int32_t QuadrantWorld(const WorldPoint& p, const WorldPoint& c);
int32_t QuadrantDirected(const WorldPoint& p, const WorldPoint& c, int16_t signX, int16_t signY);

// `rect` enters holding the whole ellipse and leaves holding the part the
// arc from p1 to p2 covers (counter-clockwise on the screen); a closed
// figure also holds the centre.
void ArcBoundsDevice(DeviceRect& rect, DevicePoint p1, DevicePoint p2, bool closed);
// The same in world coordinates, where left and top follow the axes.
void ArcBoundsWorld(WorldRect& rect, const WorldPoint& p1, const WorldPoint& p2, int16_t signX, int16_t signY,
                    bool closed);

// Whether a device point lies on an elliptic arc, by the search method: 0
// on the band of the curve between its ends, 1 inside the figure the chord
// of its ends closes.
bool HitArcBand(int16_t method, const WorldPoint& centre, const WorldPoint& radius, DevicePoint start,
                DevicePoint end, DevicePoint point, const CadWorld& world);

// Whether a figure's device box reaches past what the platform's 16-bit
// drawing coordinates hold; such arcs are drawn as straight steps.
bool BeyondDeviceLimit(const DeviceRect& box);
// How many steps stand in for such an arc.
constexpr double kBeyondLimitSteps = 20.0;

// The circle through three points in order. Sweep 0: the points are on one
// line and there is no circle; 1: the arc runs from the first point to the
// third as the platform's Arc draws; 2: the ends must be exchanged first.
struct ThreePointCircle {
    int32_t sweep = 0;
    WorldPoint centre{};
    double radius = 0;
};
ThreePointCircle CircleThroughWorld(WorldPoint p1, WorldPoint p2, WorldPoint p3, int16_t signX, int16_t signY);
// The circle's box in device units, as the platform's Arc takes it.
DeviceRect CircleDeviceRect(const ThreePointCircle& circle, const CadWorld& world);

} // namespace bvx
