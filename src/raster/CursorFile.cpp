#include "CursorFile.h"

#include "platform/DibFormat.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

namespace bvx {

namespace {

constexpr uint16_t kCursorType = 2;
constexpr uint64_t kDirectoryHeaderSize = 6;
constexpr uint64_t kEntrySize = 16;
constexpr int32_t kMaxSide = 256; // a directory byte of 0
constexpr uint32_t kLargestHeader = 124;
// Far above what a 256 by 256 image of 32 bits with its mask needs: a larger
// entry is a lie about its size.
constexpr uint32_t kMaxImageBytes = 1u << 20;
constexpr int32_t kPreferredSide = 32;

struct DirEntry {
    int32_t width = 0;
    int32_t height = 0;
    DevicePoint hotSpot{};
    uint32_t size = 0;
    uint32_t offset = 0;
    uint16_t bitCount = 0; // from the image's header
};

bool ReadAt(ByteSource& source, uint64_t offset, std::vector<uint8_t>& bytes)
{
    return source.Seek(offset) && source.ReadExact(bytes.data(), bytes.size());
}

// The directory, each entry checked against the file and its header read.
std::optional<std::vector<DirEntry>> ReadDirectory(ByteSource& source)
{
    uint16_t reserved = 0, type = 0, count = 0;
    if (!source.ReadLe(reserved) || !source.ReadLe(type) || !source.ReadLe(count)) return std::nullopt;
    const uint64_t fileSize = source.Size();
    const uint64_t imagesStart = kDirectoryHeaderSize + kEntrySize * count;
    if (reserved != 0 || type != kCursorType || count == 0 || imagesStart > fileSize) return std::nullopt;
    std::vector<uint8_t> table(size_t(kEntrySize * count));
    if (!source.ReadExact(table.data(), table.size())) return std::nullopt;

    std::vector<DirEntry> entries;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* p = table.data() + i * kEntrySize;
        DirEntry e;
        e.width = p[0] ? p[0] : kMaxSide;
        e.height = p[1] ? p[1] : kMaxSide;
        e.hotSpot = {LoadLe16(p + 4), LoadLe16(p + 6)};
        e.size = LoadLe32(p + 8);
        e.offset = LoadLe32(p + 12);
        if (e.size < kDibCoreHeaderSize || e.size > kMaxImageBytes || e.offset < imagesStart || e.offset > fileSize ||
            e.size > fileSize - e.offset)
            return std::nullopt;
        std::vector<uint8_t> head(std::min(e.size, kLargestHeader));
        if (!ReadAt(source, e.offset, head)) return std::nullopt;
        const std::optional<DibHeader> header = ReadDibHeader(head);
        if (!header) return std::nullopt;
        e.bitCount = header->bitCount;
        entries.push_back(e);
    }
    return entries;
}

const DirEntry& Choose(const std::vector<DirEntry>& entries)
{
    auto distance = [](const DirEntry& e) {
        return std::abs(e.width - kPreferredSide) + std::abs(e.height - kPreferredSide);
    };
    return *std::min_element(entries.begin(), entries.end(), [&](const DirEntry& a, const DirEntry& b) {
        const int32_t da = distance(a), db = distance(b);
        return da != db ? da < db : a.bitCount > b.bitCount;
    });
}

// Pixel (x, y) of the XOR image, counted from the top.
ColorRef XorPixel(const DibView& view, int32_t x, int32_t y, uint8_t* alpha)
{
    const uint8_t* row = view.bits.data() + size_t(view.height - 1 - y) * view.stride;
    switch (view.bitCount) {
    // A monochrome pointer takes its bits as black and white, whatever the table says.
    case 1: return (row[x >> 3] >> (7 - (x & 7))) & 1 ? kWhite : kBlack;
    case 4: return view.colors[(x & 1) ? row[x >> 1] & 15 : row[x >> 1] >> 4];
    case 8: return view.colors[row[x]];
    case 24: return MakeRgb(row[3 * x + 2], row[3 * x + 1], row[3 * x]);
    default: *alpha = row[4 * x + 3]; return MakeRgb(row[4 * x + 2], row[4 * x + 1], row[4 * x]);
    }
}

std::optional<PointerImage> Decode(std::vector<uint8_t>& bytes, const DirEntry& entry)
{
    const std::optional<DibHeader> header = ReadDibHeader(bytes);
    if (!header) return std::nullopt;
    if (header->compression != uint32_t(DibCompression::Rgb) || header->bitCount == 16 ||
        header->width != entry.width || header->height != 2 * entry.height)
        return std::nullopt;
    // The XOR image alone, as a bitmap of half the stored height.
    if (header->core)
        StoreLe16(bytes.data() + 6, uint16_t(entry.height));
    else
        StoreLe32(bytes.data() + 8, uint32_t(entry.height));
    const std::optional<DibView> view = ParseDib(bytes);
    if (!view) return std::nullopt;
    const uint8_t* mask = view->bits.data() + view->bits.size();
    const uint64_t maskStride = DibStride(uint64_t(entry.width), 1);
    if (maskStride * uint64_t(entry.height) > uint64_t(bytes.data() + bytes.size() - mask)) return std::nullopt;

    PointerImage image;
    image.width = entry.width;
    image.height = entry.height;
    image.hotSpot = {std::min(entry.hotSpot.x, entry.width - 1), std::min(entry.hotSpot.y, entry.height - 1)};
    const size_t pixels = size_t(entry.width) * size_t(entry.height);
    image.andMask.resize(pixels);
    image.xorColors.resize(pixels);
    std::vector<uint8_t> alpha(pixels, 0);
    for (int32_t y = 0; y < entry.height; ++y) {
        const uint8_t* maskRow = mask + size_t(entry.height - 1 - y) * maskStride;
        for (int32_t x = 0; x < entry.width; ++x) {
            const size_t i = size_t(y) * size_t(entry.width) + size_t(x);
            image.xorColors[i] = XorPixel(*view, x, y, &alpha[i]);
            image.andMask[i] = (maskRow[x >> 3] >> (7 - (x & 7))) & 1;
        }
    }
    if (std::any_of(alpha.begin(), alpha.end(), [](uint8_t a) { return a != 0; })) {
        for (size_t i = 0; i < pixels; ++i) {
            image.andMask[i] = alpha[i] < 128;
            if (image.andMask[i]) image.xorColors[i] = kBlack;
        }
    }
    return image;
}

} // namespace

std::optional<PointerImage> ReadCursor(ByteSource& source)
{
    try {
        const std::optional<std::vector<DirEntry>> entries = ReadDirectory(source);
        if (!entries) return std::nullopt;
        const DirEntry& chosen = Choose(*entries);
        std::vector<uint8_t> bytes(chosen.size);
        if (!ReadAt(source, chosen.offset, bytes)) return std::nullopt;
        return Decode(bytes, chosen);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

std::optional<PointerImage> ReadCursorFile(const std::string& path)
{
    const std::unique_ptr<FileSource> file = FileSource::Open(path);
    return file ? ReadCursor(*file) : std::nullopt;
}

} // namespace bvx
