// Outlines of pens wider than one pixel, as the platform builds them for
// CreatePen's pens (round ends, round joins): the union of one body per
// segment (a rectangle when the segment is horizontal or vertical, else a
// quadrilateral with the width split across the line) and a disc, the
// platform's elliptic region of the pen's width, at every vertex.
#pragma once

#include "../Geometry.h"
#include "EllipseGeometry.h"
#include "LineRasterizer.h"
#include "PolygonRasterizer.h"
#include "SpanBuffer.h"

#include <span>
#include <vector>

namespace bvx::raster {

class WidePenOutliner {
public:
    // Adds the outline of the polyline (closed: back to the first point) to
    // `out`, clipped to `clip`. `out` is left unnormalized.
    void Outline(std::span<const Point64> points, bool closed, int32_t width, const DeviceRect& clip,
                 SpanBuffer& out);

private:
    void Disc(Point64 centre, const DeviceRect& clip, SpanBuffer& out);
    void Body(Point64 p1, Point64 p2, const DeviceRect& clip, SpanBuffer& out);

    int32_t width_ = 0;
    int32_t discWidth_ = -1;
    std::vector<RowSpan> disc_; // relative to the centre
    PolygonRasterizer polygon_;
    RoundRectScanner roundRect_;
};

} // namespace bvx::raster
