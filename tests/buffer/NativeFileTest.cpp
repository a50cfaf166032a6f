// The drawing file through the members a host calls: the bytes of a saved
// drawing against a layout written out here field by field, round trips of
// random drawings, single layers and merges, damaged files, and saves that
// fail without harming the file they would replace.
#include "control/CadControl.h"
#include "control/HostDoubles.h"
#include "control/ViewFixture.h"
#include "FileLayout.h"
#include "shapes/CArcShape.h"
#include "shapes/CEllipseShape.h"
#include "shapes/CGroupShape.h"
#include "shapes/CPictShape.h"
#include "shapes/CPointShape.h"
#include "shapes/CPolyShape.h"
#include "shapes/CRectShape.h"
#include "shapes/CTextShape.h"
#include "platform/CodePage.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace bvx {
namespace {

namespace fs = std::filesystem;
const std::string kPictures = BVX_TEST_DATA_DIR "/pictures/";

std::vector<uint8_t> FileBytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void PutFileBytes(const fs::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

std::u16string Wide(const std::string& s) { return std::u16string(s.begin(), s.end()); }

class NativeFileTest : public ::testing::Test {
protected:
    NativeFileTest()
    {
        dir = fs::temp_directory_path() / ("bvx_native_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                                           "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    ~NativeFileTest() override { fs::remove_all(dir); }

    std::u16string Path(const std::string& name) const { return Wide((dir / name).string()); }
    std::vector<uint8_t> Saved(CadControl& c, const std::string& name, int16_t layer = -1)
    {
        c.CadSave(Path(name), layer);
        return FileBytes(dir / name);
    }

    template <typename S> S& Add(CadControl& c, std::unique_ptr<S> shape, uint8_t typeByte, int16_t method = 0,
                                 int32_t layer = 1)
    {
        shape->SetShapeType(typeByte, method);
        S& added = *shape;
        c.View().Buf.AddShape(std::move(shape), c.View(), layer);
        return added;
    }

    fs::path dir;
    testing::RecordingHostWindow window;
    testing::RecordingEventSink sink;
};

// One shape of every type, shapes with and without their own pens, notes,
// two fonts, a background picture, two pictures in the table and a group
// inside a group: the saved bytes are the layout written out below.
TEST_F(NativeFileTest, SavedBytesFollowTheLayoutFieldByField)
{
    CadControl c(&window, &sink);
    CadView& v = c.View();
    CadBuf& buf = v.Buf;
    c.PutBackColor(0x00123456);
    c.PutViewShowTracker(false);
    c.PutViewSnapToShape(2);
    c.PutViewSnapToGrid(1);
    c.PutViewSelectMode(1);
    c.PutViewCopyMode(1);
    c.PutViewMouseBounds(1);
    c.PutViewShapeMoveMode(2);
    c.PutViewPersistMouseTool(true);
    c.PutViewDrawOrthogonal(true);
    c.PutViewSnapMode(1);
    c.PutViewSnapMarkerOn(false);
    c.GridSet(true, 5, 2.5, 0x0000FF);
    c.PutAngleMode(1);
    c.PutWorldSquare(false);
    c.WorldSet(-10, 90, 110, -5);
    const int16_t font = c.FontOpen(u"Liberation Sans,10,BI", 1);
    ASSERT_EQ(font, 1);
    c.FontSet(font, 2, 1, 450);
    ASSERT_TRUE(c.BackPicSet(Wide(kPictures + "twenty_by_twelve.bmp"), 1, 5, 95));
    buf.BackPic->P2 = {25, 83};
    ASSERT_EQ(c.LayerOpen(u"Second"), 2);
    c.PutLayerLineType(2, 2);
    c.PutLayerAction(2, 5);
    c.PutLayerNumber(1);
    c.PutLayerSearchMethod(bvxRectangle, 1);

    const ShapeAttr own = ShapeAttr::FromWords(0x00123405, 0x000001A3);
    const auto rectangle = [&](uint8_t type, WorldPoint p1, WorldPoint p2, int16_t method = 0) -> CRectShape& {
        auto shape = std::make_unique<CRectShape>();
        shape->P1 = p1, shape->P2 = p2;
        return Add(c, std::move(shape), type, method);
    };
    rectangle(1, {10, 80}, {30, 60}).Notes = u"caf\u00e9 \u20ac";
    CRectShape& round = rectangle(2, {1, 2}, {3, 4}, 1);
    round.Radius = {0.5, 0.25};
    round.SetAttr(own);
    rectangle(3, {-1, -2}, {7, 8}).LineType = 3;
    rectangle(4, {0, 0}, {1e10, -1e-10});
    for (uint8_t type = 5; type <= 10; ++type) {
        auto poly = std::make_unique<CPolyShape>();
        for (int i = 0; i < type - 2; ++i) poly->Points.push_back({double(type), i * 0.5});
        Add(c, std::move(poly), type, type % 2);
    }
    auto text = std::make_unique<CTextShape>();
    text->Origin = {40, 50};
    text->Extent = {4, 5};
    text->Text = u"Hello \u00e9";
    text->Font = v.FontTable.ReferenceTo(font);
    text->Font.Width = 2.5;
    Add(c, std::move(text), 11, 1);
    const int32_t picture = c.ShapeAdd(bvxPicture, 1);
    c.ShapePointSet(picture, 0, 60, 40);
    c.ShapePointSet(picture, 1, 66, 36);
    c.ImageOpenBitmap(int16_t(picture), Wide(kPictures + "three_by_two.bmp"), 1, 0);
    for (uint8_t type = 13; type <= 15; ++type) {
        auto arc = std::make_unique<CArcShape>();
        arc->Centre = {50, 50};
        arc->Radius = {double(type), 3};
        arc->StartAngle = 0.25;
        arc->EndAngle = -1.5;
        Add(c, std::move(arc), type);
    }
    c.DrawPoint(12.5, -7, 1);
    CGroupShape& outer = Add(c, std::make_unique<CGroupShape>(), 18);
    CGroupShape& inner = Add(c, std::make_unique<CGroupShape>(), 18);
    inner.SetAttr(own);
    ASSERT_TRUE(buf.GroupAddShape(&inner, buf.FindShape(c.DrawPoint(1, 1, 1))));
    ASSERT_TRUE(buf.GroupAddShape(&outer, &inner));
    c.DrawCircle(20, 30, 4, 1);
    c.DrawEllipse(-20, 30, 6, 2, 2);
    const int32_t lastColor = c.ShapeAdd(bvxPoint, 2);
    c.PutShapePenFg(lastColor, 0x00ABCDEF); // a colour beyond the start colours

    Layout f;
    f.Field("BvxCAD.2.52_A", 14).I16(3);
    f.I16(1).U8(0).U8(2).I32(0);
    f.U8(0).I16(2).I16(1).I16(1).I16(1).I16(1).I16(2);
    f.U32(0x00123456).U8(1).U8(1);
    f.I16(2);
    for (const auto& slot : v.FontTable.Slots) {
        const LogFont& l = slot->Log;
        f.U8(1).I32(l.height).I32(l.width).I32(l.escapement).I32(l.orientation).I32(l.weight);
        for (uint8_t b : {l.italic, l.underline, l.strikeOut, l.charSet, l.outPrecision, l.clipPrecision, l.quality,
                          l.pitchAndFamily})
            f.U8(b);
        f.I32(32).Field(l.faceName, 32).I16(slot->Align).I16(slot->Justify).I16(slot->Orientation);
        f.F64(slot->Height).F64(slot->CellHeight).I32(slot->MetricCell).I32(slot->MetricEm);
    }
    EXPECT_EQ(v.FontTable.Slots[1]->Log.faceName, "Liberation Sans");
    EXPECT_EQ(v.FontTable.Slots[1]->Log.weight, 700);
    EXPECT_EQ(v.FontTable.Slots[1]->Log.italic, 1);
    const uint8_t backFlags = uint8_t(12 | (buf.BackPic->GetSearchMethod() ? 0x80 : 0));
    f.U8(1).Head(12, backFlags, -1, "", 0, nullptr).Pt(5, 95).Pt(25, 83).Le(uint16_t(1), 2).I32(20).I32(12);
    f.I32(41).Field("twenty_by_twelve.bmp", 41); // twice the name's length plus one
    f.Pt(-10, 90).Pt(-5, 110).U8(1).U32(0x0000FF).F64(5).F64(2.5).U8(0).I16(1);
    f.I16(1).U8(0).U32(v.Buf.SnapMarkerAttr.Word0()).U32(v.Buf.SnapMarkerAttr.Word1());
    // The pictures, each as a file of its own behind its size.
    f.I32(2);
    for (const char* name : {"twenty_by_twelve.bmp", "three_by_two.bmp"}) {
        const std::vector<uint8_t> file = FileBytes(kPictures + name);
        f.Name(name).U32(uint32_t(file.size())).Raw(file);
    }
    f.I32(int32_t(v.Colors().size()));
    for (uint32_t color : v.Colors()) f.U32(color);
    EXPECT_EQ(v.Colors().back(), 0x00ABCDEFu);

    const auto layerAttr = [&](int n) { return *buf.Layers[size_t(n)]->Attr; };
    const ShapeAttr a0 = layerAttr(0), a1 = layerAttr(1), a2 = layerAttr(2);
    f.List("Buffer Layer", 0, 15, {}, &a0, 0);
    std::vector<int32_t> methods(21, 0);
    methods[1] = 1;
    f.List("Layer 1", 0, 15, methods, &a1, 18);
    int32_t n = 0;
    f.Head(1, 1, ++n, "caf\xe9 \x80", 6, nullptr).Pt(10, 80).Pt(30, 60).Pt(0, 0).I16(-1);
    f.Head(2, 0x82, ++n, "", 0, &own).Pt(1, 2).Pt(3, 4).Pt(0.5, 0.25).I16(-1);
    f.Head(3, 3, ++n, "", 0, nullptr).Pt(-1, -2).Pt(7, 8).Pt(0, 0).I16(3);
    f.Head(4, 4, ++n, "", 0, nullptr).Pt(0, 0).Pt(1e10, -1e-10).Pt(0, 0).I16(-1);
    for (uint8_t type = 5; type <= 10; ++type) {
        f.Head(type, uint8_t(type | (type % 2 ? 0x80 : 0)), ++n, "", 0, nullptr).Le(uint16_t(type - 2), 2);
        for (int i = 0; i < type - 2; ++i) f.Pt(type, i * 0.5);
    }
    const uint32_t fontWord = 1u | (450u << 8) | (2u << 20) | (1u << 22) | (1u << 24);
    f.Head(11, 0x8B, ++n, "", 0, nullptr).Pt(40, 50).Pt(4, 5).U8(8).Field("Hello \xe9", 8);
    f.U32(fontWord).F64(10).F64(2.5);
    const uint8_t pictureFlags = uint8_t(12 | (c.GetShapeSearchMethod(picture) ? 0x80 : 0));
    f.Head(12, pictureFlags, ++n, "", 0, nullptr).Pt(60, 40).Pt(66, 36).Le(uint16_t(1), 2).I32(3).I32(2);
    f.I32(33).Field("three_by_two.bmp", 33);
    for (uint8_t type = 13; type <= 15; ++type)
        f.Head(type, type, ++n, "", 0, nullptr).Pt(50, 50).Pt(type, 3).F64(0.25).F64(-1.5);
    f.Head(17, 17, ++n, "", 0, nullptr).Pt(12.5, -7);
    std::vector<int32_t> groupMethods(21, 0);
    for (int t = 0; t <= 20; ++t) groupMethods[size_t(t)] = outer.GroupList()->SearchMethods[size_t(t)];
    f.Head(18, 18, ++n, "", 0, nullptr).List("Group Layer", 0, 1, groupMethods, nullptr, 1);
    f.Head(18, 18, ++n, "", 0, &own).List("Group Layer", 0, 1, groupMethods, nullptr, 1);
    f.Head(17, 17, ++n, "", 0, nullptr).Pt(1, 1);
    f.Head(19, 19, ++n, "", 0, nullptr).Pt(20, 30).F64(4).F64(4);
    const size_t secondAt = f.bytes.size();
    f.List("Second", 2, 5, {}, &a2, 2);
    f.Head(20, 20, ++n, "", 0, nullptr).Pt(-20, 30).F64(6).F64(2);
    const ShapeAttr& last = *buf.FindShape(lastColor)->Attr;
    EXPECT_EQ(last.PenColor(), v.Colors().size() - 1);
    f.Head(17, 17, ++n, "", 0, &last).Pt(0, 0);

    const std::vector<uint8_t> saved = Saved(c, "exact.bvx");
    ASSERT_FALSE(saved.empty());
    const auto differs = std::mismatch(saved.begin(), saved.end(), f.bytes.begin(), f.bytes.end());
    EXPECT_EQ(saved.size(), f.bytes.size());
    EXPECT_TRUE(differs.first == saved.end()) << "first difference at byte " << (differs.first - saved.begin());

    // One layer alone: no drawing head, the pictures its own shapes show
    // (none here), every colour, and the layer.
    Layout one;
    one.Field("BvxCAD.2.52_B", 14).I16(1).I32(0);
    one.I32(int32_t(v.Colors().size()));
    for (uint32_t color : v.Colors()) one.U32(color);
    one.bytes.insert(one.bytes.end(), f.bytes.begin() + std::ptrdiff_t(secondAt), f.bytes.end());
    EXPECT_EQ(Saved(c, "second.bvx", 2), one.bytes);
}

// A drawing of every kind of content with random values, its shapes made
// in the order the file keeps them, so that the numbers a load hands out
// are the ones they had.
class RandomDrawing {
public:
    RandomDrawing(CadControl& c, uint32_t seed) : c_(c), v_(c.View()), rng_(seed) {}

    // The types, depth first, in file order.
    std::vector<int16_t> types;

    void Build()
    {
        CadBuf& buf = v_.Buf;
        c_.PutBackColor(Below(0x1000000));
        c_.PutViewShowTracker(Below(2));
        c_.PutViewSnapToGrid(int16_t(Below(3)));
        c_.PutViewSelectMode(int16_t(Below(2)));
        c_.PutViewShapeMoveMode(int16_t(Below(3)));
        c_.PutViewSnapMode(int16_t(Below(2)));
        c_.GridSet(Below(2), 1 + Below(20), 0.5 + Below(9), Below(0x1000000));
        for (int i = 0, n = int(Below(4)); i < n; ++i) c_.FontOpen(Wide("Liberation Sans," + std::to_string(1 + Below(30)) + ",B"), 1);
        if (Below(3) == 0) c_.FontClose(int16_t(v_.FontTable.Slots.size() - 1));
        for (int i = 0, n = int(Below(6)); i < n; ++i) v_.ColorIndex(Below(0x1000000));
        buf.Pictures.Load(kPictures + "three_by_two.bmp", false);
        buf.Pictures.Load(kPictures + "twenty_by_twelve.bmp", false);
        if (Below(2)) c_.BackPicSet(Wide(kPictures + "one_by_one.bmp"), int16_t(Below(3)), Real(), Real());
        for (int l = 0, n = 1 + int(Below(3)); l < n; ++l) {
            const int16_t layer = c_.LayerOpen(Text(1 + Below(20)));
            c_.PutLayerLineType(layer, int16_t(Below(4)));
            c_.PutLayerAction(layer, int16_t(Below(16)));
            buf.Layers[size_t(layer)]->Attr = std::make_unique<ShapeAttr>(Attr());
            for (int16_t t = 0; t <= 20; ++t) buf.Layers[size_t(layer)]->SetSearchMethod(t, int32_t(Below(2)));
        }
        const int32_t layers = int32_t(buf.Layers.size());
        for (int32_t layer = 1; layer < layers; ++layer)
            for (int i = 0, n = int(Below(12)); i < n; ++i) Shape(layer, nullptr, 0);
        c_.PutLayerNumber(int16_t(Below(uint32_t(layers))));
    }

private:
    uint32_t Below(uint32_t n) { return std::uniform_int_distribution<uint32_t>(0, n - 1)(rng_); }
    double Real() { return std::uniform_real_distribution<double>(-1e4, 1e4)(rng_); }
    WorldPoint Point() { return {Real(), Real()}; }
    ShapeAttr Attr() { return ShapeAttr::FromWords(uint32_t(rng_()), uint32_t(rng_())); }
    // Text of the code page without NUL, through its own mapping, so that
    // text survives the file's form.
    std::u16string Text(uint32_t length)
    {
        std::u16string wide;
        for (uint32_t i = 0; i < length; ++i) wide += AnsiToUnicode(uint8_t(1 + Below(255)));
        return wide;
    }

    void Shape(int32_t layer, CGroupShape* group, int depth)
    {
        static constexpr int16_t kTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 18, 19, 20};
        const int16_t type = kTypes[Below(depth < 3 ? 19 : 18) % 19];
        std::unique_ptr<CObjShape> shape = NewShape(type);
        shape->SetShapeType(uint8_t(type), int16_t(Below(2)));
        if (Below(2)) shape->Notes = Text(Below(40));
        if (Below(2)) shape->SetAttr(Attr());
        CObjShape* added = v_.Buf.AddShape(std::move(shape), v_, layer);
        types.push_back(type);
        if (type == bvxPicture && Below(3) != 0) {
            auto& picture = static_cast<CPictShape&>(*added);
            v_.Buf.Pictures.Bind(Below(2) ? "three_by_two.bmp" : "twenty_by_twelve.bmp", picture);
        }
        if (group) {
            ASSERT_TRUE(v_.Buf.GroupAddShape(group, added));
        }
        if (type == bvxGroup)
            for (int i = 0, n = int(Below(4)); i < n; ++i) Shape(layer, static_cast<CGroupShape*>(added), depth + 1);
    }

    std::unique_ptr<CObjShape> NewShape(int16_t type)
    {
        if (type <= bvx2PointEllipse) {
            auto r = std::make_unique<CRectShape>();
            r->P1 = Point(), r->P2 = Point(), r->Radius = Point();
            r->LineType = int16_t(Below(5)) - 1;
            return r;
        }
        if (type <= bvx3PointArc) {
            auto p = std::make_unique<CPolyShape>();
            for (uint32_t i = 0, n = Below(type == bvx3PointArc ? 4 : 30); i < n; ++i) p->Points.push_back(Point());
            return p;
        }
        if (type == bvxText) {
            auto t = std::make_unique<CTextShape>();
            t->Origin = Point(), t->Extent = Point(), t->Text = Text(Below(255));
            t->Font.FontWord = Below(uint32_t(v_.FontTable.Slots.size())) | (Below(1 << 17) << 8);
            t->Font.Height = Real(), t->Font.Width = Real();
            return t;
        }
        if (type == bvxPicture) {
            auto p = std::make_unique<CPictShape>();
            p->P1 = Point(), p->P2 = Point(), p->Style = uint16_t(Below(3));
            return p;
        }
        if (type <= bvxChord) {
            auto a = std::make_unique<CArcShape>();
            a->Centre = Point(), a->Radius = Point(), a->StartAngle = Real(), a->EndAngle = Real();
            return a;
        }
        if (type == bvxPoint) {
            auto p = std::make_unique<CPointShape>();
            p->Position = Point();
            return p;
        }
        if (type == bvxGroup) return std::make_unique<CGroupShape>();
        auto e = std::make_unique<CEllipseShape>();
        e->Centre = Point(), e->RadiusX = Real(), e->RadiusY = Real();
        return e;
    }

    CadControl& c_;
    CadView& v_;
    std::mt19937 rng_;
};

// Saved, loaded and saved again, a drawing gives the same bytes every time:
// every field a load reads is one the next save writes. Loading announces
// each shape, group members after their group, numbered in file order.
TEST_F(NativeFileTest, RandomDrawingsSurviveSaveAndLoadUnchanged)
{
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        CadControl original(&window, &sink);
        RandomDrawing drawing(original, seed);
        drawing.Build();
        const std::vector<uint8_t> first = Saved(original, "a1.bvx");
        testing::RecordingEventSink events;
        CadControl second(&window, &events);
        ASSERT_TRUE(second.CadLoad(Path("a1.bvx"), -1, -1, 0));
        std::vector<std::string> expected;
        for (size_t i = 0; i < drawing.types.size(); ++i)
            expected.push_back("ShapeNumberAdded " + std::to_string(drawing.types[i]) + " " + std::to_string(i + 1));
        std::vector<std::string> added;
        for (const std::string& e : events.events)
            if (e.rfind("ShapeNumberAdded", 0) == 0) added.push_back(e);
        EXPECT_EQ(added, expected);
        EXPECT_EQ(second.GetBackColor(), original.GetBackColor());
        ASSERT_EQ(Saved(second, "a2.bvx"), first);
        CadControl third(&window, &sink);
        ASSERT_TRUE(third.CadLoad(Path("a2.bvx"), -1, -1, 0));
        ASSERT_EQ(Saved(third, "a3.bvx"), first);
        EXPECT_EQ(third.View().Buf.ShapeMap.Size(), drawing.types.size());
    }
}

// One layer of a whole-drawing file, taken into a drawing of its own and
// saved alone, comes back byte for byte through a file of its own kind.
// Onto an existing layer the file's name, line type, action and pens
// replace the layer's own, but its search table stays; LoadType 1 keeps the
// pens too.
TEST_F(NativeFileTest, OneLayerTravelsAloneAndMergesIntoAnother)
{
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        CadControl original(&window, &sink);
        RandomDrawing(original, seed).Build();
        Saved(original, "whole.bvx");
        const int16_t layer = int16_t(2 + seed % uint32_t(original.GetLayerCount() - 2));
        CadLayer& source = *original.View().Buf.Layers[size_t(layer)];

        CadControl alone(&window, &sink);
        ASSERT_TRUE(alone.CadLoad(Path("whole.bvx"), layer, 99, 0));
        ASSERT_EQ(alone.GetLayerCount(), 3);
        EXPECT_EQ(alone.GetLayerName(2), source.Name);
        EXPECT_EQ(alone.View().Buf.Layers[2]->SearchMethods, source.SearchMethods);
        EXPECT_EQ(alone.GetLayerShapeCount(2), int32_t(source.Shapes.size()));
        const std::vector<uint8_t> b1 = Saved(alone, "b1.bvx", 2);
        CadControl again(&window, &sink);
        ASSERT_TRUE(again.CadLoad(Path("b1.bvx"), -1, -1, 0));
        EXPECT_EQ(Saved(again, "b2.bvx", 2), b1);

        for (int16_t loadType : {0, 1}) {
            CadControl merged(&window, &sink);
            const int32_t before = merged.DrawRectangle(0, 0, 1, 1, 1);
            const ShapeAttr ownPens = *merged.View().Buf.Layers[1]->Attr;
            ASSERT_TRUE(merged.CadLoad(Path("b1.bvx"), 1, -1, loadType));
            const CadLayer& target = *merged.View().Buf.Layers[1];
            EXPECT_EQ(merged.GetLayerCount(), 2);
            EXPECT_EQ(target.Name, source.Name);
            EXPECT_EQ(target.LineType, source.LineType);
            EXPECT_EQ(target.Action, source.Action);
            EXPECT_EQ(target.SearchMethods, CadLayer().SearchMethods);
            EXPECT_EQ(*target.Attr, loadType == 0 ? *source.Attr : ownPens);
            EXPECT_EQ(target.Shapes.size(), source.Shapes.size() + 1);
            EXPECT_EQ(target.Shapes.front()->Number, before);
        }
    }
}

// A file of one layer with one group holding `depth` groups inside each
// other around a point, written out here.
Layout NestedGroups(int32_t depth, int32_t claimedInnermost = 1)
{
    Layout f;
    f.Field("BvxCAD.2.52_B", 14).I16(1).I32(0).I32(0);
    const ShapeAttr pens = ShapeAttr::Default();
    f.List("Nest", 0, 15, {}, &pens, 1);
    for (int32_t i = 0; i < depth; ++i)
        f.Head(18, 18, 0, "", 0, nullptr).List("Group Layer", 0, 1, {}, nullptr, i + 1 < depth ? 1 : claimedInnermost);
    f.Head(17, 17, 0, "", 0, nullptr).Pt(1, 2);
    return f;
}

// The whole drawing survives any cut: every prefix of a file loads as
// false, keeps the shapes read whole before the cut (more for a longer
// prefix), and leaves a drawing that saves and loads again. A file that
// isn't a drawing file leaves the drawing as it was.
TEST_F(NativeFileTest, CutFilesLoadAsFarAsTheyGo)
{
    CadControl original(&window, &sink);
    RandomDrawing drawing(original, 11);
    drawing.Build();
    const std::vector<uint8_t> whole = Saved(original, "whole.bvx");
    ASSERT_GT(drawing.types.size(), 10u);
    size_t lastCount = 0;
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        PutFileBytes(dir / "cut.bvx", std::vector<uint8_t>(whole.begin(), whole.begin() + std::ptrdiff_t(cut)));
        CadControl c(&window, &sink);
        c.DrawPoint(1, 1, 1);
        ASSERT_FALSE(c.CadLoad(Path("cut.bvx"), -1, -1, 0)) << cut;
        const size_t count = c.View().Buf.ShapeMap.Size();
        // Short of a whole magic nothing is touched.
        ASSERT_GE(count, cut < 14 ? 1u : lastCount) << cut;
        ASSERT_LE(count, cut < 14 ? 1u : drawing.types.size()) << cut;
        if (cut >= 14) lastCount = count;
        ASSERT_GE(c.GetLayerCount(), 1) << cut;
        ASSERT_FALSE(c.View().FontTable.Slots.empty()) << cut;
        if (cut % 8 != 0) continue;
        c.CadSave(Path("again.bvx"), -1);
        CadControl reread(&window, &sink);
        ASSERT_TRUE(reread.CadLoad(Path("again.bvx"), -1, -1, 0)) << cut;
        ASSERT_EQ(reread.View().Buf.ShapeMap.Size(), count) << cut;
    }
    EXPECT_GT(lastCount, drawing.types.size() / 2);

