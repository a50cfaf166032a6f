#include "ChildWindow.h"

#include "platform/raster/RasterDeviceContext.h"

#include <algorithm>

namespace bvx::win32 {

namespace {

constexpr wchar_t kClassName[] = L"BvxCADWindow";
// Menu item identifiers are the commands moved past 0, which the platform
// returns for a dismissed menu, and past the tools' negative numbers.
constexpr int32_t kMenuIdBase = 0x1000;

HINSTANCE OwnModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&OwnModule), &module);
    return module;
}

const wchar_t* Wide(const std::u16string& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

RECT ToRect(const DeviceRect& r) { return {r.left, r.top, r.right, r.bottom}; }

// A COLORREF as a 32-bit DIB holds it, blue in the low byte.
uint32_t DibPixel(ColorRef c) { return ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF); }

HCURSOR MakeCursor(const PointerImage& image)
{
    if (image.width <= 0 || image.height <= 0) return nullptr;
    const size_t pixels = size_t(image.width) * size_t(image.height);
    if (image.andMask.size() < pixels || image.xorColors.size() < pixels) return nullptr;
    // The monochrome mask's rows are padded to 16 bits, most significant bit first.
    const size_t stride = (size_t(image.width) + 15) / 16 * 2;
    std::vector<uint8_t> mask(stride * size_t(image.height), 0);
    std::vector<uint32_t> colors(pixels);
    for (int32_t y = 0; y < image.height; ++y) {
        for (int32_t x = 0; x < image.width; ++x) {
            const size_t i = size_t(y) * size_t(image.width) + size_t(x);
            if (image.andMask[i]) mask[size_t(y) * stride + size_t(x) / 8] |= uint8_t(0x80 >> (x % 8));
            colors[i] = DibPixel(image.xorColors[i]);
        }
    }
    HBITMAP maskBitmap = ::CreateBitmap(image.width, image.height, 1, 1, mask.data());
    HBITMAP colorBitmap = ::CreateBitmap(image.width, image.height, 1, 32, colors.data());
    ICONINFO info{FALSE, DWORD(image.hotSpot.x), DWORD(image.hotSpot.y), maskBitmap, colorBitmap};
    HCURSOR cursor = maskBitmap && colorBitmap ? CreateIconIndirect(&info) : nullptr;
    if (maskBitmap) DeleteObject(maskBitmap);
    if (colorBitmap) DeleteObject(colorBitmap);
    return cursor;
}

int32_t ScreenDpi(int index)
{
    HDC screen = ::GetDC(nullptr);
    const int32_t dpi = screen ? GetDeviceCaps(screen, index) : 96;
    if (screen) ::ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : 96;
}

} // namespace

ChildWindow::~ChildWindow()
{
    Destroy();
    if (cursor_) DestroyCursor(cursor_);
}

void ChildWindow::UnregisterWindowClass() { ::UnregisterClassW(kClassName, OwnModule()); }

bool ChildWindow::Create(HWND parent, const RECT& position)
{
    Destroy();
    HINSTANCE module = OwnModule();
    WNDCLASSEXW existing{};
    existing.cbSize = sizeof(WNDCLASSEXW);
    if (!GetClassInfoExW(module, kClassName, &existing)) {
        // Double clicks are part of the control's input; the paint covers
        // every pixel, so there is no background brush.
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof(WNDCLASSEXW);
        windowClass.style = CS_DBLCLKS;
        windowClass.lpfnWndProc = Procedure;
        windowClass.hInstance = module;
        windowClass.lpszClassName = kClassName;
        if (!RegisterClassExW(&windowClass)) return false;
    }
    handle_ = CreateWindowExW(0, kClassName, L"", kStyle, position.left, position.top, position.right - position.left,
                              position.bottom - position.top, parent, nullptr, module, this);
    return handle_ != nullptr;
}

void ChildWindow::Destroy()
{
    if (!handle_) return;
    HWND handle = handle_;
    handle_ = nullptr;
    // No message of the dying window reaches the owner.
    SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
    DestroyWindow(handle);
}

LRESULT CALLBACK ChildWindow::Procedure(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE) {
        auto* self = static_cast<ChildWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
        self->handle_ = hwnd;
    }
    auto* self = reinterpret_cast<ChildWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self) return DefWindowProcW(hwnd, msg, wParam, lParam);
    switch (msg) {
    case WM_PAINT: self->Paint(); return 0;
    case WM_SIZE: self->FitSurface(); break;
    case WM_NCDESTROY:
        // Destroyed with its parent, not by us.
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
        self->handle_ = nullptr;
        return DefWindowProcW(hwnd, msg, wParam, lParam);
    default: break;
    }
    // The owner may let go of this window while it handles the message:
    // nothing of `self` is touched after the call.
    return LRESULT(self->owner_.OnWindowMessage(msg, uint64_t(wParam), int64_t(lParam)));
}

void ChildWindow::FitSurface()
{
    const DeviceRect client = GetClientRect();
    const int32_t width = std::max<int32_t>(int32_t(client.Width()), 1);
    const int32_t height = std::max<int32_t>(int32_t(client.Height()), 1);
    if (surface_ && surface_->Width() == width && surface_->Height() == height) return;
    BitmapHandle resized = ResizedSurface(surface_.get(), width, height);
    if (!resized) return;
    surface_ = std::move(resized);
}

