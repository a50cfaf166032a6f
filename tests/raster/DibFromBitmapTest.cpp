// Surfaces read out as DIBs: the format pairs accepted, each written as .bmp,
// read back and painted to the same pixels when its colours fit; and how
// colours are chosen when they do not, or when a palette is given.
#include "DibTestSupport.h"
#include "platform/DataRows.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

namespace bvx {
namespace {

using test::Bytes;
using test::MakeSurface;

ColorRef NthColor(int i) { return MakeRgb(uint8_t(i), uint8_t(255 - i), uint8_t(i * 7)); }

std::set<ColorRef> ColorsOf(const Bitmap& bitmap) { return {bitmap.Pixels().begin(), bitmap.Pixels().end()}; }

// Long runs on the left (some longer than one code holds), noise on the
// right, and rows that differ so that a flip would show.
TEST(DibFormat, RoundTripsThroughABmpFileOrIsRefused)
{
    size_t rows = 0;
    for (const auto& row : test::DataRows("dib_formats.txt")) {
        if (row[0] != "format") continue;
        SCOPED_TRACE(test::Joined(row));
        ++rows;
        const int16_t bits = int16_t(std::stoi(row[1]));
        const uint16_t storedBits = uint16_t(std::stoi(row[3]));
        const int colors = std::stoi(row[5]);
        const BitmapHandle surface = MakeSurface(301, 7, [colors](int32_t x, int32_t y) {
            if (colors == 0) return MakeRgb(uint8_t(x), uint8_t(y * 40), uint8_t(x * y));
            return NthColor(x < 260 ? y % colors : (x * 31 + y * 17) % colors);
        });
        DibPtr dib = DibFromBitmap(*surface, bits, std::stoi(row[2]), nullptr);
        ASSERT_EQ(dib != nullptr, storedBits != 0);
        if (!dib) continue;
        const DibInfoHeader header = LoadDibInfoHeader(dib->bytes.data());
        EXPECT_EQ(header.bitCount, storedBits);
        EXPECT_EQ(header.compression, uint32_t(std::stoi(row[4])));
        EXPECT_EQ(header.sizeImage, DibBits(*dib).size());

        MemorySink sink;
        ASSERT_TRUE(DibWriteBmp(*dib, sink));
        const Bytes& file = sink.Bytes();
        ASSERT_GT(file.size(), kBmpFileHeaderSize);
        EXPECT_EQ(LoadLe32(file.data() + 2), file.size());
        EXPECT_EQ(LoadLe32(file.data() + 10), kBmpFileHeaderSize + kDibInfoHeaderSize + DibPaletteSize(*dib));
        MemorySource source(file);
        const DibPtr back = DibReadBlock(source, false);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->bytes, dib->bytes);
        const BitmapHandle painted = test::PaintWhole(*back);
        EXPECT_TRUE(std::equal(painted->Pixels().begin(), painted->Pixels().end(), surface->Pixels().begin()));
    }
    EXPECT_EQ(rows, 21u);
}

TEST(DibFormat, RunLengthCodingIsShorterForRuns)
{
    const BitmapHandle flat = MakeSurface(200, 50, [](int32_t x, int32_t) { return NthColor(x / 50); });
    for (int16_t bits : {4, 8}) {
        const DibPtr raw = DibFromBitmap(*flat, bits, 0, nullptr);
        const DibPtr coded = DibFromBitmap(*flat, 0, bits == 4 ? 2 : 1, nullptr);
        ASSERT_TRUE(raw && coded);
        EXPECT_LT(DibBits(*coded).size() * 5, DibBits(*raw).size()) << bits;
    }
}

TEST(DibColors, KeepTheDrawnOnesOrTheNearestStandardOne)
{
    size_t rows = 0;
    for (const auto& row : test::DataRows("dib_formats.txt")) {
        if (row[0] == "format") continue;
        SCOPED_TRACE(test::Joined(row));
        ++rows;
        const int16_t bits = int16_t(std::stoi(row[1]));
        auto rgb = [&row](size_t i) {
            return MakeRgb(uint8_t(std::stoi(row[i])), uint8_t(std::stoi(row[i + 1])), uint8_t(std::stoi(row[i + 2])));
        };
        if (row[0] == "nearest") {
            const ColorRef drawn = rgb(2);
            const BitmapHandle surface = MakeSurface(37, 9, [drawn](int32_t x, int32_t y) {
                return x + y == 0 ? drawn : MakeRgb(uint8_t(60 + x), uint8_t(60 + 2 * x + y), 90);
            });
            const DibPtr dib = DibFromBitmap(*surface, bits, 0, nullptr);
            ASSERT_TRUE(dib);
            EXPECT_EQ(test::PaintWhole(*dib)->Pixel(0, 0), rgb(5));
            continue;
        }
        const int colors = std::stoi(row[2]);
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
        EXPECT_EQ(ColorsOf(*test::PaintWhole(*dib)), ColorsOf(*surface));
    }
    EXPECT_EQ(rows, 11u);
}

TEST(DibColors, MedianCutReducesManyColoursCloselyAndRepeatably)
{
    const BitmapHandle surface = MakeSurface(64, 64, [](int32_t x, int32_t y) {
        return MakeRgb(uint8_t(x * 4), uint8_t(y * 4), uint8_t((x + y) * 2));
    });
    const DibPtr dib = DibFromBitmap(*surface, 8, 0, nullptr);
    const DibPtr again = DibFromBitmap(*surface, 8, 0, nullptr);
    ASSERT_TRUE(dib && again);
    EXPECT_EQ(dib->bytes, again->bytes);
    const BitmapHandle painted = test::PaintWhole(*dib);
    EXPECT_GT(ColorsOf(*painted).size(), 200u);
    int64_t totalError = 0;
    int worst = 0;
    for (size_t i = 0; i < painted->Pixels().size(); ++i) {
        const ColorRef a = surface->Pixels()[i], b = painted->Pixels()[i];
        const int error =
            std::abs(RedOf(a) - RedOf(b)) + std::abs(GreenOf(a) - GreenOf(b)) + std::abs(BlueOf(a) - BlueOf(b));
        totalError += error;
        worst = std::max(worst, error);
    }
    EXPECT_LT(double(totalError) / double(painted->Pixels().size()), 12.0);
    EXPECT_LT(worst, 48);
}

TEST(DibColors, AGivenPaletteTakesEveryPixel)
{
    Palette palette;
    palette.entries = {{255, 0, 0, 0}, {0, 255, 0, 0}, {0, 0, 255, 0}, {255, 255, 255, 0}};
    const ColorRef near[] = {MakeRgb(200, 30, 30), MakeRgb(20, 220, 10), MakeRgb(0, 10, 180), MakeRgb(240, 240, 230)};
    const BitmapHandle surface = MakeSurface(8, 2, [&near](int32_t x, int32_t y) { return near[(x + y) % 4]; });
    for (int16_t bits : {4, 8}) {
        const DibPtr dib = DibFromBitmap(*surface, bits, 0, &palette);
        ASSERT_TRUE(dib);
        const Palette table = DibToPalette(dib.get());
        ASSERT_GE(table.entries.size(), 4u);
        EXPECT_TRUE(std::equal(palette.entries.begin(), palette.entries.end(), table.entries.begin()));
        const BitmapHandle painted = test::PaintWhole(*dib);
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(painted->Pixel(x, 1), palette.entries[size_t(x + 1) % 4].Color());
    }
}

TEST(DibBlockFile, SizedBlocksFollowOneAnother)
{
    const auto surface = MakeSurface(5, 4, [](int32_t x, int32_t y) { return NthColor(x + y); });
    std::vector<DibPtr> written;
    written.push_back(DibFromBitmap(*surface, 8, 1, nullptr));
    written.push_back(DibFromBitmap(*surface, 24, 0, nullptr));
    MemorySink sink;
    std::vector<uint64_t> ends;
    for (const DibPtr& dib : written) {
        ASSERT_TRUE(dib && DibWriteBlock(*dib, sink));
        ends.push_back(sink.Bytes().size());
    }
    MemorySource source(sink.Bytes());
    for (size_t i = 0; i < written.size(); ++i) {
        const DibPtr read = DibReadBlock(source, true);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->bytes, written[i]->bytes);
        EXPECT_EQ(source.Position(), ends[i]);
    }
}

TEST(DibBlockFile, WritesOnlyBlocksItCanExplain)
{
    MemorySink sink;
    DibBlock tooShort{test::PackedDib(4, 4, 24, DibCompression::Rgb, {}, Bytes(10))};
    EXPECT_FALSE(DibWriteBmp(tooShort, sink));
    DibBlock lyingRunLength{test::PackedDib(4, 1, 8, DibCompression::Rle8, std::vector<ColorRef>(256), {4, 1, 0, 1})};
    StoreLe32(lyingRunLength.bytes.data() + 20, 5000);
    EXPECT_FALSE(DibWriteBmp(lyingRunLength, sink));
    EXPECT_TRUE(sink.Bytes().empty());
}

} // namespace
} // namespace bvx
