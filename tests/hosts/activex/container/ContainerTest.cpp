// The control activated in place on a form of our own and driven by real
// window messages; the command-line host, given the same road as a script,
// tells what events and pixels to expect.
#include "Container.h"

#include <algorithm>

namespace bvx::container {
namespace {

// At this size the default world is at scale 1: device (x, y) is world (x, 100 - y).
constexpr int kSide = 101;
constexpr RECT kSquare{0, 0, kSide, kSide};

// A member read by name, as a number.
double Read(IBvxCAD* control, const wchar_t* name, std::vector<Value> args = {})
{
    Outcome read = Get(control, name, args);
    EXPECT_EQ(read.hr, S_OK) << Narrow(name);
    return read.result.Number();
}

void Write(IBvxCAD* control, const wchar_t* name, long value)
{
    EXPECT_EQ(Put(control, name, Value::I4(value)).hr, S_OK) << Narrow(name);
}

std::vector<std::string> Names(const std::vector<std::string>& events)
{
    std::vector<std::string> names;
    for (const std::string& e : events) names.push_back(e.substr(0, e.find('(')));
    return names;
}

// Whether `part` occurs in `all` in its order, not necessarily together.
bool InOrder(const std::vector<std::string>& all, const std::vector<std::string>& part)
{
    size_t next = 0;
    for (const std::string& s : all)
        if (next < part.size() && s == part[next]) ++next;
    return next == part.size();
}

std::string Sized(int width, int height)
{
    return ".size " + std::to_string(width) + ", " + std::to_string(height) + "\n";
}

class Container : public testing::Test {
protected:
    Form form{400, 300};

