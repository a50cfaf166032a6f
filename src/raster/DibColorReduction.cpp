#include "DibColorReduction.h"

#include "MedianCutQuantizer.h"

#include <algorithm>
#include <array>

namespace bvx {

namespace {

constexpr ColorRef kRgbMask = 0xFFFFFF;

constexpr std::array<ColorRef, 2> kMonochrome{kBlack, kWhite};

// The platform's default 16-colour table, in its order.
constexpr std::array<ColorRef, 16> kVgaColors{
    MakeRgb(0, 0, 0),       MakeRgb(128, 0, 0),   MakeRgb(0, 128, 0),   MakeRgb(128, 128, 0),
    MakeRgb(0, 0, 128),     MakeRgb(128, 0, 128), MakeRgb(0, 128, 128), MakeRgb(192, 192, 192),
    MakeRgb(128, 128, 128), MakeRgb(255, 0, 0),   MakeRgb(0, 255, 0),   MakeRgb(255, 255, 0),
    MakeRgb(0, 0, 255),     MakeRgb(255, 0, 255), MakeRgb(0, 255, 255), MakeRgb(255, 255, 255),
};

// Distinct colours, ascending, with their pixel counts.
std::vector<ColorFrequency> BuildHistogram(const Bitmap& bitmap)
{
    std::vector<ColorRef> sorted(bitmap.Pixels().begin(), bitmap.Pixels().end());
    for (ColorRef& c : sorted) c &= kRgbMask;
    std::sort(sorted.begin(), sorted.end());
    std::vector<ColorFrequency> histogram;
    for (ColorRef c : sorted) {
        if (histogram.empty() || histogram.back().color != c) histogram.push_back({c, 0});
        ++histogram.back().count;
    }
    return histogram;
}

uint32_t DistanceSquared(ColorRef a, ColorRef b)
{
    const int dr = RedOf(a) - RedOf(b), dg = GreenOf(a) - GreenOf(b), db = BlueOf(a) - BlueOf(b);
    return uint32_t(dr * dr + dg * dg + db * db);
}

// The nearest table entry; ties go to the lower index.
uint8_t Nearest(ColorRef color, std::span<const ColorRef> table)
{
    size_t best = 0;
    uint32_t bestDistance = UINT32_MAX;
    for (size_t i = 0; i < table.size() && bestDistance != 0; ++i) {
        const uint32_t d = DistanceSquared(color, table[i]);
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    return uint8_t(best);
}

// Picks the colour table and each histogram entry's index in it.
Quantization ChooseColors(const std::vector<ColorFrequency>& histogram, uint16_t bitCount, const Palette* palette)
{
    const size_t capacity = size_t(1) << bitCount;
    Quantization q;
    std::span<const ColorRef> fixed;
    if (palette != nullptr && !palette->IsNull()) {
        for (size_t i = 0; i < std::min(capacity, palette->entries.size()); ++i)
            q.palette.push_back(palette->entries[i].Color());
    } else if (histogram.size() <= capacity) {
        for (const ColorFrequency& entry : histogram) q.palette.push_back(entry.color);
    } else if (bitCount == 1) {
        fixed = kMonochrome;
    } else if (bitCount == 4) {
        fixed = kVgaColors;
    } else {
        return MedianCut(histogram, capacity);
    }
    if (!fixed.empty()) q.palette.assign(fixed.begin(), fixed.end());
    q.indexOf.reserve(histogram.size());
    for (const ColorFrequency& entry : histogram) q.indexOf.push_back(Nearest(entry.color, q.palette));
    return q;
}

} // namespace

IndexedImage ReduceColors(const Bitmap& bitmap, uint16_t bitCount, const Palette* palette)
{
    const std::vector<ColorFrequency> histogram = BuildHistogram(bitmap);
    Quantization q = ChooseColors(histogram, bitCount, palette);

    IndexedImage image;
    image.colors = std::move(q.palette);
    image.indices.resize(bitmap.Pixels().size());
    // Drawings repeat colours along a row, so the last lookup is kept.
    ColorRef lastColor = 0;
    uint8_t lastIndex = histogram.empty() ? 0 : q.indexOf[0];
    if (!histogram.empty()) lastColor = histogram[0].color;
    size_t i = 0;
    for (ColorRef pixel : bitmap.Pixels()) {
        pixel &= kRgbMask;
        if (pixel != lastColor) {
            const auto it = std::lower_bound(histogram.begin(), histogram.end(), pixel,
                                             [](const ColorFrequency& e, ColorRef c) { return e.color < c; });
            lastColor = pixel;
            lastIndex = q.indexOf[size_t(it - histogram.begin())];
        }
        image.indices[i++] = lastIndex;
    }
    return image;
}

} // namespace bvx
