// Painting packed DIBs onto the raster surface: source origins, clipping,
// orientation, stretching and mirroring, pixel formats, and refusals.
#include "DibTestSupport.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr ColorRef kBackground = 0x00010203;

ColorRef ColorOfIndex(int i) { return MakeRgb(uint8_t(10 * i), uint8_t(200 - i), uint8_t(i * 3)); }

// An 8-bit DIB whose top-down pixel (x, y) has index y * width + x.
Bytes NumberedDib(int32_t width, int32_t height, bool topDown = false)
{
    std::vector<ColorRef> colors;
    for (int i = 0; i < width * height; ++i) colors.push_back(ColorOfIndex(i));
    const size_t stride = size_t(DibStride(uint64_t(width), 8));
    Bytes image(stride * size_t(height), 0);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            image[size_t(topDown ? y : height - 1 - y) * stride + size_t(x)] = uint8_t(y * width + x);
    return test::PackedDib(width, topDown ? -height : height, 8, DibCompression::Rgb, colors, image,
                           uint32_t(colors.size()));
}

struct Canvas {
    BitmapHandle surface = test::MakeSurface(16, 12, [](int32_t, int32_t) { return kBackground; });
    RasterDeviceContext dc{surface};
    ColorRef At(int32_t x, int32_t y) const { return surface->Pixel(x, y); }
};

TEST(SetDIBitsToDevice, TakesTheSourceOriginFromTheBottom)
{
    Canvas canvas;
    const Bytes dib = NumberedDib(4, 3);
    // Columns 1-2 of the two bottom rows.
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(10, 5, 2, 2, 1, 0, dib), 3);
    EXPECT_EQ(canvas.At(10, 5), ColorOfIndex(5));
    EXPECT_EQ(canvas.At(11, 5), ColorOfIndex(6));
    EXPECT_EQ(canvas.At(10, 6), ColorOfIndex(9));
    EXPECT_EQ(canvas.At(11, 6), ColorOfIndex(10));
    EXPECT_EQ(canvas.At(12, 5), kBackground);
    EXPECT_EQ(canvas.At(10, 7), kBackground);
    EXPECT_EQ(canvas.At(9, 5), kBackground);
}

TEST(SetDIBitsToDevice, DrawsOnlyTheSourcePartInsideTheImage)
{
    Canvas canvas;
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 6, 5, -2, 0, NumberedDib(4, 3)), 3);
    // Source x -2 lands at 0: the image starts two pixels in; rows above the top are empty.
    EXPECT_EQ(canvas.At(1, 2), kBackground);
    EXPECT_EQ(canvas.At(2, 2), ColorOfIndex(0));
    EXPECT_EQ(canvas.At(5, 4), ColorOfIndex(11));
    EXPECT_EQ(canvas.At(2, 1), kBackground);
}

TEST(SetDIBitsToDevice, BothRowOrdersPaintTheSamePicture)
{
    Canvas bottomUp, topDown;
    EXPECT_EQ(bottomUp.dc.SetDIBitsToDevice(1, 1, 4, 3, 0, 0, NumberedDib(4, 3)), 3);
    EXPECT_EQ(topDown.dc.SetDIBitsToDevice(1, 1, 4, 3, 0, 0, NumberedDib(4, 3, true)), 3);
    EXPECT_EQ(bottomUp.surface->Pixels()[0], kBackground);
    EXPECT_TRUE(std::equal(bottomUp.surface->Pixels().begin(), bottomUp.surface->Pixels().end(),
                           topDown.surface->Pixels().begin()));
    EXPECT_EQ(bottomUp.At(1, 1), ColorOfIndex(0));
}

TEST(SetDIBitsToDevice, KeepsToTheClipAndTheSurface)
{
    Canvas canvas;
    canvas.dc.IntersectClipRect(2, 2, 4, 3);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(1, 1, 4, 3, 0, 0, NumberedDib(4, 3)), 3);
    EXPECT_EQ(canvas.At(2, 2), ColorOfIndex(5));
    EXPECT_EQ(canvas.At(3, 2), ColorOfIndex(6));
    EXPECT_EQ(canvas.At(1, 1), kBackground);
    EXPECT_EQ(canvas.At(4, 2), kBackground);
    EXPECT_EQ(canvas.At(2, 3), kBackground);

    Canvas edge;
    EXPECT_EQ(edge.dc.SetDIBitsToDevice(14, 10, 4, 3, 0, 0, NumberedDib(4, 3)), 3);
    EXPECT_EQ(edge.At(15, 11), ColorOfIndex(5));
    EXPECT_EQ(edge.dc.SetDIBitsToDevice(INT32_MAX - 1, INT32_MIN, 4, 3, 0, 0, NumberedDib(4, 3)), 3);
}

