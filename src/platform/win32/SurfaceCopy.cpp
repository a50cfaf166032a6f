#include "SurfaceCopy.h"

#include <algorithm>
#include <cstdint>

namespace bvx::win32 {

namespace {

// A top-down header for rows of `width` pixels; with bit fields, masks that
// put red in the low byte, as a COLORREF holds it.
struct DibHeader {
    BITMAPINFOHEADER header{};
    DWORD masks[3]{};

    DibHeader(int32_t width, int32_t rows, bool bitFields)
    {
        header.biSize = sizeof(BITMAPINFOHEADER);
        header.biWidth = width;
        header.biHeight = -rows;
        header.biPlanes = 1;
        header.biBitCount = 32;
        header.biCompression = bitFields ? BI_BITFIELDS : BI_RGB;
        if (bitFields) {
            masks[0] = 0x000000FF;
            masks[1] = 0x0000FF00;
            masks[2] = 0x00FF0000;
        }
    }
    const BITMAPINFO* Info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

} // namespace

bool SurfaceCopy::Copy(HDC dc, const Bitmap& surface, DeviceRect area, DevicePoint to)
{
    const DeviceRect whole{0, 0, surface.Width(), surface.Height()};
    const DeviceRect clipped = area.Intersected(whole);
    if (!dc || clipped.IsEmpty()) return false;
    // Shifted by what the clip cut off, in 64 bits: an area starting far left
    // of the surface overflows 32. A destination reaching past the last
    // coordinate is on no device, and GDI's own sums would overflow.
    const int64_t x = int64_t(to.x) + (int64_t(clipped.left) - area.left);
    const int64_t y = int64_t(to.y) + (int64_t(clipped.top) - area.top);
    if (x + clipped.Width() > INT32_MAX || y + clipped.Height() > INT32_MAX) return false;
    to = {int32_t(x), int32_t(y)};
    switch (path_) {
    case Path::BitFields: return CopyDescribed(dc, surface, clipped, to, true);
    case Path::Swapped: return CopySwapped(dc, surface, clipped, to);
    case Path::Raw: return CopyDescribed(dc, surface, clipped, to, false);
    case Path::Undecided: break;
    }
    if (CopyDescribed(dc, surface, clipped, to, true)) return true;
    path_ = Path::Swapped;
    return CopySwapped(dc, surface, clipped, to);
}

bool SurfaceCopy::CopyDescribed(HDC dc, const Bitmap& surface, const DeviceRect& area, DevicePoint to, bool bitFields)
{
    // The header describes exactly the area's rows, at the surface's stride,
    // so the source is the whole block and no start row needs reckoning.
    const int32_t width = int32_t(area.Width());
    const int32_t height = int32_t(area.Height());
    const DibHeader header(surface.Width(), height, bitFields);
    const int32_t copied = SetDIBitsToDevice(dc, to.x, to.y, DWORD(width), DWORD(height), area.left, 0, 0,
                                             UINT(height), surface.Row(area.top).data(), header.Info(), DIB_RGB_COLORS);
    return copied > 0;
}

const uint32_t* SurfaceCopy::Swapped(const Bitmap& surface, const DeviceRect& area)
{
    const int32_t width = int32_t(area.Width());
    scratch_.resize(size_t(width) * size_t(area.Height()));
    uint32_t* out = scratch_.data();
    for (int32_t y = area.top; y < area.bottom; ++y) {
        const uint32_t* in = surface.Row(y).data() + area.left;
        for (int32_t x = 0; x < width; ++x) {
            const uint32_t c = in[x];
            *out++ = ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
        }
    }
    return scratch_.data();
}

bool SurfaceCopy::CopySwapped(HDC dc, const Bitmap& surface, const DeviceRect& area, DevicePoint to)
{
    const int32_t width = int32_t(area.Width());
    const int32_t height = int32_t(area.Height());
    const uint32_t* pixels = Swapped(surface, area);
    const DibHeader header(width, height, false);
    return SetDIBitsToDevice(dc, to.x, to.y, DWORD(width), DWORD(height), 0, 0, 0, UINT(height), pixels,
                             header.Info(), DIB_RGB_COLORS) > 0;
}

bool SurfaceCopy::Stretch(HDC dc, const Bitmap& surface, const RECT& to)
{
    if (!dc || surface.Width() <= 0 || surface.Height() <= 0) return false;
    const uint32_t* pixels = Swapped(surface, {0, 0, surface.Width(), surface.Height()});
    const DibHeader header(surface.Width(), surface.Height(), false);
    // Shrinking keeps colours rather than blending them into black or white.
    const int previousMode = SetStretchBltMode(dc, COLORONCOLOR);
    const int copied = StretchDIBits(dc, to.left, to.top, to.right - to.left, to.bottom - to.top, 0, 0, surface.Width(),
                                     surface.Height(), pixels, header.Info(), DIB_RGB_COLORS, SRCCOPY);
    if (previousMode) SetStretchBltMode(dc, previousMode);
    return copied > 0;
}

} // namespace bvx::win32
