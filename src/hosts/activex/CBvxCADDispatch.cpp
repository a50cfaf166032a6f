// IDispatch and the vtable: both reach a member through CallMember, and a
// member's failure comes back as the platform's type-library dispatch
// reports it.
#include "CBvxCAD.h"

#include "DispatchCall.h"
#include "Module.h"

#include <new>

namespace bvx::com {

namespace {

constexpr wchar_t kSource[] = L"BvxCad.BvxCad";

// Argument and name errors of the dispatch itself, as opposed to a member's own.
bool IsDispatchError(HRESULT hr) { return (ULONG(hr) & 0xFFFF0000u) == 0x80020000u; }

const wchar_t* Describe(HRESULT hr)
{
    if (hr == hresult::GetNotSupported) return L"This property cannot be read at design time.";
    return L"The control could not carry out the call.";
}

} // namespace

HRESULT CBvxCAD::CallMember(int32_t dispid, members::Kind kind, std::span<const Variant> args, Variant* result)
{
    // A host may let go of the control from an event the member fires.
    Ref<IUnknown> alive = Ref<IUnknown>::Share(Identity());
    // No C++ exception may cross into a COM caller.
    try {
        return control_.Invoke(dispid, kind, args, result);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

HRESULT CBvxCAD::CallFromVtable(int32_t dispid, members::Kind kind, std::span<const Variant> args)
{
    HRESULT hr = CallMember(dispid, kind, args, nullptr);
    return FAILED(hr) ? ReportError(hr) : hr;
}

HRESULT CBvxCAD::ReportError(HRESULT hr) const
{
    Ref<ICreateErrorInfo> create;
    if (SUCCEEDED(CreateErrorInfo(create.Out()))) {
        create->SetGUID(IID_IBvxCAD);
        create->SetSource(const_cast<LPOLESTR>(kSource));
        create->SetDescription(const_cast<LPOLESTR>(Describe(hr)));
        if (Ref<IErrorInfo> info = Ref<IErrorInfo>::Query(create.get())) SetErrorInfo(0, info.get());
    }
    return hr;
}

STDMETHODIMP CBvxCAD::GetTypeInfoCount(UINT* count)
{
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetTypeInfo(UINT index, LCID, ITypeInfo** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return LoadTypeInfo(IID_IBvxCAD, out);
}

STDMETHODIMP CBvxCAD::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* out)
{
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    return NamesToDispids(names, count, out);
}

STDMETHODIMP CBvxCAD::Invoke(DISPID dispid, REFIID riid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                             EXCEPINFO* exception, UINT* argError)
{
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    DispatchCall call;
    HRESULT hr = ReadDispatchCall(dispid, flags, params, call, argError);
    if (FAILED(hr)) return hr;
    Variant value;
    hr = CallMember(call.row->dispid, call.row->kind, call.args, &value);
    if (FAILED(hr) && !IsDispatchError(hr)) {
        if (exception) {
            *exception = EXCEPINFO{};
            exception->scode = hr;
            exception->bstrSource = SysAllocString(kSource);
            exception->bstrDescription = SysAllocString(Describe(hr));
        }
        return DISP_E_EXCEPTION;
    }
    if (FAILED(hr)) return hr;
    // The caller's result is taken as empty, as callers are bound to pass it.
    if (result)
        if (HRESULT stored = ToCom(value, result); FAILED(stored)) return stored;
    return hr;
}

} // namespace bvx::com
