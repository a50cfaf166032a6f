// The centre-and-radius shape: circle and ellipse, always upright.
#pragma once

#include "CObjShape.h"

namespace bvx {

class CEllipseShape : public CObjShape {
public:
    CEllipseShape();
    // The tool's constructor: centred at the press.
    explicit CEllipseShape(const WorldPoint& centre);

    WorldPoint Centre{};
    double RadiusX = 0;
    double RadiusY = 0;

    int32_t GetHandleCount() const override { return 5; }
    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    int16_t GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return 2; }
    int16_t HandleToPoint(int32_t handle) const override;
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

private:
    bool IsCircle() const { return GetShapeType() == bvxCircle; }
    WorldRect Extent() const;
};

// A point of an ellipse at a true polar angle, and at an eccentric
// (parametric) angle.
WorldPoint PolarPoint(const WorldPoint& centre, double rx, double ry, double angle);
WorldPoint EllipsePoint(const WorldPoint& centre, double rx, double ry, double angle);

} // namespace bvx
