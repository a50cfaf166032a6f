// Pens, brushes and bitmaps: objects that live apart from any device context
// and are shared by handle, as the platform's GDI objects are.
#pragma once

#include "Color.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace bvx {

// The platform's pen style numbers; a shape's 3-bit style field is one of these.
enum class PenStyle : int32_t {
    Solid = 0,
    Dash = 1,
    Dot = 2,
    DashDot = 3,
    DashDotDot = 4,
    Null = 5,
    InsideFrame = 6,
    UserStyle = 7,
};

enum class BrushStyle : int32_t {
    Solid = 0,
    Null = 1,
    Hatched = 2,
};

// The platform's hatch numbering (HS_HORIZONTAL .. HS_DIAGCROSS).
enum class HatchStyle : int32_t {
    Horizontal = 0,
    Vertical = 1,
    FDiagonal = 2,
    BDiagonal = 3,
    Cross = 4,
    DiagCross = 5,
};

enum class BackMode : int32_t { Transparent = 1, Opaque = 2 };
enum class PolyFillMode : int32_t { Alternate = 1, Winding = 2 };

// Binary raster operations with the platform's R2_ numbers.
enum class Rop2 : int32_t {
    Black = 1, NotMergePen, MaskNotPen, NotCopyPen, MaskPenNot, Not, XorPen, NotMaskPen,
    MaskPen, NotXorPen, Nop, MergeNotPen, CopyPen, MergePenNot, MergePen, White,
};

// Ternary raster operation codes the blits accept.
namespace RasterOp {
constexpr uint32_t SrcCopy = 0x00CC0020;
constexpr uint32_t PatCopy = 0x00F00021;
constexpr uint32_t PatInvert = 0x005A0049;
constexpr uint32_t DstInvert = 0x00550009;
constexpr uint32_t Blackness = 0x00000042;
constexpr uint32_t Whiteness = 0x00FF0062;
} // namespace RasterOp

struct Pen {
    PenStyle style = PenStyle::Solid;
    int32_t width = 0; // 0 and 1 both draw a cosmetic one-pixel pen
    ColorRef color = kBlack;
};

struct Brush {
    BrushStyle style = BrushStyle::Solid;
    HatchStyle hatch = HatchStyle::Horizontal;
    ColorRef color = kWhite;
};

// A 32-bit top-down surface, one ColorRef per pixel. Its size never changes;
// its pixels are what device contexts draw into.
class Bitmap {
public:
    Bitmap(int32_t width, int32_t height);

    int32_t Width() const { return width_; }
    int32_t Height() const { return height_; }
    std::span<uint32_t> Row(int32_t y) { return {pixels_.data() + size_t(y) * size_t(width_), size_t(width_)}; }
    std::span<const uint32_t> Row(int32_t y) const
    {
        return {pixels_.data() + size_t(y) * size_t(width_), size_t(width_)};
    }
    uint32_t Pixel(int32_t x, int32_t y) const { return pixels_[size_t(y) * size_t(width_) + size_t(x)]; }
    std::span<uint32_t> Pixels() { return pixels_; }
    std::span<const uint32_t> Pixels() const { return pixels_; }

private:
    int32_t width_;
    int32_t height_;
    std::vector<uint32_t> pixels_;
};

using PenHandle = std::shared_ptr<const Pen>;
using BrushHandle = std::shared_ptr<const Brush>;
using BitmapHandle = std::shared_ptr<Bitmap>;

PenHandle CreatePen(PenStyle style, int32_t width, ColorRef color);
BrushHandle CreateSolidBrush(ColorRef color);
BrushHandle CreateHatchBrush(HatchStyle hatch, ColorRef color);
BrushHandle CreateNullBrush();
// Negative or oversized dimensions give a null handle, as a failed allocation would.
BitmapHandle CreateBitmap(int32_t width, int32_t height);
// A window's surface at a new size: what it showed stays where it was, as a
// real window keeps it; null as CreateBitmap.
BitmapHandle ResizedSurface(const Bitmap* old, int32_t width, int32_t height);

} // namespace bvx
