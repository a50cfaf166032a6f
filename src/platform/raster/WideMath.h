// Exact integer arithmetic wide enough for products of two 64-bit spans,
// shared by the rasterisers.
#pragma once

#include "PortableInt128.h"

namespace bvx::raster {

// The compiler's own where it has one; 32-bit targets have none.
#if defined(__SIZEOF_INT128__)
using Int128 = __int128;
#else
using Int128 = PortableInt128;
#endif

// floor(a / b) and ceil(a / b) for b > 0.
inline Int128 FloorDiv(Int128 a, Int128 b)
{
    Int128 q = a / b;
    if ((a % b != 0) && (a < 0)) --q;
    return q;
}
inline Int128 CeilDiv(Int128 a, Int128 b) { return -FloorDiv(-a, b); }

} // namespace bvx::raster
