// World-space value types shared by the shapes, the buffer and the view.
#pragma once

#include "platform/Geometry.h"

#include <array>

namespace bvx {

// Angle units as the interface has always converted them: degrees to
// radians with a short constant rather than pi/180 to full precision, and
// tenths of a degree (arrow heads) with a shorter one still.
constexpr double kDegreesToRadians = 0.01745329252;
constexpr double kRadiansToDegrees = 57.29577951308232;
constexpr double kTenthDegreesToRadians = 0.001745329;

struct WorldPoint {
    double x = 0;
    double y = 0;
    friend bool operator==(const WorldPoint&, const WorldPoint&) = default;
};

// Not ordered unless a function says so.
struct WorldRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

// Row-vector convention: x' = m[0]x + m[3]y + m[6], y' = m[1]x + m[4]y + m[7];
// the third column is carried but never read.
struct Matrix3 {
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};


    WorldPoint Apply(const WorldPoint& p) const
    {
        return {m[0] * p.x + m[3] * p.y + m[6], m[1] * p.x + m[4] * p.y + m[7]};
    }

    // This matrix followed by `next`: the product applies this one first.
    Matrix3 Then(const Matrix3& next) const
    {
        Matrix3 r;
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col)
                r.m[row * 3 + col] = m[row * 3] * next.m[col] + m[row * 3 + 1] * next.m[3 + col] +
                                     m[row * 3 + 2] * next.m[6 + col];
        return r;
    }
};

} // namespace bvx
