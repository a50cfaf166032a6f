// OLE colours: plain RGB, palette forms, and 0x800000nn system colours,
// which hosts without a desktop scheme take from the platform's classic
// defaults.
#pragma once

#include "Color.h"

#include <cstdint>

namespace bvx {

// 0x800000nn reads system colour nn; 0x01 and 0x02 in the high byte are
// palette forms whose RGB part is used. Anything else is invalid and
// reads black.
ColorRef OleTranslateColor(uint32_t oleColor);

} // namespace bvx
