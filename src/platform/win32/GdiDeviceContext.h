// DeviceContext over the platform's own GDI: the device of real Windows
// windows and printers, and the reference the raster device is held to.
#pragma once

#include "platform/DeviceContext.h"

#include <windows.h>

#include <vector>

namespace bvx {

class GdiDeviceContext : public DeviceContext {
public:
    // Draws into hdc; with ownsDc the context is deleted with this object.
    GdiDeviceContext(HDC hdc, bool ownsDc);
    ~GdiDeviceContext() override;
    GdiDeviceContext(const GdiDeviceContext&) = delete;
    GdiDeviceContext& operator=(const GdiDeviceContext&) = delete;

    HDC Handle() const { return hdc_; }

    PenHandle SelectPen(PenHandle pen) override;
    BrushHandle SelectBrush(BrushHandle brush) override;
    FontHandle SelectFont(FontHandle font) override;
    BitmapHandle SelectBitmap(BitmapHandle bitmap) override;
    BitmapHandle CurrentBitmap() const override { return nullptr; }

    BackMode SetBkMode(BackMode mode) override;
    ColorRef SetBkColor(ColorRef color) override;
    ColorRef SetTextColor(ColorRef color) override;
    PolyFillMode SetPolyFillMode(PolyFillMode mode) override;
    Rop2 SetROP2(Rop2 rop) override;
    BackMode GetBkMode() const override;
    ColorRef GetBkColor() const override;
    ColorRef GetTextColor() const override;

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

    int32_t DpiX() const override;
    int32_t DpiY() const override;

    std::unique_ptr<DeviceContext> CreateCompatibleDC() const override;

private:
    // The GDI objects made for what is selected now; the records stay with
    // the handles so that selection can hand the previous one back.
    struct Selection {
        PenHandle pen;
        BrushHandle brush;
        FontHandle font;
        HGDIOBJ gdiPen = nullptr;
        HGDIOBJ gdiBrush = nullptr;
        HGDIOBJ gdiFont = nullptr;
    };

    // Deletes the GDI objects that neither the current nor a saved state holds.
    void DeleteUnreferenced(std::vector<HGDIOBJ> candidates);
    template <typename Record, typename Make>
    Record Swap(Record record, Record& slot, HGDIOBJ& gdiSlot, HGDIOBJ original, Make make);

    HDC hdc_;
    bool ownsDc_;
    HGDIOBJ originalPen_;
    HGDIOBJ originalBrush_;
    HGDIOBJ originalFont_;
    Selection current_;
    std::vector<Selection> saved_;
};

// A memory context drawing into a 32-bit top-down DIB section, readable as a
// Bitmap afterwards.
class GdiDibSurface {
public:
    GdiDibSurface(int32_t width, int32_t height);
    ~GdiDibSurface();
    GdiDibSurface(const GdiDibSurface&) = delete;
    GdiDibSurface& operator=(const GdiDibSurface&) = delete;

    bool IsValid() const { return bits_ != nullptr; }
    DeviceContext& Context() { return *context_; }
    BitmapHandle ToBitmap() const;

private:
    int32_t width_;
    int32_t height_;
    HBITMAP dib_ = nullptr;
    HGDIOBJ oldBitmap_ = nullptr;
    uint32_t* bits_ = nullptr;
    std::unique_ptr<GdiDeviceContext> context_;
};

HPEN MakeGdiPen(const Pen& pen);
HBRUSH MakeGdiBrush(const Brush& brush);

} // namespace bvx
