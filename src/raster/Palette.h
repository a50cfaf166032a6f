// A logical palette: what the platform's CreatePalette is given.
#pragma once

#include "platform/Color.h"

#include <cstdint>
#include <vector>

namespace bvx {

struct PaletteEntry {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t flags = 0;
    friend bool operator==(const PaletteEntry&, const PaletteEntry&) = default;

    ColorRef Color() const { return MakeRgb(red, green, blue); }
};

// No entries stands for a null palette handle.
struct Palette {
    std::vector<PaletteEntry> entries;

    bool IsNull() const { return entries.empty(); }
};

} // namespace bvx
