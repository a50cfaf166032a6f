// Text through the members and messages a host sends: where its pixels
// fall, typing with the caret, and the font table's fallback to slot 0.
// How many slots the table holds is a script case (scripts/font_slots.bvxs).
#include "ShapeTestSupport.h"

#include "platform/DeviceContext.h"
#include "platform/WindowMessages.h"
#include "shapes/CTextShape.h"

#include <string>

namespace bvx::shapetest {
namespace {

class Texts : public ControlTest {
protected:
    CTextShape& TextShape(int32_t n) { return *static_cast<CTextShape*>(View().Buf.FindShape(n)); }
};

// Turned in steps of 15 degrees, every pixel of the text lies within its
// reported bounds grown by one pixel, and there are pixels to find.
TEST_F(Texts, TurnedTextStaysInsideItsBounds)
{
    const int16_t font = control.FontOpen(u"Arial,16,N", 1);
    for (int16_t degrees = 0; degrees < 360; degrees += 15) {
        control.CadClearShapes(-1);
        control.FontSet(font, 0, 0, int16_t(degrees * 10));
        const int32_t n = control.TextAdd(1, u"Hg|W", 50, 50, font);
        auto dc = Painted();
        const DeviceRect reach = InflatedRect(OrderedRect(View().Buf.FindShape(n)->BoundsAsRect()), 1, 1);
        int inked = 0, outside = 0;
        for (int32_t y = 0; y < 101; ++y)
            for (int32_t x = 0; x < 101; ++x)
                if (dc->GetPixel(x, y) != 0xFFFFFF) ++inked, outside += !PtInRect(reach, {x, y});
        EXPECT_GT(inked, 40) << degrees;
        EXPECT_EQ(outside, 0) << degrees << " degrees";
    }
}

// Characters typed into the one selected text extend it, repaint its new
// bounds and move the caret; a backspace takes the last one back.
TEST_F(Texts, TypingGrowsTheTextRepaintsItAndMovesTheCaret)
{
    const int32_t n = control.TextAdd(1, u"A", 20, 50, 0);
    control.ShapeSelect(n, false);
    Painted();
    const int32_t caretBefore = View().CaretX;
    const DeviceRect before = TextShape(n).BoundsAsRect();
    window.invalidated.clear();
    for (char16_t c : std::u16string_view(u"WW")) control.WindowProc(wm::Char, c, 0);
    EXPECT_EQ(control.GetShapeText(n), u"AWW");
    const DeviceRect after = TextShape(n).BoundsAsRect();
    EXPECT_GT(after.right, before.right);
    EXPECT_EQ(after.left, before.left);
    ASSERT_FALSE(window.invalidated.empty());
    EXPECT_GE(window.invalidated.back().right, after.right) << "the new bounds are repainted";
    window.calls.clear();
    Painted();
    EXPECT_GT(View().CaretX, caretBefore);
    EXPECT_NE(std::find(window.calls.begin(), window.calls.end(),
                        "SetCaretPos " + std::to_string(View().CaretX) + "," + std::to_string(View().CaretY)),
              window.calls.end());
    control.WindowProc(wm::Char, 8, 0);
    EXPECT_EQ(control.GetShapeText(n), u"AW");
}

// A closed slot taken again shows the new font in the texts that still
// name it; a text drawn while its slot was closed stays with slot 0.
TEST_F(Texts, TextsOfAClosedFontFallBackToTheDefaultOnceDrawn)
{
    const int16_t big = control.FontOpen(u"Arial,30,N", 1);
    const int32_t drawn = control.TextAdd(1, u"x", 10, 90, big);
    const int32_t waiting = control.TextAdd(1, u"x", 60, 90, big);
    control.FontClose(big);
    TextShape(drawn).Render(View(), *window.GetDC(), {}, false);
    EXPECT_EQ(TextShape(drawn).Font.Slot(), 0);
    EXPECT_EQ(TextShape(drawn).Font.Height, 12);
    EXPECT_EQ(control.FontOpen(u"Courier New,20,N", 1), big);
    Painted();
    EXPECT_EQ(TextShape(drawn).Font.Slot(), 0);
    EXPECT_EQ(TextShape(waiting).Font.Slot(), big);
    const DeviceRect small = TextShape(drawn).BoundsAsRect(), large = TextShape(waiting).BoundsAsRect();
    EXPECT_LT(small.bottom - small.top, large.bottom - large.top);
}

} // namespace
} // namespace bvx::shapetest