    for (const std::string magic : {"BvxCAD.2.53_A", "bvxcad.2.52_A", "BvxCAD.2.52_C", "BvxCAD.2.52_"}) {
        std::vector<uint8_t> wrong = whole;
        std::copy(magic.begin(), magic.end(), wrong.begin());
        if (magic.size() < 13) wrong[12] = 0;
        PutFileBytes(dir / "wrong.bvx", wrong);
        CadControl c(&window, &sink);
        c.DrawPoint(1, 1, 1);
        c.LayerOpen(u"Mine");
        EXPECT_FALSE(c.CadLoad(Path("wrong.bvx"), -1, -1, 0)) << magic;
        EXPECT_EQ(c.GetLayerNames(), u"Buffer Layer,Layer 1,Mine,") << magic;
        EXPECT_EQ(c.GetCadShapeCount(), 1) << magic;
    }
    CadControl c(&window, &sink);
    EXPECT_FALSE(c.CadLoad(Path("no such file.bvx"), -1, -1, 0));
    EXPECT_FALSE(c.CadLoad(Wide(dir.string()), -1, -1, 0));
}

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
// Runs `load` in a child process allowed little more memory than it has:
// a reader that believed a count and allocated for it would die there.
// True when the child finished with `load` false.
bool FailsWithinMemory(const std::function<bool()>& load)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t limit = rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(64) << 20);
        const rlimit bound{limit, limit};
        setrlimit(RLIMIT_AS, &bound);
        _exit(load() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
#endif

// Counts and sizes that promise more than the file holds end the load with
// false before anything is made for them; a type no class takes ends it too,
// keeping what came before.
TEST_F(NativeFileTest, LyingCountsAndUnknownTypesEndTheLoad)
{
    const ShapeAttr pens = ShapeAttr::Default();
    const int32_t kHuge = 0x7FFFFFFF;
    const Layout oneLayer = Layout().Field("BvxCAD.2.52_B", 14).I16(1);
    // A file of one layer: a rectangle, then what the case puts after it.
    const auto file = [&](const std::function<void(Layout&)>& after, int32_t shapes = 2) {
        Layout f = oneLayer;
        f.I32(0).I32(1).U32(0xFF).List("L", 0, 15, {}, &pens, shapes);
        after(f.Head(1, 1, 0, "", 0, nullptr).Pt(0, 0).Pt(1, 1).Pt(0, 0).I16(-1));
        return f.bytes;
    };
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        int32_t kept = 1; // shapes on the file's layer before the lie; -1: no layer made
    };
    const std::vector<Case> all = {
        {"a shape count", file([](Layout&) {}, kHuge)},
        {"a negative shape count", file([](Layout&) {}, -1), 0},
        {"a poly's points", file([](Layout& f) { f.Head(6, 6, 0, "", 0, nullptr).Le(uint16_t(0xFFFF), 2).Pt(1, 1); })},
        {"a note's size", file([&](Layout& f) { f.Le(uint16_t(17), 2).U8(17).I32(0).I32(kHuge).Field("x", 8); })},
        {"a negative note", file([&](Layout& f) { f.Le(uint16_t(17), 2).U8(17).I32(0).I32(-5).Field("x", 8); })},
        {"a picture name", file([&](Layout& f) {
             f.Head(12, 12, 0, "", 0, nullptr).Pt(0, 0).Pt(1, 1).Le(uint16_t(0), 2).I32(0).I32(0).I32(kHuge);
         })},
        {"a group's members", file([&](Layout& f) { f.Head(18, 18, 0, "", 0, nullptr).List("G", 0, 1, {}, nullptr, kHuge); }), 2},
        {"a group list's name", file([&](Layout& f) { f.Head(18, 18, 0, "", 0, nullptr).I32(kHuge); })},
        {"type 0", file([](Layout& f) { f.Le(uint16_t(0), 2).Field("", 64); })},
        {"type 16", file([](Layout& f) { f.Le(uint16_t(16), 2).Field("", 64); })},
        {"type 21", file([](Layout& f) { f.Le(uint16_t(21), 2).Field("", 64); })},
        {"type 65535", file([](Layout& f) { f.Le(uint16_t(65535), 2).Field("", 64); })},
        {"a negative layer count", Layout().Field("BvxCAD.2.52_B", 14).I16(-1).I32(0).I32(0).bytes, -1},
        {"the picture count", Layout(oneLayer).I32(kHuge).bytes, -1},
        {"a bitmap's size", Layout(oneLayer).I32(1).Name("a.bmp").U32(0xFFFFFFF0).Field("BM", 14).bytes, -1},
        {"the colour count", Layout(oneLayer).I32(0).I32(kHuge).U32(1).bytes, -1},
        {"a layer name", Layout(oneLayer).I32(0).I32(0).I32(kHuge).Field("L", 4).bytes, 0},
        {"a font's face", Layout().Field("BvxCAD.2.52_A", 14).I16(2).Field("", 27).I16(0x7FFF).U8(1).Field("", 28)
                              .I32(kHuge).Field("Arial", 8).bytes, -1},
        {"groups nested deeper than they are", NestedGroups(3000, 2).bytes, 1},
    };
    for (const Case& lie : all) {
        SCOPED_TRACE(lie.what);
        PutFileBytes(dir / "lie.bvx", lie.bytes);
        CadControl c(&window, &sink);
        const auto load = [&] { return c.CadLoad(Path("lie.bvx"), -1, -1, 0); };
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
        EXPECT_TRUE(FailsWithinMemory(load));
#endif
        EXPECT_FALSE(load());
        // What the file held before the lie stays.
        EXPECT_EQ(c.GetLayerShapeCount(2), lie.kept);
    }
}

