// In-place activation: the verbs, the control's window in the container's
// window, the focus rules of an inside-out object, and the window's messages
// handed on to the control's routing.
#include "CBvxCAD.h"

#include "platform/WindowMessages.h"

namespace bvx::com {

namespace {

bool IsKeyMessage(UINT msg) { return msg >= WM_KEYFIRST && msg <= WM_KEYLAST; }

// Pixels to HIMETRIC at the screen's resolution, as extents travel.
LONG ToHimetric(LONG pixels, int dpi) { return MulDiv(pixels, 2540, dpi > 0 ? dpi : 96); }

} // namespace

HRESULT CBvxCAD::InPlaceActivate(IOleClientSite* site, bool uiActivate, const RECT* position)
{
    if (!inPlaceActive_) {
        Ref<IOleInPlaceSite> inPlaceSite = Ref<IOleInPlaceSite>::Query(site ? site : site_.get());
        if (!inPlaceSite) return E_NOINTERFACE;
        if (inPlaceSite->CanInPlaceActivate() != S_OK) return E_FAIL;
        if (HRESULT hr = inPlaceSite->OnInPlaceActivate(); FAILED(hr)) return hr;
        inPlaceSite_ = inPlaceSite;
        inPlaceActive_ = true;
        HWND parent = nullptr;
        RECT clip{};
        OLEINPLACEFRAMEINFO frameInfo{};
        frameInfo.cb = sizeof(OLEINPLACEFRAMEINFO);
        frame_ = {};
        uiWindow_ = {};
        const HRESULT context = inPlaceSite->GetWindowContext(frame_.Out(), uiWindow_.Out(), &position_, &clip, &frameInfo);
        // The control answers its window's first messages only once it
        // knows the window.
        control_.View().Window = &window_;
        if (FAILED(inPlaceSite->GetWindow(&parent)) || FAILED(context) || !window_.Create(parent, position_)) {
            InPlaceDeactivate();
            return E_FAIL;
        }
    } else if (position) {
        SetObjectRects(position, position);
    }
    ShowWindow(true);
    if (uiActivate && !uiActive_) {
        uiActive_ = true;
        inPlaceSite_->OnUIActivate();
        if (::GetFocus() != window_.Handle()) window_.SetFocus();
        // No menus and no toolbars: the frame keeps its own.
        if (frame_) {
            frame_->SetActiveObject(this, nullptr);
            frame_->SetBorderSpace(nullptr);
        }
        if (uiWindow_) {
            uiWindow_->SetActiveObject(this, nullptr);
            uiWindow_->SetBorderSpace(nullptr);
        }
    }
    return S_OK;
}

void CBvxCAD::ShowWindow(bool show)
{
    if (window_.Handle()) ::ShowWindow(window_.Handle(), show ? SW_SHOWNA : SW_HIDE);
}

STDMETHODIMP CBvxCAD::DoVerb(LONG verb, LPMSG, IOleClientSite* site, LONG, HWND, LPCRECT position)
{
    switch (verb) {
    case OLEIVERB_PRIMARY:
    case OLEIVERB_UIACTIVATE: return InPlaceActivate(site, true, position);
    case OLEIVERB_SHOW:
    case OLEIVERB_OPEN: {
        HRESULT hr = InPlaceActivate(site, false, position);
        // The container brings the shown object into view.
        if (SUCCEEDED(hr) && site_) site_->ShowObject();
        return hr;
    }
    case OLEIVERB_INPLACEACTIVATE: return InPlaceActivate(site, false, position);
    case OLEIVERB_HIDE:
        UIDeactivate();
        ShowWindow(false);
        return S_OK;
    default:
        if (verb > 0) {
            // A verb we don't know does what the primary verb does.
            HRESULT hr = InPlaceActivate(site, true, position);
            return FAILED(hr) ? hr : OLEOBJ_S_INVALIDVERB;
        }
        return E_NOTIMPL;
    }
}

STDMETHODIMP CBvxCAD::Close(DWORD)
{
    Ref<IUnknown> alive = Ref<IUnknown>::Share(Identity());
    InPlaceDeactivate();
    if (adviseHolder_) adviseHolder_->SendOnClose();
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetWindow(HWND* out)
{
    if (!out) return E_POINTER;
    *out = window_.Handle();
    return *out ? S_OK : E_FAIL;
}

STDMETHODIMP CBvxCAD::ContextSensitiveHelp(BOOL) { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::InPlaceDeactivate()
{
    if (!inPlaceActive_) return S_OK;
    UIDeactivate();
    inPlaceActive_ = false;
    window_.Destroy();
    // Without a window the control tells the view's changes to the view sink.
    control_.View().Window = nullptr;
    Ref<IOleInPlaceSite> site = inPlaceSite_;
    inPlaceSite_ = {};
    frame_ = {};
    uiWindow_ = {};
    if (site) site->OnInPlaceDeactivate();
    return S_OK;
}

STDMETHODIMP CBvxCAD::UIDeactivate()
{
    if (!uiActive_) return S_OK;
    uiActive_ = false;
    if (uiWindow_) uiWindow_->SetActiveObject(nullptr, nullptr);
    if (frame_) frame_->SetActiveObject(nullptr, nullptr);
    if (inPlaceSite_) inPlaceSite_->OnUIDeactivate(FALSE);
    return S_OK;
}

STDMETHODIMP CBvxCAD::SetObjectRects(LPCRECT position, LPCRECT clip)
{
    if (!position) return E_POINTER;
    position_ = *position;
    const LONG width = position->right - position->left;
    const LONG height = position->bottom - position->top;
    const int32_t dpiX = control_.View().World.ScreenDpiX;
    const int32_t dpiY = control_.View().World.ScreenDpiY;
    extent_ = {ToHimetric(width, dpiX), ToHimetric(height, dpiY)};
    HWND handle = window_.Handle();
    if (!handle) return S_OK;
    SetWindowPos(handle, nullptr, position->left, position->top, width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    // Only what the clip rectangle leaves of the window shows.
    RECT visible{};
    if (clip && IntersectRect(&visible, position, clip) && !EqualRect(&visible, position)) {
        OffsetRect(&visible, -position->left, -position->top);
        SetWindowRgn(handle, CreateRectRgnIndirect(&visible), TRUE);
    } else {
        SetWindowRgn(handle, nullptr, TRUE);
    }
    return S_OK;
}

STDMETHODIMP CBvxCAD::ReactivateAndUndo() { return E_NOTIMPL; }

STDMETHODIMP CBvxCAD::OnWindowMessage(UINT msg, WPARAM wParam, LPARAM lParam, LRESULT* result)
{
    const int64_t answer = OnWindowMessage(uint32_t(msg), uint64_t(wParam), int64_t(lParam));
    if (result) *result = LRESULT(answer);
    return S_OK;
}

STDMETHODIMP CBvxCAD::GetDropTarget(IDropTarget** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    return E_NOTIMPL;
}

STDMETHODIMP CBvxCAD::TranslateAccelerator(LPMSG message)
{
    // Keys for our window are ours, so that a dialog-like container does not
    // take Delete or the arrows; Tab stays the container's, for the focus.
    if (!message || !window_.Handle() || message->hwnd != window_.Handle() || !IsKeyMessage(message->message) ||
        message->wParam == VK_TAB)
        return S_FALSE;
    TranslateMessage(message);
    DispatchMessageW(message);
    return S_OK;
}

STDMETHODIMP CBvxCAD::OnFrameWindowActivate(BOOL) { return S_OK; }

STDMETHODIMP CBvxCAD::OnDocWindowActivate(BOOL activate)
{
    if (activate && uiActive_ && frame_) frame_->SetActiveObject(this, nullptr);
    return S_OK;
}

STDMETHODIMP CBvxCAD::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) { return S_OK; }

STDMETHODIMP CBvxCAD::EnableModeless(BOOL) { return S_OK; }

void CBvxCAD::TellSiteFocus(bool focus)
{
    if (Ref<IOleControlSite> site = Ref<IOleControlSite>::Query(site_.get())) site->OnFocus(focus);
}

int64_t CBvxCAD::OnWindowMessage(uint32_t msg, uint64_t wParam, int64_t lParam)
{
    // A container may let go of the control from an event handler; the
    // control finishes the message first.
    Ref<IUnknown> alive = Ref<IUnknown>::Share(Identity());
    switch (msg) {
    case WM_MOUSEACTIVATE:
        if (!uiActive_) InPlaceActivate(nullptr, true, nullptr);
        break;
    case WM_SETFOCUS:
        if (!uiActive_ && inPlaceActive_) InPlaceActivate(nullptr, true, nullptr);
        TellSiteFocus(true);
        break;
    case WM_KILLFOCUS: TellSiteFocus(false); break;
    default: break;
    }
    // No C++ exception may cross into the system's message dispatch.
    try {
        return control_.WindowProc(msg, wParam, lParam);
    } catch (...) {
        return 0;
    }
}

void CBvxCAD::OnWindowPaint(DeviceContext& dc, const DeviceRect& client)
{
    try {
        control_.OnDraw(&window_, dc, client);
    } catch (...) {
        // Out of memory for the back buffer: the window keeps its old picture.
    }
}

} // namespace bvx::com