    // Activated, and its window painted once: the control fires events only after that.
    static testing::AssertionResult Shown(const Embedded& e)
    {
        if (e.activated != S_OK) return testing::AssertionFailure() << "activation failed: " << HexCode(e.activated);
        UpdateWindow(e.hwnd);
        Pump();
        return testing::AssertionSuccess();
    }
};

TEST_F(Container, InPlaceActivationMakesAPaintedChildOfTheFormAndDeactivationTakesItAway)
{
    Embedded e(form.Handle(), RECT{10, 20, 10 + kSide, 20 + kSide});
    ASSERT_EQ(e.activated, S_OK) << HexCode(e.activated) << testing::PrintToString(e.site->calls);
    ASSERT_TRUE(IsWindow(e.hwnd));
    EXPECT_EQ(GetParent(e.hwnd), form.Handle());
    EXPECT_EQ(GetWindowLongW(e.hwnd, GWL_STYLE) & 0xFFFF0000, 0x56000000) << "child, visible, clipping";
    EXPECT_TRUE(GetClassLongW(e.hwnd, GCL_STYLE) & CS_DBLCLKS);
    RECT placed{};
    GetWindowRect(e.hwnd, &placed);
    MapWindowPoints(nullptr, form.Handle(), reinterpret_cast<POINT*>(&placed), 2);
    const RECT position = e.site->Position();
    EXPECT_TRUE(EqualRect(&placed, &position))
        << placed.left << "," << placed.top << " " << placed.right << "," << placed.bottom;
    EXPECT_TRUE(InOrder(e.site->calls, {"CanInPlaceActivate", "OnInPlaceActivate", "GetWindowContext"}))
        << testing::PrintToString(e.site->calls);
    EXPECT_TRUE(InOrder(e.site->asked, {"IOleInPlaceSite"})) << testing::PrintToString(e.site->asked);

    // A change of the drawing repaints the window; once the window is gone
    // the view's advise sink hears of it instead.
    auto drawn = [&] {
        return Call(e.control.get(), L"DrawRectangle", DISPATCH_METHOD,
                    {Value::R8(10), Value::R8(10), Value::R8(50), Value::R8(40), Value::I2(1)})
            .hr;
    };
    ASSERT_TRUE(Shown(e));
    EXPECT_EQ(drawn(), S_OK);
    EXPECT_TRUE(GetUpdateRect(e.hwnd, nullptr, FALSE));
    EXPECT_EQ(Normalized(e.events->Take()), std::vector<std::string>{"ShapeNumberAdded(ShapeType=1, ShapeNumber=1)"});

    // The focus activates the user interface and is told to the site.
    e.site->calls.clear();
    SetFocus(e.hwnd);
    Pump();
    EXPECT_TRUE(InOrder(e.site->calls, {"OnUIActivate", "SetActiveObject", "OnFocus(1)"}))
        << testing::PrintToString(e.site->calls);
    SetFocus(form.Handle());
    Pump();
    EXPECT_TRUE(InOrder(e.site->calls, {"OnFocus(0)"})) << testing::PrintToString(e.site->calls);

    const HWND window = e.hwnd;
    e.site->calls.clear();
    EXPECT_EQ(As<IOleInPlaceObject>(e.control.get(), IID_IOleInPlaceObject)->InPlaceDeactivate(), S_OK);
    Pump();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_TRUE(InOrder(e.site->calls, {"SetActiveObject(null)", "OnUIDeactivate", "OnInPlaceDeactivate"}))
        << testing::PrintToString(e.site->calls);
    // Told once until the container draws the control again.
    auto viewChanges = [&] { return std::count(e.site->calls.begin(), e.site->calls.end(), "OnViewChange"); };
    e.site->calls.clear();
    EXPECT_EQ(drawn(), S_OK);
    EXPECT_EQ(drawn(), S_OK);
    EXPECT_EQ(viewChanges(), 1) << testing::PrintToString(e.site->calls);
    FromViewObject(e.control.get(), kSide, kSide);
    EXPECT_EQ(drawn(), S_OK);
    EXPECT_EQ(viewChanges(), 2) << testing::PrintToString(e.site->calls);
}

// A rectangle drawn with the mouse (the tool falls back to select), dragged
// by its left edge, then deleted with the Delete key.
struct Leg {
    const char* name;
    std::vector<Step> road;
    std::vector<std::string> expectedNames; // in this order, among others
};

TEST_F(Container, AMouseDrawnRectangleMovedAndDeletedFiresWhatTheCommandLineHostFires)
{
    const std::vector<Leg> legs = {
        {"draw",
         {Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 90), Mouse(WM_LBUTTONUP, 0, 20, 90), Mouse(WM_MOUSEMOVE, 0, 50, 60),
          Mouse(WM_MOUSEMOVE, 0, 80, 30), Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 80, 30), Mouse(WM_LBUTTONUP, 0, 80, 30)},
         {"DrawBegin", "ShapeNumberAdded", "WorldMouseDown", "WorldMouseMove", "DrawEnd", "ShapeNumberSelected"}},
        {"drag",
         {Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 45), Mouse(WM_MOUSEMOVE, MK_LBUTTON, 30, 50),
          Mouse(WM_MOUSEMOVE, MK_LBUTTON, 35, 55), Mouse(WM_LBUTTONUP, 0, 35, 55)},
         {"WorldMouseDown", "WorldMouseMove", "WorldMouseUp"}},
        {"delete", {Key(WM_KEYDOWN, VK_DELETE), Key(WM_KEYUP, VK_DELETE)}, {"ShapeNumberDeleted"}},
    };
    std::string script = Sized(kSide, kSide) + "ViewMouseTool = 1\n";
    for (const Leg& leg : legs) script += ".events\n.echo " + std::string(leg.name) + "\n" + Script(leg.road);
    const CliRun cli = RunCli(script + ".events\n.echo end\n");
    ASSERT_EQ(cli.exitCode, 0u) << cli.output;

    Embedded e(form.Handle(), kSquare);
    ASSERT_TRUE(Shown(e));
    Write(e.control.get(), L"ViewMouseTool", bvxRectangle);
    e.events->Take();
    double cornerX = 0, cornerY = 0;
    for (size_t i = 0; i < legs.size(); ++i) {
        const Leg& leg = legs[i];
        SCOPED_TRACE(leg.name);
        Post(e.hwnd, leg.road);
        const std::vector<std::string> heard = e.events->Take();
        EXPECT_TRUE(InOrder(Names(heard), leg.expectedNames)) << testing::PrintToString(heard);
        const std::vector<std::string> expected = cli.Lines("event ", leg.name,
                                                            i + 1 < legs.size() ? legs[i + 1].name : "end");
        EXPECT_EQ(Normalized(heard), Normalized(expected));

        const std::string name = leg.name;
        if (name == "draw") {
            EXPECT_EQ(Read(e.control.get(), L"ViewMouseTool"), bvxSelect) << "the tool falls back to select";
            EXPECT_EQ(Read(e.control.get(), L"CadShapeCount"), 1);
            cornerX = Read(e.control.get(), L"ShapePointGetX", {Value::I4(1), Value::I4(0)});
            cornerY = Read(e.control.get(), L"ShapePointGetY", {Value::I4(1), Value::I4(0)});
        } else if (name == "drag") {
            // The drag went 15 pixels right and 10 down: at scale 1 with y up.
            EXPECT_EQ(Read(e.control.get(), L"ShapePointGetX", {Value::I4(1), Value::I4(0)}), cornerX + 15);
            EXPECT_EQ(Read(e.control.get(), L"ShapePointGetY", {Value::I4(1), Value::I4(0)}), cornerY - 10);
        } else {
            EXPECT_EQ(Read(e.control.get(), L"CadShapeCount"), 0);
        }
    }
}

