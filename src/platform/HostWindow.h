// What the core asks of the window it lives in. Every host provides one; a
// view with none runs headless and its redraw requests go nowhere.
#pragma once

#include "DeviceContext.h"
#include "Geometry.h"
#include "PointerImage.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bvx {

struct PopupMenuItem {
    int32_t command = 0;
    std::u16string text;
    bool separator = false; // a line; never chosen
};

class HostWindow {
public:
    virtual ~HostWindow() = default;

    virtual void InvalidateRect(const DeviceRect* rect, bool erase) = 0; // null: the whole client area
    virtual DeviceRect GetClientRect() const = 0;
    // A device context of the window, handed back with ReleaseDC.
    virtual std::unique_ptr<DeviceContext> GetDC() = 0;
    virtual void ReleaseDC(std::unique_ptr<DeviceContext> dc) = 0;

    virtual DevicePoint ClientToScreen(DevicePoint p) const = 0;
    virtual DevicePoint ScreenToClient(DevicePoint p) const = 0;
    virtual DevicePoint GetCursorPos() const = 0; // screen coordinates
    virtual void SetCursorPos(DevicePoint screen) = 0;

    virtual void SetCapture() = 0;
    virtual void ReleaseCapture() = 0;
    virtual bool HasCapture() const = 0;

    virtual void CreateCaret(int32_t width, int32_t height) = 0;
    virtual void SetCaretPos(DevicePoint p) = 0;
    virtual void ShowCaret() = 0;
    virtual void HideCaret() = 0;
    virtual void DestroyCaret() = 0;

    // Shows the image as the mouse pointer over the window, its hot spot at
    // the mouse position; the window keeps its own copy.
    virtual void SetPointerImage(const PointerImage& image) = 0;
    virtual void SetFocus() = 0;

    // Shows a menu at a screen point and waits; the chosen command, or
    // nothing when the user dismissed it (a command may well be 0).
    virtual std::optional<int32_t> TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint screen) = 0;
    // A message box; not named MessageBox, which the platform headers turn into a macro.
    virtual int32_t ShowMessage(const std::u16string& text, const std::u16string& caption, uint32_t flags) = 0;
    // Dispatches every message waiting for the window, so that a long
    // operation can see a key or a cancel, and a key its character.
    virtual void PumpMessages() = 0;
    // What the system does with a message the control leaves alone.
    virtual int64_t DefaultProcedure(uint32_t, uint64_t, int64_t) { return 0; }

    virtual int32_t ScreenDpiX() const = 0;
    virtual int32_t ScreenDpiY() const = 0;
    // False while the container is in design mode.
    virtual bool UserMode() const = 0;
};

} // namespace bvx
