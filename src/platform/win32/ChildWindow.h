// The control's window on Windows: a real child window whose messages go to
// the object living in it, as the command-line host's window does. What the
// control paints lands in a raster surface of the window's size, the same
// device every host paints with, and the window shows a copy of it.
#pragma once

#include "SurfaceCopy.h"

#include "platform/HostWindow.h"

#include <windows.h>

namespace bvx::win32 {

// What the window asks of the object living in it.
class WindowOwner {
public:
    virtual ~WindowOwner() = default;
    // Every message but WM_PAINT, numbered and packed as the platform does.
    virtual int64_t OnWindowMessage(uint32_t msg, uint64_t wParam, int64_t lParam) = 0;
    // A device context of the window's surface, clipped to what needs
    // painting, and the client rectangle.
    virtual void OnWindowPaint(DeviceContext& dc, const DeviceRect& client) = 0;
    virtual bool WindowUserMode() const = 0;
};

class ChildWindow final : public HostWindow {
public:
    // WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN
    static constexpr DWORD kStyle = 0x56000000;

    explicit ChildWindow(WindowOwner& owner) : owner_(owner) {}
    ~ChildWindow() override;
    ChildWindow(const ChildWindow&) = delete;
    ChildWindow& operator=(const ChildWindow&) = delete;

    // Makes the window; false if the platform refused. A window made earlier
    // is destroyed first.
    bool Create(HWND parent, const RECT& position);
    // The object outlives its window: calls from a control that is still
    // finishing a message after its container let go of it find no window
    // and do nothing.
    void Destroy();
    HWND Handle() const { return handle_; }
    // Before the module that registered the window class goes away.
    static void UnregisterWindowClass();

    void InvalidateRect(const DeviceRect* rect, bool erase) override;
    DeviceRect GetClientRect() const override;
    // A context of the surface; handing it back shows the surface.
    std::unique_ptr<DeviceContext> GetDC() override;
    void ReleaseDC(std::unique_ptr<DeviceContext> dc) override;
    DevicePoint ClientToScreen(DevicePoint p) const override;
    DevicePoint ScreenToClient(DevicePoint p) const override;
    DevicePoint GetCursorPos() const override;
    void SetCursorPos(DevicePoint screen) override;
    void SetCapture() override;
    void ReleaseCapture() override;
    bool HasCapture() const override;
    void CreateCaret(int32_t width, int32_t height) override;
    void SetCaretPos(DevicePoint p) override;
    void ShowCaret() override;
    void HideCaret() override;
    void DestroyCaret() override;
    void SetPointerImage(const PointerImage& image) override;
    void SetFocus() override;
    std::optional<int32_t> TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint screen) override;
    int32_t ShowMessage(const std::u16string& text, const std::u16string& caption, uint32_t flags) override;
    void PumpMessages() override;
    int64_t DefaultProcedure(uint32_t msg, uint64_t wParam, int64_t lParam) override;
    int32_t ScreenDpiX() const override;
    int32_t ScreenDpiY() const override;
    bool UserMode() const override { return owner_.WindowUserMode(); }

private:
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    void Paint();
    // The surface follows the client size; what it showed stays in place.
    void FitSurface();
    // The surface's area shown on the window.
    void Show(const DeviceRect& area);

    WindowOwner& owner_;
    HWND handle_ = nullptr;
    BitmapHandle surface_;
    SurfaceCopy copy_;
    PointerImage pointer_;
    HCURSOR cursor_ = nullptr;
};

} // namespace bvx::win32
