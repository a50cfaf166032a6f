#include "CArcShape.h"

#include "ArcGeometry.h"
#include "CEllipseShape.h"
#include "CPolyShape.h"
#include "ShapeContext.h"
#include "platform/DeviceContext.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"

#include <cmath>

namespace bvx {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kDegreesPerRadian = 57.29577951308232;
constexpr int32_t kBorderTolerance = 3;
// All of an arc's handles show one pointer.
constexpr int32_t kLikeHandles = 55;
constexpr int32_t kNoHandlePointer = 99;

int64_t SquaredDistance(DevicePoint a, DevicePoint b)
{
    const int64_t dx = int64_t(a.x) - b.x, dy = int64_t(a.y) - b.y;
    return dx * dx + dy * dy;
}

} // namespace

CArcShape::CArcShape() { SetShapeType(bvxArc, 0); }

CArcShape::CArcShape(const WorldPoint& centre) : CArcShape() { Centre = centre; }

double CArcShape::AngleOf(const WorldPoint& p) const
{
    double a = std::atan2(p.y - Centre.y, p.x - Centre.x);
    return a < 0 ? a + (kPi + kPi) : a;
}

WorldPoint CArcShape::PointAt(double angle) const { return PolarPoint(Centre, Radius.x, Radius.y, angle); }

WorldRect CArcShape::EllipseWorldRect() const
{
    const double rx = std::fabs(Radius.x), ry = std::fabs(Radius.y);
    return {Centre.x - rx, Centre.y - ry, Centre.x + rx, Centre.y + ry};
}

DeviceRect CArcShape::EllipseDeviceRect(const CadWorld& world) const
{
    const WorldRect r = EllipseWorldRect();
    return world.WorldRectToDevice({r.left, r.top}, {r.right, r.bottom});
}

WorldPoint CArcShape::GetHandlePoint(int32_t handle, const ShapeContext&) const
{
    switch (handle) {
    case 1: return Centre;
    case 2: return PointAt(StartAngle);
    case 3: return PointAt(EndAngle);
    default: return {};
    }
}

int16_t CArcShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    return CObjShape::GetHandleCursor(pointers, handle == kNoHandlePointer ? kNoHandlePointer : kLikeHandles);
}

WorldPoint CArcShape::GetPoint(int16_t index, const ShapeContext& view) const
{
    switch (index) {
    case 0: return Centre;
    case 1: return Radius;
    case 2: {
        if (view.World.AngleMode != 1) return {StartAngle, EndAngle};
        // Degrees, whole along the axes and diagonals.
        auto degrees = [&](double a) {
            const double d = a * kDegreesPerRadian;
            return IsOnAxis(Centre, PointAt(a)) ? std::floor(d) : d;
        };
        return {degrees(StartAngle), degrees(EndAngle)};
    }
    default: return {};
    }
}

int16_t CArcShape::HandleToPoint(int32_t handle) const
{
    if (handle == 2 || handle == 3) return 2;
    return handle == 9 ? 1 : -1;
}

bool CArcShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    switch (index) {
    case 0: Centre = {x, y}; break;
    case 1: Radius = {x, y}; break;
    case 2: {
        const double factor = view && view->World.AngleMode == 1 ? kDegreesToRadians : 1.0;
        StartAngle = x * factor;
        EndAngle = y * factor;
        break;
    }
    default: return false;
    }
    if (view) UpdateBounds(*view);
    return true;
}

void CArcShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    const bool flipX = matrix.m[0] < 0, flipY = matrix.m[4] < 0;
    if (flipX && flipY) {
        StartAngle += kPi;
        EndAngle += kPi;
    } else if (flipX) {
        const double start = StartAngle;
        StartAngle = -(EndAngle + kPi);
        EndAngle = -(start + kPi);
    } else if (flipY) {
        const double start = StartAngle;
        StartAngle = -EndAngle;
        EndAngle = -start;
    }
    ApplyMatrix(matrix, Centre);
    if (view.World.LastRotation == 0) {
        Radius.x *= std::fabs(matrix.m[0]);
        Radius.y *= std::fabs(matrix.m[4]);
    } else {
        // A turned ellipse can't be drawn upright: the angles turn instead.
        StartAngle += view.World.LastRotation * kDegreesToRadians;
        EndAngle += view.World.LastRotation * kDegreesToRadians;
    }
    // Back within a turn either way, as whole turns taken off would leave it.
    for (double* a : {&StartAngle, &EndAngle}) {
        if (!std::isfinite(*a) || std::fabs(*a) <= kTwoPi) continue;
        const double rest = std::fmod(*a, kTwoPi);
        *a = rest == 0 ? std::copysign(kTwoPi, *a) : rest;
    }
    UpdateBounds(view);
}

