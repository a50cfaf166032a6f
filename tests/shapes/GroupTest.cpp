// Groups and points through the members a host calls: the colours members
// paint with, refusals that leave the drawing as it was, and a nest deeper
// than any call stack would carry.
#include "ShapeTestSupport.h"

#include "platform/DeviceContext.h"

#include <functional>
#include <string>

namespace bvx::shapetest {
namespace {

constexpr ColorRef kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kBlack = 0, kWhite = 0xFFFFFF;

class Groups : public ControlTest {
protected:
    // A square of side 10 whose left edge runs down device x `left`, rows 5 to 15.
    int32_t Square(double left) { return control.DrawRectangle(left, 95, left + 10, 85, 1); }
    int32_t Group(std::initializer_list<int32_t> members)
    {
        const int32_t g = control.ShapeAdd(bvxGroup, 1);
        for (int32_t m : members) EXPECT_TRUE(control.GroupAddShape(g, m));
        return g;
    }
    // The drawing as the host sees it: the lists of layer 1 and of every group
    // in it, what is selected, and where each shape's first point lies.
    std::string Drawing()
    {
        std::string text;
        std::function<void(const Variant&)> list = [&](const Variant& numbers) {
            text += "{";
            for (int32_t i = 0; i < numbers.Rows(); ++i) {
                const int32_t n = int32_t(numbers.At(i).Integer());
                text += std::to_string(n) + "@" + std::to_string(control.ShapePointGetX(n, 0)) + " ";
                if (control.GetShapeType(n) == bvxGroup) list(control.GetGroupShapeNumbers(n).value.value());
            }
            text += "}";
        };
        list(control.GetLayerShapeNumbers(1));
        list(control.GetShapeSelectNumbers());
        return text + std::to_string(control.GetShapeSelectNumber());
    }
};

// A member's own colours overrule its group's, and the group's the layer's,
// at every depth; without colours of its own the group passes on the layer's.
TEST_F(Groups, MembersPaintWithTheNearestColoursOfTheirOwnTheirGroupsOrTheirLayers)
{
    control.PutLayerPenFg(1, kRed);
    Square(5);
    const int32_t plain = Square(25), own = Square(45), deep = Square(65);
    const int32_t dot = control.DrawPoint(90, 50, 1);
    control.PutShapePenFg(own, kBlue);
    const int32_t inner = Group({deep});
    const int32_t outer = Group({plain, own, inner, dot});
    control.PutShapePenFg(outer, kGreen);

    const DevicePoint dotAt = View().World.WorldToDevice({90, 50});
    auto colours = [&] {
        auto dc = Painted();
        return std::vector<ColorRef>{dc->GetPixel(5, 10),  dc->GetPixel(25, 10), dc->GetPixel(45, 10),
                                     dc->GetPixel(65, 10), dc->GetPixel(dotAt.x, dotAt.y),
                                     dc->GetPixel(dotAt.x + 1, dotAt.y)};
    };
    EXPECT_EQ(colours(), (std::vector<ColorRef>{kRed, kGreen, kBlue, kGreen, kGreen, kWhite}));
    control.ShapeColorReset(outer);
    EXPECT_EQ(colours(), (std::vector<ColorRef>{kRed, kRed, kBlue, kRed, kRed, kWhite}));
    // Without Show the nested members are not drawn; the rest still are.
    control.PutGroupAction(inner, 2);
    EXPECT_EQ(colours(), (std::vector<ColorRef>{kRed, kRed, kBlue, kWhite, kRed, kWhite}));
}

// Each refusal answers false and leaves the drawing exactly as it was.
TEST_F(Groups, RefusalsLeaveTheDrawingUnchanged)
{
    const int32_t a = Square(5), b = Square(25), r = Square(45);
    const int32_t inner = Group({b});
    const int32_t outer = Group({a, inner});
    const int32_t empty = Group({});
    control.ShapeSelect(r, false);
    struct Case {
        const char* what;
        std::function<bool()> call;
    };
    const Case cases[] = {
        {"a group into itself", [&] { return control.GroupAddShape(outer, outer); }},
        {"a group into a group inside it", [&] { return control.GroupAddShape(inner, outer); }},
        {"a member of another group", [&] { return control.GroupAddShape(empty, b); }},
        {"into a shape that is no group", [&] { return control.GroupAddShape(r, empty); }},
        {"into an unknown group", [&] { return control.GroupAddShape(999, r); }},
        {"an unknown shape", [&] { return control.GroupAddShape(empty, 999); }},
        {"the selection into a shape that is no group", [&] { return control.GroupAddSelection(a); }},
        {"out of a group it is not in", [&] { return control.GroupRemoveShape(empty, a); }},
        {"out of the group above its own", [&] { return control.GroupRemoveShape(outer, b); }},
        {"everything out of a shape that is no group", [&] { return control.GroupRemoveAll(r); }},
    };
    const std::string before = Drawing();
    for (const Case& c : cases) {
        EXPECT_FALSE(c.call()) << c.what;
        EXPECT_EQ(Drawing(), before) << c.what;
    }
    control.ShapeSelect(-1, false);
    const std::string unselected = Drawing();
    EXPECT_FALSE(control.GroupAddSelection(empty)) << "nothing selected";
    EXPECT_EQ(Drawing(), unselected);
}

// Nesting is bounded by memory alone: building, painting, finding,
// transforming, copying and deleting a group inside 99,999 others.
TEST_F(Groups, ANestAHundredThousandDeepIsDrawnFoundMovedCopiedAndDeleted)
{
    constexpr int32_t kDepth = 100000;
    const int32_t leaf = Square(40);
    int32_t top = Group({leaf});
    for (int32_t i = 1; i < kDepth; ++i) {
        const int32_t outer = Group({});
        ASSERT_TRUE(control.GroupAddShape(outer, top));
        top = outer;
    }
    EXPECT_EQ(control.GetLayerShapeCount(1), 1);
    EXPECT_EQ(control.GetCadShapeCount(), 1);

    EXPECT_EQ(Painted()->GetPixel(40, 10), kBlack);
    EXPECT_EQ(control.ShapeHitTest(40, 90, 2), top);
    control.ShapeTranslate(top, 10, -20);
    EXPECT_EQ(control.ShapePointGetX(leaf, 0), 50);
    EXPECT_EQ(control.ShapePointGetY(leaf, 0), 75);
    EXPECT_EQ(control.GetShapeArea(top), 100);
    auto dc = Painted();
    EXPECT_EQ(dc->GetPixel(40, 10), kWhite);
    EXPECT_EQ(dc->GetPixel(50, 30), kBlack);

    const int32_t copy = control.ShapeToLayer(top, 1, true);
    EXPECT_EQ(control.GetCadShapeCount(), 2);
    EXPECT_EQ(control.GetShapeArea(copy), 100);

    sink.events.clear();
    control.ShapeDelete(top);
    ASSERT_EQ(sink.events.size(), size_t(kDepth) + 1);
    EXPECT_EQ(sink.events.front(), "ShapeNumberDeleted " + std::to_string(leaf));
    EXPECT_EQ(sink.events.back(), "ShapeNumberDeleted " + std::to_string(top));
    EXPECT_EQ(control.GetCadShapeCount(), 1);
    EXPECT_EQ(control.GetShapeType(leaf), 0);
    // The copy goes with the control, unannounced.
}

} // namespace
} // namespace bvx::shapetest
