#include "PolygonRasterizer.h"

#include "WideMath.h"

namespace bvx::raster {

void PolygonRasterizer::BuildEdges(std::span<const Point64> points, std::span<const uint32_t> counts,
                                   int64_t rowTop, int64_t rowBottom)
{
    edges_.clear();
    size_t base = 0;
    for (uint32_t count : counts) {
        if (base + count > points.size()) break;
        if (count >= 2) {
            for (uint32_t i = 0; i < count; ++i) {
                const Point64& prev = points[base + (i == 0 ? count - 1 : i - 1)];
                const Point64& cur = points[base + i];
                if (prev.y == cur.y) continue; // horizontal edges cross no row
                const bool down = prev.y < cur.y;
                const Point64& top = down ? prev : cur;
                const Point64& bottom = down ? cur : prev;
                if (bottom.y <= rowTop || top.y >= rowBottom) continue;
                Edge e{};
                e.yTop = top.y;
                e.yBottom = bottom.y;
                e.xTop = top.x;
                e.dx = bottom.x - top.x;
                e.dy = bottom.y - top.y;
                e.dir = down ? 1 : -1;
                edges_.push_back(e);
            }
        }
        base += count;
    }
}

PolygonRasterizer::Active PolygonRasterizer::StartEdge(const Edge& e, int64_t y)
{
    // x(y) = xTop + ceil(k * dx / dy) = xTop + floor((k * dx + dy - 1) / dy), k = y - yTop.
    const Int128 num = Int128(y - e.yTop) * e.dx + e.dy - 1;
    const Int128 q = FloorDiv(num, e.dy);
    const Int128 sq = FloorDiv(e.dx, e.dy);
    Active a{};
    a.x = int64_t(e.xTop + q);
    a.rem = int64_t(num - q * e.dy);
    a.stepQ = int64_t(sq);
    a.stepR = int64_t(Int128(e.dx) - sq * e.dy);
    a.dy = e.dy;
    a.yBottom = e.yBottom;
    a.dir = e.dir;
    return a;
}

} // namespace bvx::raster
