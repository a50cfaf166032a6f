// Files of every older version of the drawing file, written here from the
// layout each version has, load into the drawing they describe. The files
// kept in tests/data/native are this writer's, checked byte for byte.
#include "FileLayout.h"
#include "control/CadControl.h"
#include "control/HostDoubles.h"
#include "shapes/CArcShape.h"
#include "shapes/CTextShape.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace bvx {
namespace {

namespace fs = std::filesystem;
const fs::path kKept = BVX_TEST_DATA_DIR "/native";

// The release each version code stands for.
const std::map<int, std::string> kRelease = {{5, "2.00"},  {6, "2.01"},  {7, "2.02"},  {8, "2.03"},
                                              {9, "2.04"},  {10, "2.05"}, {11, "2.06"}, {12, "2.50"},
                                              {13, "2.51"}, {14, "2.52"}};

std::vector<uint8_t> Bytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A 3 by 2 bitmap file of 24-bit pixels.
std::vector<uint8_t> Bitmap()
{
    Layout b;
    b.Field("BM", 2).U32(78).U32(0).U32(54);
    b.U32(40).I32(3).I32(2).Le(uint16_t(1), 2).Le(uint16_t(24), 2).U32(0).U32(24).I32(0).I32(0).U32(0).U32(0);
    for (int row = 0; row < 2; ++row) b.Field("\xff\x00\x00\x00\xff\x00\x00\x00\xff", 9).Field("", 3);
    return b.bytes;
}

// The old files' drawing, in the layout of one version code (1 for the
// oldest magics) and kind ('A' whole, 'B' one layer).
class OldWriter {
public:
    OldWriter(int version, char kind) : v_(version), kind_(kind) {}

    std::vector<uint8_t> File()
    {
        const bool oldest = v_ == 1;
        f_.Field(oldest ? std::string("Quillet.1.00") + kind_ : "BvxCAD." + kRelease.at(v_) + "_" + kind_, 14);
        if (oldest) {
            f_.I32(kind_ == 'A' ? 2 : 1);
            if (kind_ == 'A') OldestHead();
        } else {
            f_.I16(kind_ == 'A' ? 2 : 1);
            if (kind_ == 'A') Head();
            if (v_ >= 8) {
                f_.I32(kind_ == 'A' ? 2 : 1);
                if (kind_ == 'A') f_.Name("back.bmp").U32(78).Raw(Bitmap());
                f_.Name("p.bmp").U32(78).Raw(Bitmap());
            }
        }
        f_.I32(1).U32(0x00ABCDEF);
        if (kind_ == 'A' && !oldest) List("Buffer Layer", true, 0);
        if (kind_ == 'A' && oldest) f_.I32(0).U8(12).Field("Buffer Layer", 12).Field("", 16 * 4 + 8).I32(0);
        if (oldest) {
            f_.I32(0).U8(9).Field("Old Layer", 9);
            for (int t = 0; t < 16; ++t) f_.I32(t == 1 ? 1 : 0);
            f_.U32(0x00160116).U32(0x00000016).I32(5);
            for (int i = 0; i < 5; ++i) {
                f_.I32(i);
                Shape(i);
            }
        } else {
            List("Old Layer", true, 7);
            for (int i = 0; i < 7; ++i) Shape(i);
        }
        return f_.bytes;
    }

private:
    Layout& C(double value) { return v_ < 8 ? f_.Le(float(value), 4) : f_.F64(value); }

    void Head()
    {
        f_.I16(1).U8(1).U8(1).I32(0);
        f_.U8(1).I16(1).I16(2).I16(1).I16(0);
        if (v_ >= 9) f_.I16(1).I16(2);
        f_.U32(0x00336699).U8(0).U8(1);
        f_.I16(2).U8(1);
        Font();
        f_.U8(0).U8(1);
        Picture(true);
        World();
        if (v_ >= 10) f_.I16(1).U8(0).U32(0x00000010).U32(0);
    }

    void OldestHead()
    {
        f_.I32(1).I32(0).U8(1).U8(1).U8(2);
        f_.I16(1).I32(0).I16(0);
        Font();
        f_.I16(1);
        Picture(true);
        World();
    }

    void Font()
    {
        f_.I32(16).I32(0).I32(0).I32(0).I32(700).Field("\0\0\0\0\4\0\0\0", 8).I32(32).Field("Arial", 32);
        if (v_ == 1) f_.Field("", 6);
        f_.I16(1).I16(2).I16(0);
        C(16);
        C(18.5);
        f_.I32(2355).I32(2048);
    }

