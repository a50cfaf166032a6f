#include "SpanBuffer.h"

#include <algorithm>

namespace bvx::raster {

void SpanBuffer::Normalize()
{
    if (spans_.size() < 2) return;
    std::sort(spans_.begin(), spans_.end(),
              [](const RowSpan& a, const RowSpan& b) { return a.y != b.y ? a.y < b.y : a.x0 < b.x0; });
    size_t out = 0;
    for (size_t i = 1; i < spans_.size(); ++i) {
        RowSpan& last = spans_[out];
        const RowSpan& s = spans_[i];
        if (s.y == last.y && s.x0 <= last.x1) {
            last.x1 = std::max(last.x1, s.x1);
        } else {
            spans_[++out] = s;
        }
    }
    spans_.resize(out + 1);
}

void SpanBuffer::Subtract(const SpanBuffer& other)
{
    if (spans_.empty() || other.spans_.empty()) return;
    scratch_.clear();
    const std::vector<RowSpan>& cut = other.spans_;
    size_t j = 0;
    for (const RowSpan& s : spans_) {
        while (j < cut.size() && (cut[j].y < s.y || (cut[j].y == s.y && cut[j].x1 <= s.x0))) ++j;
        int32_t x = s.x0;
        size_t k = j;
        while (k < cut.size() && cut[k].y == s.y && cut[k].x0 < s.x1) {
            if (cut[k].x0 > x) scratch_.push_back({s.y, x, cut[k].x0});
            x = std::max(x, cut[k].x1);
            ++k;
        }
        if (x < s.x1) scratch_.push_back({s.y, x, s.x1});
    }
    spans_.swap(scratch_);
}

} // namespace bvx::raster
