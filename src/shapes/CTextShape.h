// One line of text anchored at a world point. It refers to a slot of the
// view's font table and keeps the layout the font had when it was made; its
// bounds come from measuring it on a device, so a change of geometry
// measures it again.
#pragma once

#include "CObjShape.h"
#include "CTextFont.h"

#include <array>

namespace bvx {

class CTextShape : public CObjShape {
public:
    CTextShape();

    WorldPoint Origin{};
    WorldPoint Extent{}; // kept and saved; nothing draws with it
    std::u16string Text;
    CTextFont Font;

    // The five corners of the measured box, the first repeated last.
    using Corners = std::array<DevicePoint, 5>;

    // Bounds (and, when `paint`, the pixels) at the present zoom; the caret
    // goes to the upper right.
    void Render(ShapeContext& view, DeviceContext& dc, const DeviceRect& clip, bool paint);
    // With the font selected: the box of the text about `anchor`, which
    // becomes the point to draw the text from.
    void Measure(DeviceContext& dc, int32_t fontHeight, DeviceRect& rect, DevicePoint& anchor, Corners& corners) const;
    void AddChar(ShapeContext& view, uint8_t ch);
    void Backspace(ShapeContext& view);
    // A new text or orientation, measured again.
    void SetText(ShapeContext& view, std::u16string text);
    void SetOrientation(ShapeContext& view, int32_t tenths);

    int32_t GetHandleCount() const override { return 1; }
    WorldPoint GetHandlePoint(int32_t, const ShapeContext&) const override { return Origin; }
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
    // Render keeps the bounds.
    void UpdateBounds(const ShapeContext&) override {}

    // The measured box in world units, for the world's extents.
    bool MeasureWorld(ShapeContext& view, WorldRect& rect);

private:
    // Measures on a device of the window, without painting.
    void Remeasure(ShapeContext& view);
    // The measured corners with the font realized, as a hit test needs them.
    bool MeasuredCorners(ShapeContext& view, DeviceContext& dc, DeviceRect& rect, Corners& corners);
};

} // namespace bvx
