// .cur files: a directory of pointer images, each a packed DIB twice its
// height (the XOR image, then the AND mask) with its hot spot in the
// directory. The image closest to 32 by 32 is taken, the deepest of equals.
#pragma once

#include "platform/ByteStream.h"
#include "platform/PointerImage.h"

#include <optional>
#include <string>

namespace bvx {

// Null for anything but a sound cursor file of a form read here: 1, 4, 8, 24
// or 32 bits uncompressed, with the AND mask present. A 32-bit image whose
// alpha is used decides each pixel's clarity by its alpha, not the mask.
// Directory entries must agree with the file and with their bitmaps; an
// entry of another form (PNG) refuses the whole file.
std::optional<PointerImage> ReadCursor(ByteSource& source);
std::optional<PointerImage> ReadCursorFile(const std::string& path);

} // namespace bvx
