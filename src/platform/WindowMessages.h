// Window messages as every host hands them to the control: the platform's
// own numbers and packing, so that one routing serves a Win32 window, the
// command-line host and a web page alike. Names are ours; the platform's
// headers define theirs as macros.
#pragma once

#include "Geometry.h"

#include <cstdint>

namespace bvx {

namespace wm {
constexpr uint32_t Paint = 0x000F;
constexpr uint32_t SetFocus = 0x0007;
constexpr uint32_t KillFocus = 0x0008;
constexpr uint32_t EraseBackground = 0x0014;
constexpr uint32_t SetCursor = 0x0020;
constexpr uint32_t MouseActivate = 0x0021;
constexpr uint32_t KeyDown = 0x0100;
constexpr uint32_t KeyUp = 0x0101;
constexpr uint32_t Char = 0x0102;
constexpr uint32_t Command = 0x0111;
constexpr uint32_t HScroll = 0x0114;
constexpr uint32_t VScroll = 0x0115;
constexpr uint32_t MenuSelect = 0x011F;
constexpr uint32_t MouseMove = 0x0200;
constexpr uint32_t LButtonDown = 0x0201;
constexpr uint32_t LButtonUp = 0x0202;
constexpr uint32_t LButtonDblClk = 0x0203;
constexpr uint32_t RButtonDown = 0x0204;
constexpr uint32_t RButtonUp = 0x0205;
constexpr uint32_t Reflect = 0x2000; // a child's notice sent back to it
constexpr int32_t HitClient = 1;     // WM_SETCURSOR's hit-test code for the client area
} // namespace wm

// The flags of a mouse message's wParam.
namespace mk {
constexpr uint32_t LButton = 0x01;
constexpr uint32_t RButton = 0x02;
constexpr uint32_t Shift = 0x04;
constexpr uint32_t Control = 0x08;
constexpr uint32_t MButton = 0x10;
} // namespace mk

namespace vk {
constexpr uint32_t Back = 0x08;
constexpr uint32_t Control = 0x11;
constexpr uint32_t Delete = 0x2E;
} // namespace vk

// The point of a mouse message: the signed 16-bit halves of lParam.
constexpr DevicePoint PointFromLParam(int64_t lParam)
{
    return {int16_t(uint16_t(uint64_t(lParam) & 0xFFFF)), int16_t(uint16_t((uint64_t(lParam) >> 16) & 0xFFFF))};
}

constexpr int64_t MakeLParam(int32_t low, int32_t high)
{
    return int64_t((uint32_t(uint16_t(low)) | (uint32_t(uint16_t(high)) << 16)));
}

// The messages a mouse sends, which the system precedes by WM_SETCURSOR.
constexpr bool IsMouseMessage(uint32_t msg) { return msg >= wm::MouseMove && msg <= wm::RButtonUp; }

} // namespace bvx
