#include "Region.h"

#include <algorithm>

namespace bvx {

bool Region::PtInRegion(int32_t x, int32_t y) const
{
    if (bands_.empty() || !box_.Contains(x, y)) return false;
    // The band holding row y: the last band whose top is at most y.
    auto band = std::upper_bound(bands_.begin(), bands_.end(), y,
                                 [](int32_t value, const Band& b) { return value < b.top; });
    if (band == bands_.begin()) return false;
    --band;
    if (y >= band->bottom) return false;
    const Span* first = spans_.data() + band->firstSpan;
    const Span* last = first + band->spanCount;
    // The last span whose left is at most x.
    const Span* s = std::upper_bound(first, last, x, [](int32_t value, const Span& sp) { return value < sp.left; });
    if (s == first) return false;
    --s;
    return x < s->right;
}

Region Region::Intersected(const DeviceRect& rect) const
{
    Region out;
    std::vector<Span> row;
    for (const Band& b : bands_) {
        const int32_t top = std::max(b.top, rect.top), bottom = std::min(b.bottom, rect.bottom);
        if (top >= bottom) continue;
        row.clear();
        for (const Span& s : Spans().subspan(b.firstSpan, b.spanCount)) {
            const int32_t left = std::max(s.left, rect.left), right = std::min(s.right, rect.right);
            if (left < right) row.push_back({left, right});
        }
        out.AppendBand(top, bottom, row);
    }
    return out;
}

void Region::AppendBand(int32_t top, int32_t bottom, std::span<const Span> spans)
{
    if (bottom <= top) return;
    // Drop empty spans; merge touching ones so equal rows compare equal.
    size_t start = spans_.size();
    for (const Span& s : spans) {
        if (s.left >= s.right) continue;
        if (spans_.size() > start && spans_.back().right >= s.left) {
            spans_.back().right = std::max(spans_.back().right, s.right);
        } else {
            spans_.push_back(s);
        }
    }
    const uint32_t count = uint32_t(spans_.size() - start);
    if (count == 0) return;

    if (!bands_.empty()) {
        Band& last = bands_.back();
        if (last.bottom == top && last.spanCount == count &&
            std::equal(spans_.begin() + last.firstSpan, spans_.begin() + last.firstSpan + count,
                       spans_.begin() + start,
                       [](const Span& a, const Span& b) { return a.left == b.left && a.right == b.right; })) {
            spans_.resize(start);
            last.bottom = bottom;
            box_.bottom = bottom;
            return;
        }
    }
    bands_.push_back({top, bottom, uint32_t(start), count});
    const int32_t left = spans_[start].left;
    const int32_t right = spans_.back().right;
    if (bands_.size() == 1) {
        box_ = {left, top, right, bottom};
    } else {
        box_.left = std::min(box_.left, left);
        box_.right = std::max(box_.right, right);
        box_.bottom = bottom;
    }
}

} // namespace bvx
