// A font drawn by FreeType: one face at one em size and escapement, hinted
// and monochrome, its glyphs rendered once each and kept.
#pragma once

#include "platform/Font.h"

#include <array>
#include <memory>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace bvx::text {

class FreeTypeFont final : public Font {
public:
    // `face` outlives the font; `emPixels` is the em in pixels.
    FreeTypeFont(LogFont logical, FT_Face face, int32_t emPixels);
    ~FreeTypeFont() override;

    const TextMetrics& Metrics() const override { return metrics_; }
    int32_t Advance(uint8_t ch) const override { return Entry(ch).advance; }
    AbcWidth Abc(uint8_t ch) const override { return Entry(ch).abc; }
    GlyphImage Glyph(uint8_t ch) const override;
    int32_t UnderlinePosition() const override { return underlinePosition_; }
    int32_t UnderlineThickness() const override { return underlineThickness_; }
    int32_t StrikeOutPosition() const override { return strikeOutPosition_; }
    int32_t StrikeOutThickness() const override { return strikeOutThickness_; }

private:
    struct GlyphEntry {
        bool ready = false;
        int32_t advance = 0;
        AbcWidth abc;
        int32_t left = 0, top = 0, width = 0, rows = 0, pitch = 0, stepX = 0, stepY = 0;
        std::vector<uint8_t> bits;
    };
    const GlyphEntry& Entry(uint8_t ch) const;
    void Render(uint8_t ch, GlyphEntry& entry) const;
    int32_t Scaled(double fontUnits) const;

    FT_Face face_;
    FT_Size size_ = nullptr;
    int32_t em_;
    FT_Matrix turn_{};
    bool turned_ = false;
    TextMetrics metrics_;
    int32_t underlinePosition_ = 0, underlineThickness_ = 1, strikeOutPosition_ = 0, strikeOutThickness_ = 1;
    mutable std::array<GlyphEntry, 256> glyphs_;
};

} // namespace bvx::text
