#include "GdiObjects.h"

#include <algorithm>

namespace bvx {

namespace {
// Keeps a surface's pixel count within what a 32-bit size computation and a
// WebAssembly heap can hold.
constexpr int64_t kMaxBitmapPixels = int64_t(1) << 28;
} // namespace

Bitmap::Bitmap(int32_t width, int32_t height)
    : width_(width), height_(height), pixels_(size_t(width) * size_t(height), 0)
{
}

PenHandle CreatePen(PenStyle style, int32_t width, ColorRef color)
{
    return std::make_shared<const Pen>(Pen{style, width, color & 0xFFFFFF});
}

BrushHandle CreateSolidBrush(ColorRef color)
{
    return std::make_shared<const Brush>(Brush{BrushStyle::Solid, HatchStyle::Horizontal, color & 0xFFFFFF});
}

BrushHandle CreateHatchBrush(HatchStyle hatch, ColorRef color)
{
    return std::make_shared<const Brush>(Brush{BrushStyle::Hatched, hatch, color & 0xFFFFFF});
}

BrushHandle CreateNullBrush() { return std::make_shared<const Brush>(Brush{BrushStyle::Null, {}, 0}); }

BitmapHandle CreateBitmap(int32_t width, int32_t height)
{
    if (width <= 0 || height <= 0 || int64_t(width) * height > kMaxBitmapPixels) return nullptr;
    return std::make_shared<Bitmap>(width, height);
}

BitmapHandle ResizedSurface(const Bitmap* old, int32_t width, int32_t height)
{
    BitmapHandle resized = CreateBitmap(width, height);
    if (!resized || !old) return resized;
    for (int32_t y = 0; y < std::min(old->Height(), height); ++y) {
        auto from = old->Row(y);
        auto to = resized->Row(y);
        std::copy_n(from.begin(), std::min(from.size(), to.size()), to.begin());
    }
    return resized;
}

} // namespace bvx
