// The command-line host's window: a persistent surface the control paints
// into, the part of it that is invalid, and the pointer, capture, caret and
// focus state a real window has. It never shows anything on a screen; a
// script saves what it holds.
#pragma once

#include "platform/HostWindow.h"
#include "platform/PointerImage.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bvx::script {

// A surface as a 24-bit BMP file; false if it cannot be written.
bool WriteBitmapFile(const Bitmap& bitmap, const std::string& path);

class CliWindow : public HostWindow {
public:
    // A window of that client size; a second call resizes it as a real
    // window would, invalidating all of it.
    void Resize(int32_t width, int32_t height);
    bool Exists() const { return surface_ != nullptr; }
    const Bitmap* Surface() const { return surface_.get(); }
    bool HasInvalidArea() const { return !invalid_.empty(); }
    // A device context of the surface clipped to the invalid area, which
    // becomes valid, as the platform's BeginPaint does; null when nothing is
    // invalid.
    std::unique_ptr<DeviceContext> BeginPaint();

    // Where the window's messages go: the control's window procedure.
    using Procedure = std::function<int64_t(uint32_t msg, uint64_t wParam, int64_t lParam)>;
    void SetProcedure(Procedure procedure) { procedure_ = std::move(procedure); }
    // Sends a message now and returns the procedure's result. A mouse
    // message first puts the cursor on its point and asks for the pointer
    // with WM_SETCURSOR, as the system does.
    int64_t Send(uint32_t msg, uint64_t wParam, int64_t lParam);
    // Queues a message for the next pump, as the platform's PostMessage.
    void Post(uint32_t msg, uint64_t wParam, int64_t lParam) { queue_.push_back({msg, wParam, lParam}); }
    // The answer the next menu gives: a command, or nothing chosen.
    void SetMenuAnswer(std::optional<int32_t> answer) { menuAnswer_ = answer; }
    // How many menus the window has shown.
    int32_t MenusShown() const { return menusShown_; }

    // What a caller may look at.
    DevicePoint CaretPos() const { return caretPos_; }
    bool CaretShown() const { return caretShown_; }
    bool HasFocus() const { return focus_; }
    const PointerImage& Pointer() const { return pointer_; }

    void InvalidateRect(const DeviceRect* rect, bool erase) override;
    DeviceRect GetClientRect() const override;
    std::unique_ptr<DeviceContext> GetDC() override;
    void ReleaseDC(std::unique_ptr<DeviceContext>) override {}
    // The window stands at the screen's origin.
    DevicePoint ClientToScreen(DevicePoint p) const override { return p; }
    DevicePoint ScreenToClient(DevicePoint p) const override { return p; }
    DevicePoint GetCursorPos() const override { return cursor_; }
    // Moving the cursor makes the system send a mouse move to the window.
    void SetCursorPos(DevicePoint screen) override;
    void SetCapture() override { capture_ = true; }
    void ReleaseCapture() override { capture_ = false; }
    bool HasCapture() const override { return capture_; }
    void CreateCaret(int32_t, int32_t) override { caretShown_ = false; }
    void SetCaretPos(DevicePoint p) override { caretPos_ = p; }
    void ShowCaret() override { caretShown_ = true; }
    void HideCaret() override { caretShown_ = false; }
    void DestroyCaret() override { caretShown_ = false; }
    void SetPointerImage(const PointerImage& image) override { pointer_ = image; }
    void SetFocus() override { focus_ = true; }
    // One menu takes the answer given; a command no item carries is nothing chosen.
    std::optional<int32_t> TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint) override;
    int32_t ShowMessage(const std::u16string&, const std::u16string&, uint32_t) override { return kIdOk; }
    void PumpMessages() override;
    int32_t ScreenDpiX() const override { return kDpi; }
    int32_t ScreenDpiY() const override { return kDpi; }
    bool UserMode() const override { return true; }

private:
    static constexpr int32_t kIdOk = 1;
    static constexpr int32_t kDpi = 96;

    BitmapHandle surface_;
    std::vector<DeviceRect> invalid_; // may overlap; their union is invalid
    DevicePoint cursor_{};
    DevicePoint caretPos_{};
    bool capture_ = false;
    bool caretShown_ = false;
    bool focus_ = false;
    PointerImage pointer_;
    struct Message {
        uint32_t msg;
        uint64_t wParam;
        int64_t lParam;
    };
    std::deque<Message> queue_;
    Procedure procedure_;
    std::optional<int32_t> menuAnswer_;
    uint64_t heldKeys_ = 0; // the button and key flags of the last mouse message
    int32_t menusShown_ = 0;
};

} // namespace bvx::script
