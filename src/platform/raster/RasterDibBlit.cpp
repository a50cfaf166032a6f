// Device-independent bitmaps painted onto the 32-bit surface: both entry
// points reduce to one nearest-neighbour mapping of destination rows and
// columns onto source rows and columns, then copy row by row.
#include "RasterDeviceContext.h"

#include "../DibFormat.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace bvx {

namespace {

// A pixel that run-length data never set: the surface keeps what it had.
// Real colours have a zero top byte.
constexpr uint32_t kUnsetPixel = 0xFF000000u;

// Decoding run-length data needs a buffer over the source area drawn; past
// this many pixels the paint is refused rather than allocated.
constexpr uint64_t kMaxRleWindowPixels = uint64_t(1) << 24;

// Destination coordinates first .. first + source.size() - 1 along one axis,
// each with the source coordinate it shows.
struct AxisMap {
    int32_t first = 0;
    std::vector<int32_t> source;
    int32_t sourceMin = 0;
    int32_t sourceMax = 0;
};

// Maps a destination extent onto a source extent, each an origin and a
// signed size (a negative size runs leftwards from the origin, mirroring).
// Only destination pixels inside [clipLow, clipHigh) whose source lies in
// [0, sourceLimit) are kept. False when none is.
bool BuildAxisMap(int64_t destOrigin, int64_t destSize, int64_t sourceOrigin, int64_t sourceSize, int64_t clipLow,
                  int64_t clipHigh, int64_t sourceLimit, AxisMap& map)
{
    if (destSize == 0 || sourceSize == 0) return false;
    const uint64_t destCount = uint64_t(destSize < 0 ? -destSize : destSize);
    const uint64_t sourceCount = uint64_t(sourceSize < 0 ? -sourceSize : sourceSize);
    const int64_t destLow = destSize > 0 ? destOrigin : destOrigin + destSize + 1;
    const int64_t low = std::max(destLow, clipLow);
    const int64_t high = std::min(destLow + int64_t(destCount), clipHigh);
    if (low >= high) return false;

    map.source.clear();
    map.source.reserve(size_t(high - low));
    int64_t keptLow = high;
    for (int64_t d = low; d < high; ++d) {
        const uint64_t step = uint64_t(destSize > 0 ? d - destOrigin : destOrigin - d);
        // Sample at the pixel centre: integer ratios repeat or drop whole pixels.
        const int64_t offset = int64_t((2 * step + 1) * sourceCount / (2 * destCount));
        const int64_t s = sourceSize > 0 ? sourceOrigin + offset : sourceOrigin - offset;
        if (s < 0 || s >= sourceLimit) {
            if (!map.source.empty()) break; // the mapping is monotonic: nothing further lands inside
            continue;
        }
        if (map.source.empty()) keptLow = d;
        map.source.push_back(int32_t(s));
    }
    if (map.source.empty()) return false;
    map.first = int32_t(keptLow);
    const auto [lo, hi] = std::minmax_element(map.source.begin(), map.source.end());
    map.sourceMin = *lo;
    map.sourceMax = *hi;
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

// Turns rows of a parsed DIB into ColorRefs.
class DibRowReader {
public:
    explicit DibRowReader(const DibView& view) : view_(view) {}

    bool IsRunLength() const
    {
        return view_.compression == DibCompression::Rle4 || view_.compression == DibCompression::Rle8;
    }

    // Run-length data is decoded once, over the source area drawn.
    bool Prepare(int32_t left, int32_t top, int32_t right, int32_t bottom)
    {
        if (!IsRunLength()) return true;
        const uint64_t pixels = uint64_t(right - left) * uint64_t(bottom - top);
        if (pixels > kMaxRleWindowPixels) return false;
        indices_.assign(size_t(pixels), 0);
        written_.assign(size_t(pixels), 0);
        window_ = {left, top, right - left, bottom - top, indices_.data(), written_.data()};
        DecodeDibRle(view_, window_);
        return true;
    }

    // Source pixels [left, left + count) of top-down row `row`.
    void Read(int32_t row, int32_t left, int32_t count, uint32_t* out) const
    {
        if (IsRunLength()) {
            const size_t start = size_t(row - window_.top) * size_t(window_.width) + size_t(left - window_.left);
            const uint8_t* index = indices_.data() + start;
            const uint8_t* set = written_.data() + start;
            for (int32_t i = 0; i < count; ++i) out[i] = set[i] ? view_.colors[index[i]] : kUnsetPixel;
            return;
        }
        const int32_t stored = view_.topDown ? row : view_.height - 1 - row;
        const uint8_t* p = view_.bits.data() + size_t(stored) * view_.stride;
        const size_t x0 = size_t(left);
        switch (view_.bitCount) {
        case 1:
            for (size_t x = x0; x < x0 + size_t(count); ++x) *out++ = view_.colors[(p[x >> 3] >> (7 - (x & 7))) & 1];
            break;
        case 4:
            for (size_t x = x0; x < x0 + size_t(count); ++x)
                *out++ = view_.colors[(x & 1) ? p[x >> 1] & 15 : p[x >> 1] >> 4];
            break;
        case 8:
            for (size_t x = x0; x < x0 + size_t(count); ++x) *out++ = view_.colors[p[x]];
            break;
        case 16:
            for (size_t x = x0; x < x0 + size_t(count); ++x) *out++ = FromMasks(LoadLe16(p + 2 * x));
            break;
        case 24:
            for (size_t x = x0; x < x0 + size_t(count); ++x) {
                const uint8_t* bgr = p + 3 * x;
                *out++ = MakeRgb(bgr[2], bgr[1], bgr[0]);
            }
            break;
        default:
            for (size_t x = x0; x < x0 + size_t(count); ++x) *out++ = FromMasks(LoadLe32(p + 4 * x));
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
    RleWindow window_;
    std::vector<uint8_t> indices_;
    std::vector<uint8_t> written_;
};

// Copies the mapped source onto the surface; false if the source could not
// be prepared.
bool PaintMapped(Bitmap& surface, const DibView& view, const AxisMap& columns, const AxisMap& rows)
{
    DibRowReader reader(view);
    if (!reader.Prepare(columns.sourceMin, rows.sourceMin, columns.sourceMax + 1, rows.sourceMax + 1)) return false;
    const bool mayLeaveUnset = reader.IsRunLength();
    const int32_t sourceSpan = columns.sourceMax - columns.sourceMin + 1;
    std::vector<uint32_t> sourceRow(static_cast<size_t>(sourceSpan));
    const size_t width = columns.source.size();
    int32_t lastSourceRow = -1;
    for (size_t r = 0; r < rows.source.size(); ++r) {
        const int32_t y = rows.first + int32_t(r);
        const int32_t sourceY = rows.source[r];
        uint32_t* out = surface.Row(y).data() + columns.first;
        if (sourceY == lastSourceRow && !mayLeaveUnset) {
            const uint32_t* previous = surface.Row(y - 1).data() + columns.first;
            std::memcpy(out, previous, width * sizeof(uint32_t));
            continue;
        }
        if (sourceY != lastSourceRow) reader.Read(sourceY, columns.sourceMin, sourceSpan, sourceRow.data());
        lastSourceRow = sourceY;
        for (size_t c = 0; c < width; ++c) {
            const uint32_t pixel = sourceRow[size_t(columns.source[c] - columns.sourceMin)];
            if (pixel != kUnsetPixel) out[c] = pixel;
        }
    }
    return true;
}

// Destination and source extents, each an origin and a signed size; source
// rows are counted top-down.
struct DibMapping {
    int64_t destX, destWidth, sourceX, sourceWidth;
    int64_t destY, destHeight, sourceTop, sourceHeight;
};

// False only when the source could not be prepared; nothing visible is a
// success.
bool PaintDib(Bitmap* surface, const DeviceRect& clip, const DibView& view, const DibMapping& m)
{
    AxisMap columns, rows;
    if (surface == nullptr || clip.IsEmpty() ||
        !BuildAxisMap(m.destX, m.destWidth, m.sourceX, m.sourceWidth, clip.left, clip.right, view.width, columns) ||
        !BuildAxisMap(m.destY, m.destHeight, m.sourceTop, m.sourceHeight, clip.top, clip.bottom, view.height, rows))
        return true;
    return PaintMapped(*surface, view, columns, rows);
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
    return PaintDib(state_.bitmap.get(), EffectiveClip(), *view, {xDest, width, xSource, width, yDest, height, sourceTop, height}) ? view->height : 0;
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
    return PaintDib(state_.bitmap.get(), EffectiveClip(), *view, mapping) ? view->height : 0;
}

} // namespace bvx
