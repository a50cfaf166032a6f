#include "CPolyShape.h"

#include "ShapeContext.h"
#include "platform/DeviceContext.h"
#include "world/CadWorld.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {

constexpr int32_t kBorderTolerance = 3;
constexpr int32_t kCurveMargin = 3;
constexpr int32_t kLikeHandles = 55;
constexpr int32_t kMovesWhole = 99;

bool IsStraight(int16_t type) { return type == bvxPolyline || type == bvxPolygon || type == bvxFreehand; }

// Device points of a list, in a buffer kept between calls: painting runs
// for every shape of every repaint.
std::span<const DevicePoint> ToDevice(const std::vector<WorldPoint>& points, const CadWorld& world)
{
    thread_local std::vector<DevicePoint> scratch;
    scratch.resize(points.size());
    for (size_t i = 0; i < points.size(); ++i) scratch[i] = world.WorldToDevice(points[i]);
    return scratch;
}

} // namespace

bool CPolyShape::AddPoint(const WorldPoint& point)
{
    if (Points.size() >= kMaxPoints) return false;
    Points.push_back(point);
    return true;
}

int32_t CPolyShape::GetHandleCount() const
{
    if (IsFreehand()) return Points.empty() ? 0 : 2;
    return int32_t(Points.size());
}

WorldPoint CPolyShape::GetHandlePoint(int32_t handle, const ShapeContext&) const
{
    if (Points.empty() || handle < 1) return {};
    if (IsFreehand()) return handle == 1 ? Points.front() : Points.back();
    return size_t(handle) <= Points.size() ? Points[size_t(handle) - 1] : WorldPoint{};
}

int16_t CPolyShape::GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const
{
    const bool whole = IsFreehand() || handle == kMovesWhole;
    return CObjShape::GetHandleCursor(pointers, whole ? kMovesWhole : kLikeHandles);
}

WorldPoint CPolyShape::GetPoint(int16_t index, const ShapeContext&) const
{
    return index >= 0 && size_t(index) < Points.size() ? Points[size_t(index)] : WorldPoint{};
}

int16_t CPolyShape::HandleToPoint(int32_t handle) const { return handle >= 1 ? int16_t(handle - 1) : int16_t(-1); }

bool CPolyShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (GetShapeType() == bvx3PointArc && (index < 0 || index > 2)) return false;
    if (index >= 0 && size_t(index) < Points.size())
        Points[size_t(index)] = {x, y};
    else if (!AddPoint({x, y}))
        return false;
    if (view) UpdateBounds(*view);
    return true;
}

DeviceRect CPolyShape::PointsDeviceBox(const CadWorld& world) const
{
    if (Points.empty()) return {};
    const DevicePoint first = world.WorldToDevice(Points.front());
    DeviceRect box{first.x, first.y, first.x + 1, first.y + 1};
    for (const WorldPoint& p : Points) {
        const DevicePoint d = world.WorldToDevice(p);
        box = {std::min(box.left, d.x), std::min(box.top, d.y), std::max(box.right, d.x), std::max(box.bottom, d.y)};
    }
    return box;
}

void CPolyShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    for (WorldPoint& p : Points) ApplyMatrix(matrix, p);
    DeviceRect box = PointsDeviceBox(view.World);
    if (GetShapeType() > bvxFreehand) box = InflatedRect(box, kCurveMargin, kCurveMargin);
    StoreBounds(box);
}

double CPolyShape::GetArea() const
{
    if (GetShapeType() != bvxPolygon || Points.size() < 3) return 0.0;
    double minX = Points.front().x, minY = Points.front().y;
    for (const WorldPoint& p : Points) {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
    }
    // The trapezoid rule on offset coordinates; a self-crossing polygon
    // gets the algebraic sum.
    double sum = 0;
    for (size_t i = 0; i < Points.size(); ++i) {
        const WorldPoint& a = Points[i];
        const WorldPoint& b = Points[(i + 1) % Points.size()];
        sum += ((a.x - minX) + (b.x - minX)) * ((a.y - minY) - (b.y - minY));
    }
    return std::fabs(sum) * 0.5;
}

void CPolyShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    if (Points.empty()) return;
    DeviceRect box = PointsDeviceBox(view.World);
    if (GetShapeType() > bvxFreehand) box = InflatedRect(box, kCurveMargin, kCurveMargin);
    StoreBounds(box);
    if (box.Intersected(clip).IsEmpty()) return;
    const std::span<const DevicePoint> device = ToDevice(Points, view.World);
    switch (GetShapeType()) {
    case bvxPolyline:
    case bvxFreehand: dc.Polyline(device); break;
    case bvxPolygon: dc.Polygon(device); break;
    default: break; // curves through control points are drawn by their own rules
    }
}

void CPolyShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if ((delta.x == 0 && delta.y == 0) || Points.empty()) return;
    view.InvalidateShape(this, false);
    for (WorldPoint& p : Points) p = {p.x + delta.x, p.y + delta.y};
    StoreBounds(OrderedRect(PointsDeviceBox(view.World)));
}

