#include "DispatchCall.h"

#include "ComValues.h"

#include "control/CadControl.h"

#include <algorithm>

namespace bvx::com {

namespace {

using members::Kind;

const members::MemberRow* RowForFlags(DISPID dispid, WORD flags)
{
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) return CadControl::FindRow(dispid, Kind::PropertyPut);
    const members::MemberRow* row = nullptr;
    if (flags & DISPATCH_METHOD) row = CadControl::FindRow(dispid, Kind::Method);
    // Script hosts ask for a property with arguments as a method.
    if (!row && (flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET)))
        row = CadControl::FindRow(dispid, Kind::PropertyGet);
    return row;
}

bool SameNameFolded(const OLECHAR* a, std::string_view b)
{
    auto fold = [](unsigned c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
    size_t i = 0;
    for (; a[i] && i < b.size(); ++i)
        if (fold(unsigned(a[i])) != fold(static_cast<unsigned char>(b[i]))) return false;
    return a[i] == 0 && i == b.size();
}

const members::MemberRow* RowWithParameters(DISPID dispid)
{
    for (Kind kind : {Kind::Method, Kind::PropertyGet, Kind::PropertyPut})
        if (const members::MemberRow* row = CadControl::FindRow(dispid, kind)) return row;
    return nullptr;
}

} // namespace

HRESULT ReadDispatchCall(DISPID dispid, WORD flags, const DISPPARAMS* params, DispatchCall& call, UINT* argError)
{
    if (!params || params->cNamedArgs > params->cArgs) return E_INVALIDARG;
    if ((params->cArgs && !params->rgvarg) || (params->cNamedArgs && !params->rgdispidNamedArgs)) return E_INVALIDARG;
    call.row = RowForFlags(dispid, flags);
    if (!call.row) return DISP_E_MEMBERNOTFOUND;
    const bool put = call.row->kind == Kind::PropertyPut;
    const size_t declared = call.row->args.size();

    // rgvarg holds the named arguments first, then the positional ones last
    // first; a put's value is the named argument DISPID_PROPERTYPUT.
    const UINT named = params->cNamedArgs;
    const UINT positional = params->cArgs - named;
    size_t slots = positional;
    const VARIANT* value = nullptr;
    UINT valueIndex = 0;
    for (UINT n = 0; n < named; ++n) {
        const DISPID position = params->rgdispidNamedArgs[n];
        if (position == DISPID_PROPERTYPUT && put) {
            value = &params->rgvarg[n];
            valueIndex = n;
        } else if (position < 0 || size_t(position) >= declared || UINT(position) < positional) {
            if (argError) *argError = n;
            return DISP_E_PARAMNOTFOUND;
        } else {
            slots = std::max(slots, size_t(position) + 1);
        }
    }
    if (put && !value) return DISP_E_PARAMNOTOPTIONAL;
    if (slots > declared) return DISP_E_BADPARAMCOUNT;

    call.args.assign(slots, Variant::Missing());
    auto read = [&](UINT index, Variant& out) {
        HRESULT hr = ToCore(params->rgvarg[index], out);
        if (FAILED(hr) && argError) *argError = index;
        return hr;
    };
    for (UINT p = 0; p < positional; ++p)
        if (HRESULT hr = read(params->cArgs - 1 - p, call.args[p]); FAILED(hr)) return hr;
    for (UINT n = 0; n < named; ++n) {
        const DISPID position = params->rgdispidNamedArgs[n];
        if (position == DISPID_PROPERTYPUT) continue;
        if (HRESULT hr = read(n, call.args[size_t(position)]); FAILED(hr)) return hr;
    }
    if (put) {
        // Every index argument precedes the value; left-out ones are missing.
        call.args.resize(declared, Variant::Missing());
        Variant v;
        if (HRESULT hr = read(valueIndex, v); FAILED(hr)) return hr;
        call.args.push_back(std::move(v));
    }
    return S_OK;
}

HRESULT NamesToDispids(const LPOLESTR* names, UINT count, DISPID* out)
{
    if (count == 0) return S_OK;
    if (!names || !out) return E_INVALIDARG;
    std::fill(out, out + count, DISPID_UNKNOWN);
    HRESULT hr = S_OK;
    if (!names[0]) return DISP_E_UNKNOWNNAME;
    std::optional<int32_t> dispid = CadControl::DispidOfName(FromWide(names[0]));
    if (!dispid) return DISP_E_UNKNOWNNAME;
    out[0] = *dispid;
    const members::MemberRow* row = RowWithParameters(*dispid);
    for (UINT i = 1; i < count; ++i) {
        auto it = std::find_if(row->args.begin(), row->args.end(), [&](const members::ArgSpec& arg) {
            return names[i] && SameNameFolded(names[i], arg.name);
        });
        if (it == row->args.end())
            hr = DISP_E_UNKNOWNNAME;
        else
            out[i] = DISPID(it - row->args.begin());
    }
    return hr;
}

} // namespace bvx::com