TEST(SetDIBitsToDevice, RefusesWhatItCannotDraw)
{
    Canvas canvas;
    const Bytes dib = NumberedDib(4, 3);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, -1, 2, 0, 0, dib), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 2, 2, 4, 0, dib), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 2, 2, 0, 3, dib), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 4, 3, 0, 0, Bytes(dib.begin(), dib.end() - 1)), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 4, 3, 0, 0, Bytes(dib.begin(), dib.begin() + 20)), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 4, 3, 0, 0, {}), 0);
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, dib), 0);
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 4, 3, 0, 0, 4, 3, dib, RasterOp::PatCopy), 0);
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 4, 3, 0, 0, 0, 3, dib, RasterOp::SrcCopy), 0);
    for (ColorRef c : canvas.surface->Pixels()) ASSERT_EQ(c, kBackground);
}

TEST(StretchDIBits, EnlargesByRepeatingPixels)
{
    Canvas canvas;
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 8, 6, 0, 0, 4, 3, NumberedDib(4, 3), RasterOp::SrcCopy), 3);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(canvas.At(x, y), ColorOfIndex(y / 2 * 4 + x / 2)) << x << "," << y;
    EXPECT_EQ(canvas.At(8, 0), kBackground);
}

TEST(StretchDIBits, ShrinksBySamplingPixelCentres)
{
    Canvas canvas;
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 2, 1, 0, 0, 4, 3, NumberedDib(4, 3), RasterOp::SrcCopy), 3);
    EXPECT_EQ(canvas.At(0, 0), ColorOfIndex(5));
    EXPECT_EQ(canvas.At(1, 0), ColorOfIndex(7));
}

TEST(StretchDIBits, MirrorsWithANegativeSize)
{
    Canvas canvas;
    // Width -4 from x 5 covers 2..5, right to left.
    EXPECT_EQ(canvas.dc.StretchDIBits(5, 0, -4, 3, 0, 0, 4, 3, NumberedDib(4, 3), RasterOp::SrcCopy), 3);
    EXPECT_EQ(canvas.At(5, 0), ColorOfIndex(0));
    EXPECT_EQ(canvas.At(2, 0), ColorOfIndex(3));
    EXPECT_EQ(canvas.At(2, 2), ColorOfIndex(11));
    EXPECT_EQ(canvas.At(1, 0), kBackground);
    EXPECT_EQ(canvas.At(6, 0), kBackground);

    Canvas flipped;
    EXPECT_EQ(flipped.dc.StretchDIBits(0, 2, 4, -3, 0, 0, 4, 3, NumberedDib(4, 3), RasterOp::SrcCopy), 3);
    EXPECT_EQ(flipped.At(0, 2), ColorOfIndex(0));
    EXPECT_EQ(flipped.At(0, 0), ColorOfIndex(8));
}

TEST(StretchDIBits, SourceRowsCountFromTheBottom)
{
    Canvas canvas;
    // One source row, y 0: the bottom one, stretched over two destination rows.
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 4, 2, 0, 0, 4, 1, NumberedDib(4, 3), RasterOp::SrcCopy), 3);
    EXPECT_EQ(canvas.At(0, 0), ColorOfIndex(8));
    EXPECT_EQ(canvas.At(3, 1), ColorOfIndex(11));
}

