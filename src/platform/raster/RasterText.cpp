// Text on the raster device: glyphs of the selected font placed along the
// baseline from the cell's top-left corner, turned by the font's escapement,
// in the text colour; the cell filled first with the back colour when the
// back mode is opaque; underline and strike-out drawn as lines of the font's
// own thickness.
#include "RasterDeviceContext.h"

#include "ClipRegion.h"
#include "SpanPrimitives.h"
#include "platform/FontEngine.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bvx {

const Font* RasterDeviceContext::TextFont() const
{
    if (state_.font) return state_.font.get();
    // What a device holds before any font is selected.
    static const FontHandle deviceFont = FontEngine::Shared().CreateFont(LogFont{});
    return deviceFont.get();
}

void RasterDeviceContext::FillTextQuad(const DevicePoint (&corners)[4], ColorRef color)
{
    PenHandle pen = SelectPen(CreatePen(PenStyle::Null, 0, 0));
    BrushHandle brush = SelectBrush(CreateSolidBrush(color));
    const Rop2 rop = SetROP2(Rop2::CopyPen);
    const PolyFillMode mode = SetPolyFillMode(PolyFillMode::Alternate);
    Polygon(corners);
    SetPolyFillMode(mode);
    SetROP2(rop);
    SelectBrush(std::move(brush));
    SelectPen(std::move(pen));
}

bool RasterDeviceContext::TextOutA(int32_t x, int32_t y, std::string_view text)
{
    const Font* font = TextFont();
    if (!font) return false;
    if (!state_.bitmap || text.empty()) return true;
    const TextMetrics& tm = font->Metrics();
    DeviceSize extent;
    GetTextExtentPoint32A(text, extent);

    // Along the baseline (ux, uy) and down the cell (dx, dy), in device
    // pixels, y down.
    const double turn = (font->Logical().escapement % 3600) / 10.0 * std::numbers::pi / 180.0;
    const double ux = std::cos(turn), uy = -std::sin(turn), dx = -uy, dy = ux;
    const bool upright = font->Logical().escapement % 3600 == 0;
    // Points far off the device are held back from the 32-bit range.
    auto clamped = [](double v) { return int32_t(std::clamp(std::round(v), -1e9, 1e9)); };
    auto at = [&](double along, double down) {
        return DevicePoint{clamped(x + along * ux + down * dx), clamped(y + along * uy + down * dy)};
    };
    auto band = [&](double along0, double along1, double down0, double down1, ColorRef color) {
        const DevicePoint quad[4] = {at(along0, down0), at(along1, down0), at(along1, down1), at(along0, down1)};
        FillTextQuad(quad, color);
    };
    if (state_.backMode == BackMode::Opaque) band(0, extent.cx, 0, tm.height, state_.backColor);

    const raster::Paint ink = raster::Paint::Solid(raster::MasksFor(Rop2::CopyPen, state_.textColor));
    Bitmap& surface = *state_.bitmap;
    raster::ClipRegion clip = Clip();
    const DeviceRect& box = clip.Box();
    // The pen moves in whole pixels, glyph by glyph: along the row by the
    // hinted advances, or by each turned glyph's own rounded step.
    const DevicePoint baseline = upright ? DevicePoint{x, y} : at(0, tm.ascent);
    int64_t penX = baseline.x, penY = upright ? int64_t(y) + tm.ascent : baseline.y;
    for (char c : text) {
        const uint8_t ch = uint8_t(c);
        const GlyphImage g = font->Glyph(ch);
        const int64_t px = penX, py = penY;
        penX += upright ? font->Advance(ch) : g.stepX;
        penY += upright ? 0 : g.stepY;
        if (!g.bits) continue;
        const int64_t left = px + g.left, top = py - g.top;
        if (left >= box.right || left + g.width <= box.left || top >= box.bottom || top + g.rows <= box.top) continue;
        for (int32_t row = int32_t(std::max<int64_t>(0, box.top - top)); row < g.rows && top + row < box.bottom; ++row) {
            const uint8_t* bits = g.bits + size_t(row) * size_t(g.pitch);
            const int32_t y0 = int32_t(top + row);
            // Runs of set bits become spans, cut to the clip.
            for (int32_t col = 0; col < g.width;) {
                if (!(bits[col >> 3] & (0x80 >> (col & 7)))) {
                    ++col;
                    continue;
                }
                const int32_t start = col;
                while (col < g.width && (bits[col >> 3] & (0x80 >> (col & 7)))) ++col;
                const int32_t x0 = int32_t(std::max<int64_t>(left + start, box.left));
                const int32_t x1 = int32_t(std::min<int64_t>(left + col, box.right));
                if (x0 < x1) clip.ForEachSpan(y0, x0, x1, [&](int32_t a, int32_t b) { ink.Span(surface, y0, a, b); });
            }
        }
    }
    const LogFont& logical = font->Logical();
    if (logical.underline) {
        const double top = tm.ascent + font->UnderlinePosition();
        band(0, extent.cx, top, top + font->UnderlineThickness(), state_.textColor);
    }
    if (logical.strikeOut) {
        const double top = tm.ascent - font->StrikeOutPosition();
        band(0, extent.cx, top, top + font->StrikeOutThickness(), state_.textColor);
    }
    return true;
}

bool RasterDeviceContext::GetTextExtentPoint32A(std::string_view text, DeviceSize& size) const
{
    size = {};
    const Font* font = TextFont();
    if (!font) return false;
    int64_t width = 0;
    for (char c : text) width += font->Advance(uint8_t(c));
    size = {int32_t(std::min<int64_t>(width, INT32_MAX)), font->Metrics().height};
    return true;
}

bool RasterDeviceContext::GetTextMetricsA(TextMetrics& metrics) const
{
    const Font* font = TextFont();
    metrics = font ? font->Metrics() : TextMetrics{};
    return font != nullptr;
}

bool RasterDeviceContext::GetCharABCWidthsA(uint8_t first, uint8_t last, AbcWidth* widths) const
{
    const Font* font = TextFont();
    if (!font || last < first || !widths) return false;
    for (int ch = first; ch <= last; ++ch) widths[ch - first] = font->Abc(uint8_t(ch));
    return true;
}

} // namespace bvx
