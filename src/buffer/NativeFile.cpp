#include "NativeFile.h"

#include "GroupWalk.h"
#include "NativeStream.h"
#include "ShapeRecords.h"
#include "control/CadView.h"
#include "control/Variant.h"
#include "platform/CodePage.h"
#include "platform/DibFormat.h"
#include "platform/ReplacingFile.h"
#include "shapes/CGroupShape.h"
#include "shapes/ShapeFactory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace bvx::NativeFile {

namespace {

constexpr size_t kMagicSize = 14;
constexpr size_t kKindAt = 12;
constexpr int32_t kOldReaderVersion = 1;

struct Magic {
    const char* text;
    int32_t version;
};
constexpr Magic kMagics[] = {
    {"Quillet.1.00A", 1}, {"Quillet.1.00B", 1}, {"BvxCAD.2.00_A", 5}, {"BvxCAD.2.00_B", 5},
    {"BvxCAD.2.01_A", 6}, {"BvxCAD.2.01_B", 6}, {"BvxCAD.2.02_A", 7}, {"BvxCAD.2.02_B", 7},
    {"BvxCAD.2.03_A", 8}, {"BvxCAD.2.03_B", 8}, {"BvxCAD.2.04_A", 9}, {"BvxCAD.2.04_B", 9},
    {"BvxCAD.2.05_A", 10}, {"BvxCAD.2.05_B", 10}, {"BvxCAD.2.06_A", 11}, {"BvxCAD.2.06_B", 11},
    {"BvxCAD.2.50_A", 12}, {"BvxCAD.2.50_B", 12}, {"BvxCAD.2.51_A", 13}, {"BvxCAD.2.51_B", 13},
    {"BvxCAD.2.52_A", 14}, {"BvxCAD.2.52_B", 14},
};
constexpr const char* kWholeMagic = "BvxCAD.2.52_A";
constexpr const char* kLayerMagic = "BvxCAD.2.52_B";

constexpr size_t kSearchEntries = 21;
constexpr size_t kOldSearchEntries = 17; // up to version code 11
constexpr size_t kFaceNameField = 32;
constexpr size_t kFaceNameLimit = 31;
constexpr int16_t kSizeShapesAction = 7; // before 2.06 it meant every action
constexpr uint16_t kPictureType = 12;
const std::u16string kTempLayerName = u"Temp Layer Name";
const std::string kOldPictureName = "HV_OLD_PICT_";

// ---- writing ----

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

// ---- reading ----

// A layer record up to its shapes.
struct ListHead {
    std::u16string name;
    int16_t lineType = 0;
    std::optional<int16_t> action;
    std::array<int32_t, kSearchEntries> methods{};
    size_t methodCount = 0;
    std::optional<ShapeAttr> attr;
    int32_t count = 0;
};

class DrawingReader {
public:
    DrawingReader(CadView& view, NativeReader& in, int32_t version, uint16_t layerNumber, uint16_t destLayerNumber,
                  int16_t loadType)
        : view_(view), buf_(view.Buf), in_(in), version_(version), layerNumber_(layerNumber),
          destLayerNumber_(destLayerNumber), loadType_(loadType)
    {
    }

    bool Run(bool wholeKind);

private:
    bool Applying() const { return layerNumber_ == kAllLayers; }
    bool ReadDrawingHead(int16_t& savedLayer);
    bool ReadFonts();
    bool ReadFont(CLogFont& font);
    bool ReadBackground();
    bool ReadWorld();
    bool ReadPictureTable();
    bool ReadColorTable();
    bool ReadLayers(int16_t count);
    bool ReadListHead(ListHead& head, bool withAttr);
    void ApplyListHead(CadLayer& list, const ListHead& head, bool keepTable, bool takeAttr) const;
    bool ReadShapes(int32_t count, bool skip);
    // Enters a shape read whole, in its group if it has one, and announces
    // it; its number, or -1 when no layer took it.
    int32_t Enter(std::unique_ptr<CObjShape> shape, int32_t parent);
    // An image kept in an old record becomes a table entry of its own.
    void AdoptOldPicture(CPictShape& picture, const std::string& name);
    bool Fail()
    {
        in_.Fail();
        return false;
    }

