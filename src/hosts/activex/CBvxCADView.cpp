// The control drawn into any device context the container hands it (print
// preview, thumbnails), its view's status and hit tests, the data it offers
// and the one-call activation of containers that support it.
#include "CBvxCAD.h"

#include "platform/raster/RasterDeviceContext.h"
#include "platform/win32/SurfaceCopy.h"

namespace bvx::com {

namespace {

// Our paint fills every pixel of its bounds with the back colour.
constexpr DWORD kViewStatus = VIEWSTATUS_OPAQUE | VIEWSTATUS_SOLIDBKGND;

} // namespace

STDMETHODIMP CBvxCAD::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC dc, LPCRECTL bounds, LPCRECTL,
                           BOOL(STDMETHODCALLTYPE*)(ULONG_PTR), ULONG_PTR)
{
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!dc) return E_INVALIDARG;
    RECTL area{};
    if (bounds)
        area = *bounds;
    else if (window_.Handle())
        area = {position_.left, position_.top, position_.right, position_.bottom};
    else
        return E_INVALIDARG;
    const int64_t width = int64_t(area.right) - area.left;
    const int64_t height = int64_t(area.bottom) - area.top;
    if (width <= 0 || height <= 0) return S_OK;
    if (width > INT32_MAX || height > INT32_MAX) return E_OUTOFMEMORY;
    // The same paint as the window's, onto a surface of the bounds' size at
    // the origin, so that a thumbnail of the window's size reuses the
    // picture; the context's mapping mode scales it onto the bounds.
    BitmapHandle surface = CreateBitmap(int32_t(width), int32_t(height));
    if (!surface) return E_OUTOFMEMORY;
    RasterDeviceContext surfaceDc(surface, control_.View().World.ScreenDpiX, control_.View().World.ScreenDpiY);
    const DeviceRect whole{0, 0, surface->Width(), surface->Height()};
    control_.OnDraw(window_.Handle() ? &window_ : nullptr, surfaceDc, whole);
    win32::SurfaceCopy copy;
    const RECT to{area.left, area.top, area.right, area.bottom};
    return copy.Stretch(dc, *surface, to) ? S_OK : E_FAIL;
}

STDMETHODIMP CBvxCAD::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return S_FALSE;
}

STDMETHODIMP CBvxCAD::Freeze(DWORD, LONG, void*, DWORD* cookie)
{
    if (cookie) *cookie = 0;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::Unfreeze(DWORD) { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink)
{
    viewRelay_.Set(sink, aspects, flags);
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink)
{
    if (aspects) *aspects = viewRelay_.Aspects();
    if (flags) *flags = viewRelay_.Flags();
    if (sink) *sink = Ref<IAdviseSink>::Share(viewRelay_.Sink()).Detach();
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) { return GetExtent(aspect, size); }

STDMETHODIMP CBvxCAD::GetRect(DWORD, LPRECTL rect)
{
    if (!rect) return E_POINTER;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::GetViewStatus(DWORD* status)
{
    if (!status) return E_POINTER;
    *status = kViewStatus;
    return S_OK;
}

STDMETHODIMP CBvxCAD::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG, DWORD* result)
{
    if (!bounds || !result) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return E_FAIL;
    *result = PtInRect(bounds, point) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

STDMETHODIMP CBvxCAD::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG, DWORD* result)
{
    if (!bounds || !rect || !result) return E_POINTER;
    if (aspect != DVASPECT_CONTENT) return E_FAIL;
    RECT common{};
    *result = IntersectRect(&common, bounds, rect) ? HITRESULT_HIT : HITRESULT_OUTSIDE;
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO*, LPSIZEL size)
{
    if (!size) return E_POINTER;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::GetData(FORMATETC* format, STGMEDIUM* medium)
{
    if (!format || !medium) return E_POINTER;
    return DV_E_FORMATETC;
}

STDMETHODIMP CBvxCAD::GetDataHere(FORMATETC* format, STGMEDIUM* medium)
{
    if (!format || !medium) return E_POINTER;
    return DV_E_FORMATETC;
}

STDMETHODIMP CBvxCAD::QueryGetData(FORMATETC* format) { return format ? DV_E_FORMATETC : E_POINTER; }

STDMETHODIMP CBvxCAD::GetCanonicalFormatEtc(FORMATETC* in, FORMATETC* out)
{
    if (!in || !out) return E_POINTER;
    out->ptd = nullptr;
    return DV_E_FORMATETC;
}

STDMETHODIMP CBvxCAD::SetData(FORMATETC*, STGMEDIUM*, BOOL) { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::EnumFormatEtc(DWORD, IEnumFORMATETC** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD* cookie)
{
    if (cookie) *cookie = 0;
    return OLE_E_ADVISENOTSUPPORTED;
}

STDMETHODIMP CBvxCAD::DUnadvise(DWORD) { return OLE_E_NOCONNECTION; }

STDMETHODIMP CBvxCAD::EnumDAdvise(IEnumSTATDATA** out)
{
    if (out) *out = nullptr;
    return OLE_E_ADVISENOTSUPPORTED;
}

STDMETHODIMP CBvxCAD::QuickActivate(QACONTAINER* container, QACONTROL* control)
{
    if (!container || !control) return E_POINTER;
    if (container->cbSize < offsetof(QACONTAINER, pFont) || control->cbSize < offsetof(QACONTROL, dwPointerActivationPolicy))
        return E_INVALIDARG;
    SetClientSite(container->pClientSite);
    if (container->pAdviseSink) SetAdvise(DVASPECT_CONTENT, 0, container->pAdviseSink);
    control->dwEventCookie = 0;
    control->dwPropNotifyCookie = 0;
    if (container->pUnkEventSink) events_.Advise(container->pUnkEventSink, &control->dwEventCookie);
    if (container->pPropertyNotifySink) propertyNotify_.Advise(container->pPropertyNotifySink, &control->dwPropNotifyCookie);
    control->dwMiscStatus = kMiscStatus;
    control->dwViewStatus = kViewStatus;
    if (control->cbSize >= sizeof(QACONTROL)) control->dwPointerActivationPolicy = 0;
    return S_OK;
}

STDMETHODIMP CBvxCAD::SetContentExtent(LPSIZEL size) { return SetExtent(DVASPECT_CONTENT, size); }

STDMETHODIMP CBvxCAD::GetContentExtent(LPSIZEL size) { return GetExtent(DVASPECT_CONTENT, size); }

} // namespace bvx::com
