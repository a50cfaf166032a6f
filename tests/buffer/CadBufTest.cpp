#include "control/ViewFixture.h"


namespace bvx {
namespace {

using Buf = testing::ViewFixture;

// What a copy holds is a script case (layer_copy); here, that copying onto
// a layer leaves no trace of the shapes it held.
TEST_F(Buf, CopyingOntoALayerLeavesTheDrawingConsistent)
{
    AddRect(0, 0, 5, 5);
    AddEllipse(50, 50, 10, 5);
    ASSERT_TRUE(view.Buf.CopyLayer(1, 7, true, view));
    ASSERT_TRUE(view.Buf.CopyLayer(1, 2, false, view));
    EXPECT_EQ(testing::DrawingInconsistency(view), "");
}

TEST_F(Buf, SelectionRules)
{
    auto* a = AddRect(0, 0, 10, 10);
    auto* b = AddRect(20, 20, 30, 30);
    EXPECT_FALSE(view.Buf.Deselect(a)); // nothing selected
    view.Buf.Select(a);
    view.Buf.Select(b);
    view.Buf.Select(a); // only the focus moves
    EXPECT_EQ(view.Buf.Selection, (std::vector<CObjShape*>{a, b}));
    EXPECT_EQ(view.Buf.FocusShape, a);
    view.Buf.FocusPoint = 3;
    EXPECT_TRUE(view.Buf.Deselect(a));
    EXPECT_EQ(view.Buf.FocusShape, nullptr);
    EXPECT_EQ(view.Buf.FocusPoint, -1);
    EXPECT_EQ(a->Selected, 0);
    EXPECT_FALSE(view.Buf.Deselect(a));
    EXPECT_TRUE(view.Buf.Deselect(nullptr));
    EXPECT_EQ(b->Selected, 0);
    EXPECT_FALSE(view.Buf.Deselect(nullptr));
}

TEST_F(Buf, HitTestSearchesFromTheTopLayerAndHonoursShowAndFind)
{
    view.Buf.AddLayer(u"Top");
    auto* below = AddRect(10, 10, 40, 40, 1);
    auto* above = AddRect(10, 10, 40, 40, 2);
    view.Buf.Layers[0]->Shapes.clear(); // nothing on the Buffer Layer is ever found
    below->SetSearchMethod(kSearchInShape);
    above->SetSearchMethod(kSearchInShape);
    int16_t action = 0;
    DevicePoint inside = Device(25, 25);
    EXPECT_EQ(view.Buf.HitTest(inside, false, true, action, view), above);
    EXPECT_EQ(action, LayerActions::All);
    view.Buf.Layers[2]->SetAction(LayerActions::Find); // not shown: not found
    EXPECT_EQ(view.Buf.HitTest(inside, false, true, action, view), below);
    view.Buf.Layers[1]->SetAction(LayerActions::Show); // shown, not findable
    EXPECT_EQ(view.Buf.HitTest(inside, false, true, action, view), nullptr);
    EXPECT_EQ(view.Buf.HitTest(Device(80, 80), false, true, action, view), nullptr);
}

TEST_F(Buf, SnappingHitMovesThePointerToTheNearestHandle)
{
    auto* r = AddRect(10, 10, 40, 40);
    r->SetSearchMethod(kSearchInShape);
    view.World.CursorScreenPos = {600, 700};
    DevicePoint press = Device(13, 13); // near the corner p1
    int16_t action = 0;
    EXPECT_EQ(view.Buf.HitTest(press, true, false, action, view), r);
    DevicePoint corner = Device(10, 10);
    EXPECT_EQ(window.calls.back(), "SetCursorPos " + std::to_string(600 - press.x + corner.x) + "," +
                                       std::to_string(700 - press.y + corner.y));
    EXPECT_EQ(view.World.LastSnapWorld, (WorldPoint{10, 10}));
    EXPECT_EQ(view.World.LastSnapDevice, corner);
}

TEST_F(Buf, ClearAllEmptiesEverythingUntilReset)
{
    AddRect(0, 0, 1, 1);
    view.Buf.Select(view.Buf.FindShape(1));
    view.Buf.ClearAll();
    EXPECT_TRUE(view.Buf.Layers.empty());
    EXPECT_TRUE(view.Buf.ShapeMap.Empty());
    EXPECT_TRUE(view.Buf.Selection.empty());
    EXPECT_EQ(view.CreateShape(bvxRectangle, 1), -1);
    view.Buf.Reset();
    EXPECT_EQ(view.Buf.Layers.size(), 2u);
    EXPECT_EQ(AddRect(0, 0, 1, 1)->Number, 1);
}

} // namespace
} // namespace bvx
