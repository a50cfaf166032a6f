// The two roundings every world and device conversion rests on, and the one
// way a double passes through a 32-bit integer.
#pragma once

#include <cmath>
#include <cstdint>

namespace bvx {

// Inline: every world-to-device conversion of every shape goes through both.

// Truncates towards zero and wraps modulo 2^32 when the value fits in 64
// bits; NaN, infinities and larger values give 0x80000000. Never traps.
inline int32_t WrapToInt32(double value)
{
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (!std::isfinite(value)) return INT32_MIN;
    const double t = std::trunc(value);
    if (t >= kTwoTo63 || t < -kTwoTo63) return INT32_MIN;
    return int32_t(uint32_t(uint64_t(int64_t(t))));
}

// To the nearest integer, a tie going down: 2.5 gives 2, -2.5 gives -3.
inline int32_t RoundHalfDown(double value)
{
    const double low = std::floor(value), high = std::ceil(value);
    return WrapToInt32(value - low > high - value ? high : low);
}

// To n decimals: the fraction is first truncated to n + 1 digits and then
// rounded half down. The integer part and the truncated fraction both pass
// through 32-bit integers and wrap beyond them.
double RoundTo(double value, int32_t decimals);

} // namespace bvx

namespace bvx {

// a * b / c rounded half away from zero with a 64-bit product, as the
// platform's MulDiv; -1 when c is 0 or the result leaves 32 bits.
int32_t MulDiv(int32_t a, int32_t b, int32_t c);

} // namespace bvx
