// Clipping a line analytically visits the pixels that stepping the whole
// segment would visit inside the clip. Line pixels themselves, clipped and
// not, are held to GDI by the fidelity comparison.
#include "platform/raster/LineRasterizer.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace bvx {
namespace {

// The pixels a clipped run visits, those inside `keep` only.
std::set<std::pair<int64_t, int64_t>> RunPixels(const raster::Point64& p0, const raster::Point64& p1,
                                                const DeviceRect& clip, const DeviceRect& keep)
{
    std::set<std::pair<int64_t, int64_t>> pixels;
    raster::LineRun run;
    if (!raster::ClipLine(p0, p1, clip, run)) return pixels;
    int64_t x = run.x, y = run.y, err = run.err;
    for (int64_t k = 0; k < run.count; ++k) {
        if (keep.Contains(int32_t(x), int32_t(y))) pixels.insert({x, y});
        const bool minorStep = err + run.bias > 0;
        err += minorStep ? run.errMinor : run.errMajor;
        if (minorStep) (run.xMajor ? y : x) += run.xMajor ? run.sy : run.sx;
        (run.xMajor ? x : y) += run.xMajor ? run.sx : run.sy;
    }
    return pixels;
}

// Far-away end points: clipping analytically gives the pixels that the
// same segment drawn step by step would give.
TEST(LineClip, FarEndPointsAgreeWithStepping)
{
    std::mt19937 rng(11);
    std::uniform_int_distribution<int32_t> far(-4000, 4000);
    const DeviceRect clip{0, 0, 40, 30}, everything{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (int i = 0; i < 300; ++i) {
        const raster::Point64 p0{far(rng), far(rng)}, p1{far(rng), far(rng)};
        ASSERT_EQ(RunPixels(p0, p1, clip, clip), RunPixels(p0, p1, everything, clip))
            << p0.x << "," << p0.y << " - " << p1.x << "," << p1.y;
    }
}

} // namespace
} // namespace bvx
