// The drawing's growing list of colours. Shapes and layers store indexes
// into it; the view is-a colour table, so everything that paints reaches it.
#pragma once

#include "platform/GdiObjects.h"
#include "shapes/ShapeAttr.h"

#include <cstdint>
#include <vector>

namespace bvx {

class CadWorld;

class CadColorTable {
public:
    CadColorTable();

    // Exact match first, else appended; the index is what records store.
    int32_t ColorIndex(uint32_t oleColor);
    // Through the OLE translation; an index outside the table reads entry 0,
    // and an empty table reads black.
    ColorRef ColorOf(int64_t index) const;
    // The colour as the table holds it, before any translation; the same
    // fallbacks as ColorOf.
    uint32_t StoredColor(int64_t index) const;
    const std::vector<uint32_t>& Colors() const { return colors_; }
    void Clear() { colors_.clear(); }
    void ResetToStartColors();

    // When set, pens draw in index 0 and backgrounds in index 22.
    bool Mono = false;
    int16_t PrintLineWidth = 0;

    Pen PenFor(const ShapeAttr& attr, const CadWorld& world) const;
    Brush BrushFor(const ShapeAttr& attr) const;
    ColorRef BackColorFor(const ShapeAttr& attr) const;
    static BackMode BackModeFor(const ShapeAttr& attr);

    // Build the device objects of a record and keep them as the current
    // ones, replacing what was cached.
    PenHandle SelectPen(const ShapeAttr& attr, const CadWorld& world);
    BrushHandle SelectBrush(const ShapeAttr& attr);

private:
    std::vector<uint32_t> colors_;
    PenHandle currentPen_;
    BrushHandle currentBrush_;
};

// The brush record's style field as the platform's brush and hatch.
Brush BrushOfStyle(uint32_t style, ColorRef color);

} // namespace bvx
