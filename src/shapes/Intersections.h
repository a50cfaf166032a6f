// Where shapes cross: lines, point paths (polylines, polygons, freehand)
// and circles, each point found once per meeting. Rectangles take part as
// the polygons of their corners.
#pragma once

#include "CObjShape.h"

#include <vector>

namespace bvx {

// Whether a shape's type takes part in intersections at all.
bool CanIntersect(const CObjShape& shape);
// Appends the points where `self` meets `other`; false when they don't.
bool IntersectPoints(const CObjShape& self, const CObjShape& other, std::vector<WorldPoint>& results);

// The pieces, for shapes and tests alike.
bool SegmentsCross(const WorldPoint& a1, const WorldPoint& a2, const WorldPoint& b1, const WorldPoint& b2,
                   WorldPoint& out);
bool SegmentCrossCircle(const WorldPoint& p1, const WorldPoint& p2, const WorldPoint& centre, double radius,
                        std::vector<WorldPoint>& results);
bool CirclesCross(const WorldPoint& c1, double r1, const WorldPoint& c2, double r2, std::vector<WorldPoint>& results);
// Appends a point unless one within the relative tolerance is there already.
bool AddUniquePoint(std::vector<WorldPoint>& results, const WorldPoint& p);

} // namespace bvx
