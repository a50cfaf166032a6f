#include "RunLengthEncoder.h"

#include <algorithm>

namespace bvx {

namespace {

constexpr size_t kMaxRun = 255;
constexpr size_t kMinAbsoluteRun = 3; // shorter counts would read as escapes

class RowEncoder {
public:
    RowEncoder(std::vector<uint8_t>& out, bool fourBit) : out_(out), fourBit_(fourBit) {}

    void Encode(std::span<const uint8_t> row)
    {
        size_t x = 0;
        while (x < row.size()) {
            const size_t run = RunAt(row, x, kMaxRun);
            if (run >= 2) {
                Repeat(run, row[x]);
                x += run;
                continue;
            }
            const size_t start = x;
            while (x < row.size() && x - start < kMaxRun && RunAt(row, x, kMinAbsoluteRun) < kMinAbsoluteRun) ++x;
            Literal(row.subspan(start, x - start));
        }
    }

private:
    static size_t RunAt(std::span<const uint8_t> row, size_t x, size_t limit)
    {
        size_t n = 1;
        while (n < limit && x + n < row.size() && row[x + n] == row[x]) ++n;
        return n;
    }

    void Repeat(size_t count, uint8_t index)
    {
        out_.push_back(uint8_t(count));
        out_.push_back(fourBit_ ? uint8_t(index << 4 | index) : index);
    }

    void Literal(std::span<const uint8_t> pixels)
    {
        if (pixels.size() < kMinAbsoluteRun) {
            for (uint8_t p : pixels) Repeat(1, p);
            return;
        }
        out_.push_back(0);
        out_.push_back(uint8_t(pixels.size()));
        size_t bytes = 0;
        if (fourBit_) {
            for (size_t i = 0; i < pixels.size(); i += 2, ++bytes) {
                const uint8_t low = i + 1 < pixels.size() ? pixels[i + 1] : 0;
                out_.push_back(uint8_t(pixels[i] << 4 | low));
            }
        } else {
            out_.insert(out_.end(), pixels.begin(), pixels.end());
            bytes = pixels.size();
        }
        if (bytes & 1) out_.push_back(0);
    }

    std::vector<uint8_t>& out_;
    bool fourBit_;
};

} // namespace

std::vector<uint8_t> EncodeDibRle(std::span<const uint8_t> indices, int32_t width, int32_t height,
                                  uint16_t bitCount)
{
    std::vector<uint8_t> out;
    if (width <= 0 || height <= 0 || indices.size() < size_t(width) * size_t(height)) return out;
    RowEncoder encoder(out, bitCount == 4);
    for (int32_t y = height - 1; y >= 0; --y) {
        encoder.Encode(indices.subspan(size_t(y) * size_t(width), size_t(width)));
        out.push_back(0);
        out.push_back(y == 0 ? 1 : 0);
    }
    return out;
}

} // namespace bvx
