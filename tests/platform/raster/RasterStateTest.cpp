// Device state: clip regions, selection rules, blits between contexts. The
// state stack and pixels are held to GDI by the fidelity comparison.
#include "RasterTestUtil.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using test::Surface;

TEST(Clip, SelectClipRegionReplacesTheClip)
{
    Surface s(16, 16);
    s.dc.IntersectClipRect(20, 20, 30, 30);
    s.dc.SelectClipRegion(nullptr);
    s.dc.PatBlt(0, 0, 16, 16, RasterOp::Whiteness);
    EXPECT_TRUE(s.Marked().empty());
    const DeviceRect r{4, 4, 6, 6};
    s.dc.SelectClipRegion(&r);
    s.dc.PatBlt(0, 0, 16, 16, RasterOp::Blackness);
    EXPECT_EQ(s.Marked().size(), 4u);
}

TEST(Selection, ReturnsThePreviousObject)
{
    Surface s(4, 4);
    const PenHandle red = CreatePen(PenStyle::Solid, 1, 0x0000FF);
    const PenHandle first = s.dc.SelectPen(red);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->style, PenStyle::Solid); // the default black pen
    EXPECT_EQ(s.dc.SelectPen(first), red);
    const BrushHandle b = CreateNullBrush();
    const BrushHandle defaultBrush = s.dc.SelectBrush(b);
    ASSERT_TRUE(defaultBrush);
    EXPECT_EQ(defaultBrush->color, kWhite);
    EXPECT_EQ(s.dc.SelectBrush(defaultBrush), b);
    // A null handle selects nothing and returns null.
    EXPECT_EQ(s.dc.SelectPen(nullptr), nullptr);
    EXPECT_EQ(s.dc.SetROP2(Rop2(0)), Rop2(0));
    EXPECT_EQ(s.dc.SetROP2(Rop2::XorPen), Rop2::CopyPen);
}

TEST(Pixels, GetPixelOutsideIsInvalid)
{
    Surface s(4, 4);
    EXPECT_EQ(s.dc.GetPixel(-1, 0), 0xFFFFFFFFu);
    EXPECT_EQ(s.dc.GetPixel(0, 4), 0xFFFFFFFFu);
    EXPECT_EQ(s.dc.GetPixel(3, 3), kWhite);
    s.dc.SetPixelV(3, 3, 0x123456);
    EXPECT_EQ(s.dc.GetPixel(3, 3), 0x123456u);
    EXPECT_TRUE(s.dc.SetPixelV(40, 40, 0)); // off the surface: nothing, no harm
    RasterDeviceContext empty;
    EXPECT_EQ(empty.GetPixel(0, 0), 0xFFFFFFFFu);
    EXPECT_TRUE(empty.Rectangle(0, 0, 5, 5));
}

TEST(Blit, BitBltCopiesFromAnotherContext)
{
    Surface src(8, 8), dst(8, 8);
    src.dc.SetPixelV(1, 1, 0x112233);
    src.dc.SetPixelV(2, 1, 0x445566);
    EXPECT_TRUE(dst.dc.BitBlt(4, 5, 3, 2, src.dc, 0, 0, RasterOp::SrcCopy));
    EXPECT_EQ(dst.bitmap->Pixel(5, 6), 0x112233u);
    EXPECT_EQ(dst.bitmap->Pixel(6, 6), 0x445566u);
    EXPECT_FALSE(dst.dc.BitBlt(0, 0, 2, 2, RasterDeviceContext(), 0, 0, RasterOp::SrcCopy));
}

TEST(Device, CompatibleContextStartsWithoutABitmap)
{
    RasterDeviceContext dc(nullptr, 120, 144);
    auto compatible = dc.CreateCompatibleDC();
    EXPECT_EQ(compatible->CurrentBitmap(), nullptr);
    EXPECT_EQ(compatible->DpiX(), 120);
    EXPECT_EQ(compatible->DpiY(), 144);
    BitmapHandle b = CreateBitmap(4, 4);
    EXPECT_EQ(compatible->SelectBitmap(b), nullptr);
    EXPECT_EQ(compatible->CurrentBitmap(), b);
}

} // namespace
} // namespace bvx
