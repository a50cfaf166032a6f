// IOleObject: the client site (whose ambient user mode gates design-time
// reads), the natural size, advise sinks and status. The verbs and closing
// are in-place activation's.
#include "CBvxCAD.h"

namespace bvx::com {

STDMETHODIMP CBvxCAD::SetClientSite(IOleClientSite* site)
{
    site_ = Ref<IOleClientSite>::Share(site);
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetClientSite(IOleClientSite** out)
{
    if (!out) return E_POINTER;
    *out = Ref<IOleClientSite>(site_).Detach();
    return S_OK;
}

STDMETHODIMP CBvxCAD::SetHostNames(LPCOLESTR, LPCOLESTR) { return S_OK; }

STDMETHODIMP CBvxCAD::SetMoniker(DWORD, IMoniker*) { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::GetMoniker(DWORD, DWORD, IMoniker** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::InitFromData(IDataObject*, BOOL, DWORD) { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::GetClipboardData(DWORD, IDataObject** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::EnumVerbs(IEnumOLEVERB** out) { return OleRegEnumVerbs(CLSID_BvxCAD, out); }

STDMETHODIMP CBvxCAD::Update() { return S_OK; }

STDMETHODIMP CBvxCAD::IsUpToDate() { return S_OK; }

STDMETHODIMP CBvxCAD::GetUserClassID(CLSID* out)
{
    if (!out) return E_POINTER;
    *out = CLSID_BvxCAD;
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetUserType(DWORD form, LPOLESTR* out) { return OleRegGetUserType(CLSID_BvxCAD, form, out); }

STDMETHODIMP CBvxCAD::SetExtent(DWORD aspect, SIZEL* size)
{
    if (!size) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (size->cx != extent_.cx || size->cy != extent_.cy) control_.SetDirty(true);
    extent_ = {size->cx, size->cy};
    viewRelay_.OnViewChange();
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetExtent(DWORD aspect, SIZEL* size)
{
    if (!size) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    *size = {extent_.cx, extent_.cy};
    return S_OK;
}

HRESULT CBvxCAD::AdviseHolder(IOleAdviseHolder** out)
{
    if (!adviseHolder_)
        if (HRESULT hr = CreateOleAdviseHolder(adviseHolder_.Out()); FAILED(hr)) return hr;
    *out = adviseHolder_.get();
    return S_OK;
}

STDMETHODIMP CBvxCAD::Advise(IAdviseSink* sink, DWORD* cookie)
{
    IOleAdviseHolder* holder = nullptr;
    HRESULT hr = AdviseHolder(&holder);
    return FAILED(hr) ? hr : holder->Advise(sink, cookie);
}

STDMETHODIMP CBvxCAD::Unadvise(DWORD cookie)
{
    IOleAdviseHolder* holder = nullptr;
    HRESULT hr = AdviseHolder(&holder);
    return FAILED(hr) ? hr : holder->Unadvise(cookie);
}

STDMETHODIMP CBvxCAD::EnumAdvise(IEnumSTATDATA** out)
{
    IOleAdviseHolder* holder = nullptr;
    HRESULT hr = AdviseHolder(&holder);
    return FAILED(hr) ? hr : holder->EnumAdvise(out);
}

STDMETHODIMP CBvxCAD::GetMiscStatus(DWORD, DWORD* status)
{
    if (!status) return E_POINTER;
    *status = kMiscStatus;
    return S_OK;
}

STDMETHODIMP CBvxCAD::SetColorScheme(LOGPALETTE*) { return E_NOTIMPL; }

} // namespace bvx::com
