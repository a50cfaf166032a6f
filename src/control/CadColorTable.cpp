#include "CadColorTable.h"

#include "world/CadWorld.h"
#include "world/Rounding.h"
#include "platform/SystemColors.h"

#include <algorithm>

namespace bvx {

namespace {

constexpr uint32_t kStartColors[] = {
    0x000000, 0x404040, 0x000040, 0x004000, 0x400000, 0x004040, 0x400040, 0x404000, 0x808080, 0x000080, 0x008000, 0x800000,
    0x008080, 0x800080, 0x808000, 0xC0C0C0, 0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF, 0xFF00FF, 0xFFFF00, 0xFFFFFF,
};

} // namespace

CadColorTable::CadColorTable() { ResetToStartColors(); }

void CadColorTable::ResetToStartColors() { colors_.assign(std::begin(kStartColors), std::end(kStartColors)); }

int32_t CadColorTable::ColorIndex(uint32_t oleColor)
{
    auto it = std::find(colors_.begin(), colors_.end(), oleColor);
    if (it != colors_.end()) return int32_t(it - colors_.begin());
    colors_.push_back(oleColor);
    return int32_t(colors_.size() - 1);
}

uint32_t CadColorTable::StoredColor(int64_t index) const
{
    if (colors_.empty()) return kBlack;
    if (index < 0 || index >= int64_t(colors_.size())) index = 0;
    return colors_[size_t(index)];
}

ColorRef CadColorTable::ColorOf(int64_t index) const { return OleTranslateColor(StoredColor(index)); }

Pen CadColorTable::PenFor(const ShapeAttr& attr, const CadWorld& world) const
{
    int32_t width = int32_t(attr.PenWidth());
    if ((world.OutputMode == 1 || world.OutputMode == 2) && PrintLineWidth != 0)
        width *= PrintLineWidth;
    else if (world.OutputMode != 0)
        width = MulDiv(width, world.OutputDpiX, world.ScreenDpiX);
    return {PenStyle(attr.PenStyle()), width, ColorOf(Mono ? kBlackIndex : attr.PenColor())};
}

Brush BrushOfStyle(uint32_t style, ColorRef color)
{
    // Styles 2 to 7 in the record's order of hatches.
    static constexpr HatchStyle kHatches[] = {HatchStyle::BDiagonal,  HatchStyle::DiagCross, HatchStyle::FDiagonal,
                                              HatchStyle::Horizontal, HatchStyle::Vertical,  HatchStyle::Cross};
    if (style == 0) return {BrushStyle::Null, HatchStyle::Horizontal, color};
    if (style == 1) return {BrushStyle::Solid, HatchStyle::Horizontal, color};
    return {BrushStyle::Hatched, kHatches[(style - 2) % 6], color};
}

Brush CadColorTable::BrushFor(const ShapeAttr& attr) const
{
    uint32_t style = attr.BrushStyle();
    return BrushOfStyle(style, ColorOf(Mono && style > 1 ? kBlackIndex : attr.BrushFg()));
}

ColorRef CadColorTable::BackColorFor(const ShapeAttr& attr) const
{
    return ColorOf(Mono ? kWhiteIndex : attr.BrushBg());
}

BackMode CadColorTable::BackModeFor(const ShapeAttr& attr)
{
    return attr.BrushMode() ? BackMode::Opaque : BackMode::Transparent;
}

PenHandle CadColorTable::SelectPen(const ShapeAttr& attr, const CadWorld& world)
{
    currentPen_ = std::make_shared<const Pen>(PenFor(attr, world));
    return currentPen_;
}

BrushHandle CadColorTable::SelectBrush(const ShapeAttr& attr)
{
    currentBrush_ = std::make_shared<const Brush>(BrushFor(attr));
    return currentBrush_;
}

} // namespace bvx
