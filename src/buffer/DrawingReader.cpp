#include "DrawingReader.h"

#include "NativeFile.h"
#include "ShapeRecords.h"
#include "control/CadView.h"
#include "control/Variant.h"
#include "platform/CodePage.h"
#include "platform/DibFormat.h"
#include "shapes/CGroupShape.h"
#include "shapes/ShapeFactory.h"

#include <algorithm>

namespace bvx::NativeFile {

namespace {
constexpr int16_t kSizeShapesAction = 7; // before 2.06 it meant every action
const std::u16string kTempLayerName = u"Temp Layer Name";
const std::string kOldPictureName = "HV_OLD_PICT_";
} // namespace

struct ListHead {
    std::u16string name;
    int16_t lineType = 0;
    std::optional<int16_t> action;
    std::array<int32_t, kSearchEntries> methods{};
    size_t methodCount = 0;
    std::optional<ShapeAttr> attr;
    int32_t count = 0;
};

DrawingReader::DrawingReader(CadView& view, NativeReader& in, int32_t version, uint16_t layerNumber,
                             uint16_t destLayerNumber, int16_t loadType)
    : view_(view), buf_(view.Buf), in_(in), version_(version), layerNumber_(layerNumber),
      destLayerNumber_(destLayerNumber), loadType_(loadType)
{
}

bool DrawingReader::Applying() const { return layerNumber_ == kAllLayers; }

bool DrawingReader::Fail()
{
    in_.Fail();
    return false;
}

bool DrawingReader::Run(bool wholeKind)
{
    if (version_ == kOldReaderVersion) return RunOld(wholeKind);
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
    if (whole) MakeSound(savedLayer);
    return ok;
}

void DrawingReader::MakeSound(int16_t savedLayer)
{
    if (buf_.Layers.empty()) buf_.Reset();
    view_.FontTable.InitDefaultFont();
    if (!buf_.OpenLayer(savedLayer)) {
        const auto open = std::find_if(buf_.Layers.begin(), buf_.Layers.end(),
                                       [&](const auto& l) { return l.get() == buf_.CurrentLayer; });
        buf_.OpenLayer(int32_t(open - buf_.Layers.begin()));
    }
}

// The oldest layout: a whole file clears the drawing whatever layer is
// asked for, each layer is made as it comes (or, for one layer of a 'B'
// file, opened), and one layer asked for stops the load after the first.
bool DrawingReader::RunOld(bool wholeKind)
{
    if (wholeKind) view_.ClearDrawing();
    const int32_t count = in_.I32();
    bool ok = in_.Ok() && count >= 0 && (!wholeKind || ReadOldDrawingHead());
    view_.RebuildBackBuffer = true;
    ok = ok && ReadColorTable();
    const bool intoNamedLayer = !wholeKind && !Applying() && buf_.IsLayer(layerNumber_);
    for (int32_t i = 0; ok && i < count; ++i) {
        ok = ReadOldLayer(intoNamedLayer);
        if (!Applying()) break;
    }
    if (wholeKind) {
        const int16_t current = buf_.CurrentLayerNumber;
        MakeSound(current);
    }
    return ok;
}

bool DrawingReader::ReadOldDrawingHead()
{
    // The current layer's field runs over the two settings behind it, which
    // the next fields write again; the layers read later decide it anyway.
    buf_.CurrentLayerNumber = int16_t(in_.I32());
    in_.I32();
    buf_.ShowTracker = in_.U8() != 0;
    buf_.SnapToShape = in_.U8();
    buf_.SetSnapToGrid(in_.U8());
    const int16_t fonts = in_.I16();
    CadFontTable& table = view_.FontTable;
    for (int16_t i = 0; i < fonts; ++i) {
        // The slot number and the running count agree in every sound file;
        // a slot beyond a text's reach is a damaged file.
        const int32_t slot = in_.I32();
        in_.Skip(2);
        if (!in_.Ok() || slot < 0 || size_t(slot) >= CadFontTable::kMaxSlots) return Fail();
        while (table.Slots.size() <= size_t(slot)) {
            table.Slots.push_back(std::make_unique<CLogFont>());
            table.Slots.back()->Used = 0;
        }
        table.Slots[size_t(slot)]->Used = 1;
        CLogFont scratch;
        CLogFont& entry = size_t(i) < table.Slots.size() ? *table.Slots[size_t(i)] : scratch;
        if (!ReadFont(entry)) return false;
    }
    if (in_.I16() != 0) {
        in_.I16();
        auto picture = std::make_unique<CPictShape>();
        if (!ReadShapeRecord(in_, *picture, kPictureType, version_)) return false;
        AdoptOldPicture(*picture, kOldPictureName + "0");
        buf_.BackPic = std::move(picture);
    }
    return ReadWorld();
}

bool DrawingReader::ReadOldLayer(bool intoNamedLayer)
{
    in_.I32();
    std::string ansi;
    if (!in_.AnsiText(in_.U8(), ansi)) return false;
    const bool made = !intoNamedLayer;
    if (made) {
        const int16_t n = buf_.AddLayer(FromAnsi(ansi));
        if (n < 0) return Fail();
        buf_.OpenLayer(n);
    } else {
        buf_.OpenLayer(layerNumber_);
    }
    CadLayer& layer = *buf_.CurrentLayer;
    for (int32_t type = 0; type < 16; ++type) {
        const int32_t method = in_.I32();
        if (made) layer.SetSearchMethod(type, method);
    }
    const uint32_t word0 = in_.U32();
    const ShapeAttr attr = ShapeAttr::FromWords(word0, in_.U32());
    const int32_t count = in_.I32();
    if (!in_.Ok()) return false;
    layer.Attr = std::make_unique<ShapeAttr>(attr);
    // The file's running ordinal, not a count of our own, ends the layer.
    for (int64_t ordinal = 0; ordinal < count; ++ordinal) {
        ordinal = in_.I32();
        uint16_t type = 0;
        std::unique_ptr<CObjShape> shape = ReadShape(type);
        if (!shape || type > bvxChord) return Fail();
        Enter(std::move(shape), -1);
    }
    return in_.Ok();
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
        const int16_t snapMode = in_.I16();
        const bool markerOn = in_.U8() != 0;
        const uint32_t word0 = in_.U32(), word1 = in_.U32();
        if (!in_.Ok()) return false;
        buf_.SetSnapMode(snapMode);
        buf_.SnapMarkerOn = markerOn;
        buf_.SnapMarkerAttr = ShapeAttr::FromWords(word0, word1);
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
    // Taken only whole, so that a cut record leaves no half-read slot.
    CLogFont record;
    LogFont& log = record.Log;
    for (int32_t* v : {&log.height, &log.width, &log.escapement, &log.orientation, &log.weight}) *v = in_.I32();
    for (uint8_t* v : {&log.italic, &log.underline, &log.strikeOut, &log.charSet, &log.outPrecision,
                       &log.clipPrecision, &log.quality, &log.pitchAndFamily})
        *v = in_.U8();
    const int32_t faceSize = in_.I32();
    if (faceSize < 0 || !in_.AnsiText(uint64_t(faceSize), log.faceName)) return Fail();
    if (log.faceName.size() > kFaceNameLimit) log.faceName.resize(kFaceNameLimit);
    if (version_ == kOldReaderVersion) in_.Skip(6);
    for (int16_t* v : {&record.Align, &record.Justify, &record.Orientation}) *v = in_.I16();
    record.Height = in_.Coord(version_);
    record.CellHeight = in_.Coord(version_);
    record.MetricCell = in_.I32();
    record.MetricEm = in_.I32();
    if (!in_.Ok()) return false;
    if (log.height > 0) log.height = -log.height;
    record.BaseHeight = log.height;
    record.Used = font.Used;
    font = std::move(record);
    return true;
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
    const bool square = version_ >= 5 ? in_.U8() != 0 : world.WorldSquare;
    const int16_t angleMode = version_ >= 7 ? in_.I16() : world.AngleMode;
    if (!in_.Ok()) return false;
    world.SetWorld(left, top, right, bottom, 0);
    world.WorldSquare = square;
    world.Recalculate(0);
    world.SetAngleMode(angleMode);
    world.GridSet(gridOn, gridWidth, gridHeight, gridColor);
    return true;
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
    // The number table grows once, to what the file can hold at most.
    constexpr uint64_t kSmallestRecord = 13;
    if (!skip)
        buf_.ShapeMap.Reserve(buf_.ShapeMap.Size() +
                              size_t(std::min<uint64_t>(uint64_t(count), in_.Remaining() / kSmallestRecord)));
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
        uint16_t type = 0;
        std::unique_ptr<CObjShape> shape = ReadShape(type);
        if (!shape) return Fail();
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

std::unique_ptr<CObjShape> DrawingReader::ReadShape(uint16_t& type)
{
    type = in_.U16();
    std::unique_ptr<CObjShape> shape = NewShapeOfClass(type);
    if (!in_.Ok() || !shape || !ReadShapeRecord(in_, *shape, type, version_)) return nullptr;
    return shape;
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

} // namespace bvx::NativeFile
