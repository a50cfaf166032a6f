#include "CEllipseShape.h"

#include "CRectShape.h"
#include "buffer/CadWorld.h"
#include "buffer/Rounding.h"
#include "control/CadView.h"
#include "platform/DeviceContext.h"
#include "platform/Region.h"

#include <cmath>

namespace bvx {

namespace {
constexpr int32_t kInnerDeflate = 6;
constexpr int32_t kBorderTolerance = 3;
// Pointer roles: top and bottom handles, left and right handles, the centre.
constexpr int16_t kRoleVertical = 3;
constexpr int16_t kRoleHorizontal = 4;
constexpr int16_t kRoleCentre = 9;
} // namespace

CEllipseShape::CEllipseShape() { SetShapeType(bvxEllipse, 0); }

CEllipseShape::CEllipseShape(const WorldPoint& c) : CEllipseShape() { centre = c; }

WorldPoint CEllipseShape::GetHandlePoint(int32_t handle, const CadWorld&) const
{
    switch (handle) {
    case 1: return {centre.x, centre.y + radiusY};
    case 2: return {centre.x + radiusX, centre.y};
    case 3: return {centre.x, centre.y - radiusY};
    case 4: return {centre.x - radiusX, centre.y};
    case 5: return centre;
    default: return {};
    }
}

int16_t CEllipseShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    int16_t role = handle == 1 || handle == 3 ? kRoleVertical : handle == 2 || handle == 4 ? kRoleHorizontal : kRoleCentre;
    return size_t(role) < pointers.size() ? pointers[size_t(role)] : role;
}

WorldPoint CEllipseShape::GetPoint(int16_t index, const CadView&) const
{
    if (index == 0) return centre;
    if (index == 1) return {radiusX, radiusY};
    return {};
}

int16_t CEllipseShape::HandleToPoint(int32_t handle) const
{
    if (handle < 1 || handle > 5) return -1;
    return handle == 5 ? 0 : 1;
}

bool CEllipseShape::SetPoint(int16_t index, double x, double y, CadView* view)
{
    if (index == 0) {
        centre = {x, y};
    } else if (index == 1) {
        radiusX = x;
        radiusY = IsCircle() ? x : y;
    } else {
        return false;
    }
    if (view) UpdateBounds(view->World);
    return true;
}

void CEllipseShape::Transform(const Matrix3& matrix, CadView& view)
{
    ApplyMatrix(matrix, centre);
    // A circle keeps its radius under every transform.
    if (GetShapeType() == bvxEllipse) {
        radiusX *= std::fabs(matrix.m[0]);
        radiusY *= std::fabs(matrix.m[4]);
    }
    UpdateBounds(view.World);
}

double CEllipseShape::GetArea() const
{
    if (IsCircle()) return std::pow(radiusX, 2.0) * 3.141592653589793;
    if (GetShapeType() == bvxEllipse) return radiusY * radiusX * 3.141592653589793;
    return 0.0;
}

void CEllipseShape::Draw(DeviceContext& dc, const DeviceRect& clip, CadView& view, int32_t)
{
    UpdateBounds(view.World);
    DeviceRect r = BoundsAsRect();
    r.right = WrapToInt32(double(r.right) + 1);
    r.bottom = WrapToInt32(double(r.bottom) + 1);
    if (r.Intersected(clip).IsEmpty()) return;
    if (radiusY == 0) {
        // Flat: a dot or a one-pixel line through the centre.
        int32_t y = view.World.WorldToDevice(centre).y;
        dc.MoveToEx(r.left, y);
        dc.LineTo(r.right, y);
        return;
    }
    dc.Ellipse(r.left, r.top, r.right, r.bottom);
}

void CEllipseShape::Move(const WorldPoint& delta, CadView& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    centre = {centre.x + delta.x, centre.y + delta.y};
    UpdateBounds(view.World);
}

