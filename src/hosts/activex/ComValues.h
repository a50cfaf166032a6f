// Conversions between the platform's automation values and the core's:
// VARIANT and Variant, BSTR and UTF-16 strings, and the typed arguments and
// results of the vtable entries.
#pragma once

#include "control/MemberSpec.h"
#include "control/Variant.h"

#include <ocidl.h>

#include <concepts>
#include <string>

namespace bvx::com {

std::u16string FromBstr(BSTR text);
// A zero-terminated string that is not a BSTR (names, say).
std::u16string FromWide(const OLECHAR* text);
// Null when memory ran out.
BSTR ToBstr(const std::u16string& text);

// A caller's value as the core carries it: references are followed, other
// numeric types widened to a double; objects and arrays are a type mismatch.
HRESULT ToCore(const VARIANT& in, Variant& out);
// The core's value as a new VARIANT, arrays as SAFEARRAYs with lower bound 0.
// An Int leaves as VT_I4, as the platform's type-library dispatch hands back
// an `int`; script hosts do no arithmetic on VT_INT.
HRESULT ToCom(const Variant& in, VARIANT* out);

// One vtable argument, by the type its row declares.
template <members::AutoType T, typename V> Variant ToArgument(V value)
{
    using members::AutoType;
    if constexpr (T == AutoType::I2)
        return Variant::I2(value);
    else if constexpr (T == AutoType::R8)
        return Variant::R8(value);
    else if constexpr (T == AutoType::Bool)
        return Variant::Bool(value != 0);
    else if constexpr (T == AutoType::Bstr)
        return Variant::String(FromBstr(value));
    else if constexpr (T == AutoType::Color)
        return Variant::I4(int32_t(value));
    else if constexpr (T == AutoType::Int)
        return Variant::Int(value);
    else {
        static_assert(T == AutoType::I4 || T == AutoType::Tool);
        return Variant::I4(int32_t(value));
    }
}

// A member's result into a vtable entry's output; an empty result (a member
// that leaves its output alone) writes nothing.
// Integers, booleans (-1 and 0) and colours (the bits of a 32-bit value).
template <std::integral T> HRESULT StoreResult(const Variant& result, T* out)
{
    if (result.Type() != VarType::Empty) *out = T(result.Integer());
    return S_OK;
}
HRESULT StoreResult(const Variant& result, double* out);
HRESULT StoreResult(const Variant& result, BSTR* out);
HRESULT StoreResult(const Variant& result, VARIANT* out);
template <typename Enum>
requires std::is_enum_v<Enum> HRESULT StoreResult(const Variant& result, Enum* out)
{
    if (result.Type() != VarType::Empty) *out = Enum(result.Integer());
    return S_OK;
}

} // namespace bvx::com
