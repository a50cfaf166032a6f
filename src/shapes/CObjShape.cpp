#include "CObjShape.h"

#include "world/CadWorld.h"
#include "world/Rounding.h"
#include "ShapeContext.h"
#include "platform/DeviceContext.h"
#include "platform/raster/WideMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bvx {

namespace {
constexpr double kTiny = 1e-7;
constexpr double kTwoPi = 2 * std::numbers::pi;
constexpr double kFullTurnLimit = 6.2831854071795865;
constexpr int32_t kHandleHalf = 3;
} // namespace

WorldPoint CObjShape::GetHandlePoint(int32_t, const ShapeContext&) const { return {}; }

int16_t CObjShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    int16_t role = PointerRole::MoveFree;
    if (handle == 1 || handle == 3 || handle == 5 || handle == 7 || handle == 55)
        role = PointerRole::SizeCorner;
    else if (handle == 2 || handle == 6)
        role = PointerRole::SizeVertical;
    else if (handle == 4 || handle == 8)
        role = PointerRole::SizeHorizontal;
    return size_t(role) < pointers.size() ? pointers[size_t(role)] : role;
}

WorldPoint CObjShape::GetPoint(int16_t, const ShapeContext&) const { return {}; }
int16_t CObjShape::GetPointKind(int16_t) const { return 1; }
int16_t CObjShape::HandleToPoint(int32_t) const { return -1; }
bool CObjShape::SetPoint(int16_t, double, double, ShapeContext*) { return false; }
void CObjShape::Transform(const Matrix3&, ShapeContext&) {}
void CObjShape::Move(const WorldPoint&, ShapeContext&) {}
void CObjShape::MoveHandle(int32_t, WorldPoint, ShapeContext&) {}
void CObjShape::UpdateBounds(const ShapeContext&) {}
WorldRect CObjShape::GetWorldBounds(const ShapeContext&) const { return {}; }
bool CObjShape::ConvertTo(int16_t, CObjShape*, int16_t, double, ShapeContext*) const { return false; }
void CObjShape::Draw(DeviceContext&, const DeviceRect&, ShapeContext&, int32_t) {}
int32_t CObjShape::HitTest(DevicePoint, ShapeContext&) { return 0; }
int32_t CObjShape::HandleFromPoint(DevicePoint, ShapeContext&) const { return 0; }
int16_t CObjShape::NearestPoint(DevicePoint, ShapeContext&) const { return -1; }

DeviceRect CObjShape::HandleBox(int32_t handle, const ShapeContext& view) const
{
    DevicePoint d = view.World.WorldToDevice(GetHandlePoint(handle, view));
    return {WrapToInt32(double(d.x) - kHandleHalf), WrapToInt32(double(d.y) - kHandleHalf),
            WrapToInt32(double(d.x) + kHandleHalf), WrapToInt32(double(d.y) + kHandleHalf)};
}

void CObjShape::DrawHandles(DeviceContext& dc, uint32_t rop, ShapeContext& view)
{
    if (!view.ShowTracker()) return;
    for (int32_t h = 1; h <= GetHandleCount(); ++h) {
        DeviceRect box = HandleBox(h, view);
        int32_t w = int32_t(box.Width()), height = int32_t(box.Height());
        dc.PatBlt(box.left, box.top, w, height, RasterOp::Blackness);
        dc.PatBlt(box.left + 1, box.top + 1, w - 2, height - 2, rop);
    }
}

int32_t CObjShape::HitHandle(DevicePoint p, int32_t trackerMode, const ShapeContext& view) const
{
    if (trackerMode == 0) {
        // The y test reads bounds in the y-up sense; kept as it always was.
        return p.x >= Bounds.left && p.x < Bounds.right && p.y <= Bounds.top && p.y > Bounds.bottom ? 1 : 0;
    }
    if (!PtInRect(InflatedRect(BoundsAsRect(), kHandleHalf, kHandleHalf), p)) return 0;
    for (int32_t h = 1; h <= GetHandleCount(); ++h) {
        if (!PtInRect(HandleBox(h, view), p)) continue;
        int16_t type = GetShapeType();
        // An arc's first handle carries the whole shape.
        return h == 1 && (type == bvxArc || type == bvxPieSlice || type == bvxChord) ? 9 : h;
    }
    return 0;
}

bool CObjShape::IntersectsRect(const DeviceRect& rect, const ShapeContext&) const
{
    return !BoundsAsRect().Intersected(rect).IsEmpty();
}

std::unique_ptr<CObjShape> CObjShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CObjShape>();
    CopyBaseTo(*copy);
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

void CObjShape::SetShapeType(uint8_t typeByte, int16_t method)
{
    TypeFlags = typeByte;
    SetSearchMethod(method);
}

void CObjShape::SetSearchMethod(int16_t method)
{
    TypeFlags = method == 1 ? uint8_t((TypeFlags & 63) | 128) : uint8_t(TypeFlags % 64);
}

