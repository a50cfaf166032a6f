// Ellipses as the platform draws them. One quadrant of the outline comes
// from an integer midpoint walk (Zingl's ellipse algorithm, as the platform
// uses); the other three are mirror images, so every ellipse is symmetric.
// Filled interiors use the same walk row by row. Sizes beyond kExactLimit
// fall back to a polygon close to the true curve, so that a huge ellipse
// costs time in proportion to its visible part only.
#pragma once

#include "LineRasterizer.h"
#include "PolygonRasterizer.h"

#include <cstdint>
#include <vector>

namespace bvx::raster {

constexpr int64_t kExactEllipseLimit = int64_t(1) << 15;

// The first quadrant of a width x height ellipse box at the origin, from
// (width-1, height/2) towards (width/2, height-1), y growing downwards.
void EllipseQuadrant(int64_t width, int64_t height, std::vector<Point64>& out);

// The closed outline of a rounded rectangle (an ellipse when the corner
// size is the whole box) whose corners are ew x eh, in the box
// [left, right) x [top, bottom), counter-clockwise from the right.
void RoundRectOutline(int64_t left, int64_t top, int64_t right, int64_t bottom, int64_t ew, int64_t eh,
                      std::vector<Point64>& out);

// The arc of the ellipse in [left, right) x [top, bottom) from the radial
// through start to the radial through end, counter-clockwise; start and
// end relative to the box centre (left + width/2, top + height/2).
void ArcOutline(int64_t left, int64_t top, int64_t right, int64_t bottom, Point64 start, Point64 end,
                std::vector<Point64>& out);

// The pixels of the platform's rounded-rectangle region for the box
// [left, right) x [top, bottom) (normalized, right and bottom already one
// less than the caller's as the platform's region does) with corner size
// ew x eh (each at least 2 and at most the box): sink(y, x0, x1) for rows in
// [rowTop, rowBottom), x clamped to [xMin, xMax).
class RoundRectScanner {
public:
    template <typename Sink>
    void Scan(int64_t left, int64_t top, int64_t right, int64_t bottom, int64_t ew, int64_t eh, int32_t rowTop,
              int32_t rowBottom, int32_t xMin, int32_t xMax, Sink&& sink);

private:
    void ComputeInsets(int64_t ew, int64_t eh);
    std::vector<int64_t> insets_;
    std::vector<Point64> outline_;
    PolygonRasterizer polygon_;
};

template <typename Sink>
void RoundRectScanner::Scan(int64_t left, int64_t top, int64_t right, int64_t bottom, int64_t ew, int64_t eh,
                            int32_t rowTop, int32_t rowBottom, int32_t xMin, int32_t xMax, Sink&& sink)
{
    if (ew > kExactEllipseLimit || eh > kExactEllipseLimit) {
        RoundRectOutline(left, top, right, bottom, ew, eh, outline_);
        polygon_.Scan(outline_, PolyFillMode::Winding, rowTop, rowBottom, xMin, xMax, sink);
        return;
    }
    ComputeInsets(ew, eh);
    auto emit = [&](int64_t y, int64_t inset) {
        int64_t a = std::max<int64_t>(left + inset, xMin);
        int64_t b = std::min<int64_t>(right - inset, xMax);
        if (a < b) sink(int32_t(y), int32_t(a), int32_t(b));
    };
    const int64_t half = eh / 2;
    // Upper corner rows: top .. top + half - 1.
    for (int64_t i = 0; i < half; ++i) {
        const int64_t y = top + i;
        if (y < rowTop) continue;
        if (y >= rowBottom) return;
        emit(y, insets_[size_t(i)]);
    }
    // The straight middle: rows top + half .. bottom - eh + half, full width.
    const int64_t midEnd = bottom - eh + half + 1;
    for (int64_t y = std::max<int64_t>(top + half, rowTop); y < std::min<int64_t>(midEnd, rowBottom); ++y) emit(y, 0);
    // Lower corner rows.
    for (int64_t i = half + 1; i < eh; ++i) {
        const int64_t y = bottom - eh + i;
        if (y < rowTop) continue;
        if (y >= rowBottom) return;
        emit(y, insets_[size_t(i)]);
    }
}

} // namespace bvx::raster
