#include "AutomationNames.h"
#include "Identities.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace bvx::membergen {

using members::AutoType;

std::string_view IdlTypeName(AutoType type)
{
    switch (type) {
    case AutoType::Void: return "void";
    case AutoType::I2: return "short";
    case AutoType::I4: return "long";
    case AutoType::Int: return "int";
    case AutoType::R8: return "double";
    case AutoType::Bool: return "VARIANT_BOOL";
    case AutoType::Bstr: return "BSTR";
    case AutoType::Color: return "OLE_COLOR";
    case AutoType::Variant: return "VARIANT";
    case AutoType::Tool: return kToolEnumName;
    }
    return "VARIANT";
}

std::string_view BasicTypeName(AutoType type)
{
    switch (type) {
    case AutoType::Void: return "";
    case AutoType::I2: return "Integer";
    case AutoType::I4:
    case AutoType::Int: return "Long";
    case AutoType::R8: return "Double";
    case AutoType::Bool: return "Boolean";
    case AutoType::Bstr: return "String";
    case AutoType::Color: return "OLE_COLOR";
    case AutoType::Variant: return "Variant";
    case AutoType::Tool: return kToolEnumName;
    }
    return "Variant";
}

std::string DefaultNumberText(const members::ArgSpec& arg)
{
    double value = arg.numberDefault;
    if (arg.type != AutoType::R8 && arg.type != AutoType::Variant) value = std::trunc(value);
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : std::string("0");
}

// The generator links nothing of the core, so it carries its own encoder.
std::string Utf8(std::u16string_view text)
{
    static constexpr unsigned char kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t c = text[i];
        bool pair = c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pair) c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        int trailing = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        out += char(kLead[trailing] | (c >> (6 * trailing)));
        for (int k = trailing - 1; k >= 0; --k) out += char(0x80 | ((c >> (6 * k)) & 63));
    }
    return out;
}

bool IsHidden(const members::MemberRow& row) { return row.name.starts_with("Hidden"); }

std::string VtableName(const members::MemberRow& row)
{
    switch (row.kind) {
    case members::Kind::PropertyGet: return "get_" + std::string(row.name);
    case members::Kind::PropertyPut: return "put_" + std::string(row.name);
    case members::Kind::Method: break;
    }
    return std::string(row.name);
}

std::string GuidInitializer(std::string_view guid)
{
    // 8-4-4-4-12: one 32-bit, two 16-bit fields, then eight bytes.
    std::string hex;
    for (char c : guid)
        if (c != '-') hex += c;
    if (hex.size() != 32) return "{}";
    // Built by appending: GCC 12 at -O3 takes a literal added in front of a
    // string for an overlapping copy.
    std::string out = "{";
    auto field = [&](size_t from, size_t length, const char* after) {
        out.append("0x").append(hex, from, length).append(after);
    };
    field(0, 8, ", ");
    field(8, 4, ", ");
    field(12, 4, ", {");
    for (size_t i = 16; i < 32; i += 2) field(i, 2, i + 2 < 32 ? ", " : "}}");
    return out;
}

} // namespace bvx::membergen
