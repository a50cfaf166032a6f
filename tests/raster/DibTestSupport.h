// Helpers shared by the DIB tests: surfaces drawn from a colour function,
// DIBs painted back onto a surface, and packed DIBs.
#pragma once

#include "platform/ByteStream.h"
#include "platform/DibFormat.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"

#include <functional>
#include <vector>

namespace bvx::test {

using Bytes = std::vector<uint8_t>;

inline BitmapHandle MakeSurface(int32_t width, int32_t height, const std::function<ColorRef(int32_t, int32_t)>& color)
{
    BitmapHandle bitmap = CreateBitmap(width, height);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) bitmap->Row(y)[size_t(x)] = color(x, y);
    return bitmap;
}

// The DIB painted 1:1 at the origin of a surface of its size filled with
// `background`.
inline BitmapHandle PaintWhole(const DibBlock& dib, ColorRef background = 0x123456)
{
    const int32_t h = DibHeight(dib) < 0 ? -DibHeight(dib) : DibHeight(dib);
    BitmapHandle surface = MakeSurface(DibWidth(dib), h, [&](int32_t, int32_t) { return background; });
    RasterDeviceContext dc(surface);
    const DeviceRect whole{0, 0, DibWidth(dib), h};
    DibPaint(dc, whole, dib, whole, nullptr);
    return surface;
}

// A packed DIB: a long header of `headerSize` bytes, the colour table
// given as ColorRefs, then `image` (masks, if any, go first in `image`).
inline Bytes PackedDib(int32_t width, int32_t height, uint16_t bitCount, DibCompression compression,
                       const std::vector<ColorRef>& colors, const Bytes& image, uint32_t clrUsed = 0,
                       uint32_t headerSize = kDibInfoHeaderSize)
{
    DibInfoHeader header;
    header.size = headerSize;
    header.width = width;
    header.height = height;
    header.bitCount = bitCount;
    header.compression = uint32_t(compression);
    header.sizeImage = uint32_t(image.size());
    header.clrUsed = clrUsed;
    Bytes bytes(headerSize);
    StoreDibInfoHeader(header, bytes.data());
    for (ColorRef c : colors) bytes.insert(bytes.end(), {BlueOf(c), GreenOf(c), RedOf(c), 0});
    bytes.insert(bytes.end(), image.begin(), image.end());
    return bytes;
}

} // namespace bvx::test
