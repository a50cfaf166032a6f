#include "EllipseGeometry.h"

#include "WideMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bvx::raster {

namespace {

// A few points per sqrt(radius) keep a polygon within a fraction of a pixel
// of the curve.
void ApproximateQuadrant(int64_t width, int64_t height, std::vector<Point64>& out)
{
    const double a = double(width - 1), b = double(height - 1);
    const double r = std::max(a, b) / 2;
    const int n = int(std::clamp(std::ceil(1.2 * std::sqrt(std::max(r, 1.0))), 16.0, 200000.0));
    const int64_t xMin = width / 2, yMin = height / 2;
    for (int i = 0; i <= n; ++i) {
        const double t = (std::numbers::pi / 2) * i / n;
        int64_t x = int64_t(std::llround(a / 2 + (a / 2) * std::cos(t)));
        int64_t y = int64_t(std::llround(b / 2 + (b / 2) * std::sin(t)));
        x = std::max(x, xMin);
        y = std::max(y, yMin);
        if (!out.empty() && out.back() == Point64{x, y}) continue;
        out.push_back({x, y});
    }
}

// The first index of the quadrant list at or past the radial through (x, y)
// measured from the quadrant's start; the result counts in quadrant lengths
// over the whole turn.
int64_t FindIntersection(const std::vector<Point64>& q, int64_t count, int64_t x, int64_t y)
{
    int64_t i = 0;
    if (y >= 0) {
        if (x >= 0) {
            for (; i < count; ++i)
                if (Int128(q[i].x) * y <= Int128(q[i].y) * x) break;
            return i;
        }
        for (; i < count; ++i)
            if (Int128(q[i].x) * y < Int128(q[i].y) * -x) break;
        return 2 * count - i;
    }
    if (x >= 0) {
        for (; i < count; ++i)
            if (Int128(q[i].x) * -y <= Int128(q[i].y) * x) break;
        return 4 * count - i;
    }
    for (; i < count; ++i)
        if (Int128(q[i].x) * -y < Int128(q[i].y) * -x) break;
    return 2 * count + i;
}

} // namespace

void EllipseQuadrant(int64_t width, int64_t height, std::vector<Point64>& out)
{
    out.clear();
    if (width > kExactEllipseLimit || height > kExactEllipseLimit) {
        ApproximateQuadrant(width, height, out);
        return;
    }
    const int64_t a = width - 1, b = height - 1;
    const int64_t asq = 8 * a * a, bsq = 8 * b * b;
    int64_t dx = 4 * b * b * (1 - a);
    int64_t dy = 4 * a * a * (1 + (b % 2));
    int64_t err = dx + dy + a * a * (b % 2);
    int64_t x = a, y = height / 2;
    while (x >= width / 2) {
        const int64_t e2 = 2 * err;
        out.push_back({x, y});
        if (e2 >= dx) {
            --x;
            err += dx += bsq;
        }
        if (e2 <= dy) {
            ++y;
            err += dy += asq;
        }
    }
}

void RoundRectOutline(int64_t left, int64_t top, int64_t right, int64_t bottom, int64_t ew, int64_t eh,
                      std::vector<Point64>& out)
{
    std::vector<Point64> q;
    EllipseQuadrant(ew, eh, q);
    const size_t count = q.size();
    out.assign(count * 4, {});
    for (size_t i = 0; i < count; ++i) out[i] = {right - ew + q[i].x, top + eh - 1 - q[i].y};
    // Mirror left to right; the middle point is shared when the ellipse
    // spans the whole width and the width is odd.
    size_t end = 2 * count - 1;
    if ((ew % 2) && ew == right - left) --end;
    for (size_t i = 0; i < count; ++i) out[end - i] = {left + right - 1 - out[i].x, out[i].y};
    size_t total = end + 1;
    // Mirror top to bottom.
    end = 2 * total - 1;
    if ((eh % 2) && eh == bottom - top) --end;
    for (size_t i = 0; i < total; ++i) out[end - i] = {out[i].x, top + bottom - 1 - out[i].y};
    out.resize(end + 1);
}

void ArcOutline(int64_t left, int64_t top, int64_t right, int64_t bottom, Point64 start, Point64 end,
                std::vector<Point64>& out)
{
    const int64_t width = right - left, height = bottom - top;
    std::vector<Point64> q;
    EllipseQuadrant(width, height, q);
    const int64_t count = int64_t(q.size());
    out.clear();
    if (count == 0) return;
    for (Point64& p : q) {
        p.x -= width / 2;
        p.y -= height / 2;
    }
    // Counter-clockwise on the screen is clockwise with y flipped.
    start.y = -start.y;
    end.y = -end.y;
    const int64_t startPos = FindIntersection(q, count, start.x, start.y);
    int64_t endPos = FindIntersection(q, count, end.x, end.y);
    if (endPos <= startPos) endPos += 4 * count;
    out.reserve(size_t(endPos - startPos));
    for (int64_t i = startPos; i < endPos; ++i) {
        const int64_t k = i % count;
        const Point64& fwd = q[size_t(k)];
        const Point64& rev = q[size_t(count - 1 - k)];
        switch ((i / count) % 4) {
        case 0: out.push_back({left + width / 2 + fwd.x, bottom - 1 - height / 2 - fwd.y}); break;
        case 1: out.push_back({right - 1 - width / 2 - rev.x, bottom - 1 - height / 2 - rev.y}); break;
        case 2: out.push_back({right - 1 - width / 2 - fwd.x, top + height / 2 + fwd.y}); break;
        default: out.push_back({left + width / 2 + rev.x, top + height / 2 + rev.y}); break;
        }
    }
}

void RoundRectScanner::ComputeInsets(int64_t ew, int64_t eh)
{
    // Rows the walk never reaches (narrow corners) stay empty, as the
    // platform's zero-filled rows do.
    constexpr int64_t kUnset = int64_t(1) << 40;
    insets_.assign(size_t(eh), kUnset);
    insets_[size_t(eh / 2)] = 0;
    const int64_t a = ew - 1, b = eh - 1;
    const int64_t asq = 8 * a * a, bsq = 8 * b * b;
    int64_t dx = 4 * b * b * (1 - a);
    int64_t dy = 4 * a * a * (1 + (b % 2));
    int64_t err = dx + dy + a * a * (b % 2);
    int64_t x = 0, y = eh / 2;
    while (x <= ew / 2) {
        const int64_t e2 = 2 * err;
        if (e2 >= dx) {
            ++x;
            err += dx += bsq;
        }
        if (e2 <= dy) {
            ++y;
            err += dy += asq;
            if (y <= b) insets_[size_t(y)] = x;
        }
    }
    for (int64_t i = 0; i < eh / 2; ++i) insets_[size_t(i)] = insets_[size_t(b - i)];
}

} // namespace bvx::raster
