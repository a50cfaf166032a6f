// The control as OLE hosts see it: the dual interface and its events, the
// container's notices, safety, property pages and persistence. Everything a
// member does happens in CadControl; this object converts and forwards.
#pragma once

#include "ComObject.h"
#include "ComValues.h"
#include "ConnectionPoint.h"
#include "ContainerRelays.h"
#include "PropertyMap.h"

#include "control/CadControl.h"
#include "platform/win32/ChildWindow.h"

#include "bvxcad_vtable.h"

#include <objsafe.h>
#include <ocidl.h>
#include <olectl.h>

namespace bvx::com {

class CBvxCAD;

// OLEMISC_SETCLIENTSITEFIRST | ACTIVATEWHENVISIBLE | INSIDEOUT | CANTLINKINSIDE | RECOMPOSEONRESIZE
constexpr DWORD kMiscStatus = 0x20191;
using CBvxCADBase = ComObject<CBvxCAD, BvxCadVtable<CBvxCAD>, IConnectionPointContainer, IProvideClassInfo2,
                              ISupportErrorInfo, IOleControl, IOleObject, IObjectSafety, ISpecifyPropertyPages,
                              IPerPropertyBrowsing, IPersistStreamInit, IPersistPropertyBag, IPersistStorage,
                              IOleInPlaceObjectWindowless, IOleInPlaceActiveObject, IViewObjectEx, IDataObject,
                              IQuickActivate>;

class CBvxCAD final : public CBvxCADBase, private win32::WindowOwner {
public:
    static std::span<const InterfaceEntry<CBvxCAD>> Interfaces();

    CBvxCAD();

    // The one way into a member, for IDispatch, the vtable and persistence:
    // CadControl's dispatch, which gates through AmbientUserMode.
    HRESULT CallMember(int32_t dispid, members::Kind kind, std::span<const Variant> args, Variant* result);
    template <typename Out>
    HRESULT CallFromVtable(int32_t dispid, members::Kind kind, std::span<const Variant> args, Out* out)
    {
        if (!out) return E_POINTER;
        Variant result;
        HRESULT hr = CallMember(dispid, kind, args, &result);
        if (FAILED(hr)) return ReportError(hr);
        HRESULT stored = StoreResult(result, out);
        return FAILED(stored) ? stored : hr;
    }
    HRESULT CallFromVtable(int32_t dispid, members::Kind kind, std::span<const Variant> args);

    // IDispatch
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
    STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale, DISPID* out) override;
    STDMETHODIMP Invoke(DISPID dispid, REFIID riid, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                        EXCEPINFO* exception, UINT* argError) override;

