#include "FaceLocator.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <vector>

#if BVX_HAVE_FONTCONFIG
#include <fontconfig/fontconfig.h>
#else
#include <ft2build.h>
#include FT_FREETYPE_H
#endif

namespace bvx::text {

namespace {

struct Twin {
    std::string_view family;
    std::string_view twin;
};
constexpr std::array<Twin, 3> kTwins{{{"Arial", "Liberation Sans"},
                                      {"Times New Roman", "Liberation Serif"},
                                      {"Courier New", "Liberation Mono"}}};
// What stands in for a face nobody has.
constexpr std::string_view kDefaultFamily = "Arial";

} // namespace

bool SameFamily(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

std::string_view MetricTwin(std::string_view family)
{
    for (const Twin& t : kTwins)
        if (SameFamily(t.family, family)) return t.twin;
    return family;
}

#if BVX_HAVE_FONTCONFIG

namespace {

std::optional<FaceFile> Match(std::string_view family, bool bold, bool italic)
{
    static FcConfig* config = FcInitLoadConfigAndFonts();
    if (!config) return std::nullopt;
    FcPattern* pattern = FcPatternCreate();
    const std::string name(family);
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(name.c_str()));
    FcPatternAddInteger(pattern, FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_OUTLINE, FcTrue);
    FcConfigSubstitute(config, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(config, pattern, &result);
    FcPatternDestroy(pattern);
    if (!match) return std::nullopt;
    std::optional<FaceFile> found;
    FcChar8* file = nullptr;
    FcChar8* matched = nullptr;
    int index = 0;
    if (FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch) {
        FcPatternGetInteger(match, FC_INDEX, 0, &index);
        FcPatternGetString(match, FC_FAMILY, 0, &matched);
        const std::string_view got = matched ? reinterpret_cast<const char*>(matched) : "";
        found = FaceFile{reinterpret_cast<const char*>(file), index,
                         SameFamily(got, family) || SameFamily(got, MetricTwin(family))};
    }
    FcPatternDestroy(match);
    return found;
}

} // namespace

std::optional<FaceFile> LocateFace(std::string_view family, bool bold, bool italic, bool installedOnly)
{
    std::optional<FaceFile> face = Match(family, bold, italic);
    if (face && !face->exactFamily && !SameFamily(MetricTwin(family), family))
        face = Match(MetricTwin(family), bold, italic);
    if (installedOnly && (!face || !face->exactFamily)) return std::nullopt;
    if (!face || !face->exactFamily) {
        std::optional<FaceFile> fallback = Match(MetricTwin(kDefaultFamily), bold, italic);
        if (fallback && fallback->exactFamily) return FaceFile{fallback->path, fallback->index, false};
    }
    return face;
}

#else

namespace {

struct IndexedFace {
    FaceFile file;
    std::string family;
    bool bold = false;
    bool italic = false;
};

// The folders searched: those in BVX_FONT_DIR (separated by ';'), then the
// system's own.
std::vector<std::filesystem::path> FontFolders()
{
    std::vector<std::filesystem::path> folders;
    if (const char* list = std::getenv("BVX_FONT_DIR")) {
        std::string_view rest = list;
        while (!rest.empty()) {
            const size_t cut = rest.find(';');
            if (cut) folders.emplace_back(std::string(rest.substr(0, cut)));
            rest = cut == std::string_view::npos ? std::string_view{} : rest.substr(cut + 1);
        }
    }
#ifdef _WIN32
    if (const char* windows = std::getenv("WINDIR")) folders.emplace_back(std::filesystem::path(windows) / "Fonts");
#else
    folders.emplace_back("/fonts"); // what the page serves
#endif
    return folders;
}

// Every face in the folders, read once.
const std::vector<IndexedFace>& Index()
{
    static const std::vector<IndexedFace> faces = [] {
        std::vector<IndexedFace> all;
        FT_Library library = nullptr;
        if (FT_Init_FreeType(&library)) return all;
        std::error_code ec;
        for (const auto& folder : FontFolders()) {
            for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
                std::string ext = entry.path().extension().string();
                std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return char(std::tolower(c)); });
                if (ext != ".ttf" && ext != ".otf" && ext != ".ttc") continue;
                const std::string path = entry.path().string();
                FT_Face face = nullptr;
                for (FT_Long i = 0; !FT_New_Face(library, path.c_str(), i, &face); ++i) {
                    if (face->family_name) {
                        IndexedFace& f = all.emplace_back();
                        f.file.path = path;
                        f.file.index = int32_t(i);
                        f.family = face->family_name;
                        f.bold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
                        f.italic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
                    }
                    const FT_Long count = face->num_faces;
                    FT_Done_Face(face);
                    if (i + 1 >= count) break;
                }
            }
        }
        FT_Done_FreeType(library);
        return all;
    }();
    return faces;
}

// The face of the family closest in style: exact first, then the same
// slant, then any.
std::optional<FaceFile> Match(std::string_view family, bool bold, bool italic)
{
    const IndexedFace* best = nullptr;
    int bestScore = -1;
    for (const IndexedFace& f : Index()) {
        if (!SameFamily(f.family, family)) continue;
        const int score = (f.italic == italic ? 2 : 0) + (f.bold == bold ? 1 : 0);
        if (score > bestScore) best = &f, bestScore = score;
    }
    return best ? std::optional<FaceFile>(best->file) : std::nullopt;
}

} // namespace

std::optional<FaceFile> LocateFace(std::string_view family, bool bold, bool italic, bool installedOnly)
{
    if (auto face = Match(family, bold, italic)) return face;
    if (auto twin = Match(MetricTwin(family), bold, italic)) return twin;
    if (installedOnly) return std::nullopt;
    for (std::string_view fallback : {kDefaultFamily, MetricTwin(kDefaultFamily)})
        if (auto face = Match(fallback, bold, italic)) return FaceFile{face->path, face->index, false};
    if (Index().empty()) return std::nullopt;
    return FaceFile{Index().front().file.path, Index().front().file.index, false};
}

#endif

} // namespace bvx::text
