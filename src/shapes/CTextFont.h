// A text shape's reference to the font table: the slot and the layout the
// font had when the text was made, packed in one word as the file keeps it,
// with the text's world height and width.
#pragma once

#include <cstdint>

namespace bvx {

struct CTextFont {
    uint32_t FontWord = 0;
    double Height = 12;
    double Width = 0; // 0: natural

    int32_t Slot() const { return int32_t(FontWord & 0xFF); }
    int32_t Orientation() const { return int32_t((FontWord >> 8) & 0xFFF); }
    int16_t Align() const { return int16_t((FontWord >> 20) & 3); }
    int16_t Justify() const { return int16_t((FontWord >> 22) & 3); }
    bool Scaled() const { return (FontWord >> 24) & 1; }

    void SetSlot(int32_t slot) { FontWord = (FontWord & ~0xFFu) | (uint32_t(slot) & 0xFF); }
    void SetOrientation(int32_t tenths) { FontWord = (FontWord & ~(0xFFFu << 8)) | ((uint32_t(tenths) & 0xFFF) << 8); }
    void SetAlign(int32_t align) { FontWord = (FontWord & ~(3u << 20)) | ((uint32_t(align) & 3) << 20); }
    void SetJustify(int32_t justify) { FontWord = (FontWord & ~(3u << 22)) | ((uint32_t(justify) & 3) << 22); }
    void SetScaled(bool on) { FontWord = (FontWord & ~(1u << 24)) | (uint32_t(on) << 24); }
};

} // namespace bvx
