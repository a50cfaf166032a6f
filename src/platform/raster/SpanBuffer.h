// A set of pixels as row spans, for shapes that must be built before they
// are painted: wide-pen outlines (a union of many pieces, each pixel painted
// once) and interiors that exclude such an outline.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace bvx::raster {

struct RowSpan {
    int32_t y;
    int32_t x0; // inclusive
    int32_t x1; // exclusive
};

class SpanBuffer {
public:
    void Clear() { spans_.clear(); }
    void Add(int32_t y, int32_t x0, int32_t x1)
    {
        if (x0 < x1) spans_.push_back({y, x0, x1});
    }
    // Sorts and merges overlapping or touching spans of a row.
    void Normalize();
    // Removes the pixels of `other`; both must be normalized.
    void Subtract(const SpanBuffer& other);

    std::span<const RowSpan> Spans() const { return spans_; }
    bool Empty() const { return spans_.empty(); }

private:
    std::vector<RowSpan> spans_;
    std::vector<RowSpan> scratch_;
};

} // namespace bvx::raster
