// A device-independent bitmap held in one owned block: the header (either
// form), the colour table, then the rows bottom-up, each padded to 32 bits.
// Blocks are read only through these functions, which check every offset, so
// a block of any content is safe to pass.
#pragma once

#include "Palette.h"
#include "platform/ByteStream.h"
#include "platform/DeviceContext.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace bvx {

struct DibBlock {
    std::vector<uint8_t> bytes;
};

// A null pointer is a null handle.
using DibPtr = std::unique_ptr<DibBlock>;

// As ReadDibHeader takes the header; a block that is not a bitmap, or too
// short for its header, reads as 0. The colour count is the table's: the
// long form's biClrUsed (at most 256) when not 0, else 2, 16 or 256 by the
// bit count.
int32_t DibWidth(const DibBlock& dib);
int32_t DibHeight(const DibBlock& dib);
uint16_t DibBitCount(const DibBlock& dib);
uint32_t DibColorCount(const DibBlock& dib);
uint64_t DibPaletteSize(const DibBlock& dib);
// The pixels: everything after the header, the masks and the colour table;
// empty if the block ends before them.
std::span<const uint8_t> DibBits(const DibBlock& dib);

DibPtr DibCopy(const DibBlock* dib);
// One entry per colour-table entry; a null palette if there is no table or
// it does not fit in the block.
Palette DibToPalette(const DibBlock* dib);

// Reads the surface out as a DIB of the given format. `bits` 0 means 4 bits
// with compression 2 or 8 bits with compression 1; other pairs must be
// 1/0, 4/0, 4/2, 8/0, 8/1 or 24/0, else null. With a palette the pixels
// map to its entries; without one, colours that fit the depth are kept
// exactly and others are reduced.
DibPtr DibFromBitmap(const Bitmap& bitmap, int16_t bits, int32_t compression, const Palette* palette);

// Same-size rectangles go through SetDIBitsToDevice, others are stretched.
// Returns the scan lines drawn. The palette is not needed by 32-bit surfaces.
int32_t DibPaint(DeviceContext& dc, const DeviceRect& dest, const DibBlock& dib, const DeviceRect& source,
                 const Palette* palette);

// .bmp files, and the sized form embedded in the native file: the file size
// as a 32-bit word, then the .bmp bytes. Only long-form headers are written,
// each at its own size; false for a core-form block or one shorter than its
// header says. An
// uncompressed block gets its image size recomputed and stored back.
bool DibWriteBmp(DibBlock& dib, ByteSink& sink);
bool DibWriteBlock(DibBlock& dib, ByteSink& sink);

// Reads what either writer left at the source's position: with `sized` the
// length comes from the leading word, otherwise it is the whole source.
// Null for anything not starting with "BM", short, lying about its sizes or
// whose pixels (run-length ones included) would fall outside the image, so
// that every function on the block returned is safe.
DibPtr DibReadBlock(ByteSource& source, bool sized);

} // namespace bvx
