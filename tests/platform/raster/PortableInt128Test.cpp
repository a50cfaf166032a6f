// The portable 128-bit integer that 32-bit builds use, held to the
// compiler's own on random and extreme operands: every operation the
// rasterisers use, with the same wrapping and the same rounding.
#include "platform/raster/PortableInt128.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#if defined(__SIZEOF_INT128__)

namespace bvx::raster {
namespace {

using Native = __int128;

Native Widen(PortableInt128 v)
{
    return Native((static_cast<unsigned __int128>(v.High()) << 64) | v.Low());
}

TEST(PortableInt128, AgreesWithTheCompilersOwn)
{
    std::mt19937_64 rng(42);
    std::vector<int64_t> values = {0, 1, -1, 2, -2, 3, 7, INT64_MAX, INT64_MIN, INT64_MAX - 1, INT64_MIN + 1,
                                   int64_t(1) << 32, -(int64_t(1) << 32), 0x7FFFFFFF, -0x80000000LL};
    for (int i = 0; i < 200; ++i) values.push_back(int64_t(rng()) >> (rng() % 63));
    int checked = 0;
    for (int64_t x : values)
        for (int64_t y : values) {
            // Operands up to the products the rasterisers form: 64 by 64 bits.
            const Native a = Native(x) * (y % 3 == 0 ? Native(y) : Native(1)), b = Native(y);
            const PortableInt128 pa = PortableInt128(x) * (y % 3 == 0 ? PortableInt128(y) : PortableInt128(1));
            const PortableInt128 pb(y);
            ASSERT_EQ(Widen(pa), a) << x << " " << y;
            EXPECT_EQ(Widen(pa + pb), a + b);
            EXPECT_EQ(Widen(pa - pb), a - b);
            EXPECT_EQ(Widen(-pa), -a);
            EXPECT_EQ(pa < pb, a < b);
            EXPECT_EQ(pa <= pb, a <= b);
            EXPECT_EQ(pa == pb, a == b);
            EXPECT_EQ(int64_t(pa), int64_t(a));
            if (b != 0) {
                EXPECT_EQ(Widen(pa / pb), a / b) << x << " " << y;
                EXPECT_EQ(Widen(pa % pb), a % b) << x << " " << y;
            }
            ++checked;
        }
    EXPECT_GT(checked, 40000);
    EXPECT_EQ(Widen(PortableInt128(uint64_t(UINT64_MAX))), Native(UINT64_MAX)) << "unsigned values are not sign-extended";
    EXPECT_EQ(PortableInt128(5) / 0, PortableInt128(0));
}

} // namespace
} // namespace bvx::raster

#endif
