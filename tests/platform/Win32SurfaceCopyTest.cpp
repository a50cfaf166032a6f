// The raster surface copied to a device context (Windows builds): every path
// puts exactly the clipped area's pixels at the shifted destination, in the
// right colours, and nothing else changes.
#ifdef _WIN32

#include "platform/win32/SurfaceCopy.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

namespace bvx::win32 {
namespace {

constexpr int32_t kDibWidth = 64, kDibHeight = 48;
constexpr DevicePoint kLastDib{kDibWidth - 1, kDibHeight - 1};

// A 32-bit top-down DIB section selected in a memory context.
class DibTarget {
public:
    DibTarget()
    {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), kDibWidth, -kDibHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        dc_ = CreateCompatibleDC(nullptr);
        bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, reinterpret_cast<void**>(&bits_), nullptr, 0);
        if (bitmap_) old_ = SelectObject(dc_, bitmap_);
    }
    ~DibTarget()
    {
        if (old_) SelectObject(dc_, old_);
        if (bitmap_) DeleteObject(bitmap_);
        DeleteDC(dc_);
    }
    bool IsValid() const { return dc_ && bitmap_ && old_; }
    HDC Dc() const { return dc_; }
    uint32_t& At(int32_t x, int32_t y) { return bits_[size_t(y) * kDibWidth + size_t(x)]; }

private:
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ old_ = nullptr;
    uint32_t* bits_ = nullptr;
};

// The DIB's 0x00RRGGBB of a COLORREF.
uint32_t DibColor(uint32_t c) { return uint32_t(GetRValue(c)) << 16 | uint32_t(GetGValue(c)) << 8 | GetBValue(c); }
uint32_t RedBlueExchanged(uint32_t p) { return (p & 0xFF) << 16 | (p & 0xFF00) | (p >> 16 & 0xFF); }

struct CopyCase {
    const char* name;
    DeviceRect area;
    DevicePoint to;
    DeviceRect copied; // of the surface; empty when Copy must return false
    DevicePoint at;    // where `copied` lands
};

TEST(Win32SurfaceCopy, PutsTheClippedAreaAtTheShiftedDestinationInTheRightColours)
{
    constexpr int32_t w = 37, h = 23;
    const CopyCase cases[] = {
        {"whole surface", {0, 0, w, h}, {5, 7}, {0, 0, w, h}, {5, 7}},
        {"inner area", {3, 4, 20, 17}, {40, 30}, {3, 4, 20, 17}, {40, 30}},
        {"past the top left", {-4, -3, 10, 8}, {20, 20}, {0, 0, 10, 8}, {24, 23}},
        {"past the bottom right", {30, 15, 45, 40}, {1, 2}, {30, 15, w, h}, {1, 2}},
        {"past every edge", {-2, -1, w + 3, h + 7}, {10, 10}, {0, 0, w, h}, {12, 11}},
        {"empty", {5, 5, 5, 9}, {0, 0}, {}, {}},
        {"beside the surface", {w, 0, w + 9, 5}, {0, 0}, {}, {}},
        {"last pixel", {w - 1, h - 1, w, h}, kLastDib, {w - 1, h - 1, w, h}, kLastDib},
        // The clipped start lies past the largest coordinate a device has.
        {"unaddressable destination", {-10, 0, 5, 5}, {INT32_MAX - 2, 0}, {}, {}},
    };
    std::mt19937 random(20261124);
    Bitmap surface(w, h);
    for (uint32_t& p : surface.Pixels()) p = random() & 0xFFFFFF;
    DibTarget dib;
    ASSERT_TRUE(dib.IsValid());
    using Path = SurfaceCopy::Path;
    for (const Path path : {Path::Undecided, Path::BitFields, Path::Swapped, Path::Raw}) {
        SurfaceCopy copy(path);
        for (const CopyCase& c : cases) {
            SCOPED_TRACE(testing::Message() << "path " << int(path) << ", " << c.name);
            std::vector<uint32_t> before;
            for (int32_t y = 0; y < kDibHeight; ++y) {
                for (int32_t x = 0; x < kDibWidth; ++x) before.push_back(dib.At(x, y) = random() & 0xFFFFFF);
            }
            EXPECT_EQ(copy.Copy(dib.Dc(), surface, c.area, c.to), !c.copied.IsEmpty());
            GdiFlush();
            int wrong = 0;
            testing::Message first;
            for (int32_t y = 0; y < kDibHeight; ++y) {
                for (int32_t x = 0; x < kDibWidth; ++x) {
                    const int32_t sx = x - c.at.x + c.copied.left, sy = y - c.at.y + c.copied.top;
                    uint32_t want = before[size_t(y) * kDibWidth + size_t(x)];
                    if (c.copied.Contains(sx, sy)) {
                        // Raw hands GDI the COLORREF as it is: red and blue trade places.
                        want = DibColor(surface.Pixel(sx, sy));
                        if (path == Path::Raw) want = RedBlueExchanged(want);
                    }
                    if (dib.At(x, y) != want && wrong++ == 0) {
                        first << "first at (" << x << ", " << y << "): " << std::hex << dib.At(x, y) << " for " << want;
                    }
                }
            }
            EXPECT_EQ(wrong, 0) << first;
        }
        // GDI takes bit fields: no case, not even one copying nothing, gives them up.
        EXPECT_EQ(copy.CurrentPath(), path);
    }
}

} // namespace
} // namespace bvx::win32

#endif
