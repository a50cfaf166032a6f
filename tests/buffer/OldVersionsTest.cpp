// Files of every older version of the drawing file (tests/data/native, one
// drawing in each version's layout) load into the drawing they describe.
#include "control/CadControl.h"
#include "control/HostDoubles.h"
#include "shapes/CArcShape.h"
#include "shapes/CTextShape.h"
#include "hosts/cli/ScriptRunner.h"
#include "platform/DataRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace bvx {
namespace {

namespace fs = std::filesystem;
const fs::path kKept = BVX_TEST_DATA_DIR "/native";

std::vector<uint8_t> Bytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<int> Versions() { return {1, 5, 6, 7, 8, 9, 10, 11, 12, 13}; }

std::string KeptName(int version, char kind) { return "version_" + std::to_string(version) + "_" + kind + ".bvx"; }

// Each version's whole file gives the drawing it describes, with what the
// version had no field for at its default: coordinates widened from f32
// before code 8, the action 7 read as 15 up to code 10, 17 search entries up
// to code 11, an arc's swapped angles from 2 to 8, a picture kept in its
// record given a table entry of its own before code 8.
TEST(OldVersions, EachVersionLoadsTheDrawingItDescribes)
{
    const auto reads = test::DataRows("old_versions.txt");
    ASSERT_GE(reads.size(), 25u);
    testing::RecordingHostWindow window;
    for (size_t i = 0; i < Versions().size(); ++i) {
        const int v = Versions()[i];
        SCOPED_TRACE("version " + std::to_string(v));
        const fs::path file = kKept / KeptName(v, 'A');
        script::EventLog events;
        CadControl c(&window, &events);
        ASSERT_TRUE(c.CadLoad(std::u16string(file.u16string()), -1, -1, 0));
        const bool oldest = v == 1;
        EXPECT_EQ(c.GetLayerNames(), u"Buffer Layer,Old Layer,");
        std::ostringstream out;
        script::ScriptRunner host(c, events, out);
        for (const auto& row : reads) {
            ASSERT_GT(row.size(), Versions().size()) << test::Joined(row);
            const std::string line = test::Joined({row.begin() + std::ptrdiff_t(Versions().size()), row.end()});
            out.str("");
            EXPECT_EQ(host.RunLine(line), "") << line;
            EXPECT_EQ(out.str(), "-> " + row[i] + "\n") << line;
        }
        EXPECT_EQ(c.GetShapeNotes(1), v >= 5 ? u"old note" : u"");

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
    const std::vector<uint8_t> sound = Bytes(kKept / KeptName(1, 'A'));
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
