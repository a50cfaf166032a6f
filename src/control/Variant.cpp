#include "Variant.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace bvx {

namespace {

const std::u16string kEmptyText;
const std::vector<Variant> kNoItems;

// Half to even, as the platform rounds in every narrowing conversion.
double RoundHalfEven(double v)
{
    double r = std::nearbyint(v); // the default rounding mode is to nearest, ties to even
    return r;
}

HResult ToInteger(double v, double lo, double hi, int64_t& out)
{
    if (std::isnan(v)) return hresult::Overflow;
    double r = RoundHalfEven(v);
    if (r < lo || r > hi) return hresult::Overflow;
    out = int64_t(r);
    return hresult::Ok;
}

bool EqualsIgnoringCase(const std::u16string& a, const char* b)
{
    size_t i = 0;
    for (; i < a.size() && b[i]; ++i)
        if (a[i] > 127 || std::tolower(int(a[i])) != std::tolower(int(b[i]))) return false;
    return i == a.size() && !b[i];
}

// A number written in the invariant form: optional sign, digits, a point,
// an exponent, spaces around.
bool ParseNumber(const std::u16string& text, double& value)
{
    std::string ascii;
    for (char16_t c : text) {
        if (c > 127) return false;
        ascii += char(c);
    }
    size_t start = ascii.find_first_not_of(" \t");
    size_t end = ascii.find_last_not_of(" \t");
    if (start == std::string::npos) return false;
    ascii = ascii.substr(start, end - start + 1);
    for (char c : ascii)
        if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E'))
            return false;
    char* stop = nullptr;
    value = std::strtod(ascii.c_str(), &stop);
    return stop && *stop == 0 && stop != ascii.c_str();
}

// The value of a scalar as a double, for the numeric conversions.
HResult NumericValue(const Variant& in, double& value)
{
    switch (in.Type()) {
    case VarType::Empty: value = 0; return hresult::Ok;
    case VarType::I2:
    case VarType::I4:
    case VarType::Int:
    case VarType::Bool: value = double(in.Integer()); return hresult::Ok;
    case VarType::R8: value = in.Real(); return hresult::Ok;
    case VarType::Bstr: return ParseNumber(in.Text(), value) ? hresult::Ok : hresult::TypeMismatch;
    default: return hresult::TypeMismatch;
    }
}

} // namespace

Variant Variant::R8(double v)
{
    Variant r(VarType::R8, 0);
    r.real_ = v;
    return r;
}

Variant Variant::String(std::u16string s)
{
    Variant r(VarType::Bstr, 0);
    r.text_ = std::make_shared<const std::u16string>(std::move(s));
    return r;
}

Variant Variant::Array1D(VarType element, std::vector<Variant> items)
{
    Variant r(VarType::Array, 0);
    r.element_ = element;
    int32_t n = int32_t(items.size());
    r.array_ = std::make_shared<const ArrayData>(ArrayData{n, 0, std::move(items)});
    return r;
}

Variant Variant::Array2D(VarType element, int32_t rows, int32_t columns, std::vector<Variant> items)
{
    Variant r(VarType::Array, 0);
    r.element_ = element;
    items.resize(size_t(std::max(rows, 0)) * size_t(std::max(columns, 0)));
    r.array_ = std::make_shared<const ArrayData>(ArrayData{rows, columns, std::move(items)});
    return r;
}

Variant Variant::NullArray(VarType element)
{
    Variant r(VarType::Array, 0);
    r.element_ = element;
    return r;
}

const std::u16string& Variant::Text() const { return text_ ? *text_ : kEmptyText; }
int32_t Variant::Dimensions() const { return array_ ? (array_->columns ? 2 : 1) : 0; }
int32_t Variant::Rows() const { return array_ ? array_->rows : 0; }
int32_t Variant::Columns() const { return array_ ? array_->columns : 0; }
bool Variant::HasArrayData() const { return array_ != nullptr; }
const std::vector<Variant>& Variant::Items() const { return array_ ? array_->items : kNoItems; }

const Variant& Variant::At(int32_t row, int32_t column) const
{
    static const Variant empty;
    if (!array_ || row < 0 || row >= array_->rows) return empty;
    size_t width = size_t(std::max(array_->columns, 1));
    if (column < 0 || size_t(column) >= width) return empty;
    return array_->items[size_t(row) * width + size_t(column)];
}

