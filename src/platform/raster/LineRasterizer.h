// One-pixel lines with the platform's Bresenham rules, clipped analytically
// so that a segment with far-away end points costs no more than its visible
// part.
//
// The rules: a segment from p0 to p1 draws every pixel of its major axis
// from p0 up to, but not including, p1. The minor coordinate of the i-th
// pixel is p0's plus n(i) = floor((2*i*dminor + dmajor + bias - 1) / (2*dmajor)),
// where bias is 1 in the octants that step towards negative x with y-major
// lines, or towards negative y with x-major lines (the platform's octants 3,
// 5, 6 and 8), so that a segment and its reverse cover the same pixels.
#pragma once

#include "../Geometry.h"

#include <cstdint>

namespace bvx::raster {

struct Point64 {
    int64_t x = 0;
    int64_t y = 0;
    friend bool operator==(const Point64&, const Point64&) = default;
};

// The visible part of one segment, ready to step.
struct LineRun {
    int64_t x = 0, y = 0; // first visible pixel
    int32_t sx = 1, sy = 1;
    bool xMajor = true;
    int64_t err = 0;     // decides the minor step after each pixel: err + bias > 0
    int64_t errMinor = 0; // added when the minor coordinate steps
    int64_t errMajor = 0; // added otherwise
    int32_t bias = 0;
    int64_t count = 0;   // visible pixels
    int64_t skipped = 0; // pixels of the segment before the first visible one
    int64_t length = 0;  // pixels of the whole segment (its major extent)
};

// False when no pixel of the segment lies in `clip` (or p0 == p1).
bool ClipLine(Point64 p0, Point64 p1, const DeviceRect& clip, LineRun& run);

} // namespace bvx::raster
