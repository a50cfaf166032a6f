// Mouse input through the window procedure with a host that calls back into
// the control from its events, as hosts may: whatever the host does from a
// handler, the drawing must stay whole and the mouse must come free.
#include "ViewFixture.h"
#include "platform/DataRows.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <unordered_set>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace bvx {
namespace {

// A host whose handler may call back into the control. It checks at each
// event what the event promises about the shape it names, before the handler runs.
class Host : public EventRecorder, public testing::ControlHost {
public:
    Host() : ControlHost(this, Start::Unpainted) // painted once its handler is ready
    {
        Paint();
        control.WorldSet(0, 200, 200, 0);
    }
    using ControlHost::Click; // not the sink's event

    void OnEvent(const members::EventRow& event, std::span<const double> args) override
    {
        const CadBuf& buf = control.View().Buf;
        const std::string_view name = event.name;
        auto fault = [&](const char* what) {
            faults.push_back(std::string(name) + " " + std::to_string(int32_t(args.back())) + ": " + what);
        };
        if (name == "ShapeNumberDeleted" && buf.FindShape(int32_t(args[0]))) fault("the shape is still there");
        if (name == "ShapeNumberAdded") {
            if (!buf.FindShape(int32_t(args[1]))) fault("the shape isn't in the drawing");
            if (control.View().DrawInProgress) added.insert(int32_t(args[1]));
            lastAdded = int32_t(args[1]);
        }
        if (name == "ShapeNumberSelected") {
            const CObjShape* s = buf.FindShape(int32_t(args[1]));
            if (!s || !s->Selected) fault("the shape isn't selected");
            if (lastEvent == "DrawEnd") finished.insert(int32_t(args[1]));
        }
        lastEvent = name;
        if (handler && depth < 2) {
            ++depth;
            handler(name, args);
            --depth;
        }
    }

    // Empty while the drawing and the mouse agree with themselves; else the first thing that doesn't.
    std::string Inconsistency() const
    {
        const CadView& view = control.View();
        if (std::string why = testing::DrawingInconsistency(view); !why.empty()) return why;
        if ((view.MouseActive != 0) != window.capture)
            return "MouseActive " + std::to_string(view.MouseActive) + " but capture " +
                   (window.capture ? "held" : "free");
        if (view.DrawInProgress && !view.MouseActive) return "a draw in progress without the mouse";
        if (!faults.empty()) return faults.front();
        return {};
    }

    std::vector<int32_t> LiveNumbers() const { return testing::ShapeNumbers(control.View().Buf); }

