// The raster surface shown on a platform device context. Our pixels are
// COLORREFs (red in the low byte), the reverse of a plain 32-bit DIB. GDI can
// be told so with bit-field masks, but it then converts pixel by pixel
// itself, and under Wine that costs four times our own swap of the copied
// rows into a scratch buffer (bench/win32), so the swap is the default.
#pragma once

#include "platform/GdiObjects.h"
#include "platform/Geometry.h"

#include <windows.h>

#include <cstdint>
#include <vector>

namespace bvx::win32 {

class SurfaceCopy {
public:
    enum class Path : uint8_t {
        Undecided, // bit fields, falling back to the swap for good when refused
        BitFields, // only bit fields
        Swapped,   // only the swap: the fastest we measured
        Raw,       // the bytes as they are, colours wrong: the baseline that benchmarks compare with
    };

    explicit SurfaceCopy(Path path = Path::Swapped) : path_(path) {}

    // The part `area` of the surface (clipped to it) to the device context,
    // its top left corner at `to`; false if nothing could be copied.
    bool Copy(HDC dc, const Bitmap& surface, DeviceRect area, DevicePoint to);
    // The whole surface onto a rectangle in the context's logical units, so
    // that a mapping mode scales it (a print preview); with none it gives
    // the pixels Copy gives. Always by the swap.
    bool Stretch(HDC dc, const Bitmap& surface, const RECT& to);
    Path CurrentPath() const { return path_; }

private:
    // The area's pixels in the platform's order, in the scratch buffer.
    const uint32_t* Swapped(const Bitmap& surface, const DeviceRect& area);
    bool CopyDescribed(HDC dc, const Bitmap& surface, const DeviceRect& area, DevicePoint to, bool bitFields);
    bool CopySwapped(HDC dc, const Bitmap& surface, const DeviceRect& area, DevicePoint to);

    Path path_;
    std::vector<uint32_t> scratch_;
};

} // namespace bvx::win32
