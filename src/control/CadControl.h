// The host-neutral automation surface: every member of the host interface
// as a method, and Invoke, which reaches them by dispid or by name with
// automation values. Every host forwards to this class.
#pragma once

#include "CadView.h"
#include "MemberSpec.h"
#include "Variant.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace bvx {

// A member's answer when it is more than a value: another result code, or
// an output the member leaves unwritten.
template <typename T> struct Reply {
    HResult hr = hresult::Ok;
    std::optional<T> value;
    Reply(T v) : value(std::move(v)) {} // NOLINT: a plain value is the common case
    Reply(HResult code, std::optional<T> v = std::nullopt) : hr(code), value(std::move(v)) {}
};

class CadControl {
public:
    explicit CadControl(HostWindow* window = nullptr, EventSink* sink = nullptr);

    CadView& View() { return view_; }
    const CadView& View() const { return view_; }

    // Arguments in declaration order; for a put the value comes last.
    // Trailing optional arguments may be left off or passed as missing.
    HResult Invoke(int32_t dispid, members::Kind kind, std::span<const Variant> args, Variant* result);
    HResult Invoke(std::u16string_view name, members::Kind kind, std::span<const Variant> args, Variant* result);
    // Case-insensitive, as the platform's GetIDsOfNames.
    static std::optional<int32_t> DispidOfName(std::u16string_view name);
    static const members::MemberRow* FindRow(int32_t dispid, members::Kind kind);

    // The design-time gate: with no window, run time.
    bool UserMode() const;

    // ---- the members, one method per row of the table ----
    void Refresh();
    uint32_t GetBackColor();
    Reply<bool> PutBackColor(uint32_t color);

    double GetWorldLeft();
    void PutWorldLeft(double v);
    double GetWorldTop();
    void PutWorldTop(double v);
    double GetWorldRight();
    void PutWorldRight(double v);
    double GetWorldBottom();
    void PutWorldBottom(double v);
    void WorldSet(double left, double top, double right, double bottom);
    void WorldPan(double dx, double dy);
    bool GetWorldSquare();
    void PutWorldSquare(bool on);
    double GetAbsToWorldX(int32_t x);
    double GetAbsToWorldY(int32_t y);
    int32_t GetWorldToAbsX(double x);
    int32_t GetWorldToAbsY(double y);
    int16_t GetAngleMode();
    void PutAngleMode(int16_t v);
    int16_t GetWorldCoordPrecision();
    void PutWorldCoordPrecision(int16_t v);
    int16_t GetWorldAnglePrecision();
    void PutWorldAnglePrecision(int16_t v);

    int32_t DrawLine(double x1, double y1, double x2, double y2, int16_t layer);
    int32_t DrawRectangle(double x1, double y1, double x2, double y2, int16_t layer);

    std::u16string GetLayerName(int16_t layer);
    void PutLayerName(int16_t layer, std::u16string name);

private:
    CObjShape* Shape(int32_t number) const { return view_.Buf.FindShape(number); }
    int32_t DrawTwoPointShape(int16_t type, double x1, double y1, double x2, double y2, int16_t layer);

    CadView view_;
    uint32_t backColor_ = 0xFFFFFF;
};

} // namespace bvx
