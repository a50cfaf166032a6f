// Construction, the interface table, and the interfaces that only describe
// the control: connection points, class information, error support,
// container notices, safety and property pages.
#include "CBvxCAD.h"

#include "Enumerator.h"
#include "Module.h"

namespace bvx::com {

namespace {

// The platform's stock colour page; MinGW declares it only as a macro.
constexpr CLSID kStockColorPage = {0x7EBDAAE1, 0x8120, 0x11CF, {0x89, 0x9F, 0x00, 0xAA, 0x00, 0x68, 0x8B, 0x10}};

void CopyPoint(IConnectionPoint*& p) { p->AddRef(); }
void DropPoint(IConnectionPoint*& p) { p->Release(); }
using PointEnumerator =
    Enumerator<IEnumConnectionPoints, IID_IEnumConnectionPoints, IConnectionPoint*, CopyPoint, DropPoint>;

bool IsDispatchInterface(REFIID riid) { return IsEqualIID(riid, IID_IDispatch) || IsEqualIID(riid, IID_IBvxCAD); }

bool IsPersistence(REFIID riid)
{
    return IsEqualIID(riid, IID_IPersistStreamInit) || IsEqualIID(riid, IID_IPersistPropertyBag) ||
           IsEqualIID(riid, IID_IPersistStorage);
}

} // namespace

std::span<const InterfaceEntry<CBvxCAD>> CBvxCAD::Interfaces()
{
    static constexpr InterfaceEntry<CBvxCAD> table[] = {
        Entry<CBvxCAD, IBvxCAD>(IID_IBvxCAD),
        Entry<CBvxCAD, IDispatch, IBvxCAD>(IID_IDispatch),
        Entry<CBvxCAD, IConnectionPointContainer>(IID_IConnectionPointContainer),
        Entry<CBvxCAD, IProvideClassInfo, IProvideClassInfo2>(IID_IProvideClassInfo),
        Entry<CBvxCAD, IProvideClassInfo2>(IID_IProvideClassInfo2),
        Entry<CBvxCAD, ISupportErrorInfo>(IID_ISupportErrorInfo),
        Entry<CBvxCAD, IOleControl>(IID_IOleControl),
        Entry<CBvxCAD, IOleObject>(IID_IOleObject),
        Entry<CBvxCAD, IObjectSafety>(IID_IObjectSafety),
        Entry<CBvxCAD, ISpecifyPropertyPages>(IID_ISpecifyPropertyPages),
        Entry<CBvxCAD, IPerPropertyBrowsing>(IID_IPerPropertyBrowsing),
        Entry<CBvxCAD, IPersist, IPersistStreamInit>(IID_IPersist),
        Entry<CBvxCAD, IPersistStreamInit>(IID_IPersistStreamInit),
        Entry<CBvxCAD, IPersistPropertyBag>(IID_IPersistPropertyBag),
        Entry<CBvxCAD, IPersistStorage>(IID_IPersistStorage),
        Entry<CBvxCAD, IOleWindow, IOleInPlaceObjectWindowless>(IID_IOleWindow),
        Entry<CBvxCAD, IOleInPlaceObject, IOleInPlaceObjectWindowless>(IID_IOleInPlaceObject),
        Entry<CBvxCAD, IOleInPlaceObjectWindowless>(IID_IOleInPlaceObjectWindowless),
        Entry<CBvxCAD, IOleInPlaceActiveObject>(IID_IOleInPlaceActiveObject),
        Entry<CBvxCAD, IViewObject, IViewObjectEx>(IID_IViewObject),
        Entry<CBvxCAD, IViewObject2, IViewObjectEx>(IID_IViewObject2),
        Entry<CBvxCAD, IViewObjectEx>(IID_IViewObjectEx),
        Entry<CBvxCAD, IDataObject>(IID_IDataObject),
        Entry<CBvxCAD, IQuickActivate>(IID_IQuickActivate),
    };
    return table;
}

CBvxCAD::CBvxCAD()
{
    control_.AdvisePropertyNotify(&propertyRelay_);
    control_.SetUserModeSource([this] { return AmbientUserMode(); });
    control_.SetViewChangeSink(&viewRelay_);
    // The screen's resolution, which a host without windows takes as 96.
    CadWorld& world = control_.View().World;
    world.ScreenDpiX = world.OutputDpiX = window_.ScreenDpiX();
    world.ScreenDpiY = world.OutputDpiY = window_.ScreenDpiY();
}

STDMETHODIMP CBvxCAD::EnumConnectionPoints(IEnumConnectionPoints** out)
{
    if (!out) return E_POINTER;
    *out = PointEnumerator::Create(Identity(), std::vector<IConnectionPoint*>{&events_, &propertyNotify_});
    return *out ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP CBvxCAD::FindConnectionPoint(REFIID riid, IConnectionPoint** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    for (ConnectionPoint* point : {&events_, &propertyNotify_}) {
        if (IsEqualIID(riid, point->Iid())) {
            *out = point;
            point->AddRef();
            return S_OK;
        }
    }
    return CONNECT_E_NOCONNECTION;
}

STDMETHODIMP CBvxCAD::GetClassInfo(ITypeInfo** out) { return LoadTypeInfo(CLSID_BvxCAD, out); }

STDMETHODIMP CBvxCAD::GetGUID(DWORD kind, GUID* out)
{
    if (!out) return E_POINTER;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
    *out = DIID__CADEvents;
    return S_OK;
}

STDMETHODIMP CBvxCAD::InterfaceSupportsErrorInfo(REFIID riid) { return IsDispatchInterface(riid) ? S_OK : S_FALSE; }

STDMETHODIMP CBvxCAD::GetControlInfo(CONTROLINFO* info)
{
    if (!info) return E_POINTER;
    // No mnemonics.
    info->hAccel = nullptr;
    info->cAccel = 0;
    info->dwFlags = 0;
    return S_OK;
}

STDMETHODIMP CBvxCAD::OnMnemonic(MSG*) { return E_NOTIMPL; }

// The user mode is asked afresh at every gated read, so no ambient is kept.
STDMETHODIMP CBvxCAD::OnAmbientPropertyChange(DISPID) { return S_OK; }

STDMETHODIMP CBvxCAD::FreezeEvents(BOOL freeze)
{
    control_.FreezeEvents(freeze != FALSE);
    return S_OK;
}

bool CBvxCAD::AmbientUserMode() const
{
    Ref<IDispatch> ambient = Ref<IDispatch>::Query(site_.get());
    if (!ambient) return true;
    VARIANT answer;
    VariantInit(&answer);
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    HRESULT hr = ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                 &answer, nullptr, nullptr);
    bool userMode = true;
    if (SUCCEEDED(hr) && SUCCEEDED(VariantChangeType(&answer, &answer, 0, VT_BOOL)))
        userMode = V_BOOL(&answer) != VARIANT_FALSE;
    VariantClear(&answer);
    return userMode;
}

STDMETHODIMP CBvxCAD::GetInterfaceSafetyOptions(REFIID riid, DWORD* supported, DWORD* enabled)
{
    if (!supported || !enabled) return E_POINTER;
    DWORD safe = IsDispatchInterface(riid) ? INTERFACESAFE_FOR_UNTRUSTED_CALLER
                 : IsPersistence(riid)     ? INTERFACESAFE_FOR_UNTRUSTED_DATA
                                           : 0;
    *supported = safe;
    *enabled = safety_ & safe;
    return safe ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP CBvxCAD::SetInterfaceSafetyOptions(REFIID riid, DWORD mask, DWORD enabled)
{
    DWORD supported = 0;
    DWORD current = 0;
    if (HRESULT hr = GetInterfaceSafetyOptions(riid, &supported, &current); FAILED(hr)) return hr;
    if (mask & ~supported) return E_FAIL;
    safety_ = (safety_ & ~mask) | (enabled & mask);
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetPages(CAUUID* pages)
{
    if (!pages) return E_POINTER;
    pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    if (!pages->pElems) {
        pages->cElems = 0;
        return E_OUTOFMEMORY;
    }
    pages->cElems = 1;
    pages->pElems[0] = kStockColorPage;
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetDisplayString(DISPID, BSTR* out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::MapPropertyToPage(DISPID dispid, CLSID* out)
{
    if (!out) return E_POINTER;
    *out = dispid == members::dispid::BackColor ? kStockColorPage : CLSID_NULL;
    return dispid == members::dispid::BackColor ? S_OK : PERPROP_E_NOPAGEAVAILABLE;
}

STDMETHODIMP CBvxCAD::GetPredefinedStrings(DISPID, CALPOLESTR* strings, CADWORD* cookies)
{
    if (!strings || !cookies) return E_POINTER;
    *strings = {0, nullptr};
    *cookies = {0, nullptr};
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::GetPredefinedValue(DISPID, DWORD, VARIANT* out)
{
    if (!out) return E_POINTER;
    return E_NOTIMPL;
}

} // namespace bvx::com
