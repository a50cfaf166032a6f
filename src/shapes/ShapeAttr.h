// The 8-byte pen and brush record of a shape or a layer, laid out as the
// drawing file stores it: two words of bit fields, colours as indexes into
// the view's colour table.
#pragma once

#include <cstdint>

namespace bvx {

// The start colours a record refers to by index.
constexpr uint32_t kBlackIndex = 0;
constexpr uint32_t kWhiteIndex = 22;

class ShapeAttr {
public:
    // Pen colour 0 (black), second colour and brush background 22 (white),
    // solid one-pixel pen, null brush, transparent.
    static ShapeAttr Default();
    static ShapeAttr FromWords(uint32_t word0, uint32_t word1) { return ShapeAttr(word0, word1); }

    uint32_t Word0() const { return word0_; }
    uint32_t Word1() const { return word1_; }

    uint32_t PenColor() const { return Field(word0_, 0, 8); }
    uint32_t PenBack() const { return Field(word0_, 8, 5); }
    uint32_t PenStyle() const { return Field(word0_, 13, 3); }
    uint32_t PenWidth() const { return Field(word0_, 16, 4); }
    uint32_t PenFlag() const { return Field(word0_, 20, 1); }
    uint32_t BrushFg() const { return Field(word0_, 21, 8); }
    uint32_t BrushBg() const { return Field(word1_, 0, 5); }
    uint32_t BrushStyle() const { return Field(word1_, 5, 3); }
    uint32_t BrushMode() const { return Field(word1_, 8, 1); } // set: opaque

    // Each keeps only the bits its field has; wider indexes wrap.
    void SetPenColor(uint32_t v) { Store(word0_, 0, 8, v); }
    void SetPenBack(uint32_t v) { Store(word0_, 8, 5, v); }
    void SetPenStyle(uint32_t v) { Store(word0_, 13, 3, v); }
    void SetPenWidth(uint32_t v) { Store(word0_, 16, 4, v); }
    void SetPenFlag(uint32_t v) { Store(word0_, 20, 1, v); }
    void SetBrushFg(uint32_t v) { Store(word0_, 21, 8, v); }
    void SetBrushBg(uint32_t v) { Store(word1_, 0, 5, v); }
    void SetBrushStyle(uint32_t v) { Store(word1_, 5, 3, v); }
    void SetBrushMode(uint32_t v) { Store(word1_, 8, 1, v); }

    // Copies the defined fields only: the unused high bits of both words
    // keep what this record had.
    void CopyFieldsFrom(const ShapeAttr& other);

    friend bool operator==(const ShapeAttr&, const ShapeAttr&) = default;

private:
    ShapeAttr(uint32_t word0, uint32_t word1) : word0_(word0), word1_(word1) {}

    static uint32_t Field(uint32_t word, int shift, int bits) { return (word >> shift) & ((1u << bits) - 1); }
    static void Store(uint32_t& word, int shift, int bits, uint32_t v)
    {
        uint32_t mask = ((1u << bits) - 1) << shift;
        word = (word & ~mask) | ((v << shift) & mask);
    }

    uint32_t word0_ = 0;
    uint32_t word1_ = 0;
};

} // namespace bvx
