#include "CursorReadFuzz.h"

#include "platform/ByteStream.h"
#include "raster/CursorFile.h"

#include <algorithm>
#include <cstdlib>
#include <span>

namespace bvx::fuzz {

int CursorReadOne(const uint8_t* data, size_t size)
{
    MemorySource source(std::span<const uint8_t>(data, size));
    const std::optional<PointerImage> image = ReadCursor(source);
    if (!image) return 0;
    const size_t pixels = size_t(image->width) * size_t(image->height);
    const bool whole = image->width >= 1 && image->width <= 256 && image->height >= 1 && image->height <= 256 &&
                       image->andMask.size() == pixels && image->xorColors.size() == pixels &&
                       std::all_of(image->andMask.begin(), image->andMask.end(), [](uint8_t m) { return m <= 1; }) &&
                       image->hotSpot.x >= 0 && image->hotSpot.x < image->width && image->hotSpot.y >= 0 &&
                       image->hotSpot.y < image->height;
    if (!whole) std::abort();
    return 0;
}

} // namespace bvx::fuzz
