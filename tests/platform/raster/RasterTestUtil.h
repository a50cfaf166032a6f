// Helpers for the raster device's tests: surfaces, ASCII pictures, pixel sets.
#pragma once

#include "platform/raster/RasterDeviceContext.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace bvx::test {

struct Surface {
    BitmapHandle bitmap;
    RasterDeviceContext dc;
    explicit Surface(int32_t w = 16, int32_t h = 16, ColorRef fill = kWhite) : bitmap(CreateBitmap(w, h)), dc(bitmap)
    {
        for (uint32_t& p : bitmap->Pixels()) p = fill;
    }
    // One character a pixel: '.' white, '#' black, 'o' anything else.
    std::vector<std::string> Ascii() const
    {
        std::vector<std::string> rows;
        for (int32_t y = 0; y < bitmap->Height(); ++y) {
            std::string row;
            for (int32_t x = 0; x < bitmap->Width(); ++x) {
                const uint32_t p = bitmap->Pixel(x, y);
                row += p == kWhite ? '.' : p == kBlack ? '#' : 'o';
            }
            rows.push_back(row);
        }
        return rows;
    }
    // The pixels that are not `background`.
    std::set<std::pair<int32_t, int32_t>> Marked(ColorRef background = kWhite) const
    {
        std::set<std::pair<int32_t, int32_t>> s;
        for (int32_t y = 0; y < bitmap->Height(); ++y)
            for (int32_t x = 0; x < bitmap->Width(); ++x)
                if (bitmap->Pixel(x, y) != background) s.insert({x, y});
        return s;
    }
};

inline std::string Joined(const std::vector<std::string>& rows)
{
    std::string s = "\n";
    for (const std::string& r : rows) s += r + "\n";
    return s;
}

} // namespace bvx::test