    CadView& view_;
    CadBuf& buf_;
    NativeReader& in_;
    const int32_t version_;
    const uint16_t layerNumber_;
    const uint16_t destLayerNumber_;
    const int16_t loadType_;
};

bool DrawingReader::Run(bool wholeKind)
{
    const bool whole = wholeKind && Applying();
    if (whole) view_.ClearDrawing();
    const int16_t count = in_.I16();
    int16_t savedLayer = 1;
    bool ok = in_.Ok() && count >= 0 && (!wholeKind || ReadDrawingHead(savedLayer));
    view_.RebuildBackBuffer = true;
    if (ok && version_ >= 8) {
        ok = ReadPictureTable();
        if (ok && buf_.BackPic) buf_.Pictures.Bind(buf_.BackPic->ImageName, *buf_.BackPic);
    }
    ok = ok && ReadColorTable() && ReadLayers(count);
    if (whole) {
        // What a failed load left must still be a drawing: layers to draw
        // on, a font for text, a current layer that is the open one.
        if (buf_.Layers.empty()) buf_.Reset();
        view_.FontTable.InitDefaultFont();
        if (!buf_.OpenLayer(savedLayer)) {
            const auto open = std::find_if(buf_.Layers.begin(), buf_.Layers.end(),
                                           [&](const auto& l) { return l.get() == buf_.CurrentLayer; });
            buf_.OpenLayer(int32_t(open - buf_.Layers.begin()));
        }
    }
    return ok;
}

bool DrawingReader::ReadDrawingHead(int16_t& savedLayer)
{
    savedLayer = in_.I16();
    in_.Skip(2); // the two modes that follow, again
    in_.I32();   // the current font, which a load sets back to the default
    const uint8_t showTracker = in_.U8();
    const int16_t snapToShape = in_.I16(), snapToGrid = in_.I16(), selectMode = in_.I16(), copyMode = in_.I16();
    const int16_t mouseBounds = version_ >= 9 ? in_.I16() : buf_.MouseBounds;
    const int16_t shapeMoveMode = version_ >= 9 ? in_.I16() : buf_.ShapeMoveMode;
    const uint32_t backColor = in_.U32();
    const uint8_t persistTool = in_.U8(), orthogonal = in_.U8();
    if (!in_.Ok()) return false;
    if (Applying()) {
        buf_.CurrentLayerNumber = savedLayer;
        buf_.ShowTracker = showTracker != 0;
        buf_.SnapToShape = snapToShape;
        buf_.SetSnapToGrid(snapToGrid);
        buf_.SetSelectMode(selectMode);
        buf_.SetCopyMode(copyMode);
        buf_.SetMouseBounds(mouseBounds);
        buf_.SetShapeMoveMode(shapeMoveMode);
        view_.BackColorCopy = backColor;
        view_.ViewPersistMouseTool = persistTool != 0;
        if (!persistTool) view_.SetMouseTool(0);
        view_.ViewDrawOrthogonal = orthogonal != 0;
    }
    if (!ReadFonts() || !ReadBackground() || !ReadWorld()) return false;
    if (version_ >= 10) {
        buf_.SetSnapMode(in_.I16());
        buf_.SnapMarkerOn = in_.U8() != 0;
        const uint32_t word0 = in_.U32();
        buf_.SnapMarkerAttr = ShapeAttr::FromWords(word0, in_.U32());
    }
    return in_.Ok();
}

bool DrawingReader::ReadFonts()
{
    // The file's slot i is the table's slot i after a whole load; a single
    // layer's load appends them, as far as a text's font word can reach.
    const int16_t count = in_.I16();
    CadFontTable& table = view_.FontTable;
    for (int16_t i = 0; i < count; ++i) {
        auto slot = std::make_unique<CLogFont>();
        slot->Used = in_.U8();
        if (slot->Used && !ReadFont(*slot)) return false;
        if (!in_.Ok()) return false;
        if (table.Slots.size() < CadFontTable::kMaxSlots) table.Slots.push_back(std::move(slot));
    }
    return in_.Ok();
}

bool DrawingReader::ReadFont(CLogFont& font)
{
    LogFont& log = font.Log;
    for (int32_t* v : {&log.height, &log.width, &log.escapement, &log.orientation, &log.weight}) *v = in_.I32();
    for (uint8_t* v : {&log.italic, &log.underline, &log.strikeOut, &log.charSet, &log.outPrecision,
                       &log.clipPrecision, &log.quality, &log.pitchAndFamily})
        *v = in_.U8();
    const int32_t faceSize = in_.I32();
    if (faceSize < 0 || !in_.AnsiText(uint64_t(faceSize), log.faceName)) return Fail();
    if (log.faceName.size() > kFaceNameLimit) log.faceName.resize(kFaceNameLimit);
    if (version_ == kOldReaderVersion) in_.Skip(6);
    font.Align = in_.I16();
    font.Justify = in_.I16();
    font.Orientation = in_.I16();
    font.Height = in_.Coord(version_);
    font.CellHeight = in_.Coord(version_);
    font.MetricCell = in_.I32();
    font.MetricEm = in_.I32();
    if (log.height > 0) log.height = -log.height;
    font.BaseHeight = log.height;
    return in_.Ok();
}

bool DrawingReader::ReadBackground()
{
    if (in_.U8() == 0) return in_.Ok();
    in_.U16(); // the type word of a picture
    auto picture = std::make_unique<CPictShape>();
    if (!ReadShapeRecord(in_, *picture, kPictureType, version_)) return false;
    if (version_ < 8) AdoptOldPicture(*picture, kOldPictureName + "0");
    buf_.BackPic = std::move(picture);
    return true;
}

bool DrawingReader::ReadWorld()
{
    CadWorld& world = view_.World;
    const double left = in_.Coord(version_), top = in_.Coord(version_);
    const double bottom = in_.Coord(version_), right = in_.Coord(version_);
    const bool gridOn = version_ == kOldReaderVersion ? in_.I32() != 0 : in_.U8() != 0;
    const uint32_t gridColor = in_.U32();
    const double gridWidth = in_.Coord(version_), gridHeight = in_.Coord(version_);
    if (!in_.Ok()) return false;
    world.SetWorld(left, top, right, bottom, 0);
    if (version_ >= 5) {
        world.WorldSquare = in_.U8() != 0;
        world.Recalculate(0);
    }
    if (version_ >= 7) world.SetAngleMode(in_.I16());
    world.GridSet(gridOn, gridWidth, gridHeight, gridColor);
    return in_.Ok();
}

bool DrawingReader::ReadPictureTable()
{
    const int32_t count = in_.I32();
    constexpr uint64_t kSmallestEntry = 4 + 4 + 14;
    if (count < 0 || uint64_t(count) * kSmallestEntry > in_.Remaining()) return Fail();
    std::vector<CadPictEntry>& entries = buf_.Pictures.Entries;
    for (int32_t i = 0; i < count; ++i) {
        const int32_t nameSize = in_.I32();
        std::string ansi;
        if (nameSize < 0 || !in_.AnsiText(uint64_t(nameSize), ansi)) return Fail();
        const uint32_t size = in_.U32();
        SharedDib image;
        uint32_t stored = 0;
        if (!ReadStoredBitmap(in_, size, image, stored)) return Fail();
        std::string name = ToUtf8(FromAnsi(ansi));
        // A name the table has already shares that entry's bitmap.
        if (const CadPictEntry* known = buf_.Pictures.Find(name)) {
            SharedDib shared = known->Image;
            const uint64_t knownSize = known->Size;
            entries.push_back({std::move(name), std::move(shared), knownSize});
        } else {
            entries.push_back({std::move(name), std::move(image), stored});
        }
    }
    return in_.Ok();
}

bool DrawingReader::ReadColorTable()
{
    const int32_t count = in_.I32();
    if (count < 0 || uint64_t(count) * 4 > in_.Remaining()) return Fail();
    for (int32_t i = 0; i < count; ++i) view_.ColorIndex(in_.U32());
    return in_.Ok();
}

bool DrawingReader::ReadListHead(ListHead& head, bool withAttr)
{
    const int32_t nameSize = in_.I32();
    std::string ansi;
    if (nameSize < 0 || !in_.AnsiText(uint64_t(nameSize), ansi)) return Fail();
    head.name = FromAnsi(ansi);
    head.lineType = in_.I16();
    if (version_ >= 7) {
        int16_t action = in_.I16();
        if (version_ <= 10 && action == kSizeShapesAction) action = LayerActions::All;
        head.action = action;
    }
    head.methodCount = version_ <= 11 ? kOldSearchEntries : kSearchEntries;
    for (size_t i = 0; i < head.methodCount; ++i) head.methods[i] = in_.I32();
    if (withAttr) {
        const uint32_t word0 = in_.U32();
        head.attr = ShapeAttr::FromWords(word0, in_.U32());
    }
    head.count = in_.I32();
    if (head.count < 0) return Fail();
    return in_.Ok();
}

void DrawingReader::ApplyListHead(CadLayer& list, const ListHead& head, bool keepTable, bool takeAttr) const
{
    list.Name = head.name;
    list.SetLineType(head.lineType);
    if (head.action) list.SetAction(*head.action);
    if (keepTable)
        for (size_t i = 0; i < head.methodCount; ++i) list.SetSearchMethod(int32_t(i), head.methods[i]);
    if (takeAttr && head.attr) list.Attr = std::make_unique<ShapeAttr>(*head.attr);
}

bool DrawingReader::ReadLayers(int16_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const bool skip = !Applying() && count != 1 && i != layerNumber_;
        ListHead head;
        if (skip) {
            if (!ReadListHead(head, true) || !ReadShapes(head.count, true)) return false;
            continue;
        }
        bool keepTable = true;
        const int32_t target = destLayerNumber_ != kAllLayers ? destLayerNumber_ : layerNumber_;
        if (!Applying() && buf_.IsLayer(target)) {
            keepTable = false;
            buf_.OpenLayer(target);
        } else {
            const int16_t made = buf_.AddLayer(kTempLayerName);
            if (made < 0) return Fail();
            buf_.OpenLayer(made);
        }
        CadLayer* layer = buf_.CurrentLayer;
        if (!ReadListHead(head, true)) return false;
        ApplyListHead(*layer, head, keepTable, loadType_ == 0);
        if (!ReadShapes(head.count, false)) return false;
        // One layer asked for: the file's later layers aren't even read.
        if (!Applying()) break;
    }
    return in_.Ok();
}

