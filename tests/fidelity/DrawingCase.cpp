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
    if (word.size() != 7 || word[0] != '#') return false;
    try {
        uint32_t rgb = uint32_t(std::stoul(word.substr(1), nullptr, 16));
        color = MakeRgb(uint8_t(rgb >> 16), uint8_t(rgb >> 8), uint8_t(rgb));
        return true;
    } catch (...) {
        return false;
    }
}

const std::map<std::string, uint32_t>& RopNames()
{
    static const std::map<std::string, uint32_t> names = {
        {"patcopy", RasterOp::PatCopy},     {"patinvert", RasterOp::PatInvert}, {"dstinvert", RasterOp::DstInvert},
        {"blackness", RasterOp::Blackness}, {"whiteness", RasterOp::Whiteness}, {"srccopy", RasterOp::SrcCopy},
    };
    return names;
}

// Plays one command; the words after the verb must be exactly as many
// numbers as the verb takes, or a point list.
class Player {
public:
    explicit Player(DeviceContext& dc) : dc_(dc) {}

    bool Play(const std::vector<std::string>& words)
    {
        const std::string& verb = words[0];
        std::vector<int32_t> n;
        ColorRef color = 0;
        auto numbers = [&](size_t from, size_t count) {
            n.clear();
            if (words.size() != from + count) return false;
            for (size_t i = from; i < words.size(); ++i) {
                int32_t v = 0;
                if (!ParseInt(words[i], v)) return false;
                n.push_back(v);
            }
            return true;
        };
        auto points = [&](std::vector<DevicePoint>& out) {
            if (words.size() % 2 != 1 || !numbers(1, words.size() - 1)) return false;
            for (size_t i = 0; i < n.size(); i += 2) out.push_back({n[i], n[i + 1]});
            return true;
        };
        if (verb == "pen") {
            if (words.size() != 4 || !ParseColor(words[3], color) || !ParseTwo(words[1], words[2], n)) return false;
            dc_.SelectPen(CreatePen(PenStyle(n[0]), n[1], color));
            return true;
        }
        if (verb == "brush") {
            if (words.size() == 2 && words[1] == "null") {
                brush_ = {BrushStyle::Null, {}, 0};
            } else if (words.size() == 3 && words[1] == "solid" && ParseColor(words[2], color)) {
                brush_ = {BrushStyle::Solid, {}, color};
            } else if (words.size() == 4 && words[1] == "hatch" && ParseColor(words[3], color) &&
                       ParseInt(words[2], hatch_)) {
                brush_ = {BrushStyle::Hatched, HatchStyle(hatch_), color};
            } else {
                return false;
            }
            dc_.SelectBrush(std::make_shared<const Brush>(brush_));
            return true;
        }
        if (verb == "bkmode" && words.size() == 2) {
            if (words[1] != "opaque" && words[1] != "transparent") return false;
            dc_.SetBkMode(words[1] == "opaque" ? BackMode::Opaque : BackMode::Transparent);
            return true;
        }
        if (verb == "bkcolor" && words.size() == 2 && ParseColor(words[1], color)) {
            dc_.SetBkColor(color);
            return true;
        }
        if (verb == "fillmode" && words.size() == 2) {
            if (words[1] != "alternate" && words[1] != "winding") return false;
            dc_.SetPolyFillMode(words[1] == "alternate" ? PolyFillMode::Alternate : PolyFillMode::Winding);
            return true;
        }
        if (verb == "rop2" && numbers(1, 1)) {
            dc_.SetROP2(Rop2(n[0]));
            return true;
        }
        if (verb == "moveto" && numbers(1, 2)) {
            dc_.MoveToEx(n[0], n[1]);
            return true;
        }
        if (verb == "lineto" && numbers(1, 2)) return dc_.LineTo(n[0], n[1]), true;
        if (verb == "polyline" || verb == "polygon") {
            std::vector<DevicePoint> p;
            if (!points(p)) return false;
            if (verb == "polyline")
                dc_.Polyline(p);
            else
                dc_.Polygon(p);
            return true;
        }
        if (verb == "rectangle" && numbers(1, 4)) return dc_.Rectangle(n[0], n[1], n[2], n[3]), true;
        if (verb == "ellipse" && numbers(1, 4)) return dc_.Ellipse(n[0], n[1], n[2], n[3]), true;
        if (verb == "roundrect" && numbers(1, 6)) return dc_.RoundRect(n[0], n[1], n[2], n[3], n[4], n[5]), true;
        if ((verb == "arc" || verb == "pie" || verb == "chord") && numbers(1, 8)) {
            auto f = verb == "arc" ? &DeviceContext::Arc : verb == "pie" ? &DeviceContext::Pie : &DeviceContext::Chord;
            (dc_.*f)(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]);
            return true;
        }
        if (verb == "patblt" && words.size() == 6 && RopNames().count(words[5])) {
            if (!ParseFour(words, n)) return false;
            dc_.PatBlt(n[0], n[1], n[2], n[3], RopNames().at(words[5]));
            return true;
        }
        // Copies within the surface itself, overlap included.
        if (verb == "bitblt" && numbers(1, 6)) return dc_.BitBlt(n[0], n[1], n[2], n[3], dc_, n[4], n[5], RasterOp::SrcCopy), true;
        if (verb == "setpixel" && words.size() == 4 && ParseColor(words[3], color)) {
            if (!ParseTwo(words[1], words[2], n)) return false;
            dc_.SetPixelV(n[0], n[1], color);
            return true;
        }
        if (verb == "fillrect" && numbers(1, 4)) return dc_.FillRect({n[0], n[1], n[2], n[3]}, brush_), true;
        if (verb == "framerect" && numbers(1, 4)) return dc_.FrameRect({n[0], n[1], n[2], n[3]}, brush_), true;
        if (verb == "focusrect" && numbers(1, 4)) return dc_.DrawFocusRect({n[0], n[1], n[2], n[3]}), true;
        if (verb == "clip" && numbers(1, 4)) return dc_.IntersectClipRect(n[0], n[1], n[2], n[3]), true;
        if (verb == "dib" && (numbers(1, 5) || numbers(1, 6))) return StartDib(n);
        if (verb == "masks" && words.size() == 4) return SetMasks(words);
        if (verb == "colors" && words.size() > 1) return AddColors(words);
        if (verb == "bytes" && words.size() > 1) return AddBytes(words);
        // A paint that draws nothing is a mistake in the case, not a result.
        if (verb == "setdibits" && numbers(1, 6))
            return dc_.SetDIBitsToDevice(n[0], n[1], n[2], n[3], n[4], n[5], Dib()) != 0;
        if (verb == "stretchdibits" && numbers(1, 8))
            return dc_.StretchDIBits(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], Dib(), RasterOp::SrcCopy) != 0;
        if (verb == "savedc" && words.size() == 1) return dc_.SaveDC(), true;
        if (verb == "restoredc" && numbers(1, 1)) return dc_.RestoreDC(n[0]), true;
        return false;
    }

