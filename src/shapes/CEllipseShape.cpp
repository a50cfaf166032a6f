#include "CEllipseShape.h"

#include "CPolyShape.h"
#include "CRectShape.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"
#include "ShapeContext.h"
#include "platform/DeviceContext.h"
#include "platform/Region.h"

#include <cmath>

namespace bvx {

namespace {
constexpr int32_t kInnerDeflate = 6;
constexpr int32_t kBorderTolerance = 3;
} // namespace

CEllipseShape::CEllipseShape() { SetShapeType(bvxEllipse, 0); }

CEllipseShape::CEllipseShape(const WorldPoint& c) : CEllipseShape() { Centre = c; }

WorldPoint CEllipseShape::GetHandlePoint(int32_t handle, const ShapeContext&) const
{
    switch (handle) {
    case 1: return {Centre.x, Centre.y + RadiusY};
    case 2: return {Centre.x + RadiusX, Centre.y};
    case 3: return {Centre.x, Centre.y - RadiusY};
    case 4: return {Centre.x - RadiusX, Centre.y};
    case 5: return Centre;
    default: return {};
    }
}

int16_t CEllipseShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    // The centre moves the shape; it has always shown the pointer of role 9.
    int16_t role = handle == 1 || handle == 3   ? PointerRole::SizeVertical
                   : handle == 2 || handle == 4 ? PointerRole::SizeHorizontal
                                                : PointerRole::MoveHorizontal;
    return size_t(role) < pointers.size() ? pointers[size_t(role)] : role;
}

WorldPoint CEllipseShape::GetPoint(int16_t index, const ShapeContext&) const
{
    if (index == 0) return Centre;
    if (index == 1) return {RadiusX, RadiusY};
    return {};
}

int16_t CEllipseShape::HandleToPoint(int32_t handle) const
{
    if (handle < 1 || handle > 5) return -1;
    return handle == 5 ? 0 : 1;
}

bool CEllipseShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (index == 0) {
        Centre = {x, y};
    } else if (index == 1) {
        RadiusX = x;
        RadiusY = IsCircle() ? x : y;
    } else {
        return false;
    }
    if (view) UpdateBounds(*view);
    return true;
}

void CEllipseShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    ApplyMatrix(matrix, Centre);
    // A circle keeps its radius under every transform.
    if (GetShapeType() == bvxEllipse) {
        RadiusX *= std::fabs(matrix.m[0]);
        RadiusY *= std::fabs(matrix.m[4]);
    }
    UpdateBounds(view);
}

double CEllipseShape::GetArea() const
{
    if (IsCircle()) return std::pow(RadiusX, 2.0) * 3.141592653589793;
    if (GetShapeType() == bvxEllipse) return RadiusY * RadiusX * 3.141592653589793;
    return 0.0;
}

void CEllipseShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    UpdateBounds(view);
    DeviceRect r = BoundsAsRect();
    r.right = WrapToInt32(double(r.right) + 1);
    r.bottom = WrapToInt32(double(r.bottom) + 1);
    if (r.Intersected(clip).IsEmpty()) return;
    if (RadiusY == 0) {
        // Flat: a dot or a one-pixel line through the centre.
        int32_t y = view.World.WorldToDevice(Centre).y;
        dc.MoveToEx(r.left, y);
        dc.LineTo(r.right, y);
        return;
    }
    dc.Ellipse(r.left, r.top, r.right, r.bottom);
}

void CEllipseShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    Centre = {Centre.x + delta.x, Centre.y + delta.y};
    UpdateBounds(view);
}

int32_t CEllipseShape::HitTest(DevicePoint point, ShapeContext&)
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

void CEllipseShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    view.InvalidateShape(this, false);
    if (handle == 5) {
        Centre = point;
    } else {
        if (IsCircle()) {
            RadiusX = RadiusY = Distance(point, Centre);
        } else if (GetShapeType() == bvxEllipse) {
            if (handle == 1 || handle == 3) RadiusY = std::fabs(Centre.y - point.y);
            if (handle == 2 || handle == 4) RadiusX = std::fabs(Centre.x - point.x);
        }
    }
    UpdateBounds(view);
    // Last: the host may delete the shape from the event.
    if (handle != 5) view.RadiusDragged(RadiusX, RadiusY);
}

std::unique_ptr<CObjShape> CEllipseShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CEllipseShape>();
    CopyBaseTo(*copy);
    copy->Centre = Centre;
    copy->RadiusX = RadiusX;
    copy->RadiusY = RadiusY;
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

int32_t CEllipseShape::HandleFromPoint(DevicePoint point, ShapeContext&) const
{
    static constexpr int32_t kHandleOfSum[11] = {1, 1, 2, 0, 4, 5, 2, 0, 4, 3, 3};
    return kHandleOfSum[HandleGridSum(BoundsAsRect(), point)];
}

int16_t CEllipseShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    return HandleToPoint(HandleFromPoint(point, view));
}

void CEllipseShape::UpdateBounds(const ShapeContext& view)
{
    WorldRect b = GetWorldBounds(view);
    StoreBounds(OrderedRect(view.World.WorldRectToDevice({b.left, b.top}, {b.right, b.bottom})));
}

WorldRect CEllipseShape::GetWorldBounds(const ShapeContext&) const { return Extent(); }

WorldRect CEllipseShape::Extent() const
{
    return {Centre.x - RadiusX, Centre.y - RadiusY, Centre.x + RadiusX, Centre.y + RadiusY};
}

bool CEllipseShape::ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext*) const
{
    if (!target) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (type == bvxPolygon) {
        constexpr double kTurn = 6.283185307179586;
        const double step = mode == 2 ? value : mode == 1 ? kTurn / value : 0;
        // A step that isn't positive would never end, and a shape holds only so many points.
        if (!(step > 0) || !std::isfinite(step) || kTurn / step > double(CPolyShape::kMaxPoints)) return false;
        // The last point isn't repeated: the polygon closes by its type.
        for (double angle = 0; angle < kTurn; angle += step) {
            const WorldPoint p = EllipsePoint(Centre, RadiusX, RadiusY, angle);
            target->SetPoint(-1, p.x, p.y, nullptr);
        }
        return true;
    }
    if (type == bvx2PointEllipse) {
        auto* rect = dynamic_cast<CRectShape*>(target);
        if (!rect) return false;
        WorldRect b = Extent();
        rect->P1 = {b.left, b.top};
        rect->P2 = {b.right, b.bottom};
        return true;
    }
    if (type == bvxEllipse && IsCircle()) {
        target->SetPoint(0, Centre.x, Centre.y, nullptr);
        target->SetPoint(1, RadiusX, RadiusY, nullptr);
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
