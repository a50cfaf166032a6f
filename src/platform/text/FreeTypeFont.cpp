#include "FreeTypeFont.h"

#include "platform/CodePage.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include FT_SIZES_H
#include FT_TRUETYPE_TABLES_H

namespace bvx::text {

namespace {
// Beyond this em glyphs aren't drawn (a single one would take megabytes),
// and beyond the second one sizes stop growing, so that sums stay in range.
constexpr int32_t kLargestDrawnEm = 8192;
constexpr int32_t kLargestEm = 1 << 20;
constexpr int32_t kLoadFlags = FT_LOAD_TARGET_MONO | FT_LOAD_MONOCHROME;
int32_t Pixels26(FT_Pos v) { return int32_t((v + 32) >> 6); }
} // namespace

FreeTypeFont::FreeTypeFont(LogFont logical, FT_Face face, int32_t emPixels)
    : Font(std::move(logical)), face_(face), em_(std::clamp(emPixels, 1, kLargestEm))
{
    if (FT_New_Size(face_, &size_) == 0) {
        FT_Activate_Size(size_);
        FT_Set_Pixel_Sizes(face_, 0, FT_UInt(em_));
    }
    const int32_t escapement = Logical().escapement % 3600;
    if (escapement != 0) {
        const double r = escapement / 10.0 * std::numbers::pi / 180.0;
        const FT_Fixed c = FT_Fixed(std::lround(std::cos(r) * 65536.0)), s = FT_Fixed(std::lround(std::sin(r) * 65536.0));
        turn_ = {c, -s, s, c};
        turned_ = true;
    }
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face_, FT_SFNT_OS2));
    const auto* hhea = static_cast<const TT_HoriHeader*>(FT_Get_Sfnt_Table(face_, FT_SFNT_HHEA));
    const double winAscent = os2 ? os2->usWinAscent : face_->ascender;
    const double winDescent = os2 ? os2->usWinDescent : -face_->descender;
    metrics_.ascent = Scaled(winAscent);
    metrics_.descent = Scaled(winDescent);
    metrics_.height = metrics_.ascent + metrics_.descent;
    metrics_.internalLeading = std::max(0, metrics_.height - em_);
    if (hhea) {
        const double gap = hhea->Line_Gap - ((winAscent + winDescent) - (hhea->Ascender - hhea->Descender));
        metrics_.externalLeading = std::max(0, Scaled(gap));
    }
    metrics_.aveCharWidth = os2 ? Scaled(os2->xAvgCharWidth) : em_ / 2;
    metrics_.maxCharWidth = Scaled(double(face_->bbox.xMax) - double(face_->bbox.xMin));
    // The lines are centred on the positions the tables give, as the
    // platform places them, each position rounded to a pixel first.
    const auto* post = static_cast<const TT_Postscript*>(FT_Get_Sfnt_Table(face_, FT_SFNT_POST));
    auto rounded = [&](double units) { return int32_t(std::floor(units * em_ / std::max<double>(face_->units_per_EM, 1) + 0.5)); };
    underlineThickness_ = std::max(1, rounded(post ? double(post->underlineThickness) : face_->underline_thickness));
    const int32_t underline = rounded(post ? double(int16_t(post->underlinePosition)) : face_->underline_position);
    underlinePosition_ = -(underline + underlineThickness_ / 2);
    strikeOutThickness_ = std::max(1, os2 ? rounded(os2->yStrikeoutSize) : underlineThickness_);
    strikeOutPosition_ = (os2 ? rounded(os2->yStrikeoutPosition) : metrics_.ascent / 3) + strikeOutThickness_ / 2;
}

FreeTypeFont::~FreeTypeFont()
{
    if (size_) FT_Done_Size(size_);
}

int32_t FreeTypeFont::Scaled(double fontUnits) const
{
    return int32_t(std::lround(fontUnits * em_ / std::max<double>(face_->units_per_EM, 1)));
}

const FreeTypeFont::GlyphEntry& FreeTypeFont::Entry(uint8_t ch) const
{
    GlyphEntry& entry = glyphs_[ch];
    if (!entry.ready) Render(ch, entry);
    return entry;
}

void FreeTypeFont::Render(uint8_t ch, GlyphEntry& entry) const
{
    entry.ready = true;
    if (!size_ || em_ > kLargestDrawnEm) return;
    FT_Activate_Size(size_);
    const FT_UInt index = FT_Get_Char_Index(face_, AnsiToUnicode(ch));
    // The advance and the ABC widths along the baseline, unturned.
    FT_Set_Transform(face_, nullptr, nullptr);
    if (FT_Load_Glyph(face_, index, kLoadFlags) != 0) return;
    const FT_Glyph_Metrics& m = face_->glyph->metrics;
    entry.advance = Pixels26(face_->glyph->advance.x);
    entry.abc.a = Pixels26(m.horiBearingX);
    entry.abc.b = uint32_t(std::max(0, Pixels26(m.width)));
    entry.abc.c = entry.advance - entry.abc.a - int32_t(entry.abc.b);
    if (turned_) {
        FT_Matrix turn = turn_;
        FT_Set_Transform(face_, &turn, nullptr);
    }
    if (FT_Load_Glyph(face_, index, kLoadFlags | FT_LOAD_RENDER) != 0) return;
    const FT_GlyphSlot slot = face_->glyph;
    entry.stepX = Pixels26(slot->advance.x);
    entry.stepY = -Pixels26(slot->advance.y);
    const FT_Bitmap& bitmap = slot->bitmap;
    // The renderer writes rows top down, as a positive pitch says.
    if (bitmap.pixel_mode != FT_PIXEL_MODE_MONO || bitmap.rows == 0 || bitmap.width == 0 || bitmap.pitch <= 0)
        return;
    entry.left = slot->bitmap_left;
    entry.top = slot->bitmap_top;
    entry.width = int32_t(bitmap.width);
    entry.rows = int32_t(bitmap.rows);
    entry.pitch = bitmap.pitch;
    entry.bits.assign(bitmap.buffer, bitmap.buffer + size_t(entry.pitch) * size_t(entry.rows));
}

GlyphImage FreeTypeFont::Glyph(uint8_t ch) const
{
    const GlyphEntry& e = Entry(ch);
    return {e.left, e.top, e.stepX, e.stepY, e.width, e.rows, e.pitch, e.bits.empty() ? nullptr : e.bits.data()};
}

} // namespace bvx::text
