// The portable device: draws into a 32-bit memory bitmap with the pixel
// rules of the platform's GDI in its default mapping mode.
#pragma once

#include "../DeviceContext.h"
#include "../Region.h"

#include <memory>
#include <vector>

namespace bvx {

namespace raster {
class ClipRegion;
}

class RasterDeviceContext final : public DeviceContext {
public:
    // A memory context; with no bitmap selected every drawing call is a no-op.
    explicit RasterDeviceContext(BitmapHandle bitmap = nullptr, int32_t dpiX = 96, int32_t dpiY = 96);
    ~RasterDeviceContext() override;

    PenHandle SelectPen(PenHandle pen) override;
    BrushHandle SelectBrush(BrushHandle brush) override;
    FontHandle SelectFont(FontHandle font) override;
    BitmapHandle SelectBitmap(BitmapHandle bitmap) override;
    BitmapHandle CurrentBitmap() const override { return state_.bitmap; }

    BackMode SetBkMode(BackMode mode) override;
    ColorRef SetBkColor(ColorRef color) override;
    ColorRef SetTextColor(ColorRef color) override;
    PolyFillMode SetPolyFillMode(PolyFillMode mode) override;
    Rop2 SetROP2(Rop2 rop) override;
    BackMode GetBkMode() const override { return state_.backMode; }
    ColorRef GetBkColor() const override { return state_.backColor; }
    ColorRef GetTextColor() const override { return state_.textColor; }

    DevicePoint MoveToEx(int32_t x, int32_t y) override;
    bool LineTo(int32_t x, int32_t y) override;
    bool Polyline(std::span<const DevicePoint> points) override;
    bool Polygon(std::span<const DevicePoint> points) override;
    bool Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override;
    bool RoundRect(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t ellipseWidth,
                   int32_t ellipseHeight) override;
    bool Ellipse(int32_t left, int32_t top, int32_t right, int32_t bottom) override;
    bool Arc(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart, int32_t xEnd,
             int32_t yEnd) override;
    bool Pie(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart, int32_t xEnd,
             int32_t yEnd) override;
    bool Chord(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart, int32_t xEnd,
               int32_t yEnd) override;

    bool PatBlt(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t rop) override;
    bool BitBlt(int32_t x, int32_t y, int32_t width, int32_t height, const DeviceContext& source, int32_t xSource,
                int32_t ySource, uint32_t rop) override;
    bool SetPixelV(int32_t x, int32_t y, ColorRef color) override;
    ColorRef GetPixel(int32_t x, int32_t y) const override;
    bool FillRect(const DeviceRect& rect, const Brush& brush) override;
    bool FrameRect(const DeviceRect& rect, const Brush& brush) override;
    bool DrawFocusRect(const DeviceRect& rect) override;

    bool IntersectClipRect(int32_t left, int32_t top, int32_t right, int32_t bottom) override;
    void SelectClipRegion(const DeviceRect* rect) override;
    void SelectClipRects(std::span<const DeviceRect> rects) override;

    int32_t SaveDC() override;
    bool RestoreDC(int32_t saved) override;

    int32_t SetDIBitsToDevice(int32_t xDest, int32_t yDest, int32_t width, int32_t height, int32_t xSource,
                              int32_t ySource, std::span<const uint8_t> packedDib) override;
    int32_t StretchDIBits(int32_t xDest, int32_t yDest, int32_t destWidth, int32_t destHeight, int32_t xSource,
                          int32_t ySource, int32_t sourceWidth, int32_t sourceHeight,
                          std::span<const uint8_t> packedDib, uint32_t rop) override;

    bool TextOutA(int32_t x, int32_t y, std::string_view text) override;
    bool GetTextExtentPoint32A(std::string_view text, DeviceSize& size) const override;
    bool GetTextMetricsA(TextMetrics& metrics) const override;
    bool GetCharABCWidthsA(uint8_t first, uint8_t last, AbcWidth* widths) const override;

    int32_t DpiX() const override { return dpiX_; }
    int32_t DpiY() const override { return dpiY_; }

    std::unique_ptr<DeviceContext> CreateCompatibleDC() const override;

private:
    struct State {
        BitmapHandle bitmap;
        PenHandle pen;
        BrushHandle brush;
        FontHandle font;
        BackMode backMode = BackMode::Opaque;
        ColorRef backColor = kWhite;
        ColorRef textColor = kBlack;
        PolyFillMode fillMode = PolyFillMode::Alternate;
        Rop2 rop2 = Rop2::CopyPen;
        DevicePoint position{};
        bool hasClip = false;
        DeviceRect clip{}; // the clip's box
        // Set when the clip is more than one rectangle; shared, never
        // changed, so that saving the state copies no rectangles.
        std::shared_ptr<const Region> region;
    };

    // The rectangle every primitive is clipped to: the bitmap, narrowed by
    // any clip's box. Empty when no bitmap is selected.
    DeviceRect EffectiveClip() const;
    // That box with the clip's rectangles, for the primitives.
    raster::ClipRegion Clip() const;
    void SetClip(Region region);

    // How the selected pen draws; see RasterDeviceContext.cpp.
    struct Stroke;
    // Reusable buffers of the rasterizers, so that drawing allocates only
    // while they grow.
    struct Scratch;

    Stroke CurrentStroke() const;
    bool StrokeAndFill(const Stroke& stroke, bool closed, int interiorKind, PolyFillMode fillMode);
    void StrokeThin(const Stroke& stroke, bool closed);
    bool DrawRectangle(const Stroke& stroke, int64_t left, int64_t top, int64_t right, int64_t bottom);
    bool DrawArc(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart,
                 int32_t xEnd, int32_t yEnd, int kind);
    bool PenDeviceRect(const Stroke& stroke, int64_t& left, int64_t& top, int64_t& right, int64_t& bottom) const;
    bool PatRect(int64_t x, int64_t y, int64_t width, int64_t height, const Brush* brush, Rop2 rop);
    // The selected font, or the device's own when none is.
    const Font* TextFont() const;
    // Fills the quadrilateral of a text's cell, underline or strike-out line.
    void FillTextQuad(const DevicePoint (&corners)[4], ColorRef color);

    State state_;
    std::vector<State> saved_;
    int32_t dpiX_;
    int32_t dpiY_;
    std::unique_ptr<Scratch> scratch_;
};

} // namespace bvx
