// The shape that owns a list of world points. Polylines, polygons and
// freehand curves are the list itself; splines and three-point arcs (types
// 8 to 10) read it as control points.
#pragma once

#include "ArcGeometry.h"
#include "CObjShape.h"

#include <vector>

namespace bvx {

class CPolyShape : public CObjShape {
public:
    // A point count has always been 16 bits, in files and at the interface.
    static constexpr size_t kMaxPoints = 32767;

    CPolyShape() = default;

    std::vector<WorldPoint> Points;

    // Appends; false once the list is full.
    bool AddPoint(const WorldPoint& point);
    // Before a point of the list, or out of it; false for an index outside it.
    bool InsertPoint(int16_t index, double x, double y, const ShapeContext& view);
    bool DeletePoint(int16_t index, const ShapeContext& view);

    int32_t GetHandleCount() const override;
    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    int16_t GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return int16_t(Points.size()); }
    int16_t HandleToPoint(int32_t handle) const override;
    // An index outside the list appends, so a caller builds a shape by rising indexes.
    bool SetPoint(int16_t index, double x, double y, ShapeContext* view) override;
    void Transform(const Matrix3& matrix, ShapeContext& view) override;
    double GetArea() const override;
    void Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode) override;
    void Move(const WorldPoint& delta, ShapeContext& view) override;
    int32_t HitTest(DevicePoint point, ShapeContext& view) override;
    void MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view) override;
    std::unique_ptr<CObjShape> Clone(int16_t withAttr) const override;
    int32_t HandleFromPoint(DevicePoint point, ShapeContext& view) const override;
    int16_t NearestPoint(DevicePoint point, ShapeContext& view) const override;
    void UpdateBounds(const ShapeContext& view) override;
    WorldRect GetWorldBounds(const ShapeContext& view) const override;
    bool ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const override;

    // A spline's points in world units, `segments` per span, into `target`
    // when there is one, and their box; the number of points.
    size_t SplineToWorld(int32_t segments, WorldRect& rect, CObjShape* target) const;

private:
    bool IsFreehand() const { return GetShapeType() == bvxFreehand; }
    bool IsSpline() const { return GetShapeType() == bvxSpline || GetShapeType() == bvxClosedSpline; }
    // A spline as device points for painting, `step` apart in t on each span.
    std::span<const DevicePoint> SplineToDevice(const CadWorld& world, double step) const;
    bool HitSpline(const CadWorld& world, DevicePoint point, int16_t method, double step) const;
    // The circle of a three-point arc, and its ends in the order the
    // platform's Arc runs.
    struct ArcThrough {
        ThreePointCircle circle;
        WorldPoint start, end;
    };
    ArcThrough ThreePointArc(const CadWorld& world) const;
    bool ConvertArc(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const;
    bool ConvertSpline(int16_t type, CObjShape* target, double value) const;
    // The device box of the points, from the first point's pixel on.
    DeviceRect PointsDeviceBox(const CadWorld& world) const;
};

} // namespace bvx
