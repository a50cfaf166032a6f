// Regions: the band structure and the point test agree; a union of
// rectangles holds the points of any of them, in disjoint bands and spans. Which pixels each
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

TEST(Region, UnionOfRectanglesHoldsThePointsOfAnyAndNoOverlap)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int32_t> d(-5, 40);
    for (int round = 0; round < 60; ++round) {
        std::vector<DeviceRect> rects(size_t(round % 9)); // the empty list too
        for (DeviceRect& r : rects) r = {d(rng), d(rng), d(rng), d(rng)}; // inverted and empty ones too
        const Region u = CreateRectsRgn(rects);
        const DeviceRect cut = DeviceRect{d(rng), d(rng), d(rng), d(rng)}.Normalized();
        const Region part = u.Intersected(cut);
        for (int32_t y = -7; y < 42; ++y) {
            for (int32_t x = -7; x < 42; ++x) {
                bool in = false;
                for (const DeviceRect& r : rects) in = in || r.Normalized().Contains(x, y);
                ASSERT_EQ(u.PtInRegion(x, y), in) << round << ": " << x << "," << y;
                ASSERT_EQ(part.PtInRegion(x, y), in && cut.Contains(x, y)) << round << ": " << x << "," << y;
            }
        }
        // Clipping walks these bands and spans as rectangles that must
        // never overlap, or a pixel would be painted twice.
        int32_t lastBottom = INT32_MIN;
        for (const Region::Band& b : u.Bands()) {
            ASSERT_LE(lastBottom, b.top);
            lastBottom = b.bottom;
            for (uint32_t k = 1; k < b.spanCount; ++k)
                ASSERT_LT(u.Spans()[b.firstSpan + k - 1].right, u.Spans()[b.firstSpan + k].left);
        }
    }
    const DeviceRect quarters[] = {{0, 0, 10, 10}, {10, 0, 20, 10}, {20, 20, 0, 10}};
    EXPECT_TRUE(CreateRectsRgn(quarters).IsRect());
    EXPECT_EQ(CreateRectsRgn(quarters).GetRgnBox(), (DeviceRect{0, 0, 20, 20}));
    const DeviceRect everything{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    EXPECT_EQ(CreateRectsRgn(std::span(&everything, 1)).GetRgnBox(), everything);
}

} // namespace
} // namespace bvx
