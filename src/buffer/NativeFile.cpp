#include "NativeFile.h"

#include "DrawingReader.h"
#include "NativeFormat.h"
#include "GroupWalk.h"
#include "NativeStream.h"
#include "ShapeRecords.h"
#include "control/CadView.h"
#include "control/Variant.h"
#include "platform/CodePage.h"
#include "platform/ReplacingFile.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace bvx::NativeFile {

namespace {

void PutAttr(NativeWriter& out, const ShapeAttr& attr)
{
    out.U32(attr.Word0());
    out.U32(attr.Word1());
}

// A name with its NUL, its length counting the NUL.
void PutName(NativeWriter& out, const std::string& ansi)
{
    out.I32(int32_t(std::min<size_t>(ansi.size() + 1, INT32_MAX)));
    WriteAnsiField(out, ansi, ansi.size() + 1);
}

void PutFont(NativeWriter& out, const CLogFont& font)
{
    const LogFont& log = font.Log;
    for (int32_t v : {log.height, log.width, log.escapement, log.orientation, log.weight}) out.I32(v);
    for (uint8_t v : {log.italic, log.underline, log.strikeOut, log.charSet, log.outPrecision, log.clipPrecision,
                      log.quality, log.pitchAndFamily})
        out.U8(v);
    out.I32(int32_t(kFaceNameField));
    WriteAnsiField(out, log.faceName.substr(0, kFaceNameLimit), kFaceNameField);
    for (int16_t v : {font.Align, font.Justify, font.Orientation}) out.I16(v);
    for (double v : {font.Height, font.CellHeight}) out.F64(v);
    for (int32_t v : {font.MetricCell, font.MetricEm}) out.I32(v);
}

void PutWorld(NativeWriter& out, const CadWorld& world)
{
    for (double v : {world.WorldLeft, world.WorldTop, world.WorldBottom, world.WorldRight}) out.F64(v);
    out.U8(world.GridOn);
    out.U32(world.GridColor);
    for (double v : {world.GridWidth, world.GridHeight}) out.F64(v);
    out.U8(world.WorldSquare);
    out.I16(world.AngleMode);
}

void PutListHead(NativeWriter& out, const CadLayer& list, bool withAttr)
{
    PutName(out, ToAnsi(list.Name));
    out.I16(list.LineType);
    out.I16(list.Action);
    for (uint8_t method : list.SearchMethods) out.I32(method);
    if (withAttr) PutAttr(out, list.Attr ? *list.Attr : ShapeAttr::Default());
    out.I32(int32_t(std::min<size_t>(list.Shapes.size(), INT32_MAX)));
}

// A layer record and, depth first, the lists of its groups.
void PutLayer(NativeWriter& out, const CadLayer& layer)
{
    struct Frame {
        const CadLayer* list;
        size_t next;
    };
    PutListHead(out, layer, true);
    std::vector<Frame> stack{{&layer, 0}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.list->Shapes.size()) {
            stack.pop_back();
            continue;
        }
        const CObjShape& shape = *frame.list->Shapes[frame.next++];
        WriteShapeRecord(out, shape);
        if (const CadLayer* members = shape.GroupList()) {
            PutListHead(out, *members, false);
            stack.push_back({members, 0});
        }
    }
}

void PutPictureTable(NativeWriter& out, CadBuf& buf, CadLayer* only)
{
    std::vector<const CadPictEntry*> chosen;
    if (!only) {
        for (const CadPictEntry& entry : buf.Pictures.Entries) chosen.push_back(&entry);
    } else {
        // One layer takes what its own pictures show, each entry once;
        // pictures inside its groups too, or they would come back empty.
        WalkDeep(*only, [&](CObjShape& shape) {
            if (shape.GetShapeType() != bvxPicture) return true;
            const auto& picture = static_cast<const CPictShape&>(shape);
            const CadPictEntry* entry = picture.HasImage() ? buf.Pictures.Find(picture.ImageName) : nullptr;
            if (entry && std::find(chosen.begin(), chosen.end(), entry) == chosen.end()) chosen.push_back(entry);
            return true;
        });
    }
    out.I32(int32_t(chosen.size()));
    static const DibBlock kNoImage;
    for (const CadPictEntry* entry : chosen) {
        PutName(out, ToAnsi(FromUtf8(entry->Name)));
        WriteStoredBitmap(out, entry->Image ? *entry->Image : kNoImage, true);
    }
}