bool DrawingReader::ReadShapes(int32_t count, bool skip)
{
    // A frame per open list: the layer's, then one per group being read.
    // Groups are named by number, as the host may delete one from an event.
    struct Frame {
        int32_t remaining;
        int32_t group;
        bool skip;
    };
    std::vector<Frame> stack{{count, -1, skip}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.remaining <= 0) {
            if (CGroupShape* group = AsGroup(buf_.FindShape(frame.group))) group->UniteMemberBounds();
            stack.pop_back();
            continue;
        }
        --frame.remaining;
        const Frame at = frame;
        const uint16_t type = in_.U16();
        std::unique_ptr<CObjShape> shape = NewShapeOfClass(type);
        if (!in_.Ok() || !shape) return Fail();
        if (!ReadShapeRecord(in_, *shape, type, version_)) return false;
        ListHead members;
        const bool isGroup = shape->GroupList() != nullptr;
        if (isGroup && !ReadListHead(members, false)) return false;
        if (at.skip) {
            if (isGroup) stack.push_back({members.count, -1, true});
            continue;
        }
        if (isGroup) ApplyListHead(*shape->GroupList(), members, true, false);
        const int32_t number = Enter(std::move(shape), at.group);
        if (isGroup) stack.push_back({members.count, number, false});
    }
    return in_.Ok();
}

