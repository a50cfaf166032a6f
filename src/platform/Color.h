// Colours as the platform packs them: 0x00BBGGRR.
#pragma once

#include <cstdint>

namespace bvx {

using ColorRef = uint32_t;

constexpr ColorRef MakeRgb(uint8_t r, uint8_t g, uint8_t b)
{
    return ColorRef(r) | (ColorRef(g) << 8) | (ColorRef(b) << 16);
}
constexpr uint8_t RedOf(ColorRef c) { return uint8_t(c); }
constexpr uint8_t GreenOf(ColorRef c) { return uint8_t(c >> 8); }
constexpr uint8_t BlueOf(ColorRef c) { return uint8_t(c >> 16); }

constexpr ColorRef kBlack = 0x000000;
constexpr ColorRef kWhite = 0xFFFFFF;

} // namespace bvx
