// The GDI device (Windows builds): packed bitmaps of every header form reach
// GDI with their pixels where the parse finds them, so that GDI paints what
// the raster device paints. A bit-field bitmap once lost its masks here and
// was painted from twelve bytes too early.
#ifdef _WIN32

#include "platform/DibFormat.h"
#include "platform/raster/RasterDeviceContext.h"
#include "platform/win32/GdiDeviceContext.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using Bytes = std::vector<uint8_t>;

// A 2x2 bitmap: a long header of `headerSize` bytes, then `rest`.
Bytes Packed(uint32_t headerSize, uint16_t bitCount, DibCompression compression, const Bytes& rest)
{
    DibInfoHeader header;
    header.size = headerSize;
    header.width = 2;
    header.height = 2;
    header.bitCount = bitCount;
    header.compression = uint32_t(compression);
    Bytes bytes(headerSize);
    StoreDibInfoHeader(header, bytes.data());
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

const Bytes k565{0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0, 0x1F, 0, 0, 0};
const Bytes k565AndPixels{0x00, 0xF8, 0, 0, 0xE0, 0x07, 0, 0,    0x1F, 0,    0,    0,
                          0x1F, 0x00, 0xE0, 0x07, 0x00, 0xF8, 0xFF, 0xFF};
constexpr ColorRef kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000;
// Bottom row blue, green; top row red, white.
const Bytes k565Pixels{0x1F, 0x00, 0xE0, 0x07, 0x00, 0xF8, 0xFF, 0xFF};

struct GdiCase {
    const char* name;
    Bytes packed;
    ColorRef topLeft, bottomRight;
};

void PrintTo(const GdiCase& c, std::ostream* os) { *os << c.name; }

class GdiDevicePaints : public testing::TestWithParam<GdiCase> {};

TEST_P(GdiDevicePaints, AsTheRasterDevice)
{
    const Bytes& packed = GetParam().packed;
    GdiDibSurface gdi(8, 6);
    ASSERT_TRUE(gdi.IsValid());
    const BitmapHandle raster = CreateBitmap(8, 6);
    RasterDeviceContext dc(raster);
    for (DeviceContext* device : {&gdi.Context(), static_cast<DeviceContext*>(&dc)}) {
        device->PatBlt(0, 0, 8, 6, RasterOp::Whiteness);
        EXPECT_EQ(device->SetDIBitsToDevice(1, 1, 2, 2, 0, 0, packed), 2);
        EXPECT_EQ(device->StretchDIBits(4, 0, 4, 6, 0, 0, 2, 2, packed, RasterOp::SrcCopy), 2);
    }
    const BitmapHandle painted = gdi.ToBitmap();
    ASSERT_TRUE(painted);
    EXPECT_EQ(painted->Pixel(1, 1), GetParam().topLeft);
    EXPECT_EQ(painted->Pixel(2, 2), GetParam().bottomRight);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(painted->Pixel(x, y), raster->Pixel(x, y)) << x << "," << y;
}

INSTANTIATE_TEST_SUITE_P(
    Table, GdiDevicePaints,
    testing::Values(GdiCase{"bit fields after a short header",
                            Packed(40, 16, DibCompression::Bitfields, k565AndPixels), kRed, kGreen},
                    GdiCase{"bit fields inside a v4 header", [] {
                                Bytes b = Packed(108, 16, DibCompression::Bitfields, k565Pixels);
                                std::copy(k565.begin(), k565.end(), b.begin() + 40);
                                return b;
                            }(),
                            kRed, kGreen},
                    GdiCase{"colour table after a v5 header",
                            Packed(124, 1, DibCompression::Rgb,
                                   {0xFF, 0, 0, 0, 0, 0, 0xFF, 0, 0x80, 0, 0, 0, 0x40, 0, 0, 0}),
                            kBlue, kBlue}));

TEST(GdiDevice, RefusesWhatTheParseRefuses)
{
    GdiDibSurface gdi(4, 4);
    Bytes unknown = Packed(40, 16, DibCompression::Bitfields, k565AndPixels);
    StoreLe32(unknown.data(), 64);
    EXPECT_EQ(gdi.Context().SetDIBitsToDevice(0, 0, 2, 2, 0, 0, unknown), 0);
    const Bytes cut = Packed(40, 16, DibCompression::Bitfields, k565);
    EXPECT_EQ(gdi.Context().StretchDIBits(0, 0, 2, 2, 0, 0, 2, 2, cut, RasterOp::SrcCopy), 0);
}

} // namespace
} // namespace bvx

#endif
