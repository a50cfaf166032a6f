#include "DrawingCase.h"

#include "platform/DibFormat.h"

#include <algorithm>
#include <climits>
#include <fstream>
#include <map>
#include <sstream>

namespace bvx::fidelity {

namespace {

bool ParseInt(const std::string& word, int32_t& value)
{
    try {
        size_t used = 0;
        long long v = std::stoll(word, &used, 0);
        if (used != word.size() || v < INT32_MIN || v > INT32_MAX) return false;
        value = int32_t(v);
        return true;
    } catch (...) {
        return false;
    }
}

// Up to eight hex digits, nothing else.
bool ParseHex(const std::string& word, uint32_t& value)
{
    if (word.empty() || word.size() > 8 || word.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return false;
    value = uint32_t(std::stoul(word, nullptr, 16));
    return true;
}

// "#rrggbb" as people write colours.
bool ParseColor(const std::string& word, ColorRef& color)
{
    uint32_t rgb = 0;
    if (word.size() != 7 || word[0] != '#' || !ParseHex(word.substr(1), rgb)) return false;
    color = MakeRgb(uint8_t(rgb >> 16), uint8_t(rgb >> 8), uint8_t(rgb));
    return true;
}

FontMaker fontMaker = nullptr;

// The case file is ASCII: \xNN stands for a byte of the code page.
std::string CodePageText(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t byte = 0;
        if (text.compare(i, 2, "\\x") == 0 && i + 4 <= text.size() && ParseHex(text.substr(i + 2, 2), byte)) {
            out += char(byte);
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

const std::map<std::string, uint32_t> kRops = {
    {"patcopy", RasterOp::PatCopy},     {"patinvert", RasterOp::PatInvert}, {"dstinvert", RasterOp::DstInvert},
    {"blackness", RasterOp::Blackness}, {"whiteness", RasterOp::Whiteness}, {"srccopy", RasterOp::SrcCopy},
};

// The words after a verb, sorted into numbers, colours and other words;
// a command matches a verb only with exactly the counts it takes.
struct Args {
    std::vector<int32_t> n;
    std::vector<ColorRef> c;
    std::vector<std::string> w;
};

// Plays one command.
class Player {
public:
    explicit Player(DeviceContext& dc) : dc_(dc) {}

    bool Play(const std::vector<std::string>& words)
    {
        const std::string& verb = words[0];
        // Hex words first: "0301" is bytes here, not an octal number.
        if (verb == "masks") return words.size() == 4 && SetMasks(words);
        if (verb == "bytes") return words.size() > 1 && AddBytes(words);
        Args a;
        for (size_t i = 1; i < words.size(); ++i) {
            int32_t v = 0;
            ColorRef color = 0;
            if (ParseInt(words[i], v)) a.n.push_back(v);
            else if (ParseColor(words[i], color)) a.c.push_back(color);
            else a.w.push_back(words[i]);
        }
        auto is = [&](const char* name, size_t numbers, size_t colors = 0, size_t others = 0) {
            return verb == name && a.n.size() == numbers && a.c.size() == colors && a.w.size() == others;
        };
        const auto& n = a.n;
        if (is("pen", 2, 1)) return dc_.SelectPen(CreatePen(PenStyle(n[0]), n[1], a.c[0])), true;
        if (is("brush", 0, 0, 1) && a.w[0] == "null") return SetBrush({BrushStyle::Null, {}, 0});
        if (is("brush", 0, 1, 1) && a.w[0] == "solid") return SetBrush({BrushStyle::Solid, {}, a.c[0]});
        if (is("brush", 1, 1, 1) && a.w[0] == "hatch") return SetBrush({BrushStyle::Hatched, HatchStyle(n[0]), a.c[0]});
        if (is("bkmode", 0, 0, 1) && (a.w[0] == "opaque" || a.w[0] == "transparent"))
            return dc_.SetBkMode(a.w[0] == "opaque" ? BackMode::Opaque : BackMode::Transparent), true;
        if (is("bkcolor", 0, 1)) return dc_.SetBkColor(a.c[0]), true;
        if (is("fillmode", 0, 0, 1) && (a.w[0] == "alternate" || a.w[0] == "winding"))
            return dc_.SetPolyFillMode(a.w[0] == "alternate" ? PolyFillMode::Alternate : PolyFillMode::Winding), true;
        if (is("rop2", 1)) return dc_.SetROP2(Rop2(n[0])), true;
        if (is("moveto", 2)) return dc_.MoveToEx(n[0], n[1]), true;
        if (is("lineto", 2)) return dc_.LineTo(n[0], n[1]), true;
        if ((verb == "polyline" || verb == "polygon") && is(verb.c_str(), n.size()) && n.size() % 2 == 0) {
            std::vector<DevicePoint> p;
            for (size_t i = 0; i < n.size(); i += 2) p.push_back({n[i], n[i + 1]});
            return (verb == "polyline" ? dc_.Polyline(p) : dc_.Polygon(p)), true;
        }
        if (is("rectangle", 4)) return dc_.Rectangle(n[0], n[1], n[2], n[3]), true;
        if (is("ellipse", 4)) return dc_.Ellipse(n[0], n[1], n[2], n[3]), true;
        if (is("roundrect", 6)) return dc_.RoundRect(n[0], n[1], n[2], n[3], n[4], n[5]), true;
        if (is("arc", 8)) return dc_.Arc(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]), true;
        if (is("pie", 8)) return dc_.Pie(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]), true;
        if (is("chord", 8)) return dc_.Chord(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]), true;
        if (is("patblt", 4, 0, 1) && kRops.count(a.w[0]))
            return dc_.PatBlt(n[0], n[1], n[2], n[3], kRops.at(a.w[0])), true;
        // Copies within the surface itself, overlap included.
        if (is("bitblt", 6)) return dc_.BitBlt(n[0], n[1], n[2], n[3], dc_, n[4], n[5], RasterOp::SrcCopy), true;
        if (is("setpixel", 2, 1)) return dc_.SetPixelV(n[0], n[1], a.c[0]), true;
        if (is("fillrect", 4)) return dc_.FillRect({n[0], n[1], n[2], n[3]}, brush_), true;
        if (is("framerect", 4)) return dc_.FrameRect({n[0], n[1], n[2], n[3]}, brush_), true;
        if (is("focusrect", 4)) return dc_.DrawFocusRect({n[0], n[1], n[2], n[3]}), true;
        if (is("savedc", 0)) return dc_.SaveDC(), true;
        if (is("restoredc", 1)) return dc_.RestoreDC(n[0]), true;
        if (is("clip", 4)) return dc_.IntersectClipRect(n[0], n[1], n[2], n[3]), true;
        if (is("selectclip", 4)) {
            const DeviceRect r{n[0], n[1], n[2], n[3]};
            return dc_.SelectClipRegion(&r), true;
        }
        if (is("selectclip", 0, 0, 1) && a.w[0] == "none") return dc_.SelectClipRegion(nullptr), true;
        if (verb == "cliprects" && is("cliprects", n.size()) && n.size() % 4 == 0) {
            std::vector<DeviceRect> r;
            for (size_t i = 0; i < n.size(); i += 4) r.push_back({n[i], n[i + 1], n[i + 2], n[i + 3]});
            return dc_.SelectClipRects(r), true;
        }
        if (is("dib", 5) || is("dib", 6)) return StartDib(n);
        if (verb == "colors" && is("colors", 0, a.c.size()) && !a.c.empty()) return AddColors(a.c);
        // A paint that draws nothing is a mistake in the case, not a result.
        // font FACE HEIGHT WEIGHT ITALIC UNDERLINE STRIKEOUT ESCAPEMENT, with _ for
        // the spaces of the face; text X Y WORDS... with the words' own spaces.
        if (is("font", 6, 0, 1) && fontMaker) {
            LogFont f;
            f.faceName = a.w[0];
            std::replace(f.faceName.begin(), f.faceName.end(), '_', ' ');
            f.height = n[0], f.weight = n[1], f.italic = uint8_t(n[2]), f.underline = uint8_t(n[3]);
            f.strikeOut = uint8_t(n[4]), f.escapement = f.orientation = n[5];
            FontHandle font = fontMaker(f);
            return font && (dc_.SelectFont(std::move(font)), true);
        }
        if (is("textcolor", 0, 1)) return dc_.SetTextColor(a.c[0]), true;
        if (verb == "text" && words.size() >= 4 && a.n.size() >= 2 && words[1] == std::to_string(n[0]) &&
            words[2] == std::to_string(n[1])) {
            std::string line = words[3];
            for (size_t i = 4; i < words.size(); ++i) line += ' ' + words[i];
            return dc_.TextOutA(n[0], n[1], CodePageText(line));
        }
        if (is("setdibits", 6)) return dc_.SetDIBitsToDevice(n[0], n[1], n[2], n[3], n[4], n[5], Dib()) != 0;
        if (is("stretchdibits", 8))
            return dc_.StretchDIBits(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], Dib(), RasterOp::SrcCopy) != 0;
        return false;
    }

private:
    bool SetBrush(const Brush& brush)
    {
        brush_ = brush;
        dc_.SelectBrush(std::make_shared<const Brush>(brush_));
        return true;
    }