    void World()
    {
        C(-10), C(90), C(-5), C(110);
        if (v_ == 1)
            f_.I32(1);
        else
            f_.U8(1);
        f_.U32(0xFF);
        C(5), C(2.5);
        if (v_ >= 5) f_.U8(0);
        if (v_ >= 7) f_.I16(1);
    }

    // A layer's record up to its shapes, or a group's list's.
    void List(const std::string& name, bool layer, int32_t count)
    {
        f_.Name(name).I16(layer ? 2 : 0);
        if (v_ >= 7) f_.I16(layer ? 7 : 1);
        for (int t = 0; t < (v_ <= 11 ? 17 : 21); ++t) f_.I32(layer && (t == 1 || t == 19) ? 1 : 0);
        if (layer) f_.U32(0x00160116).U32(0x00000016);
        f_.I32(count);
    }

    void Head(uint16_t type, uint8_t flags, const std::string& note)
    {
        f_.Le(type, 2).U8(flags).I32(99);
        if (v_ >= 5) f_.I32(int32_t(note.size() * 2 + 1)).Field(note, note.size() * 2 + 1);
        f_.I16(0);
    }

    // The background picture's type word is one the oldest layout ignores.
    void Picture(bool background)
    {
        Head(12, 12, "");
        C(30), C(40), C(36), C(36);
        f_.Le(uint16_t(1), 2);
        if (v_ < 9) f_.Field("", 8);
        f_.I32(3).I32(2);
        const std::string name = background ? "back.bmp" : "p.bmp";
        if (v_ >= 8)
            f_.I32(int32_t(name.size() * 2 + 1)).Field(name, name.size() * 2 + 1);
        else
            f_.Raw(Bitmap());
    }

    void Shape(int i)
    {
        switch (i) {
        case 0:
            Head(1, 1, "old note");
            C(1.5), C(2.25), C(3.5), C(4.75), C(0), C(0);
            if (v_ != 1) f_.I16(-1);
            break;
        case 1:
            Head(5, 5, "");
            f_.Le(uint16_t(3), 2);
            for (int x = 1; x <= 3; ++x) C(x), C(x * x);
            break;
        case 2: {
            Head(11, 0x8B, "");
            C(10), C(20), C(0), C(0);
            f_.U8(6).Field("Hello", 6);
            const uint32_t word = (450u << 8) | (1u << 20) | (1u << 24);
            if (v_ < 8)
                f_.U32(word).Le(float(16), 4).I32(0);
            else if (v_ == 8)
                f_.U32(word).I32(0).F64(16).F64(0);
            else
                f_.U32(word).F64(16).F64(0.75);
            break;
        }
        case 3:
            Picture(false);
            break;
        case 4:
            Head(13, 13, "");
            C(50), C(50), C(10), C(5), C(0.5), C(2);
            if (v_ >= 2 && v_ <= 8) f_.I16(1);
            break;
        case 5:
            Head(19, 19, "");
            f_.F64(5).F64(5).F64(2).F64(2);
            break;
        case 6:
            Head(18, 18, "");
            List("Group Layer", false, 1);
            Head(17, 17, "");
            C(7), C(8);
            break;
        }
    }

