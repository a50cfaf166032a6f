// The drawing device as the core sees it: the platform's device context
// contract, with its function names, so that a reader of GDI code finds them.
#pragma once

#include "Color.h"
#include "Font.h"
#include "GdiObjects.h"
#include "Geometry.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace bvx {

struct DeviceSize {
    int32_t cx = 0;
    int32_t cy = 0;
};

class DeviceContext {
public:
    virtual ~DeviceContext() = default;

    // Object selection: each returns what was selected before.
    virtual PenHandle SelectPen(PenHandle pen) = 0;
    virtual BrushHandle SelectBrush(BrushHandle brush) = 0;
    virtual FontHandle SelectFont(FontHandle font) = 0;
    // Memory contexts only; others return null and change nothing.
    virtual BitmapHandle SelectBitmap(BitmapHandle bitmap) = 0;
    virtual BitmapHandle CurrentBitmap() const = 0;

    virtual BackMode SetBkMode(BackMode mode) = 0;
    virtual ColorRef SetBkColor(ColorRef color) = 0;
    virtual ColorRef SetTextColor(ColorRef color) = 0;
    virtual PolyFillMode SetPolyFillMode(PolyFillMode mode) = 0;
    virtual Rop2 SetROP2(Rop2 rop) = 0;
    virtual BackMode GetBkMode() const = 0;
    virtual ColorRef GetBkColor() const = 0;
    virtual ColorRef GetTextColor() const = 0;

    // Lines and filled shapes with the current pen and brush.
    virtual DevicePoint MoveToEx(int32_t x, int32_t y) = 0; // returns the previous position
    virtual bool LineTo(int32_t x, int32_t y) = 0;
    virtual bool Polyline(std::span<const DevicePoint> points) = 0;
    virtual bool Polygon(std::span<const DevicePoint> points) = 0;
    virtual bool Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) = 0;
    virtual bool RoundRect(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t ellipseWidth,
                           int32_t ellipseHeight) = 0;
    virtual bool Ellipse(int32_t left, int32_t top, int32_t right, int32_t bottom) = 0;
    virtual bool Arc(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart,
                     int32_t xEnd, int32_t yEnd) = 0;
    virtual bool Pie(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart,
                     int32_t xEnd, int32_t yEnd) = 0;
    virtual bool Chord(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart, int32_t yStart,
                       int32_t xEnd, int32_t yEnd) = 0;

    // Blits and pixels.
    virtual bool PatBlt(int32_t x, int32_t y, int32_t width, int32_t height, uint32_t rop) = 0;
    virtual bool BitBlt(int32_t x, int32_t y, int32_t width, int32_t height, const DeviceContext& source,
                        int32_t xSource, int32_t ySource, uint32_t rop) = 0;
    virtual bool SetPixelV(int32_t x, int32_t y, ColorRef color) = 0;
    virtual ColorRef GetPixel(int32_t x, int32_t y) const = 0; // 0xFFFFFFFF outside
    virtual bool FillRect(const DeviceRect& rect, const Brush& brush) = 0;
    virtual bool FrameRect(const DeviceRect& rect, const Brush& brush) = 0;
    virtual bool DrawFocusRect(const DeviceRect& rect) = 0;

    // Clipping beyond the surface's own edges; an empty rectangle clips all.
    virtual bool IntersectClipRect(int32_t left, int32_t top, int32_t right, int32_t bottom) = 0;
    virtual void SelectClipRegion(const DeviceRect* rect) = 0; // null removes the clip
    // The union of the rectangles becomes the clip, each normalized as
    // CreateRectRgn does; an empty list clips all. For update regions.
    virtual void SelectClipRects(std::span<const DeviceRect> rects) = 0;

    // State stack: SaveDC returns the new depth; RestoreDC takes a depth or a
    // negative count relative to the top.
    virtual int32_t SaveDC() = 0;
    virtual bool RestoreDC(int32_t saved) = 0;

    // Device-independent bitmaps as one packed block (header, colour table,
    // bits). Both return the scan lines drawn, 0 on failure.
    virtual int32_t SetDIBitsToDevice(int32_t xDest, int32_t yDest, int32_t width, int32_t height, int32_t xSource,
                                      int32_t ySource, std::span<const uint8_t> packedDib) = 0;
    virtual int32_t StretchDIBits(int32_t xDest, int32_t yDest, int32_t destWidth, int32_t destHeight,
                                  int32_t xSource, int32_t ySource, int32_t sourceWidth, int32_t sourceHeight,
                                  std::span<const uint8_t> packedDib, uint32_t rop) = 0;

    // Text in the system code page, with the selected font.
    virtual bool TextOutA(int32_t x, int32_t y, std::string_view text) = 0;
    virtual bool GetTextExtentPoint32A(std::string_view text, DeviceSize& size) const = 0;
    virtual bool GetTextMetricsA(TextMetrics& metrics) const = 0;
    // For the characters first to last; false when no font can tell.
    virtual bool GetCharABCWidthsA(uint8_t first, uint8_t last, AbcWidth* widths) const = 0;

    virtual int32_t DpiX() const = 0;
    virtual int32_t DpiY() const = 0;

    // A memory context able to receive bitmaps of this device's format.
    virtual std::unique_ptr<DeviceContext> CreateCompatibleDC() const = 0;
};

} // namespace bvx
