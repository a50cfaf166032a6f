// Regions: the band structure and the point test agree. Which pixels each
// factory holds is held to GDI by the region probes of the fidelity
// comparison.
#include "platform/Region.h"

#include <gtest/gtest.h>

#include <random>

namespace bvx {
namespace {

TEST(Region, BandsMergeEqualRowsAndBoxIsTight)
{
    const Region r = CreateRoundRectRgn(0, 0, 101, 61, 10, 10);
    EXPECT_EQ(r.GetRgnBox(), (DeviceRect{0, 0, 100, 60}));
    EXPECT_LT(r.Bands().size(), 15u); // the straight middle is one band
    EXPECT_TRUE(Region().IsEmpty());
    EXPECT_FALSE(Region().PtInRegion(0, 0));
}

TEST(Region, PointTestMatchesALinearScanOfTheBands)
{
    std::mt19937 rng(9);
    std::uniform_int_distribution<int32_t> d(-10, 110);
    std::vector<DevicePoint> pts;
    for (int i = 0; i < 40; ++i) pts.push_back({d(rng), d(rng)});
    const Region r = CreatePolygonRgn(pts, PolyFillMode::Winding);
    for (int32_t y = -12; y < 112; ++y) {
        for (int32_t x = -12; x < 112; ++x) {
            bool in = false;
            for (const Region::Band& b : r.Bands())
                for (uint32_t k = 0; k < b.spanCount && y >= b.top && y < b.bottom; ++k)
                    in = in || (x >= r.Spans()[b.firstSpan + k].left && x < r.Spans()[b.firstSpan + k].right);
            ASSERT_EQ(r.PtInRegion(x, y), in) << x << "," << y;
        }
    }
}

} // namespace
} // namespace bvx
