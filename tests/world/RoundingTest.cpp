#include "world/Rounding.h"
#include "platform/DataRows.h"

#include <gtest/gtest.h>

#include <limits>

namespace bvx {
namespace {

TEST(Rounding, RowsOfTheDataFile)
{
    const auto rows = test::DataRows("rounding.txt");
    EXPECT_EQ(rows.size(), 24u);
    for (const auto& row : rows) {
        SCOPED_TRACE(test::Joined(row));
        if (row[0] == "half_down") {
            EXPECT_EQ(RoundHalfDown(std::stod(row[1])), std::stoi(row[2]));
        } else {
            ASSERT_EQ(row[0], "round_to");
            EXPECT_DOUBLE_EQ(RoundTo(std::stod(row[1]), std::stoi(row[2])), std::stod(row[3]));
        }
    }
}

TEST(RoundTo, HugeAndNonFiniteValuesNeverTrap)
{
    for (double v : {5e9 + 0.5, -5e9, 1e300, std::numeric_limits<double>::infinity(),
                     std::numeric_limits<double>::quiet_NaN()})
        (void)RoundTo(v, 8); // the sanitizer build turns any bad cast into a failure
}

} // namespace
} // namespace bvx
