// The format pairs DibFromBitmap accepts, and how it chooses colours: exact
// when they fit, reduced when they do not, mapped when a palette is given.
#include "DibTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>

namespace bvx {
namespace {

using test::MakeSurface;

struct PairCase {
    int16_t bits;
    int32_t compression;
    uint16_t storedBits; // 0: refused
    DibCompression storedCompression;
};

void PrintTo(const PairCase& c, std::ostream* os) { *os << "bits " << c.bits << " compression " << c.compression; }

class DibFormatPair : public testing::TestWithParam<PairCase> {};

TEST_P(DibFormatPair, IsAcceptedOrRefused)
{
    const PairCase& c = GetParam();
    const BitmapHandle surface = MakeSurface(3, 2, [](int32_t x, int32_t) { return x ? kWhite : kBlack; });
    const DibPtr dib = DibFromBitmap(*surface, c.bits, c.compression, nullptr);
    if (c.storedBits == 0) {
        EXPECT_FALSE(dib);
        return;
    }
    ASSERT_TRUE(dib);
    EXPECT_EQ(DibBitCount(*dib), c.storedBits);
    EXPECT_EQ(LoadDibInfoHeader(dib->bytes.data()).compression, uint32_t(c.storedCompression));
}

INSTANTIATE_TEST_SUITE_P(
    Table, DibFormatPair,
    testing::Values(PairCase{0, 1, 8, DibCompression::Rle8}, PairCase{0, 2, 4, DibCompression::Rle4},
                    PairCase{0, 0, 0, {}}, PairCase{0, 3, 0, {}}, PairCase{1, 0, 1, DibCompression::Rgb},
                    PairCase{1, 1, 0, {}}, PairCase{4, 0, 4, DibCompression::Rgb},
                    PairCase{4, 2, 4, DibCompression::Rle4}, PairCase{4, 1, 0, {}},
                    PairCase{8, 0, 8, DibCompression::Rgb}, PairCase{8, 1, 8, DibCompression::Rle8},
                    PairCase{8, 2, 0, {}}, PairCase{24, 0, 24, DibCompression::Rgb}, PairCase{24, 1, 0, {}},
                    PairCase{-1, 0, 0, {}}, PairCase{-4, 0, 0, {}}, PairCase{-8, 0, 0, {}},
                    PairCase{-24, 0, 0, {}}, PairCase{16, 0, 0, {}}, PairCase{32, 0, 0, {}},
                    PairCase{2, 0, 0, {}}));

std::set<ColorRef> ColorsOf(const Bitmap& bitmap)
{
    return {bitmap.Pixels().begin(), bitmap.Pixels().end()};
}

struct ExactCase {
    int16_t bits;
    int colors;
};

class DibExactColors : public testing::TestWithParam<ExactCase> {};

TEST_P(DibExactColors, TableHoldsJustTheDrawnColours)
{
    const int16_t bits = GetParam().bits;
    const int colors = GetParam().colors;
    // Colours far from any fixed table, so that only an exact table paints them back.
    const BitmapHandle surface = MakeSurface(37, 9, [colors](int32_t x, int32_t y) {
        const int i = (x * 7 + y * 3) % colors;
        return MakeRgb(uint8_t(i), uint8_t(3 + i / 2), uint8_t(77));
    });
    const DibPtr dib = DibFromBitmap(*surface, bits, 0, nullptr);
    ASSERT_TRUE(dib);
    const Palette palette = DibToPalette(dib.get());
    ASSERT_EQ(palette.entries.size(), size_t(1) << bits);
    std::set<ColorRef> table;
    for (size_t i = 0; i < size_t(colors); ++i) table.insert(palette.entries[i].Color());
    EXPECT_EQ(table, ColorsOf(*surface));
    EXPECT_EQ(ColorsOf(*test::PaintWhole(*dib, 37, 9)), ColorsOf(*surface));
}

INSTANTIATE_TEST_SUITE_P(EachDepth, DibExactColors,
                         testing::Values(ExactCase{1, 2}, ExactCase{4, 11}, ExactCase{4, 16}, ExactCase{8, 256}));

struct ReductionCase {
    int16_t bits;
    ColorRef drawn;
    ColorRef expected;
};

class DibFixedReduction : public testing::TestWithParam<ReductionCase> {};

// One probe colour among enough others to overflow the depth's table.
TEST_P(DibFixedReduction, MapsToTheNearestStandardColour)
{
    const ReductionCase& c = GetParam();
    const BitmapHandle surface = MakeSurface(40, 1, [&](int32_t x, int32_t) {
        return x == 0 ? c.drawn : MakeRgb(uint8_t(60 + x), uint8_t(60 + 2 * x), 90);
    });
    const DibPtr dib = DibFromBitmap(*surface, c.bits, 0, nullptr);
    ASSERT_TRUE(dib);
    EXPECT_EQ(test::PaintWhole(*dib, 40, 1)->Pixel(0, 0), c.expected);
}

INSTANTIATE_TEST_SUITE_P(BlackWhiteAndVga, DibFixedReduction,
                         testing::Values(ReductionCase{1, MakeRgb(40, 40, 40), kBlack},
                                         ReductionCase{1, MakeRgb(250, 0, 0), kBlack},
                                         ReductionCase{1, MakeRgb(200, 190, 210), kWhite},
                                         ReductionCase{4, MakeRgb(250, 10, 10), MakeRgb(255, 0, 0)},
                                         ReductionCase{4, MakeRgb(130, 125, 0), MakeRgb(128, 128, 0)},
                                         ReductionCase{4, MakeRgb(190, 190, 200), MakeRgb(192, 192, 192)},
                                         ReductionCase{4, MakeRgb(0, 20, 140), MakeRgb(0, 0, 128)}));

TEST(DibMedianCut, ReducesManyColoursCloselyAndRepeatably)
{
    const BitmapHandle surface = MakeSurface(64, 64, [](int32_t x, int32_t y) {
        return MakeRgb(uint8_t(x * 4), uint8_t(y * 4), uint8_t((x + y) * 2));
    });
    const DibPtr dib = DibFromBitmap(*surface, 8, 0, nullptr);
    const DibPtr again = DibFromBitmap(*surface, 8, 0, nullptr);
    ASSERT_TRUE(dib && again);
    EXPECT_EQ(dib->bytes, again->bytes);

    const BitmapHandle painted = test::PaintWhole(*dib, 64, 64);
    EXPECT_GT(ColorsOf(*painted).size(), 200u);
    int64_t totalError = 0;
    int worst = 0;
    for (size_t i = 0; i < painted->Pixels().size(); ++i) {
        const ColorRef a = surface->Pixels()[i], b = painted->Pixels()[i];
        const int error = std::abs(RedOf(a) - RedOf(b)) + std::abs(GreenOf(a) - GreenOf(b)) +
                          std::abs(BlueOf(a) - BlueOf(b));
        totalError += error;
        worst = std::max(worst, error);
    }
    EXPECT_LT(double(totalError) / double(painted->Pixels().size()), 12.0);
    EXPECT_LT(worst, 48);
}

TEST(DibGivenPalette, MapsEveryPixelToItsEntries)
{
    Palette palette;
    palette.entries = {{255, 0, 0, 0}, {0, 255, 0, 0}, {0, 0, 255, 0}, {255, 255, 255, 0}};
    const BitmapHandle surface = MakeSurface(8, 2, [](int32_t x, int32_t y) {
        const ColorRef near[] = {MakeRgb(200, 30, 30), MakeRgb(20, 220, 10), MakeRgb(0, 10, 180),
                                 MakeRgb(240, 240, 230)};
        return near[(x + y) % 4];
    });
    for (int16_t bits : {4, 8}) {
        const DibPtr dib = DibFromBitmap(*surface, bits, 0, &palette);
        ASSERT_TRUE(dib);
        const Palette table = DibToPalette(dib.get());
        ASSERT_GE(table.entries.size(), 4u);
        EXPECT_TRUE(std::equal(palette.entries.begin(), palette.entries.end(), table.entries.begin()));
        const BitmapHandle painted = test::PaintWhole(*dib, 8, 2);
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(painted->Pixel(x, 1), palette.entries[size_t(x + 1) % 4].Color());
    }
}

} // namespace
} // namespace bvx