double PieArea(double rx, double ry, double a, double b)
{
    return std::fabs(rx * ry * kPi * 0.002777777777777778 * (b - a) * kDegreesPerRadian);
}

double ChordArea(double rx, double ry, double a, double b)
{
    const double u = std::sqrt(std::pow(ry * std::cos(a), 2) + std::pow(rx * std::sin(a), 2));
    const double v = std::sqrt(std::pow(ry * std::cos(b), 2) + std::pow(rx * std::sin(b), 2));
    const double s = b - a;
    const double c = std::sqrt(u * u + v * v - 2 * u * v * std::cos(s > kPi ? s - kPi : s));
    const double w = std::sin(std::acos((u * u - v * v - c * c) / (-2 * c * v))) * c * v * 0.5;
    // A segment without width (coincident ends, a zero radius) adds nothing.
    const double triangle = std::isfinite(w) ? w : 0.0;
    return s > kPi ? std::fabs(PieArea(rx, ry, a, b) + triangle) : std::fabs(PieArea(rx, ry, a, b) - triangle);
}

double CArcShape::GetArea() const
{
    const int16_t type = GetShapeType();
    if (type != bvxPieSlice && type != bvxChord) return 0.0;
    const double a = StartAngle;
    const double b = EndAngle < a ? EndAngle + kTwoPi : EndAngle;
    return type == bvxPieSlice ? PieArea(Radius.x, Radius.y, a, b) : ChordArea(Radius.x, Radius.y, a, b);
}

DeviceRect CArcShape::DrawnBounds(const CadWorld& world, bool closed, DeviceRect* ellipse) const
{
    const DevicePoint start = world.WorldToDevice(PointAt(StartAngle));
    const DevicePoint end = world.WorldToDevice(PointAt(EndAngle));
    DeviceRect r = OrderedRect(EllipseDeviceRect(world));
    r.right = WrapToInt32(double(r.right) + 1);
    r.bottom = WrapToInt32(double(r.bottom) + 1);
    if (ellipse) *ellipse = r;
    ArcBoundsDevice(r, start, end, closed || GetShapeType() == bvxPieSlice);
    return OrderedRect(r);
}

void CArcShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode)
{
    DeviceRect ellipse;
    const DeviceRect drawn = DrawnBounds(view.World, mode != 0, &ellipse);
    StoreBounds(drawn);
    if (drawn.Intersected(clip).IsEmpty()) return;
    if (BeyondDeviceLimit(ellipse)) {
        // Past 16 bits the platform can't draw an arc: every device draws
        // the same stand-in, the figure as twenty straight steps.
        CPolyShape outline;
        if (ConvertTo(GetShapeType() == bvxArc ? bvxPolyline : bvxPolygon, &outline, 1, kBeyondLimitSteps, &view))
            outline.Draw(dc, clip, view, mode);
        return;
    }
    const DevicePoint s = view.World.WorldToDevice(PointAt(StartAngle));
    const DevicePoint e = view.World.WorldToDevice(PointAt(EndAngle));
    switch (GetShapeType()) {
    case bvxPieSlice: dc.Pie(ellipse.left, ellipse.top, ellipse.right, ellipse.bottom, s.x, s.y, e.x, e.y); break;
    case bvxChord: dc.Chord(ellipse.left, ellipse.top, ellipse.right, ellipse.bottom, s.x, s.y, e.x, e.y); break;
    default: dc.Arc(ellipse.left, ellipse.top, ellipse.right, ellipse.bottom, s.x, s.y, e.x, e.y); break;
    }
}

void CArcShape::UpdateBounds(const ShapeContext& view) { StoreBounds(DrawnBounds(view.World, false)); }

WorldRect CArcShape::GetWorldBounds(const ShapeContext& view) const
{
    const CadWorld& world = view.World;
    auto ordered = [&](WorldRect r) {
        if ((r.right - r.left) * world.SignX < 0) std::swap(r.left, r.right);
        if ((r.bottom - r.top) * world.SignY < 0) std::swap(r.top, r.bottom);
        return r;
    };
    WorldRect r = ordered(EllipseWorldRect());
    ArcBoundsWorld(r, PointAt(StartAngle), PointAt(EndAngle), world.SignX, world.SignY,
                   GetShapeType() == bvxPieSlice);
    return ordered(r);
}

void CArcShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    Centre = {Centre.x + delta.x, Centre.y + delta.y};
    UpdateBounds(view);
}

