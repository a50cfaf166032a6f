// Device state: save and restore, clipping, selection rules, blits between
// contexts. Pixels are held to GDI by the fidelity comparison.
#include "RasterTestUtil.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using test::Surface;

struct RestoreCase {
    int32_t saves;    // SaveDC calls, each after changing the pen colour
    int32_t argument; // RestoreDC's argument
    bool ok;
    ColorRef penAfter; // colour of the pen in effect after the call
};
std::ostream& operator<<(std::ostream& os, const RestoreCase& c)
{
    return os << c.saves << " saves, RestoreDC(" << c.argument << ")";
}

// Pen colours: 1 before the first save, 2 before the second, ...; the
// current pen is colour saves + 1.
const RestoreCase kRestores[] = {
    {2, 1, true, 1},  {2, 2, true, 2},  {2, -1, true, 2}, {2, -2, true, 1},
    {2, 0, false, 3}, {2, 3, false, 3}, {2, -3, false, 3}, {0, 1, false, 1},
    {3, -1, true, 3}, {3, 1, true, 1},
};

class SaveRestore : public ::testing::TestWithParam<RestoreCase> {};

TEST_P(SaveRestore, RestoresTheStateOfThatLevel)
{
    const RestoreCase c = GetParam();
    Surface s(8, 8);
    for (int32_t i = 0; i < c.saves; ++i) {
        s.dc.SelectPen(CreatePen(PenStyle::Solid, 1, ColorRef(i + 1)));
        EXPECT_EQ(s.dc.SaveDC(), i + 1);
    }
    s.dc.SelectPen(CreatePen(PenStyle::Solid, 1, ColorRef(c.saves + 1)));
    EXPECT_EQ(s.dc.RestoreDC(c.argument), c.ok);
    s.dc.MoveToEx(0, 0);
    s.dc.LineTo(1, 0);
    EXPECT_EQ(s.bitmap->Pixel(0, 0), c.penAfter);
}

INSTANTIATE_TEST_SUITE_P(Raster, SaveRestore, ::testing::ValuesIn(kRestores));

TEST(SaveRestore, RestoresClipModesAndPosition)
{
    Surface s(16, 16);
    s.dc.SetBkMode(BackMode::Transparent);
    s.dc.MoveToEx(3, 4);
    EXPECT_EQ(s.dc.SaveDC(), 1);
    s.dc.IntersectClipRect(0, 0, 2, 2);
    s.dc.SetBkMode(BackMode::Opaque);
    s.dc.SetROP2(Rop2::XorPen);
    s.dc.MoveToEx(9, 9);
    EXPECT_TRUE(s.dc.RestoreDC(-1));
    EXPECT_EQ(s.dc.GetBkMode(), BackMode::Transparent);
    EXPECT_EQ(s.dc.MoveToEx(0, 0).x, 3);
    EXPECT_TRUE(s.dc.PatBlt(0, 0, 16, 16, RasterOp::Blackness));
    EXPECT_EQ(s.Marked().size(), 256u); // no clip left
    EXPECT_FALSE(s.dc.RestoreDC(1));     // that level is gone
}

TEST(Clip, IntersectClipRectNarrowsAndEmptyClipsAll)
{
    Surface s(16, 16);
    s.dc.IntersectClipRect(12, 10, 2, 3); // reversed corners are normalized
    s.dc.IntersectClipRect(0, 0, 8, 8);
    s.dc.PatBlt(0, 0, 16, 16, RasterOp::Blackness);
    EXPECT_EQ(s.Marked().size(), 6u * 5u);
    s.dc.IntersectClipRect(20, 20, 30, 30);
    s.dc.PatBlt(0, 0, 16, 16, RasterOp::Whiteness);
    EXPECT_EQ(s.Marked().size(), 30u);
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
