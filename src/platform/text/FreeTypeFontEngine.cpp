// The font engine of every host: FreeType renders, the face locator finds
// the files. Faces stay open for the life of the process; recent fonts are
// kept, so that views alternating between a few sizes and angles render
// each glyph once.
#include "FaceLocator.h"
#include "FreeTypeFont.h"
#include "platform/FontEngine.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>

#include FT_TRUETYPE_TABLES_H

namespace bvx {

namespace {

constexpr size_t kRecentFonts = 32;
constexpr int32_t kBoldWeight = 600;
constexpr int32_t kDefaultEm = 12;

class FreeTypeFontEngine final : public FontEngine {
public:
    FreeTypeFontEngine() { FT_Init_FreeType(&library_); }
    ~FreeTypeFontEngine() override
    {
        recent_.clear();
        for (auto& [key, face] : faces_)
            if (face) FT_Done_Face(face);
        if (library_) FT_Done_FreeType(library_);
    }

    FontHandle CreateFont(const LogFont& logical) override
    {
        for (const FontHandle& f : recent_)
            if (f->Logical() == logical) return f;
        const std::optional<text::FaceFile> file =
            text::LocateFace(logical.faceName, logical.weight >= kBoldWeight, logical.italic != 0, false);
        FT_Face face = file ? Open(*file) : nullptr;
        if (!face) return nullptr;
        auto font = std::make_shared<text::FreeTypeFont>(logical, face, EmPixels(logical.height, face));
        recent_.push_front(font);
        if (recent_.size() > kRecentFonts) recent_.pop_back();
        return font;
    }

    std::optional<FaceMetrics> EnumerateFace(std::string_view name, bool bold, bool italic) override
    {
        const std::optional<text::FaceFile> file = text::LocateFace(name, bold, italic, true);
        FT_Face face = file ? Open(*file) : nullptr;
        if (!face) return std::nullopt;
        const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
        const int32_t cell = os2 ? int32_t(os2->usWinAscent) + int32_t(os2->usWinDescent)
                                 : int32_t(face->ascender) - int32_t(face->descender);
        return FaceMetrics{int32_t(face->units_per_EM), cell};
    }

private:
    FT_Face Open(const text::FaceFile& file)
    {
        auto [it, added] = faces_.try_emplace({file.path, file.index}, nullptr);
        if (added && library_ && FT_New_Face(library_, file.path.c_str(), file.index, &it->second) != 0)
            it->second = nullptr;
        return it->second;
    }

    // A negative height is the em; a positive one the cell, which the
    // face's ascent and descent divide.
    static int32_t EmPixels(int32_t height, FT_Face face)
    {
        if (height < 0) return height == INT32_MIN ? INT32_MAX : -height;
        if (height == 0) return kDefaultEm;
        const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
        const double cell = os2 ? double(os2->usWinAscent) + os2->usWinDescent
                                : double(face->ascender) - double(face->descender);
        return std::max(1, int32_t(std::lround(height * double(face->units_per_EM) / std::max(cell, 1.0))));
    }

    FT_Library library_ = nullptr;
    std::map<std::pair<std::string, int32_t>, FT_Face> faces_;
    std::deque<FontHandle> recent_;
};

} // namespace

FontEngine& FontEngine::Shared()
{
    static FreeTypeFontEngine engine;
    return engine;
}

} // namespace bvx