    std::function<void(std::string_view, std::span<const double>)> handler;
    std::vector<std::string> faults;
    std::unordered_set<int32_t> added, finished; // by the mouse, and of those the ones finished
    int32_t lastAdded = -1;
    std::string_view lastEvent;
    int depth = 0;
};

// ---- handlers that call back ----

struct Originals { int32_t a, b, c; }; // a rectangle, a circle, a line
using Call = void (*)(Host&, const Originals&, std::span<const double>);

const std::map<std::string, Call> kCalls = {
    {"ToSelectByName", [](Host& h, const Originals&, std::span<const double>) {
         const Variant zero = Variant::I4(0);
         h.control.Invoke(u"ViewMouseTool", members::Kind::PropertyPut, std::span(&zero, 1), nullptr);
     }},
    {"ToRectangle",
     [](Host& h, const Originals&, std::span<const double>) { h.control.PutViewMouseTool(bvxRectangle); }},
    {"DeleteA", [](Host& h, const Originals& o, std::span<const double>) { h.control.ShapeDelete(o.a); }},
    {"DeleteB", [](Host& h, const Originals& o, std::span<const double>) { h.control.ShapeDelete(o.b); }},
    {"DeleteNamed", [](Host& h, const Originals&, std::span<const double> a) { h.control.ShapeDelete(int32_t(a[1])); }},
    {"DeleteDrawn", [](Host& h, const Originals&, std::span<const double>) { h.control.ShapeDelete(h.lastAdded); }},
    {"DeleteSelection", [](Host& h, const Originals&, std::span<const double>) { h.control.ShapeSelectDelete(); }},
    {"ClearAll", [](Host& h, const Originals&, std::span<const double>) { h.control.CadClearAll(); }},
};

// A device point on one of the circle's radius handles.
DevicePoint RadiusHandle(const Host& h, const CObjShape& circle)
{
    const DeviceRect r = circle.BoundsAsRect();
    for (int32_t y = r.top - 3; y <= r.bottom + 3; ++y)
        for (int32_t x = r.left - 3; x <= r.right + 3; ++x) {
            const int32_t handle = circle.HitHandle({x, y}, 1, h.control.View());
            if (handle >= 1 && handle <= 4) return {x, y};
        }
    ADD_FAILURE() << "the circle shows no radius handle";
    return {};
}

void RunInput(Host& h, const std::string& input, int16_t tool, const Originals& o)
{
    if (input == "Draw") {
        h.Click(h.At(110, 40));
        h.MoveAndClick(h.At(150, 80));
        if (tool == bvxEllipse) h.MoveAndClick(h.At(170, 60));
    } else if (input == "PressShape" || input == "CtrlPressShape") { // on the rectangle's lower edge, then away
        h.Drag({h.At(40, 20), h.At(50, 30)}, input == "CtrlPressShape" ? mk::Control : 0);
    } else if (input == "ResizeCircle") {
        h.control.ShapeSelect(o.b, false);
        const DevicePoint grip = RadiusHandle(h, *h.control.View().Buf.FindShape(o.b));
        h.Drag({grip, {grip.x + 7, grip.y + 9}, {grip.x + 12, grip.y + 15}});
    } else {
        ASSERT_EQ(input, "Net");
        h.Drag({h.At(10, 10), h.At(70, 70)});
    }
}

TEST(MouseInputReentry, HostCallbacksLeaveTheDrawingWholeAndTheMouseFree)
{
    const auto rows = test::DataRows("mouse_reentry.txt");
    EXPECT_EQ(rows.size(), 24u);
    for (const auto& row : rows) {
        SCOPED_TRACE(test::Joined(row));
        const std::string& event = row[0];
        const Call call = kCalls.at(row[1]);
        const int16_t tool = int16_t(std::stoi(row[2]));
        const unsigned alive = unsigned(std::stoi(row[5]));
        Host h;
        const Originals o{h.control.DrawRectangle(20, 20, 60, 60, 1), h.control.DrawCircle(140, 140, 20, 1),
                          h.control.DrawLine(20, 150, 80, 190, 1)};
        h.control.PutViewPersistMouseTool(row[3] == "1");
        h.control.PutViewMouseTool(tool);
        h.handler = [&](std::string_view name, std::span<const double> args) {
            if (name == event) call(h, o, args);
        };
        RunInput(h, row[4], tool, o);
        if (row[6] != "-") {
            EXPECT_EQ(h.control.View().CurrentTool, std::stoi(row[6]));
        }
        h.handler = nullptr;
        // A host that leaves a draw open gets it closed by the user.
        for (int32_t i = 0; i < 3 && h.control.View().DrawInProgress; ++i) h.MoveAndClick({60 + 9 * i, 120 - 7 * i});

        const CadView& view = h.control.View();
        EXPECT_EQ(h.Inconsistency(), "");
        EXPECT_FALSE(view.DrawInProgress);
        EXPECT_EQ(view.MouseActive, 0); // and so, the drawing being whole, the capture is free
        const int32_t originals[] = {o.a, o.b, o.c};
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_EQ(view.Buf.FindShape(originals[i]) && !h.added.count(originals[i]), bool(alive & (1u << i)))
                << "original " << i;
        for (int32_t n : h.LiveNumbers())
            EXPECT_TRUE(!h.added.count(n) || h.finished.count(n)) << "half-made shape " << n << " left in a layer";

        // Ordinary input afterwards: one rectangle, finished and selected alone.
        const size_t before = h.LiveNumbers().size();
        h.control.PutViewMouseTool(bvxRectangle);
        h.Click({150, 150});
        h.MoveAndClick({180, 170});
        EXPECT_EQ(h.LiveNumbers().size(), before + 1);
        ASSERT_EQ(view.Buf.Selection.size(), 1u);
        EXPECT_EQ(view.Buf.Selection.front()->Number, h.lastAdded);
        EXPECT_TRUE(h.finished.count(h.lastAdded));
        EXPECT_FALSE(h.window.capture);
        EXPECT_EQ(h.Inconsistency(), "");
    }
}

// ---- random input ----

constexpr int16_t kTools[] = {-3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16, 19, 20};

class RandomUser;
// The run under way, told when a crash or a sanitizer's report ends the
// process before the test can say where it was.
const RandomUser* gRunning = nullptr;

class RandomUser {
public:
    explicit RandomUser(uint32_t seed) : rng_(seed), seed_(seed)
    {
        Layers();
        h_.control.PutViewSnapToShape(0);
        h_.control.PutViewSnapToGrid(0);
        for (int i = 0; i < 300; ++i) AddShape();
        h_.handler = [this](std::string_view event, std::span<const double> args) { Answer(event, args); };
    }

