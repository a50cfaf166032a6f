// The window procedure as a host drives it: what it answers, what it hands
// back to the system, the tool menu, and two controls in one process.
#include "HostDoubles.h"
#include "platform/DataRows.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

// Events recorded by a sink of its own; the window comes with the first paint.
struct Host : testing::RecordingEventSink, testing::ControlHost {
    Host(Start start = Start::WindowFromPaint) : ControlHost(this, start) {}
    using ControlHost::Click; // not the sink's event
};

TEST(WindowProc, AnswersAsTheSystemExpectsAndHandsBackTheRest)
{
    Host host;
    const auto rows = test::DataRows("window_answers.txt");
    EXPECT_EQ(rows.size(), 13u);
    for (const auto& row : rows) {
        host.window.defaulted.clear();
        const uint32_t msg = uint32_t(std::stoul(row[0], nullptr, 16));
        EXPECT_EQ(host.control.WindowProc(msg, 0, 0), std::stoll(row[1])) << test::Joined(row);
        std::vector<uint32_t> defaulted;
        if (row[2] != "-") defaulted.push_back(uint32_t(std::stoul(row[2], nullptr, 16)));
        EXPECT_EQ(host.window.defaulted, defaulted) << test::Joined(row);
    }
}

TEST(WindowProc, ToolMenuOffersTheToolsInOrderAndTellsNothingFromSelect)
{
    Host host;
    host.control.PutViewSnapToShape(0);
    host.control.PutViewSnapToGrid(0);
    host.control.PutViewMouseTool(bvxPan);
    host.window.answer = bvxSelect; // id 0 is a real choice
    host.Send(wm::RButtonDown, mk::RButton, {30, 40});
    EXPECT_EQ(host.control.GetViewMouseTool().value, bvxSelect);
    EXPECT_EQ(host.window.menuAt, (DevicePoint{130, 140})); // the double's window stands at 100, 100

    std::u16string texts;
    std::vector<int32_t> ids;
    for (const PopupMenuItem& item : host.window.shownMenu) {
        texts += (texts.empty() ? u"" : u"|") + (item.separator ? u"-" : item.text);
        ids.push_back(item.command);
    }
    EXPECT_EQ(texts, u"Net Zoom|Pan|Net Select|Select|-|Arc|Arc (Three-Point)|Circle|Chord|Ellipse|Ellipse (Two-Point)|"
                     u"Freehand|Line|Picture|Pie Slice|Point|Polygon|Polyline|Rectangle|Rounded Rectangle|Spline|"
                     u"Closed Spline|Text");
    EXPECT_EQ(ids, (std::vector<int32_t>{-3, -2, -1, 0, 99, 13, 10, 19, 15, 20, 4, 7, 3, 12, 14, 17, 6, 5, 1, 2, 8,
                                         9, 11}));
    // Dismissed menus and the choice as a command are script cases (scripts/mouse_right_button.bvxs,
    // scripts/tool_menu_command.bvxs).
}

TEST(WindowProc, TwoControlsDrawAtOnceWithoutDisturbingEachOther)
{
    Host first, second;
    first.control.PutViewMouseTool(bvxRectangle);
    second.control.PutViewMouseTool(bvxCircle);
    first.Click({10, 10});
    second.Click({100, 100});
    first.Send(wm::MouseMove, 0, {50, 40});
    second.Send(wm::MouseMove, 0, {130, 100});
    first.Click({50, 40});
    second.Click({130, 100});
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
    Host host(Host::Start::Unpainted);
    host.control.PutViewMouseTool(bvxRectangle);
    host.Send(wm::LButtonDown, mk::LButton, {5, 5});
    host.Send(wm::RButtonDown, mk::RButton, {5, 5});
    host.Send(wm::MouseMove, 0, {9, 9});
    EXPECT_TRUE(host.events.empty());
    EXPECT_EQ(host.control.GetCadShapeCount(), 0);
    EXPECT_FALSE(host.window.capture);
}

} // namespace
} // namespace bvx
