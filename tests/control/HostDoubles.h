// Stand-ins for a host: a window that records what the view asks of it, and
// an event sink that records what fired.
#pragma once

#include "control/EventSink.h"
#include "platform/HostWindow.h"
#include "platform/raster/RasterDeviceContext.h"

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
    void SetPointer(int32_t id) override { calls.push_back("SetPointer " + std::to_string(id)); }
    void SetFocus() override { calls.push_back("SetFocus"); }
    uint32_t TrackPopupMenu(const std::vector<PopupMenuItem>&, DevicePoint) override { return 0; }
    int32_t MessageBox(const std::u16string&, const std::u16string&, uint32_t) override { return 1; }
    void PumpMessages() override {}
    int32_t ScreenDpiX() const override { return 96; }
    int32_t ScreenDpiY() const override { return 96; }
    bool UserMode() const override { return userMode; }
};

class RecordingEventSink : public EventSink {
public:
    std::vector<std::string> events;

    template <typename... T> void Record(const char* name, T... args)
    {
        std::ostringstream line;
        line << name;
        ((line << ' ' << args), ...);
        events.push_back(line.str());
    }

    void WorldMouseDown(int16_t b, int16_t s, int16_t a, double x, double y) override { Record("WorldMouseDown", b, s, a, x, y); }
    void WorldMouseMove(int16_t s, double x, double y, double m, double a) override { Record("WorldMouseMove", s, x, y, m, a); }
    void WorldMouseUp(int16_t b, int16_t s, double x, double y) override { Record("WorldMouseUp", b, s, x, y); }
    void WorldMouseSnap(int16_t a, double x, double y) override { Record("WorldMouseSnap", a, x, y); }
    void WorldRectPos(double a, double b, double c, double d) override { Record("WorldRectPos", a, b, c, d); }
    void PictureEntry(int32_t n) override { Record("PictureEntry", n); }
    void DrawBegin(int16_t t, double x, double y) override { Record("DrawBegin", t, x, y); }
    void DrawEnd(int16_t t, double x, double y) override { Record("DrawEnd", t, x, y); }
    void FontOpened(int16_t h) override { Record("FontOpened", h); }
    void ShapeNumberAdded(int16_t t, int32_t n) override { Record("ShapeNumberAdded", t, n); }
    void ShapeNumberSelected(int16_t t, int32_t n) override { Record("ShapeNumberSelected", t, n); }
    void DrawRadius(double x, double y) override { Record("DrawRadius", x, y); }
    void ShapeNumberDeleted(int32_t n) override { Record("ShapeNumberDeleted", n); }
    void Click(double x, double y) override { Record("Click", x, y); }
    void DblClick(double x, double y) override { Record("DblClick", x, y); }
};

} // namespace bvx::testing
