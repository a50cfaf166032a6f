// Our read-back of a 32-bit surface at 1, 4 or 8 bits per pixel, standing in
// for the platform's GetDIBits. A surface whose colours fit the depth keeps
// them exactly; otherwise 1 bit maps to black and white, 4 bits to the 16
// standard VGA colours, and 8 bits to a median-cut palette.
#pragma once

#include "Palette.h"
#include "platform/GdiObjects.h"

#include <cstdint>
#include <vector>

namespace bvx {

struct IndexedImage {
    std::vector<ColorRef> colors;  // at most 1 << bitCount
    std::vector<uint8_t> indices;  // one per pixel, rows top-down
};

// With a non-null palette every pixel maps to the nearest of its first
// 1 << bitCount entries.
IndexedImage ReduceColors(const Bitmap& bitmap, uint16_t bitCount, const Palette* palette);

} // namespace bvx
