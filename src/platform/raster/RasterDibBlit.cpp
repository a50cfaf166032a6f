// Device-independent bitmaps painted onto the 32-bit surface: both entry
// points reduce to one nearest-neighbour mapping of destination rows and
// columns onto source rows and columns, then copy row by row.
#include "RasterDeviceContext.h"

#include "../DibFormat.h"
#include "ClipRegion.h"
#include "WideMath.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

namespace bvx {

namespace {

// A pixel that run-length data never set, where the surface keeps what it
// had. Real colours have a zero top byte.
constexpr uint32_t kUnsetPixel = 0xFF000000u;

// One axis of a paint: destination coordinates first .. first + slot.size()
// - 1, each showing the source coordinate sources[slot[i]]. `sources` is
// ascending and holds only what is shown, so a large shrink reads little.
struct AxisSampling {
    int32_t first = 0;
    std::vector<uint32_t> slot;
    std::vector<int32_t> sources;
};

// The source pixel shown by destination pixel `step` (both counted from
// their origins) when `sourceCount` pixels map onto `destCount`, as the
// platform's colour-on-colour stretch walks them. Enlarging, a destination
// pixel shows the source pixel under its centre, the lower one on a tie.
// Shrinking, each destination pixel gathers the source pixels whose centres
// fall in it (a tie goes to the lower) and keeps the last of its columns but
// the first of its rows.
int64_t SourceStep(uint64_t step, uint64_t destCount, uint64_t sourceCount, bool columns)
{
    using raster::Int128;
    const Int128 d = Int128(destCount), s = Int128(sourceCount), j = Int128(step);
    if (destCount >= sourceCount) return int64_t(((2 * j + 1) * s - 1) / (2 * d));
    if (columns) return int64_t(((2 * j + 2) * s - d) / (2 * d));
    return int64_t((2 * j * s + d) / (2 * d));
}

// Maps a destination extent onto a source extent, each an origin and a
// signed size (a negative size runs leftwards from the origin, mirroring).
// Only destination pixels inside [clipLow, clipHigh) whose source lies in
// [0, sourceLimit) are kept. False when none is.
bool SampleAxis(int64_t destOrigin, int64_t destSize, int64_t sourceOrigin, int64_t sourceSize, int64_t clipLow,
                int64_t clipHigh, int64_t sourceLimit, bool columns, AxisSampling& axis)
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
        const int64_t offset = SourceStep(step, destCount, sourceCount, columns);
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
    // The channel's bits on top, repeated once below them: fields of fewer
    // than four bits leave the lowest bits clear, as the platform does.
    const uint32_t x = value << (8 - bits);
    return uint8_t(x | x >> bits);
}

// Turns the sampled pixels of a parsed DIB's rows into ColorRefs.
class DibRowReader {
public:
    // `unset` is what run-length data shows where it set nothing.
    DibRowReader(const DibView& view, const AxisSampling& columns, const AxisSampling& rows, uint32_t unset)
        : view_(view), columns_(columns.sources), unset_(unset)
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
                out[i] = written_[start + i] ? view_.colors[indices_[start + i]] : unset_;
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
    uint32_t unset_;
    std::vector<uint8_t> indices_;
    std::vector<uint8_t> written_;
};

// Copies the sampled source onto the surface, one destination row at a time,
// each row built once per source row and then copied where the clip keeps it.
void PaintSampled(Bitmap& surface, raster::ClipRegion& clip, const DibView& view, const AxisSampling& columns,
                  const AxisSampling& rows, uint32_t unset)
{
    const DibRowReader reader(view, columns, rows, unset);
    const bool mayLeaveUnset = reader.IsRunLength() && unset == kUnsetPixel;
    std::vector<uint32_t> sourceRow(columns.sources.size());
    const size_t width = columns.slot.size();
    std::vector<uint32_t> line(width);
    size_t lastSlot = SIZE_MAX;
    for (size_t r = 0; r < rows.slot.size(); ++r) {
        const int32_t y = rows.first + int32_t(r);
        const size_t rowSlot = rows.slot[r];
        if (rowSlot != lastSlot) {
            reader.Read(rows.sources[rowSlot], rowSlot, sourceRow.data());
            for (size_t c = 0; c < width; ++c) line[c] = sourceRow[columns.slot[c]];
            lastSlot = rowSlot;
        }
        uint32_t* out = surface.Row(y).data();
        clip.ForEachSpan(y, columns.first, columns.first + int32_t(width), [&](int32_t x0, int32_t x1) {
            const uint32_t* in = line.data() + (x0 - columns.first);
            if (!mayLeaveUnset) {
                std::memcpy(out + x0, in, size_t(x1 - x0) * sizeof(uint32_t));
                return;
            }
            for (int32_t x = x0; x < x1; ++x, ++in)
                if (*in != kUnsetPixel) out[x] = *in;
        });
    }
}

// Destination and source extents, each an origin and a signed size; source
// rows are counted top-down.
struct DibMapping {
    int64_t destX, destWidth, sourceX, sourceWidth;
    int64_t destY, destHeight, sourceTop, sourceHeight;
};

void PaintDib(Bitmap* surface, raster::ClipRegion clip, const DibView& view, const DibMapping& m,
              uint32_t unset = kUnsetPixel)
{
    AxisSampling columns, rows;
    const DeviceRect& box = clip.Box();
    if (surface == nullptr || box.IsEmpty() ||
        !SampleAxis(m.destX, m.destWidth, m.sourceX, m.sourceWidth, box.left, box.right, view.width, true,
                    columns) ||
        !SampleAxis(m.destY, m.destHeight, m.sourceTop, m.sourceHeight, box.top, box.bottom, view.height, false,
                    rows))
        return;
    PaintSampled(*surface, clip, view, columns, rows, unset);
}

} // namespace

