// The window procedure as a host drives it: what it answers, what it hands
// back to the system, the tool menu, and two controls in one process.
#include "HostDoubles.h"
#include "control/CadControl.h"
#include "platform/WindowMessages.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

using testing::RecordingEventSink;
using testing::RecordingHostWindow;

// A window that also records the menus it shows and what reaches the
// system's default handling.
struct MenuWindow : RecordingHostWindow {
    std::vector<PopupMenuItem> shownMenu;
    DevicePoint menuAt{};
    std::optional<int32_t> answer;
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

struct Host {
    MenuWindow window;
    RecordingEventSink sink;
    CadControl control{nullptr, &sink};

    Host()
    {
        window.client = {0, 0, 201, 201};
        auto surface = window.GetDC();
        control.OnDraw(&window, *surface, window.client); // the first paint readies the mouse
    }
    int64_t Mouse(uint32_t msg, int32_t x, int32_t y, uint64_t flags = 0)
    {
        return control.WindowProc(msg, flags, MakeLParam(x, y));
    }
    void Click(int32_t x, int32_t y)
    {
        Mouse(wm::LButtonDown, x, y, mk::LButton);
        Mouse(wm::LButtonUp, x, y);
    }
};

TEST(WindowProc, AnswersAsTheSystemExpectsAndHandsBackTheRest)
{
    Host host;
    struct Row {
        uint32_t msg;
        int64_t result;
        std::vector<uint32_t> defaulted; // what reached the system's handling
    };
    const Row rows[] = {
        {wm::Paint, 0, {}},
        {wm::EraseBackground, 0, {}},
        {wm::HScroll, 0, {}}, // no scroll bars: eaten, never passed on
        {wm::VScroll, 0, {}},
        {wm::MenuSelect, 1, {}},
        {wm::Command, 1, {}},
        {wm::SetCursor, 0, {}},
        {wm::MouseActivate, 77, {wm::MouseActivate}},
        {0x0400, 77, {0x0400}},                       // a message nobody here knows
        {wm::Reflect + 0x2B, 77, {0x2B}},             // a reflected notice goes back unreflected
        {wm::Reflect + wm::Command, 77, {wm::Command}},
        {wm::Reflect + 0x210, 77, {0x210}},
        {wm::Reflect + 0x30, 77, {wm::Reflect + 0x30}}, // not a reflected notice: as it is
    };
    for (const Row& row : rows) {
        host.window.defaulted.clear();
        EXPECT_EQ(host.control.WindowProc(row.msg, 0, 0), row.result) << std::hex << row.msg;
        EXPECT_EQ(host.window.defaulted, row.defaulted) << std::hex << row.msg;
    }
}

TEST(WindowProc, ToolMenuOffersTheToolsInOrderAndTellsNothingFromSelect)
{
    Host host;
    host.control.PutViewSnapToShape(0);
    host.control.PutViewSnapToGrid(0);
    host.control.PutViewMouseTool(bvxPan);
    host.window.answer = bvxSelect; // id 0 is a real choice
    host.Mouse(wm::RButtonDown, 30, 40, mk::RButton);
    EXPECT_EQ(host.control.GetViewMouseTool().value, bvxSelect);
    EXPECT_EQ(host.window.menuAt, (DevicePoint{130, 140})); // the double's window stands at 100, 100

    std::vector<std::u16string> texts;
    std::vector<int32_t> ids;
    for (const PopupMenuItem& item : host.window.shownMenu) {
        texts.push_back(item.separator ? u"-" : item.text);
        ids.push_back(item.command);
    }
    const std::vector<std::u16string> expectedTexts = {
        u"Net Zoom", u"Pan",     u"Net Select",  u"Select",  u"-",        u"Arc",
        u"Arc (Three-Point)",    u"Circle",      u"Chord",   u"Ellipse",  u"Ellipse (Two-Point)",
        u"Freehand", u"Line",    u"Picture",     u"Pie Slice", u"Point",  u"Polygon",
        u"Polyline", u"Rectangle", u"Rounded Rectangle",     u"Spline",   u"Closed Spline",
        u"Text"};
    EXPECT_EQ(texts, expectedTexts);
    EXPECT_EQ(ids, (std::vector<int32_t>{-3, -2, -1, 0, 99, 13, 10, 19, 15, 20, 4, 7, 3, 12, 14, 17, 6, 5, 1, 2, 8,
                                         9, 11}));

    // Dismissed: the tool stays, whatever it is.
    host.control.PutViewMouseTool(bvxRectangle);
    host.window.answer.reset();
    host.Mouse(wm::RButtonDown, 30, 40, mk::RButton);
    EXPECT_EQ(host.control.GetViewMouseTool().value, bvxRectangle);
    // A negative id arrives in sixteen bits and still means itself.
    host.window.answer = bvxNetZoom;
    host.Mouse(wm::RButtonDown, 30, 40, mk::RButton);
    EXPECT_EQ(host.control.GetViewMouseTool().value, bvxNetZoom);
    host.control.WindowProc(wm::Command, 0xFFFE, 0);
    EXPECT_EQ(host.control.GetViewMouseTool().value, bvxPan);
}

TEST(WindowProc, TwoControlsDrawAtOnceWithoutDisturbingEachOther)
{
    Host first, second;
    first.control.PutViewMouseTool(bvxRectangle);
    second.control.PutViewMouseTool(bvxCircle);
    first.Click(10, 10);
    second.Click(100, 100);
    first.Mouse(wm::MouseMove, 50, 40);
    second.Mouse(wm::MouseMove, 130, 100);
    first.Click(50, 40);
    second.Click(130, 100);
    EXPECT_EQ(first.control.GetShapeType(1), bvxRectangle);
    EXPECT_EQ(first.control.ShapePointGetX(1, 1), first.control.GetAbsToWorldX(50));
    EXPECT_EQ(second.control.GetShapeType(1), bvxCircle);
    EXPECT_NEAR(second.control.ShapePointGetX(1, 1), second.control.GetAbsToWorldX(130) - second.control.GetAbsToWorldX(100),
                1e-9);
    for (Host* host : {&first, &second}) {
        EXPECT_EQ(host->control.GetCadShapeCount(), 1);
        EXPECT_FALSE(host->window.capture);
        EXPECT_EQ(host->control.GetViewMouseTool().value, bvxSelect);
    }
}

TEST(WindowProc, MouseWaitsForTheFirstPaint)
{
    MenuWindow window;
    RecordingEventSink sink;
    CadControl control(&window, &sink);
    control.PutViewMouseTool(bvxRectangle);
    control.WindowProc(wm::LButtonDown, mk::LButton, MakeLParam(5, 5));
    control.WindowProc(wm::RButtonDown, mk::RButton, MakeLParam(5, 5));
    control.WindowProc(wm::MouseMove, 0, MakeLParam(9, 9));
    EXPECT_TRUE(sink.events.empty());
    EXPECT_EQ(control.GetCadShapeCount(), 0);
    EXPECT_FALSE(window.capture);
}

} // namespace
} // namespace bvx
