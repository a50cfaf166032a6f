// Draws every case of a case file with the platform's own GDI and writes the
// pictures, and the answers of its regions to the probes, for the raster
// device to be compared with.
#include "DrawingCase.h"
#include "PixelFile.h"
#include "platform/win32/GdiDeviceContext.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace bvx;
using namespace bvx::fidelity;

namespace {

HRGN MakeRegion(const RegionCase& r)
{
    const auto& n = r.numbers;
    if (r.kind == "rect" && n.size() == 4) return ::CreateRectRgn(n[0], n[1], n[2], n[3]);
    if (r.kind == "ellipse" && n.size() == 4) return ::CreateEllipticRgn(n[0], n[1], n[2], n[3]);
    if (r.kind == "roundrect" && n.size() == 6) return ::CreateRoundRectRgn(n[0], n[1], n[2], n[3], n[4], n[5]);
    if (r.kind.rfind("polygon-", 0) == 0 && n.size() >= 6 && n.size() % 2 == 0) {
        std::vector<POINT> p;
        for (size_t i = 0; i < n.size(); i += 2) p.push_back({n[i], n[i + 1]});
        return ::CreatePolygonRgn(p.data(), int(p.size()), r.kind == "polygon-winding" ? WINDING : ALTERNATE);
    }
    return nullptr;
}

// GDI needs only the logical font; it measures and draws by itself.
class LogicalFont final : public Font {
public:
    using Font::Font;
    const TextMetrics& Metrics() const override { return metrics_; }
    int32_t Advance(uint8_t) const override { return 0; }
    AbcWidth Abc(uint8_t) const override { return {}; }
    GlyphImage Glyph(uint8_t) const override { return {}; }
    int32_t UnderlinePosition() const override { return 0; }
    int32_t UnderlineThickness() const override { return 0; }
    int32_t StrikeOutPosition() const override { return 0; }
    int32_t StrikeOutThickness() const override { return 0; }

private:
    TextMetrics metrics_;
};

// The faces the raster device draws with, lent to GDI for this process.
int AddFaces(const char* folder)
{
    int added = 0;
    std::error_code ec;
    if (folder)
        for (const auto& entry : std::filesystem::directory_iterator(folder, ec))
            added += ::AddFontResourceExA(entry.path().string().c_str(), FR_PRIVATE, nullptr) > 0;
    return added;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) return std::fprintf(stderr, "usage: gdi_reference CASES OUTDIR\n"), 2;
    const int faces = AddFaces(std::getenv("BVX_FONT_DIR"));
    SetFontMaker([](const LogFont& f) -> FontHandle { return std::make_shared<LogicalFont>(f); });
    CaseFile cases = ParseCaseFile(argv[1]);
    if (!cases.error.empty()) return std::fprintf(stderr, "%s\n", cases.error.c_str()), 1;
    std::string out = argv[2];
    int failures = 0;
    for (const DrawingCase& c : cases.drawings) {
        GdiDibSurface surface(c.width, c.height);
        std::string error;
        if (!surface.IsValid() || !PlayCase(c, surface.Context(), error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            ++failures;
            continue;
        }
        auto bitmap = surface.ToBitmap();
        if (!bitmap || !WritePixelFile(*bitmap, out + "/" + c.name + ".bmp")) ++failures;
    }
    std::ofstream probes(out + "/regions.txt");
    for (const RegionCase& r : cases.regions) {
        HRGN region = MakeRegion(r);
        DeviceRect box = ProbeBox(r);
        probes << r.name << ' ';
        for (int32_t y = box.top; y < box.bottom; ++y)
            for (int32_t x = box.left; x < box.right; ++x) probes << (region && ::PtInRegion(region, x, y) ? '1' : '0');
        probes << '\n';
        if (region) ::DeleteObject(region);
    }
    std::printf("gdi_reference: %zu pictures, %zu regions, %d faces, %d failures\n", cases.drawings.size(),
                cases.regions.size(), faces, failures);
    return failures ? 1 : 0;
}
