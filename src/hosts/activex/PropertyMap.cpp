#include "PropertyMap.h"

#include "ComObject.h"

#include "control/CadControl.h"

#include <cstring>
#include <vector>

namespace bvx::com {

namespace {

namespace dispid = members::dispid;

struct MapEntry {
    const OLECHAR* name;
    DISPID dispid;                  // for a property
    int32_t Extent::*raw = nullptr; // for the natural size
};

// Alphabetical after BackColor; only the order of the writes on a load
// depends on it.
const MapEntry kMap[] = {
    {L"_cx", 0, &Extent::cx},
    {L"_cy", 0, &Extent::cy},
    {L"BackColor", dispid::BackColor},
    {L"AngleMode", dispid::AngleMode},
    {L"GridColor", dispid::GridColor},
    {L"GridDrawOrder", dispid::GridDrawOrder},
    {L"GridHeight", dispid::GridHeight},
    {L"GridOn", dispid::GridOn},
    {L"GridWidth", dispid::GridWidth},
    {L"ViewCopyMode", dispid::ViewCopyMode},
    {L"ViewDrawOrthogonal", dispid::ViewDrawOrthogonal},
    {L"ViewKeyCopy", dispid::ViewKeyCopy},
    {L"ViewKeyDelete", dispid::ViewKeyDelete},
    {L"ViewMouseBounds", dispid::ViewMouseBounds},
    {L"ViewMouseTool", dispid::ViewMouseTool},
    {L"ViewPersistMouseTool", dispid::ViewPersistMouseTool},
    {L"ViewSelectMode", dispid::ViewSelectMode},
    {L"ViewShapeMoveMode", dispid::ViewShapeMoveMode},
    {L"ViewShowTracker", dispid::ViewShowTracker},
    {L"ViewSnapMarkerColor", dispid::ViewSnapMarkerColor},
    {L"ViewSnapMarkerOn", dispid::ViewSnapMarkerOn},
    {L"ViewSnapMode", dispid::ViewSnapMode},
    {L"ViewSnapToGrid", dispid::ViewSnapToGrid},
    {L"ViewSnapToShape", dispid::ViewSnapToShape},
    {L"WorldAnglePrecision", dispid::WorldAnglePrecision},
    {L"WorldBottom", dispid::WorldBottom},
    {L"WorldCoordPrecision", dispid::WorldCoordPrecision},
    {L"WorldLeft", dispid::WorldLeft},
    {L"WorldRight", dispid::WorldRight},
    {L"WorldSquare", dispid::WorldSquare},
    {L"WorldTop", dispid::WorldTop},
};
static_assert(std::size(kMap) == 31);

// Longest string value a load accepts; nothing in the map comes near it.
constexpr uint32_t kLongestText = 1u << 20;

struct ScopedVariant {
    VARIANT v{};
    ScopedVariant() { VariantInit(&v); }
    ~ScopedVariant() { VariantClear(&v); }
};

// Bytes of a value of this type in the stream; 0 for types written as text.
size_t FixedSize(VARTYPE vt)
{
    switch (vt) {
    case VT_I1:
    case VT_UI1: return 1;
    case VT_I2:
    case VT_BOOL:
    case VT_UI2: return 2;
    case VT_I4:
    case VT_R4:
    case VT_ERROR:
    case VT_UI4:
    case VT_INT:
    case VT_UINT: return 4;
    case VT_R8:
    case VT_CY:
    case VT_DATE: return 8;
    default: return 0;
    }
}

VARTYPE DeclaredType(DISPID id)
{
    const members::MemberRow* row = CadControl::FindRow(id, members::Kind::PropertyGet);
    switch (row ? row->result : members::AutoType::Variant) {
    case members::AutoType::I2: return VT_I2;
    case members::AutoType::R8: return VT_R8;
    case members::AutoType::Bool: return VT_BOOL;
    case members::AutoType::Bstr: return VT_BSTR;
    case members::AutoType::I4:
    case members::AutoType::Int:
    case members::AutoType::Color:
    case members::AutoType::Tool: return VT_I4;
    default: return VT_EMPTY;
    }
}

// A property read; a member that leaves its output alone reads as a zero of
// its declared type, as the platform's type-library dispatch would give it.
HRESULT GetProperty(IDispatch* control, DISPID id, VARIANT* value)
{
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    HRESULT hr = control->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, value, nullptr,
                                 nullptr);
    if (hr != S_OK) return E_FAIL;
    if (V_VT(value) == VT_EMPTY) {
        V_VT(value) = DeclaredType(id);
        if (V_VT(value) == VT_BSTR) V_BSTR(value) = SysAllocString(L"");
    }
    return S_OK;
}

HRESULT PutProperty(IDispatch* control, DISPID id, VARIANT* value)
{
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params{value, &named, 1, 1};
    HRESULT hr = control->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr,
                                 nullptr);
    return hr == S_OK ? S_OK : E_FAIL;
}

template <typename T> void Append(std::vector<uint8_t>& bytes, T value)
{
    const auto* p = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), p, p + sizeof value);
}

HRESULT AppendValue(std::vector<uint8_t>& bytes, const VARIANT& value)
{
    Append(bytes, uint16_t(V_VT(&value)));
    if (size_t size = FixedSize(V_VT(&value))) {
        const auto* p = reinterpret_cast<const uint8_t*>(&V_UI1(&value));
        bytes.insert(bytes.end(), p, p + size);
        return S_OK;
    }
    ScopedVariant text;
    if (FAILED(VariantChangeType(&text.v, const_cast<VARIANT*>(&value), 0, VT_BSTR))) return E_FAIL;
    BSTR s = V_BSTR(&text.v);
    const uint32_t length = s ? SysStringByteLen(s) + sizeof(OLECHAR) : 0;
    Append(bytes, length);
    const auto* p = reinterpret_cast<const uint8_t*>(s);
    if (length) bytes.insert(bytes.end(), p, p + length);
    return S_OK;
}

