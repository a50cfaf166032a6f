// The few operations every drawing call reduces to: fill a span or a
// rectangle with a solid colour or an 8x8 pattern, each pixel combined with
// the destination through an AND mask and an XOR mask, D = (D & A) ^ X.
// All sixteen binary raster operations are one such pair per source colour,
// so every primitive is one code path whatever the ROP2.
#pragma once

#include "../GdiObjects.h"
#include "../Geometry.h"

#include <algorithm>
#include <cstdint>

namespace bvx::raster {

constexpr uint32_t kColorBits = 0x00FFFFFF;

struct RopMasks {
    uint32_t andMask = kColorBits; // the default leaves the destination alone
    uint32_t xorMask = 0;

    bool IsNop() const { return andMask == kColorBits && xorMask == 0; }
    uint32_t Apply(uint32_t d) const { return (d & andMask) ^ xorMask; }
};

// The masks that apply `rop` with source colour `color`. The top byte of
// both masks is zero so that pixels keep the 0x00BBGGRR form.
RopMasks MasksFor(Rop2 rop, ColorRef color);

// The binary raster operation a ternary code means when its source bits are
// ignored (PatBlt's codes), and whether a ternary code reads the source.
Rop2 Rop2FromRop3(uint32_t rop);
bool Rop3UsesSource(uint32_t rop);
bool Rop3UsesPattern(uint32_t rop);
// One ternary operation on one pixel: P pattern, S source, D destination.
uint32_t ApplyRop3(uint8_t code, uint32_t p, uint32_t s, uint32_t d);

// Sets `count` pixels from `p` on to `value`.
void FillPixels(uint32_t* p, size_t count, uint32_t value);

inline void FillSpan(uint32_t* p, int32_t count, RopMasks m)
{
    if (count <= 0) return;
    if (m.andMask == 0) {
        FillPixels(p, size_t(count), m.xorMask);
    } else if (m.andMask == kColorBits) {
        if (m.xorMask == 0) return;
        for (int32_t i = 0; i < count; ++i) p[i] ^= m.xorMask;
    } else {
        for (int32_t i = 0; i < count; ++i) p[i] = (p[i] & m.andMask) ^ m.xorMask;
    }
}

// What a span is filled with: nothing, one colour, or an 8x8 pattern whose
// cell (x & 7, y & 7) applies to device pixel (x, y), as the platform anchors
// hatch brushes at the device origin.
class Paint {
public:
    enum class Kind : uint8_t { Nop, Solid, Pattern };

    static Paint Nop() { return Paint{}; }
    static Paint Solid(RopMasks m);
    // bits[row] holds the pattern row, most significant bit leftmost; set
    // bits take `fg`, clear bits `bg`.
    static Paint Pattern(const uint8_t bits[8], RopMasks fg, RopMasks bg);

    Kind kind() const { return kind_; }
    bool IsNop() const { return kind_ == Kind::Nop; }
    const RopMasks& solid() const { return solid_; }

    // Fills [x0, x1) of row y, which the caller has already clipped.
    void Span(Bitmap& bitmap, int32_t y, int32_t x0, int32_t x1) const
    {
        if (x1 <= x0) return;
        uint32_t* p = bitmap.Pixels().data() + size_t(y) * size_t(bitmap.Width());
        if (kind_ == Kind::Solid) {
            if (solid_.andMask == 0 && x1 - x0 <= 16) {
                // Short copies are the common span of busy fills.
                for (int32_t x = x0; x < x1; ++x) p[x] = solid_.xorMask;
                return;
            }
            FillSpan(p + x0, x1 - x0, solid_);
        } else if (kind_ == Kind::Pattern) {
            PatternSpan(p, y, x0, x1);
        }
    }
    void Rect(Bitmap& bitmap, const DeviceRect& r) const
    {
        if (kind_ == Kind::Nop || r.IsEmpty()) return;
        if (kind_ == Kind::Solid && r.left == 0 && r.right == bitmap.Width()) {
            // Whole rows are one run of memory.
            uint32_t* p = bitmap.Pixels().data() + size_t(r.top) * size_t(r.right);
            const size_t n = size_t(r.bottom - r.top) * size_t(r.right);
            if (solid_.andMask == 0) {
                FillPixels(p, n, solid_.xorMask);
            } else {
                for (size_t i = 0; i < n; ++i) p[i] = solid_.Apply(p[i]);
            }
            return;
        }
        for (int32_t y = r.top; y < r.bottom; ++y) Span(bitmap, y, r.left, r.right);
    }
    // The masks this paint applies at one device pixel.
    RopMasks At(int32_t x, int32_t y) const
    {
        if (kind_ == Kind::Solid) return solid_;
        if (kind_ == Kind::Pattern) return pattern_[y & 7][x & 7];
        return RopMasks{};
    }

private:
    void PatternSpan(uint32_t* row, int32_t y, int32_t x0, int32_t x1) const;

    Kind kind_ = Kind::Nop;
    RopMasks solid_{};
    RopMasks pattern_[8][8]{};
};

} // namespace bvx::raster
