#include "Dib.h"

#include "platform/DibFormat.h"

#include <limits>
#include <new>
#include <optional>

namespace bvx {

namespace {

constexpr uint64_t kMaxFileSize = std::numeric_limits<uint32_t>::max();

// The part of the block a .bmp holds: header, masks, colour table, image.
struct WrittenPart {
    uint64_t length;
    uint32_t bitsOffset;
};

std::optional<WrittenPart> PrepareForWriting(DibBlock& dib)
{
    const std::optional<DibHeader> h = ReadDibHeader(dib.bytes);
    if (!h || h->core) return std::nullopt;
    uint64_t imageSize = h->sizeImage;
    if (h->compression != uint32_t(DibCompression::Rle8) && h->compression != uint32_t(DibCompression::Rle4)) {
        if (h->width < 0) return std::nullopt;
        const uint64_t rows = uint64_t(h->height < 0 ? -int64_t(h->height) : int64_t(h->height));
        imageSize = DibStride(uint64_t(h->width), h->bitCount) * rows;
        if (imageSize > kMaxFileSize) return std::nullopt;
        StoreLe32(dib.bytes.data() + 20, uint32_t(imageSize));
    }
    const uint64_t total = h->bitsOffset + imageSize;
    if (total > dib.bytes.size() || total + kBmpFileHeaderSize > kMaxFileSize) return std::nullopt;
    return WrittenPart{total, h->bitsOffset};
}

bool WriteBmp(DibBlock& dib, ByteSink& sink, bool withLength)
{
    const std::optional<WrittenPart> part = PrepareForWriting(dib);
    if (!part) return false;
    const uint32_t fileSize = uint32_t(part->length + kBmpFileHeaderSize);
    uint8_t fileHeader[kBmpFileHeaderSize] = {};
    StoreLe16(fileHeader, kBmpSignature);
    StoreLe32(fileHeader + 2, fileSize);
    StoreLe32(fileHeader + 10, kBmpFileHeaderSize + part->bitsOffset);
    if (withLength && !sink.WriteLe(fileSize)) return false;
    return sink.Write(fileHeader, sizeof fileHeader) && sink.Write(dib.bytes.data(), size_t(part->length));
}

// The header, colour table and image agree with each other and with the
// block, in the reading of both the accessors and the painter.
bool IsSoundDib(const DibBlock& dib)
{
    const std::optional<DibView> view = ParseDib(dib.bytes);
    if (!view) return false;
    const DibHeader header = *ReadDibHeader(dib.bytes);
    if (header.clrUsed > 256) return false;
    if (view->compression != DibCompression::Rle4 && view->compression != DibCompression::Rle8) return true;
    return view->bits.size() == header.sizeImage && DecodeDibRle(*view, RleWindow{}) == RleOutcome::Complete;
}

} // namespace

bool DibWriteBmp(DibBlock& dib, ByteSink& sink) { return WriteBmp(dib, sink, false); }

bool DibWriteBlock(DibBlock& dib, ByteSink& sink) { return WriteBmp(dib, sink, true); }

DibPtr DibReadBlock(ByteSource& source, bool sized)
{
    uint64_t size = source.Size();
    if (sized) {
        uint32_t declared = 0;
        if (!source.ReadLe(declared)) return nullptr;
        size = declared;
    }
    uint8_t fileHeader[kBmpFileHeaderSize];
    if (size < kBmpFileHeaderSize || !source.ReadExact(fileHeader, sizeof fileHeader) ||
        LoadLe16(fileHeader) != kBmpSignature)
        return nullptr;
    // A length beyond what the source holds would only end in a short read.
    const uint64_t rest = size - kBmpFileHeaderSize;
    const uint64_t position = source.Position(), available = source.Size();
    if (rest < kDibCoreHeaderSize || position > available || rest > available - position ||
        rest > std::numeric_limits<size_t>::max())
        return nullptr;
    try {
        auto dib = std::make_unique<DibBlock>();
        dib->bytes.resize(size_t(rest));
        if (!source.ReadExact(dib->bytes.data(), dib->bytes.size()) || !IsSoundDib(*dib)) return nullptr;
        return dib;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace bvx
