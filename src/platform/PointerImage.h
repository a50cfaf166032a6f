// A mouse pointer image as a window shows it: per pixel an AND bit and an
// XOR colour, the screen pixel becoming (screen AND mask) XOR colour, and the
// hot spot, the pixel that is the pointer's position.
#pragma once

#include "Color.h"
#include "Geometry.h"

#include <cstdint>
#include <vector>

namespace bvx {

struct PointerImage {
    int32_t width = 0;
    int32_t height = 0;
    DevicePoint hotSpot{};
    // Both top-down, row by row, width * height entries. The mask holds 0 or
    // 1 per pixel: 1 keeps the screen pixel under the colour.
    std::vector<uint8_t> andMask;
    std::vector<ColorRef> xorColors;

    friend bool operator==(const PointerImage&, const PointerImage&) = default;
};

// What the pointer's pixel (x, y) turns a screen pixel into; the caller keeps
// x and y inside the image.
inline ColorRef PointerPixelOver(const PointerImage& image, int32_t x, int32_t y, ColorRef screen)
{
    const size_t i = size_t(y) * size_t(image.width) + size_t(x);
    return ((image.andMask[i] ? screen : 0) ^ image.xorColors[i]) & 0xFFFFFF;
}

} // namespace bvx