TEST(StretchDIBits, RunLengthLeavesUnsetPixelsAlone)
{
    // Bottom row: two pixels of index 1; top row: a delta skips the first pixel, one of index 0.
    const Bytes dib =
        test::PackedDib(3, 2, 8, DibCompression::Rle8, {kBlack, kWhite}, {2, 1, 0, 0, 0, 2, 1, 0, 1, 0, 0, 1}, 2);
    Canvas canvas;
    EXPECT_EQ(canvas.dc.StretchDIBits(0, 0, 6, 4, 0, 0, 3, 2, dib, RasterOp::SrcCopy), 2);
    EXPECT_EQ(canvas.At(0, 0), kBackground);
    EXPECT_EQ(canvas.At(2, 1), kBlack);
    EXPECT_EQ(canvas.At(4, 0), kBackground);
    EXPECT_EQ(canvas.At(0, 3), kWhite);
    EXPECT_EQ(canvas.At(3, 2), kWhite);
    EXPECT_EQ(canvas.At(4, 2), kBackground);
}

struct FormatCase {
    const char* name;
    uint16_t bitCount;
    DibCompression compression;
    std::vector<uint32_t> masks;
    Bytes pixel; // one pixel, padded to four bytes
    ColorRef expected;
};

void PrintTo(const FormatCase& c, std::ostream* os) { *os << c.name; }

class DibPixelFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(DibPixelFormat, ExpandsToTheSurfaceColour)
{
    const FormatCase& c = GetParam();
    Bytes packed = test::PackedDib(1, 1, c.bitCount, c.compression, {}, {});
    for (uint32_t mask : c.masks) {
        packed.resize(packed.size() + 4);
        StoreLe32(packed.data() + packed.size() - 4, mask);
    }
    packed.insert(packed.end(), c.pixel.begin(), c.pixel.end());
    Canvas canvas;
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(0, 0, 1, 1, 0, 0, packed), 1);
    EXPECT_EQ(canvas.At(0, 0), c.expected);
}

const std::vector<uint32_t> k565{0xF800, 0x07E0, 0x001F};

INSTANTIATE_TEST_SUITE_P(
    Table, DibPixelFormat,
    testing::Values(FormatCase{"555 white", 16, DibCompression::Rgb, {}, {0xFF, 0x7F, 0, 0}, kWhite},
                    FormatCase{"555 red 1", 16, DibCompression::Rgb, {}, {0x00, 0x04, 0, 0}, MakeRgb(8, 0, 0)},
                    FormatCase{"565 red", 16, DibCompression::Bitfields, k565, {0x00, 0xF8, 0, 0}, MakeRgb(255, 0, 0)},
                    FormatCase{"565 green", 16, DibCompression::Bitfields, k565, {0xE0, 0x07, 0, 0},
                               MakeRgb(0, 255, 0)},
                    FormatCase{"24 bgr", 24, DibCompression::Rgb, {}, {1, 2, 3, 0}, MakeRgb(3, 2, 1)},
                    FormatCase{"32 bgrx", 32, DibCompression::Rgb, {}, {4, 5, 6, 7}, MakeRgb(6, 5, 4)},
                    FormatCase{"32 fields", 32, DibCompression::Bitfields, {0xFF, 0xFF00, 0xFF0000}, {4, 5, 6, 7},
                               MakeRgb(4, 5, 6)}));

TEST(DibPaint, PicksTheEntryPointByRectangleSizes)
{
    const DibBlock dib{NumberedDib(4, 3)};
    Canvas same, stretched;
    // Same size: the source rectangle is top-down, converted to a bottom origin.
    EXPECT_EQ(DibPaint(same.dc, {0, 0, 2, 1}, dib, {1, 1, 3, 2}, nullptr), 3);
    EXPECT_EQ(same.At(0, 0), ColorOfIndex(5));
    EXPECT_EQ(same.At(1, 0), ColorOfIndex(6));
    EXPECT_EQ(same.At(0, 1), kBackground);
    // Stretched: the whole image doubled.
    EXPECT_EQ(DibPaint(stretched.dc, {0, 0, 8, 6}, dib, {0, 0, 4, 3}, nullptr), 3);
    EXPECT_EQ(stretched.At(7, 5), ColorOfIndex(11));
    EXPECT_EQ(stretched.At(0, 0), ColorOfIndex(0));
    EXPECT_EQ(DibPaint(stretched.dc, {0, 0, INT32_MAX, 1}, dib, {-5, 0, INT32_MAX, 1}, nullptr), 0);
}

} // namespace
} // namespace bvx