// Groups nest as deep as the file goes: the reader keeps its own stack.
TEST_F(NativeFileTest, DeeplyNestedGroupsLoad)
{
    constexpr int32_t kDepth = 100000;
    PutFileBytes(dir / "deep.bvx", NestedGroups(kDepth).bytes);
    CadControl c(&window, &sink);
    ASSERT_TRUE(c.CadLoad(Path("deep.bvx"), -1, -1, 0));
    EXPECT_EQ(c.View().Buf.ShapeMap.Size(), size_t(kDepth + 1));
    EXPECT_EQ(c.GetLayerShapeCount(2), 1);
    const int32_t first = c.View().Buf.Layers[2]->Shapes.front()->Number;
    EXPECT_EQ(c.GetGroupShapeCount(first), 1);
    EXPECT_EQ(c.ShapeOnGroup(first + kDepth), first + kDepth - 1);
    c.CadSave(Path("deep2.bvx"), 2);
    CadControl again(&window, &sink);
    ASSERT_TRUE(again.CadLoad(Path("deep2.bvx"), -1, -1, 0));
    EXPECT_EQ(again.View().Buf.ShapeMap.Size(), size_t(kDepth + 1));
}

// A save that can't finish leaves the file it would have replaced as it
// was, and no temporary file behind: a folder that doesn't exist, a layer
// that doesn't exist, a read-only mount and a full one. The mounts need
// the right to mount; without it they are skipped.
TEST_F(NativeFileTest, FailedSavesKeepTheOldFile)
{
    CadControl c(&window, &sink);
    for (int i = 0; i < 2000; ++i) c.DrawCircle(i, i, 5, 1);
    c.CadSave(Wide((dir / "missing" / "x.bvx").string()), -1);
    EXPECT_FALSE(fs::exists(dir / "missing"));

    const std::vector<uint8_t> old = {'o', 'l', 'd'};
    PutFileBytes(dir / "kept.bvx", old);
    c.CadSave(Path("kept.bvx"), 57);
    EXPECT_EQ(FileBytes(dir / "kept.bvx"), old);

    // Where nothing fails, the file is replaced, keeping its permissions.
    const auto kept = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(dir / "kept.bvx", kept);
    c.CadSave(Path("kept.bvx"), -1);
    EXPECT_GT(FileBytes(dir / "kept.bvx").size(), 2000u * 40);
#ifndef _WIN32
    EXPECT_EQ(fs::status(dir / "kept.bvx").permissions(), kept);
#endif

    const fs::path mount = dir / "mount";
    fs::create_directories(mount);
    if (std::system(("mount -t tmpfs -o size=64k tmpfs '" + mount.string() + "' 2>/dev/null").c_str()) != 0)
        GTEST_SKIP() << "no right to mount a small file system here; the full and read-only cases did not run";
    // Unmounted however the checks below end.
    const std::unique_ptr<const fs::path, void (*)(const fs::path*)> unmount(
        &mount, [](const fs::path* m) { (void)std::system(("umount '" + m->string() + "' 2>/dev/null").c_str()); });
    PutFileBytes(mount / "kept.bvx", old);
    c.CadSave(Wide((mount / "kept.bvx").string()), -1);
    EXPECT_EQ(FileBytes(mount / "kept.bvx"), old) << "full";
    EXPECT_EQ(std::distance(fs::directory_iterator(mount), fs::directory_iterator()), 1) << "full";
    ASSERT_EQ(std::system(("mount -o remount,ro '" + mount.string() + "'").c_str()), 0);
    CadControl small(&window, &sink);
    small.DrawPoint(1, 1, 1);
    small.CadSave(Wide((mount / "kept.bvx").string()), -1);
    EXPECT_EQ(FileBytes(mount / "kept.bvx"), old) << "read-only";
}

} // namespace
} // namespace bvx
