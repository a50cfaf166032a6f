// A one-pixel marker at a world point. A wider pen gives a wider dot; the
// marker has no size of its own.
#pragma once

#include "CObjShape.h"

namespace bvx {

class CPointShape : public CObjShape {
public:
    CPointShape();
    explicit CPointShape(const WorldPoint& position);

    WorldPoint Position{};

    int32_t GetHandleCount() const override { return 1; }
    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return 1; }
    int16_t HandleToPoint(int32_t) const override { return 0; }
    bool SetPoint(int16_t index, double x, double y, ShapeContext* view) override;
    void Transform(const Matrix3& matrix, ShapeContext& view) override;
    void Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode) override;
    void Move(const WorldPoint& delta, ShapeContext& view) override;
    int32_t HitTest(DevicePoint point, ShapeContext& view) override;
    void MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view) override;
    std::unique_ptr<CObjShape> Clone(int16_t withAttr) const override;
    int32_t HandleFromPoint(DevicePoint, ShapeContext&) const override { return 1; }
    int16_t NearestPoint(DevicePoint, ShapeContext&) const override { return 0; }
    void UpdateBounds(const ShapeContext& view) override;
    WorldRect GetWorldBounds(const ShapeContext& view) const override;
};

} // namespace bvx