    // dib SIZE WIDTH HEIGHT BITS COMPRESSION [CLRUSED]: a header of SIZE
    // bytes, 12 being the core form; the commands after it add to the block.
    bool StartDib(const std::vector<int32_t>& n)
    {
        const uint32_t size = uint32_t(n[0]);
        if (size != kDibCoreHeaderSize && (size < kDibInfoHeaderSize || size > 124)) return false;
        dib_.assign(size, 0);
        pixelBytes_ = 0;
        if (size == kDibCoreHeaderSize) {
            const uint16_t fields[] = {uint16_t(size), 0, uint16_t(n[1]), uint16_t(n[2]), 1, uint16_t(n[3])};
            for (size_t i = 0; i < 6; ++i) StoreLe16(dib_.data() + 2 * i, fields[i]);
            return n[4] == 0 && n.size() == 5;
        }
        DibInfoHeader h;
        h.size = size;
        h.width = n[1];
        h.height = n[2];
        h.bitCount = uint16_t(n[3]);
        h.compression = uint32_t(n[4]);
        h.clrUsed = n.size() == 6 ? uint32_t(n[5]) : 0;
        StoreDibInfoHeader(h, dib_.data());
        return true;
    }

    // masks R G B, in hex: where every long form keeps them, right after its
    // first 40 bytes; before any colour or pixel.
    bool SetMasks(const std::vector<std::string>& words)
    {
        constexpr size_t kEnd = kDibInfoHeaderSize + 12;
        if (dib_.size() < kDibInfoHeaderSize || dib_.size() > std::max<size_t>(LoadLe32(dib_.data()), kEnd))
            return false;
        dib_.resize(std::max(dib_.size(), kEnd), 0);
        for (size_t i = 0; i < 3; ++i) {
            uint32_t mask = 0;
            if (!ParseHex(words[i + 1], mask)) return false;
            StoreLe32(dib_.data() + kDibInfoHeaderSize + 4 * i, mask);
        }
        return true;
    }