    // The steps, each followed by the consistency check; false at the first failure.
    bool Run(int32_t steps, std::string& failure)
    {
        gRunning = this;
        for (step_ = 0; step_ < steps; ++step_) {
            Step();
            h_.window.calls.clear();
            h_.window.invalidated.clear();
            const std::string why = h_.Inconsistency();
            if (!why.empty()) {
                failure = Where() + ": " + why;
                break;
            }
        }
        gRunning = nullptr;
        return failure.empty();
    }

    std::string Where() const
    {
        return "seed " + std::to_string(seed_) + ", step " + std::to_string(step_) + " (" + last_ + ")";
    }

private:
    // Layer 2 won't let its shapes move, layer 3 won't let them be resized.
    void Layers()
    {
        CadControl& c = h_.control;
        while (c.GetLayerCount() < 4) c.LayerOpen(u"Layer");
        c.PutLayerAction(2, LayerActions::Show | LayerActions::Find | LayerActions::Size);
        c.PutLayerAction(3, LayerActions::Show | LayerActions::Find | LayerActions::Move);
    }

    uint32_t Below(uint32_t n) { return rng_() % n; }
    double Coord() { return double(Below(190)) + 5; }

    void AddShape()
    {
        CadControl& c = h_.control;
        const double x = Coord(), y = Coord(), w = 2 + Below(40), v = 2 + Below(30);
        const int16_t layer = int16_t(1 + Below(3));
        switch (Below(4)) {
        case 0: c.DrawRectangle(x, y, x + w, y + v, layer); break;
        case 1: c.DrawLine(x, y, x + w, y - v, layer); break;
        case 2: c.DrawCircle(x, y, w / 2, layer); break;
        default: c.DrawEllipse(x, y, w / 2, v / 2, layer); break;
        }
    }

    int32_t AnyShape()
    {
        const std::vector<int32_t> live = h_.LiveNumbers();
        return live.empty() ? 0 : live[Below(uint32_t(live.size()))];
    }

    // Where the mouse goes: often onto a shape's corner, edge or centre,
    // sometimes back on the last spot, sometimes anywhere, a little outside too.
    DevicePoint Target()
    {
        const uint32_t r = Below(10);
        if (r == 0) return lastTarget_;
        if (r < 7) {
            if (const CObjShape* s = h_.control.View().Buf.FindShape(AnyShape())) {
                const DeviceRect b = s->BoundsAsRect();
                const int32_t xs[] = {b.left, (b.left + b.right) / 2, b.right};
                const int32_t ys[] = {b.top, (b.top + b.bottom) / 2, b.bottom};
                const int32_t jitter = int32_t(Below(5)) - 2;
                lastTarget_ = {std::clamp(xs[Below(3)] + jitter, -10, 210),
                               std::clamp(ys[Below(3)] - jitter, -10, 210)};
                return lastTarget_;
            }
        }
        lastTarget_ = {int32_t(Below(221)) - 10, int32_t(Below(221)) - 10};
        return lastTarget_;
    }

    uint32_t Mods() { return (Below(4) == 0 ? mk::Shift : 0) | (Below(4) == 0 ? mk::Control : 0); }

    void Send(const char* what, uint32_t msg, uint64_t wParam, DevicePoint p)
    {
        last_ = std::string(what) + " " + std::to_string(wParam) + " at " + std::to_string(p.x) + "," +
                std::to_string(p.y);
        h_.Send(msg, wParam, p);
    }

