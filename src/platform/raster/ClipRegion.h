// The clip as the rasterizers see it: a box on the surface and, when the clip
// is more than one rectangle, the region whose disjoint rectangles cut it
// further. With one rectangle every walk below is a single call, so the
// common case costs what it did before regions.
#pragma once

#include "../Region.h"

#include <algorithm>
#include <cstdint>

namespace bvx::raster {

class ClipRegion {
public:
    // `box` lies on the surface and within `region`'s box; null `region`
    // means the box is the whole clip.
    ClipRegion(const DeviceRect& box, const Region* region) : box_(box), region_(region) {}

    const DeviceRect& Box() const { return box_; }
    bool IsRect() const { return region_ == nullptr; }
    bool Contains(int32_t x, int32_t y) const { return box_.Contains(x, y) && (!region_ || region_->PtInRegion(x, y)); }

    // f(rect) for each clip rectangle meeting `area`, cut to it: bands top
    // down, left to right within a band. The rectangles never overlap.
    template <typename F>
    void ForEachRect(const DeviceRect& area, F&& f) const
    {
        const DeviceRect a = area.Intersected(box_);
        if (a.IsEmpty()) return;
        if (!region_) {
            f(a);
            return;
        }
        const auto bands = region_->Bands();
        for (size_t i = FirstBand(a.top); i < bands.size() && bands[i].top < a.bottom; ++i) {
            const Region::Band& b = bands[i];
            const int32_t top = std::max(b.top, a.top), bottom = std::min(b.bottom, a.bottom);
            ForEachSpanOf(b, a.left, a.right, [&](int32_t l, int32_t r) { f(DeviceRect{l, top, r, bottom}); });
        }
    }

    // f(x0, x1) for the parts of [x0, x1) in row y that the clip keeps; the
    // span must already lie in the box, as the rasterizers leave it. Rows
    // asked for in increasing order are found without a search.
    template <typename F>
    void ForEachSpan(int32_t y, int32_t x0, int32_t x1, F&& f)
    {
        if (!region_) {
            f(x0, x1);
            return;
        }
        const auto bands = region_->Bands();
        if (band_ >= bands.size() || bands[band_].top > y) band_ = FirstBand(y);
        while (band_ < bands.size() && bands[band_].bottom <= y) ++band_;
        if (band_ < bands.size() && bands[band_].top <= y) ForEachSpanOf(bands[band_], x0, x1, f);
    }

private:
    // The first band not wholly above row y.
    size_t FirstBand(int32_t y) const
    {
        const auto bands = region_->Bands();
        return size_t(std::partition_point(bands.begin(), bands.end(),
                                           [y](const Region::Band& b) { return b.bottom <= y; }) -
                      bands.begin());
    }

    template <typename F>
    void ForEachSpanOf(const Region::Band& band, int32_t x0, int32_t x1, F&& f) const
    {
        const auto spans = region_->Spans().subspan(band.firstSpan, band.spanCount);
        auto s = std::partition_point(spans.begin(), spans.end(),
                                      [x0](const Region::Span& sp) { return sp.right <= x0; });
        for (; s != spans.end() && s->left < x1; ++s) f(std::max(s->left, x0), std::min(s->right, x1));
    }

    DeviceRect box_;
    const Region* region_;
    size_t band_ = 0;
};

} // namespace bvx::raster
