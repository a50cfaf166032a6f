#include "ValueFormat.h"

#include <cstdio>

namespace bvx::script {

namespace {

std::string Hex(int64_t bits, int digits)
{
    char text[16];
    std::snprintf(text, sizeof text, "&H%0*X", digits, unsigned(uint32_t(bits)));
    return text;
}

std::string Quoted(const std::u16string& text)
{
    std::string out = "\"";
    for (char c : ToUtf8(text)) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + '"';
}

std::string List(const std::vector<Variant>& items, size_t from, size_t count)
{
    std::string out = "{";
    for (size_t i = 0; i < count; ++i) out += (i ? ", " : "") + FormatValue(items[from + i]);
    return out + "}";
}

std::string FormatArray(const Variant& array)
{
    if (!array.HasArrayData()) return "{}";
    const auto& items = array.Items();
    if (array.Dimensions() == 1) return List(items, 0, items.size());
    std::string out = "{";
    const size_t columns = size_t(array.Columns());
    for (size_t row = 0; row < size_t(array.Rows()); ++row)
        out += (row ? ", " : "") + List(items, row * columns, columns);
    return out + "}";
}

} // namespace

std::string FormatValue(const Variant& value)
{
    if (value.IsArray()) return FormatArray(value);
    switch (value.Type()) {
    case VarType::Empty: return "Empty";
    case VarType::Null: return "Null";
    case VarType::I2:
    case VarType::I4:
    case VarType::Int: return std::to_string(value.Integer());
    case VarType::R8: return ToUtf8(FormatNumber(value.Real()));
    case VarType::Bool: return value.BoolValue() ? "True" : "False";
    case VarType::Bstr: return Quoted(value.Text());
    case VarType::Error: return "Error " + Hex(value.Integer(), 8);
    default: return "(type " + std::to_string(value.TypeWord()) + ")";
    }
}

std::string FormatResult(const Variant& value, members::AutoType declared)
{
    if (declared == members::AutoType::Color && (value.Type() == VarType::I4 || value.Type() == VarType::I2))
        return Hex(value.Integer(), 6); // as colours are written, &HBBGGRR
    return FormatValue(value);
}

} // namespace bvx::script
