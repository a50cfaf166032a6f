// Pictures through the members a host calls: how each style lays the
// bitmap out, the shared picture table, bad files, and the drawing written
// as a bitmap file and read back. Hits on pictures are a script case
// (scripts/picture_hits.bvxs).
#include "ShapeTestSupport.h"

#include "platform/ByteStream.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"

#include <filesystem>
#include <string>

namespace bvx::shapetest {
namespace {

const std::string kPictures = BVX_TEST_DATA_DIR "/pictures/";
// The 3 by 2 test bitmap, top row first.
constexpr ColorRef kImage[2][3] = {{0x0000FF, 0x00FF00, 0xFF0000}, {0x00FFFF, 0xFFFF00, 0xFF00FF}};
constexpr ColorRef kWhite = 0xFFFFFF;

std::u16string Name(const std::string& path) { return std::u16string(path.begin(), path.end()); }

class Pictures : public ControlTest {
protected:
    // A picture whose device box is columns 10 to 16 and rows 10 to 14,
    // whichever way the world's y axis runs.
    int32_t Picture(int16_t style, const std::string& file = "three_by_two.bmp")
    {
        const bool yUp = View().World.SignY < 0;
        const int32_t n = control.ShapeAdd(bvxPicture, 1);
        control.ShapePointSet(n, 0, 10, yUp ? 90 : 10);
        control.ShapePointSet(n, 1, 16, yUp ? 86 : 14);
        control.ImageOpenBitmap(int16_t(n), Name(kPictures + file), style, 0);
        return n;
    }
    size_t Entries() { return View().Buf.Pictures.Entries.size(); }
};

// Stretched, the image's corners reach the box's; tiled, it repeats from the
// upper left; at natural size, it stands once in the upper left. The same in
// a world whose y axis runs down.
TEST_F(Pictures, EachStyleLaysTheBitmapOutInItsBox)
{
    for (bool yDown : {false, true}) {
        if (yDown) control.WorldSet(0, 0, 100, 100);
        for (int16_t style : {0, 1, 2}) {
            control.CadClearShapes(-1);
            Picture(style);
            auto dc = Painted();
            for (int32_t y = 10; y < 15; ++y)
                for (int32_t x = 10; x < 17; ++x) {
                    const ColorRef got = dc->GetPixel(x, y);
                    const int32_t ix = x - 10, iy = y - 10;
                    const ColorRef tiled = kImage[iy % 2][ix % 3], natural = ix < 3 && iy < 2 ? kImage[iy][ix] : kWhite;
                    if (style != 0) {
                        EXPECT_EQ(got, style == 1 ? tiled : natural) << style << ": " << x << "," << y;
                    }
                }
            if (style == 0) {
                EXPECT_EQ(dc->GetPixel(10, 10), kImage[0][0]);
                EXPECT_EQ(dc->GetPixel(16, 14), kImage[1][2]);
                EXPECT_EQ(dc->GetPixel(17, 15), kWhite);
            }
        }
    }
}

// Shapes naming one file share its entry; the entry goes with its last
// user, and a new bitmap for the file reaches every picture at once.
TEST_F(Pictures, OneEntryPerFileReleasedWithItsLastUser)
{
    const std::string copy = (std::filesystem::temp_directory_path() / "bvx_picture_test.bmp").string();
    std::filesystem::copy_file(kPictures + "three_by_two.bmp", copy, std::filesystem::copy_options::overwrite_existing);
    const int32_t a = control.ShapeAdd(bvxPicture, 1), b = control.ShapeAdd(bvxPicture, 1);
    for (int32_t n : {a, b}) control.ImageOpenBitmap(int16_t(n), Name(copy), 0, 0);
    EXPECT_EQ(Entries(), 1u);
    std::filesystem::copy_file(kPictures + "one_by_one.bmp", copy, std::filesystem::copy_options::overwrite_existing);
    control.ImageOpenBitmap(int16_t(a), Name(copy), 0, 1);
    EXPECT_EQ(Entries(), 1u);
    for (int32_t n : {a, b}) EXPECT_EQ(static_cast<CPictShape*>(View().Buf.FindShape(n))->ImageWidth, 1);
    control.ShapeDelete(a);
    EXPECT_EQ(Entries(), 1u);
    control.ShapeDelete(b);
    EXPECT_EQ(Entries(), 0u);
    std::filesystem::remove(copy);
}

// A missing or malformed file leaves the picture empty and adds nothing;
// an empty picture draws nothing and is still found.
TEST_F(Pictures, BadFilesLeaveAnEmptyPicture)
{
    for (const char* file : {"missing.bmp", "truncated.bmp", "not_a_bitmap.bmp"}) {
        const int32_t n = Picture(0, file);
        EXPECT_FALSE(static_cast<CPictShape*>(View().Buf.FindShape(n))->HasImage()) << file;
        EXPECT_EQ(Entries(), 0u) << file;
        EXPECT_FALSE(control.BackPicSet(Name(kPictures + file), 0, 0, 100)) << file;
        EXPECT_EQ(control.GetBackPicWidth(), -1) << file;
        EXPECT_EQ(control.ShapeHitTest(10, 90, 0), n) << file;
    }
    EXPECT_EQ(Painted()->GetPixel(13, 12), kWhite);
    EXPECT_TRUE(control.BackPicRemove());
    EXPECT_FALSE(control.BackPicRemove());
}

// The background picture: natural size from its corner, behind the shapes.
// Its size as a host reads it is a script case (scripts/background_picture.bvxs).
TEST_F(Pictures, TheBackgroundPictureStandsBehindTheShapes)
{
    ASSERT_TRUE(control.BackPicSet(Name(kPictures + "three_by_two.bmp"), 2, 20, 80));
    control.DrawLine(22, 70, 22, 90, 1);
    auto dc = Painted();
    EXPECT_EQ(dc->GetPixel(20, 20), kImage[0][0]);
    EXPECT_EQ(dc->GetPixel(21, 21), kImage[1][1]);
    EXPECT_EQ(dc->GetPixel(22, 20), 0u) << "the line over the picture";
    EXPECT_TRUE(control.BackPicRemove());
    EXPECT_EQ(Entries(), 0u);
}

// Every bit depth written at the window's size holds the window's own
// pixels, and the view is as it was afterwards; the refused forms write
// nothing.
TEST_F(Pictures, TheDrawingWrittenAsABitmapHoldsTheWindowsPixels)
{
    control.PutLayerPenFg(1, 0x0000FF);
    control.DrawRectangle(10, 90, 60, 40, 1);
    control.DrawCircle(50, 50, 30, 1);
    control.DrawLine(0, 0, 100, 100, 1);
    control.ShapeSelect(2, false);
    auto window = Painted();
    const CadWorld before = View().World;
    const std::string file = (std::filesystem::temp_directory_path() / "bvx_export_test.bmp").string();
    for (int16_t bits : {1, 4, 24, 0, -8, 16, -16}) {
        std::filesystem::remove(file);
        ASSERT_TRUE(control.ImageToBitmap(Name(file), 101, 101, bits, 0)) << bits;
        auto source = FileSource::Open(file);
        ASSERT_TRUE(source);
        DibPtr dib = DibReadBlock(*source, false);
        ASSERT_TRUE(dib) << bits;
        const int expectedBits = bits == 1 || bits == 4 || bits == 24 ? bits : 8;
        EXPECT_EQ(DibBitCount(*dib), expectedBits);
        RasterDeviceContext read(CreateBitmap(101, 101));
        DibPaint(read, {0, 0, 101, 101}, *dib, {0, 0, 101, 101}, nullptr);
        int wrong = 0;
        for (int32_t y = 0; y < 101; ++y)
            for (int32_t x = 0; x < 101; ++x)
                wrong += (bits == 1 ? read.GetPixel(x, y) != (window->GetPixel(x, y) == kWhite ? kWhite : 0u)
                                    : read.GetPixel(x, y) != window->GetPixel(x, y));
        EXPECT_EQ(wrong, 0) << bits << " bits";
        EXPECT_EQ(View().World.WorldLeft, before.WorldLeft);
        EXPECT_EQ(View().World.WorldBottom, before.WorldBottom);
        EXPECT_EQ(View().World.ClientRect, before.ClientRect);
    }
    for (int16_t refused : {-1, -4, -24}) {
        std::filesystem::remove(file);
        EXPECT_FALSE(control.ImageToBitmap(Name(file), 101, 101, refused, 0));
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    EXPECT_FALSE(control.ImageToBitmap(u"", 101, 101, 0, 0));
    EXPECT_FALSE(control.ImageToBitmap(Name(file), 0, 101, 0, 0));
    std::filesystem::remove(file);
}

// At twice the screen's resolution a one-pixel pen draws two pixels wide.
TEST_F(Pictures, AnExportAtAHigherResolutionWidensThePens)
{
    control.DrawLine(50, 10, 50, 90, 1);
    const std::string file = (std::filesystem::temp_directory_path() / "bvx_dpi_test.bmp").string();
    for (int16_t dpi : {0, 96, 192, 288}) {
        ASSERT_TRUE(control.ImageToBitmap(Name(file), 101, 101, 24, dpi));
        auto source = FileSource::Open(file);
        DibPtr dib = DibReadBlock(*source, false);
        ASSERT_TRUE(dib);
        RasterDeviceContext read(CreateBitmap(101, 101));
        DibPaint(read, {0, 0, 101, 101}, *dib, {0, 0, 101, 101}, nullptr);
        int inked = 0;
        for (int32_t x = 0; x < 101; ++x) inked += read.GetPixel(x, 50) != kWhite;
        EXPECT_EQ(inked, dpi <= 96 ? 1 : dpi / 96) << dpi << " dpi";
    }
    std::filesystem::remove(file);
}

// A one-pixel bitmap tiled over a box millions of pixels wide is drawn
// where it shows, and no further.
TEST_F(Pictures, ATinyTileOverAHugeBoxFillsTheWindow)
{
    const int32_t n = control.ShapeAdd(bvxPicture, 1);
    control.ShapePointSet(n, 0, -1e7, 1e7);
    control.ShapePointSet(n, 1, 1e7, -1e7);
    control.ImageOpenBitmap(int16_t(n), Name(kPictures + "one_by_one.bmp"), 1, 0);
    auto dc = Painted();
    EXPECT_EQ(dc->GetPixel(0, 0), MakeRgb(10, 20, 30));
    EXPECT_EQ(dc->GetPixel(100, 100), MakeRgb(10, 20, 30));
}

} // namespace
} // namespace bvx::shapetest
