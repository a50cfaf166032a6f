// Groups through the members a host calls: the colours members paint with,
// and a nest deeper than any call stack would carry. Refusals are a script
// case (scripts/group_refusals.bvxs).
#include "ShapeTestSupport.h"

#include "platform/DeviceContext.h"

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