    int v_;
    char kind_;
    Layout f_;
};

std::vector<int> Versions() { return {1, 5, 6, 7, 8, 9, 10, 11, 12, 13}; }

std::string KeptName(int version, char kind) { return "version_" + std::to_string(version) + "_" + kind + ".bvx"; }

// BVX_WRITE_OLD_FILES=folder writes the files anew, for review.
TEST(OldVersions, KeptFilesAreTheWritersAndLoad)
{
    if (const char* out = std::getenv("BVX_WRITE_OLD_FILES"))
        for (int v : Versions())
            for (char kind : {'A', 'B'}) {
                const std::vector<uint8_t> bytes = OldWriter(v, kind).File();
                std::ofstream(fs::path(out) / KeptName(v, kind), std::ios::binary)
                    .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
            }
    for (int v : Versions())
        for (char kind : {'A', 'B'}) EXPECT_EQ(Bytes(kKept / KeptName(v, kind)), OldWriter(v, kind).File()) << v << kind;
}

// Each version's whole file gives the drawing it describes, with what the
// version had no field for at its default: coordinates widened from f32
// before code 8, the action 7 read as 15 up to code 10, 17 search entries up
// to code 11, an arc's swapped angles from 2 to 8, a picture kept in its
// record given a table entry of its own before code 8.
TEST(OldVersions, EachVersionLoadsTheDrawingItDescribes)
{
    testing::RecordingHostWindow window;
    testing::RecordingEventSink sink;
    for (int v : Versions()) {
        SCOPED_TRACE("version " + std::to_string(v));
        const fs::path file = kKept / KeptName(v, 'A');
        CadControl c(&window, &sink);
        ASSERT_TRUE(c.CadLoad(std::u16string(file.u16string()), -1, -1, 0));
        const bool oldest = v == 1;
        EXPECT_EQ(c.GetLayerNames(), u"Buffer Layer,Old Layer,");
        EXPECT_EQ(c.GetLayerNumber(), 1);
        EXPECT_EQ(c.GetCadShapeCount(), oldest ? 5 : 7);
        EXPECT_EQ(c.GetLayerAction(1), v >= 11 ? 7 : 15);
        EXPECT_EQ(c.GetLayerLineType(1), oldest ? 0 : 2);
        EXPECT_EQ(c.GetLayerSearchMethod(bvxRectangle), 1);
        EXPECT_EQ(c.GetLayerSearchMethod(bvxCircle), v >= 12 ? 1 : 0);
        EXPECT_EQ(c.GetBackColor(), oldest ? 0xFFFFFFu : 0x00336699u);
        EXPECT_EQ(c.GetViewMouseBounds(), v >= 9 ? 1 : 0);
        EXPECT_EQ(c.GetViewSnapToGrid(), 2);
        EXPECT_EQ(c.GetViewSnapMode(), v >= 10 ? 1 : 0);
        EXPECT_EQ(c.GetAngleMode(), v >= 7 ? 1 : 0);
        EXPECT_TRUE(c.GetGridOn());
        EXPECT_EQ(c.GetGridWidth(), 5);
        EXPECT_EQ(c.GetGridHeight(), 2.5);
        EXPECT_EQ(c.GetWorldLeft(), -10);
        EXPECT_EQ(c.GetWorldRight(), 110);

        CadView& view = c.View();
        ASSERT_FALSE(view.FontTable.Slots.empty());
        const CLogFont& font = *view.FontTable.Slots[0];
        EXPECT_EQ(font.Log.faceName, "Arial");
        EXPECT_EQ(font.Log.height, -16);
        EXPECT_EQ(font.BaseHeight, -16);
        EXPECT_EQ(font.Height, 16);
        EXPECT_EQ(font.CellHeight, 18.5);
        EXPECT_EQ(font.Align, 1);
        EXPECT_EQ(view.FontTable.Slots.size(), oldest ? 1u : 2u);
        EXPECT_GE(view.ColorIndex(0x00ABCDEF), 0);

        EXPECT_EQ(c.GetShapeNotes(1), v >= 5 ? u"old note" : u"");
        EXPECT_EQ(c.ShapePointGetX(1, 0), 1.5);
        EXPECT_EQ(c.ShapePointGetY(1, 1), 4.75);
        EXPECT_EQ(c.GetShapePointCount(2), 3);
        EXPECT_EQ(c.ShapePointGetY(2, 2), 9);
        EXPECT_EQ(c.GetShapeText(3), u"Hello");
        const auto& text = static_cast<const CTextShape&>(*view.Buf.FindShape(3));
        EXPECT_EQ(text.Font.Orientation(), 450);
        EXPECT_EQ(text.Font.Height, 16);
        EXPECT_EQ(text.Font.Width, v > 8 ? 0.75 : 0);
        EXPECT_EQ(text.Font.Scaled(), v == 1 || v > 8);
        const auto& picture = static_cast<const CPictShape&>(*view.Buf.FindShape(4));
        EXPECT_EQ(picture.ImageName, v < 8 ? "HV_OLD_PICT_4" : "p.bmp");
        EXPECT_TRUE(picture.HasImage());
        EXPECT_EQ(picture.ImageWidth, 3);
        ASSERT_TRUE(view.Buf.BackPic);
        EXPECT_EQ(view.Buf.BackPic->ImageName, v < 8 ? "HV_OLD_PICT_0" : "back.bmp");
        EXPECT_TRUE(view.Buf.BackPic->HasImage());
        std::vector<std::string> entries;
        for (const CadPictEntry& e : view.Buf.Pictures.Entries) entries.push_back(e.Name);
        const std::vector<std::string> oldNames{"HV_OLD_PICT_0", "HV_OLD_PICT_4"}, names{"back.bmp", "p.bmp"};
        EXPECT_EQ(entries, v < 8 ? oldNames : names);
        const auto& arc = static_cast<const CArcShape&>(*view.Buf.FindShape(5));
        const bool swapped = v >= 2 && v <= 8;
        EXPECT_EQ(arc.StartAngle, swapped ? 2 : 0.5);
        EXPECT_EQ(arc.EndAngle, swapped ? 0.5 : 2);
        if (!oldest) {
            EXPECT_EQ(c.GetShapeType(6), bvxCircle);
            EXPECT_EQ(c.GetShapeType(7), bvxGroup);
            EXPECT_EQ(c.GetGroupShapeCount(7), 1);
            EXPECT_EQ(c.ShapePointGetY(8, 0), 8);
        }
    }
}

// A single layer of each version joins a drawing as a new layer, or, for the
// oldest layout, replaces the name of nothing when a layer is named: the
// layer is opened and takes the shapes.
TEST(OldVersions, OneLayerFilesJoinADrawing)
{
    testing::RecordingHostWindow window;
    testing::RecordingEventSink sink;
    for (int v : Versions()) {
        SCOPED_TRACE("version " + std::to_string(v));
        const std::u16string file = (kKept / KeptName(v, 'B')).u16string();
        CadControl c(&window, &sink);
        c.DrawPoint(1, 1, 1);
        ASSERT_TRUE(c.CadLoad(file, -1, -1, 0));
        EXPECT_EQ(c.GetLayerNames(), u"Buffer Layer,Layer 1,Old Layer,");
        EXPECT_EQ(c.GetLayerShapeCount(2), v == 1 ? 5 : 7);
        ASSERT_TRUE(c.CadLoad(file, 1, -1, 0));
        EXPECT_EQ(c.GetLayerShapeCount(1), v == 1 ? 6 : 8);
        EXPECT_EQ(c.GetLayerName(1), v == 1 ? u"Layer 1" : u"Old Layer");
    }
}

// The oldest layout's own rules: its running ordinal, not a count, ends a
// layer; a type beyond 15 or a font slot beyond a text's reach ends the load
// with false, keeping what came before.
TEST(OldVersions, TheOldestLayoutsOrdinalsTypesAndSlots)
{
    testing::RecordingHostWindow window;
    testing::RecordingEventSink sink;
    const std::vector<uint8_t> sound = OldWriter(1, 'A').File();
    const std::string layerName = "Old Layer";
    const size_t firstShape =
        size_t(std::search(sound.begin(), sound.end(), layerName.begin(), layerName.end()) - sound.begin()) + 9 + 64 + 8 + 4;
    struct Case {
        const char* what;
        size_t at;
        std::vector<uint8_t> bytes;
        bool loads;
        int32_t shapes; // on layer 1: the old layer, or a new drawing's first
    };
    const std::vector<Case> cases = {
        {"the first ordinal the last", firstShape, {4, 0, 0, 0}, true, 1},
        {"type 16", firstShape + 4, {16, 0}, false, 0},
        {"type 17", firstShape + 4, {17, 0}, false, 0},
        {"font slot 256", 31, {0, 1, 0, 0}, false, 0},
        {"font slot -1", 31, {0xFF, 0xFF, 0xFF, 0xFF}, false, 0},
    };
    const fs::path file = fs::temp_directory_path() / "bvx_oldest_case.bvx";
    for (const Case& k : cases) {
        SCOPED_TRACE(k.what);
        std::vector<uint8_t> bytes = sound;
        std::copy(k.bytes.begin(), k.bytes.end(), bytes.begin() + std::ptrdiff_t(k.at));
        std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        CadControl c(&window, &sink);
        EXPECT_EQ(c.CadLoad(file.u16string(), -1, -1, 0), k.loads);
        EXPECT_EQ(c.GetLayerShapeCount(1), k.shapes);
        EXPECT_EQ(c.GetLayerNames(), k.at == 31 ? u"Buffer Layer,Layer 1," : u"Buffer Layer,Old Layer,");
    }
    fs::remove(file);
}

} // namespace
} // namespace bvx
