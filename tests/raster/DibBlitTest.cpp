// Painting packed DIBs onto the raster surface: what it refuses, and the
// entry point DibPaint picks. How pixels land is held to GDI itself by the
// bitmap cases of the fidelity comparison.
#include "DibTestSupport.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using test::Bytes;
constexpr ColorRef kBackground = 0x00010203;

// A 4x3 8-bit DIB whose top-down pixel (x, y) has colour y * 4 + x.
Bytes NumberedDib()
{
    std::vector<ColorRef> colors;
    for (int i = 0; i < 12; ++i) colors.push_back(ColorRef(i + 1));
    Bytes image(12);
    for (int32_t y = 0; y < 3; ++y)
        for (int32_t x = 0; x < 4; ++x) image[size_t((2 - y) * 4 + x)] = uint8_t(y * 4 + x);
    return test::PackedDib(4, 3, 8, DibCompression::Rgb, colors, image, 12);
}

struct Canvas {
    BitmapHandle surface = test::MakeSurface(16, 12, [](int32_t, int32_t) { return kBackground; });
    RasterDeviceContext dc{surface};
};

TEST(DibBlit, RefusesWhatItCannotDraw)
{
    Canvas canvas;
    const Bytes dib = NumberedDib();
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
    // Far off the surface: drawn, nothing lands.
    EXPECT_EQ(canvas.dc.SetDIBitsToDevice(INT32_MAX - 1, INT32_MIN, 4, 3, 0, 0, dib), 3);
    EXPECT_EQ(canvas.dc.StretchDIBits(INT32_MIN, 0, INT32_MAX, 5, 0, 0, 4, 3, dib, RasterOp::SrcCopy), 3);
}

TEST(DibPaint, PicksTheEntryPointByRectangleSizes)
{
    const DibBlock dib{NumberedDib()};
    Canvas same, stretched;
    // Same size: the source rectangle is top-down, converted to a bottom origin.
    EXPECT_EQ(DibPaint(same.dc, {0, 0, 2, 1}, dib, {1, 1, 3, 2}, nullptr), 3);
    EXPECT_EQ(same.surface->Pixel(0, 0), ColorRef(6));
    EXPECT_EQ(same.surface->Pixel(1, 0), ColorRef(7));
    EXPECT_EQ(same.surface->Pixel(0, 1), kBackground);
    // Stretched: the whole image doubled.
    EXPECT_EQ(DibPaint(stretched.dc, {0, 0, 8, 6}, dib, {0, 0, 4, 3}, nullptr), 3);
    EXPECT_EQ(stretched.surface->Pixel(7, 5), ColorRef(12));
    EXPECT_EQ(stretched.surface->Pixel(0, 0), ColorRef(1));
    EXPECT_EQ(DibPaint(stretched.dc, {0, 0, INT32_MAX, 1}, dib, {-5, 0, INT32_MAX, 1}, nullptr), 0);
}

} // namespace
} // namespace bvx
