// Dash patterns of cosmetic pens and the position in one, carried along a
// polyline so that a pattern continues across its vertices.
#pragma once

#include "../GdiObjects.h"

#include <cstdint>

namespace bvx::raster {

struct DashPattern {
    uint8_t count = 0;       // 0: not dashed
    uint8_t dashes[6] = {};  // on, off, on, off... in pixels
    uint32_t total = 0;      // sum of dashes (a pattern always has an even count here)
};

// The platform's one-pixel patterns: dash 18/6, dot 3/3, dash-dot 9/6/3/6,
// dash-dot-dot 9/3/3/3/3/3; the focus rectangle's alternate pen 1/1.
inline DashPattern CosmeticDashPattern(PenStyle style)
{
    switch (style) {
    case PenStyle::Dash: return {2, {18, 6}, 24};
    case PenStyle::Dot: return {2, {3, 3}, 6};
    case PenStyle::DashDot: return {4, {9, 6, 3, 6}, 24};
    case PenStyle::DashDotDot: return {6, {9, 3, 3, 3, 3, 3}, 24};
    default: return {};
    }
}
inline DashPattern AlternatePattern() { return {2, {1, 1}, 2}; }

// Where along the pattern the next pixel falls.
struct DashState {
    const DashPattern* pattern = nullptr;
    uint8_t index = 0;
    uint32_t left = 0; // pixels left in the current dash
    bool mark = true;  // true: a dash (pen colour), false: a gap

    void Reset(const DashPattern& p)
    {
        pattern = &p;
        index = 0;
        left = p.dashes[0];
        mark = true;
    }
    void Skip(uint64_t pixels)
    {
        uint32_t skip = uint32_t(pixels % pattern->total);
        while (skip) {
            if (left > skip) {
                left -= skip;
                return;
            }
            skip -= left;
            Next();
        }
    }
    // Advances one pixel.
    void Step()
    {
        if (--left == 0) Next();
    }

private:
    void Next()
    {
        if (++index == pattern->count) index = 0;
        left = pattern->dashes[index];
        mark = !mark;
    }
};

} // namespace bvx::raster
