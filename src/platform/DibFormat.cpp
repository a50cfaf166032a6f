#include "DibFormat.h"

#include <algorithm>
#include <climits>
#include <iterator>

namespace bvx {

DibInfoHeader LoadDibInfoHeader(const uint8_t* bytes)
{
    DibInfoHeader h;
    h.size = LoadLe32(bytes);
    h.width = int32_t(LoadLe32(bytes + 4));
    h.height = int32_t(LoadLe32(bytes + 8));
    h.planes = LoadLe16(bytes + 12);
    h.bitCount = LoadLe16(bytes + 14);
    h.compression = LoadLe32(bytes + 16);
    h.sizeImage = LoadLe32(bytes + 20);
    h.xPelsPerMeter = int32_t(LoadLe32(bytes + 24));
    h.yPelsPerMeter = int32_t(LoadLe32(bytes + 28));
    h.clrUsed = LoadLe32(bytes + 32);
    h.clrImportant = LoadLe32(bytes + 36);
    return h;
}

void StoreDibInfoHeader(const DibInfoHeader& h, uint8_t* bytes)
{
    StoreLe32(bytes, h.size);
    StoreLe32(bytes + 4, uint32_t(h.width));
    StoreLe32(bytes + 8, uint32_t(h.height));
    StoreLe16(bytes + 12, h.planes);
    StoreLe16(bytes + 14, h.bitCount);
    StoreLe32(bytes + 16, h.compression);
    StoreLe32(bytes + 20, h.sizeImage);
    StoreLe32(bytes + 24, uint32_t(h.xPelsPerMeter));
    StoreLe32(bytes + 28, uint32_t(h.yPelsPerMeter));
    StoreLe32(bytes + 32, h.clrUsed);
    StoreLe32(bytes + 36, h.clrImportant);
}

namespace {

bool FormatIsValid(uint16_t bitCount, DibCompression compression, bool topDown)
{
    switch (compression) {
    case DibCompression::Rgb:
        return bitCount == 1 || bitCount == 4 || bitCount == 8 || bitCount == 16 || bitCount == 24 || bitCount == 32;
    case DibCompression::Bitfields:
        return bitCount == 16 || bitCount == 32;
    case DibCompression::Rle8:
        return bitCount == 8 && !topDown;
    case DibCompression::Rle4:
        return bitCount == 4 && !topDown;
    }
    return false;
}

void SetDefaultMasks(DibView& view)
{
    if (view.bitCount == 16) view.masks = {0x7C00, 0x03E0, 0x001F};
    else view.masks = {0xFF0000, 0x00FF00, 0x0000FF};
}

} // namespace

std::optional<DibHeader> ReadDibHeader(std::span<const uint8_t> packed)
{
    if (packed.size() < 4) return std::nullopt;
    const uint8_t* p = packed.data();
    DibHeader h;
    h.size = LoadLe32(p);
    if (h.size == kDibCoreHeaderSize) {
        if (packed.size() < kDibCoreHeaderSize) return std::nullopt;
        h.core = true;
        h.width = LoadLe16(p + 4);
        h.height = LoadLe16(p + 6);
        h.bitCount = LoadLe16(p + 10);
        h.entrySize = 3;
        h.tableOffset = kDibCoreHeaderSize;
        if (h.bitCount <= 8) h.tableEntries = 1u << h.bitCount;
    } else {
        constexpr uint32_t kLongSizes[] = {kDibInfoHeaderSize, 52, 56, 108, 124};
        if (std::find(std::begin(kLongSizes), std::end(kLongSizes), h.size) == std::end(kLongSizes) ||
            packed.size() < h.size)
            return std::nullopt;
        const DibInfoHeader info = LoadDibInfoHeader(p);
        h.width = info.width;
        h.height = info.height;
        h.bitCount = info.bitCount;
        h.compression = info.compression;
        h.sizeImage = info.sizeImage;
        h.clrUsed = info.clrUsed;
        h.tableOffset = h.size;
        if (h.compression == uint32_t(DibCompression::Bitfields)) {
            // The masks follow the first 40 bytes in every long form: after
            // the short header, inside the longer ones.
            constexpr uint32_t masksEnd = kDibInfoHeaderSize + 12;
            if (packed.size() < masksEnd) return std::nullopt;
            for (size_t i = 0; i < 3; ++i) h.masks[i] = LoadLe32(p + kDibInfoHeaderSize + 4 * i);
            h.tableOffset = std::max(h.size, masksEnd);
        }
        if (h.clrUsed != 0) h.tableEntries = std::min<uint32_t>(h.clrUsed, 256);
        else if (h.bitCount <= 8) h.tableEntries = 1u << h.bitCount;
    }
    h.bitsOffset = h.tableOffset + h.tableEntries * h.entrySize;
    return h;
}

std::optional<DibView> ParseDib(std::span<const uint8_t> packed)
{
    const std::optional<DibHeader> h = ReadDibHeader(packed);
    if (!h || h->compression > uint32_t(DibCompression::Bitfields)) return std::nullopt;
    DibView view;
    view.width = h->width;
    view.bitCount = h->bitCount;
    view.compression = DibCompression(h->compression);
    view.masks = h->masks;
    const int64_t height = h->height;
    if (view.width <= 0 || height == 0 || height == INT32_MIN) return std::nullopt;
    view.topDown = height < 0;
    view.height = int32_t(height < 0 ? -height : height);
    if (!FormatIsValid(view.bitCount, view.compression, view.topDown)) return std::nullopt;
    if (view.compression == DibCompression::Bitfields &&
        (view.masks[0] == 0 || view.masks[1] == 0 || view.masks[2] == 0))
        return std::nullopt;
    if (view.compression == DibCompression::Rgb && view.bitCount > 8) SetDefaultMasks(view);

    const size_t size = packed.size();
    if (h->bitsOffset > size) return std::nullopt;
    if (view.bitCount <= 8) {
        view.colorCount = std::min<uint32_t>(h->tableEntries, 1u << view.bitCount);
        for (uint32_t i = 0; i < view.colorCount; ++i) {
            const uint8_t* e = packed.data() + h->tableOffset + i * h->entrySize;
            view.colors[i] = MakeRgb(e[2], e[1], e[0]);
        }
    }

    const size_t available = size - h->bitsOffset;
    const uint64_t stride = DibStride(uint64_t(view.width), view.bitCount);
    if (view.compression == DibCompression::Rle4 || view.compression == DibCompression::Rle8) {
        view.bits = packed.subspan(h->bitsOffset, std::min<size_t>(available, h->sizeImage));
    } else {
        const uint64_t imageBytes = stride * uint64_t(view.height);
        if (imageBytes > available) return std::nullopt;
        view.bits = packed.subspan(h->bitsOffset, size_t(imageBytes));
    }
    view.stride = size_t(stride); // fits: uncompressed rows lie in the block, coded ones are at most 8 bits deep
    return view;
}

namespace {

// Walks a run-length stream, handing each run to the window clipped to it.
class RleDecoder {
public:
    RleDecoder(const DibView& view, const RleWindow& window) : view_(view), window_(window) {}

