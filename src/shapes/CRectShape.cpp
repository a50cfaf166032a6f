#include "CRectShape.h"

#include "CEllipseShape.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"
#include "ShapeContext.h"
#include "platform/DeviceContext.h"
#include "platform/Region.h"

#include <cmath>
#include <numbers>

namespace bvx {

namespace {

constexpr double kTiny = 1e-7;
constexpr int32_t kArrowLength = 20;
constexpr int32_t kArrowHalfWidth = 3;
constexpr int32_t kInnerDeflate = 6;
constexpr int32_t kSameLookHandle = 55;
constexpr int32_t kNoHandle = 99;

double Mid(double a, double b) { return (b - a) * 0.5 + a; }

DeviceRect Bounding(std::span<const DevicePoint> points)
{
    DeviceRect r{points[0].x, points[0].y, points[0].x, points[0].y};
    for (const DevicePoint& p : points) {
        r.left = std::min(r.left, p.x);
        r.top = std::min(r.top, p.y);
        r.right = std::max(r.right, p.x);
        r.bottom = std::max(r.bottom, p.y);
    }
    return r;
}

int32_t Plus(int32_t v, int32_t d) { return WrapToInt32(double(v) + d); }

} // namespace

CRectShape::CRectShape(const WorldPoint& start) : P1(start), P2(start)
{
    SetShapeType(bvxRectangle, 0);
}

void CRectShape::NormalizeCorners(WorldPoint& a, WorldPoint& b)
{
    if (a.x > b.x) std::swap(a.x, b.x);
    if (a.y > b.y) std::swap(a.y, b.y);
}

void CRectShape::SetLineType(int32_t v)
{
    if (!IsLine()) return;
    LineType = (v >= -1 && v <= 3) ? int16_t(v) : int16_t(-1);
}

int32_t CRectShape::GetHandleCount() const
{
    int16_t type = GetShapeType();
    if (type == bvxLine) return 2;
    return type == bvxRoundRectangle || type == bvx2PointEllipse ? 9 : 8;
}

WorldPoint CRectShape::GetHandlePoint(int32_t handle, const ShapeContext& view) const
{
    handle = CanonicalHandle(handle);
    if (handle == 9 && GetShapeType() == bvxRoundRectangle) {
        // On the inner corner of the rounding.
        WorldPoint a = P1, b = P2;
        NormalizeCorners(a, b);
        return {b.x - Radius.x * 0.5, b.y - view.World.SignY * Radius.y * 0.5};
    }
    return RectHandlePoint(P1, P2, handle);
}

int16_t CRectShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    int16_t type = GetShapeType();
    if (type == bvxLine && handle != kNoHandle) handle = kSameLookHandle;
    if ((type == bvxRoundRectangle || type == bvx2PointEllipse) && handle == 9) handle = kSameLookHandle;
    return CObjShape::GetHandleCursor(pointers, handle);
}

WorldPoint CRectShape::GetPoint(int16_t index, const ShapeContext&) const
{
    if (index == 0) return P1;
    if (index == 1) return P2;
    if (index == 2 && GetShapeType() == bvxRoundRectangle) return Radius;
    return {};
}

int16_t CRectShape::GetPointCount() const { return GetShapeType() == bvxRoundRectangle ? 3 : 2; }

int16_t CRectShape::HandleToPoint(int32_t handle) const
{
    handle = CanonicalHandle(handle);
    if (handle == 1) return 0;
    if (handle == 5) return 1;
    if (handle == 9 && GetShapeType() == bvxRoundRectangle) return 2;
    return -1;
}

bool CRectShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (index == 0)
        P1 = {x, y};
    else if (index == 1)
        P2 = {x, y};
    else if (index == 2)
        Radius = {x, y};
    else
        return false;
    if (view) UpdateBounds(*view);
    return true;
}

void CRectShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    ApplyMatrix(matrix, P1);
    ApplyMatrix(matrix, P2);
    UpdateBounds(view);
}

double CRectShape::GetArea() const
{
    double dx = P2.x - P1.x, dy = P2.y - P1.y;
    switch (GetShapeType()) {
    case bvxRectangle: return std::fabs(dx) * std::fabs(dy);
    case bvx2PointEllipse: return (std::fabs(dx) * 0.5) * (std::fabs(dy) * 0.5) * 3.141592653589793;
    default: return 0.0; // a rounded rectangle has no area here
    }
}

void CRectShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    const CadWorld& world = view.World;
    int16_t type = GetShapeType();
    DevicePoint corners[4];
    size_t count = 2;
    if (type == bvxLine) {
        corners[0] = world.WorldToDevice(P1);
        corners[1] = world.WorldToDevice(P2);
    } else {
        corners[0] = world.WorldToDevice(P1);
        corners[1] = world.WorldToDevice({P1.x, P2.y});
        corners[2] = world.WorldToDevice(P2);
        corners[3] = world.WorldToDevice({P2.x, P1.y});
        count = 4;
    }
    std::span<const DevicePoint> points(corners, count);
    DeviceRect r = Bounding(points);
    if (type == bvxRoundRectangle || type == bvx2PointEllipse) {
        r.right = Plus(r.right, 1);
        r.bottom = Plus(r.bottom, 1);
    }
    StoreBounds(r);
    DeviceRect test = type == bvxRectangle || type == bvxLine ? InflatedRect(r, 1, 1) : r;
    if (test.Intersected(clip).IsEmpty()) return;
    switch (type) {
    case bvxRectangle: dc.Polygon(points); break;
    case bvxRoundRectangle: {
        DevicePoint corner = world.WorldSizeToDevice(Radius);
        dc.RoundRect(r.left, r.top, r.right, r.bottom, corner.x, corner.y);
        break;
    }
    case bvxLine:
        dc.Polyline(points);
        DrawArrowHeads(dc, corners[0], corners[1], view);
        break;
    case bvx2PointEllipse: dc.Ellipse(r.left, r.top, r.right, r.bottom); break;
    default: break;
    }
}

void CRectShape::DrawArrowHeads(DeviceContext& dc, DevicePoint a, DevicePoint b, const ShapeContext& view) const
{
    int32_t flags = LineType;
    if (flags == -1) flags = view.LayerLineType(Layer);
    if (!(flags & 3)) return;
    int32_t tenths = AngleTenths(WrapToInt32(double(b.x) - a.x), WrapToInt32(double(a.y) - b.y));
    DevicePoint atA[3] = {a, {Plus(a.x, kArrowLength), Plus(a.y, -kArrowHalfWidth)},
                          {Plus(a.x, kArrowLength), Plus(a.y, kArrowHalfWidth)}};
    DevicePoint atB[3] = {b, {Plus(b.x, -kArrowLength), Plus(b.y, -kArrowHalfWidth)},
                          {Plus(b.x, -kArrowLength), Plus(b.y, kArrowHalfWidth)}};
    if (tenths != 0) {
        RotateDevicePoints(atA, tenths, a);
        RotateDevicePoints(atB, tenths, b);
    }
    if (flags & 1) dc.Polygon(atA);
    if (flags & 2) dc.Polygon(atB);
}

void CRectShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    P1 = {P1.x + delta.x, P1.y + delta.y};
    P2 = {P2.x + delta.x, P2.y + delta.y};
    UpdateBounds(view);
}

int32_t CRectShape::HitTest(DevicePoint point, ShapeContext& view)
{
    const int16_t method = GetSearchMethod();
    DeviceRect r = OrderedRect(BoundsAsRect());
    if (method == kSearchOnBorder) r = InflatedRect(r, view.HitTolerance, view.HitTolerance);
    r.right = Plus(r.right, 1);
    r.bottom = Plus(r.bottom, 1);
    if (!PtInRect(r, point)) return 0;
    const DeviceRect inner = InflatedRect(r, -kInnerDeflate, -kInnerDeflate);
    switch (GetShapeType()) {
    case bvxRectangle: return method == kSearchInShape ? 1 : !PtInRect(inner, point);
    case bvxRoundRectangle: {
        // The rounding goes through the position conversion, origin and all.
        DevicePoint corner = view.World.WorldToDevice(Radius);
        if (method == kSearchInShape)
            return CreateRoundRectRgn(r.left, r.top, r.right, r.bottom, corner.x, corner.y).PtInRegion(point.x, point.y);
        return !CreateRoundRectRgn(inner.left, inner.top, inner.right, inner.bottom, corner.x, corner.y)
                    .PtInRegion(point.x, point.y);
    }
    case bvxLine:
        return HitSegment(view.World.WorldToDevice(P1), view.World.WorldToDevice(P2), point, method);
    case bvx2PointEllipse: {
        bool inside = CreateEllipticRgn(r.left, r.top, r.right, r.bottom).PtInRegion(point.x, point.y);
        if (method == kSearchInShape || !inside) return inside;
        return !CreateEllipticRgn(inner.left, inner.top, inner.right, inner.bottom).PtInRegion(point.x, point.y);
    }
    default: return 0;
    }
}

void CRectShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    view.InvalidateShape(this, false);
    handle = CanonicalHandle(handle);
    const int16_t type = GetShapeType();
    if (view.ViewDrawOrthogonal && type == bvxLine) {
        const WorldPoint& anchor = handle == 1 ? P2 : P1;
        if (std::fabs(point.y - anchor.y) < std::fabs(point.x - anchor.x))
            point.y = anchor.y;
        else
            point.x = anchor.x;
    }
    switch (handle) {
    case 9:
        if (type == bvxRoundRectangle) {
            // The rounding reaches half the shape and stops there.
            WorldPoint a = P1, b = P2;
            NormalizeCorners(a, b);
            point.x = std::clamp(point.x, Mid(a.x, b.x), b.x);
            point.y = std::clamp(point.y, Mid(a.y, b.y), b.y);
            Radius.x = (b.x - point.x) * 2.0;
            Radius.y = (b.y - point.y) * view.World.SignY * 2.0;
        } else if (type == bvx2PointEllipse) {
            // Here the point is a delta: the ellipse grows about its centre.
            P1.x -= point.x;
            P1.y += point.y;
            P2.x += point.x;
            P2.y -= point.y;
        }
        break;
    default:
        // Any other number takes the first corner.
        if (!MoveRectHandle(P1, P2, handle, point)) P1 = point;
        break;
    }
    UpdateBounds(view);
    view.ReadoutDistance = Distance(P1, P2);
    if (handle == 1 || handle == 5) {
        const WorldPoint& fixed = handle == 1 ? P2 : P1;
        const WorldPoint& moved = handle == 1 ? P1 : P2;
        view.ReadoutAngle = AngleReadout(view.World, WorldAngle(view.World, fixed, moved), fixed, moved);
    }
}

std::unique_ptr<CObjShape> CRectShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CRectShape>();
    CopyBaseTo(*copy);
    copy->P1 = P1;
    copy->P2 = P2;
    copy->Radius = Radius;
    copy->LineType = LineType;
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

int32_t HandleGridSum(DeviceRect corners, DevicePoint point)
{
    bool flipX = corners.left > corners.right, flipY = corners.top > corners.bottom;
    DeviceRect r = OrderedRect(corners);
    int64_t q = r.Width() / 4, h = r.Height() / 4;
    int32_t column = point.x < r.left + q ? 0 : point.x > r.right - q ? 2 : 1;
    if (flipX && column != 1) column = 2 - column;
    int32_t row = point.y < r.top + h ? 0 : point.y > r.bottom - h ? 8 : 4;
    if (flipY && row != 4) row = 8 - row;
    return column + row;
}

int32_t CRectShape::HandleFromPoint(DevicePoint point, ShapeContext& view) const
{
    DevicePoint a = view.World.WorldToDevice(P1), b = view.World.WorldToDevice(P2);
    DeviceRect corners{a.x, a.y, b.x, b.y};
    if (IsLine()) {
        DeviceRect r = OrderedRect(corners);
        bool nearFirst;
        if (r.Width() >= r.Height()) {
            bool inLeftHalf = point.x < r.left + r.Width() / 2;
            nearFirst = (a.x <= b.x) == inLeftHalf;
        } else {
            bool inTopHalf = point.y < r.top + r.Height() / 2;
            nearFirst = (a.y <= b.y) == inTopHalf;
        }
        return nearFirst ? 1 : 2;
    }
    return RectHandleFromPoint(corners, point);
}

int16_t CRectShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    WorldPoint q = view.World.DeviceToWorld(point);
    return Distance(P2, q) < Distance(P1, q) ? 1 : 0;
}

void CRectShape::UpdateBounds(const ShapeContext& view)
{
    StoreBounds(OrderedRect(view.World.WorldRectToDevice(P1, P2)));
}

WorldRect CRectShape::GetWorldBounds(const ShapeContext&) const { return {P1.x, P1.y, P2.x, P2.y}; }

