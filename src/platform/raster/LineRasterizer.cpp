#include "LineRasterizer.h"

#include "WideMath.h"

#include <algorithm>
#include <cstdlib>

namespace bvx::raster {

namespace {

// The platform numbers octants clockwise from +x with y pointing down.
int Octant(int64_t dx, int64_t dy)
{
    if (dy > 0) {
        if (dx > 0) return dx > dy ? 1 : 2;
        return -dx > dy ? 4 : 3;
    }
    if (dx < 0) return -dx > -dy ? 5 : 6;
    return dx > -dy ? 8 : 7;
}

// Minor offset of the i-th pixel along the major axis.
Int128 MinorAt(Int128 i, int64_t dMajor, int64_t dMinor, int bias)
{
    return FloorDiv(2 * i * dMinor + dMajor + bias - 1, Int128(2) * dMajor);
}
// Smallest i whose minor offset is at least k (dMinor > 0).
Int128 FirstIndexWithMinor(Int128 k, int64_t dMajor, int64_t dMinor, int bias)
{
    if (k <= 0) return 0;
    return CeilDiv(2 * k * dMajor - dMajor - bias + 1, Int128(2) * dMinor);
}

} // namespace

bool ClipLine(Point64 p0, Point64 p1, const DeviceRect& clip, LineRun& run)
{
    if (clip.IsEmpty()) return false;
    const int64_t dx = p1.x - p0.x, dy = p1.y - p0.y;
    if (dx == 0 && dy == 0) return false;
    const int64_t adx = std::llabs(dx), ady = std::llabs(dy);
    const int octant = Octant(dx, dy);

    run.xMajor = adx > ady;
    run.bias = (octant == 3 || octant == 5 || octant == 6 || octant == 8) ? 1 : 0;
    run.sx = dx > 0 ? 1 : -1;
    run.sy = dy > 0 ? 1 : -1;

    const int64_t dMajor = run.xMajor ? adx : ady;
    const int64_t dMinor = run.xMajor ? ady : adx;
    run.length = dMajor;
    run.errMinor = 2 * dMinor - 2 * dMajor;
    run.errMajor = 2 * dMinor;

    // Major axis origin, step and clip range; minor likewise.
    const int64_t major0 = run.xMajor ? p0.x : p0.y;
    const int64_t minor0 = run.xMajor ? p0.y : p0.x;
    const int32_t majorStep = run.xMajor ? run.sx : run.sy;
    const int32_t minorStep = run.xMajor ? run.sy : run.sx;
    const int64_t majorLo = run.xMajor ? clip.left : clip.top;
    const int64_t majorHi = (run.xMajor ? clip.right : clip.bottom) - 1;
    const int64_t minorLo = run.xMajor ? clip.top : clip.left;
    const int64_t minorHi = (run.xMajor ? clip.bottom : clip.right) - 1;

    Int128 first = 0, last = dMajor - 1;
    const bool inside = p0.x >= clip.left && p0.x < clip.right && p0.y >= clip.top && p0.y < clip.bottom &&
                        p1.x >= clip.left && p1.x < clip.right && p1.y >= clip.top && p1.y < clip.bottom;
    if (!inside) {
        // Major axis: i such that major0 + step*i lies in [lo, hi].
        if (majorStep > 0) {
            first = std::max<Int128>(first, Int128(majorLo) - major0);
            last = std::min<Int128>(last, Int128(majorHi) - major0);
        } else {
            first = std::max<Int128>(first, Int128(major0) - majorHi);
            last = std::min<Int128>(last, Int128(major0) - majorLo);
        }
        if (first > last) return false;
        // Minor axis: the offset n(i) must lie in [nLo, nHi].
        Int128 nLo, nHi;
        if (minorStep > 0) {
            nLo = Int128(minorLo) - minor0;
            nHi = Int128(minorHi) - minor0;
        } else {
            nLo = Int128(minor0) - minorHi;
            nHi = Int128(minor0) - minorLo;
        }
        if (nHi < 0) return false;
        if (dMinor == 0) {
            if (nLo > 0) return false;
        } else {
            first = std::max(first, FirstIndexWithMinor(nLo, dMajor, dMinor, run.bias));
            last = std::min(last, FirstIndexWithMinor(nHi + 1, dMajor, dMinor, run.bias) - 1);
        }
        if (first > last) return false;
    }

    const Int128 n = MinorAt(first, dMajor, dMinor, run.bias);
    const Int128 err = Int128(2) * dMinor - dMajor + 2 * first * dMinor - 2 * n * dMajor;
    const int64_t majorPos = int64_t(major0 + majorStep * first);
    const int64_t minorPos = int64_t(minor0 + minorStep * n);
    run.x = run.xMajor ? majorPos : minorPos;
    run.y = run.xMajor ? minorPos : majorPos;
    run.err = int64_t(err);
    run.count = int64_t(last - first + 1);
    run.skipped = int64_t(first);
    return true;
}

} // namespace bvx::raster