int32_t CArcShape::HitTest(DevicePoint point, ShapeContext& view)
{
    const int16_t method = GetSearchMethod();
    DeviceRect r = OrderedRect(BoundsAsRect());
    if (method == kSearchOnBorder) r = InflatedRect(r, kBorderTolerance, kBorderTolerance);
    if (!PtInRect(r, point)) return 0;
    const CadWorld& world = view.World;
    const DevicePoint start = world.WorldToDevice(PointAt(StartAngle));
    const DevicePoint end = world.WorldToDevice(PointAt(EndAngle));
    const int32_t band = HitArcBand(method, Centre, Radius, start, end, point, world) ? 1 : 0;
    const int16_t type = GetShapeType();
    if (type == bvxArc || band == 1) return band;
    if (type == bvxChord) return HitSegment(start, end, point, method);
    const DevicePoint centre = world.WorldToDevice(Centre);
    const int32_t side = HitSegment(start, centre, point, method);
    return side == 1 ? side : HitSegment(end, centre, point, method);
}

void CArcShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    view.InvalidateShape(this, false);
    const bool radii = handle == 1 || handle == 9;
    if (radii) {
        if (handle == 1)
            Radius = point;
        else
            Radius = {Radius.x + point.x, Radius.y + point.y};
        if (view.ViewDrawOrthogonal) {
            if (std::fabs(point.y) < std::fabs(point.x))
                Radius.y = Radius.x;
            else
                Radius.x = Radius.y;
        }
    } else if (handle == 2 || handle == 3) {
        double& angle = handle == 2 ? StartAngle : EndAngle;
        angle = AngleOf(point);
        view.ReadoutAngle = AngleReadout(view.World, angle, Centre, point);
    }
    UpdateBounds(view);
    // Last: the host may delete the shape from the event.
    if (radii) view.RadiusDragged(Radius.x, Radius.y);
}

std::unique_ptr<CObjShape> CArcShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CArcShape>();
    CopyBaseTo(*copy);
    copy->Centre = Centre;
    copy->Radius = Radius;
    copy->StartAngle = StartAngle;
    copy->EndAngle = EndAngle;
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

int32_t CArcShape::HandleFromPoint(DevicePoint point, ShapeContext& view) const
{
    const DevicePoint start = view.World.WorldToDevice(PointAt(StartAngle));
    const DevicePoint end = view.World.WorldToDevice(PointAt(EndAngle));
    return SquaredDistance(end, point) < SquaredDistance(start, point) ? 3 : 2;
}

int16_t CArcShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    const WorldPoint q = view.World.DeviceToWorld(point);
    const double toCentre = Distance(Centre, q);
    return Distance(PointAt(StartAngle), q) < toCentre || Distance(PointAt(EndAngle), q) < toCentre ? 2 : 0;
}

double CArcShape::EccentricAngle(double angle, int16_t signX, int16_t signY) const
{
    const WorldPoint p = PointAt(angle);
    const double e = std::acos(std::fabs(p.x - Centre.x) / std::fabs(Radius.x));
    switch (QuadrantDirected(p, Centre, signX, signY)) {
    case 1: return e;
    case 2: return (kPi / 2 - e) + kPi / 2;
    case 3: return e + kPi;
    default: return (kPi / 2 - e) + 4.71238898038469;
    }
}

bool CArcShape::ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const
{
    const int16_t source = GetShapeType();
    const bool offered = type == bvxPolygon || (type == bvxPolyline && source == bvxArc);
    // A flat ellipse has no eccentric angles; a step that isn't positive would never end.
    if (!target || !offered || (mode != 1 && mode != 2) || Radius.x == 0 || !(value > 0) || !std::isfinite(value))
        return false;
    const int16_t signX = view ? view->World.SignX : 1;
    const int16_t signY = view ? view->World.SignY : -1;
    const double s = EccentricAngle(StartAngle, signX, signY);
    double t = EccentricAngle(EndAngle, signX, signY);
    if (EndAngle < StartAngle) t += kTwoPi;
    if (!std::isfinite(s) || !std::isfinite(t)) return false;
    const bool reversed = !((signX == 1 && signY == -1) || (signX == -1 && signY == 1));
    double first = s, last = t, step = value;
    if (mode == 1) {
        if (reversed) std::swap(first, last);
        step = reversed ? (kTwoPi - std::fabs(s - t)) / value : std::fabs(t - s) / value;
    }
    if (!(step > 0)) return false;
    // The points would not fit a shape: refused before any is made.
    if (last > first && (last - first) / step + 2 > double(CPolyShape::kMaxPoints)) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (source == bvxPieSlice) target->SetPoint(-1, Centre.x, Centre.y, nullptr);
    for (double a = first, made = 1;; ++made) {
        const WorldPoint p = EllipsePoint(Centre, Radius.x, Radius.y, a);
        target->SetPoint(-1, p.x, p.y, nullptr);
        // A step lost in rounding would never arrive: the count ends it too.
        if (a == last || made >= double(CPolyShape::kMaxPoints)) break;
        a += step;
        // The last point lies exactly on the end.
        if (a >= last) a = last;
    }
    return true;
}

} // namespace bvx
