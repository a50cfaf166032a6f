#include "CadFontTable.h"

#include "platform/CodePage.h"
#include "platform/FontEngine.h"
#include "world/CadWorld.h"
#include "world/Rounding.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace bvx {

namespace {

constexpr int32_t kBold = 700;
constexpr int32_t kNormal = 400;
constexpr uint8_t kAnsiCharSet = 1;     // DEFAULT_CHARSET
constexpr uint8_t kTrueTypePrecision = 7; // OUT_TT_ONLY_PRECIS
constexpr size_t kFaceNameLimit = 31;
// Device heights stop here: a font taller than this is never drawn anyway.
constexpr int32_t kLargestDeviceHeight = 1 << 20;

std::u16string_view Trimmed(std::u16string_view s)
{
    while (!s.empty() && (s.front() == u' ' || s.front() == u'\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == u' ' || s.back() == u'\t')) s.remove_suffix(1);
    return s;
}

} // namespace

CadFontTable::CadFontTable() { InitDefaultFont(); }

bool CadFontTable::IsUsed(int32_t handle) const
{
    return handle >= 0 && size_t(handle) < Slots.size() && Slots[size_t(handle)]->Used;
}

void CadFontTable::Enumerate(CLogFont& slot)
{
    const std::optional<FaceMetrics> m =
        FontEngine::Shared().EnumerateFace(slot.Log.faceName, slot.Log.weight >= kBold, slot.Log.italic != 0);
    if (m) {
        lastMetricCell_ = m->cellUnits;
        lastMetricEm_ = m->unitsPerEm;
    }
    slot.MetricCell = lastMetricCell_;
    slot.MetricEm = lastMetricEm_;
}

void CadFontTable::InitDefaultFont()
{
    if (Slots.empty()) {
        auto slot = std::make_unique<CLogFont>();
        Enumerate(*slot);
        Slots.push_back(std::move(slot));
    }
    CurrentFont = 0;
}

void CadFontTable::ResetFonts()
{
    Slots.clear();
    CurrentFont = 0;
}

int16_t CadFontTable::FontOpen(std::u16string_view name, int16_t scale, const CadWorld& world)
{
    // Face, height and style; a missing part gives the default slot.
    std::u16string_view parts[3];
    std::u16string_view rest = name;
    for (std::u16string_view& part : parts) {
        const size_t comma = rest.find(u',');
        part = Trimmed(rest.substr(0, comma));
        rest = comma == std::u16string_view::npos ? std::u16string_view{} : rest.substr(comma + 1);
        if (part.empty()) return 0;
    }
    std::string face = ToAnsi(parts[0]);
    if (face.size() > kFaceNameLimit) face.resize(kFaceNameLimit);
    const std::string heightText = ToAnsi(parts[1]);
    const double height = std::strtod(heightText.c_str(), nullptr);
    if (!std::isfinite(height) || height <= 0) return -1;
    const bool bold = parts[2].find(u'B') != std::u16string_view::npos;
    const uint8_t italic = parts[2].find(u'I') != std::u16string_view::npos;
    const uint8_t underline = parts[2].find(u'U') != std::u16string_view::npos;
    const uint8_t scaled = scale != 0;

    size_t reuse = Slots.size();
    for (size_t i = 0; i < Slots.size(); ++i) {
        const CLogFont& s = *Slots[i];
        if (!s.Used) {
            if (reuse == Slots.size()) reuse = i;
            continue;
        }
        // A request that isn't bold doesn't look at the weight.
        if (s.Log.faceName == face && (!bold || s.Log.weight == kBold) && s.Log.italic == italic &&
            s.Log.underline == underline && s.ScaleWithWorld == scaled && s.Height == height)
            return int16_t(i);
    }
    if (reuse == Slots.size()) {
        if (Slots.size() >= kMaxSlots) return -1;
        Slots.push_back(std::make_unique<CLogFont>());
    }
    CLogFont& slot = *Slots[reuse];
    slot.Font.reset();
    slot.Log.faceName = face;
    slot.Height = height;
    slot.Log.height = -std::clamp(world.WorldHeightToDevice(height), -kLargestDeviceHeight, kLargestDeviceHeight);
    slot.BaseHeight = slot.Log.height;
    slot.Log.charSet = kAnsiCharSet;
    slot.Log.italic = italic;
    slot.Log.weight = bold ? kBold : kNormal;
    slot.Log.underline = underline;
    slot.Used = 1;
    Enumerate(slot);
    // Through the horizontal scale, as the cell has always been measured.
    slot.CellHeight = world.DeviceWidthToWorld(MulDiv(std::abs(slot.Log.height), slot.MetricCell, slot.MetricEm));
    slot.ScaleWithWorld = scaled;
    return int16_t(reuse);
}

bool CadFontTable::FontClose(int32_t handle)
{
    if (handle < 1 || !IsUsed(handle)) return false;
    CLogFont& slot = *Slots[size_t(handle)];
    slot.Used = 0;
    slot.Font.reset();
    if (CurrentFont == handle) CurrentFont = 0;
    return true;
}

void CadFontTable::FontSet(int32_t handle, int16_t align, int16_t justify, int16_t orientation)
{
    if (!IsUsed(handle)) return;
    CLogFont& slot = *Slots[size_t(handle)];
    slot.Align = align >= 0 && align <= 3 ? align : 0;
    slot.Justify = justify;
    slot.Orientation = orientation;
}

CTextFont CadFontTable::ReferenceTo(int32_t handle) const
{
    if (!IsUsed(handle)) handle = 0;
    CTextFont ref;
    if (Slots.empty()) return ref;
    const CLogFont& slot = *Slots[size_t(handle)];
    ref.SetSlot(handle);
    ref.SetOrientation(slot.Orientation);
    ref.SetAlign(slot.Align);
    ref.SetJustify(slot.Justify);
    ref.SetScaled(slot.ScaleWithWorld);
    ref.Height = slot.Height;
    ref.Width = slot.CellHeight;
    return ref;
}

CLogFont& CadFontTable::ResolveFont(CTextFont& ref, const CadWorld& world)
{
    if (Slots.empty()) InitDefaultFont();
    if (!IsUsed(ref.Slot())) {
        const uint32_t keep = ref.FontWord & ~0x1FFFFFFu;
        ref = ReferenceTo(0);
        ref.FontWord |= keep;
    }
    CLogFont& slot = *Slots[size_t(ref.Slot())];
    int32_t h = 0, w = 0;
    if (ref.Scaled()) {
        h = world.WorldHeightToDevice(ref.Height);
        w = std::max(0, MulDiv(h, slot.MetricCell, slot.MetricEm));
    } else if (world.OutputMode == 1 && slot.Height != 0 && slot.Log.height != 0) {
        const double d = RoundHalfDown(std::abs(world.OutputRect.Height()) / (std::abs(slot.Log.height) / slot.Height));
        h = d != 0 ? RoundHalfDown((std::abs(world.ClientRect.Height()) - 1) / d * slot.Height) : 0;
    } else {
        h = std::abs(slot.BaseHeight);
    }
    h = std::clamp(h, -kLargestDeviceHeight, kLargestDeviceHeight);
    if (slot.Font && h == std::abs(slot.Log.height) && w == slot.Log.width && ref.Orientation() == slot.Log.escapement)
        return slot;
    slot.Log.outPrecision = kTrueTypePrecision;
    slot.Log.height = -h;
    slot.Height = ref.Height;
    slot.Log.escapement = slot.Log.orientation = ref.Orientation();
    slot.Font = FontEngine::Shared().CreateFont(slot.Log);
    if (slot.Font) slot.Used = 1;
    return slot;
}

} // namespace bvx