void PutDrawing(NativeWriter& out, CadView& view, CadLayer* only)
{
    CadBuf& buf = view.Buf;
    out.Bytes(only ? kLayerMagic : kWholeMagic, kMagicSize);
    out.I16(only ? int16_t(1) : int16_t(buf.Layers.size()));
    if (!only) {
        out.I16(buf.CurrentLayerNumber);
        out.U8(buf.ShowTracker);
        out.U8(uint8_t(buf.SnapToShape));
        out.I32(view.FontTable.CurrentFont);
        out.U8(buf.ShowTracker);
        for (int16_t v : {buf.SnapToShape, buf.SnapToGrid, buf.SelectMode, buf.CopyMode, buf.MouseBounds,
                          buf.ShapeMoveMode})
            out.I16(v);
        out.U32(view.BackColorCopy);
        out.U8(view.ViewPersistMouseTool);
        out.U8(view.ViewDrawOrthogonal);
        out.I16(int16_t(view.FontTable.Slots.size()));
        for (const auto& slot : view.FontTable.Slots) {
            out.U8(slot->Used);
            if (slot->Used) PutFont(out, *slot);
        }
        const bool background = buf.BackPic && buf.BackPic->HasImage();
        out.U8(background);
        if (background) WriteShapeRecord(out, *buf.BackPic);
        PutWorld(out, view.World);
        out.I16(buf.SnapMode);
        out.U8(buf.SnapMarkerOn);
        PutAttr(out, buf.SnapMarkerAttr);
    }
    PutPictureTable(out, buf, only);
    out.I32(int32_t(view.Colors().size()));
    for (uint32_t color : view.Colors()) out.U32(color);
    if (only) {
        PutLayer(out, *only);
        return;
    }
    for (const auto& layer : buf.Layers) PutLayer(out, *layer);
}

std::optional<int32_t> VersionOf(const char (&magic)[kMagicSize])
{
    for (const Magic& m : kMagics)
        if (std::memcmp(m.text, magic, kMagicSize) == 0) return m.version;
    return std::nullopt;
}

} // namespace

bool Write(CadView& view, ByteSink& sink, uint16_t layerNumber)
{
    CadLayer* only = nullptr;
    if (layerNumber != kAllLayers) {
        only = view.Buf.Layer(layerNumber);
        if (!only) return false;
    }
    NativeWriter out(sink);
    PutDrawing(out, view, only);
    return out.Finish();
}

bool Save(CadView& view, const std::string& path, uint16_t layerNumber)
{
    if (layerNumber != kAllLayers && !view.Buf.IsLayer(layerNumber)) return false;
    std::unique_ptr<ReplacingFile> file = ReplacingFile::Create(path);
    return file && Write(view, *file, layerNumber) && file->Commit();
}

bool Read(CadView& view, ByteSource& source, uint16_t layerNumber, uint16_t destLayerNumber, int16_t loadType)
{
    NativeReader in(source);
    char magic[kMagicSize];
    if (!in.Bytes(magic, sizeof magic)) return false;
    const std::optional<int32_t> version = VersionOf(magic);
    if (!version) return false;
    DrawingReader reader(view, in, *version, layerNumber, destLayerNumber, loadType);
    return reader.Run(magic[kKindAt] == 'A');
}

bool Load(CadView& view, const std::string& path, uint16_t layerNumber, uint16_t destLayerNumber, int16_t loadType)
{
    std::unique_ptr<FileSource> file = FileSource::Open(path);
    return file && Read(view, *file, layerNumber, destLayerNumber, loadType);
}

} // namespace bvx::NativeFile
