// Every shape type drawn by hand: the presses, moves and double clicks a
// user makes, through the window procedure, the drawing events in order,
// and where the shape's points end up.
#include "control/CadControl.h"
#include "control/HostDoubles.h"
#include "platform/WindowMessages.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace bvx {
namespace {

struct Stroke {
    enum Kind { Click, DoubleClick, Drag } kind;
    std::vector<WorldPoint> at; // a drag passes through all of them
};

struct ToolCase {
    const char* name;
    std::vector<int16_t> types; // each drawn the same way, to the same points
    std::vector<Stroke> strokes;
    std::vector<WorldPoint> points; // the shape's points afterwards
    std::string events;             // the drawing events, in order
};

constexpr const char* kTwoClicks = "DrawBegin Added DrawEnd Selected";
constexpr const char* kWithRadii = "DrawBegin Added DrawRadius DrawEnd Selected";

// World (x, y) lies at device (x, 200 - y).
const ToolCase kCases[] = {
    {"rectangle_line_two_point_ellipse", {bvxRectangle, bvxLine, bvx2PointEllipse},
     {{Stroke::Click, {{20, 180}}}, {Stroke::Click, {{60, 150}}}}, {{20, 180}, {60, 150}}, kTwoClicks},
    // The corners' rounding starts at 16 pixels, turned with the y axis.
    {"rounded_rectangle", {bvxRoundRectangle}, {{Stroke::Click, {{20, 180}}}, {Stroke::Click, {{60, 150}}}},
     {{20, 180}, {60, 150}, {16, -16}}, kTwoClicks},
    {"polyline", {bvxPolyline},
     {{Stroke::Click, {{20, 20}}}, {Stroke::Click, {{60, 20}}}, {Stroke::Click, {{60, 60}}}, {Stroke::DoubleClick, {{100, 60}}}},
     {{20, 20}, {60, 20}, {60, 60}, {100, 60}}, kTwoClicks},
    {"polygon", {bvxPolygon},
     {{Stroke::Click, {{20, 20}}}, {Stroke::Click, {{60, 20}}}, {Stroke::DoubleClick, {{60, 60}}}},
     {{20, 20}, {60, 20}, {60, 60}}, kTwoClicks},
    // The release ends the curve as a double click would, taking back the last point.
    {"freehand", {bvxFreehand}, {{Stroke::Drag, {{20, 20}, {30, 25}, {40, 35}, {50, 30}}}},
     {{20, 20}, {30, 25}, {40, 35}}, kTwoClicks},
    {"spline_closed_spline", {bvxSpline, bvxClosedSpline},
     {{Stroke::Click, {{20, 20}}}, {Stroke::Click, {{60, 40}}}, {Stroke::DoubleClick, {{100, 20}}}},
     {{20, 20}, {60, 40}, {100, 20}}, kTwoClicks},
    {"three_point_arc", {bvx3PointArc},
     {{Stroke::Click, {{20, 100}}}, {Stroke::Click, {{60, 140}}}, {Stroke::Click, {{100, 100}}}},
     {{20, 100}, {60, 140}, {100, 100}}, kTwoClicks},
    {"text", {bvxText}, {{Stroke::Click, {{30, 120}}}}, {{30, 120}}, kTwoClicks},
    {"picture", {bvxPicture}, {{Stroke::Click, {{20, 180}}}, {Stroke::Click, {{60, 150}}}},
     {{60, 150}, {20, 180}}, "DrawBegin Added DrawEnd Selected PictureEntry"},
    {"arc_pie_slice_chord", {bvxArc, bvxPieSlice, bvxChord},
     {{Stroke::Click, {{100, 100}}}, {Stroke::Click, {{130, 120}}}, {Stroke::Click, {{150, 150}}}, {Stroke::Click, {{50, 150}}}},
     {{100, 100}, {30, 20}, {0.78539816, 2.35619449}}, kWithRadii},
    {"point", {bvxPoint}, {{Stroke::Click, {{70, 70}}}}, {{70, 70}}, kTwoClicks},
    {"group", {bvxGroup}, {{Stroke::Click, {{70, 70}}}}, {}, "DrawBegin Added DrawEnd"},
    {"circle", {bvxCircle}, {{Stroke::Click, {{100, 100}}}, {Stroke::Click, {{130, 140}}}}, {{100, 100}, {50, 50}},
     kWithRadii},
    // The second press fixes the horizontal radius, the third the vertical.
    {"ellipse", {bvxEllipse},
     {{Stroke::Click, {{100, 100}}}, {Stroke::Click, {{130, 120}}}, {Stroke::Click, {{140, 130}}}},
     {{100, 100}, {30, 30}}, kWithRadii},
};

class Recorder : public EventRecorder {
public:
    std::string events;
    void OnEvent(const members::EventRow& event, std::span<const double>) override
    {
        const std::string_view name = event.name;
        if (name.starts_with("World") || name == "Click" || name == "DblClick") return;
        // The radius reports while the pointer moves count once.
        const std::string word = name == "ShapeNumberAdded" ? "Added" : name == "ShapeNumberSelected" ? "Selected" : std::string(name);
        if (word == "DrawRadius" && events.ends_with("DrawRadius")) return;
        events += (events.empty() ? "" : " ") + word;
    }
};

class DrawingTools : public ::testing::TestWithParam<ToolCase> {};

TEST_P(DrawingTools, DrawByHand)
{
    const ToolCase& c = GetParam();
    for (const int16_t type : c.types) {
        SCOPED_TRACE(::testing::Message() << "type " << type);
        Recorder recorder;
        testing::ControlHost host(&recorder);
        host.control.WorldSet(0, 200, 200, 0);
        host.control.PutViewMouseTool(type);
        recorder.events.clear();
        auto at = [&](const WorldPoint& p) { return host.At(p.x, p.y); };
        for (const Stroke& s : c.strokes) {
            if (s.kind == Stroke::Drag) {
                std::vector<DevicePoint> path;
                for (const WorldPoint& p : s.at) path.push_back(at(p));
                host.Send(wm::MouseMove, 0, path.front());
                host.Send(wm::LButtonDown, mk::LButton, path.front());
                for (size_t i = 1; i < path.size(); ++i) host.Send(wm::MouseMove, mk::LButton, path[i]);
                host.Send(wm::LButtonUp, 0, path.back());
                continue;
            }
            host.Send(wm::MouseMove, 0, at(s.at[0]));
            host.Click(at(s.at[0]));
            if (s.kind == Stroke::DoubleClick) {
                host.Send(wm::LButtonDblClk, mk::LButton, at(s.at[0]));
                host.Send(wm::LButtonUp, 0, at(s.at[0]));
            }
        }
        EXPECT_EQ(recorder.events, c.events);
        const Variant numbers = host.control.GetLayerShapeNumbers(1);
        ASSERT_EQ(numbers.Rows(), 1);
        const int32_t n = int32_t(numbers.At(0).Integer());
        EXPECT_EQ(host.control.GetShapeType(n), type);
        if (type == bvxGroup) continue;
        ASSERT_EQ(host.control.GetShapePointCount(n), int16_t(c.points.size()));
        for (size_t i = 0; i < c.points.size(); ++i) {
            EXPECT_NEAR(host.control.ShapePointGetX(n, int16_t(i)), c.points[i].x, 1e-6) << "point " << i;
            EXPECT_NEAR(host.control.ShapePointGetY(n, int16_t(i)), c.points[i].y, 1e-6) << "point " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryType, DrawingTools, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace bvx