// The tool menu of a right press is modal: what is queued before the press
// answers it, and a watchdog closes it should nothing do so.
struct MenuAnswer {
    const char* name;
    std::vector<Step> queued;
    long tool; // what ViewMouseTool then is
};

bool watchdogFired = false;
void CALLBACK CloseMenu(HWND, UINT, UINT_PTR, DWORD)
{
    watchdogFired = true;
    EndMenu();
}

TEST_F(Container, TheToolMenuOfARightPressIsCancelledOrAnsweredFromTheQueue)
{
    constexpr long kBefore = bvxCircle;
    const std::vector<MenuAnswer> answers = {
        {"cancelled", {{WM_CANCELMODE, 0, 0}}, kBefore},
        {"first item", {Key(WM_KEYDOWN, VK_DOWN), Key(WM_KEYDOWN, VK_RETURN)}, bvxNetZoom},
        {"second item", {Key(WM_KEYDOWN, VK_DOWN), Key(WM_KEYDOWN, VK_DOWN), Key(WM_KEYDOWN, VK_RETURN)}, bvxPan},
    };
    Embedded e(form.Handle(), kSquare);
    ASSERT_TRUE(Shown(e));
    Write(e.control.get(), L"ViewSnapToGrid", 0);
    Write(e.control.get(), L"ViewSnapToShape", 0);
    for (const MenuAnswer& answer : answers) {
        SCOPED_TRACE(answer.name);
        Write(e.control.get(), L"ViewMouseTool", kBefore);
        for (const Step& s : answer.queued) PostMessageW(e.hwnd, s.msg, s.wParam, s.lParam);
        watchdogFired = false;
        const UINT_PTR watchdog = SetTimer(nullptr, 0, 10000, CloseMenu);
        SendMessageW(e.hwnd, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(50, 50));
        KillTimer(nullptr, watchdog);
        EXPECT_FALSE(watchdogFired) << "the menu ignored what was queued for it";
        for (const Step& s : answer.queued) {
            MSG left;
            EXPECT_FALSE(PeekMessageW(&left, e.hwnd, s.msg, s.msg, PM_NOREMOVE))
                << "message " << s.msg << " still queued: did a menu open?";
        }
        Pump();
        Post(e.hwnd, {Mouse(WM_RBUTTONUP, 0, 50, 50)});
        EXPECT_EQ(Read(e.control.get(), L"ViewMouseTool"), answer.tool);
    }
}

TEST_F(Container, TwoControlsOnOneFormKeepTheirOwnDrawingToolAndCapture)
{
    Embedded a(form.Handle(), kSquare), b(form.Handle(), RECT{150, 0, 150 + kSide, kSide});
    ASSERT_TRUE(Shown(a));
    ASSERT_TRUE(Shown(b));
    ASSERT_NE(a.hwnd, b.hwnd);
    Write(a.control.get(), L"ViewMouseTool", bvxRectangle);
    Write(b.control.get(), L"ViewMouseTool", bvxEllipse);
    a.events->Take();
    b.events->Take();

    Post(a.hwnd, {Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 90)});
    EXPECT_EQ(GetCapture(), a.hwnd) << "a press holds the mouse in its own window";
    Post(a.hwnd, {Mouse(WM_LBUTTONUP, 0, 20, 90), Mouse(WM_MOUSEMOVE, 0, 60, 50),
                  Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 60, 50), Mouse(WM_LBUTTONUP, 0, 60, 50)});
    EXPECT_EQ(Read(a.control.get(), L"CadShapeCount"), 1);
    EXPECT_EQ(Read(b.control.get(), L"CadShapeCount"), 0);
    EXPECT_EQ(Read(a.control.get(), L"ViewMouseTool"), bvxSelect);
    EXPECT_EQ(Read(b.control.get(), L"ViewMouseTool"), bvxEllipse);
    EXPECT_FALSE(a.events->Take().empty());
    EXPECT_EQ(b.events->Take(), std::vector<std::string>{});

    // b's ellipse starts with a press and wants two more.
    Post(b.hwnd, {Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 50, 50)});
    EXPECT_EQ(GetCapture(), b.hwnd);
    Post(b.hwnd, {Mouse(WM_LBUTTONUP, 0, 50, 50)});
    EXPECT_EQ(Read(b.control.get(), L"ViewMouseTool"), bvxEllipse);
    EXPECT_EQ(Read(b.control.get(), L"ShapeType", {Value::I4(1)}), bvxEllipse);
    EXPECT_EQ(Read(a.control.get(), L"ShapeType", {Value::I4(1)}), bvxRectangle);
    EXPECT_EQ(Read(a.control.get(), L"CadShapeCount"), 1);
    EXPECT_FALSE(b.events->Take().empty());
    EXPECT_EQ(a.events->Take(), std::vector<std::string>{});
}

