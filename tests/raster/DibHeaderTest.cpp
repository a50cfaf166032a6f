// The DIB functions on every header form: one reading of the header serves
// them all, so the pixels start where the painter and GDI look for them.
// What reading .bmp bytes accepts and refuses, and that each accepted form
// is written back readably, is in the fuzz corpus (see FuzzCorpusReplay.cpp).
#include "DibTestSupport.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using test::Bytes;

const std::vector<ColorRef> kGreys{0x000000, 0x404040, 0x808080, 0xFFFFFF};
Bytes WithHeaderSize(Bytes packed, uint32_t size)
{
    StoreLe32(packed.data(), size);
    return packed;
}

// A 6x3 4-bit DIB with the 12-byte header and a table of colour triples.
Bytes CoreHeader()
{
    Bytes packed(kDibCoreHeaderSize);
    StoreLe32(packed.data(), kDibCoreHeaderSize);
    StoreLe16(packed.data() + 4, 6);
    StoreLe16(packed.data() + 6, 3);
    StoreLe16(packed.data() + 8, 1);
    StoreLe16(packed.data() + 10, 4);
    for (int i = 0; i < 16; ++i) packed.insert(packed.end(), {uint8_t(i * 16), uint8_t(i), uint8_t(255 - i)});
    packed.resize(packed.size() + 12, 0x12);
    return packed;
}

struct HeaderCase {
    const char* name;
    Bytes bytes;
    int32_t width, height;
    uint16_t bitCount;
    uint32_t colors;
    uint64_t paletteSize;
    size_t bitsSize; // 0: no pixels found
    PaletteEntry entry2{}; // colour-table entry 2, when there are three or more
};

void PrintTo(const HeaderCase& c, std::ostream* os) { *os << c.name; }

class DibHeaderForm : public testing::TestWithParam<HeaderCase> {};

TEST_P(DibHeaderForm, AccessorsReadIt)
{
    const HeaderCase& c = GetParam();
    const DibBlock dib{c.bytes};
    EXPECT_EQ(DibWidth(dib), c.width);
    EXPECT_EQ(DibHeight(dib), c.height);
    EXPECT_EQ(DibBitCount(dib), c.bitCount);
    EXPECT_EQ(DibColorCount(dib), c.colors);
    EXPECT_EQ(DibPaletteSize(dib), c.paletteSize);
    EXPECT_EQ(DibBits(dib).size(), c.bitsSize);
    const Palette palette = DibToPalette(&dib);
    EXPECT_EQ(palette.entries.size(), c.bitsSize ? c.colors : 0);
    if (palette.entries.size() > 2) {
        EXPECT_EQ(palette.entries[2], c.entry2);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, DibHeaderForm,
    testing::Values(
        HeaderCase{"core", CoreHeader(), 6, 3, 4, 16, 48, 12, {253, 2, 32, 0}},
        HeaderCase{"long", test::PackedDib(5, -3, 8, DibCompression::Rgb, kGreys, Bytes(24), 4), 5, -3, 8, 4, 16, 24,
                   {128, 128, 128, 0}},
        HeaderCase{"long bit fields: pixels after the masks",
                   test::PackedDib(2, 1, 16, DibCompression::Bitfields, {}, Bytes(16)), 2, 1, 16, 0, 0, 4},
        HeaderCase{"v4 bit fields: masks inside the header",
                   test::PackedDib(2, 1, 16, DibCompression::Bitfields, {}, Bytes(4), 0, 108), 2, 1, 16, 0, 0, 4},
        HeaderCase{"v5 with a table", test::PackedDib(3, 2, 8, DibCompression::Rgb, kGreys, Bytes(8), 4, 124), 3, 2, 8,
                   4, 16, 8, {128, 128, 128, 0}},
        HeaderCase{"true colour with no table", test::PackedDib(1, 1, 24, DibCompression::Rgb, {}, Bytes(4)), 1, 1, 24,
                   0, 0, 4},
        HeaderCase{"table beyond the block", test::PackedDib(2, 2, 8, DibCompression::Rgb, kGreys, {}, 250), 2, 2, 8,
                   250, 1000, 0},
        HeaderCase{"unknown header size",
                   WithHeaderSize(test::PackedDib(2, 2, 8, DibCompression::Rgb, kGreys, Bytes(8), 4), 64), 0, 0, 0, 0,
                   0, 0},
        HeaderCase{"stub", Bytes{40, 0, 0}, 0, 0, 0, 0, 0, 0}));

TEST(DibHeaderForm, CoreAndUnknownFormsAreNotWritten)
{
    const DibBlock original{CoreHeader()};
    const DibPtr core = DibCopy(&original);
    ASSERT_TRUE(core && core->bytes == original.bytes);
    MemorySink sink;
    EXPECT_FALSE(DibWriteBmp(*core, sink));
    EXPECT_FALSE(DibWriteBlock(*core, sink));
    DibBlock unknown{WithHeaderSize(test::PackedDib(1, 1, 24, DibCompression::Rgb, {}, Bytes(4)), 44)};
    EXPECT_FALSE(DibWriteBmp(unknown, sink));
    EXPECT_TRUE(sink.Bytes().empty());
    EXPECT_FALSE(DibCopy(nullptr));
    EXPECT_TRUE(DibToPalette(nullptr).IsNull());
}

} // namespace
} // namespace bvx
