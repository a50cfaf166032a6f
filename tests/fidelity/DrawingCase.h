// Drawing cases written once in a text file and played on any device: the
// platform's GDI draws the reference pictures, the raster device the ones
// compared with them.
#pragma once

#include "platform/DeviceContext.h"

#include <string>
#include <vector>

namespace bvx::fidelity {

struct DrawingCase {
    std::string name;
    int32_t width = 64;
    int32_t height = 64;
    std::vector<std::vector<std::string>> commands; // each a word list
};

// Region probes: a region and every point of its box grown by a margin.
struct RegionCase {
    std::string name;
    std::string kind; // rect, polygon-alternate, polygon-winding, ellipse, roundrect
    std::vector<int32_t> numbers;
};

struct CaseFile {
    std::vector<DrawingCase> drawings;
    std::vector<RegionCase> regions;
    std::string error; // empty when the whole file parsed
};

CaseFile ParseCaseFile(const std::string& path);

// How each side makes the font a case asks for: the raster device from the
// font engine, GDI from the logical font alone.
using FontMaker = FontHandle (*)(const LogFont&);
void SetFontMaker(FontMaker maker);

// Clears the surface to white and plays the commands; false names the
// first command it could not understand in `error`.
bool PlayCase(const DrawingCase& drawing, DeviceContext& dc, std::string& error);

// The probe points of a region case, row by row, and the box they cover.
DeviceRect ProbeBox(const RegionCase& region);
constexpr int32_t kProbeMargin = 2;

} // namespace bvx::fidelity