void ChildWindow::Paint()
{
    PAINTSTRUCT paint{};
    HDC dc = BeginPaint(handle_, &paint);
    if (!dc) return;
    FitSurface();
    const DeviceRect area{paint.rcPaint.left, paint.rcPaint.top, paint.rcPaint.right, paint.rcPaint.bottom};
    if (surface_ && !area.IsEmpty()) {
        RasterDeviceContext surfaceDc(surface_, ScreenDpiX(), ScreenDpiY());
        surfaceDc.SelectClipRects(std::span(&area, 1));
        owner_.OnWindowPaint(surfaceDc, GetClientRect());
        copy_.Copy(dc, *surface_, area, {area.left, area.top});
    }
    EndPaint(handle_, &paint);
}

void ChildWindow::Show(const DeviceRect& area)
{
    if (!handle_ || !surface_) return;
    HDC dc = ::GetDC(handle_);
    if (!dc) return;
    // The system caret is inverted on the screen, not on the surface.
    const bool caretHidden = ::HideCaret(handle_);
    copy_.Copy(dc, *surface_, area, {area.left, area.top});
    if (caretHidden) ::ShowCaret(handle_);
    ::ReleaseDC(handle_, dc);
}

void ChildWindow::InvalidateRect(const DeviceRect* rect, bool erase)
{
    if (!handle_) return;
    if (rect) {
        const RECT r = ToRect(rect->Normalized());
        ::InvalidateRect(handle_, &r, erase);
    } else {
        ::InvalidateRect(handle_, nullptr, erase);
    }
}

DeviceRect ChildWindow::GetClientRect() const
{
    RECT r{};
    if (handle_) ::GetClientRect(handle_, &r);
    return {r.left, r.top, r.right, r.bottom};
}

std::unique_ptr<DeviceContext> ChildWindow::GetDC()
{
    if (!handle_) return nullptr;
    FitSurface();
    if (!surface_) return nullptr;
    return std::make_unique<RasterDeviceContext>(surface_, ScreenDpiX(), ScreenDpiY());
}

void ChildWindow::ReleaseDC(std::unique_ptr<DeviceContext> dc)
{
    if (!dc) return;
    dc.reset();
    Show(GetClientRect());
}

DevicePoint ChildWindow::ClientToScreen(DevicePoint p) const
{
    POINT point{p.x, p.y};
    if (handle_) ::ClientToScreen(handle_, &point);
    return {point.x, point.y};
}

DevicePoint ChildWindow::ScreenToClient(DevicePoint p) const
{
    POINT point{p.x, p.y};
    if (handle_) ::ScreenToClient(handle_, &point);
    return {point.x, point.y};
}

DevicePoint ChildWindow::GetCursorPos() const
{
    POINT point{};
    ::GetCursorPos(&point);
    return {point.x, point.y};
}

void ChildWindow::SetCursorPos(DevicePoint screen) { ::SetCursorPos(screen.x, screen.y); }

void ChildWindow::SetCapture()
{
    if (handle_) ::SetCapture(handle_);
}

void ChildWindow::ReleaseCapture()
{
    if (HasCapture()) ::ReleaseCapture();
}

bool ChildWindow::HasCapture() const { return handle_ && ::GetCapture() == handle_; }

void ChildWindow::CreateCaret(int32_t width, int32_t height)
{
    if (handle_) ::CreateCaret(handle_, nullptr, width, height);
}

void ChildWindow::SetCaretPos(DevicePoint p) { ::SetCaretPos(p.x, p.y); }

void ChildWindow::ShowCaret()
{
    if (handle_) ::ShowCaret(handle_);
}

void ChildWindow::HideCaret()
{
    if (handle_) ::HideCaret(handle_);
}

void ChildWindow::DestroyCaret() { ::DestroyCaret(); }

void ChildWindow::SetPointerImage(const PointerImage& image)
{
    if (!(image == pointer_) || !cursor_) {
        HCURSOR made = MakeCursor(image);
        if (cursor_) DestroyCursor(cursor_);
        cursor_ = made;
        pointer_ = image;
    }
    ::SetCursor(cursor_ ? cursor_ : LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)));
}

void ChildWindow::SetFocus()
{
    if (handle_) ::SetFocus(handle_);
}

std::optional<int32_t> ChildWindow::TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint screen)
{
    if (!handle_) return std::nullopt;
    HMENU menu = CreatePopupMenu();
    if (!menu) return std::nullopt;
    for (const PopupMenuItem& item : items) {
        if (item.separator)
            AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
        else
            AppendMenuW(menu, MF_STRING, UINT_PTR(item.command + kMenuIdBase), Wide(item.text));
    }
    const int chosen = ::TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD | TPM_NONOTIFY,
                                        screen.x, screen.y, 0, handle_, nullptr);
    DestroyMenu(menu);
    if (chosen == 0) return std::nullopt;
    return chosen - kMenuIdBase;
}

int32_t ChildWindow::ShowMessage(const std::u16string& text, const std::u16string& caption, uint32_t flags)
{
    return MessageBoxW(handle_, Wide(text), Wide(caption), flags);
}

void ChildWindow::PumpMessages()
{
    MSG message{};
    // A message may destroy the window; the loop must not then take the
    // whole thread's queue.
    while (handle_ && PeekMessageW(&message, handle_, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

int64_t ChildWindow::DefaultProcedure(uint32_t msg, uint64_t wParam, int64_t lParam)
{
    return handle_ ? int64_t(DefWindowProcW(handle_, msg, WPARAM(wParam), LPARAM(lParam))) : 0;
}

int32_t ChildWindow::ScreenDpiX() const { return ScreenDpi(LOGPIXELSX); }
int32_t ChildWindow::ScreenDpiY() const { return ScreenDpi(LOGPIXELSY); }

} // namespace bvx::win32