HRESULT Serialize(IDispatch* control, const Extent& extent, std::vector<uint8_t>& bytes)
{
    if (!control) return E_POINTER;
    Append(bytes, kStreamVersion);
    for (const MapEntry& entry : kMap) {
        if (entry.raw) {
            Append(bytes, extent.*entry.raw);
            continue;
        }
        ScopedVariant value;
        if (FAILED(GetProperty(control, entry.dispid, &value.v)) || FAILED(AppendValue(bytes, value.v))) return E_FAIL;
    }
    return S_OK;
}

// Reads exactly what is asked or fails.
HRESULT ReadExactly(IStream* stream, void* into, ULONG size)
{
    ULONG read = 0;
    HRESULT hr = stream->Read(into, size, &read);
    return SUCCEEDED(hr) && read == size ? S_OK : E_FAIL;
}

HRESULT ReadValue(IStream* stream, VARIANT* value)
{
    uint16_t vt = 0;
    if (FAILED(ReadExactly(stream, &vt, sizeof vt))) return E_FAIL;
    if (size_t size = FixedSize(vt)) {
        if (FAILED(ReadExactly(stream, &V_UI1(value), ULONG(size)))) return E_FAIL;
        V_VT(value) = vt;
        return S_OK;
    }
    uint32_t length = 0;
    if (FAILED(ReadExactly(stream, &length, sizeof length))) return E_FAIL;
    if (length > kLongestText || length % sizeof(OLECHAR) != 0) return E_FAIL;
    std::vector<OLECHAR> text(length / sizeof(OLECHAR));
    if (length && FAILED(ReadExactly(stream, text.data(), length))) return E_FAIL;
    ScopedVariant read;
    V_VT(&read.v) = VT_BSTR;
    V_BSTR(&read.v) = text.empty() ? nullptr : SysAllocStringLen(text.data(), UINT(text.size() - 1));
    if (!text.empty() && !V_BSTR(&read.v)) return E_OUTOFMEMORY;
    // Back to the type it was saved as where the text allows; else the text.
    if (FAILED(VariantChangeType(value, &read.v, 0, vt))) return VariantCopy(value, &read.v);
    return S_OK;
}

} // namespace

HRESULT SaveToStream(IDispatch* control, const Extent& extent, IStream* stream)
{
    if (!stream) return E_POINTER;
    std::vector<uint8_t> bytes;
    if (HRESULT hr = Serialize(control, extent, bytes); FAILED(hr)) return hr;
    ULONG written = 0;
    HRESULT hr = stream->Write(bytes.data(), ULONG(bytes.size()), &written);
    return SUCCEEDED(hr) && written == bytes.size() ? S_OK : STG_E_CANTSAVE;
}

HRESULT StreamSize(IDispatch* control, const Extent& extent, ULARGE_INTEGER* size)
{
    if (!size) return E_POINTER;
    std::vector<uint8_t> bytes;
    if (HRESULT hr = Serialize(control, extent, bytes); FAILED(hr)) return hr;
    size->QuadPart = bytes.size();
    return S_OK;
}

HRESULT LoadFromStream(IDispatch* control, Extent& extent, IStream* stream)
{
    if (!stream || !control) return E_POINTER;
    uint32_t version = 0;
    if (FAILED(ReadExactly(stream, &version, sizeof version)) || version > kStreamVersion) return E_FAIL;
    for (const MapEntry& entry : kMap) {
        if (entry.raw) {
            if (FAILED(ReadExactly(stream, &(extent.*entry.raw), sizeof(int32_t)))) return E_FAIL;
            continue;
        }
        ScopedVariant value;
        if (FAILED(ReadValue(stream, &value.v)) || FAILED(PutProperty(control, entry.dispid, &value.v))) return E_FAIL;
    }
    return S_OK;
}

HRESULT SaveToBag(IDispatch* control, const Extent& extent, IPropertyBag* bag)
{
    if (!bag || !control) return E_POINTER;
    for (const MapEntry& entry : kMap) {
        ScopedVariant value;
        if (entry.raw) {
            V_VT(&value.v) = VT_UI4;
            V_UI4(&value.v) = ULONG(extent.*entry.raw);
        } else if (FAILED(GetProperty(control, entry.dispid, &value.v))) {
            return E_FAIL;
        }
        if (FAILED(bag->Write(entry.name, &value.v))) return E_FAIL;
    }
    return S_OK;
}

HRESULT LoadFromBag(IDispatch* control, Extent& extent, IPropertyBag* bag, IErrorLog* log)
{
    if (!bag || !control) return E_POINTER;
    for (const MapEntry& entry : kMap) {
        ScopedVariant current;
        if (entry.raw) {
            V_VT(&current.v) = VT_UI4;
        } else {
            if (FAILED(GetProperty(control, entry.dispid, &current.v))) return E_FAIL;
        }
        // The bag is asked for the type the property has now.
        ScopedVariant value;
        V_VT(&value.v) = V_VT(&current.v);
        if (FAILED(bag->Read(entry.name, &value.v, log))) continue;
        if (entry.raw) {
            if (FAILED(VariantChangeType(&value.v, &value.v, 0, VT_UI4))) return E_FAIL;
            extent.*entry.raw = int32_t(V_UI4(&value.v));
        } else if (FAILED(PutProperty(control, entry.dispid, &value.v))) {
            return E_FAIL;
        }
    }
    return S_OK;
}

} // namespace bvx::com
