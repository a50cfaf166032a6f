// Helpers shared by the DIB tests: surfaces drawn from a colour function,
// DIBs painted back onto a surface, and hand-built .bmp bytes.
#pragma once

#include "platform/ByteStream.h"
#include "platform/DibFormat.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace bvx::test {

inline BitmapHandle MakeSurface(int32_t width, int32_t height, const std::function<ColorRef(int32_t, int32_t)>& color)
{
    BitmapHandle bitmap = CreateBitmap(width, height);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) bitmap->Row(y)[size_t(x)] = color(x, y);
    return bitmap;
}

// A surface of the given size filled with `background`, the DIB painted
// 1:1 at the origin.
inline BitmapHandle PaintWhole(const DibBlock& dib, int32_t width, int32_t height, ColorRef background = 0x123456)
{
    BitmapHandle surface = MakeSurface(width, height, [&](int32_t, int32_t) { return background; });
    RasterDeviceContext dc(surface);
    const int32_t h = DibHeight(dib) < 0 ? -DibHeight(dib) : DibHeight(dib);
    const DeviceRect whole{0, 0, DibWidth(dib), h};
    DibPaint(dc, whole, dib, whole, nullptr);
    return surface;
}

inline std::vector<uint8_t> WriteBmpBytes(DibBlock& dib)
{
    MemorySink sink;
    if (!DibWriteBmp(dib, sink)) return {};
    return sink.Bytes();
}

inline DibPtr ReadBmpBytes(const std::vector<uint8_t>& bytes, bool sized = false)
{
    MemorySource source(bytes);
    return DibReadBlock(source, sized);
}

// A packed DIB: long header, colour table given as ColorRefs, then `image`.
inline std::vector<uint8_t> PackedDib(int32_t width, int32_t height, uint16_t bitCount, DibCompression compression,
                                      const std::vector<ColorRef>& colors, const std::vector<uint8_t>& image,
                                      uint32_t clrUsed = 0)
{
    DibInfoHeader header;
    header.width = width;
    header.height = height;
    header.bitCount = bitCount;
    header.compression = uint32_t(compression);
    header.sizeImage = uint32_t(image.size());
    header.clrUsed = clrUsed;
    std::vector<uint8_t> bytes(kDibInfoHeaderSize);
    StoreDibInfoHeader(header, bytes.data());
    for (ColorRef c : colors) bytes.insert(bytes.end(), {BlueOf(c), GreenOf(c), RedOf(c), 0});
    bytes.insert(bytes.end(), image.begin(), image.end());
    return bytes;
}

// "BM", the file size and the offset of the bits ahead of a packed DIB.
inline std::vector<uint8_t> AsBmpFile(const std::vector<uint8_t>& packed, uint32_t tableBytes)
{
    // Sized once and copied into: GCC 12 misreads a growing insert here.
    std::vector<uint8_t> file(kBmpFileHeaderSize + packed.size());
    StoreLe16(file.data(), kBmpSignature);
    StoreLe32(file.data() + 2, uint32_t(file.size()));
    StoreLe32(file.data() + 10, uint32_t(kBmpFileHeaderSize + LoadLe32(packed.data()) + tableBytes));
    std::copy(packed.begin(), packed.end(), file.begin() + kBmpFileHeaderSize);
    return file;
}

} // namespace bvx::test
