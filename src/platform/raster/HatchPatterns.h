// The six hatch brushes as 8x8 one-bit patterns, most significant bit
// leftmost, row 0 at device rows 0, 8, 16... (the patterns are anchored at
// the device origin). They are the platform's HS_ patterns.
#pragma once

#include "../GdiObjects.h"

#include <cstdint>

namespace bvx::raster {

inline const uint8_t* HatchBits(HatchStyle style)
{
    static constexpr uint8_t kHatches[6][8] = {
        {0x00, 0x00, 0x00, 0xff, 0x00, 0x00, 0x00, 0x00}, // horizontal: row 3
        {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08}, // vertical: column 4
        {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01}, // forward diagonal, top left to bottom right
        {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80}, // backward diagonal, bottom left to top right
        {0x08, 0x08, 0x08, 0xff, 0x08, 0x08, 0x08, 0x08}, // cross
        {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81}, // diagonal cross
    };
    int index = int(style);
    if (index < 0 || index > 5) index = 0;
    return kHatches[index];
}

} // namespace bvx::raster
