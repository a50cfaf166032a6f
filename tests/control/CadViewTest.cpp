#include "ViewFixture.h"

namespace bvx {
namespace {

using View = testing::ViewFixture;

TEST(CadViewHeadless, RunsWithoutWindowOrSink)
{
    CadView view;
    EXPECT_FALSE(view.ViewReady);
    ASSERT_EQ(view.CreateShape(bvxRectangle, 1), 1);
    CObjShape* shape = view.Buf.FindShape(1);
    view.Redraw(RedrawMode::Full); // ignored without a window
    EXPECT_TRUE(view.RebuildBackBuffer);
    view.Buf.Select(shape);
    view.Redraw(RedrawMode::DeleteSelection); // the repaint is skipped, the deletion is not
    EXPECT_EQ(view.Buf.FindShape(1), nullptr);
    view.Fire<&EventSink::Click>(1, 2); // no sink: quiet
    EXPECT_EQ(view.CreateShape(16, 1), -1);
    EXPECT_EQ(view.CreateShape(bvxRectangle, 7), -1);
}

TEST_F(View, ColourTableStartsWithTwentyThreeColoursAndGrows)
{
    EXPECT_EQ(view.Colors().size(), 23u);
    for (auto [index, colour] : {std::pair{0, 0x000000u}, {22, 0xFFFFFFu}, {18, 0xFF0000u}, {99, 0x000000u}})
        EXPECT_EQ(view.ColorOf(index), colour) << index; // out of range reads entry 0
    EXPECT_EQ(view.ColorIndex(0x00FF00), 17);
    for (int twice = 0; twice < 2; ++twice) EXPECT_EQ(view.ColorIndex(0x123456), 23); // added once, then found
    EXPECT_EQ(view.ColorOf(view.ColorIndex(0x80000005)), 0xFFFFFFu); // the window colour
    view.Clear();
    EXPECT_EQ(view.ColorOf(0), 0x000000u);
}

TEST_F(View, RedrawModes)
{
    auto* a = AddRect(10, 10, 20, 20);
    auto* b = AddRect(30, 30, 40, 40);
    view.Buf.Select(a);
    view.Buf.Select(b);
    window.invalidated.clear();
    view.Redraw(1);
    view.Redraw(3);
    EXPECT_TRUE(window.invalidated.empty());
    view.Redraw(RedrawMode::Selection);
    EXPECT_EQ(window.invalidated.size(), 2u);
    sink.events.clear();
    view.Redraw(RedrawMode::DeleteSelection);
    EXPECT_EQ(sink.events, (std::vector<std::string>{"ShapeNumberDeleted 1", "ShapeNumberDeleted 2"}));
    EXPECT_TRUE(view.Buf.Selection.empty());
    view.NeedRepaint = false;
    view.RebuildBackBuffer = false;
    view.Redraw(RedrawMode::Full);
    EXPECT_TRUE(view.NeedRepaint);
    EXPECT_TRUE(view.RebuildBackBuffer);
    EXPECT_EQ(window.invalidated.back(), window.client);
}

TEST_F(View, InvalidateShapeCollectsOldAndNewBounds)
{
    auto* r = AddRect(10, 90, 20, 80); // device 10..20 by 10..20
    view.NeedRepaint = false;
    view.DirtyRect = {};
    window.invalidated.clear();
    view.InvalidateShape(r, false);
    view.InvalidateShape(r, false);
    EXPECT_FALSE(view.NeedRepaint);
    EXPECT_EQ(window.invalidated.size(), 2u);
    EXPECT_EQ(window.invalidated.back(), window.client); // the whole window without a commit
    r->Move({50, 0}, view);
    view.InvalidateShape(r, true);
    EXPECT_TRUE(view.NeedRepaint);
    // Old place and new, each grown by 4.
    EXPECT_EQ(view.DirtyRect, (DeviceRect{6, 6, 74, 24}));
    EXPECT_EQ(window.invalidated.back(), view.DirtyRect);
    view.InvalidateShape(nullptr, true);
    EXPECT_EQ(view.DirtyRect, view.World.ClientRect);
}

TEST_F(View, SnapMarkerInvalidatesEighteenPixels)
{
    view.Buf.SnapPoint = {50, 50};
    view.DirtyRect = {};
    view.InvalidateSnapMarker();
    EXPECT_EQ(window.invalidated.back(), (DeviceRect{41, 41, 59, 59}));
    view.Buf.SnapMarkerUp = 3;
    // A drawing tool keeps the marker; any value is stored, and 16 is in the drawing range.
    for (auto [tool, markerUp] : {std::pair<int16_t, int>{bvxRectangle, 3}, {16, 3}, {bvxSelect, 0}}) {
        view.SetMouseTool(tool);
        EXPECT_EQ(view.CurrentTool, tool);
        EXPECT_EQ(view.Buf.SnapMarkerUp, markerUp) << tool;
    }
}

TEST_F(View, CancelMouseOnlyActsDuringADraw)
{
    auto* r = AddRect(10, 10, 20, 20);
    view.Buf.Select(r);
    view.MouseActive = 1;
    view.CancelMouse();
    EXPECT_TRUE(window.calls.empty()); // not even the capture
    EXPECT_EQ(view.MouseActive, 1);
    view.DrawInProgress = true;
    sink.events.clear();
    view.CancelMouse();
    EXPECT_TRUE(view.DrawAbort);
    EXPECT_EQ(view.MouseActive, 0);
    EXPECT_FALSE(view.DrawInProgress);
    EXPECT_EQ(window.calls, (std::vector<std::string>{"ReleaseCapture"}));
    EXPECT_EQ(sink.events, (std::vector<std::string>{"ShapeNumberDeleted 1"})); // the half-made shape goes
}

TEST_F(View, EffectiveAttributesWalkShapeThenLayer)
{
    auto* r = AddRect(10, 10, 20, 20);
    view.Buf.Layers[1]->Attr->SetPenColor(5);
    EXPECT_EQ(view.EffectiveAttr(*r).PenColor(), 5u);
    r->SetAttr(ShapeAttr::Default());
    r->Attr->SetPenColor(9);
    EXPECT_EQ(view.EffectiveAttr(*r).PenColor(), 9u);
    // A shape not yet numbered wears the current layer's colours.
    CRectShape unnumbered;
    EXPECT_EQ(view.EffectiveAttr(unnumbered).PenColor(), 5u);
    // Clones take their record only when asked.
    EXPECT_FALSE(r->Clone(0)->Attr);
    EXPECT_EQ(r->Clone(1)->Attr->PenColor(), 9u);
    EXPECT_EQ(r->Clone(1)->Number, -1);
}

TEST_F(View, TextCaretFollowsTheTracker)
{
    view.CaretX = 7;
    view.CaretY = 8;
    view.ShowTextCaret(true);
    view.ShowTextCaret(true);
    EXPECT_EQ(window.calls, (std::vector<std::string>{"CreateCaret 6x6", "SetCaretPos 7,8", "ShowCaret"}));
    view.ShowTextCaret(false);
    EXPECT_EQ(window.calls.back(), "DestroyCaret");
    window.calls.clear();
    view.Buf.ShowTracker = false;
    view.ShowTextCaret(true);
    EXPECT_TRUE(window.calls.empty());
}

// Which mouse event rounds is a script case (scripts/mouse_move_rounding.bvxs).

// Golden pictures show the styles; here what only printing and mono change.
TEST_F(View, MonoAndPrintingPens)
{
    ShapeAttr a = ShapeAttr::Default();
    a.SetPenColor(uint32_t(view.ColorIndex(0x0000FF)));
    a.SetPenWidth(3);
    a.SetBrushStyle(2);
    a.SetBrushFg(uint32_t(view.ColorIndex(0x00FF00)));
    view.Mono = true;
    EXPECT_EQ(view.PenFor(a, view.World).color, 0x000000u);
    EXPECT_EQ(view.BrushFor(a).color, 0x000000u);
    EXPECT_EQ(view.BackColorFor(a), 0xFFFFFFu);
    view.Mono = false;
    // Printing multiplies the width, other outputs scale it by resolution.
    view.World.OutputMode = 1;
    view.PrintLineWidth = 4;
    EXPECT_EQ(view.PenFor(a, view.World).width, 12);
    view.PrintLineWidth = 0;
    view.World.OutputDpiX = 600;
    EXPECT_EQ(view.PenFor(a, view.World).width, 19); // 3 * 600 / 96 = 18.75
}

} // namespace
} // namespace bvx
