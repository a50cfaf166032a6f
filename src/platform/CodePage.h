// The system code page (Windows-1252) in which text is measured, drawn and
// stored in files, as the platform's "A" calls take it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace bvx {

// A character the code page lacks becomes '?'.
std::string ToAnsi(std::u16string_view text);
std::u16string FromAnsi(std::string_view text);
// The Unicode character a byte of the code page stands for.
char16_t AnsiToUnicode(uint8_t byte);

} // namespace bvx
