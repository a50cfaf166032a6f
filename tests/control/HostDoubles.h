// Stand-ins for a host: a window that records what the view asks of it, and
// an event sink that records what fired.
#pragma once

#include "control/CadControl.h"
#include "control/EventSink.h"
#include "platform/HostWindow.h"
#include "platform/WindowMessages.h"
#include "platform/raster/RasterDeviceContext.h"

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

namespace bvx::testing {

class RecordingHostWindow : public HostWindow {
public:
    DeviceRect client{0, 0, 101, 101};
    std::vector<DeviceRect> invalidated; // the whole window records as the client rectangle
    std::vector<std::string> calls;      // caret, capture and pointer calls in order
    DevicePoint cursor{500, 400};
    bool capture = false;
    bool userMode = true;
    PointerImage pointer; // the image last shown

    void InvalidateRect(const DeviceRect* rect, bool) override { invalidated.push_back(rect ? *rect : client); }
    DeviceRect GetClientRect() const override { return client; }
    std::unique_ptr<DeviceContext> GetDC() override
    {
        return std::make_unique<RasterDeviceContext>(CreateBitmap(int32_t(client.Width()), int32_t(client.Height())));
    }
    void ReleaseDC(std::unique_ptr<DeviceContext>) override {}
    DevicePoint ClientToScreen(DevicePoint p) const override { return {p.x + 100, p.y + 100}; }
    DevicePoint ScreenToClient(DevicePoint p) const override { return {p.x - 100, p.y - 100}; }
    DevicePoint GetCursorPos() const override { return cursor; }
    void SetCursorPos(DevicePoint screen) override
    {
        cursor = screen;
        calls.push_back("SetCursorPos " + std::to_string(screen.x) + "," + std::to_string(screen.y));
    }
    void SetCapture() override
    {
        capture = true;
        calls.push_back("SetCapture");
    }
    void ReleaseCapture() override
    {
        capture = false;
        calls.push_back("ReleaseCapture");
    }
    bool HasCapture() const override { return capture; }
    void CreateCaret(int32_t w, int32_t h) override
    {
        calls.push_back("CreateCaret " + std::to_string(w) + "x" + std::to_string(h));
    }
    void SetCaretPos(DevicePoint p) override
    {
        calls.push_back("SetCaretPos " + std::to_string(p.x) + "," + std::to_string(p.y));
    }
    void ShowCaret() override { calls.push_back("ShowCaret"); }
    void HideCaret() override { calls.push_back("HideCaret"); }
    void DestroyCaret() override { calls.push_back("DestroyCaret"); }
    void SetPointerImage(const PointerImage& image) override
    {
        pointer = image;
        calls.push_back("SetPointerImage " + std::to_string(image.width) + "x" + std::to_string(image.height) +
                        " hot " + std::to_string(image.hotSpot.x) + "," + std::to_string(image.hotSpot.y));
    }
    void SetFocus() override { calls.push_back("SetFocus"); }
    std::optional<int32_t> TrackPopupMenu(const std::vector<PopupMenuItem>&, DevicePoint) override
    {
        return std::nullopt;
    }
    int32_t ShowMessage(const std::u16string&, const std::u16string&, uint32_t) override { return 1; }
    void PumpMessages() override {}
    int32_t ScreenDpiX() const override { return 96; }
    int32_t ScreenDpiY() const override { return 96; }
    bool UserMode() const override { return userMode; }
};

// Each event as its name and arguments separated by spaces.
class RecordingEventSink : public EventRecorder {
public:
    std::vector<std::string> events;

    void OnEvent(const members::EventRow& event, std::span<const double> args) override
    {
        std::ostringstream line;
        line << event.name;
        for (double a : args) line << ' ' << a;
        events.push_back(line.str());
    }
};

// A window whose tool menu answers as the user would, and which records the
// menu it showed and what reached the system's default handling.
class MenuWindow : public RecordingHostWindow {
public:
    std::optional<int32_t> answer; // none: the menu is dismissed
    std::vector<PopupMenuItem> shownMenu;
    DevicePoint menuAt{};
    std::vector<uint32_t> defaulted;

    std::optional<int32_t> TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint screen) override
    {
        shownMenu = items;
        menuAt = screen;
        return answer;
    }
    int64_t DefaultProcedure(uint32_t msg, uint64_t, int64_t) override
    {
        defaulted.push_back(msg);
        return 77;
    }
};

// A control in a 201 by 201 window, driven through its window procedure.
class ControlHost {
public:
    // Unpainted: the mouse is not ready yet. WindowFromPaint: the control is
    // made without a window and learns it from the first paint.
    enum class Start { Painted, WindowFromPaint, Unpainted };

    explicit ControlHost(EventSink* sink, Start start = Start::Painted)
        : control(start == Start::WindowFromPaint ? nullptr : &window, sink)
    {
        window.client = {0, 0, 201, 201};
        if (start != Start::Unpainted) Paint();
    }
    void Paint()
    {
        std::unique_ptr<DeviceContext> dc = window.GetDC();
        control.OnDraw(&window, *dc, window.GetClientRect());
    }
    DevicePoint At(double x, double y) const { return control.View().World.WorldToDevice({x, y}); }
    int64_t Send(uint32_t msg, uint64_t wParam, DevicePoint p)
    {
        return control.WindowProc(msg, wParam, MakeLParam(p.x, p.y));
    }
    void Click(DevicePoint p, uint32_t mods = 0)
    {
        Send(wm::LButtonDown, mk::LButton | mods, p);
        Send(wm::LButtonUp, mods, p);
    }
    void MoveAndClick(DevicePoint p)
    {
        Send(wm::MouseMove, 0, p);
        Click(p);
    }
    // Pressed at the first point, moved through the others, released at the last.
    void Drag(std::initializer_list<DevicePoint> path, uint32_t mods = 0)
    {
        Send(wm::LButtonDown, mk::LButton | mods, *path.begin());
        for (auto p = path.begin() + 1; p != path.end(); ++p) Send(wm::MouseMove, mk::LButton | mods, *p);
        Send(wm::LButtonUp, mods, *(path.end() - 1));
    }

    MenuWindow window;
    CadControl control;
};

} // namespace bvx::testing
