// RLE8 and RLE4 coding of colour indices as a DIB stores them: encoded runs,
// absolute runs of three or more pixels, an end of line after each row and
// an end of bitmap after the last.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace bvx {

// `indices` holds width * height values, rows top-down; the code lists the
// rows bottom-up. `bitCount` is 8 or 4 (indices below 16).
std::vector<uint8_t> EncodeDibRle(std::span<const uint8_t> indices, int32_t width, int32_t height,
                                  uint16_t bitCount);

} // namespace bvx