int32_t DrawingReader::Enter(std::unique_ptr<CObjShape> shape, int32_t parent)
{
    const int16_t type = shape->GetShapeType();
    CObjShape* added = buf_.AddShape(std::move(shape), view_, -1, -1, false);
    if (!added) return -1;
    const int32_t number = added->Number;
    if (type == bvxPicture) {
        auto& picture = static_cast<CPictShape&>(*added);
        if (version_ >= 8)
            buf_.Pictures.Bind(picture.ImageName, picture);
        else
            AdoptOldPicture(picture, kOldPictureName + std::to_string(number));
    }
    added->UpdateBounds(view_);
    if (parent != -1)
        if (CGroupShape* group = AsGroup(buf_.FindShape(parent))) buf_.GroupAdopt(*group, added);
    view_.ShapeAdded(type, number);
    return number;
}

void DrawingReader::AdoptOldPicture(CPictShape& picture, const std::string& name)
{
    if (!picture.Image) return;
    SharedDib image = picture.Image;
    buf_.Pictures.Entries.push_back({name, image, uint64_t(kBmpFileHeaderSize) + image->bytes.size()});
    picture.BindImage(picture.Style, name, image);
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
    if (!version || *version == kOldReaderVersion) return false;
    DrawingReader reader(view, in, *version, layerNumber, destLayerNumber, loadType);
    return reader.Run(magic[kKindAt] == 'A');
}

bool Load(CadView& view, const std::string& path, uint16_t layerNumber, uint16_t destLayerNumber, int16_t loadType)
{
    std::unique_ptr<FileSource> file = FileSource::Open(path);
    return file && Read(view, *file, layerNumber, destLayerNumber, loadType);
}

} // namespace bvx::NativeFile
