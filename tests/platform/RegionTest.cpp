// Regions: which pixels each factory holds, and the point test.
#include "platform/Region.h"

#include <gtest/gtest.h>

#include <random>

namespace bvx {
namespace {

std::string Picture(const Region& r, int32_t w, int32_t h)
{
    std::string s = "\n";
    for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) s += r.PtInRegion(x, y) ? '#' : '.';
        s += "\n";
    }
    return s;
}

struct RegionCase {
    const char* name;
    Region (*make)();
    const char* picture; // 10 x 8
};

// Pictures as the platform's regions hold them (checked against GDI under
// Wine): right and bottom edges excluded; elliptic and rounded regions are
// one pixel smaller than the box at the right and bottom.
const RegionCase kRegions[] = {
    {"rect", [] { return CreateRectRgn(1, 2, 6, 5); },
     "\n..........\n..........\n.#####....\n.#####....\n.#####....\n..........\n..........\n..........\n"},
    {"rect_reversed", [] { return CreateRectRgn(6, 5, 1, 2); },
     "\n..........\n..........\n.#####....\n.#####....\n.#####....\n..........\n..........\n..........\n"},
    {"rect_empty", [] { return CreateRectRgn(3, 3, 3, 7); },
     "\n..........\n..........\n..........\n..........\n..........\n..........\n..........\n..........\n"},
    {"ellipse", [] { return CreateEllipticRgn(0, 0, 9, 8); },
     "\n..####....\n.######...\n########..\n########..\n########..\n.######...\n..####....\n..........\n"},
    {"roundrect", [] { return CreateRoundRectRgn(0, 0, 10, 8, 4, 4); },
     "\n.#######..\n#########.\n#########.\n#########.\n#########.\n#########.\n.#######..\n..........\n"},
    {"roundrect_small_corner_is_rect", [] { return CreateRoundRectRgn(0, 0, 10, 8, 1, 1); },
     "\n#########.\n#########.\n#########.\n#########.\n#########.\n#########.\n#########.\n..........\n"},
    {"triangle", [] {
         const DevicePoint p[] = {{0, 7}, {4, 0}, {9, 7}};
         return CreatePolygonRgn(p, PolyFillMode::Alternate);
     },
     "\n..........\n....#.....\n...###....\n...####...\n..#####...\n..######..\n.########.\n..........\n"},
};

class RegionPicture : public ::testing::TestWithParam<RegionCase> {};

TEST_P(RegionPicture, HoldsThePlatformsPixels)
{
    EXPECT_EQ(Picture(GetParam().make(), 10, 8), GetParam().picture);
}

INSTANTIATE_TEST_SUITE_P(Region, RegionPicture, ::testing::ValuesIn(kRegions),
                         [](const ::testing::TestParamInfo<RegionCase>& info) { return std::string(info.param.name); });

TEST(Region, BandsMergeEqualRowsAndBoxIsTight)
{
    const Region r = CreateRoundRectRgn(0, 0, 101, 61, 10, 10);
    EXPECT_EQ(r.GetRgnBox(), (DeviceRect{0, 0, 100, 60}));
    EXPECT_LT(r.Bands().size(), 15u); // the straight middle is one band
    EXPECT_TRUE(Region().IsEmpty());
    EXPECT_FALSE(Region().PtInRegion(0, 0));
}

TEST(Region, PointTestMatchesALinearScan)
{
    std::mt19937 rng(9);
    std::uniform_int_distribution<int32_t> d(-10, 110);
    std::vector<DevicePoint> pts;
    for (int i = 0; i < 40; ++i) pts.push_back({d(rng), d(rng)});
    const Region r = CreatePolygonRgn(pts, PolyFillMode::Winding);
    for (int32_t y = -12; y < 112; ++y) {
        for (int32_t x = -12; x < 112; ++x) {
            bool in = false;
            for (const Region::Band& b : r.Bands()) {
                if (y < b.top || y >= b.bottom) continue;
                for (uint32_t k = 0; k < b.spanCount; ++k) {
                    const Region::Span& s = r.Spans()[b.firstSpan + k];
                    in = in || (x >= s.left && x < s.right);
                }
            }
            ASSERT_EQ(r.PtInRegion(x, y), in) << x << "," << y;
        }
    }
}

} // namespace
} // namespace bvx