int32_t CEllipseShape::HitTest(DevicePoint point, CadView&)
{
    const int16_t method = GetSearchMethod();
    DeviceRect r = OrderedRect(BoundsAsRect());
    if (method == kSearchOnBorder) r = InflatedRect(r, kBorderTolerance, kBorderTolerance);
    r.right = WrapToInt32(double(r.right) + 1);
    r.bottom = WrapToInt32(double(r.bottom) + 1);
    if (!PtInRect(r, point)) return 0;
    bool inside = CreateEllipticRgn(r.left, r.top, r.right, r.bottom).PtInRegion(point.x, point.y);
    if (method == kSearchInShape || !inside) return inside;
    DeviceRect inner = InflatedRect(r, -kInnerDeflate, -kInnerDeflate);
    return !CreateEllipticRgn(inner.left, inner.top, inner.right, inner.bottom).PtInRegion(point.x, point.y);
}

void CEllipseShape::MoveHandle(int32_t handle, WorldPoint point, CadView& view)
{
    view.InvalidateShape(this, false);
    if (handle == 5) {
        centre = point;
    } else {
        if (IsCircle()) {
            radiusX = radiusY = Distance(point, centre);
        } else if (GetShapeType() == bvxEllipse) {
            if (handle == 1 || handle == 3) radiusY = std::fabs(centre.y - point.y);
            if (handle == 2 || handle == 4) radiusX = std::fabs(centre.x - point.x);
        }
        view.Fire<&EventSink::DrawRadius>(radiusX, radiusY);
    }
    UpdateBounds(view.World);
}

std::unique_ptr<CObjShape> CEllipseShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CEllipseShape>();
    CopyBaseTo(*copy);
    copy->centre = centre;
    copy->radiusX = radiusX;
    copy->radiusY = radiusY;
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

int32_t CEllipseShape::HandleFromPoint(DevicePoint point, CadView&) const
{
    static constexpr int32_t kHandleOfSum[11] = {1, 1, 2, 0, 4, 5, 2, 0, 4, 3, 3};
    return kHandleOfSum[HandleGridSum(BoundsAsRect(), point)];
}

int16_t CEllipseShape::NearestPoint(DevicePoint point, CadView& view) const
{
    return HandleToPoint(HandleFromPoint(point, view));
}

void CEllipseShape::UpdateBounds(const CadWorld& world)
{
    WorldRect b = GetWorldBounds(world);
    StoreBounds(OrderedRect(world.WorldRectToDevice({b.left, b.top}, {b.right, b.bottom})));
}

WorldRect CEllipseShape::GetWorldBounds(const CadWorld&) const
{
    return {centre.x - radiusX, centre.y - radiusY, centre.x + radiusX, centre.y + radiusY};
}

bool CEllipseShape::ConvertTo(int16_t type, CObjShape* target, int16_t, double, CadView* view) const
{
    if (!target) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (type == bvx2PointEllipse) {
        auto* rect = dynamic_cast<CRectShape*>(target);
        if (!rect) return false;
        WorldRect b = GetWorldBounds(view ? view->World : CadWorld{});
        rect->p1 = {b.left, b.top};
        rect->p2 = {b.right, b.bottom};
        return true;
    }
    if (type == bvxEllipse && IsCircle()) {
        target->SetPoint(0, centre.x, centre.y, nullptr);
        target->SetPoint(1, radiusX, radiusY, nullptr);
        return true;
    }
    return false;
}

WorldPoint PolarPoint(const WorldPoint& centre, double rx, double ry, double angle)
{
    double c = std::cos(angle), s = std::sin(angle);
    double d = ry * ry * c * c + rx * rx * s * s;
    if (d == 0) return {};
    double r = std::sqrt(rx * rx * ry * ry / d);
    return {centre.x + r * c, centre.y + r * s};
}

WorldPoint EllipsePoint(const WorldPoint& centre, double rx, double ry, double angle)
{
    return {PolarPoint(centre, rx, rx, angle).x, PolarPoint(centre, ry, ry, angle).y};
}

} // namespace bvx
