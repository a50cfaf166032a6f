#include "TestCard.h"

#include <array>
#include <cmath>
#include <numbers>
#include <string>

namespace bvx {

namespace {

constexpr std::array<ColorRef, 8> kPalette = {
    MakeRgb(0, 0, 0),   MakeRgb(192, 0, 0),   MakeRgb(0, 128, 0),   MakeRgb(0, 0, 192),
    MakeRgb(160, 96, 0), MakeRgb(128, 0, 128), MakeRgb(0, 128, 128), MakeRgb(96, 96, 96),
};

// Brush for cell i: null, solid, then the six hatches.
BrushHandle BrushForCell(int i, ColorRef color)
{
    if (i == 0) return CreateNullBrush();
    if (i == 1) return CreateSolidBrush(color);
    return CreateHatchBrush(HatchStyle(i - 2), color);
}

// Pen styles across, widths 1, 2 and 5 down, on a yellow ground so that
// opaque gaps in the back colour show.
void DrawPenRows(DeviceContext& dc, int32_t top)
{
    dc.SetBkColor(MakeRgb(255, 255, 160));
    const int32_t widths[] = {1, 2, 5};
    for (int row = 0; row < 3; ++row) {
        for (int style = 0; style < 8; ++style) {
            int32_t x = 20 + style * 115;
            int32_t y = top + row * 40;
            dc.SetBkMode(row == 0 && style % 2 ? BackMode::Transparent : BackMode::Opaque);
            auto old = dc.SelectPen(CreatePen(PenStyle(style), widths[row], kPalette[style]));
            const DevicePoint zigzag[] = {{x, y}, {x + 40, y + 25}, {x + 70, y}, {x + 100, y + 25}};
            dc.Polyline(zigzag);
            dc.SelectPen(old);
        }
    }
}

// Every closed figure with every brush, in opaque and transparent back mode.
void DrawFigureGrid(DeviceContext& dc, int32_t top)
{
    dc.SetBkColor(MakeRgb(255, 255, 160));
    for (int brush = 0; brush < 8; ++brush) {
        int32_t x = 20 + brush * 115;
        dc.SetBkMode(brush % 2 ? BackMode::Transparent : BackMode::Opaque);
        auto oldPen = dc.SelectPen(CreatePen(PenStyle::Solid, 1, kBlack));
        auto oldBrush = dc.SelectBrush(BrushForCell(brush, kPalette[(brush + 1) % 8]));
        dc.Rectangle(x, top, x + 45, top + 40);
        dc.RoundRect(x + 52, top, x + 100, top + 40, 16, 12);
        dc.Ellipse(x, top + 48, x + 45, top + 88);
        dc.Pie(x + 52, top + 48, x + 100, top + 88, x + 100, top + 48, x + 52, top + 88);
        dc.Chord(x, top + 96, x + 45, top + 136, x + 45, top + 96, x, top + 116);
        dc.Arc(x + 52, top + 96, x + 100, top + 136, x + 100, top + 116, x + 76, top + 96);
        dc.SelectBrush(oldBrush);
        dc.SelectPen(oldPen);
    }
}

// A five-pointed star in both fill modes: the centre is empty only in the
// alternate mode.
void DrawStars(DeviceContext& dc, int32_t top)
{
    auto oldPen = dc.SelectPen(CreatePen(PenStyle::Solid, 1, MakeRgb(0, 0, 128)));
    auto oldBrush = dc.SelectBrush(CreateSolidBrush(MakeRgb(120, 160, 255)));
    for (int mode = 0; mode < 2; ++mode) {
        DevicePoint star[5];
        int32_t cx = 70 + mode * 120, cy = top + 55;
        for (int i = 0; i < 5; ++i) {
            double a = -std::numbers::pi / 2 + i * 4 * std::numbers::pi / 5;
            star[i] = {cx + int32_t(std::lround(50 * std::cos(a))), cy + int32_t(std::lround(50 * std::sin(a)))};
        }
        dc.SetPolyFillMode(mode == 0 ? PolyFillMode::Alternate : PolyFillMode::Winding);
        dc.Polygon(star);
    }
    dc.SelectBrush(oldBrush);
    dc.SelectPen(oldPen);
}

// Blits, raster operations, pixels and focus rectangles.
void DrawBlitStrip(DeviceContext& dc, int32_t top)
{
    int32_t x = 280;
    auto oldBrush = dc.SelectBrush(CreateHatchBrush(HatchStyle::DiagCross, MakeRgb(0, 128, 0)));
    dc.PatBlt(x, top, 60, 50, RasterOp::PatCopy);
    dc.PatBlt(x + 70, top, 60, 50, RasterOp::Blackness);
    dc.PatBlt(x + 80, top + 10, 40, 30, RasterOp::Whiteness);
    dc.PatBlt(x + 140, top, 60, 50, RasterOp::PatCopy);
    dc.PatBlt(x + 150, top + 10, 40, 30, RasterOp::DstInvert);
    dc.SelectBrush(oldBrush);

    // Copy the star to the right through a second memory context.
    auto scratch = dc.CreateCompatibleDC();
    if (auto bitmap = CreateBitmap(110, 110)) {
        scratch->SelectBitmap(bitmap);
        scratch->BitBlt(0, 0, 110, 110, dc, 15, top, RasterOp::SrcCopy);
        dc.BitBlt(x + 220, top, 110, 110, *scratch, 0, 0, RasterOp::SrcCopy);
    }

    for (int i = 0; i < 64; ++i) dc.SetPixelV(x + 350 + i, top + (i * i) % 50, kPalette[i % 8]);
    dc.FillRect({x + 430, top, x + 490, top + 50}, Brush{BrushStyle::Solid, {}, MakeRgb(255, 200, 0)});
    dc.FrameRect({x + 500, top, x + 560, top + 50}, Brush{BrushStyle::Solid, {}, MakeRgb(200, 0, 0)});
    dc.DrawFocusRect({x + 570, top, x + 640, top + 50});
    // Twice: the second erases the first.
    dc.DrawFocusRect({x + 575, top + 5, x + 635, top + 45});
    dc.DrawFocusRect({x + 575, top + 5, x + 635, top + 45});
}

} // namespace

void DrawTestCard(DeviceContext& dc)
{
    dc.FillRect({0, 0, kTestCardWidth, kTestCardHeight}, Brush{BrushStyle::Solid, {}, kWhite});
    DrawPenRows(dc, 20);
    DrawFigureGrid(dc, 150);
    DrawStars(dc, 310);
    DrawBlitStrip(dc, 310);
    // Wide inside-frame pens keep within the box.
    auto oldPen = dc.SelectPen(CreatePen(PenStyle::InsideFrame, 9, MakeRgb(0, 96, 192)));
    auto oldBrush = dc.SelectBrush(CreateSolidBrush(MakeRgb(230, 230, 230)));
    dc.Rectangle(20, 450, 160, 560);
    dc.Ellipse(180, 450, 320, 560);
    dc.SelectPen(CreatePen(PenStyle::Solid, 9, MakeRgb(192, 96, 0)));
    dc.Rectangle(340, 450, 480, 560);
    dc.Ellipse(500, 450, 640, 560);
    dc.SelectBrush(oldBrush);
    dc.SelectPen(oldPen);
}

} // namespace bvx