    // colors #c...: table entries, three bytes each in the core form.
    bool AddColors(const std::vector<ColorRef>& colors)
    {
        if (dib_.empty()) return false;
        const bool core = LoadLe32(dib_.data()) == kDibCoreHeaderSize;
        for (ColorRef c : colors) {
            dib_.insert(dib_.end(), {BlueOf(c), GreenOf(c), RedOf(c)});
            if (!core) dib_.push_back(0);
        }
        return true;
    }

    // bytes HEX...: pixel bytes, two hex digits each, as stored.
    bool AddBytes(const std::vector<std::string>& words)
    {
        for (size_t i = 1; i < words.size(); ++i) {
            if (dib_.empty() || words[i].size() % 2 != 0) return false;
            for (size_t k = 0; k < words[i].size(); k += 2, ++pixelBytes_) {
                uint32_t byte = 0;
                if (!ParseHex(words[i].substr(k, 2), byte)) return false;
                dib_.push_back(uint8_t(byte));
            }
        }
        return true;
    }

    // The block as painted: a long header's image size is the pixel bytes given.
    std::span<const uint8_t> Dib()
    {
        if (dib_.size() >= kDibInfoHeaderSize && LoadLe32(dib_.data()) != kDibCoreHeaderSize)
            StoreLe32(dib_.data() + 20, pixelBytes_);
        return dib_;
    }

