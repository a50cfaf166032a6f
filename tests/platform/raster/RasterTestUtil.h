// Helpers for the raster device's tests: surfaces and their marked pixels.
#pragma once

#include "platform/raster/RasterDeviceContext.h"

#include <set>
#include <utility>

namespace bvx::test {

struct Surface {
    BitmapHandle bitmap;
    RasterDeviceContext dc;
    explicit Surface(int32_t w = 16, int32_t h = 16, ColorRef fill = kWhite) : bitmap(CreateBitmap(w, h)), dc(bitmap)
    {
        for (uint32_t& p : bitmap->Pixels()) p = fill;
    }
    // The pixels that are not white.
    std::set<std::pair<int32_t, int32_t>> Marked() const
    {
        std::set<std::pair<int32_t, int32_t>> s;
        for (int32_t y = 0; y < bitmap->Height(); ++y)
            for (int32_t x = 0; x < bitmap->Width(); ++x)
                if (bitmap->Pixel(x, y) != kWhite) s.insert({x, y});
        return s;
    }
};

} // namespace bvx::test