    RleOutcome Run()
    {
        const std::span<const uint8_t> data = view_.bits;
        const size_t n = data.size();
        size_t i = 0;
        while (i + 1 < n) {
            const uint8_t count = data[i];
            const uint8_t value = data[i + 1];
            i += 2;
            if (count != 0) {
                if (!RowIsInside()) return RleOutcome::OutsideImage;
                Encoded(count, value);
                continue;
            }
            switch (value) {
            case 0: // end of line
                x_ = 0;
                if (++y_ >= view_.height) return Finish(RleOutcome::Complete);
                break;
            case 1: // end of bitmap
                return Finish(RleOutcome::Complete);
            case 2: // delta
                if (i + 1 >= n) return Finish(RleOutcome::Unterminated);
                x_ += data[i];
                y_ += data[i + 1];
                i += 2;
                if (x_ > view_.width) {
                    outside_ = true;
                    x_ = view_.width;
                }
                if (y_ >= view_.height) return RleOutcome::OutsideImage;
                break;
            default: { // absolute run of `value` pixels
                const size_t bytes = (size_t(value) * view_.bitCount + 7) / 8;
                if (bytes > n - i) return Finish(RleOutcome::Unterminated);
                if (!RowIsInside()) return RleOutcome::OutsideImage;
                Literal(value, data.data() + i);
                i += bytes + (bytes & 1); // runs keep 16-bit alignment
                break;
            }
            }
        }
        return Finish(RleOutcome::Unterminated);
    }

private:
    RleOutcome Finish(RleOutcome outcome) const { return outside_ ? RleOutcome::OutsideImage : outcome; }
    bool RowIsInside() const { return y_ < view_.height; }

    // Where the current row lands in the window, or -1.
    int64_t WindowRow() const
    {
        const int64_t topDownRow = int64_t(view_.height) - 1 - y_;
        const auto it = std::lower_bound(window_.rows.begin(), window_.rows.end(), topDownRow);
        return it != window_.rows.end() && *it == topDownRow ? int64_t(it - window_.rows.begin()) : -1;
    }

    // A run of `count` pixels from x_; pixelAt(k) gives the k-th index.
    template <typename PixelAt> void Emit(int32_t count, PixelAt pixelAt)
    {
        if (x_ + count > view_.width) outside_ = true;
        const int64_t end = std::min<int64_t>(x_ + count, view_.width);
        const int64_t row = window_.indices != nullptr && x_ < end ? WindowRow() : -1;
        if (row >= 0) {
            const std::span<const int32_t> columns = window_.columns;
            const size_t base = size_t(row) * columns.size();
            for (auto it = std::lower_bound(columns.begin(), columns.end(), x_); it != columns.end() && *it < end;
                 ++it) {
                const size_t slot = base + size_t(it - columns.begin());
                window_.indices[slot] = pixelAt(size_t(*it - x_));
                window_.written[slot] = 1;
            }
        }
        x_ = end;
    }

    void Encoded(int32_t count, uint8_t value)
    {
        if (view_.bitCount == 8) {
            Emit(count, [value](size_t) { return value; });
            return;
        }
        const uint8_t nibbles[2] = {uint8_t(value >> 4), uint8_t(value & 15)};
        Emit(count, [&nibbles](size_t k) { return nibbles[k & 1]; });
    }

    void Literal(int32_t count, const uint8_t* source)
    {
        if (view_.bitCount == 8) {
            Emit(count, [source](size_t k) { return source[k]; });
            return;
        }
        Emit(count, [source](size_t k) { return uint8_t((k & 1) ? source[k >> 1] & 15 : source[k >> 1] >> 4); });
    }

    const DibView& view_;
    const RleWindow& window_;
    int64_t x_ = 0;
    int64_t y_ = 0; // rows counted from the bottom
    bool outside_ = false;
};

} // namespace

RleOutcome DecodeDibRle(const DibView& view, const RleWindow& window)
{
    return RleDecoder(view, window).Run();
}

} // namespace bvx