int32_t CPolyShape::HitTest(DevicePoint point, ShapeContext& view)
{
    if (!PtInRect(InflatedRect(OrderedRect(BoundsAsRect()), kBorderTolerance, kBorderTolerance), point)) return 0;
    const int16_t type = GetShapeType();
    if (!IsStraight(type) || Points.size() < 2) return 0;
    const int16_t method = GetSearchMethod();
    const std::span<const DevicePoint> device = ToDevice(Points, view.World);
    const size_t segments = type == bvxPolygon ? device.size() : device.size() - 1;
    int32_t crossings = 0;
    for (size_t i = 1; i <= segments; ++i) {
        const int32_t hit = HitSegment(device[i - 1], device[i % device.size()], point, method);
        // On the border the answer names the segment by its second point;
        // the closing edge of a polygon counts as the last one.
        if (method == kSearchOnBorder && hit) return int32_t(i);
        crossings += hit;
    }
    return method == kSearchInShape ? crossings % 2 : 0;
}

void CPolyShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    if (handle < 1 || handle > GetHandleCount()) return;
    const WorldPoint held = GetHandlePoint(handle, view);
    const size_t index = size_t(handle) - 1;
    if (!(point == held)) {
        if (IsFreehand()) {
            // A freehand curve's handles carry the whole curve.
            Move({point.x - held.x, point.y - held.y}, view);
        } else {
            if (view.ViewDrawOrthogonal && Points.size() > 1) {
                // Square the point against its neighbours, the nearer axis winning.
                auto square = [&](const WorldPoint& n, bool tieTakesX) {
                    const double dx = std::fabs(point.x - n.x), dy = std::fabs(point.y - n.y);
                    if (dy < dx || (tieTakesX && dy == dx))
                        point.y = n.y;
                    else
                        point.x = n.x;
                };
                const bool middle = index > 0 && index + 1 < Points.size();
                if (index > 0) square(Points[index - 1], middle);
                if (index + 1 < Points.size()) square(Points[index + 1], middle);
            }
            view.InvalidateShape(this, false);
            Points[index] = point;
            UpdateBounds(view);
        }
    }
    const int16_t type = GetShapeType();
    if (handle > 1 && (type == bvxPolyline || type == bvxPolygon) && index < Points.size()) {
        const WorldPoint& previous = Points[index - 1];
        const WorldPoint& moved = Points[index];
        view.ReadoutDistance = Distance(previous, moved);
        view.ReadoutAngle = AngleReadout(view.World, WorldAngle(view.World, previous, moved), previous, moved);
    }
}

std::unique_ptr<CObjShape> CPolyShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CPolyShape>();
    CopyBaseTo(*copy);
    copy->Points = Points;
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

int32_t CPolyShape::HandleFromPoint(DevicePoint point, ShapeContext& view) const
{
    if (Points.empty()) return 0;
    const WorldPoint q = view.World.DeviceToWorld(point);
    if (IsFreehand()) return Distance(Points.back(), q) < Distance(Points.front(), q) ? 2 : 1;
    size_t nearest = 0;
    for (size_t i = 1; i < Points.size(); ++i)
        if (Distance(Points[i], q) < Distance(Points[nearest], q)) nearest = i;
    return int32_t(nearest) + 1;
}

int16_t CPolyShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    return HandleToPoint(HandleFromPoint(point, view));
}

void CPolyShape::UpdateBounds(const ShapeContext& view) { StoreBounds(PointsDeviceBox(view.World)); }

WorldRect CPolyShape::GetWorldBounds(const ShapeContext& view) const
{
    if (Points.empty()) return {};
    WorldRect r{Points.front().x, Points.front().y, Points.front().x, Points.front().y};
    for (const WorldPoint& p : Points)
        r = {std::min(r.left, p.x), std::min(r.top, p.y), std::max(r.right, p.x), std::max(r.bottom, p.y)};
    if (view.World.SignX < 0) std::swap(r.left, r.right);
    if (view.World.SignY < 0) std::swap(r.top, r.bottom);
    return r;
}

bool CPolyShape::ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext*) const
{
    if (!target) return false;
    const int16_t source = GetShapeType();
    const bool copies = (source == bvxPolyline && type == bvxPolygon) ||
                        (source == bvxFreehand && (type == bvxPolyline || type == bvxPolygon)) ||
                        (source == bvxPolygon && type == bvxPolyline);
    if (!copies) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (source == bvxPolygon && mode == 3) {
        // Opened at point k: the polyline starts and ends there.
        const double k = std::trunc(value);
        if (!(k >= 0 && k <= double(Points.size()) - 1)) return false;
        const size_t start = size_t(k);
        for (size_t i = start; i < Points.size(); ++i) target->SetPoint(-1, Points[i].x, Points[i].y, nullptr);
        for (size_t i = 0; i <= start; ++i) target->SetPoint(-1, Points[i].x, Points[i].y, nullptr);
        return true;
    }
    for (const WorldPoint& p : Points) target->SetPoint(-1, p.x, p.y, nullptr);
    return true;
}

} // namespace bvx
