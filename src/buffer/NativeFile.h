// The drawing file: a whole drawing ("A": settings, fonts, background
// picture, world, pictures, colours and every layer) or one layer by itself
// ("B"). The newest version is written; every version with a main-reader
// magic is read. docs/native-format.md describes the bytes.
#pragma once

#include "platform/ByteStream.h"

#include <cstdint>
#include <string>

namespace bvx {

class CadView;

namespace NativeFile {

// A layer number of 65535 (the interface's -1) means the whole drawing.
constexpr uint16_t kAllLayers = 65535;

// Writes to a temporary file that replaces `path` only once it is whole;
// false, with any old file untouched, when that fails or the layer asked
// for doesn't exist.
bool Save(CadView& view, const std::string& path, uint16_t layerNumber);
bool Write(CadView& view, ByteSink& sink, uint16_t layerNumber);

// True once the whole file was taken; what was read before a failure stays.
// `destLayerNumber` names the layer a single layer goes onto; `loadType` 0
// also takes the layer's pen and brush.
bool Load(CadView& view, const std::string& path, uint16_t layerNumber, uint16_t destLayerNumber, int16_t loadType);
bool Read(CadView& view, ByteSource& source, uint16_t layerNumber, uint16_t destLayerNumber, int16_t loadType);

} // namespace NativeFile

} // namespace bvx
