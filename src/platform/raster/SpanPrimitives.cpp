#include "SpanPrimitives.h"

#include <cstring>

namespace bvx::raster {

namespace {
// For each R2_ code, D' = (D & A) ^ X with A = (P & a1) ^ a2 and
// X = (P & x1) ^ x2: {a1, a2, x1, x2} as all-zero or all-one words.
struct RopCodes {
    bool a1, a2, x1, x2;
};
// Derived from the truth tables of the sixteen operations: for P = 0 and
// P = 1, D' is one of 0, 1, D, ~D, which fixes A and X.
constexpr RopCodes kRopCodes[16] = {
    {false, false, false, false}, // R2_BLACK        0
    {true, true, true, true},     // R2_NOTMERGEPEN  ~(D | P)
    {true, true, false, false},   // R2_MASKNOTPEN   ~P & D
    {false, false, true, true},   // R2_NOTCOPYPEN   ~P
    {true, false, true, false},   // R2_MASKPENNOT   P & ~D
    {false, true, false, true},   // R2_NOT          ~D
    {false, true, true, false},   // R2_XORPEN       P ^ D
    {true, false, false, true},   // R2_NOTMASKPEN   ~(P & D)
    {true, false, false, false},  // R2_MASKPEN      P & D
    {false, true, true, true},    // R2_NOTXORPEN    ~(P ^ D)
    {false, true, false, false},  // R2_NOP          D
    {true, false, true, true},    // R2_MERGENOTPEN  ~P | D
    {false, false, true, false},  // R2_COPYPEN      P
    {true, true, false, true},    // R2_MERGEPENNOT  P | ~D
    {true, true, true, false},    // R2_MERGEPEN     P | D
    {false, false, false, true},  // R2_WHITE        1
};
uint32_t Word(bool b) { return b ? kColorBits : 0u; }
} // namespace

RopMasks MasksFor(Rop2 rop, ColorRef color)
{
    int index = int(rop) - 1;
    if (index < 0 || index > 15) index = int(Rop2::CopyPen) - 1;
    const RopCodes& c = kRopCodes[index];
    const uint32_t p = color & kColorBits;
    return RopMasks{(p & Word(c.a1)) ^ Word(c.a2), (p & Word(c.x1)) ^ Word(c.x2)};
}

Rop2 Rop2FromRop3(uint32_t rop)
{
    return Rop2((((rop >> 18) & 0x0c) | ((rop >> 16) & 0x03)) + 1);
}

bool Rop3UsesSource(uint32_t rop) { return ((rop >> 2) & 0x330000u) != (rop & 0x330000u); }
bool Rop3UsesPattern(uint32_t rop) { return ((rop >> 4) & 0x0F0000u) != (rop & 0x0F0000u); }

uint32_t ApplyRop3(uint8_t code, uint32_t p, uint32_t s, uint32_t d)
{
    uint32_t out = 0;
    for (int k = 0; k < 8; ++k) {
        if (!(code & (1u << k))) continue;
        uint32_t term = (k & 4) ? p : ~p;
        term &= (k & 2) ? s : ~s;
        term &= (k & 1) ? d : ~d;
        out |= term;
    }
    return out & kColorBits;
}

void FillPixels(uint32_t* p, size_t count, uint32_t value)
{
#if (defined(__x86_64__) || defined(__i386__)) && defined(__GNUC__)
    // Long runs: the string store writes whole cache lines without reading
    // them first, which no loop of ordinary stores does.
    if (count >= 512) {
        __asm__ volatile("rep stosl" : "+D"(p), "+c"(count) : "a"(value) : "memory");
        return;
    }
#endif
    // Eight 64-bit stores a step: std::fill_n's loop of one store a step
    // runs at half the speed the core can store.
    const uint64_t pair = uint64_t(value) << 32 | value;
    size_t i = 0;
    for (; i + 16 <= count; i += 16)
        for (size_t k = 0; k < 16; k += 2) std::memcpy(p + i + k, &pair, sizeof pair);
    for (; i < count; ++i) p[i] = value;
}

Paint Paint::Solid(RopMasks m)
{
    Paint p;
    if (m.IsNop()) return p;
    p.kind_ = Kind::Solid;
    p.solid_ = m;
    return p;
}

Paint Paint::Pattern(const uint8_t bits[8], RopMasks fg, RopMasks bg)
{
    Paint p;
    if (fg.IsNop() && bg.IsNop()) return p;
    p.kind_ = Kind::Pattern;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) p.pattern_[y][x] = (bits[y] & (0x80 >> x)) ? fg : bg;
    return p;
}

void Paint::PatternSpan(uint32_t* row, int32_t y, int32_t x0, int32_t x1) const
{
    const RopMasks* cells = pattern_[y & 7];
    int32_t x = x0;
    // Head up to an 8-aligned column, then whole cells, then the tail.
    for (; x < x1 && (x & 7); ++x) row[x] = cells[x & 7].Apply(row[x]);
    for (; x + 8 <= x1; x += 8)
        for (int i = 0; i < 8; ++i) row[x + i] = cells[i].Apply(row[x + i]);
    for (; x < x1; ++x) row[x] = cells[x & 7].Apply(row[x]);
}

} // namespace bvx::raster
