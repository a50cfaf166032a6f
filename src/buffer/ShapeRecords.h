// The record of each shape class in the drawing file: the type word, the
// head every shape shares (type byte, number, notes, attributes) and the
// class's own fields. A group's member list is not part of its record here:
// the file's layer walk writes and reads it, so that nesting costs no stack.
#pragma once

#include "NativeStream.h"
#include "shapes/CPictShape.h"

#include <cstdint>

namespace bvx {

class CObjShape;

// The newest form, which is the only one written.
void WriteShapeRecord(NativeWriter& out, const CObjShape& shape);

// Reads what follows the type word into an empty shape of the type's class,
// in the form of the version code. The type bits of the stored type byte
// give way to the type word, which chose the class. False, with the reader
// failed, when the record can't be read whole. Bounds are left to the
// caller, which knows where the shape stands.
bool ReadShapeRecord(NativeReader& in, CObjShape& shape, uint16_t type, int32_t version);

// A bitmap as the file stores it, file header first. With `fileSize` 0 the
// size comes from the file header, as in the records of old versions. The
// image is null when the bytes are not a sound bitmap; false only when the
// bytes can't be read at all. `stored` is the size the bytes claimed.
bool ReadStoredBitmap(NativeReader& in, uint32_t fileSize, SharedDib& image, uint32_t& stored);
// The file header and the packed bitmap as the table holds it; with
// `sized` the bitmap file's size goes first.
void WriteStoredBitmap(NativeWriter& out, const DibBlock& dib, bool sized);

// Text in the system code page, NUL and zeros after it up to `size` bytes.
void WriteAnsiField(NativeWriter& out, const std::string& ansi, size_t size);

} // namespace bvx
