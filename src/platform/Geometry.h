// Small device-space value types shared by every layer.
#pragma once

#include <algorithm>
#include <cstdint>

namespace bvx {

struct DevicePoint {
    int32_t x = 0;
    int32_t y = 0;
    friend bool operator==(const DevicePoint&, const DevicePoint&) = default;
};

// Left and top inclusive, right and bottom exclusive, as the platform's RECT.
struct DeviceRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    friend bool operator==(const DeviceRect&, const DeviceRect&) = default;

    int64_t Width() const { return int64_t(right) - left; }
    int64_t Height() const { return int64_t(bottom) - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool Contains(int32_t x, int32_t y) const { return x >= left && x < right && y >= top && y < bottom; }

    DeviceRect Normalized() const
    {
        return {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
    }
    DeviceRect Intersected(const DeviceRect& o) const
    {
        DeviceRect r{std::max(left, o.left), std::max(top, o.top), std::min(right, o.right), std::min(bottom, o.bottom)};
        return r.IsEmpty() ? DeviceRect{} : r;
    }
    // Union ignoring empty operands, as UnionRect does.
    DeviceRect United(const DeviceRect& o) const
    {
        if (IsEmpty()) return o.IsEmpty() ? DeviceRect{} : o;
        if (o.IsEmpty()) return *this;
        return {std::min(left, o.left), std::min(top, o.top), std::max(right, o.right), std::max(bottom, o.bottom)};
    }
};

} // namespace bvx