int32_t RasterDeviceContext::SetDIBitsToDevice(int32_t xDest, int32_t yDest, int32_t width, int32_t height,
                                               int32_t xSource, int32_t ySource, std::span<const uint8_t> packedDib)
{
    std::optional<DibView> view = ParseDib(packedDib);
    if (!view || width < 0 || height < 0) return 0;
    const int32_t rows = view->height;
    if (view->compression == DibCompression::Rle4 || view->compression == DibCompression::Rle8) {
        // Run-length data is decoded into an image just reaching the far
        // corner of the source rectangle, whatever the header's size: runs
        // past the stored width show when the rectangle reaches beyond it.
        const int64_t decodedWidth = int64_t(xSource) + width, decodedHeight = int64_t(ySource) + height;
        if (decodedWidth <= 0 || decodedHeight <= 0 || decodedWidth > INT32_MAX || decodedHeight > INT32_MAX) return 0;
        view->width = int32_t(decodedWidth);
        view->height = int32_t(decodedHeight);
    }
    // The source origin is the lower-left corner, counted in rows from the
    // bottom, whichever way the rows are stored.
    const int64_t sourceTop = int64_t(view->height) - ySource - height;
    if (!ExtentMeets(xSource, width, view->width) || !ExtentMeets(sourceTop, height, view->height)) return 0;
    const DibMapping mapping{xDest, width, xSource, width, yDest, height, sourceTop, height};
    PaintDib(state_.bitmap.get(), Clip(), *view, mapping);
    return rows;
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
    // A mirrored source extent that starts past the bottom edge, or comes
    // back far above the top, is moved as the platform moves it.
    if (sourceTop >= view->height && sourceTop + sourceHeight + 1 < view->height) sourceTop = view->height - 1;
    else if (sourceTop > 0 && sourceTop + sourceHeight + 1 < 0) sourceTop = -int64_t(sourceHeight) - 1;

    if (!ExtentMeets(xSource, sourceWidth, view->width) || !ExtentMeets(sourceTop, sourceHeight, view->height))
        return 0;
    const DibMapping mapping{xDest, destWidth, xSource, sourceWidth, yDest, destHeight, sourceTop, sourceHeight};
    // Only an unstretched copy from the origin leaves the pixels run-length
    // data skips alone; otherwise they show colour 0.
    const uint32_t unset = unstretchedFromOrigin ? kUnsetPixel : view->colors[0];
    PaintDib(state_.bitmap.get(), Clip(), *view, mapping, unset);
    return view->height;
}

} // namespace bvx