    void Step()
    {
        CadControl& c = h_.control;
        const uint32_t r = Below(100);
        if (r < 15) return Send("press", wm::LButtonDown, mk::LButton | Mods(), Target());
        if (r < 45) return Send("move", wm::MouseMove, (Below(2) ? mk::LButton : 0) | Mods(), Target());
        if (r < 60) return Send("release", wm::LButtonUp, Mods(), Target());
        if (r < 63) return Send("double click", wm::LButtonDblClk, mk::LButton | Mods(), Target());
        if (r < 68) {
            const int16_t snaps = int16_t(Below(3));
            c.PutViewSnapToShape(snaps == 1);
            c.PutViewSnapToGrid(snaps == 2);
            h_.window.answer = Below(2) ? std::optional<int32_t>(kTools[Below(std::size(kTools))]) : std::nullopt;
            Send("right press", wm::RButtonDown, mk::RButton | Mods(), Target());
            return Send("right release", wm::RButtonUp, Mods(), Target());
        }
        if (r < 70) return Send("Delete key", wm::KeyDown, vk::Delete, {});
        if (r < 74) {
            const bool down = Below(2);
            return Send(down ? "Ctrl down" : "Ctrl up", down ? wm::KeyDown : wm::KeyUp, vk::Control, {});
        }
        if (r < 82) {
            const int16_t tool = kTools[Below(std::size(kTools))];
            last_ = "tool " + std::to_string(tool);
            return c.PutViewMouseTool(tool);
        }
        if (r < 84) {
            const bool on = Below(2);
            last_ = std::string("persistent tool ") + (on ? "on" : "off");
            return c.PutViewPersistMouseTool(on);
        }
        if (r < 87) {
            const int16_t mode = int16_t(Below(2));
            last_ = "snap mode " + std::to_string(mode);
            return c.PutViewSnapMode(mode);
        }
        if (r < 89) {
            last_ = "current layer";
            return c.PutLayerNumber(int16_t(1 + Below(3)));
        }
        if (r < 94) {
            last_ = "add shapes";
            // A cleared drawing has lost its extra layers.
            if (c.GetLayerCount() < 4) Layers();
            const size_t live = h_.LiveNumbers().size();
            for (size_t i = 0; live + i < 400 && (i < 4 || live + i < 100); ++i) AddShape();
            return;
        }
        if (r < 98) {
            last_ = "paint";
            return h_.Paint();
        }
        // Net zooms and pans wander off; the user comes back to the drawing.
        last_ = "world reset";
        c.WorldSet(0, 200, 200, 0);
    }

    // The host's handler: now and then it answers an event by calling back.
    void Answer(std::string_view event, std::span<const double> args)
    {
        if (Below(12) != 0) return;
        CadControl& c = h_.control;
        const bool namesShape = event == "ShapeNumberAdded" || event == "ShapeNumberSelected";
        switch (Below(12)) {
        case 0: c.ShapeDelete(namesShape ? int32_t(args[1]) : AnyShape()); break;
        case 1: c.ShapeDelete(AnyShape()); break;
        case 2: c.PutViewMouseTool(kTools[Below(std::size(kTools))]); break;
        // Not a cancel: the tool falls back to selection in the middle of a draw.
        case 3: c.PutViewPersistMouseTool(Below(2)); break;
        case 4:
        case 5: c.ShapeSelect(AnyShape(), Below(2)); break;
        case 6: AddShape(); break;
        case 7: c.ShapeToLayer(AnyShape(), int16_t(1 + Below(3)), Below(2)); break;
        case 8: c.PutLayerNumber(int16_t(1 + Below(3))); break;
        case 9:
            if (Below(4) == 0) c.ShapeSelectDelete();
            break;
        case 10:
            if (Below(10) == 0) c.CadClearShapes(int16_t(1 + Below(3)));
            break;
        default:
            if (Below(40) == 0) c.CadClearAll();
            break;
        }
    }

    std::mt19937 rng_;
    uint32_t seed_;
    int32_t step_ = 0;
    Host h_;
    DevicePoint lastTarget_{100, 100};
    std::string last_;
};

void TellWhere()
{
    if (gRunning) fprintf(stderr, "random input stopped at %s\n", gRunning->Where().c_str());
}

TEST(MouseInputRandom, RandomInputWithACallingHostKeepsTheDrawingConsistent)
{
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(TellWhere);
#else
    std::signal(SIGSEGV, [](int signal) {
        TellWhere();
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    });
#endif
    for (uint32_t seed : {1u, 2u, 3u, 4u}) {
        RandomUser user(seed);
        std::string failure;
        EXPECT_TRUE(user.Run(5000, failure)) << failure;
    }
}

} // namespace
} // namespace bvx
