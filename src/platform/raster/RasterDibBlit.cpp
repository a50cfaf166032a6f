// Device-independent bitmaps painted onto the 32-bit surface: both entry
// points reduce to one nearest-neighbour mapping of destination rows and
// columns onto source rows and columns, then copy row by row.
#include "RasterDeviceContext.h"

#include "../DibFormat.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace bvx {

namespace {

// A pixel that run-length data never set: the surface keeps what it had.
// Real colours have a zero top byte.
constexpr uint32_t kUnsetPixel = 0xFF000000u;

// One axis of a paint: destination coordinates first .. first + slot.size()
// - 1, each showing the source coordinate sources[slot[i]]. `sources` is
// ascending and holds only what is shown, so a large shrink reads little.
struct AxisSampling {
    int32_t first = 0;
    std::vector<uint32_t> slot;
    std::vector<int32_t> sources;
};

// Maps a destination extent onto a source extent, each an origin and a
// signed size (a negative size runs leftwards from the origin, mirroring).
// Only destination pixels inside [clipLow, clipHigh) whose source lies in
// [0, sourceLimit) are kept. False when none is.
bool SampleAxis(int64_t destOrigin, int64_t destSize, int64_t sourceOrigin, int64_t sourceSize, int64_t clipLow,
                int64_t clipHigh, int64_t sourceLimit, AxisSampling& axis)
{
    if (destSize == 0 || sourceSize == 0) return false;
    const uint64_t destCount = uint64_t(destSize < 0 ? -destSize : destSize);
    const uint64_t sourceCount = uint64_t(sourceSize < 0 ? -sourceSize : sourceSize);
    const int64_t destLow = destSize > 0 ? destOrigin : destOrigin + destSize + 1;
    const int64_t low = std::max(destLow, clipLow);
    const int64_t high = std::min(destLow + int64_t(destCount), clipHigh);
    if (low >= high) return false;

    std::vector<int32_t> shown;
    shown.reserve(size_t(high - low));
    int64_t keptLow = high;
    for (int64_t d = low; d < high; ++d) {
        const uint64_t step = uint64_t(destSize > 0 ? d - destOrigin : destOrigin - d);
        // Sample at the pixel centre: integer ratios repeat or drop whole pixels.
        const int64_t offset = int64_t((2 * step + 1) * sourceCount / (2 * destCount));
        const int64_t s = sourceSize > 0 ? sourceOrigin + offset : sourceOrigin - offset;
        if (s < 0 || s >= sourceLimit) {
            if (!shown.empty()) break; // the mapping is monotonic: nothing further lands inside
            continue;
        }
        if (shown.empty()) keptLow = d;
        shown.push_back(int32_t(s));
    }
    if (shown.empty()) return false;
    axis.first = int32_t(keptLow);
    axis.sources = shown;
    std::sort(axis.sources.begin(), axis.sources.end());
    axis.sources.erase(std::unique(axis.sources.begin(), axis.sources.end()), axis.sources.end());
    axis.slot.resize(shown.size());
    for (size_t i = 0; i < shown.size(); ++i)
        axis.slot[i] = uint32_t(std::lower_bound(axis.sources.begin(), axis.sources.end(), shown[i]) -
                                axis.sources.begin());
    return true;
}

// Whether the pixels an origin and signed size cover meet [0, limit).
bool ExtentMeets(int64_t origin, int64_t size, int64_t limit)
{
    const int64_t low = size > 0 ? origin : origin + size + 1;
    const int64_t high = low + (size < 0 ? -size : size);
    return size != 0 && low < limit && high > 0;
}

uint8_t ExpandChannel(uint32_t pixel, uint32_t mask)
{
    const int shift = std::countr_zero(mask);
    const int bits = std::popcount(mask);
    const uint32_t value = (pixel & mask) >> shift;
    if (bits >= 8) return uint8_t(value >> (bits - 8));
    uint32_t x = value << (8 - bits);
    for (int filled = bits; filled < 8; filled *= 2) x |= x >> filled; // replicate the bits downwards
    return uint8_t(x);
}

// Turns the sampled pixels of a parsed DIB's rows into ColorRefs.
class DibRowReader {
public:
    DibRowReader(const DibView& view, const AxisSampling& columns, const AxisSampling& rows)
        : view_(view), columns_(columns.sources)
    {
        if (!IsRunLength()) return;
        // Run-length data is decoded once, into just the pixels shown.
        const size_t pixels = columns.sources.size() * rows.sources.size();
        indices_.assign(pixels, 0);
        written_.assign(pixels, 0);
        DecodeDibRle(view_, {columns.sources, rows.sources, indices_.data(), written_.data()});
    }

    bool IsRunLength() const
    {
        return view_.compression == DibCompression::Rle4 || view_.compression == DibCompression::Rle8;
    }

