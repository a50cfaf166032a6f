// Regions for hit tests: the set of device pixels a filled shape covers,
// kept as bands of rows with sorted spans so that a point test is a search.
#pragma once

#include "GdiObjects.h"
#include "Geometry.h"

#include <cstdint>
#include <span>
#include <vector>

namespace bvx {

class Region {
public:
    struct Span {
        int32_t left;  // inclusive
        int32_t right; // exclusive
    };
    // Rows [top, bottom) that share one list of spans.
    struct Band {
        int32_t top;
        int32_t bottom;
        uint32_t firstSpan;
        uint32_t spanCount;
    };

    Region() = default;

    bool PtInRegion(int32_t x, int32_t y) const;
    DeviceRect GetRgnBox() const { return box_; }
    bool IsEmpty() const { return bands_.empty(); }
    // One rectangle, the box itself.
    bool IsRect() const { return bands_.size() == 1 && spans_.size() == 1; }
    // The part inside `rect`.
    Region Intersected(const DeviceRect& rect) const;

    // For builders: append a row's spans (sorted, disjoint) for row y; rows
    // must come in increasing order. Equal neighbouring rows merge into a band.
    void AppendRow(int32_t y, std::span<const Span> spans) { AppendBand(y, y + 1, spans); }
    // The same for rows [top, bottom) that all hold `spans`; top must not be
    // above the last appended row's bottom.
    void AppendBand(int32_t top, int32_t bottom, std::span<const Span> spans);

    std::span<const Band> Bands() const { return bands_; }
    std::span<const Span> Spans() const { return spans_; }

private:
    std::vector<Band> bands_;
    std::vector<Span> spans_;
    DeviceRect box_{};
};

// Factories with the platform's rules for which pixels each region holds.
Region CreateRectRgn(int32_t left, int32_t top, int32_t right, int32_t bottom);
// The union of the rectangles, each normalized as CreateRectRgn does.
Region CreateRectsRgn(std::span<const DeviceRect> rects);
Region CreatePolygonRgn(std::span<const DevicePoint> points, PolyFillMode mode);
Region CreateEllipticRgn(int32_t left, int32_t top, int32_t right, int32_t bottom);
Region CreateRoundRectRgn(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t ellipseWidth,
                          int32_t ellipseHeight);

} // namespace bvx
