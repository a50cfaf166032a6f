// Fonts as the device sees them: a logical font (what is asked for) and the
// immutable font object made from it, shared by handle like pens and
// brushes. Glyphs are monochrome, so that text matches the rest of the
// drawing pixel for pixel on every host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace bvx {

struct TextMetrics {
    int32_t height = 0;
    int32_t ascent = 0;
    int32_t descent = 0;
    int32_t internalLeading = 0;
    int32_t externalLeading = 0;
    int32_t aveCharWidth = 0;
    int32_t maxCharWidth = 0;
};

// The fields of the platform's LOGFONT, in its order and units: a negative
// height is the em in pixels, a positive one the cell; the escapement in
// tenths of a degree, counter-clockwise.
struct LogFont {
    int32_t height = -12;
    int32_t width = 0;
    int32_t escapement = 0;
    int32_t orientation = 0;
    int32_t weight = 400;
    uint8_t italic = 0;
    uint8_t underline = 0;
    uint8_t strikeOut = 0;
    uint8_t charSet = 0;
    uint8_t outPrecision = 4;
    uint8_t clipPrecision = 0;
    uint8_t quality = 0;
    uint8_t pitchAndFamily = 0;
    std::string faceName = "Arial"; // at most 31 characters

    bool operator==(const LogFont&) const = default;
};

// What the platform's font enumeration tells of a face: ntmSizeEM and
// ntmCellHeight.
struct FaceMetrics {
    int32_t unitsPerEm = 0;
    int32_t cellUnits = 0;
};

// The platform's ABC widths of one character.
struct AbcWidth {
    int32_t a = 0;
    uint32_t b = 0;
    int32_t c = 0;
};

// One character drawn in the font, turned by its escapement: rows of bits,
// the most significant bit of each byte first, placed from the pen position.
struct GlyphImage {
    int32_t left = 0; // from the pen to the first column
    int32_t top = 0;  // from the pen up to the first row
    // Where the pen goes next along the turned baseline, in whole pixels
    // (y down), as each turned glyph is placed.
    int32_t stepX = 0;
    int32_t stepY = 0;
    int32_t width = 0;
    int32_t rows = 0;
    int32_t pitch = 0;
    const uint8_t* bits = nullptr;
};

class Font {
public:
    explicit Font(LogFont logical) : logical_(std::move(logical)) {}
    virtual ~Font() = default;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    const LogFont& Logical() const { return logical_; }
    virtual const TextMetrics& Metrics() const = 0;
    // The advance of a character of the code page along the baseline, in
    // whole pixels as the hinted glyph places it.
    virtual int32_t Advance(uint8_t ch) const = 0;
    virtual AbcWidth Abc(uint8_t ch) const = 0;
    virtual GlyphImage Glyph(uint8_t ch) const = 0;
    // From the baseline down to the underline's top row, and its thickness;
    // from the baseline up to the strike-out line's top row, and its own.
    virtual int32_t UnderlinePosition() const = 0;
    virtual int32_t UnderlineThickness() const = 0;
    virtual int32_t StrikeOutPosition() const = 0;
    virtual int32_t StrikeOutThickness() const = 0;

private:
    LogFont logical_;
};

using FontHandle = std::shared_ptr<const Font>;

} // namespace bvx
