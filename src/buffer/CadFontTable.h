// The view's fonts. A text shape holds no font, only a slot of this table
// (and a copy of the layout the slot had), and asks for the platform font
// each time it measures or draws.
#pragma once

#include "platform/Font.h"
#include "shapes/CTextFont.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bvx {

class CadWorld;

// One slot: the logical font with the platform font made from it, and what
// text needs to be drawn in world units.
struct CLogFont {
    FontHandle Font; // made on demand
    LogFont Log;
    int32_t BaseHeight = 0; // the device height when opened, negative
    uint8_t Used = 1;       // 0 once closed: the slot can be taken again
    uint8_t ScaleWithWorld = 1;
    int16_t Align = 0;
    int16_t Justify = 0;
    int16_t Orientation = 0;
    double Height = 12;    // world units
    double CellHeight = 0; // world height of the character cell
    int32_t MetricCell = 0;
    int32_t MetricEm = 0;
};

class CadFontTable {
public:
    // Slots a text's font word can name.
    static constexpr size_t kMaxSlots = 256;

    CadFontTable();

    std::vector<std::unique_ptr<CLogFont>> Slots;
    int32_t CurrentFont = 0;

    // "Face,height,style": the slot of a matching font or a new one; 0 when
    // a part is missing, -1 when the font can't be made.
    int16_t FontOpen(std::u16string_view name, int16_t scale, const CadWorld& world);
    // False when nothing was closed.
    bool FontClose(int32_t handle);
    void FontSet(int32_t handle, int16_t align, int16_t justify, int16_t orientation);
    void PutCurrent(int32_t handle) { CurrentFont = IsUsed(handle) ? handle : 0; }
    // The slot a text draws with, its platform font made for the present
    // zoom; a text on a closed slot moves to slot 0 for good.
    CLogFont& ResolveFont(CTextFont& ref, const CadWorld& world);
    // A text's reference to a slot as the slot stands now; a slot not in
    // use counts as slot 0.
    CTextFont ReferenceTo(int32_t handle) const;

    void ResetFonts();
    void InitDefaultFont();
    bool IsUsed(int32_t handle) const;

private:
    // The metrics of a face as enumeration gives them; a face that isn't
    // installed keeps those of the enumeration before.
    void Enumerate(CLogFont& slot);

    int32_t lastMetricCell_ = 0;
    int32_t lastMetricEm_ = 0;
};

} // namespace bvx
