#include "GdiDeviceContext.h"

#include "platform/DibFormat.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace bvx {

namespace {

std::vector<POINT> ToPoints(std::span<const DevicePoint> points)
{
    std::vector<POINT> out(points.size());
    for (size_t i = 0; i < points.size(); ++i) out[i] = {points[i].x, points[i].y};
    return out;
}

RECT ToRect(const DeviceRect& r) { return {r.left, r.top, r.right, r.bottom}; }

// A packed bitmap as GDI takes it: header and colour table in one block, the
// pixels in another. Both come from the parse the raster device uses, so the
// two devices agree on what a block holds, and GDI never reads past it.
struct GdiDib {
    std::vector<uint8_t> info;
    const uint8_t* bits = nullptr;
    int32_t rows = 0;
};

std::optional<GdiDib> ForGdi(std::span<const uint8_t> packedDib)
{
    const std::optional<DibView> view = ParseDib(packedDib);
    if (!view) return std::nullopt;
    GdiDib dib;
    dib.bits = view->bits.data();
    dib.rows = view->height;
    dib.info.assign(packedDib.data(), dib.bits);
    const uint32_t headerSize = LoadLe32(dib.info.data());
    if (headerSize != kDibCoreHeaderSize) {
        // GDI reads run-length data as far as the header's image size says.
        StoreLe32(dib.info.data() + 20, uint32_t(view->bits.size()));
        // Past the masks, the longer headers name colour spaces and profiles,
        // which the parse skips; GDI is not given them either.
        constexpr size_t kMasksEnd = kDibInfoHeaderSize + 12;
        if (headerSize > kMasksEnd) std::fill(dib.info.begin() + kMasksEnd, dib.info.begin() + headerSize, 0);
    }
    return dib;
}

} // namespace

HPEN MakeGdiPen(const Pen& pen)
{
    return ::CreatePen(int(pen.style), pen.width, pen.color);
}

HBRUSH MakeGdiBrush(const Brush& brush)
{
    LOGBRUSH lb{};
    lb.lbStyle = brush.style == BrushStyle::Solid ? BS_SOLID : brush.style == BrushStyle::Null ? BS_NULL : BS_HATCHED;
    lb.lbColor = brush.color;
    lb.lbHatch = ULONG_PTR(brush.hatch);
    return ::CreateBrushIndirect(&lb);
}

// Monochrome, as the raster device draws text.
HFONT MakeGdiFont(const Font& font)
{
    const LogFont& f = font.Logical();
    LOGFONTA lf{};
    lf.lfHeight = f.height;
    lf.lfWidth = f.width;
    lf.lfEscapement = f.escapement;
    lf.lfOrientation = f.orientation;
    lf.lfWeight = f.weight;
    lf.lfItalic = f.italic;
    lf.lfUnderline = f.underline;
    lf.lfStrikeOut = f.strikeOut;
    lf.lfCharSet = f.charSet;
    lf.lfOutPrecision = f.outPrecision;
    lf.lfClipPrecision = f.clipPrecision;
    lf.lfQuality = NONANTIALIASED_QUALITY;
    lf.lfPitchAndFamily = f.pitchAndFamily;
    f.faceName.copy(lf.lfFaceName, sizeof lf.lfFaceName - 1);
    return ::CreateFontIndirectA(&lf);
}

GdiDeviceContext::GdiDeviceContext(HDC hdc, bool ownsDc)
    : hdc_(hdc), ownsDc_(ownsDc), originalPen_(::GetCurrentObject(hdc, OBJ_PEN)),
      originalBrush_(::GetCurrentObject(hdc, OBJ_BRUSH)), originalFont_(::GetCurrentObject(hdc, OBJ_FONT))
{
}

GdiDeviceContext::~GdiDeviceContext()
{
    ::SelectObject(hdc_, originalPen_);
    ::SelectObject(hdc_, originalBrush_);
    ::SelectObject(hdc_, originalFont_);
    std::vector<HGDIOBJ> all{current_.gdiPen, current_.gdiBrush, current_.gdiFont};
    for (auto& s : saved_) all.insert(all.end(), {s.gdiPen, s.gdiBrush, s.gdiFont});
    current_ = {};
    saved_.clear();
    DeleteUnreferenced(std::move(all));
    if (ownsDc_) ::DeleteDC(hdc_);
}

