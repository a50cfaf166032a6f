#include "CPolyShape.h"

#include "CArcShape.h"
#include "CEllipseShape.h"
#include "ShapeContext.h"
#include "SplineGeometry.h"
#include "platform/DeviceContext.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {

constexpr int32_t kBorderTolerance = 3;
constexpr int32_t kCurveMargin = 3;
constexpr int32_t kLikeHandles = 55;
constexpr int32_t kMovesWhole = 99;

constexpr double kPaintStep = 0.05;
constexpr int32_t kBoundsSegments = 20;
constexpr double kTwoPi = 6.283185307179586;
// Chords whose slopes differ by less than this are taken for a straight line.
constexpr double kSameSlope = (0.1 + 1) * 1e-7 + 0.1;

bool IsStraight(int16_t type) { return type == bvxPolyline || type == bvxPolygon || type == bvxFreehand; }

// The slope of a chord; 0 for a vertical or horizontal one.
double LineSlope(const WorldPoint& a, const WorldPoint& b)
{
    const double dx = b.x - a.x, dy = b.y - a.y;
    return std::fabs(dx) > 1e-7 && std::fabs(dy) > 1e-7 ? dy / dx : 0.0;
}

DeviceRect BoxOf(std::span<const DevicePoint> points)
{
    if (points.empty()) return {};
    DeviceRect box{points[0].x, points[0].y, points[0].x, points[0].y};
    for (const DevicePoint& d : points)
        box = {std::min(box.left, d.x), std::min(box.top, d.y), std::max(box.right, d.x), std::max(box.bottom, d.y)};
    return box;
}

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

bool CPolyShape::InsertPoint(int16_t index, double x, double y, const ShapeContext& view)
{
    if (index < 0 || size_t(index) >= Points.size() || Points.size() >= kMaxPoints) return false;
    Points.insert(Points.begin() + index, WorldPoint{x, y});
    UpdateBounds(view);
    return true;
}

