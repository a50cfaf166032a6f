// Reads a drawing file into a view: the main reader for the version codes
// 5 to 14 and the old reader for code 1, each a set of conditions on the
// version. Fields are taken in file order through the buffered field
// stream; counts and sizes are held against what is left of the file.
#pragma once

#include "NativeFormat.h"
#include "NativeStream.h"

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace bvx {

class CadBuf;
class CadLayer;
class CadView;
class CObjShape;
class CPictShape;
class ShapeAttr;
struct CLogFont;

namespace NativeFile {

// A layer record up to its shapes.
struct ListHead;

class DrawingReader {
public:
    DrawingReader(CadView& view, NativeReader& in, int32_t version, uint16_t layerNumber, uint16_t destLayerNumber,
                  int16_t loadType);

    // After the magic; `wholeKind` for an 'A' file.
    bool Run(bool wholeKind);

private:
    bool Applying() const;
    bool RunOld(bool wholeKind);
    bool ReadDrawingHead(int16_t& savedLayer);
    bool ReadOldDrawingHead();
    bool ReadFonts();
    bool ReadFont(CLogFont& font);
    bool ReadBackground();
    bool ReadWorld();
    bool ReadPictureTable();
    bool ReadColorTable();
    bool ReadLayers(int16_t count);
    bool ReadOldLayer(bool intoNamedLayer);
    bool ReadListHead(ListHead& head, bool withAttr);
    void ApplyListHead(CadLayer& list, const ListHead& head, bool keepTable, bool takeAttr) const;
    bool ReadShapes(int32_t count, bool skip);
    // A shape's type word and record, in a new shape of its class; null
    // when the type has no class or the record can't be read.
    std::unique_ptr<CObjShape> ReadShape(uint16_t& type);
    // Enters a shape read whole, in its group if it has one, and announces
    // it; its number, or -1 when no layer took it.
    int32_t Enter(std::unique_ptr<CObjShape> shape, int32_t parent);
    // An image kept in an old record becomes a table entry of its own.
    void AdoptOldPicture(CPictShape& picture, const std::string& name);
    // What a load left must still be a drawing: layers to draw on, a font
    // for text, a current layer that is the open one.
    void MakeSound(int16_t savedLayer);
    bool Fail();

    CadView& view_;
    CadBuf& buf_;
    NativeReader& in_;
    const int32_t version_;
    const uint16_t layerNumber_;
    const uint16_t destLayerNumber_;
    const int16_t loadType_;
};

} // namespace NativeFile
} // namespace bvx