    // The sampled columns of top-down source row `row`, which is sampled row
    // number `rowSlot`.
    void Read(int32_t row, size_t rowSlot, uint32_t* out) const
    {
        if (IsRunLength()) {
            const size_t start = rowSlot * columns_.size();
            for (size_t i = 0; i < columns_.size(); ++i)
                out[i] = written_[start + i] ? view_.colors[indices_[start + i]] : kUnsetPixel;
            return;
        }
        const int32_t stored = view_.topDown ? row : view_.height - 1 - row;
        const uint8_t* p = view_.bits.data() + size_t(stored) * view_.stride;
        switch (view_.bitCount) {
        case 1:
            for (size_t x : columns_) *out++ = view_.colors[(p[x >> 3] >> (7 - (x & 7))) & 1];
            break;
        case 4:
            for (size_t x : columns_) *out++ = view_.colors[(x & 1) ? p[x >> 1] & 15 : p[x >> 1] >> 4];
            break;
        case 8:
            for (size_t x : columns_) *out++ = view_.colors[p[x]];
            break;
        case 16:
            for (size_t x : columns_) *out++ = FromMasks(LoadLe16(p + 2 * x));
            break;
        case 24:
            for (size_t x : columns_) *out++ = MakeRgb(p[3 * x + 2], p[3 * x + 1], p[3 * x]);
            break;
        default:
            for (size_t x : columns_) *out++ = FromMasks(LoadLe32(p + 4 * x));
            break;
        }
    }

private:
    ColorRef FromMasks(uint32_t pixel) const
    {
        return MakeRgb(ExpandChannel(pixel, view_.masks[0]), ExpandChannel(pixel, view_.masks[1]),
                       ExpandChannel(pixel, view_.masks[2]));
    }

    const DibView& view_;
    std::span<const int32_t> columns_;
    std::vector<uint8_t> indices_;
    std::vector<uint8_t> written_;
};

// Copies the sampled source onto the surface, one destination row at a time.
void PaintSampled(Bitmap& surface, const DibView& view, const AxisSampling& columns, const AxisSampling& rows)
{
    const DibRowReader reader(view, columns, rows);
    const bool mayLeaveUnset = reader.IsRunLength();
    std::vector<uint32_t> sourceRow(columns.sources.size());
    const size_t width = columns.slot.size();
    size_t lastSlot = SIZE_MAX;
    for (size_t r = 0; r < rows.slot.size(); ++r) {
        const int32_t y = rows.first + int32_t(r);
        const size_t rowSlot = rows.slot[r];
        uint32_t* out = surface.Row(y).data() + columns.first;
        if (rowSlot == lastSlot && !mayLeaveUnset) {
            std::memcpy(out, surface.Row(y - 1).data() + columns.first, width * sizeof(uint32_t));
            continue;
        }
        if (rowSlot != lastSlot) reader.Read(rows.sources[rowSlot], rowSlot, sourceRow.data());
        lastSlot = rowSlot;
        for (size_t c = 0; c < width; ++c) {
            const uint32_t pixel = sourceRow[columns.slot[c]];
            if (pixel != kUnsetPixel) out[c] = pixel;
        }
    }
}

// Destination and source extents, each an origin and a signed size; source
// rows are counted top-down.
struct DibMapping {
    int64_t destX, destWidth, sourceX, sourceWidth;
    int64_t destY, destHeight, sourceTop, sourceHeight;
};

void PaintDib(Bitmap* surface, const DeviceRect& clip, const DibView& view, const DibMapping& m)
{
    AxisSampling columns, rows;
    if (surface == nullptr || clip.IsEmpty() ||
        !SampleAxis(m.destX, m.destWidth, m.sourceX, m.sourceWidth, clip.left, clip.right, view.width, columns) ||
        !SampleAxis(m.destY, m.destHeight, m.sourceTop, m.sourceHeight, clip.top, clip.bottom, view.height, rows))
        return;
    PaintSampled(*surface, view, columns, rows);
}

} // namespace

int32_t RasterDeviceContext::SetDIBitsToDevice(int32_t xDest, int32_t yDest, int32_t width, int32_t height,
                                               int32_t xSource, int32_t ySource, std::span<const uint8_t> packedDib)
{
    const std::optional<DibView> view = ParseDib(packedDib);
    if (!view || width < 0 || height < 0) return 0;
    // The source origin is the lower-left corner, counted in rows from the
    // bottom, whichever way the rows are stored.
    const int64_t sourceTop = int64_t(view->height) - ySource - height;
    if (!ExtentMeets(xSource, width, view->width) || !ExtentMeets(sourceTop, height, view->height)) return 0;
    const DibMapping mapping{xDest, width, xSource, width, yDest, height, sourceTop, height};
    PaintDib(state_.bitmap.get(), EffectiveClip(), *view, mapping);
    return view->height;
}

int32_t RasterDeviceContext::StretchDIBits(int32_t xDest, int32_t yDest, int32_t destWidth, int32_t destHeight,
                                           int32_t xSource, int32_t ySource, int32_t sourceWidth,
                                           int32_t sourceHeight, std::span<const uint8_t> packedDib, uint32_t rop)
{
    const std::optional<DibView> view = ParseDib(packedDib);
    if (!view || rop != RasterOp::SrcCopy) return 0;
    // Source rows count from the bottom, except for a top-down DIB copied
    // whole and unstretched from its origin.
    const bool unstretchedFromOrigin =
        xSource == 0 && ySource == 0 && sourceWidth == destWidth && sourceHeight == destHeight;
    int64_t sourceTop = ySource;
    if (!view->topDown || !unstretchedFromOrigin) sourceTop = int64_t(view->height) - ySource - sourceHeight;

    if (!ExtentMeets(xSource, sourceWidth, view->width) || !ExtentMeets(sourceTop, sourceHeight, view->height))
        return 0;
    const DibMapping mapping{xDest, destWidth, xSource, sourceWidth, yDest, destHeight, sourceTop, sourceHeight};
    PaintDib(state_.bitmap.get(), EffectiveClip(), *view, mapping);
    return view->height;
}

} // namespace bvx
