// A bitmap shown in the box of two corners: stretched to it, tiled over it,
// or at its natural size from the upper left. The bitmap belongs to the
// drawing's picture table; shapes that name the same file share it. The
// same class is the world's background picture, which stands on no layer.
#pragma once

#include "CObjShape.h"
#include "raster/Dib.h"

#include <memory>
#include <string>

namespace bvx {

using SharedDib = std::shared_ptr<const DibBlock>;

namespace PictStyle {
constexpr uint16_t Stretch = 0;
constexpr uint16_t Tile = 1;
constexpr uint16_t Natural = 2;
constexpr uint16_t InnerHit = 0x80; // the last hit fell inside a natural-size image
} // namespace PictStyle

class CPictShape : public CObjShape {
public:
    CPictShape();
    // The tool's constructor: both corners at the press.
    explicit CPictShape(const WorldPoint& start);
    ~CPictShape() override;

    WorldPoint P1{};
    WorldPoint P2{};
    SharedDib Image;
    uint16_t Style = PictStyle::Stretch;
    int32_t ImageWidth = 0;
    int32_t ImageHeight = 0;
    uint16_t TableLink = 0;
    std::string ImageName; // the picture table's key, UTF-8; empty for none

    bool HasImage() const { return Image != nullptr; }
    // Takes a table entry's bitmap under its name.
    void BindImage(uint16_t style, std::string name, SharedDib image);
    void ReleaseImage();
    bool GetInnerHit() const { return (Style & PictStyle::InnerHit) != 0; }
    void SetInnerHit(bool on) { Style = on ? uint16_t(Style | PictStyle::InnerHit) : uint16_t(Style & ~PictStyle::InnerHit); }
    // The bitmap in a device rectangle, by the style, as far as it meets the
    // visible area.
    void RenderImage(DeviceContext& dc, const DeviceRect& rect, const DeviceRect& visible) const;

    WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const override;
    WorldPoint GetPoint(int16_t index, const ShapeContext& view) const override;
    int16_t GetPointCount() const override { return 2; }
    int16_t HandleToPoint(int32_t handle) const override;
    bool SetPoint(int16_t index, double x, double y, ShapeContext* view) override;
    void Transform(const Matrix3& matrix, ShapeContext& view) override;
    void Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode) override;
    void Move(const WorldPoint& delta, ShapeContext& view) override;
    int32_t HitTest(DevicePoint point, ShapeContext& view) override;
    void MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view) override;
    std::unique_ptr<CObjShape> Clone(int16_t withAttr) const override;
    int32_t HandleFromPoint(DevicePoint point, ShapeContext& view) const override;
    int16_t NearestPoint(DevicePoint point, ShapeContext& view) const override;
    void UpdateBounds(const ShapeContext& view) override;
    WorldRect GetWorldBounds(const ShapeContext& view) const override;

private:
    // The device box of the corners, with its far edges included.
    DeviceRect DeviceBox(const ShapeContext& view) const;
    void TakeImageSize();
};

} // namespace bvx