    DeviceContext& dc_;
    Brush brush_{};
    std::vector<uint8_t> dib_;
    uint32_t pixelBytes_ = 0;
};

} // namespace

CaseFile ParseCaseFile(const std::string& path)
{
    CaseFile file;
    std::ifstream in(path);
    if (!in) {
        file.error = "cannot open " + path;
        return file;
    }
    std::string text;
    int lineNumber = 0;
    DrawingCase* open = nullptr;
    while (std::getline(in, text)) {
        ++lineNumber;
        if (auto hash = text.find("//"); hash != std::string::npos) text.erase(hash);
        std::istringstream words(text);
        std::vector<std::string> w;
        for (std::string word; words >> word;) w.push_back(word);
        if (w.empty()) continue;
        auto fail = [&](const std::string& why) {
            file.error = path + ":" + std::to_string(lineNumber) + ": " + why;
            return file;
        };
        if (w[0] == "case") {
            if (open) return fail("case inside case");
            if (w.size() != 2 && w.size() != 4) return fail("case NAME [WIDTH HEIGHT]");
            DrawingCase c;
            c.name = w[1];
            if (w.size() == 4 && (!ParseInt(w[2], c.width) || !ParseInt(w[3], c.height) || c.width <= 0 ||
                                  c.height <= 0 || c.width > 1024 || c.height > 1024))
                return fail("bad size");
            file.drawings.push_back(std::move(c));
            open = &file.drawings.back();
        } else if (w[0] == "end") {
            if (!open) return fail("end without case");
            open = nullptr;
        } else if (w[0] == "region") {
            if (open || w.size() < 3) return fail("region NAME KIND NUMBERS...");
            RegionCase r{w[1], w[2], {}};
            for (size_t i = 3; i < w.size(); ++i) {
                int32_t v = 0;
                if (!ParseInt(w[i], v)) return fail("bad number " + w[i]);
                r.numbers.push_back(v);
            }
            file.regions.push_back(std::move(r));
        } else if (open) {
            open->commands.push_back(std::move(w));
        } else {
            return fail("command outside a case");
        }
    }
    if (open) file.error = path + ": case " + open->name + " has no end";
    return file;
}

void SetFontMaker(FontMaker maker) { fontMaker = maker; }

bool PlayCase(const DrawingCase& drawing, DeviceContext& dc, std::string& error)
{
    dc.PatBlt(0, 0, drawing.width, drawing.height, RasterOp::Whiteness);
    Player player(dc);
    for (const auto& command : drawing.commands) {
        if (!player.Play(command)) {
            error = drawing.name + ": cannot play '" + command[0] + "'";
            return false;
        }
    }
    return true;
}

DeviceRect ProbeBox(const RegionCase& region)
{
    const auto& n = region.numbers;
    DeviceRect box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    if (region.kind.rfind("polygon", 0) == 0) {
        for (size_t i = 0; i + 1 < n.size(); i += 2) {
            box.left = std::min(box.left, n[i]);
            box.right = std::max(box.right, n[i]);
            box.top = std::min(box.top, n[i + 1]);
            box.bottom = std::max(box.bottom, n[i + 1]);
        }
    } else if (n.size() >= 4) {
        box = DeviceRect{n[0], n[1], n[2], n[3]}.Normalized();
    } else {
        return {};
    }
    return {box.left - kProbeMargin, box.top - kProbeMargin, box.right + kProbeMargin, box.bottom + kProbeMargin};
}

} // namespace bvx::fidelity