    // IConnectionPointContainer
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** out) override;
    STDMETHODIMP FindConnectionPoint(REFIID riid, IConnectionPoint** out) override;

    // IProvideClassInfo2
    STDMETHODIMP GetClassInfo(ITypeInfo** out) override;
    STDMETHODIMP GetGUID(DWORD kind, GUID* out) override;

    // ISupportErrorInfo
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID riid) override;

    // IOleControl
    STDMETHODIMP GetControlInfo(CONTROLINFO* info) override;
    STDMETHODIMP OnMnemonic(MSG* message) override;
    STDMETHODIMP OnAmbientPropertyChange(DISPID dispid) override;
    STDMETHODIMP FreezeEvents(BOOL freeze) override;

    // IOleObject
    STDMETHODIMP SetClientSite(IOleClientSite* site) override;
    STDMETHODIMP GetClientSite(IOleClientSite** out) override;
    STDMETHODIMP SetHostNames(LPCOLESTR application, LPCOLESTR document) override;
    STDMETHODIMP Close(DWORD saveOption) override;
    STDMETHODIMP SetMoniker(DWORD which, IMoniker* moniker) override;
    STDMETHODIMP GetMoniker(DWORD assign, DWORD which, IMoniker** out) override;
    STDMETHODIMP InitFromData(IDataObject* data, BOOL creation, DWORD reserved) override;
    STDMETHODIMP GetClipboardData(DWORD reserved, IDataObject** out) override;
    STDMETHODIMP DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent, LPCRECT rect) override;
    STDMETHODIMP EnumVerbs(IEnumOLEVERB** out) override;
    STDMETHODIMP Update() override;
    STDMETHODIMP IsUpToDate() override;
    STDMETHODIMP GetUserClassID(CLSID* out) override;
    STDMETHODIMP GetUserType(DWORD form, LPOLESTR* out) override;
    STDMETHODIMP SetExtent(DWORD aspect, SIZEL* size) override;
    STDMETHODIMP GetExtent(DWORD aspect, SIZEL* size) override;
    STDMETHODIMP Advise(IAdviseSink* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumAdvise(IEnumSTATDATA** out) override;
    STDMETHODIMP GetMiscStatus(DWORD aspect, DWORD* status) override;
    STDMETHODIMP SetColorScheme(LOGPALETTE* palette) override;

    // IObjectSafety
    STDMETHODIMP GetInterfaceSafetyOptions(REFIID riid, DWORD* supported, DWORD* enabled) override;
    STDMETHODIMP SetInterfaceSafetyOptions(REFIID riid, DWORD mask, DWORD enabled) override;

    // ISpecifyPropertyPages
    STDMETHODIMP GetPages(CAUUID* pages) override;

    // IPerPropertyBrowsing
    STDMETHODIMP GetDisplayString(DISPID dispid, BSTR* out) override;
    STDMETHODIMP MapPropertyToPage(DISPID dispid, CLSID* out) override;
    STDMETHODIMP GetPredefinedStrings(DISPID dispid, CALPOLESTR* strings, CADWORD* cookies) override;
    STDMETHODIMP GetPredefinedValue(DISPID dispid, DWORD cookie, VARIANT* out) override;

    // IPersist, IPersistStreamInit, IPersistPropertyBag, IPersistStorage
    STDMETHODIMP GetClassID(CLSID* out) override;
    STDMETHODIMP IsDirty() override;
    STDMETHODIMP Load(IStream* stream) override;
    STDMETHODIMP Save(IStream* stream, BOOL clearDirty) override;
    STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) override;
    STDMETHODIMP InitNew() override;
    STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* log) override;
    STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;
    STDMETHODIMP InitNew(IStorage* storage) override;
    STDMETHODIMP Load(IStorage* storage) override;
    STDMETHODIMP Save(IStorage* storage, BOOL sameAsLoad) override;
    STDMETHODIMP SaveCompleted(IStorage* storage) override;
    STDMETHODIMP HandsOffStorage() override;

    // IOleWindow, through both in-place interfaces
    STDMETHODIMP GetWindow(HWND* out) override;
    STDMETHODIMP ContextSensitiveHelp(BOOL enter) override;

    // IOleInPlaceObjectWindowless
    STDMETHODIMP InPlaceDeactivate() override;
    STDMETHODIMP UIDeactivate() override;
    STDMETHODIMP SetObjectRects(LPCRECT position, LPCRECT clip) override;
    STDMETHODIMP ReactivateAndUndo() override;
    STDMETHODIMP OnWindowMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* result) override;
    STDMETHODIMP GetDropTarget(IDropTarget** out) override;

    // IOleInPlaceActiveObject
    STDMETHODIMP TranslateAccelerator(LPMSG message) override;
    STDMETHODIMP OnFrameWindowActivate(BOOL activate) override;
    STDMETHODIMP OnDocWindowActivate(BOOL activate) override;
    STDMETHODIMP ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* window, BOOL frame) override;
    STDMETHODIMP EnableModeless(BOOL enable) override;

    // IViewObject, IViewObject2, IViewObjectEx
    STDMETHODIMP Draw(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* target, HDC targetInfo, HDC dc,
                      LPCRECTL bounds, LPCRECTL metafileBounds, BOOL(STDMETHODCALLTYPE* keepGoing)(ULONG_PTR),
                      ULONG_PTR keepGoingArgument) override;
    STDMETHODIMP GetColorSet(DWORD aspect, LONG index, void* aspectInfo, DVTARGETDEVICE* target, HDC targetInfo,
                             LOGPALETTE** out) override;
    STDMETHODIMP Freeze(DWORD aspect, LONG index, void* aspectInfo, DWORD* cookie) override;
    STDMETHODIMP Unfreeze(DWORD cookie) override;
    STDMETHODIMP SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
    STDMETHODIMP GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
    STDMETHODIMP GetExtent(DWORD aspect, LONG index, DVTARGETDEVICE* target, LPSIZEL size) override;
    STDMETHODIMP GetRect(DWORD aspect, LPRECTL rect) override;
    STDMETHODIMP GetViewStatus(DWORD* status) override;
    STDMETHODIMP QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG closeHint, DWORD* result) override;
    STDMETHODIMP QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG closeHint, DWORD* result) override;
    STDMETHODIMP GetNaturalExtent(DWORD aspect, LONG index, DVTARGETDEVICE* target, HDC targetInfo,
                                  DVEXTENTINFO* info, LPSIZEL size) override;

    // IDataObject: no format yet
    STDMETHODIMP GetData(FORMATETC* format, STGMEDIUM* medium) override;
    STDMETHODIMP GetDataHere(FORMATETC* format, STGMEDIUM* medium) override;
    STDMETHODIMP QueryGetData(FORMATETC* format) override;
    STDMETHODIMP GetCanonicalFormatEtc(FORMATETC* in, FORMATETC* out) override;
    STDMETHODIMP SetData(FORMATETC* format, STGMEDIUM* medium, BOOL release) override;
    STDMETHODIMP EnumFormatEtc(DWORD direction, IEnumFORMATETC** out) override;
    STDMETHODIMP DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* cookie) override;
    STDMETHODIMP DUnadvise(DWORD cookie) override;
    STDMETHODIMP EnumDAdvise(IEnumSTATDATA** out) override;

    // IQuickActivate
    STDMETHODIMP QuickActivate(QACONTAINER* container, QACONTROL* control) override;
    STDMETHODIMP SetContentExtent(LPSIZEL size) override;
    STDMETHODIMP GetContentExtent(LPSIZEL size) override;

