#include "WidePen.h"

#include <cmath>
#include <cstdlib>

namespace bvx::raster {

namespace {
// Rounds half away from zero, as the platform's geometry does.
int64_t RoundAway(double f) { return f > 0 ? int64_t(f + 0.5) : int64_t(f - 0.5); }
} // namespace

void WidePenOutliner::Outline(std::span<const Point64> points, bool closed, int32_t width, const DeviceRect& clip,
                              SpanBuffer& out)
{
    if (points.size() < 2 || clip.IsEmpty()) return;
    width_ = width;
    if (discWidth_ != width) {
        // The platform's disc: CreateEllipticRgn(-(w/2), -(w/2), (w+1)/2 + 1, (w+1)/2 + 1).
        disc_.clear();
        const int64_t l = -(width / 2), t = -(width / 2), r = (width + 1) / 2, b = (width + 1) / 2;
        const int64_t e = std::min<int64_t>(r - l, width + 1);
        auto sink = [&](int32_t y, int32_t x0, int32_t x1) { disc_.push_back({y, x0, x1}); };
        if (e < 2) {
            for (int64_t y = t; y < b; ++y) sink(int32_t(y), int32_t(l), int32_t(r));
        } else {
            roundRect_.Scan(l, t, r, b, e, e, INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, sink);
        }
        discWidth_ = width;
    }
    // Leading and trailing repeated points add nothing.
    size_t first = 0, count = points.size();
    while (count - first > 2 && points[first] == points[first + 1]) ++first;
    while (count - first > 2 && points[count - 1] == points[count - 2]) --count;
    const std::span<const Point64> pts = points.subspan(first, count - first);

    for (const Point64& p : pts) Disc(p, clip, out);
    for (size_t i = 0; i + 1 < pts.size(); ++i) Body(pts[i], pts[i + 1], clip, out);
    if (closed) Body(pts.back(), pts.front(), clip, out);
}

void WidePenOutliner::Disc(Point64 c, const DeviceRect& clip, SpanBuffer& out)
{
    const int64_t reach = width_ + 2;
    if (c.y + reach < clip.top || c.y - reach >= clip.bottom || c.x + reach < clip.left || c.x - reach >= clip.right)
        return;
    for (const RowSpan& s : disc_) {
        const int64_t y = c.y + s.y;
        if (y < clip.top || y >= clip.bottom) continue;
        const int64_t x0 = std::max<int64_t>(c.x + s.x0, clip.left);
        const int64_t x1 = std::min<int64_t>(c.x + s.x1, clip.right);
        if (x0 < x1) out.Add(int32_t(y), int32_t(x0), int32_t(x1));
    }
}

void WidePenOutliner::Body(Point64 p1, Point64 p2, const DeviceRect& clip, SpanBuffer& out)
{
    const int64_t dx = p2.x - p1.x, dy = p2.y - p1.y;
    if (dx == 0 && dy == 0) return;
    auto addRect = [&](int64_t l, int64_t t, int64_t r, int64_t b) {
        l = std::max<int64_t>(l, clip.left);
        r = std::min<int64_t>(r, clip.right);
        t = std::max<int64_t>(t, clip.top);
        b = std::min<int64_t>(b, clip.bottom);
        if (l >= r) return;
        for (int64_t y = t; y < b; ++y) out.Add(int32_t(y), int32_t(l), int32_t(r));
    };
    const int64_t w = width_;
    if (dy == 0) {
        const int64_t top = p1.y - w / 2;
        addRect(std::min(p1.x, p2.x), top, std::max(p1.x, p2.x), top + w);
        return;
    }
    if (dx == 0) {
        const int64_t left = p1.x - w / 2;
        addRect(left, std::min(p1.y, p2.y), left + w, std::max(p1.y, p2.y));
        return;
    }
    // The width splits into a narrow half on one side and a wide half on
    // the other, each rounded, across the direction of the segment.
    const double len = std::hypot(double(dx), double(dy));
    const double widthX = double(w) * double(std::llabs(dy)) / len;
    const double widthY = double(w) * double(std::llabs(dx)) / len;
    Point64 narrow{RoundAway(widthX / 2), RoundAway(widthY / 2)};
    Point64 wide{RoundAway((widthX + 1) / 2), RoundAway((widthY + 1) / 2)};
    if (dx < 0) {
        wide.y = -wide.y;
        narrow.y = -narrow.y;
    }
    if (dy < 0) {
        std::swap(narrow, wide);
        wide.x = -wide.x;
        narrow.x = -narrow.x;
    }
    const Point64 quad[4] = {
        {p1.x - narrow.x, p1.y + narrow.y},
        {p1.x + wide.x, p1.y - wide.y},
        {p2.x + wide.x, p2.y - wide.y},
        {p2.x - narrow.x, p2.y + narrow.y},
    };
    polygon_.Scan(quad, PolyFillMode::Alternate, clip.top, clip.bottom, clip.left, clip.right,
                  [&](int32_t y, int32_t x0, int32_t x1) { out.Add(y, x0, x1); });
}

} // namespace bvx::raster
