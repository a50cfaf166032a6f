// The two-corner shape: rectangle, rounded rectangle, line and two-point
// ellipse. The figure is always upright between its corners.
#pragma once

#include "CObjShape.h"

namespace bvx {

class CRectShape : public CObjShape {
public:
    CRectShape() = default;
    // The tool's constructor: both corners at the press.
    explicit CRectShape(const WorldPoint& start);

    WorldPoint P1{};
    WorldPoint P2{};
    WorldPoint Radius{};      // corner rounding of type 2, world units
    int16_t LineType = -1;    // arrow heads of a line; -1 follows the layer

    static void NormalizeCorners(WorldPoint& a, WorldPoint& b);
    int16_t GetLineType() const { return GetShapeType() == bvxLine ? LineType : 0; }
    void SetLineType(int32_t v);

    int32_t GetHandleCount() const override;
    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    int16_t GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override;
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
    bool IsLine() const { return GetShapeType() == bvxLine; }
    // A line's second handle is handle 5 of the other types.
    int32_t CanonicalHandle(int32_t handle) const { return IsLine() && handle == 2 ? 5 : handle; }
    void DrawArrowHeads(DeviceContext& dc, DevicePoint a, DevicePoint b, const ShapeContext& view) const;
};

// Which handle a press on a shape's body takes, from where in the device
// rectangle it lands: a three by three grid of quarters, turned with the
// rectangle. The result is the grid sum 0 to 10 (columns 0-2, rows 0/4/8).
int32_t HandleGridSum(DeviceRect corners, DevicePoint point);

// The handles of a shape between two corners: 1 the first corner, then
// round the box to 5, the second corner; 2, 4, 6 and 8 the middles of the
// sides; 9 the centre. Moving one of 1 to 8 moves the coordinates it holds
// (false for another number). From a press, the handle of the grid zone it
// lands in.
WorldPoint RectHandlePoint(const WorldPoint& p1, const WorldPoint& p2, int32_t handle);
bool MoveRectHandle(WorldPoint& p1, WorldPoint& p2, int32_t handle, const WorldPoint& point);
int32_t RectHandleFromPoint(const DeviceRect& corners, DevicePoint point);

// Angles of device vectors in tenths of a degree, and integer rotation of
// device points, as the arrow heads are drawn.
int32_t AngleTenths(int32_t dx, int32_t dy);
void RotateDevicePoints(std::span<DevicePoint> points, int32_t tenths, DevicePoint pivot);

} // namespace bvx
