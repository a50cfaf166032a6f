// Heckbert's median cut: the colour set is split, box by box, at the
// pixel-weighted median of its widest channel until there are enough boxes;
// each box becomes its weighted mean. Deterministic for a given histogram.
#pragma once

#include "platform/Color.h"

#include <cstdint>
#include <span>
#include <vector>

namespace bvx {

struct ColorFrequency {
    ColorRef color = 0;
    uint32_t count = 0;
};

struct Quantization {
    std::vector<ColorRef> palette;
    std::vector<uint8_t> indexOf; // per histogram entry, in the order given
};

// At most `maxColors` (1 to 256) entries.
Quantization MedianCut(std::span<const ColorFrequency> histogram, size_t maxColors);

} // namespace bvx
