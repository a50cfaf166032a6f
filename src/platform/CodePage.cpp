#include "CodePage.h"

#include <array>

namespace bvx {

namespace {

// 0x80 to 0x9F, where the code page departs from Latin-1; 0 marks a byte
// with no character, which stands for itself as the platform maps it.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

uint8_t ByteOf(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return uint8_t(c);
    for (size_t i = 0; i < kHighControls.size(); ++i)
        if (kHighControls[i] == c || (kHighControls[i] == 0 && c == 0x80 + i)) return uint8_t(0x80 + i);
    return '?';
}

} // namespace

char16_t AnsiToUnicode(uint8_t byte)
{
    if (byte < 0x80 || byte >= 0xA0) return byte;
    const char16_t c = kHighControls[byte - 0x80];
    return c ? c : byte;
}

std::string ToAnsi(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        // A surrogate pair is one character, and the code page has none.
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) ++i;
        out += char(ByteOf(c));
    }
    return out;
}

std::u16string FromAnsi(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (char c : text) out += AnsiToUnicode(uint8_t(c));
    return out;
}

} // namespace bvx
