#include "world/Rounding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace bvx {
namespace {

struct HalfDownCase {
    double in;
    int32_t out;
};

class RoundHalfDownTest : public ::testing::TestWithParam<HalfDownCase> {};

TEST_P(RoundHalfDownTest, TiesGoDownAndOverflowWraps)
{
    EXPECT_EQ(RoundHalfDown(GetParam().in), GetParam().out) << "input " << GetParam().in;
}

INSTANTIATE_TEST_SUITE_P(Values, RoundHalfDownTest,
                         ::testing::Values(HalfDownCase{2.5, 2}, HalfDownCase{-2.5, -3}, HalfDownCase{2.5000001, 3},
                                           HalfDownCase{-2.4999999, -2}, HalfDownCase{0.0, 0},
                                           HalfDownCase{-0.5, -1}, HalfDownCase{0.5, 0},
                                           // Through 32 bits: 2^32 + 5 wraps to 5, 2^31 to its negative.
                                           HalfDownCase{4294967301.0, 5}, HalfDownCase{2147483648.0, INT32_MIN},
                                           HalfDownCase{1e30, INT32_MIN},
                                           HalfDownCase{std::numeric_limits<double>::quiet_NaN(), INT32_MIN},
                                           HalfDownCase{-std::numeric_limits<double>::infinity(), INT32_MIN}));

struct RoundToCase {
    double in;
    int32_t decimals;
    double out;
};

class RoundToTest : public ::testing::TestWithParam<RoundToCase> {};

TEST_P(RoundToTest, TruncatesOneDigitBeyondThenRoundsHalfDown)
{
    const auto& c = GetParam();
    EXPECT_DOUBLE_EQ(RoundTo(c.in, c.decimals), c.out) << c.in << " to " << c.decimals;
}

INSTANTIATE_TEST_SUITE_P(Values, RoundToTest,
                         ::testing::Values(
                             // 1.005 is stored a hair below, so the truncation to 3 digits sees 1.004.
                             RoundToCase{1.005, 2, 1.0}, RoundToCase{1.25, 1, 1.2}, RoundToCase{1.26, 1, 1.3},
                             RoundToCase{-1.25, 1, -1.2}, RoundToCase{-1.26, 1, -1.3}, RoundToCase{2.5, 0, 2.0},
                             RoundToCase{-2.5, 0, -2.0}, RoundToCase{3.14159265, 4, 3.1416},
                             RoundToCase{100.0, 8, 100.0}, RoundToCase{0.123456789, 8, 0.12345679},
                             // A negative half never becomes -1; the integer part wraps through 32 bits, as the
                             // conversion always did.
                             RoundToCase{-0.5, 0, 0.0}, RoundToCase{4294967296.0 + 7.0, 0, 7.0}));

TEST(RoundTo, HugeAndNonFiniteValuesNeverTrap)
{
    for (double v : {5e9 + 0.5, -5e9, 1e300, std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::quiet_NaN()})
        (void)RoundTo(v, 8); // the sanitizer build turns any bad cast into a failure
}

} // namespace
} // namespace bvx
