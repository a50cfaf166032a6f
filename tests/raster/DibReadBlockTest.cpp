// Reading .bmp bytes: what is accepted, what is refused, and the core header
// form that can be read and painted but not written.
#include "DibTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>

namespace bvx {
namespace {

using Bytes = std::vector<uint8_t>;

const std::vector<ColorRef> kGreys{0x000000, 0x404040, 0x808080, 0xFFFFFF};

// A sound 8-bit 4x2 file to break in one place.
Bytes GoodFile(uint32_t clrUsed = 4)
{
    return test::AsBmpFile(test::PackedDib(4, 2, 8, DibCompression::Rgb, kGreys, {0, 1, 2, 3, 3, 2, 1, 0}, clrUsed),
                           16);
}

Bytes RunLengthFile(const Bytes& code, int32_t width = 4, int32_t height = 2)
{
    return test::AsBmpFile(test::PackedDib(width, height, 8, DibCompression::Rle8, kGreys, code, 4), 16);
}

Bytes WithField(Bytes file, size_t offset, uint32_t value)
{
    StoreLe32(file.data() + kBmpFileHeaderSize + offset, value);
    return file;
}

Bytes Sized(const Bytes& file, uint32_t length)
{
    Bytes out(4 + file.size());
    StoreLe32(out.data(), length);
    std::copy(file.begin(), file.end(), out.begin() + 4);
    return out;
}

struct MalformedCase {
    const char* name;
    std::function<Bytes()> make;
    bool sized = false;
};

void PrintTo(const MalformedCase& c, std::ostream* os) { *os << c.name; }

class DibReadMalformed : public testing::TestWithParam<MalformedCase> {};

TEST_P(DibReadMalformed, IsRefused)
{
    const Bytes bytes = GetParam().make();
    EXPECT_FALSE(test::ReadBmpBytes(bytes, GetParam().sized));
}

const MalformedCase kMalformed[] = {
    {"not BM", [] { Bytes f = GoodFile(); f[1] = 'A'; return f; }},
    {"empty", [] { return Bytes{}; }},
    {"file header cut", [] { Bytes f = GoodFile(); f.resize(10); return f; }},
    {"pixels cut", [] { Bytes f = GoodFile(); f.pop_back(); return f; }},
    {"colour table cut", [] { Bytes f = GoodFile(); f.resize(kBmpFileHeaderSize + 50); return f; }},
    {"sized length beyond the data", [] { const Bytes f = GoodFile(); return Sized(f, uint32_t(f.size() + 1)); }, true},
    {"sized length inside the header", [] { return Sized(GoodFile(), 30); }, true},
    {"sized length huge", [] { return Sized(GoodFile(), 0xFFFFFFF0u); }, true},
    {"zero width", [] { return WithField(GoodFile(), 4, 0); }},
    {"negative width", [] { return WithField(GoodFile(), 4, uint32_t(-4)); }},
    {"zero height", [] { return WithField(GoodFile(), 8, 0); }},
    {"most negative height", [] { return WithField(GoodFile(), 8, uint32_t(INT32_MIN)); }},
    {"dimensions that overflow", [] { return WithField(WithField(GoodFile(), 4, 0x7FFFFFFF), 8, 0x7FFFFFFF); }},
    {"height larger than the data", [] { return WithField(GoodFile(), 8, 3); }},
    {"colour count over 256", [] { return WithField(GoodFile(), 32, 300); }},
    {"colour count beyond the data", [] { return WithField(GoodFile(), 32, 200); }},
    {"bit count 7", [] { return WithField(GoodFile(), 12, 0x00070001); }},
    {"header size 30", [] { return WithField(GoodFile(), 0, 30); }},
    {"header size of a later form", [] { return WithField(GoodFile(), 0, 108); }},
    {"compression 4", [] { return WithField(GoodFile(), 16, 4); }},
    {"bit fields on 8 bits", [] { return WithField(GoodFile(), 16, 3); }},
    {"run past the row end", [] { return RunLengthFile({5, 1, 0, 1}); }},
    {"absolute run past the row end", [] { return RunLengthFile({0, 6, 1, 2, 3, 1, 2, 3, 0, 1}); }},
    {"absolute run past the data", [] { return RunLengthFile({0, 4, 1, 2}); }},
    {"delta past the top", [] { return RunLengthFile({0, 2, 0, 2, 1, 1, 0, 1}); }},
    {"delta past the row end", [] { return RunLengthFile({0, 2, 5, 0, 0, 1}); }},
    {"no end marker", [] { return RunLengthFile({4, 1, 0, 0, 4, 2}); }},
    {"coded size beyond the data", [] { return WithField(RunLengthFile({4, 1, 0, 1}), 20, 400); }},
    {"run-length top-down", [] { return WithField(RunLengthFile({4, 1, 0, 1}), 8, uint32_t(-2)); }},
};

INSTANTIATE_TEST_SUITE_P(Table, DibReadMalformed, testing::ValuesIn(kMalformed));

TEST(DibRead, AcceptsSoundRunLengthStreams)
{
    // Short rows, a delta, and an end of line after the top row in place of
    // the end-of-bitmap marker.
    const Bytes file = RunLengthFile({2, 1, 0, 0, 0, 2, 1, 0, 1, 3, 0, 0});
    const DibPtr dib = test::ReadBmpBytes(file);
    ASSERT_TRUE(dib);
    const BitmapHandle painted = test::PaintWhole(*dib, 4, 2, 0x00ABCDEF);
    // Row 0 is the top: only x 1 was set; row 1 got two pixels at the left.
    const ColorRef expected[2][4] = {{0x00ABCDEF, 0xFFFFFF, 0x00ABCDEF, 0x00ABCDEF},
                                     {0x404040, 0x404040, 0x00ABCDEF, 0x00ABCDEF}};
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t x = 0; x < 4; ++x) EXPECT_EQ(painted->Pixel(x, y), expected[y][x]) << x << "," << y;
}

TEST(DibRead, BlockHoldsEverythingAfterTheFileHeader)
{
    const Bytes file = GoodFile();
    const DibPtr dib = test::ReadBmpBytes(file);
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bytes, Bytes(file.begin() + kBmpFileHeaderSize, file.end()));
    EXPECT_EQ(DibColorCount(*dib), 4u);
    EXPECT_EQ(DibBits(*dib).size(), 8u);
}

