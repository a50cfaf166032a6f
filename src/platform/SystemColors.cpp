#include "SystemColors.h"

#include <array>

namespace bvx {

namespace {

// The classic scheme, indexed by the platform's COLOR_ numbers.
constexpr std::array<ColorRef, 31> kClassicSystemColors = {
    MakeRgb(212, 208, 200), MakeRgb(58, 110, 165),  MakeRgb(10, 36, 106),   MakeRgb(128, 128, 128),
    MakeRgb(212, 208, 200), MakeRgb(255, 255, 255), MakeRgb(0, 0, 0),       MakeRgb(0, 0, 0),
    MakeRgb(0, 0, 0),       MakeRgb(255, 255, 255), MakeRgb(212, 208, 200), MakeRgb(212, 208, 200),
    MakeRgb(128, 128, 128), MakeRgb(10, 36, 106),   MakeRgb(255, 255, 255), MakeRgb(212, 208, 200),
    MakeRgb(128, 128, 128), MakeRgb(128, 128, 128), MakeRgb(0, 0, 0),       MakeRgb(212, 208, 200),
    MakeRgb(255, 255, 255), MakeRgb(64, 64, 64),    MakeRgb(212, 208, 200), MakeRgb(0, 0, 0),
    MakeRgb(255, 255, 225), MakeRgb(181, 181, 181), MakeRgb(0, 0, 128),     MakeRgb(166, 202, 240),
    MakeRgb(192, 192, 192), MakeRgb(10, 36, 106),   MakeRgb(212, 208, 200),
};

} // namespace

ColorRef OleTranslateColor(uint32_t oleColor)
{
    switch (oleColor >> 24) {
    case 0x00:
    case 0x01:
    case 0x02:
        return oleColor & 0xFFFFFF;
    case 0x80: {
        uint32_t index = oleColor & 0xFFFFFF;
        return index < kClassicSystemColors.size() ? kClassicSystemColors[index] : kBlack;
    }
    default:
        return kBlack;
    }
}

} // namespace bvx
