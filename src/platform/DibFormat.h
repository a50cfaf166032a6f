// The packed device-independent bitmap: header, colour table and bits in one
// block. Parsing checks every offset against the block, so a view that comes
// back is safe to read from, whatever the block claimed.
#pragma once

#include "Color.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace bvx {

enum class DibCompression : uint32_t { Rgb = 0, Rle8 = 1, Rle4 = 2, Bitfields = 3 };

constexpr uint32_t kDibInfoHeaderSize = 40;
constexpr uint32_t kDibCoreHeaderSize = 12;
constexpr uint32_t kBmpFileHeaderSize = 14;
constexpr uint16_t kBmpSignature = 0x4D42; // "BM" read little-endian

inline uint16_t LoadLe16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }
inline uint32_t LoadLe32(const uint8_t* p)
{
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}
inline void StoreLe16(uint8_t* p, uint16_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}
inline void StoreLe32(uint8_t* p, uint32_t v)
{
    for (int i = 0; i < 4; ++i) p[i] = uint8_t(v >> (8 * i));
}

// The 40-byte long header form, field for field.
struct DibInfoHeader {
    uint32_t size = kDibInfoHeaderSize;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t planes = 1;
    uint16_t bitCount = 0;
    uint32_t compression = 0;
    uint32_t sizeImage = 0;
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    uint32_t clrUsed = 0;
    uint32_t clrImportant = 0;
};

// Both take exactly kDibInfoHeaderSize bytes.
DibInfoHeader LoadDibInfoHeader(const uint8_t* bytes);
void StoreDibInfoHeader(const DibInfoHeader& header, uint8_t* bytes);

// Bytes in one row padded to 32 bits, as 64 bits so that no width overflows.
constexpr uint64_t DibStride(uint64_t width, uint32_t bitCount) { return (width * bitCount + 31) / 32 * 4; }

// The header of a packed bitmap and where its parts lie, read by the rule
// every reader of a packed bitmap follows: a first word of 12 is the core
// form; 40, 52, 56, 108 and 124 are the long form, of which the first 40
// bytes and the bit-field masks are read and the rest skipped. Other sizes
// are no bitmap at all.
struct DibHeader {
    uint32_t size = 0;
    bool core = false;
    int32_t width = 0;
    int32_t height = 0; // negative: rows stored top-down
    uint16_t bitCount = 0;
    uint32_t compression = 0; // as stored, not yet checked
    uint32_t sizeImage = 0;
    uint32_t clrUsed = 0;
    std::array<uint32_t, 3> masks{}; // red, green, blue, when compression is bit fields
    uint32_t tableEntries = 0;       // biClrUsed (at most 256), else 2^bitCount up to 8 bits
    uint32_t entrySize = 4;          // 3 in the core form
    uint32_t tableOffset = 0;        // after the header and any masks
    uint32_t bitsOffset = 0;         // after the colour table
};

// Null for an unknown header size or a block too short for the header and
// its masks; the table and pixels are not checked.
std::optional<DibHeader> ReadDibHeader(std::span<const uint8_t> packed);

struct DibView {
    int32_t width = 0;
    int32_t height = 0; // rows, always positive
    bool topDown = false;
    uint16_t bitCount = 0;
    DibCompression compression = DibCompression::Rgb;
    uint32_t colorCount = 0;            // usable colour-table entries
    std::array<ColorRef, 256> colors{}; // indices past colorCount read as black
    std::array<uint32_t, 3> masks{};    // red, green, blue for 16 and 32 bits
    size_t stride = 0;
    // Uncompressed: exactly stride * height bytes. Run-length: the coded
    // bytes, never more than the block holds.
    std::span<const uint8_t> bits;
};

// A header ReadDibHeader takes, of a format that can be painted, with the
// colour table and pixels inside the block; null otherwise.
std::optional<DibView> ParseDib(std::span<const uint8_t> packed);

enum class RleOutcome {
    Complete,     // an end-of-bitmap marker, or an end of line past the top row
    Unterminated, // the data ran out first
    OutsideImage, // a run or a delta left the image
};

// The pixels a decode fills: the source columns and top-down rows listed,
// both ascending. Each pixel a run sets gets its colour index in `indices`
// and 1 in `written` (row-major, rows.size() by columns.size()); others are
// left as they were, as the platform leaves them.
struct RleWindow {
    std::span<const int32_t> columns;
    std::span<const int32_t> rows;
    uint8_t* indices = nullptr;
    uint8_t* written = nullptr;
};

// Runs past a row's end are cut at the edge and the decode goes on, so
// painting shows what a lenient reader would; the outcome says whether the
// stream was sound. An empty window only checks the stream.
RleOutcome DecodeDibRle(const DibView& view, const RleWindow& window);

} // namespace bvx