bool CRectShape::ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext*) const
{
    if (!target) return false;
    target->SetShapeType(uint8_t(type), 0);
    const int16_t source = GetShapeType();
    if (source == bvxRectangle && type == bvxPolygon) {
        for (const WorldPoint& p : {P1, WorldPoint{P2.x, P1.y}, P2, WorldPoint{P1.x, P2.y}})
            target->SetPoint(-1, p.x, p.y, nullptr);
        return true;
    }
    if (source != bvx2PointEllipse || (type != bvxEllipse && type != bvxPolygon)) return false;
    auto half = [](double a, double b) {
        double h = (b - a) * 0.5;
        return std::fabs(h) <= kTiny ? 0.0 : h;
    };
    WorldPoint centre{P1.x + half(P1.x, P2.x), P1.y + half(P1.y, P2.y)};
    double rx = std::fabs(P2.x - centre.x), ry = std::fabs(P2.y - centre.y);
    if (!(rx > kTiny && ry > kTiny)) return false;
    if (type == bvxPolygon) {
        // As the ellipse between the same corners would.
        CEllipseShape ellipse(centre);
        ellipse.SetPoint(1, rx, ry, nullptr);
        return ellipse.ConvertTo(type, target, mode, value, nullptr);
    }
    target->SetPoint(0, centre.x, centre.y, nullptr);
    target->SetPoint(1, rx, ry, nullptr);
    return true;
}

int32_t AngleTenths(int32_t dx, int32_t dy)
{
    if (dx == 0) return dy == 0 ? 0 : dy < 1 ? 2700 : 900;
    if (dy == 0) return dx < 1 ? 1800 : 0;
    int32_t t = RoundHalfDown(std::atan(std::fabs(double(dy) / dx)) * kRadiansToDegrees) * 10;
    if (dx > 0 && dy > 0) return t;
    if (dx < 1 && dy < 1) return t + 1800;
    return dx < 1 ? 1800 - t : 3600 - t;
}

WorldPoint RectHandlePoint(const WorldPoint& p1, const WorldPoint& p2, int32_t handle)
{
    const double midX = Mid(p1.x, p2.x), midY = Mid(p1.y, p2.y);
    switch (handle) {
    case 1: return p1;
    case 2: return {midX, p1.y};
    case 3: return {p2.x, p1.y};
    case 4: return {p2.x, midY};
    case 5: return p2;
    case 6: return {midX, p2.y};
    case 7: return {p1.x, p2.y};
    case 8: return {p1.x, midY};
    case 9: return {midX, midY};
    default: return {};
    }
}

bool MoveRectHandle(WorldPoint& p1, WorldPoint& p2, int32_t handle, const WorldPoint& point)
{
    switch (handle) {
    case 1: p1 = point; return true;
    case 2: p1.y = point.y; return true;
    case 3: p2.x = point.x, p1.y = point.y; return true;
    case 4: p2.x = point.x; return true;
    case 5: p2 = point; return true;
    case 6: p2.y = point.y; return true;
    case 7: p1.x = point.x, p2.y = point.y; return true;
    case 8: p1.x = point.x; return true;
    default: return false;
    }
}

int32_t RectHandleFromPoint(const DeviceRect& corners, DevicePoint point)
{
    static constexpr int32_t kHandleOfSum[11] = {1, 2, 3, 0, 8, 9, 4, 0, 7, 6, 5};
    return kHandleOfSum[HandleGridSum(corners, point)];
}

void RotateDevicePoints(std::span<DevicePoint> points, int32_t tenths, DevicePoint pivot)
{
    double a = (3600 - tenths) * kTenthDegreesToRadians;
    int64_t c = RoundHalfDown(std::cos(a) * 10000), s = RoundHalfDown(std::sin(a) * 10000);
    auto scaled = [](int64_t sum) { return (sum + (sum < 0 ? -5000 : 5000)) / 10000; };
    for (DevicePoint& p : points) {
        int64_t x = int64_t(p.x) - pivot.x, y = int64_t(p.y) - pivot.y;
        int64_t nx = scaled(x * c - y * s) + pivot.x;
        int64_t ny = scaled(y * c + x * s) + pivot.y;
        p = {WrapToInt32(double(nx)), WrapToInt32(double(ny))};
    }
}

} // namespace bvx
