// The elliptic arc family: arc, pie slice and chord. A centre, two radii
// and two angles in radians; the figure runs from the start angle to the
// end angle counter-clockwise on the screen.
#pragma once

#include "CObjShape.h"

namespace bvx {

class CArcShape : public CObjShape {
public:
    // Not a whole turn: the four-decimal constant the shape has always begun with.
    static constexpr double kDefaultEndAngle = 6.2832;

    CArcShape();
    // The tool's constructor: centred at the press.
    explicit CArcShape(const WorldPoint& centre);

    WorldPoint Centre{};
    WorldPoint Radius{};
    double StartAngle = 0;
    double EndAngle = kDefaultEndAngle;

    // The angle of a world point seen from the centre, in [0, 2 pi).
    double AngleOf(const WorldPoint& p) const;
    // The point of the ellipse at an angle.
    WorldPoint PointAt(double angle) const;
    WorldRect EllipseWorldRect() const;
    DeviceRect EllipseDeviceRect(const CadWorld& world) const;

    int32_t GetHandleCount() const override { return 3; }
    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    int16_t GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return 3; }
    int16_t GetPointKind(int16_t index) const override { return index == 2 ? 2 : 1; }
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
    // To a polyline (an arc) or a polygon (any of the three), by a count of
    // steps (mode 1) or an angle step (mode 2).
    bool ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const override;

private:
    // The angle of the circle's point that the point of the ellipse at
    // `angle` stands over: the parameter EllipsePoint takes.
    double EccentricAngle(double angle, int16_t signX, int16_t signY) const;
    // The device box of the drawn part; `closed` also takes in the centre.
    DeviceRect DrawnBounds(const CadWorld& world, bool closed, DeviceRect* ellipse = nullptr) const;
};

// Areas of the sector and of the segment between angles a and b (b past a).
double PieArea(double rx, double ry, double a, double b);
double ChordArea(double rx, double ry, double a, double b);

} // namespace bvx
