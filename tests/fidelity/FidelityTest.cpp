// The raster device against pictures drawn by the platform's GDI under Wine:
// every drawing case identical and every region probe answered alike, but
// for the reviewed differences listed in tests/data/gdi_known_differences.txt.
#include "DrawingCase.h"
#include "platform/FontEngine.h"
#include "PixelFile.h"
#include "../platform/DataRows.h"
#include "platform/Region.h"
#include "platform/raster/RasterDeviceContext.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace bvx::fidelity {
namespace {

const std::string kReferenceDir = BVX_GDI_REFERENCE_DIR;

Region MakeRegion(const RegionCase& r)
{
    const auto& n = r.numbers;
    if (r.kind == "rect" && n.size() == 4) return CreateRectRgn(n[0], n[1], n[2], n[3]);
    if (r.kind == "ellipse" && n.size() == 4) return CreateEllipticRgn(n[0], n[1], n[2], n[3]);
    if (r.kind == "roundrect" && n.size() == 6) return CreateRoundRectRgn(n[0], n[1], n[2], n[3], n[4], n[5]);
    std::vector<DevicePoint> p;
    for (size_t i = 0; i + 1 < n.size(); i += 2) p.push_back({n[i], n[i + 1]});
    return CreatePolygonRgn(p, r.kind == "polygon-winding" ? PolyFillMode::Winding : PolyFillMode::Alternate);
}

// Case and region names, one a line, each followed by why it may differ.
std::set<std::string> KnownDifferences()
{
    std::set<std::string> names;
    for (const auto& row : test::DataRows("gdi_known_differences.txt")) names.insert(row[0]);
    return names;
}

// The report's table of what differs, and the test's verdict on it. Both
// tests write it to the report file and the log.
struct Tally {
    std::ostringstream rows;
    int64_t items = 0, alikeItems = 0, units = 0, alikeUnits = 0;

    void Add(const std::string& name, int64_t wrong, int64_t of)
    {
        static const std::set<std::string> known = KnownDifferences();
        ++items;
        units += of;
        alikeUnits += of - wrong;
        alikeItems += wrong == 0;
        if (wrong != 0) rows << "| " << name << " | " << wrong << " | " << of << " |\n";
        EXPECT_TRUE(wrong == 0 || known.count(name)) << name << " differs from GDI and is not a known difference";
    }
    void Report(const std::string& what, const std::string& after, std::ios::openmode mode) const
    {
        const std::string text = "\n| " + what + " | of |\n| --- | ---: | ---: |\n" +
                                 (alikeItems == items ? "| (none) | | |\n" : rows.str()) + after;
        std::ofstream(BVX_FIDELITY_REPORT, mode) << text;
        std::printf("%s", text.c_str());
    }
};

class Fidelity : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        cases_ = ParseCaseFile(BVX_TEST_DATA_DIR "/gdi_cases.txt");
        SetFontMaker([](const LogFont& f) { return FontEngine::Shared().CreateFont(f); });
    }
    static CaseFile cases_;
};
CaseFile Fidelity::cases_;

TEST_F(Fidelity, DrawingCasesMatchTheReference)
{
    ASSERT_EQ(cases_.error, "");
    ASSERT_GE(cases_.drawings.size(), 300u);
    Tally tally;
    for (const DrawingCase& c : cases_.drawings) {
        const BitmapHandle reference = ReadPixelFile(kReferenceDir + "/" + c.name + ".bmp");
        ASSERT_TRUE(reference) << "no reference picture for " << c.name;
        const BitmapHandle ours = CreateBitmap(c.width, c.height);
        RasterDeviceContext dc(ours);
        std::string error;
        ASSERT_TRUE(PlayCase(c, dc, error)) << error;
        int64_t wrong = 0;
        for (size_t i = 0; i < ours->Pixels().size(); ++i) wrong += ours->Pixels()[i] != reference->Pixels()[i];
        tally.Add(c.name, wrong, int64_t(c.width) * c.height);
    }
    tally.Report("case | differing pixels",
                 "\nIdentical: " + std::to_string(tally.alikeItems) + " of " + std::to_string(tally.items) +
                     " drawing cases.\n\nReference: GDI of " BVX_WINE_VERSION ".\n",
                 std::ios::trunc);
}

TEST_F(Fidelity, RegionsAnswerProbesAsTheReference)
{
    ASSERT_EQ(cases_.error, "");
    std::ifstream in(kReferenceDir + "/regions.txt");
    ASSERT_TRUE(in) << "no reference region answers";
    std::map<std::string, std::string> answers;
    for (std::string name, bits; in >> name >> bits;) answers[name] = bits;

    Tally tally;
    for (const RegionCase& r : cases_.regions) {
        ASSERT_TRUE(answers.count(r.name)) << r.name;
        const std::string& expected = answers[r.name];
        const Region region = MakeRegion(r);
        const DeviceRect box = ProbeBox(r);
        ASSERT_EQ(expected.size(), size_t(box.Width() * box.Height())) << r.name;
        int64_t wrong = 0;
        size_t i = 0;
        for (int32_t y = box.top; y < box.bottom; ++y)
            for (int32_t x = box.left; x < box.right; ++x) wrong += region.PtInRegion(x, y) != (expected[i++] == '1');
        tally.Add(r.name, wrong, int64_t(expected.size()));
    }
    tally.Report("region | differing probes",
                 "\nRegion probes answering alike: " + std::to_string(tally.alikeUnits) + " of " +
                     std::to_string(tally.units) + ".\n",
                 std::ios::app);
    EXPECT_GE(tally.units, 2000);
}

} // namespace
} // namespace bvx::fidelity
