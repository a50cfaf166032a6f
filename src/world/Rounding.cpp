#include "Rounding.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
} // namespace

double RoundTo(double value, int32_t decimals)
{
    // Precisions are stored as 0 to 8; the clamp only keeps the table in reach.
    int n = std::clamp(decimals, 0, 9);
    int32_t whole = WrapToInt32(std::fabs(std::trunc(value)));
    double fraction = std::fabs(std::fabs(value) - whole);
    int32_t digits = WrapToInt32(fraction * kPowersOfTen[n + 1]);
    double result = RoundHalfDown(digits * 0.1) / kPowersOfTen[n] + whole;
    // A negative value that rounds to nothing is zero, not minus zero, so
    // that rounding what was rounded changes nothing.
    return value < 0 && result != 0 ? -result : result;
}

} // namespace bvx

namespace bvx {

int32_t MulDiv(int32_t a, int32_t b, int32_t c)
{
    if (c == 0) return -1;
    int64_t product = int64_t(a) * b;
    // Halves go away from zero: add half the divisor with the result's sign.
    bool negative = (product < 0) != (c < 0);
    uint64_t magnitude = product < 0 ? uint64_t(-(product + 1)) + 1 : uint64_t(product);
    uint64_t divisor = c < 0 ? uint64_t(-(int64_t(c))) : uint64_t(c);
    uint64_t q = (magnitude + divisor / 2) / divisor;
    if (q > (negative ? uint64_t(INT32_MAX) + 1 : uint64_t(INT32_MAX))) return -1;
    return negative ? int32_t(-int64_t(q)) : int32_t(q);
}

} // namespace bvx
