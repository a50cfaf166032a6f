// A surface read out as a DIB at each format, written as .bmp, read back and
// painted gives the same pixels whenever its colours fit the format.
#include "DibTestSupport.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using test::MakeSurface;

struct RoundTripCase {
    int16_t bits;
    int32_t compression;
    uint16_t storedBits;
    DibCompression storedCompression;
    int colors; // distinct colours drawn; 0 means a true-colour gradient
};

void PrintTo(const RoundTripCase& c, std::ostream* os) { *os << "bits " << c.bits << " compression " << c.compression; }

// `n` distinct colours, red alone tells them apart.
ColorRef NthColor(int i) { return MakeRgb(uint8_t(i), uint8_t(255 - i), uint8_t(i * 7)); }

// Long runs on the left (some longer than one code can hold), noise on the
// right, and rows that differ so that a flip would show.
BitmapHandle TestSurface(int colors)
{
    return MakeSurface(301, 7, [colors](int32_t x, int32_t y) {
        if (colors == 0) return MakeRgb(uint8_t(x), uint8_t(y * 40), uint8_t(x * y));
        const int index = x < 260 ? y % colors : (x * 31 + y * 17) % colors;
        return NthColor(index);
    });
}

class DibRoundTrip : public testing::TestWithParam<RoundTripCase> {};

TEST_P(DibRoundTrip, PaintsBackTheSamePixels)
{
    const RoundTripCase& c = GetParam();
    const BitmapHandle surface = TestSurface(c.colors);
    DibPtr dib = DibFromBitmap(*surface, c.bits, c.compression, nullptr);
    ASSERT_TRUE(dib);
    const DibInfoHeader header = LoadDibInfoHeader(dib->bytes.data());
    EXPECT_EQ(header.bitCount, c.storedBits);
    EXPECT_EQ(header.compression, uint32_t(c.storedCompression));
    EXPECT_EQ(header.width, 301);
    EXPECT_EQ(header.height, 7);
    EXPECT_EQ(header.sizeImage, DibBits(*dib).size());

    const std::vector<uint8_t> file = test::WriteBmpBytes(*dib);
    ASSERT_GT(file.size(), kBmpFileHeaderSize);
    EXPECT_EQ(LoadLe16(file.data()), kBmpSignature);
    EXPECT_EQ(LoadLe32(file.data() + 2), file.size());
    EXPECT_EQ(LoadLe32(file.data() + 10), kBmpFileHeaderSize + kDibInfoHeaderSize + DibPaletteSize(*dib));

    const DibPtr back = test::ReadBmpBytes(file);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bytes, dib->bytes);
    const BitmapHandle painted = test::PaintWhole(*back, 301, 7);
    for (int32_t y = 0; y < 7; ++y)
        for (int32_t x = 0; x < 301; ++x)
            ASSERT_EQ(painted->Pixel(x, y), surface->Pixel(x, y)) << "at " << x << "," << y;
}

INSTANTIATE_TEST_SUITE_P(EachFormat, DibRoundTrip,
                         testing::Values(RoundTripCase{1, 0, 1, DibCompression::Rgb, 2},
                                         RoundTripCase{4, 0, 4, DibCompression::Rgb, 16},
                                         RoundTripCase{4, 2, 4, DibCompression::Rle4, 16},
                                         RoundTripCase{0, 2, 4, DibCompression::Rle4, 5},
                                         RoundTripCase{8, 0, 8, DibCompression::Rgb, 256},
                                         RoundTripCase{8, 1, 8, DibCompression::Rle8, 200},
                                         RoundTripCase{0, 1, 8, DibCompression::Rle8, 3},
                                         RoundTripCase{24, 0, 24, DibCompression::Rgb, 0}));

TEST(DibRoundTrip, RunLengthCodingIsShorterForRuns)
{
    const BitmapHandle flat = MakeSurface(200, 50, [](int32_t x, int32_t) { return NthColor(x / 50); });
    for (int16_t bits : {4, 8}) {
        const DibPtr raw = DibFromBitmap(*flat, bits, 0, nullptr);
        const DibPtr coded = DibFromBitmap(*flat, 0, bits == 4 ? 2 : 1, nullptr);
        ASSERT_TRUE(raw && coded);
        EXPECT_LT(DibBits(*coded).size() * 5, DibBits(*raw).size()) << bits;
    }
}

TEST(DibRoundTrip, TrueColourStoresBgrBottomUp)
{
    const BitmapHandle surface =
        MakeSurface(2, 2, [](int32_t x, int32_t y) { return MakeRgb(10, uint8_t(20 + x), uint8_t(30 + y)); });
    const DibPtr dib = DibFromBitmap(*surface, 24, 0, nullptr);
    ASSERT_TRUE(dib);
    const std::span<const uint8_t> bits = DibBits(*dib);
    ASSERT_EQ(bits.size(), 16u); // two rows of 6 bytes padded to 8
    // The first stored row is the surface's bottom row.
    EXPECT_EQ(std::vector<uint8_t>(bits.begin(), bits.begin() + 6), (std::vector<uint8_t>{31, 20, 10, 31, 21, 10}));
}

TEST(DibBlockFile, SizedBlocksFollowOneAnother)
{
    const BitmapHandle a = MakeSurface(3, 2, [](int32_t x, int32_t) { return NthColor(x); });
    const BitmapHandle b = MakeSurface(5, 4, [](int32_t x, int32_t y) { return NthColor(x + y); });
    DibPtr first = DibFromBitmap(*a, 8, 1, nullptr);
    DibPtr second = DibFromBitmap(*b, 24, 0, nullptr);
    MemorySink sink;
    ASSERT_TRUE(DibWriteBlock(*first, sink));
    const size_t firstLength = sink.Bytes().size();
    ASSERT_TRUE(DibWriteBlock(*second, sink));
    EXPECT_EQ(LoadLe32(sink.Bytes().data()) + 4, firstLength);

    MemorySource source(sink.Bytes());
    const DibPtr readFirst = DibReadBlock(source, true);
    ASSERT_TRUE(readFirst);
    EXPECT_EQ(source.Position(), firstLength);
    const DibPtr readSecond = DibReadBlock(source, true);
    ASSERT_TRUE(readSecond);
    EXPECT_EQ(readFirst->bytes, first->bytes);
    EXPECT_EQ(readSecond->bytes, second->bytes);
    EXPECT_EQ(source.Position(), sink.Bytes().size());
}

TEST(DibBlockFile, WritesOnlyBlocksItCanExplain)
{
    MemorySink sink;
    DibBlock tooShort{test::PackedDib(4, 4, 24, DibCompression::Rgb, {}, std::vector<uint8_t>(10))};
    EXPECT_FALSE(DibWriteBmp(tooShort, sink));
    DibBlock lyingRunLength{test::PackedDib(4, 1, 8, DibCompression::Rle8, std::vector<ColorRef>(256), {4, 1, 0, 1})};
    StoreLe32(lyingRunLength.bytes.data() + 20, 5000);
    EXPECT_FALSE(DibWriteBmp(lyingRunLength, sink));
    EXPECT_TRUE(sink.Bytes().empty());
}

} // namespace
} // namespace bvx
