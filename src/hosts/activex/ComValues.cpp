#include "ComValues.h"

#include "ComObject.h"

#include <oleauto.h>

#include <cstring>
#include <vector>

namespace bvx::com {

namespace {

// Clears a VARIANT it was handed on every path out.
struct ScopedVariant {
    VARIANT v{};
    ScopedVariant() { VariantInit(&v); }
    ~ScopedVariant() { VariantClear(&v); }
};

HRESULT ToComArray(const Variant& in, VARIANT* out)
{
    const VARTYPE element = in.TypeWord() & VT_TYPEMASK;
    const bool twoDimensions = in.Dimensions() == 2;
    SAFEARRAYBOUND bounds[2] = {{ULONG(in.Rows()), 0}, {ULONG(twoDimensions ? in.Columns() : 0), 0}};
    SAFEARRAY* array = SafeArrayCreate(element, twoDimensions ? 2 : 1, bounds);
    if (!array) return E_OUTOFMEMORY;
    const int32_t columns = twoDimensions ? in.Columns() : 1;
    for (int32_t row = 0; row < in.Rows(); ++row) {
        for (int32_t column = 0; column < columns; ++column) {
            LONG index[2] = {row, column};
            const Variant& item = in.At(row, twoDimensions ? column : 0);
            HRESULT hr;
            if (element == VT_I4) {
                LONG value = LONG(item.Integer());
                hr = SafeArrayPutElement(array, index, &value);
            } else {
                ScopedVariant value;
                hr = ToCom(item, &value.v);
                if (SUCCEEDED(hr)) hr = SafeArrayPutElement(array, index, &value.v);
            }
            if (FAILED(hr)) {
                SafeArrayDestroy(array);
                return hr;
            }
        }
    }
    V_VT(out) = VT_ARRAY | element;
    V_ARRAY(out) = array;
    return S_OK;
}

} // namespace

std::u16string FromBstr(BSTR text)
{
    std::u16string out(text ? SysStringLen(text) : 0, u'\0');
    if (!out.empty()) std::memcpy(out.data(), text, out.size() * sizeof(char16_t));
    return out;
}

std::u16string FromWide(const OLECHAR* text)
{
    std::u16string out;
    for (; text && *text; ++text) out += char16_t(*text);
    return out;
}

BSTR ToBstr(const std::u16string& text)
{
    std::vector<OLECHAR> wide(text.begin(), text.end());
    return SysAllocStringLen(wide.data(), UINT(wide.size()));
}

HRESULT ToCore(const VARIANT& in, Variant& out)
{
    ScopedVariant direct;
    // The platform takes the source as non-const but leaves it alone.
    HRESULT hr = VariantCopyInd(&direct.v, const_cast<VARIANT*>(&in));
    if (FAILED(hr)) return hr == E_OUTOFMEMORY ? hr : DISP_E_TYPEMISMATCH;
    const VARIANT& v = direct.v;
    switch (V_VT(&v)) {
    case VT_EMPTY: out = Variant(); return S_OK;
    case VT_NULL: out = Variant::Null(); return S_OK;
    case VT_I2: out = Variant::I2(V_I2(&v)); return S_OK;
    case VT_I4: out = Variant::I4(V_I4(&v)); return S_OK;
    case VT_INT: out = Variant::Int(V_INT(&v)); return S_OK;
    case VT_R8: out = Variant::R8(V_R8(&v)); return S_OK;
    case VT_BOOL: out = Variant::Bool(V_BOOL(&v) != VARIANT_FALSE); return S_OK;
    case VT_BSTR: out = Variant::String(FromBstr(V_BSTR(&v))); return S_OK;
    case VT_ERROR: out = Variant::Error(V_ERROR(&v)); return S_OK;
    case VT_I1:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_CY:
    case VT_DATE:
    case VT_DECIMAL: {
        ScopedVariant wide;
        hr = VariantChangeType(&wide.v, const_cast<VARIANT*>(&v), 0, VT_R8);
        if (FAILED(hr)) return hr;
        out = Variant::R8(V_R8(&wide.v));
        return S_OK;
    }
    default: return DISP_E_TYPEMISMATCH;
    }
}

HRESULT ToCom(const Variant& in, VARIANT* out)
{
    VariantInit(out);
    switch (in.Type()) {
    case VarType::Empty: return S_OK;
    case VarType::Null: V_VT(out) = VT_NULL; return S_OK;
    case VarType::I2:
        V_VT(out) = VT_I2;
        V_I2(out) = SHORT(in.Integer());
        return S_OK;
    case VarType::I4:
    case VarType::Int:
        V_VT(out) = VT_I4;
        V_I4(out) = LONG(in.Integer());
        return S_OK;
    case VarType::R8:
        V_VT(out) = VT_R8;
        V_R8(out) = in.Real();
        return S_OK;
    case VarType::Bool:
        V_VT(out) = VT_BOOL;
        V_BOOL(out) = in.BoolValue() ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    case VarType::Error:
        V_VT(out) = VT_ERROR;
        V_ERROR(out) = SCODE(in.Integer());
        return S_OK;
    case VarType::Bstr:
        V_BSTR(out) = ToBstr(in.Text());
        if (!V_BSTR(out)) return E_OUTOFMEMORY;
        V_VT(out) = VT_BSTR;
        return S_OK;
    case VarType::Array:
        if (!in.HasArrayData()) {
            V_VT(out) = VT_ARRAY | (in.TypeWord() & VT_TYPEMASK);
            V_ARRAY(out) = nullptr;
            return S_OK;
        }
        return ToComArray(in, out);
    default: return DISP_E_TYPEMISMATCH;
    }
}

HRESULT StoreResult(const Variant& result, double* out)
{
    if (result.Type() != VarType::Empty) *out = result.Real();
    return S_OK;
}

HRESULT StoreResult(const Variant& result, BSTR* out)
{
    if (result.Type() == VarType::Empty) return S_OK;
    BSTR text = ToBstr(result.Text());
    if (!text) return E_OUTOFMEMORY;
    *out = text;
    return S_OK;
}

HRESULT StoreResult(const Variant& result, VARIANT* out)
{
    if (result.Type() == VarType::Empty) return S_OK;
    return ToCom(result, out);
}

} // namespace bvx::com
