// The raster device against pictures drawn by the platform's GDI under Wine.
#include "DrawingCase.h"
#include "PixelFile.h"
#include "platform/Region.h"
#include "platform/raster/RasterDeviceContext.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace bvx::fidelity {
namespace {

const char* ReferenceDir() { return BVX_GDI_REFERENCE_DIR; }

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

struct CaseResult {
    std::string name;
    int64_t differing = 0;
    int64_t pixels = 0;
};

class Fidelity : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        cases_ = ParseCaseFile(BVX_TEST_DATA_DIR "/gdi_cases.txt");
    }
    static CaseFile cases_;
};
CaseFile Fidelity::cases_;

TEST_F(Fidelity, DrawingCasesMatchTheReference)
{
    ASSERT_EQ(cases_.error, "");
    ASSERT_GE(cases_.drawings.size(), 300u);
    std::vector<CaseResult> differing;
    size_t identical = 0;
    for (const DrawingCase& c : cases_.drawings) {
        auto reference = ReadPixelFile(std::string(ReferenceDir()) + "/" + c.name + ".bmp");
        ASSERT_TRUE(reference) << "no reference picture for " << c.name;
        auto ours = CreateBitmap(c.width, c.height);
        RasterDeviceContext dc(ours);
        std::string error;
        ASSERT_TRUE(PlayCase(c, dc, error)) << error;
        CaseResult result{c.name, 0, int64_t(c.width) * c.height};
        for (size_t i = 0; i < ours->Pixels().size(); ++i)
            result.differing += ours->Pixels()[i] != reference->Pixels()[i];
        if (result.differing == 0)
            ++identical;
        else
            differing.push_back(result);
    }

    std::ostringstream report;
    report << "| case | differing pixels | of |\n| --- | ---: | ---: |\n";
    for (const auto& r : differing) report << "| " << r.name << " | " << r.differing << " | " << r.pixels << " |\n";
    report << "\nReference: GDI of " BVX_WINE_VERSION ".\n";
    report << "\nIdentical: " << identical << " of " << cases_.drawings.size() << " drawing cases.\n";
    std::ofstream(BVX_FIDELITY_REPORT) << report.str();
    std::printf("%s", report.str().c_str());

    EXPECT_GE(identical * 100, cases_.drawings.size() * 97) << "fewer than 97% of the cases are pixel-identical";
    for (const auto& r : differing)
        EXPECT_LE(r.differing * 100, r.pixels) << r.name << " differs in more than 1% of its pixels";
}

TEST_F(Fidelity, RegionsAnswerProbesAsTheReference)
{
    ASSERT_EQ(cases_.error, "");
    std::ifstream in(std::string(ReferenceDir()) + "/regions.txt");
    ASSERT_TRUE(in) << "no reference region answers";
    std::map<std::string, std::string> answers;
    for (std::string name, bits; in >> name >> bits;) answers[name] = bits;

    int64_t probes = 0, alike = 0;
    std::ostringstream report;
    for (const RegionCase& r : cases_.regions) {
        ASSERT_TRUE(answers.count(r.name)) << r.name;
        const std::string& expected = answers[r.name];
        Region region = MakeRegion(r);
        DeviceRect box = ProbeBox(r);
        size_t i = 0;
        int64_t wrong = 0;
        for (int32_t y = box.top; y < box.bottom; ++y)
            for (int32_t x = box.left; x < box.right; ++x, ++i) {
                ASSERT_LT(i, expected.size()) << r.name;
                wrong += region.PtInRegion(x, y) != (expected[i] == '1');
            }
        probes += int64_t(i);
        alike += int64_t(i) - wrong;
        if (wrong) report << "| " << r.name << " | " << wrong << " | " << i << " |\n";
    }
    std::ofstream(BVX_FIDELITY_REPORT, std::ios::app)
        << "\n| region | differing probes | of |\n| --- | ---: | ---: |\n"
        << report.str() << "\nRegion probes answering alike: " << alike << " of " << probes << ".\n";
    std::printf("region probes alike: %lld of %lld\n%s", (long long)alike, (long long)probes, report.str().c_str());
    EXPECT_GE(probes, 2000);
    EXPECT_GE(alike * 100, probes * 99);
}

} // namespace
} // namespace bvx::fidelity