// A container that lets the control go from inside one of its events.
TEST_F(Container, AContainerReleasingTheControlInsideAnEventLeavesTheRoadSafe)
{
    const std::vector<Step> road = {Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 20, 90), Mouse(WM_LBUTTONUP, 0, 20, 90),
                                    Mouse(WM_MOUSEMOVE, 0, 60, 50), Mouse(WM_LBUTTONDOWN, MK_LBUTTON, 60, 50),
                                    Mouse(WM_LBUTTONUP, 0, 60, 50)};
    for (const char* during : {"DrawBegin", "ShapeNumberAdded", "WorldMouseUp", "Click", "DrawEnd"}) {
        SCOPED_TRACE(during);
        auto e = std::make_unique<Embedded>(form.Handle(), kSquare);
        ASSERT_TRUE(Shown(*e));
        Write(e->control.get(), L"ViewMouseTool", bvxRectangle);
        const HWND window = e->hwnd;
        const Ref<EventRecorder> events = e->events;
        events->handler = [&](const std::string& line) {
            if (line.rfind(during, 0) == 0) e->Shutdown();
        };
        Post(window, road);
        Pump();
        EXPECT_FALSE(e->control) << "the event came";
        EXPECT_FALSE(IsWindow(window));
        ASSERT_FALSE(events->heard.empty());
        EXPECT_EQ(Names({events->heard.back()}), std::vector<std::string>{during}) << "nothing heard after the release";
        e.reset();
    }
}

// Shapes with pens, brushes and text, made by the same member calls here and
// in a script.
using K = Member::Kind;
const std::vector<Member> kDrawing = {
    {K::Call, L"WorldSet", {0.0, 120.0, 160.0, 0.0}},
    {K::Kept, L"DrawRectangle", {10.0, 110.0, 70.0, 60.0, 1.0}},
    {K::Put, L"ShapeBrushStyle", {Earlier{1}, 1.0}},
    {K::Put, L"ShapeBrushFg", {Earlier{1}, double(0x00A0FF)}},
    {K::Put, L"ShapePenWidth", {Earlier{1}, 3.0}},
    {K::Kept, L"DrawEllipse", {115.0, 85.0, 38.0, 25.0, 1.0}},
    {K::Put, L"ShapeBrushStyle", {Earlier{5}, 3.0}},
    {K::Put, L"ShapePenFg", {Earlier{5}, double(0xC00000)}},
    {K::Put, L"ShapePenStyle", {Earlier{5}, 2.0}},
    {K::Kept, L"DrawLine", {5.0, 5.0, 155.0, 50.5, 1.0}},
    {K::Put, L"ShapePenFg", {Earlier{9}, double(0x0000C0)}},
    {K::Put, L"ShapePenWidth", {Earlier{9}, 2.0}},
    {K::Kept, L"DrawCircle", {40.0, 30.0, 20.0, 1.0}},
    {K::Put, L"ShapeBrushStyle", {Earlier{12}, 6.0}},
    {K::Put, L"ShapeBrushMode", {Earlier{12}, 2.0}},
    {K::Kept, L"FontOpen", {L"Arial,16,B", 1.0}},
    {K::Call, L"TextAdd", {1.0, L"Bvx 12", 85.0, 40.0, Earlier{15}}},
    {K::Call, L"ShapeSelect", {Earlier{5}, 0.0}},
};

