// The region factories, with the platform's rules for which pixels each
// region holds. Regions exclude their right and bottom edges; elliptic and
// rounded regions come from the same walk as filled ellipses but for a box
// one pixel smaller, as the platform's do.
//
// Polygon and elliptic regions are limited to the rows and columns of
// kRegionUniverse: a region keeps one band per distinct row, so a region
// millions of rows tall cannot be held.
#include "../Region.h"
#include "EllipseGeometry.h"
#include "LineRasterizer.h"
#include "PolygonRasterizer.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace bvx {

namespace {

constexpr int32_t kUniverse = int32_t(1) << 16;
constexpr DeviceRect kRegionUniverse{-kUniverse, -kUniverse, kUniverse, kUniverse};

// Collects a sink's spans row by row into a region.
class RowCollector {
public:
    explicit RowCollector(Region& region) : region_(region) {}
    void operator()(int32_t y, int32_t x0, int32_t x1)
    {
        if (y != y_) Flush();
        y_ = y;
        row_.push_back({x0, x1});
    }
    void Flush()
    {
        if (!row_.empty()) region_.AppendRow(y_, row_);
        row_.clear();
    }

private:
    Region& region_;
    int32_t y_ = 0;
    std::vector<Region::Span> row_;
};

} // namespace

Region CreateRectRgn(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    Region region;
    const DeviceRect r = DeviceRect{left, top, right, bottom}.Normalized();
    if (r.IsEmpty()) return region;
    const Region::Span span{r.left, r.right};
    region.AppendBand(r.top, r.bottom, std::span<const Region::Span>(&span, 1));
    return region;
}

Region CreateRectsRgn(std::span<const DeviceRect> rects)
{
    struct Piece {
        int32_t left, right, bottom;
    };
    std::vector<DeviceRect> pending;
    std::vector<int32_t> edges;
    for (const DeviceRect& r : rects) {
        const DeviceRect n = r.Normalized();
        if (n.IsEmpty()) continue;
        pending.push_back(n);
        edges.insert(edges.end(), {n.top, n.bottom});
    }
    std::sort(pending.begin(), pending.end(), [](const DeviceRect& a, const DeviceRect& b) { return a.top < b.top; });
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    // A sweep down the distinct edges: between two neighbouring ones the
    // same rectangles cover every row, and their spans, merged, are a band.
    Region region;
    std::vector<Piece> active; // by left edge
    std::vector<Region::Span> spans;
    size_t next = 0;
    for (size_t i = 0; i + 1 < edges.size(); ++i) {
        const int32_t top = edges[i];
        std::erase_if(active, [top](const Piece& p) { return p.bottom <= top; });
        for (; next < pending.size() && pending[next].top == top; ++next) {
            const Piece p{pending[next].left, pending[next].right, pending[next].bottom};
            active.insert(std::upper_bound(active.begin(), active.end(), p,
                                           [](const Piece& a, const Piece& b) { return a.left < b.left; }),
                          p);
        }
        spans.clear();
        for (const Piece& p : active) spans.push_back({p.left, p.right});
        region.AppendBand(top, edges[i + 1], spans);
    }
    return region;
}

Region CreatePolygonRgn(std::span<const DevicePoint> points, PolyFillMode mode)
{
    Region region;
    if (points.size() < 2) return region;
    std::vector<raster::Point64> pts(points.size());
    for (size_t i = 0; i < points.size(); ++i) pts[i] = {points[i].x, points[i].y};
    raster::PolygonRasterizer scanner;
    RowCollector rows(region);
    scanner.Scan(pts, mode, kRegionUniverse.top, kRegionUniverse.bottom, kRegionUniverse.left,
                 kRegionUniverse.right, rows);
    rows.Flush();
    return region;
}

Region CreateRoundRectRgn(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t ellipseWidth,
                          int32_t ellipseHeight)
{
    int64_t l = std::min(left, right), r = std::max(left, right);
    int64_t t = std::min(top, bottom), b = std::max(top, bottom);
    // The region covers the box one pixel smaller at the right and bottom.
    --r;
    --b;
    const int64_t ew = std::min<int64_t>(r - l, std::llabs(int64_t(ellipseWidth)));
    const int64_t eh = std::min<int64_t>(b - t, std::llabs(int64_t(ellipseHeight)));
    if (ew < 2 || eh < 2) {
        // A rectangle region of that smaller box, which the platform then
        // normalizes: an empty box at (x, y) becomes the pixel (x-1, y-1).
        auto clamp32 = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
        return CreateRectRgn(clamp32(l), clamp32(t), clamp32(r), clamp32(b));
    }
    Region region;
    RowCollector rows(region);
    raster::RoundRectScanner scanner;
    scanner.Scan(l, t, r, b, ew, eh, kRegionUniverse.top, kRegionUniverse.bottom, kRegionUniverse.left,
                 kRegionUniverse.right, rows);
    rows.Flush();
    return region;
}

Region CreateEllipticRgn(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    const int64_t w = int64_t(right) - left, h = int64_t(bottom) - top;
    return CreateRoundRectRgn(left, top, right, bottom, int32_t(std::clamp<int64_t>(w, INT32_MIN + 1, INT32_MAX)),
                              int32_t(std::clamp<int64_t>(h, INT32_MIN + 1, INT32_MAX)));
}

} // namespace bvx