void GdiDeviceContext::DeleteUnreferenced(std::vector<HGDIOBJ> candidates)
{
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    auto referenced = [&](HGDIOBJ object) {
        auto holds = [&](const Selection& s) {
            return s.gdiPen == object || s.gdiBrush == object || s.gdiFont == object;
        };
        return holds(current_) || std::any_of(saved_.begin(), saved_.end(), holds);
    };
    for (HGDIOBJ object : candidates)
        if (object && !referenced(object)) ::DeleteObject(object);
}

// Makes the GDI object of a record, selects it (or the context's own when
// there is none), and frees the one it replaces unless a saved state holds it.
template <typename Record, typename Make>
Record GdiDeviceContext::Swap(Record record, Record& slot, HGDIOBJ& gdiSlot, HGDIOBJ original, Make make)
{
    HGDIOBJ made = record ? HGDIOBJ(make(*record)) : nullptr;
    ::SelectObject(hdc_, made ? made : original);
    HGDIOBJ old = std::exchange(gdiSlot, made);
    Record previous = std::exchange(slot, std::move(record));
    DeleteUnreferenced({old});
    return previous;
}

PenHandle GdiDeviceContext::SelectPen(PenHandle pen)
{
    return Swap(std::move(pen), current_.pen, current_.gdiPen, originalPen_, MakeGdiPen);
}

BrushHandle GdiDeviceContext::SelectBrush(BrushHandle brush)
{
    return Swap(std::move(brush), current_.brush, current_.gdiBrush, originalBrush_, MakeGdiBrush);
}

FontHandle GdiDeviceContext::SelectFont(FontHandle font)
{
    return Swap(std::move(font), current_.font, current_.gdiFont, originalFont_, MakeGdiFont);
}
BitmapHandle GdiDeviceContext::SelectBitmap(BitmapHandle) { return nullptr; }

BackMode GdiDeviceContext::SetBkMode(BackMode mode) { return BackMode(::SetBkMode(hdc_, int(mode))); }
ColorRef GdiDeviceContext::SetBkColor(ColorRef color) { return ::SetBkColor(hdc_, color); }
ColorRef GdiDeviceContext::SetTextColor(ColorRef color) { return ::SetTextColor(hdc_, color); }
PolyFillMode GdiDeviceContext::SetPolyFillMode(PolyFillMode mode)
{
    return PolyFillMode(::SetPolyFillMode(hdc_, int(mode)));
}
Rop2 GdiDeviceContext::SetROP2(Rop2 rop) { return Rop2(::SetROP2(hdc_, int(rop))); }
BackMode GdiDeviceContext::GetBkMode() const { return BackMode(::GetBkMode(hdc_)); }
ColorRef GdiDeviceContext::GetBkColor() const { return ::GetBkColor(hdc_); }
ColorRef GdiDeviceContext::GetTextColor() const { return ::GetTextColor(hdc_); }

DevicePoint GdiDeviceContext::MoveToEx(int32_t x, int32_t y)
{
    POINT old{};
    ::MoveToEx(hdc_, x, y, &old);
    return {old.x, old.y};
}

bool GdiDeviceContext::LineTo(int32_t x, int32_t y) { return ::LineTo(hdc_, x, y); }

bool GdiDeviceContext::Polyline(std::span<const DevicePoint> points)
{
    auto p = ToPoints(points);
    return ::Polyline(hdc_, p.data(), int(p.size()));
}

bool GdiDeviceContext::Polygon(std::span<const DevicePoint> points)
{
    auto p = ToPoints(points);
    return ::Polygon(hdc_, p.data(), int(p.size()));
}

bool GdiDeviceContext::Rectangle(int32_t l, int32_t t, int32_t r, int32_t b) { return ::Rectangle(hdc_, l, t, r, b); }
bool GdiDeviceContext::RoundRect(int32_t l, int32_t t, int32_t r, int32_t b, int32_t w, int32_t h)
{
    return ::RoundRect(hdc_, l, t, r, b, w, h);
}
bool GdiDeviceContext::Ellipse(int32_t l, int32_t t, int32_t r, int32_t b) { return ::Ellipse(hdc_, l, t, r, b); }
bool GdiDeviceContext::Arc(int32_t l, int32_t t, int32_t r, int32_t b, int32_t xs, int32_t ys, int32_t xe, int32_t ye)
{
    return ::Arc(hdc_, l, t, r, b, xs, ys, xe, ye);
}
bool GdiDeviceContext::Pie(int32_t l, int32_t t, int32_t r, int32_t b, int32_t xs, int32_t ys, int32_t xe, int32_t ye)
{
    return ::Pie(hdc_, l, t, r, b, xs, ys, xe, ye);
}
bool GdiDeviceContext::Chord(int32_t l, int32_t t, int32_t r, int32_t b, int32_t xs, int32_t ys, int32_t xe,
                             int32_t ye)
{
    return ::Chord(hdc_, l, t, r, b, xs, ys, xe, ye);
}

