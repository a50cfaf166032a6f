// Device state: save and restore, clipping, selection rules, blits.
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

TEST(Selection, UserStylePenDrawsSolid)
{
    Surface s(8, 8);
    s.dc.SetBkMode(BackMode::Opaque);
    s.dc.SetBkColor(0x00FF00);
    s.dc.SelectPen(CreatePen(PenStyle::UserStyle, 1, 0x0000FF));
    s.dc.MoveToEx(0, 3);
    s.dc.LineTo(8, 3);
    for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(s.bitmap->Pixel(x, 3), 0x0000FFu);
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

struct PatCase {
    const char* name;
    uint32_t rop;
    ColorRef brush, before, after;
};
const PatCase kPats[] = {
    {"patcopy", RasterOp::PatCopy, 0x123456, 0xFFFFFF, 0x123456},
    {"patinvert", RasterOp::PatInvert, 0x0F0F0F, 0x3366CC, 0x3366CC ^ 0x0F0F0F},
    {"dstinvert", RasterOp::DstInvert, 0x0F0F0F, 0x3366CC, 0xCC9933},
    {"blackness", RasterOp::Blackness, 0x0F0F0F, 0x3366CC, 0x000000},
    {"whiteness", RasterOp::Whiteness, 0x0F0F0F, 0x3366CC, 0xFFFFFF},
};

class PatBltRop : public ::testing::TestWithParam<PatCase> {};

TEST_P(PatBltRop, AppliesTheOperationToTheRectangleOnly)
{
    const PatCase c = GetParam();
    Surface s(8, 8, c.before);
    s.dc.SelectBrush(CreateSolidBrush(c.brush));
    EXPECT_TRUE(s.dc.PatBlt(2, 3, 4, 2, c.rop));
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 0; x < 8; ++x)
            EXPECT_EQ(s.bitmap->Pixel(x, y), (x >= 2 && x < 6 && y >= 3 && y < 5) ? c.after : c.before);
    EXPECT_FALSE(s.dc.PatBlt(0, 0, 1, 1, RasterOp::SrcCopy)); // reads a source
}

INSTANTIATE_TEST_SUITE_P(Raster, PatBltRop, ::testing::ValuesIn(kPats),
                         [](const ::testing::TestParamInfo<PatCase>& info) { return std::string(info.param.name); });

TEST(Blit, FillRectWithNegativeSizeMirrorsAroundTheCorner)
{
    Surface s(8, 8);
    s.dc.FillRect({5, 5, 2, 3}, Brush{BrushStyle::Solid, {}, kBlack});
    // Width -3 from x 5 covers 3..5, height -2 from y 5 covers 4..5.
    EXPECT_EQ(s.Marked(), (std::set<std::pair<int32_t, int32_t>>{{3, 4}, {4, 4}, {5, 4}, {3, 5}, {4, 5}, {5, 5}}));
}

TEST(Blit, BitBltCopiesFromAnotherContextAndOverlapsSafely)
{
    Surface src(8, 8), dst(8, 8);
    src.dc.SetPixelV(1, 1, 0x112233);
    src.dc.SetPixelV(2, 1, 0x445566);
    EXPECT_TRUE(dst.dc.BitBlt(4, 5, 3, 2, src.dc, 0, 0, RasterOp::SrcCopy));
    EXPECT_EQ(dst.bitmap->Pixel(5, 6), 0x112233u);
    EXPECT_EQ(dst.bitmap->Pixel(6, 6), 0x445566u);
    // Within one surface, moving down and right by one: a diagonal run
    // shifts without smearing.
    Surface s(8, 8);
    for (int32_t i = 0; i < 4; ++i) s.dc.SetPixelV(i, i, 0x000001 * (i + 1));
    EXPECT_TRUE(s.dc.BitBlt(1, 1, 6, 6, s.dc, 0, 0, RasterOp::SrcCopy));
    for (int32_t i = 0; i < 4; ++i) EXPECT_EQ(s.bitmap->Pixel(i + 1, i + 1), uint32_t(i + 1));
    RasterDeviceContext none;
    EXPECT_FALSE(s.dc.BitBlt(0, 0, 2, 2, none, 0, 0, RasterOp::SrcCopy));
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

namespace bvx {
namespace {

// Shapes fill through the brush's pattern whatever the ROP2: with R2_BLACK
// a transparent hatch blackens its lines only. PatBlt's BLACKNESS, by
// contrast, ignores the brush.
TEST(Brush, HatchWithBlackRopKeepsItsGapsInShapesButNotInPatBlt)
{
    test::Surface s(16, 16, 0x3366CC);
    s.dc.SetBkMode(BackMode::Transparent);
    s.dc.SetROP2(Rop2::Black);
    s.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
    s.dc.SelectBrush(CreateHatchBrush(HatchStyle::Horizontal, 0x00FF00));
    s.dc.Rectangle(0, 0, 17, 17);
    EXPECT_EQ(s.bitmap->Pixel(5, 3), kBlack);     // a hatch line
    EXPECT_EQ(s.bitmap->Pixel(5, 4), 0x3366CCu);  // a gap, left alone
    s.dc.PatBlt(0, 8, 16, 8, RasterOp::Blackness);
    EXPECT_EQ(s.bitmap->Pixel(5, 12), kBlack);
}

} // namespace
} // namespace bvx