bool CPolyShape::DeletePoint(int16_t index, const ShapeContext& view)
{
    if (index < 0 || size_t(index) >= Points.size()) return false;
    Points.erase(Points.begin() + index);
    UpdateBounds(view);
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
    // One pixel past the first point, where that is a number.
    const auto past = [](int32_t v) { return v == INT32_MAX ? v : v + 1; };
    DeviceRect box{first.x, first.y, past(first.x), past(first.y)};
    for (size_t i = 1; i < Points.size(); ++i) {
        const DevicePoint d = world.WorldToDevice(Points[i]);
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
    const CadWorld& world = view.World;
    switch (GetShapeType()) {
    case bvxPolyline:
    case bvxFreehand: dc.Polyline(ToDevice(Points, world)); break;
    case bvxPolygon: dc.Polygon(ToDevice(Points, world)); break;
    case bvxSpline:
    case bvxClosedSpline: {
        if (Points.size() == 1) {
            const DevicePoint p = world.WorldToDevice(Points[0]);
            dc.MoveToEx(p.x, p.y);
            dc.LineTo(p.x, p.y + 1);
            break;
        }
        const std::span<const DevicePoint> curve = SplineToDevice(world, kPaintStep);
        StoreBounds(BoxOf(curve));
        if (GetShapeType() == bvxSpline)
            dc.Polyline(curve);
        else
            dc.Polygon(curve);
        break;
    }
    case bvx3PointArc: {
        if (Points.size() == 2) {
            const std::span<const DevicePoint> ends = ToDevice(Points, world);
            dc.MoveToEx(ends[0].x, ends[0].y);
            dc.LineTo(ends[1].x, ends[1].y);
            break;
        }
        if (Points.size() != 3) break;
        const ArcThrough arc = ThreePointArc(world);
        const DevicePoint start = world.WorldToDevice(arc.start), end = world.WorldToDevice(arc.end);
        if (arc.circle.sweep == 0) {
            // On one line: the straight way from the first point to the last.
            dc.MoveToEx(start.x, start.y);
            dc.LineTo(end.x, end.y);
            break;
        }
        DeviceRect r = OrderedRect(CircleDeviceRect(arc.circle, world));
        if (BeyondDeviceLimit(r) || !dc.Arc(r.left, r.top, r.right, r.bottom, start.x, start.y, end.x, end.y)) {
            // Past 16 bits the platform draws no arc: every device draws the same steps.
            CPolyShape outline;
            if (ConvertTo(bvxPolyline, &outline, 1, kBeyondLimitSteps, &view)) outline.Draw(dc, clip, view, 0);
        }
        ArcBoundsDevice(r, start, end, false);
        StoreBounds(r);
        break;
    }
    default: break;
    }
}

std::span<const DevicePoint> CPolyShape::SplineToDevice(const CadWorld& world, double step) const
{
    thread_local std::vector<DevicePoint> curve;
    thread_local std::vector<WorldPoint> controls;
    controls.resize(Points.size());
    // The curve runs through the control points' pixels.
    for (size_t i = 0; i < Points.size(); ++i) {
        const DevicePoint d = world.WorldToDevice(Points[i]);
        controls[i] = {double(d.x), double(d.y)};
    }
    curve.clear();
    if (controls.size() == 2) {
        curve = {world.WorldToDevice(Points[0]), world.WorldToDevice(Points[1])};
        return curve;
    }
    const double end = (step + 1) - (std::fabs(step + 1) + 1) * 1e-7;
    ForEachSplineSpan(controls, GetShapeType() == bvxClosedSpline,
                      [&](const WorldPoint& a, const WorldPoint& b, const WorldPoint& c, const WorldPoint& d) {
                          for (double t = 0; t < end; t += step) {
                              const WorldPoint q = SplinePoint(a, b, c, d, kSplineTension, t);
                              curve.push_back({RoundHalfDown(q.x), RoundHalfDown(q.y)});
                          }
                      });
    if (!curve.empty()) curve.front() = {int32_t(controls[0].x), int32_t(controls[0].y)};
    return curve;
}

size_t CPolyShape::SplineToWorld(int32_t segments, WorldRect& rect, CObjShape* target) const
{
    if (Points.empty() || segments < 1) return 0;
    const WorldPoint& first = Points.front();
    rect = {first.x, first.y, first.x, first.y};
    size_t count = 0;
    auto take = [&](const WorldPoint& q, bool widen) {
        if (widen)
            rect = {std::min(rect.left, q.x), std::min(rect.top, q.y), std::max(rect.right, q.x),
                    std::max(rect.bottom, q.y)};
        if (target) target->SetPoint(-1, q.x, q.y, nullptr);
        ++count;
    };
    take(first, false);
    if (Points.size() == 2) {
        take(Points[1], true);
        return count;
    }
    bool firstOfAll = true;
    ForEachSplineSpan(Points, GetShapeType() == bvxClosedSpline,
                      [&](const WorldPoint& a, const WorldPoint& b, const WorldPoint& c, const WorldPoint& d) {
                          for (int32_t k = 0; k < segments; ++k) {
                              if (firstOfAll) {
                                  firstOfAll = false;
                                  continue;
                              }
                              take(SplinePoint(a, b, c, d, kSplineTension, double(k) / segments), true);
                          }
                      });
    if (GetShapeType() == bvxSpline && Points.size() > 2) take(Points.back(), false);
    return count;
}

bool CPolyShape::HitSpline(const CadWorld& world, DevicePoint point, int16_t method, double step) const
{
    if (Points.size() == 2)
        return HitSegment(world.WorldToDevice(Points[0]), world.WorldToDevice(Points[1]), point, 0) != 0;
    int32_t crossings = 0;
    bool hit = false, started = false;
    DevicePoint previous{};
    ForEachSplineSpan(Points, GetShapeType() == bvxClosedSpline,
                      [&](const WorldPoint& a, const WorldPoint& b, const WorldPoint& c, const WorldPoint& d) {
                          for (double t = 0; !hit && t < step + 1; t += step) {
                              const DevicePoint q = world.WorldToDevice(SplinePoint(a, b, c, d, kSplineTension, t));
                              if (started && HitSegment(previous, q, point, method)) {
                                  if (method == kSearchOnBorder) hit = true;
                                  ++crossings;
                                  previous = q;
                                  break; // a crossing leaves the span
                              }
                              previous = q;
                              started = true;
                          }
                      });
    return method == kSearchOnBorder ? hit : crossings % 2 == 1;
}

CPolyShape::ArcThrough CPolyShape::ThreePointArc(const CadWorld& world) const
{
    ArcThrough arc{CircleThroughWorld(Points[0], Points[1], Points[2], world.SignX, world.SignY), Points[0], Points[2]};
    if (arc.circle.sweep == 2) std::swap(arc.start, arc.end);
    return arc;
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
    const int16_t method = GetSearchMethod();
    if (IsSpline()) return Points.size() >= 2 && HitSpline(view.World, point, method, kPaintStep);
    if (type == bvx3PointArc && Points.size() == 3) {
        if (std::fabs(LineSlope(Points[0], Points[1]) - LineSlope(Points[1], Points[2])) > kSameSlope) {
            CArcShape arc;
            if (ConvertTo(bvxArc, &arc, 0, 0, &view)) {
                arc.SetSearchMethod(method);
                arc.UpdateBounds(view);
                return arc.HitTest(point, view);
            }
        }
        // Nearly straight: the two chords.
        const std::span<const DevicePoint> d = ToDevice(Points, view.World);
        return HitSegment(d[0], d[1], point, 0) || HitSegment(d[1], d[2], point, 0) ? 1 : 0;
    }
    if (!IsStraight(type) || Points.size() < 2) return 0;
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

void CPolyShape::UpdateBounds(const ShapeContext& view)
{
    if (GetShapeType() == bvx3PointArc && Points.size() >= 3) {
        const ArcThrough arc = ThreePointArc(view.World);
        if (arc.circle.sweep != 0) {
            DeviceRect r = OrderedRect(CircleDeviceRect(arc.circle, view.World));
            ArcBoundsDevice(r, view.World.WorldToDevice(arc.start), view.World.WorldToDevice(arc.end), false);
            StoreBounds(r);
            return;
        }
    }
    StoreBounds(PointsDeviceBox(view.World));
}

WorldRect CPolyShape::GetWorldBounds(const ShapeContext& view) const
{
    if (Points.empty()) return {};
    const CadWorld& world = view.World;
    WorldRect r{Points.front().x, Points.front().y, Points.front().x, Points.front().y};
    if (IsSpline()) {
        SplineToWorld(kBoundsSegments, r, nullptr);
    } else {
        for (const WorldPoint& p : Points)
            r = {std::min(r.left, p.x), std::min(r.top, p.y), std::max(r.right, p.x), std::max(r.bottom, p.y)};
    }
    if (world.SignX < 0) std::swap(r.left, r.right);
    if (world.SignY < 0) std::swap(r.top, r.bottom);
    if (GetShapeType() == bvx3PointArc && Points.size() >= 3) {
        const ArcThrough arc = ThreePointArc(world);
        if (arc.circle.sweep != 0) {
            const WorldPoint& c = arc.circle.centre;
            const double rad = arc.circle.radius;
            r = {c.x - rad * world.SignX, c.y - rad * world.SignY, c.x + rad * world.SignX, c.y + rad * world.SignY};
            ArcBoundsWorld(r, arc.start, arc.end, world.SignX, world.SignY, false);
        }
    }
    return r;
}

bool CPolyShape::ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const
{
    if (!target) return false;
    const int16_t source = GetShapeType();
    if (source == bvx3PointArc) return ConvertArc(type, target, mode, value, view);
    if (IsSpline() && (type == bvxPolyline || type == bvxPolygon)) return ConvertSpline(type, target, value);
    if ((source == bvxSpline && type == bvxClosedSpline) || (source == bvxClosedSpline && type == bvxSpline)) {
        target->SetShapeType(uint8_t(type), 0);
        for (const WorldPoint& p : Points) target->SetPoint(-1, p.x, p.y, nullptr);
        return true;
    }
    const bool copies = (source == bvxPolyline && type == bvxPolygon) ||
                        (source == bvxFreehand && (type == bvxPolyline || type == bvxPolygon)) ||
                        (source == bvxPolygon && type == bvxPolyline);
    if (!copies) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (source == bvxPolygon && mode == 3) {
        // Opened at point k: the polyline starts and ends there.
        const double k = std::trunc(value);
        // The point it opens at stands at both ends: one more than the polygon has.
        if (!(k >= 0 && k <= double(Points.size()) - 1) || Points.size() + 1 > kMaxPoints) return false;
        const size_t start = size_t(k);
        for (size_t i = start; i < Points.size(); ++i) target->SetPoint(-1, Points[i].x, Points[i].y, nullptr);
        for (size_t i = 0; i <= start; ++i) target->SetPoint(-1, Points[i].x, Points[i].y, nullptr);
        return true;
    }
    for (const WorldPoint& p : Points) target->SetPoint(-1, p.x, p.y, nullptr);
    return true;
}

bool CPolyShape::ConvertSpline(int16_t type, CObjShape* target, double value) const
{
    if (Points.empty() || !std::isfinite(value)) return false;
    const double spans = double(Points.size()) - 1;
    double segments = std::max(std::trunc(value), spans);
    // More points than a shape holds would be made: refused. An open curve
    // ends on its last control point, a closed one comes back to its first.
    const bool closed = GetShapeType() == bvxClosedSpline && Points.size() > 2;
    const double made = closed ? double(Points.size()) * segments : spans * segments + 1;
    if (made > double(kMaxPoints)) return false;
    target->SetShapeType(uint8_t(type), 0);
    if (segments == spans || Points.size() == 1) {
        for (const WorldPoint& p : Points) target->SetPoint(-1, p.x, p.y, nullptr);
        return true;
    }
    WorldRect ignored;
    SplineToWorld(int32_t(segments), ignored, target);
    return true;
}

bool CPolyShape::ConvertArc(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const
{
    if (Points.size() != 3) return false;
    const bool toArc = type == bvxArc;
    if (!toArc && !((type == bvxPolyline || type == bvxPolygon) && (mode == 1 || mode == 2))) return false;
    const int16_t signX = view ? view->World.SignX : 1;
    const int16_t signY = view ? view->World.SignY : -1;
    ThreePointCircle circle = CircleThroughWorld(Points[0], Points[1], Points[2], signX, signY);
    if (circle.sweep == 0) return false;
    CArcShape seen;
    seen.Centre = circle.centre;
    seen.Radius = {circle.radius, circle.radius};
    double s = seen.AngleOf(Points[0]), e = seen.AngleOf(Points[2]);
    if (circle.sweep == 2) std::swap(s, e);
    const WorldPoint& c = circle.centre;
    if (toArc) {
        target->SetShapeType(uint8_t(type), 0);
        target->SetPoint(0, c.x, c.y, nullptr);
        target->SetPoint(1, circle.radius, circle.radius, nullptr);
        // Radians whatever the view's angle mode: no view given.
        target->SetPoint(2, s, e, nullptr);
        return true;
    }
    if (!(value > 0) || !std::isfinite(value)) return false;
    double u = s, v = e < s ? e + kTwoPi : e, step = value;
    const bool reversed = !((signX == 1 && signY == -1) || (signX == -1 && signY == 1));
    if (mode == 1) {
        const double oldV = v;
        if (reversed) std::swap(u, v);
        step = reversed ? (kTwoPi - std::fabs(s - oldV)) / value : std::fabs(v - s) / value;
    }
    if (v < u) v += kTwoPi;
    if (!(step > 0) || (v - u) / step + 2 > double(kMaxPoints)) return false;
    target->SetShapeType(uint8_t(type), 0);
    size_t made = 1;
    for (double a = u;; ++made) {
        const WorldPoint p = EllipsePoint(c, circle.radius, circle.radius, a);
        target->SetPoint(-1, p.x, p.y, nullptr);
        if (a == v || made >= kMaxPoints) break;
        a += step;
        if (a >= v) a = v;
    }
    return true;
}

} // namespace bvx