bool GdiDeviceContext::PatBlt(int32_t x, int32_t y, int32_t w, int32_t h, uint32_t rop)
{
    return ::PatBlt(hdc_, x, y, w, h, rop);
}

bool GdiDeviceContext::BitBlt(int32_t x, int32_t y, int32_t w, int32_t h, const DeviceContext& source, int32_t xs,
                              int32_t ys, uint32_t rop)
{
    auto gdiSource = dynamic_cast<const GdiDeviceContext*>(&source);
    return gdiSource && ::BitBlt(hdc_, x, y, w, h, gdiSource->hdc_, xs, ys, rop);
}

bool GdiDeviceContext::SetPixelV(int32_t x, int32_t y, ColorRef color) { return ::SetPixelV(hdc_, x, y, color); }
ColorRef GdiDeviceContext::GetPixel(int32_t x, int32_t y) const { return ::GetPixel(hdc_, x, y); }

bool GdiDeviceContext::FillRect(const DeviceRect& rect, const Brush& brush)
{
    HBRUSH b = MakeGdiBrush(brush);
    RECT r = ToRect(rect);
    bool ok = ::FillRect(hdc_, &r, b);
    ::DeleteObject(b);
    return ok;
}

bool GdiDeviceContext::FrameRect(const DeviceRect& rect, const Brush& brush)
{
    HBRUSH b = MakeGdiBrush(brush);
    RECT r = ToRect(rect);
    bool ok = ::FrameRect(hdc_, &r, b);
    ::DeleteObject(b);
    return ok;
}

bool GdiDeviceContext::DrawFocusRect(const DeviceRect& rect)
{
    RECT r = ToRect(rect);
    return ::DrawFocusRect(hdc_, &r);
}

bool GdiDeviceContext::IntersectClipRect(int32_t l, int32_t t, int32_t r, int32_t b)
{
    return ::IntersectClipRect(hdc_, l, t, r, b) != ERROR;
}

void GdiDeviceContext::SelectClipRegion(const DeviceRect* rect)
{
    if (!rect) {
        ::SelectClipRgn(hdc_, nullptr);
        return;
    }
    HRGN region = ::CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
    ::SelectClipRgn(hdc_, region);
    ::DeleteObject(region);
}

void GdiDeviceContext::SelectClipRects(std::span<const DeviceRect> rects)
{
    HRGN region = ::CreateRectRgn(0, 0, 0, 0);
    for (const DeviceRect& r : rects) {
        HRGN piece = ::CreateRectRgn(r.left, r.top, r.right, r.bottom);
        ::CombineRgn(region, region, piece, RGN_OR);
        ::DeleteObject(piece);
    }
    ::ExtSelectClipRgn(hdc_, region, RGN_COPY);
    ::DeleteObject(region);
}

int32_t GdiDeviceContext::SaveDC()
{
    int32_t depth = ::SaveDC(hdc_);
    if (depth) saved_.push_back(current_);
    return depth;
}

bool GdiDeviceContext::RestoreDC(int32_t saved)
{
    int32_t depth = int32_t(saved_.size());
    int32_t target = saved < 0 ? depth + saved : saved - 1;
    if (target < 0 || target >= depth || !::RestoreDC(hdc_, saved)) return false;
    std::vector<HGDIOBJ> candidates{current_.gdiPen, current_.gdiBrush, current_.gdiFont};
    for (size_t i = size_t(target); i < saved_.size(); ++i)
        candidates.insert(candidates.end(), {saved_[i].gdiPen, saved_[i].gdiBrush, saved_[i].gdiFont});
    current_ = saved_[size_t(target)];
    saved_.resize(size_t(target));
    DeleteUnreferenced(std::move(candidates));
    return true;
}

int32_t GdiDeviceContext::SetDIBitsToDevice(int32_t xDest, int32_t yDest, int32_t width, int32_t height,
                                            int32_t xSource, int32_t ySource, std::span<const uint8_t> packedDib)
{
    const std::optional<GdiDib> dib = ForGdi(packedDib);
    if (!dib || width < 0 || height < 0) return 0;
    return ::SetDIBitsToDevice(hdc_, xDest, yDest, DWORD(width), DWORD(height), xSource, ySource, 0, UINT(dib->rows),
                               dib->bits, reinterpret_cast<const BITMAPINFO*>(dib->info.data()), DIB_RGB_COLORS);
}

