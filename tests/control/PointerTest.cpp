// Pointer images as a host sees them: the value SetPointer is given, the
// image the window is handed, and images added from .cur files.
#include "HostDoubles.h"
#include "control/CadControl.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace bvx {
namespace {

class Pointers : public ::testing::Test {
protected:
    int16_t Add(const char* file)
    {
        return control.ViewMouseIconAdd(FromUtf8(std::string(BVX_TEST_DATA_DIR "/") + file));
    }
    const PointerTable& Table() const { return control.View().Buf.Pointers; }

    testing::RecordingHostWindow window;
    CadControl control{&window};
};

TEST_F(Pointers, StartingListSharesImagesWhereItsEntriesShareAShape)
{
    ASSERT_EQ(Table().Count(), 23u);
    const std::vector<std::set<size_t>> same = {{0, 1, 4, 13, 14}, {5, 15}};
    std::set<size_t> grouped;
    for (const auto& group : same) {
        for (size_t i : group) EXPECT_EQ(Table().Image(i), Table().Image(*group.begin())) << i;
        grouped.insert(group.begin(), group.end());
    }
    std::vector<const PointerImage*> distinct{&Table().Image(0), &Table().Image(5)};
    for (size_t i = 0; i < 23; ++i) {
        const PointerImage& image = Table().Image(i);
        ASSERT_EQ(image.width, 32);
        ASSERT_EQ(image.height, 32);
        // The hot spot is a drawn pixel, so the pointer shows where it acts.
        EXPECT_FALSE(image.andMask[size_t(image.hotSpot.y * 32 + image.hotSpot.x)]) << i;
        if (grouped.count(i)) continue;
        for (const PointerImage* other : distinct) EXPECT_NE(image, *other) << i;
        distinct.push_back(&image);
    }
}

// Values from 23 up lose 76; whatever then names no entry, the count itself
// included, is the arrow of index 0.
TEST_F(Pointers, SetPointerShowsTheImageAValueNames)
{
    const std::vector<std::pair<int16_t, size_t>> cases = {{0, 0},   {5, 5},         {22, 22},      {23, 0}, {50, 0},
                                                           {75, 0},  {76, 0},        {98, 22},      {99, 0}, {-1, 0},
                                                           {-76, 0}, {INT16_MIN, 0}, {INT16_MAX, 0}};
    for (const auto& [value, index] : cases) {
        control.SetPointer(int16_t(index == 0 ? 3 : 0)); // something else first
        control.SetPointer(value);
        EXPECT_EQ(control.GetPointer(), int16_t(index)) << value;
        EXPECT_EQ(window.pointer, Table().Image(index)) << value;
    }
    control.SetPointer(16);
    EXPECT_EQ(window.calls.back(), "SetPointerImage 32x32 hot " + std::to_string(Table().Image(16).hotSpot.x) + "," +
                                       std::to_string(Table().Image(16).hotSpot.y));
}

TEST_F(Pointers, MonochromeFileKeepsItsMasksAndHotSpotAfterUnreadableFilesAddedNothing)
{
    for (const char* name : {"pointer_truncated.cur", "no_such_file.cur", ""}) EXPECT_EQ(Add(name), -1) << name;
    EXPECT_EQ(Table().Count(), 23u);
    ASSERT_EQ(Add("pointer_mono.cur"), 99);
    const PointerImage& image = Table().Image(23);
    EXPECT_EQ(image.width, 32);
    EXPECT_EQ(image.height, 32);
    EXPECT_EQ(image.hotSpot, (DevicePoint{5, 9}));
    // White on the ten top rows, the screen kept left of column 13.
    const ColorRef screen = 0x123456;
    for (auto [x, y, pixel] : {std::tuple{12, 9, screen ^ kWhite}, {13, 9, kWhite}, {12, 10, screen}, {13, 10, kBlack},
                               {31, 31, kBlack}})
        EXPECT_EQ(PointerPixelOver(image, x, y, screen), pixel) << x << "," << y;

    // A role set to the new value shows it.
    control.PutViewMousePointer(PointerRole::Select, 99);
    control.SetPointer(control.GetViewMousePointer(PointerRole::Select));
    EXPECT_EQ(control.GetPointer(), 23);
    EXPECT_EQ(window.pointer, image);
    control.CadClearAll(); // a new drawing keeps the pointers
    EXPECT_EQ(Table().Count(), 24u);
}

TEST_F(Pointers, ColourFilesTakeAlphaOrMaskAndTheClosestImage)
{
    ASSERT_EQ(Add("pointer_argb.cur"), 99);
    const PointerImage& argb = Table().Image(23);
    EXPECT_EQ(argb.hotSpot, (DevicePoint{16, 16}));
    EXPECT_EQ(PointerPixelOver(argb, 3, 4, 0x123456), MakeRgb(24, 32, 100));
    EXPECT_EQ(PointerPixelOver(argb, 23, 31, 0x123456), MakeRgb(184, 248, 100));
    EXPECT_EQ(PointerPixelOver(argb, 24, 0, 0x123456), 0x123456u); // clear by its alpha, whatever the mask

    // Of 16, 32 (4 and 8 bits) and 48 pixels square, the 8-bit 32 by 32.
    ASSERT_EQ(Add("pointer_several.cur"), 100);
    const PointerImage& several = Table().Image(24);
    EXPECT_EQ(several.width, 32);
    EXPECT_EQ(several.hotSpot, (DevicePoint{4, 4}));
    EXPECT_EQ(PointerPixelOver(several, 5, 1, 0), MakeRgb(7, 248, 7));
    EXPECT_EQ(PointerPixelOver(several, 6, 6, 0xFFFFFF), MakeRgb(18, 237, 7) ^ 0xFFFFFF); // the mask set on x == y
}

} // namespace
} // namespace bvx