void CObjShape::StoreBounds(const DeviceRect& rect)
{
    DeviceRect r = OrderedRect(rect);
    Bounds = {int16_t(r.left), int16_t(r.top), int16_t(r.right), int16_t(r.bottom)};
    if (Bounds.left == Bounds.right) Bounds.right = int16_t(Bounds.left + 1);
    if (Bounds.top == Bounds.bottom) Bounds.bottom = int16_t(Bounds.top + 1);
}

void CObjShape::CopyBaseTo(CObjShape& target) const
{
    target.TypeFlags = TypeFlags;
    target.Notes = Notes;
    target.Bounds = Bounds;
    target.Layer = Layer;
    target.Number = -1;
    target.Group = -1;
    target.Attr.reset();
}

void CObjShape::CopyAttrIf(const CObjShape& from, CObjShape& to, int16_t withAttr)
{
    if (withAttr == 1 && from.Attr) to.Attr = *from.Attr;
}

void ApplyMatrix(const Matrix3& matrix, WorldPoint& point) { point = matrix.Apply(point); }

double Distance(const WorldPoint& p, const WorldPoint& q)
{
    double dx = q.x - p.x, dy = q.y - p.y;
    return std::sqrt(dx * dx + dy * dy);
}

double WorldAngle(const CadWorld& world, const WorldPoint& from, const WorldPoint& to)
{
    double a = std::atan2(to.y - from.y, to.x - from.x);
    if (world.SignX == -1) {
        a = std::numbers::pi - a;
        if (a > kTwoPi) a -= kTwoPi;
    } else if (a < 0) {
        a = a + std::numbers::pi + std::numbers::pi;
    }
    if (world.SignY == 1) {
        a = -a;
        if (a < 0) a += kTwoPi;
    }
    if (a <= kTiny || a >= kFullTurnLimit) return 0;
    return a;
}

bool IsOnAxis(const WorldPoint& p, const WorldPoint& q)
{
    double dx = p.x - q.x, dy = p.y - q.y;
    if (std::fabs(dx) <= kTiny || std::fabs(dy) <= kTiny) return true;
    return std::fabs(1 - std::fabs(dy / dx)) <= kTiny;
}

double AngleReadout(const CadWorld& world, double radians, const WorldPoint& p, const WorldPoint& q)
{
    if (world.AngleMode != 1) return radians;
    double degrees = radians * kRadiansToDegrees;
    return IsOnAxis(p, q) ? std::floor(degrees) : degrees;
}

bool HitSegment(DevicePoint a, DevicePoint b, DevicePoint point, int32_t mode)
{
    // Wide arithmetic throughout: device points may lie anywhere in 32 bits.
    if (a.x > b.x) std::swap(a, b);
    const int64_t px = point.x, py = point.y, ax = a.x, ay = a.y, bx = b.x, by = b.y;
    const int64_t lo = std::min(ay, by), hi = std::max(ay, by);
    const int64_t dx = bx - ax, dy = hi - lo;
    // MulDiv's rounding on a wide product, so that no span of 32-bit ends overflows.
    auto mulDiv = [](int64_t x, int64_t y, int64_t z) -> int64_t {
        const raster::Int128 product = raster::Int128(x) * y;
        const raster::Int128 half = z / 2;
        return int64_t(product >= 0 ? (product + half) / z : (product - half) / z);
    };
    auto crossing = [&] {
        int64_t off = mulDiv(dx + 1, hi - py, dy + 1);
        return ay != hi ? bx - off : ax + off;
    };
    if (mode == 1) {
        if (!(lo <= py && py <= hi - 1)) return false;
        return px > crossing();
    }
    if (px < ax - 3 || px > bx + 3 || py < lo - 3 || py > hi + 3) return false;
    if (dx == 0) return py >= lo && py <= hi;
    if (dy == 0) return px >= ax && px <= bx && py >= lo - 3 && py <= hi + 3;
    if (dy >= dx) {
        int64_t xc = crossing();
        if (xc < px - 3 || xc > px + 3) return false;
        return py >= lo && py <= hi;
    }
    int64_t off = ay >= by ? mulDiv(dy + 1, px - ax + 1, dx + 1) : mulDiv(dy + 1, bx - px, dx + 1);
    if (hi - off < py - 3 || hi - off > py + 3) return false;
    return px >= ax && px <= bx;
}

DeviceRect OrderedRect(DeviceRect r)
{
    if (r.left > r.right) std::swap(r.left, r.right);
    if (r.top > r.bottom) std::swap(r.top, r.bottom);
    return r;
}

DeviceRect InflatedRect(const DeviceRect& r, int32_t dx, int32_t dy)
{
    auto add = [](int32_t v, int32_t d) { return WrapToInt32(double(v) + d); };
    return {add(r.left, -dx), add(r.top, -dy), add(r.right, dx), add(r.bottom, dy)};
}

bool PtInRect(const DeviceRect& r, DevicePoint p) { return r.Contains(p.x, p.y); }

} // namespace bvx
