#include "DibReadFuzz.h"

#include "platform/ByteStream.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"
#include "shapes/CPictShape.h"

#include <cstdlib>
#include <span>

namespace bvx::fuzz {

namespace {

constexpr int32_t kSurfaceSize = 24;

void Paint(const DibBlock& dib, const Palette& palette)
{
    RasterDeviceContext dc(CreateBitmap(kSurfaceSize, kSurfaceSize));
    const int32_t height = DibHeight(dib);
    const DeviceRect whole{0, 0, DibWidth(dib), height < 0 ? -height : height};
    DibPaint(dc, {-3, -2, whole.right - 3, whole.bottom - 2}, dib, whole, &palette);
    DibPaint(dc, {1, 2, kSurfaceSize - 1, kSurfaceSize - 3}, dib, whole, nullptr);
    DibPaint(dc, {0, 0, 7, 5}, dib, {whole.right / 3, whole.bottom / 4, whole.right / 2, whole.bottom}, nullptr);
    dc.StretchDIBits(kSurfaceSize - 1, kSurfaceSize - 1, -kSurfaceSize, -5, 0, 0, whole.right, whole.bottom,
                     dib.bytes, RasterOp::SrcCopy);
}

// The bitmap as a picture shape shows it: stretched, tiled and at its own
// size, in a box that is cut by the surface's edges.
void ShowAsPicture(const DibBlock& dib)
{
    CPictShape picture;
    picture.BindImage(0, "fuzz", std::make_shared<const DibBlock>(dib));
    RasterDeviceContext dc(CreateBitmap(kSurfaceSize, kSurfaceSize));
    for (uint16_t style : {PictStyle::Stretch, PictStyle::Tile, PictStyle::Natural}) {
        picture.Style = style;
        picture.RenderImage(dc, {-5, 3, kSurfaceSize + 4, kSurfaceSize - 2}, {0, 0, kSurfaceSize, kSurfaceSize});
    }
}

void Exercise(DibBlock& dib)
{
    volatile uint64_t sink = 0;
    sink = sink + uint64_t(DibWidth(dib)) + uint64_t(DibHeight(dib)) + DibBitCount(dib) + DibColorCount(dib) +
           DibPaletteSize(dib) + DibBits(dib).size();
    const Palette palette = DibToPalette(&dib);
    Paint(dib, palette);
    ShowAsPicture(dib);

    const DibPtr copy = DibCopy(&dib);
    if (!copy || copy->bytes != dib.bytes) std::abort();
    MemorySink written;
    if (!DibWriteBmp(dib, written)) return;
    MemorySource again(written.Bytes());
    if (!DibReadBlock(again, false)) std::abort();
}

} // namespace

int DibReadOne(const uint8_t* data, size_t size)
{
    const std::span<const uint8_t> bytes(data, size);
    for (bool sized : {false, true}) {
        MemorySource source(bytes);
        if (DibPtr dib = DibReadBlock(source, sized)) Exercise(*dib);
    }
    return 0;
}

} // namespace bvx::fuzz
