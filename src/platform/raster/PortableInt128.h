// A signed 128-bit integer in two 64-bit halves, two's complement, for
// compilers that have no built-in one (32-bit targets). It wraps as the
// built-in type does and divides toward zero.
#pragma once

#include <concepts>
#include <cstdint>

namespace bvx::raster {

class PortableInt128 {
public:
    constexpr PortableInt128() = default;
    template <std::integral T> constexpr PortableInt128(T v) // NOLINT: converts like a built-in integer
        : lo_(uint64_t(v)), hi_(std::signed_integral<T> && v < 0 ? ~uint64_t(0) : 0)
    {
    }

    // The two halves as they are stored.
    constexpr uint64_t High() const { return hi_; }
    constexpr uint64_t Low() const { return lo_; }

    constexpr explicit operator int64_t() const { return int64_t(lo_); }
    constexpr explicit operator int32_t() const { return int32_t(lo_); }
    constexpr explicit operator bool() const { return lo_ || hi_; }

    friend constexpr PortableInt128 operator+(PortableInt128 a, PortableInt128 b)
    {
        const uint64_t lo = a.lo_ + b.lo_;
        return Make(a.hi_ + b.hi_ + (lo < a.lo_), lo);
    }
    friend constexpr PortableInt128 operator-(PortableInt128 a) { return PortableInt128(0) - a; }
    friend constexpr PortableInt128 operator-(PortableInt128 a, PortableInt128 b)
    {
        return Make(a.hi_ - b.hi_ - (a.lo_ < b.lo_), a.lo_ - b.lo_);
    }
    friend constexpr PortableInt128 operator*(PortableInt128 a, PortableInt128 b)
    {
        // The low 128 bits of the product: one full 64 by 64 product and
        // the low halves of the two cross products.
        const uint64_t a0 = a.lo_ & 0xFFFFFFFFu, a1 = a.lo_ >> 32, b0 = b.lo_ & 0xFFFFFFFFu, b1 = b.lo_ >> 32;
        const uint64_t p00 = a0 * b0, p01 = a0 * b1, p10 = a1 * b0, p11 = a1 * b1;
        const uint64_t middle = (p00 >> 32) + (p01 & 0xFFFFFFFFu) + (p10 & 0xFFFFFFFFu);
        const uint64_t lo = (middle << 32) | (p00 & 0xFFFFFFFFu);
        const uint64_t hi = p11 + (p01 >> 32) + (p10 >> 32) + (middle >> 32) + a.hi_ * b.lo_ + a.lo_ * b.hi_;
        return Make(hi, lo);
    }
    friend constexpr PortableInt128 operator/(PortableInt128 a, PortableInt128 b) { return Divide(a, b, false); }
    friend constexpr PortableInt128 operator%(PortableInt128 a, PortableInt128 b) { return Divide(a, b, true); }
    PortableInt128& operator+=(PortableInt128 b) { return *this = *this + b; }
    PortableInt128& operator-=(PortableInt128 b) { return *this = *this - b; }
    PortableInt128& operator--() { return *this = *this - 1; }
    PortableInt128& operator++() { return *this = *this + 1; }

    friend constexpr bool operator==(PortableInt128 a, PortableInt128 b) = default;
    friend constexpr bool operator<(PortableInt128 a, PortableInt128 b)
    {
        return int64_t(a.hi_) != int64_t(b.hi_) ? int64_t(a.hi_) < int64_t(b.hi_) : a.lo_ < b.lo_;
    }
    friend constexpr bool operator>(PortableInt128 a, PortableInt128 b) { return b < a; }
    friend constexpr bool operator<=(PortableInt128 a, PortableInt128 b) { return !(b < a); }
    friend constexpr bool operator>=(PortableInt128 a, PortableInt128 b) { return !(a < b); }

private:
    static constexpr PortableInt128 Make(uint64_t hi, uint64_t lo)
    {
        PortableInt128 r;
        r.hi_ = hi;
        r.lo_ = lo;
        return r;
    }
    constexpr bool Negative() const { return int64_t(hi_) < 0; }
    // Both fit in 64 bits signed: the usual case, done by the machine.
    constexpr bool Fits64() const { return hi_ == (int64_t(lo_) < 0 ? ~uint64_t(0) : 0); }

    // Quotient or remainder, truncated toward zero as C++ divides; the
    // remainder takes the dividend's sign. Division by zero gives zero.
    static constexpr PortableInt128 Divide(PortableInt128 a, PortableInt128 b, bool remainder)
    {
        if (!b) return 0;
        if (a.Fits64() && b.Fits64() && !(int64_t(a.lo_) == INT64_MIN && int64_t(b.lo_) == -1))
            return remainder ? PortableInt128(int64_t(a.lo_) % int64_t(b.lo_))
                             : PortableInt128(int64_t(a.lo_) / int64_t(b.lo_));
        const bool negativeQuotient = a.Negative() != b.Negative();
        const PortableInt128 n = a.Negative() ? -a : a, d = b.Negative() ? -b : b;
        // Shift and subtract on the magnitudes, as unsigned numbers.
        PortableInt128 q, r;
        for (int bit = 127; bit >= 0; --bit) {
            r = Make((r.hi_ << 1) | (r.lo_ >> 63), r.lo_ << 1);
            const uint64_t nextBit = bit >= 64 ? (n.hi_ >> (bit - 64)) & 1 : (n.lo_ >> bit) & 1;
            r.lo_ |= nextBit;
            if (r.hi_ > d.hi_ || (r.hi_ == d.hi_ && r.lo_ >= d.lo_)) {
                r = r - d;
                if (bit >= 64)
                    q.hi_ |= uint64_t(1) << (bit - 64);
                else
                    q.lo_ |= uint64_t(1) << bit;
            }
        }
        if (remainder) return a.Negative() ? -r : r;
        return negativeQuotient ? -q : q;
    }

    uint64_t lo_ = 0;
    uint64_t hi_ = 0;
};

} // namespace bvx::raster
