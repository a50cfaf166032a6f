#include "Dib.h"

#include "DibColorReduction.h"
#include "RunLengthEncoder.h"
#include "platform/DibFormat.h"

#include <cstring>
#include <limits>
#include <new>
#include <optional>

namespace bvx {

namespace {

// The header as every reader takes it; an empty one for a block that is
// not a bitmap, whose fields all read as 0.
DibHeader HeaderOf(const DibBlock& dib) { return ReadDibHeader(dib.bytes).value_or(DibHeader{}); }

// Whether the colour table lies inside the block.
bool TableFits(const DibHeader& h, const DibBlock& dib) { return h.size != 0 && h.bitsOffset <= dib.bytes.size(); }

struct DibFormatChoice {
    uint16_t bitCount;
    DibCompression compression;
};

std::optional<DibFormatChoice> CheckFormatPair(int16_t bits, int32_t compression)
{
    switch (bits) {
    case 0:
        if (compression == int32_t(DibCompression::Rle4)) return DibFormatChoice{4, DibCompression::Rle4};
        if (compression == int32_t(DibCompression::Rle8)) return DibFormatChoice{8, DibCompression::Rle8};
        return std::nullopt;
    case 1:
    case 24:
        if (compression == 0) return DibFormatChoice{uint16_t(bits), DibCompression::Rgb};
        return std::nullopt;
    case 4:
    case 8: {
        const auto rle = bits == 4 ? DibCompression::Rle4 : DibCompression::Rle8;
        if (compression == 0) return DibFormatChoice{uint16_t(bits), DibCompression::Rgb};
        if (compression == int32_t(rle)) return DibFormatChoice{uint16_t(bits), rle};
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

// Rows bottom-up, padded, as the DIB stores them.
std::vector<uint8_t> PackTrueColor(const Bitmap& bitmap, size_t stride)
{
    std::vector<uint8_t> image(stride * size_t(bitmap.Height()), 0);
    for (int32_t y = 0; y < bitmap.Height(); ++y) {
        uint8_t* out = image.data() + size_t(bitmap.Height() - 1 - y) * stride;
        for (ColorRef c : bitmap.Row(y)) {
            *out++ = BlueOf(c);
            *out++ = GreenOf(c);
            *out++ = RedOf(c);
        }
    }
    return image;
}

std::vector<uint8_t> PackIndexed(const IndexedImage& reduced, int32_t width, int32_t height, uint16_t bitCount,
                                 size_t stride)
{
    std::vector<uint8_t> image(stride * size_t(height), 0);
    const int perByte = 8 / bitCount;
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* in = reduced.indices.data() + size_t(y) * size_t(width);
        uint8_t* out = image.data() + size_t(height - 1 - y) * stride;
        if (bitCount == 8) {
            std::memcpy(out, in, size_t(width));
            continue;
        }
        for (int32_t x = 0; x < width; ++x) {
            const int shift = 8 - bitCount * (x % perByte + 1);
            out[x / perByte] = uint8_t(out[x / perByte] | in[x] << shift);
        }
    }
    return image;
}

DibPtr BuildDib(const Bitmap& bitmap, DibFormatChoice format, const Palette* palette)
{
    const int32_t width = bitmap.Width(), height = bitmap.Height();
    const size_t stride = size_t(DibStride(uint64_t(width), format.bitCount));
    const size_t tableEntries = format.bitCount <= 8 ? size_t(1) << format.bitCount : 0;
    std::vector<ColorRef> colors;
    std::vector<uint8_t> image;
    if (format.bitCount == 24) {
        image = PackTrueColor(bitmap, stride);
    } else {
        IndexedImage reduced = ReduceColors(bitmap, format.bitCount, palette);
        if (format.compression == DibCompression::Rgb)
            image = PackIndexed(reduced, width, height, format.bitCount, stride);
        else
            image = EncodeDibRle(reduced.indices, width, height, format.bitCount);
        colors = std::move(reduced.colors);
    }
    if (image.size() > std::numeric_limits<uint32_t>::max()) return nullptr;

    DibInfoHeader header;
    header.width = width;
    header.height = height;
    header.bitCount = format.bitCount;
    header.compression = uint32_t(format.compression);
    header.sizeImage = uint32_t(image.size());

    auto dib = std::make_unique<DibBlock>();
    dib->bytes.assign(kDibInfoHeaderSize + tableEntries * 4 + image.size(), 0);
    uint8_t* p = dib->bytes.data();
    StoreDibInfoHeader(header, p);
    for (size_t i = 0; i < colors.size(); ++i) {
        uint8_t* quad = p + kDibInfoHeaderSize + 4 * i;
        quad[0] = BlueOf(colors[i]);
        quad[1] = GreenOf(colors[i]);
        quad[2] = RedOf(colors[i]);
    }
    if (!image.empty()) std::memcpy(p + kDibInfoHeaderSize + tableEntries * 4, image.data(), image.size());
    return dib;
}

bool FitsInt32(int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; }

} // namespace

int32_t DibWidth(const DibBlock& dib) { return HeaderOf(dib).width; }
int32_t DibHeight(const DibBlock& dib) { return HeaderOf(dib).height; }
uint16_t DibBitCount(const DibBlock& dib) { return HeaderOf(dib).bitCount; }
uint32_t DibColorCount(const DibBlock& dib) { return HeaderOf(dib).tableEntries; }

uint64_t DibPaletteSize(const DibBlock& dib)
{
    const DibHeader h = HeaderOf(dib);
    return uint64_t(h.tableEntries) * h.entrySize;
}

std::span<const uint8_t> DibBits(const DibBlock& dib)
{
    const DibHeader h = HeaderOf(dib);
    if (!TableFits(h, dib)) return {};
    return std::span<const uint8_t>(dib.bytes).subspan(h.bitsOffset);
}

DibPtr DibCopy(const DibBlock* dib)
{
    if (dib == nullptr) return nullptr;
    try {
        return std::make_unique<DibBlock>(*dib);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

Palette DibToPalette(const DibBlock* dib)
{
    Palette palette;
    if (dib == nullptr) return palette;
    const DibHeader h = HeaderOf(*dib);
    if (!TableFits(h, *dib)) return palette;
    palette.entries.resize(h.tableEntries);
    for (size_t i = 0; i < h.tableEntries; ++i) {
        const uint8_t* bgr = dib->bytes.data() + h.tableOffset + i * h.entrySize;
        palette.entries[i] = {bgr[2], bgr[1], bgr[0], 0};
    }
    return palette;
}

DibPtr DibFromBitmap(const Bitmap& bitmap, int16_t bits, int32_t compression, const Palette* palette)
{
    const std::optional<DibFormatChoice> format = CheckFormatPair(bits, compression);
    if (!format || bitmap.Width() <= 0 || bitmap.Height() <= 0) return nullptr;
    try {
        return BuildDib(bitmap, *format, palette);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

int32_t DibPaint(DeviceContext& dc, const DeviceRect& dest, const DibBlock& dib, const DeviceRect& source,
                 const Palette* /*palette: 32-bit surfaces realise none*/)
{
    const int64_t destWidth = dest.Width(), destHeight = dest.Height();
    const int64_t sourceWidth = source.Width(), sourceHeight = source.Height();
    if (!FitsInt32(destWidth) || !FitsInt32(destHeight) || !FitsInt32(sourceWidth) || !FitsInt32(sourceHeight))
        return 0;
    if (destWidth == sourceWidth && destHeight == sourceHeight) {
        const int64_t sourceY = int64_t(DibHeight(dib)) - source.bottom;
        if (!FitsInt32(sourceY)) return 0;
        return dc.SetDIBitsToDevice(dest.left, dest.top, int32_t(destWidth), int32_t(destHeight), source.left,
                                    int32_t(sourceY), dib.bytes);
    }
    return dc.StretchDIBits(dest.left, dest.top, int32_t(destWidth), int32_t(destHeight), source.left, source.top,
                            int32_t(sourceWidth), int32_t(sourceHeight), dib.bytes, RasterOp::SrcCopy);
}

} // namespace bvx