// A 6x3 4-bit DIB with the 12-byte header and a table of colour triples.
Bytes CoreHeaderFile()
{
    Bytes packed(kDibCoreHeaderSize);
    StoreLe32(packed.data(), kDibCoreHeaderSize);
    StoreLe16(packed.data() + 4, 6);
    StoreLe16(packed.data() + 6, 3);
    StoreLe16(packed.data() + 8, 1);
    StoreLe16(packed.data() + 10, 4);
    for (int i = 0; i < 16; ++i) packed.insert(packed.end(), {uint8_t(i * 16), uint8_t(i), uint8_t(255 - i)});
    for (int row = 0; row < 3; ++row) packed.insert(packed.end(), {0x01, 0x23, uint8_t(0x45 + row), 0});
    return test::AsBmpFile(packed, 48);
}

TEST(DibCoreHeader, IsReadAndPaintedButNotWritten)
{
    const DibPtr dib = test::ReadBmpBytes(CoreHeaderFile());
    ASSERT_TRUE(dib);
    EXPECT_EQ(DibWidth(*dib), 6);
    EXPECT_EQ(DibHeight(*dib), 3);
    EXPECT_EQ(DibBitCount(*dib), 4);
    EXPECT_EQ(DibColorCount(*dib), 16u);
    EXPECT_EQ(DibPaletteSize(*dib), 48u);
    EXPECT_EQ(DibBits(*dib).size(), 12u);
    const Palette palette = DibToPalette(dib.get());
    ASSERT_EQ(palette.entries.size(), 16u);
    EXPECT_EQ(palette.entries[2], (PaletteEntry{253, 2, 32, 0}));

    const BitmapHandle painted = test::PaintWhole(*dib, 6, 3);
    auto colorOf = [](int i) { return MakeRgb(uint8_t(255 - i), uint8_t(i), uint8_t(i * 16)); };
    EXPECT_EQ(painted->Pixel(0, 2), colorOf(0)); // bottom row is stored first
    EXPECT_EQ(painted->Pixel(3, 2), colorOf(3));
    EXPECT_EQ(painted->Pixel(5, 2), colorOf(5));
    EXPECT_EQ(painted->Pixel(5, 0), colorOf(7));

    DibPtr copy = DibCopy(dib.get());
    MemorySink sink;
    EXPECT_FALSE(DibWriteBmp(*copy, sink));
    EXPECT_FALSE(DibWriteBlock(*copy, sink));
    EXPECT_EQ(copy->bytes, dib->bytes);
}

TEST(DibAccessors, ReadTheLongFormAndStaySafeOnShortBlocks)
{
    DibBlock dib{test::PackedDib(5, -3, 8, DibCompression::Rgb, kGreys, Bytes(24), 4)};
    EXPECT_EQ(DibWidth(dib), 5);
    EXPECT_EQ(DibHeight(dib), -3);
    EXPECT_EQ(DibColorCount(dib), 4u);
    EXPECT_EQ(DibPaletteSize(dib), 16u);
    EXPECT_EQ(DibBits(dib).size(), 24u);
    EXPECT_EQ(DibToPalette(&dib).entries[2], (PaletteEntry{128, 128, 128, 0}));

    DibBlock trueColour{test::PackedDib(1, 1, 24, DibCompression::Rgb, {}, Bytes(4))};
    EXPECT_EQ(DibColorCount(trueColour), 0u);
    EXPECT_TRUE(DibToPalette(&trueColour).IsNull());
    EXPECT_TRUE(DibToPalette(nullptr).IsNull());
    EXPECT_FALSE(DibCopy(nullptr));

    DibBlock lying{test::PackedDib(2, 2, 8, DibCompression::Rgb, kGreys, {}, 250)};
    EXPECT_TRUE(DibToPalette(&lying).IsNull());
    EXPECT_TRUE(DibBits(lying).empty());

    DibBlock stub{Bytes{40, 0, 0}};
    EXPECT_EQ(DibWidth(stub), 0);
    EXPECT_EQ(DibHeight(stub), 0);
    EXPECT_EQ(DibBitCount(stub), 0);
    EXPECT_TRUE(DibBits(stub).empty());
}

} // namespace
} // namespace bvx