// The drawing as the command-line host paints it at `sizes` in turn, saved.
Picture CliPicture(const std::vector<SIZE>& sizes, const std::string& name)
{
    const std::string path = TempPath(name + ".bmp");
    std::string script = Sized(sizes[0].cx, sizes[0].cy) + Script(kDrawing);
    for (size_t i = 1; i < sizes.size(); ++i) script += Sized(sizes[i].cx, sizes[i].cy);
    const CliRun cli = RunCli(script + ".paint\n.save " + path + "\n");
    EXPECT_EQ(cli.exitCode, 0u) << cli.output;
    Picture p = ReadBmp(path);
    DeleteFileA(path.c_str());
    EXPECT_GT(p.width, 0) << "no picture from\n" << script;
    return p;
}

void ExpectPicturesOf(Embedded& e, const Picture& expected)
{
    UpdateWindow(e.hwnd);
    Pump();
    struct Way {
        const char* name;
        Picture got;
    };
    for (const Way& way :
         {Way{"window", FromWindow(e.hwnd)},
          Way{"IViewObject::Draw", FromViewObject(e.control.get(), expected.width, expected.height)}}) {
        const std::string differences = Differences(way.got, expected);
        EXPECT_TRUE(differences.empty()) << way.name << ":\n" << differences;
    }
}

TEST_F(Container, TheWindowAndTheViewObjectShowWhatTheCommandLineHostPaints)
{
    constexpr SIZE kSize{160, 120};
    Embedded e(form.Handle(), RECT{0, 0, kSize.cx, kSize.cy});
    ASSERT_TRUE(Shown(e));
    Apply(e.control.get(), kDrawing);
    ExpectPicturesOf(e, CliPicture({kSize}, "plain"));
}

TEST_F(Container, HidingShowingAndResizingKeepTheDrawing)
{
    constexpr SIZE kSize{160, 120}, kBigger{220, 170};
    Embedded e(form.Handle(), RECT{0, 0, kSize.cx, kSize.cy});
    ASSERT_TRUE(Shown(e));
    Apply(e.control.get(), kDrawing);
    const double shapes = Read(e.control.get(), L"CadShapeCount");
    ASSERT_GT(shapes, 0);

    EXPECT_EQ(e.Verb(OLEIVERB_HIDE), S_OK);
    EXPECT_FALSE(IsWindowVisible(e.hwnd));
    e.site->calls.clear();
    EXPECT_EQ(e.Verb(OLEIVERB_SHOW), S_OK);
    EXPECT_TRUE(InOrder(e.site->calls, {"ShowObject"})) << testing::PrintToString(e.site->calls);
    Ref<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>(e.control.get(), IID_IOleInPlaceObject);
    ASSERT_TRUE(inPlace);
    inPlace->GetWindow(&e.hwnd);
    EXPECT_TRUE(IsWindowVisible(e.hwnd));
    EXPECT_EQ(Read(e.control.get(), L"CadShapeCount"), shapes);
    ExpectPicturesOf(e, CliPicture({kSize}, "shown"));

    EXPECT_EQ(e.Move(RECT{0, 0, kBigger.cx, kBigger.cy}), S_OK);
    RECT client{};
    GetClientRect(e.hwnd, &client);
    EXPECT_EQ(client.right, kBigger.cx);
    EXPECT_EQ(client.bottom, kBigger.cy);
    EXPECT_EQ(Read(e.control.get(), L"CadShapeCount"), shapes);
    ExpectPicturesOf(e, CliPicture({kSize, kBigger}, "resized"));

    // A clip smaller than the position leaves only its part of the window
    // visible; a clip as large as the position, all of it.
    const RECT position{0, 0, kBigger.cx, kBigger.cy}, clip{10, 20, 100, kBigger.cy};
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(inPlace->SetObjectRects(&position, &clip), S_OK);
    RECT visible{};
    EXPECT_EQ(GetWindowRgn(e.hwnd, region), SIMPLEREGION);
    GetRgnBox(region, &visible);
    EXPECT_TRUE(EqualRect(&visible, &clip)) << visible.left << "," << visible.top << " " << visible.right << "," << visible.bottom;
    EXPECT_EQ(inPlace->SetObjectRects(&position, &position), S_OK);
    EXPECT_EQ(GetWindowRgn(e.hwnd, region), ERROR);
    DeleteObject(region);
}

} // namespace
} // namespace bvx::container
