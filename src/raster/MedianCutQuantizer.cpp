#include "MedianCutQuantizer.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace bvx {

namespace {

uint8_t Channel(ColorRef color, int channel) { return uint8_t(color >> (8 * channel)); }

struct Box {
    size_t begin = 0;
    size_t end = 0;
    int widestChannel = 0;
    int range = 0; // of the widest channel; 0 when the box cannot split
};

// `order` holds histogram positions; a box is a range of it.
void Measure(Box& box, const std::vector<uint32_t>& order, std::span<const ColorFrequency> histogram)
{
    std::array<int, 3> low{255, 255, 255}, high{0, 0, 0};
    for (size_t i = box.begin; i < box.end; ++i) {
        for (int c = 0; c < 3; ++c) {
            const int v = Channel(histogram[order[i]].color, c);
            low[c] = std::min(low[c], v);
            high[c] = std::max(high[c], v);
        }
    }
    box.range = -1;
    for (int c = 0; c < 3; ++c) {
        if (high[c] - low[c] > box.range) {
            box.range = high[c] - low[c];
            box.widestChannel = c;
        }
    }
    if (box.end - box.begin < 2) box.range = 0;
}

} // namespace

Quantization MedianCut(std::span<const ColorFrequency> histogram, size_t maxColors)
{
    maxColors = std::clamp<size_t>(maxColors, 1, 256);
    std::vector<uint32_t> order(histogram.size());
    std::iota(order.begin(), order.end(), 0u);

    std::vector<Box> boxes;
    if (!histogram.empty()) {
        boxes.push_back({0, histogram.size()});
        Measure(boxes.back(), order, histogram);
    }
    while (boxes.size() < maxColors) {
        // The widest box goes first; ties go to the earlier one.
        auto widest = std::max_element(boxes.begin(), boxes.end(),
                                       [](const Box& a, const Box& b) { return a.range < b.range; });
        if (widest->range == 0) break;
        Box box = *widest;
        const int c = box.widestChannel;
        std::sort(order.begin() + box.begin, order.begin() + box.end, [&](uint32_t a, uint32_t b) {
            const int ca = Channel(histogram[a].color, c), cb = Channel(histogram[b].color, c);
            return ca != cb ? ca < cb : histogram[a].color < histogram[b].color;
        });
        uint64_t total = 0;
        for (size_t i = box.begin; i < box.end; ++i) total += histogram[order[i]].count;
        uint64_t running = 0;
        size_t split = box.begin + 1;
        for (size_t i = box.begin; i + 1 < box.end; ++i) {
            running += histogram[order[i]].count;
            split = i + 1;
            if (2 * running >= total) break;
        }
        Box upper{split, box.end};
        box.end = split;
        Measure(box, order, histogram);
        Measure(upper, order, histogram);
        *widest = box;
        boxes.push_back(upper);
    }

    Quantization result;
    result.indexOf.assign(histogram.size(), 0);
    for (size_t b = 0; b < boxes.size(); ++b) {
        std::array<uint64_t, 3> sum{};
        uint64_t weight = 0;
        for (size_t i = boxes[b].begin; i < boxes[b].end; ++i) {
            const ColorFrequency& entry = histogram[order[i]];
            const uint64_t w = std::max<uint32_t>(entry.count, 1);
            for (int c = 0; c < 3; ++c) sum[c] += w * Channel(entry.color, c);
            weight += w;
            result.indexOf[order[i]] = uint8_t(b);
        }
        std::array<uint8_t, 3> mean{};
        for (int c = 0; c < 3; ++c) mean[c] = uint8_t((sum[c] + weight / 2) / weight);
        result.palette.push_back(MakeRgb(mean[0], mean[1], mean[2]));
    }
    return result;
}

} // namespace bvx