int32_t GdiDeviceContext::StretchDIBits(int32_t xDest, int32_t yDest, int32_t destWidth, int32_t destHeight,
                                        int32_t xSource, int32_t ySource, int32_t sourceWidth, int32_t sourceHeight,
                                        std::span<const uint8_t> packedDib, uint32_t rop)
{
    const std::optional<GdiDib> dib = ForGdi(packedDib);
    if (!dib) return 0;
    // The device stretches colour on colour, as the raster device does.
    const int oldMode = ::SetStretchBltMode(hdc_, COLORONCOLOR);
    const int rows =
        ::StretchDIBits(hdc_, xDest, yDest, destWidth, destHeight, xSource, ySource, sourceWidth, sourceHeight,
                        dib->bits, reinterpret_cast<const BITMAPINFO*>(dib->info.data()), DIB_RGB_COLORS, rop);
    ::SetStretchBltMode(hdc_, oldMode);
    return rows;
}

bool GdiDeviceContext::TextOutA(int32_t x, int32_t y, std::string_view text)
{
    return ::TextOutA(hdc_, x, y, text.data(), int(text.size()));
}

bool GdiDeviceContext::GetTextExtentPoint32A(std::string_view text, DeviceSize& size) const
{
    SIZE s{};
    if (!::GetTextExtentPoint32A(hdc_, text.data(), int(text.size()), &s)) return false;
    size = {s.cx, s.cy};
    return true;
}

bool GdiDeviceContext::GetTextMetricsA(TextMetrics& metrics) const
{
    TEXTMETRICA tm{};
    if (!::GetTextMetricsA(hdc_, &tm)) return false;
    metrics = {tm.tmHeight,          tm.tmAscent,       tm.tmDescent,     tm.tmInternalLeading,
               tm.tmExternalLeading, tm.tmAveCharWidth, tm.tmMaxCharWidth};
    return true;
}

bool GdiDeviceContext::GetCharABCWidthsA(uint8_t first, uint8_t last, AbcWidth* widths) const
{
    if (last < first || !widths) return false;
    std::vector<ABC> abc(size_t(last - first) + 1);
    if (!::GetCharABCWidthsA(hdc_, first, last, abc.data())) return false;
    for (size_t i = 0; i < abc.size(); ++i) widths[i] = {abc[i].abcA, abc[i].abcB, abc[i].abcC};
    return true;
}

int32_t GdiDeviceContext::DpiX() const { return ::GetDeviceCaps(hdc_, LOGPIXELSX); }
int32_t GdiDeviceContext::DpiY() const { return ::GetDeviceCaps(hdc_, LOGPIXELSY); }

std::unique_ptr<DeviceContext> GdiDeviceContext::CreateCompatibleDC() const
{
    HDC memory = ::CreateCompatibleDC(hdc_);
    if (!memory) return nullptr;
    return std::make_unique<GdiDeviceContext>(memory, true);
}

GdiDibSurface::GdiDibSurface(int32_t width, int32_t height) : width_(width), height_(height)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height; // top-down, as our surfaces are
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    HDC memory = ::CreateCompatibleDC(nullptr);
    void* bits = nullptr;
    dib_ = ::CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (dib_) {
        bits_ = static_cast<uint32_t*>(bits);
        oldBitmap_ = ::SelectObject(memory, dib_);
    }
    context_ = std::make_unique<GdiDeviceContext>(memory, false);
}

GdiDibSurface::~GdiDibSurface()
{
    HDC memory = context_->Handle();
    context_.reset();
    if (oldBitmap_) ::SelectObject(memory, oldBitmap_);
    if (dib_) ::DeleteObject(dib_);
    ::DeleteDC(memory);
}

BitmapHandle GdiDibSurface::ToBitmap() const
{
    auto bitmap = CreateBitmap(width_, height_);
    if (!bitmap || !bits_) return nullptr;
    ::GdiFlush();
    auto out = bitmap->Pixels();
    // DIB memory is 0x00RRGGBB; a ColorRef is 0x00BBGGRR.
    for (size_t i = 0; i < out.size(); ++i) {
        uint32_t p = bits_[i];
        out[i] = ((p & 0xFF) << 16) | (p & 0xFF00) | ((p >> 16) & 0xFF);
    }
    return bitmap;
}

} // namespace bvx