private:
    // dib SIZE WIDTH HEIGHT BITS COMPRESSION [CLRUSED]: a header of SIZE
    // bytes, 12 being the core form; the commands after it add to the block.
    bool StartDib(const std::vector<int32_t>& n)
    {
        const uint32_t size = uint32_t(n[0]);
        if (size != kDibCoreHeaderSize && (size < kDibInfoHeaderSize || size > 124)) return false;
        dib_.assign(size, 0);
        pixelBytes_ = 0;
        StoreLe32(dib_.data(), size);
        if (size == kDibCoreHeaderSize) {
            StoreLe16(dib_.data() + 4, uint16_t(n[1]));
            StoreLe16(dib_.data() + 6, uint16_t(n[2]));
            StoreLe16(dib_.data() + 8, 1);
            StoreLe16(dib_.data() + 10, uint16_t(n[3]));
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
        if (dib_.size() < kEnd) dib_.resize(kEnd, 0);
        for (size_t i = 0; i < 3; ++i) {
            uint32_t mask = 0;
            if (!ParseHex(words[i + 1], mask)) return false;
            StoreLe32(dib_.data() + kDibInfoHeaderSize + 4 * i, mask);
        }
        return true;
    }

    // colors #c...: table entries, three bytes each in the core form.
    bool AddColors(const std::vector<std::string>& words)
    {
        if (dib_.empty()) return false;
        const bool core = LoadLe32(dib_.data()) == kDibCoreHeaderSize;
        for (size_t i = 1; i < words.size(); ++i) {
            ColorRef c = 0;
            if (!ParseColor(words[i], c)) return false;
            dib_.insert(dib_.end(), {BlueOf(c), GreenOf(c), RedOf(c)});
            if (!core) dib_.push_back(0);
        }
        return true;
    }

    // bytes HEX...: pixel bytes, two hex digits each, as stored.
    bool AddBytes(const std::vector<std::string>& words)
    {
        if (dib_.empty()) return false;
        for (size_t i = 1; i < words.size(); ++i) {
            const std::string& w = words[i];
            if (w.size() % 2 != 0) return false;
            for (size_t k = 0; k < w.size(); k += 2) {
                uint32_t byte = 0;
                if (!ParseHex(w.substr(k, 2), byte)) return false;
                dib_.push_back(uint8_t(byte));
                ++pixelBytes_;
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

    static bool ParseTwo(const std::string& a, const std::string& b, std::vector<int32_t>& n)
    {
        n.assign(2, 0);
        return ParseInt(a, n[0]) && ParseInt(b, n[1]);
    }
    static bool ParseFour(const std::vector<std::string>& words, std::vector<int32_t>& n)
    {
        n.assign(4, 0);
        for (size_t i = 0; i < 4; ++i)
            if (!ParseInt(words[i + 1], n[i])) return false;
        return true;
    }

    DeviceContext& dc_;
    Brush brush_{};
    int32_t hatch_ = 0;
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
            c.line = lineNumber;
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
            RegionCase r{w[1], w[2], {}, lineNumber};
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
