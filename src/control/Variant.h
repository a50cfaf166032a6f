// The values that cross the automation boundary, as the platform's VARIANT
// carries them, and the result codes that go with them. Strings are UTF-16
// on every host.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bvx {

using HResult = int32_t;

// The platform's result codes, under names that do not collide with its
// headers' macros.
namespace hresult {
constexpr HResult Ok = 0;
constexpr HResult False = 1;
constexpr HResult MemberNotFound = int32_t(0x80020003);
constexpr HResult ParamNotFound = int32_t(0x80020004);
constexpr HResult TypeMismatch = int32_t(0x80020005);
constexpr HResult UnknownName = int32_t(0x80020006);
constexpr HResult Overflow = int32_t(0x8002000A);
constexpr HResult BadParamCount = int32_t(0x8002000E);
constexpr HResult ParamNotOptional = int32_t(0x8002000F);
constexpr HResult GetNotSupported = int32_t(0x800A018A); // a read that has no meaning at design time
} // namespace hresult

// The platform's VARTYPE numbers for what we carry.
enum class VarType : uint16_t {
    Empty = 0,
    Null = 1,
    I2 = 2,
    I4 = 3,
    R8 = 5,
    Bstr = 8,
    Error = 10,
    Bool = 11,
    Variant = 12,
    Int = 22,
    Array = 0x2000,
};

class Variant {
public:
    Variant() = default;
    static Variant I2(int16_t v) { return Variant(VarType::I2, v); }
    static Variant I4(int32_t v) { return Variant(VarType::I4, v); }
    static Variant Int(int32_t v) { return Variant(VarType::Int, v); }
    static Variant R8(double v);
    static Variant Bool(bool v) { return Variant(VarType::Bool, v ? -1 : 0); }
    static Variant String(std::u16string s);
    static Variant Error(HResult code) { return Variant(VarType::Error, code); }
    // An optional argument the caller left out, as the platform marks it.
    static Variant Missing() { return Error(hresult::ParamNotFound); }
    static Variant Null() { return Variant(VarType::Null, 0); }
    // Arrays with lower bounds 0; `element` is I4 or Variant. A null array
    // keeps its type but has no data.
    static Variant Array1D(VarType element, std::vector<Variant> items);
    static Variant Array2D(VarType element, int32_t rows, int32_t columns, std::vector<Variant> items);
    static Variant NullArray(VarType element);

    VarType Type() const { return type_; }
    bool IsArray() const { return type_ == VarType::Array; }
    bool IsMissing() const { return type_ == VarType::Error && integer_ == hresult::ParamNotFound; }
    // The platform's full type word: VT_ARRAY | element for arrays.
    uint16_t TypeWord() const { return IsArray() ? uint16_t(0x2000 | uint16_t(element_)) : uint16_t(type_); }

    int64_t Integer() const { return integer_; } // I2, I4, Int, Bool (-1/0), Error
    double Real() const { return real_; }
    const std::u16string& Text() const;
    bool BoolValue() const { return integer_ != 0; }

    // Arrays: dimensions 1 or 2; rows by columns, row-major.
    int32_t Dimensions() const;
    int32_t Rows() const;
    int32_t Columns() const;
    bool HasArrayData() const;
    const std::vector<Variant>& Items() const;
    const Variant& At(int32_t row, int32_t column = 0) const;

    friend bool operator==(const Variant& a, const Variant& b);

private:
    struct ArrayData {
        int32_t rows = 0;
        int32_t columns = 0; // 0 for one dimension
        std::vector<Variant> items;
    };

    Variant(VarType type, int64_t integer) : type_(type), integer_(integer) {}

    VarType type_ = VarType::Empty;
    VarType element_ = VarType::Empty;
    int64_t integer_ = 0;
    double real_ = 0;
    std::shared_ptr<const std::u16string> text_;
    std::shared_ptr<const ArrayData> array_;
};

// Conversion as the platform's VariantChangeType does it: integers round
// half to even, out of range is an overflow, what cannot convert is a type
// mismatch. Booleans come out as -1 and 0. Int converts as I4 does.
HResult ChangeType(const Variant& in, VarType to, Variant& out);

// Text forms used by hosts that print values.
std::u16string FormatNumber(double value);
std::string ToUtf8(const std::u16string& text);
std::u16string FromUtf8(const std::string& text);

} // namespace bvx