private:
    friend CBvxCADBase;
    ~CBvxCAD() = default;

    // The container's ambient user mode; without a site or an answer, run time.
    bool AmbientUserMode() const;
    // A member's failure as the platform reports it through a vtable: the
    // code, with an error object that describes it.
    HRESULT ReportError(HRESULT hr) const;
    IDispatch* Dispatch() { return static_cast<IBvxCAD*>(this); }
    HRESULT AdviseHolder(IOleAdviseHolder** out);

    // In-place activation, as the verbs ask for it: the window made in the
    // site's parent window, shown, and with `uiActivate` the focus and the
    // frame's active object.
    HRESULT InPlaceActivate(IOleClientSite* site, bool uiActivate, const RECT* position);
    // The window's messages: the focus rules of an in-place object first,
    // then the control's own routing.
    int64_t OnWindowMessage(uint32_t msg, uint64_t wParam, int64_t lParam) override;
    void OnWindowPaint(DeviceContext& dc, const DeviceRect& client) override;
    bool WindowUserMode() const override { return AmbientUserMode(); }
    void TellSiteFocus(bool focus);
    void ShowWindow(bool show);

    ConnectionPoint events_{*this, DIID__CADEvents, &IID_IDispatch};
    ConnectionPoint propertyNotify_{*this, IID_IPropertyNotifySink};
    EventRelay eventRelay_{events_};
    PropertyNotifyRelay propertyRelay_{propertyNotify_};
    ViewAdviseRelay viewRelay_;
    CadControl control_{nullptr, &eventRelay_};
    Ref<IOleClientSite> site_;
    Ref<IOleAdviseHolder> adviseHolder_;
    Extent extent_;
    DWORD safety_ = 0;

    win32::ChildWindow window_{*this};
    Ref<IOleInPlaceSite> inPlaceSite_;
    Ref<IOleInPlaceFrame> frame_;
    Ref<IOleInPlaceUIWindow> uiWindow_;
    RECT position_{};
    bool inPlaceActive_ = false;
    bool uiActive_ = false;
};

} // namespace bvx::com
