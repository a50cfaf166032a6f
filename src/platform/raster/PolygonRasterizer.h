// Scan conversion of closed polygons with the platform's rules: an edge from
// (xt, yt) down to (xb, yb) crosses row y (yt <= y < yb) at
// x = xt + ceil((y - yt) * (xb - xt) / (yb - yt)); on each row the pixels from
// a crossing up to, but not including, the next belong to the polygon where
// the fill rule says inside (odd crossing count for ALTERNATE, non-zero sum
// of edge directions for WINDING). So right and bottom edges stay outside.
//
// Only rows in [rowTop, rowBottom) are visited, and spans are clamped to
// [xMin, xMax): a polygon reaching far off the surface costs its visible rows.
#pragma once

#include "../GdiObjects.h"
#include "LineRasterizer.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace bvx::raster {

class PolygonRasterizer {
public:
    // Several closed figures at once (a poly-polygon): counts[i] points each.
    template <typename Sink>
    void Scan(std::span<const Point64> points, std::span<const uint32_t> counts, PolyFillMode mode, int32_t rowTop,
              int32_t rowBottom, int32_t xMin, int32_t xMax, Sink&& sink);

    template <typename Sink>
    void Scan(std::span<const Point64> points, PolyFillMode mode, int32_t rowTop, int32_t rowBottom, int32_t xMin,
              int32_t xMax, Sink&& sink)
    {
        const uint32_t count = uint32_t(points.size());
        Scan(points, std::span<const uint32_t>(&count, 1), mode, rowTop, rowBottom, xMin, xMax, sink);
    }

private:
    struct Edge {
        int64_t yTop, yBottom; // rows [yTop, yBottom)
        int64_t xTop, dx, dy;  // dy > 0
        int32_t dir;           // +1 when the figure runs downwards along it
    };
    // An edge crossing the current row: x = floor(num / dy) kept as x and
    // the remainder, stepped without division from row to row. Kept
    // contiguous and sorted by x so that each row touches little memory.
    struct Active {
        int64_t x, rem, stepQ, stepR, dy, yBottom;
        int32_t dir;
    };

    void BuildEdges(std::span<const Point64> points, std::span<const uint32_t> counts, int64_t rowTop,
                    int64_t rowBottom);
    static Active StartEdge(const Edge& e, int64_t y);

    std::vector<Edge> edges_;
    std::vector<Active> active_;
};

template <typename Sink>
void PolygonRasterizer::Scan(std::span<const Point64> points, std::span<const uint32_t> counts, PolyFillMode mode,
                             int32_t rowTop, int32_t rowBottom, int32_t xMin, int32_t xMax, Sink&& sink)
{
    if (rowTop >= rowBottom || xMin >= xMax) return;
    BuildEdges(points, counts, rowTop, rowBottom);
    if (edges_.empty()) return;

    int64_t yStart = rowBottom;
    int64_t yEnd = rowTop;
    for (const Edge& e : edges_) {
        yStart = std::min(yStart, std::max<int64_t>(e.yTop, rowTop));
        yEnd = std::max(yEnd, std::min<int64_t>(e.yBottom, rowBottom));
    }
    // Edges sorted by first visible row; `next` walks them as rows advance.
    std::sort(edges_.begin(), edges_.end(), [](const Edge& a, const Edge& b) { return a.yTop < b.yTop; });
    size_t next = 0;
    active_.clear();

    for (int64_t y = yStart; y < yEnd; ++y) {
        // Drop finished edges, step the others, admit new ones.
        size_t kept = 0;
        for (size_t i = 0; i < active_.size(); ++i) {
            Active a = active_[i];
            if (y >= a.yBottom) continue;
            // Branch-free: the carry is as likely as not.
            a.rem += a.stepR;
            const int64_t carry = a.rem >= a.dy ? 1 : 0;
            a.x += a.stepQ + carry;
            a.rem -= a.dy & -carry;
            active_[kept++] = a;
        }
        active_.resize(kept);
        while (next < edges_.size() && std::max<int64_t>(edges_[next].yTop, rowTop) <= y) {
            if (edges_[next].yBottom > y) active_.push_back(StartEdge(edges_[next], y));
            ++next;
        }
        if (active_.empty()) {
            if (next >= edges_.size()) break;
            continue;
        }
        // Edges move a little from row to row, so the list stays nearly
        // sorted and insertion sort is close to linear.
        for (size_t i = 1; i < active_.size(); ++i) {
            if (active_[i - 1].x <= active_[i].x) continue;
            const Active a = active_[i];
            size_t j = i;
            while (j > 0 && active_[j - 1].x > a.x) {
                active_[j] = active_[j - 1];
                --j;
            }
            active_[j] = a;
        }

        const int32_t row = int32_t(y);
        auto emit = [&](int64_t a, int64_t b) {
            a = std::max<int64_t>(a, xMin);
            b = std::min<int64_t>(b, xMax);
            if (a < b) sink(row, int32_t(a), int32_t(b));
        };
        if (mode == PolyFillMode::Winding) {
            int32_t winding = 0;
            int64_t start = 0;
            for (const Active& c : active_) {
                const int32_t before = winding;
                winding += c.dir;
                if (before == 0 && winding != 0) start = c.x;
                else if (before != 0 && winding == 0) emit(start, c.x);
            }
        } else {
            for (size_t i = 0; i + 1 < active_.size(); i += 2) emit(active_[i].x, active_[i + 1].x);
        }
    }
}

} // namespace bvx::raster