bool operator==(const Variant& a, const Variant& b)
{
    if (a.type_ != b.type_) return false;
    switch (a.type_) {
    case VarType::R8: return a.real_ == b.real_ || (std::isnan(a.real_) && std::isnan(b.real_));
    case VarType::Bstr: return a.Text() == b.Text();
    case VarType::Array:
        return a.element_ == b.element_ && a.Rows() == b.Rows() && a.Columns() == b.Columns() &&
               a.HasArrayData() == b.HasArrayData() && a.Items() == b.Items();
    default: return a.integer_ == b.integer_;
    }
}

HResult ChangeType(const Variant& in, VarType to, Variant& out)
{
    if (to == VarType::Variant || (in.Type() == to && !in.IsArray())) {
        out = in;
        return hresult::Ok;
    }
    if (in.IsArray() || in.Type() == VarType::Null || in.Type() == VarType::Error) return hresult::TypeMismatch;
    if (to == VarType::Bstr) {
        switch (in.Type()) {
        case VarType::Empty: out = Variant::String(u""); return hresult::Ok;
        case VarType::Bool: out = Variant::String(in.BoolValue() ? u"True" : u"False"); return hresult::Ok;
        case VarType::I2:
        case VarType::I4:
        case VarType::Int: out = Variant::String(FormatNumber(double(in.Integer()))); return hresult::Ok;
        case VarType::R8: out = Variant::String(FormatNumber(in.Real())); return hresult::Ok;
        default: return hresult::TypeMismatch;
        }
    }
    if (to == VarType::Bool && in.Type() == VarType::Bstr) {
        if (EqualsIgnoringCase(in.Text(), "true")) {
            out = Variant::Bool(true);
            return hresult::Ok;
        }
        if (EqualsIgnoringCase(in.Text(), "false")) {
            out = Variant::Bool(false);
            return hresult::Ok;
        }
    }
    double value = 0;
    if (HResult hr = NumericValue(in, value); hr != hresult::Ok) return hr;
    int64_t integer = 0;
    switch (to) {
    case VarType::R8: out = Variant::R8(value); return hresult::Ok;
    case VarType::Bool: out = Variant::Bool(value != 0 && !std::isnan(value)); return hresult::Ok;
    case VarType::I2:
        if (HResult hr = ToInteger(value, INT16_MIN, INT16_MAX, integer); hr != hresult::Ok) return hr;
        out = Variant::I2(int16_t(integer));
        return hresult::Ok;
    case VarType::I4:
    case VarType::Int:
        if (HResult hr = ToInteger(value, INT32_MIN, INT32_MAX, integer); hr != hresult::Ok) return hr;
        out = to == VarType::Int ? Variant::Int(int32_t(integer)) : Variant::I4(int32_t(integer));
        return hresult::Ok;
    default: return hresult::TypeMismatch;
    }
}

std::u16string FormatNumber(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.15G", value);
    std::u16string out;
    for (const char* p = buffer; *p; ++p) out += char16_t(*p);
    return out;
}

std::string ToUtf8(const std::u16string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        if (c < 0x80) {
            out += char(c);
        } else if (c < 0x800) {
            out += char(0xC0 | (c >> 6));
            out += char(0x80 | (c & 63));
        } else if (c < 0x10000) {
            out += char(0xE0 | (c >> 12));
            out += char(0x80 | ((c >> 6) & 63));
            out += char(0x80 | (c & 63));
        } else {
            out += char(0xF0 | (c >> 18));
            out += char(0x80 | ((c >> 12) & 63));
            out += char(0x80 | ((c >> 6) & 63));
            out += char(0x80 | (c & 63));
        }
    }
    return out;
}

std::u16string FromUtf8(const std::string& text)
{
    std::u16string out;
    for (size_t i = 0; i < text.size();) {
        auto b = static_cast<unsigned char>(text[i]);
        uint32_t c = 0xFFFD;
        size_t extra = b < 0x80 ? 0 : b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : 0;
        if (b < 0x80 || (b >= 0xC0 && i + extra < text.size())) {
            c = extra == 0 ? b : b & (0x3F >> extra);
            for (size_t k = 1; k <= extra; ++k) c = (c << 6) | (static_cast<unsigned char>(text[i + k]) & 63);
        }
        i += extra + 1;
        if (c >= 0x10000 && c < 0x110000) {
            c -= 0x10000;
            out += char16_t(0xD800 + (c >> 10));
            out += char16_t(0xDC00 + (c & 0x3FF));
        } else {
            out += char16_t(c < 0x110000 ? c : 0xFFFD);
        }
    }
    return out;
}

} // namespace bvx
