// What the container hears of the two bindable properties and of a view
// that changed while the control has no window.
#include "HostDoubles.h"
#include "control/CadControl.h"
#include "platform/raster/RasterDeviceContext.h"

#include <gtest/gtest.h>

namespace bvx {
namespace {

struct RecordingContainer : PropertyNotifySink, ViewChangeSink {
    std::vector<std::string> heard;
    bool refuse = false;
    bool OnRequestEdit(int32_t dispid) override
    {
        heard.push_back("request " + std::to_string(dispid));
        return !refuse;
    }
    void OnChanged(int32_t dispid) override { heard.push_back("changed " + std::to_string(dispid)); }
    void OnViewChange() override { heard.push_back("view"); }
    void OnDataChange() override { heard.push_back("data"); }
};

TEST(ContainerNotify, BindablePropertiesAskTellAndMayBeRefused)
{
    CadControl control;
    RecordingContainer first, second;
    control.AdvisePropertyNotify(&first);
    control.AdvisePropertyNotify(&second);
    control.SetViewChangeSink(&first);

    EXPECT_EQ(control.PutBackColor(0xFFFFFF).code, hresult::Ok); // the same colour: nobody hears
    EXPECT_TRUE(first.heard.empty());
    EXPECT_FALSE(control.IsDirty());

    EXPECT_EQ(control.PutGridHeight(2.5).code, hresult::Ok);
    EXPECT_EQ(first.heard, (std::vector<std::string>{"request 122", "changed 122", "view", "data"}));
    EXPECT_EQ(second.heard, (std::vector<std::string>{"request 122", "changed 122"}));
    EXPECT_TRUE(control.IsDirty());

    // The first refusal ends the walk and the value stays.
    first.heard.clear();
    second.heard.clear();
    first.refuse = true;
    EXPECT_EQ(control.PutBackColor(0x123456).code, hresult::False);
    EXPECT_EQ(control.GetBackColor(), 0xFFFFFFu);
    EXPECT_EQ(first.heard, (std::vector<std::string>{"request -501"}));
    EXPECT_TRUE(second.heard.empty());

    // Frozen, the property sinks are neither asked nor told. The view was
    // told and not painted since: it isn't told again.
    control.FreezeEvents(true);
    first.heard.clear();
    EXPECT_EQ(control.PutBackColor(0x123456).code, hresult::Ok);
    EXPECT_EQ(control.GetBackColor(), 0x123456u);
    EXPECT_EQ(first.heard, (std::vector<std::string>{"data"}));
    control.FreezeEvents(false);

    control.UnadvisePropertyNotify(&first);
    EXPECT_EQ(control.PutGridHeight(4).code, hresult::Ok);
    EXPECT_EQ(second.heard, (std::vector<std::string>{"request 122", "changed 122"}));
}

// Shapes changed with no window tell the view once until the container
// has the control paint.
TEST(ContainerNotify, AChangedViewIsToldOnceUntilPainted)
{
    CadControl control;
    RecordingContainer container;
    control.SetViewChangeSink(&container);
    RasterDeviceContext dc(CreateBitmap(50, 50));
    for (int round = 0; round < 2; ++round) {
        container.heard.clear();
        const int32_t shape = control.DrawRectangle(1, 1, 5, 5, 1);
        control.PutShapePenFg(shape, 0xFF);
        EXPECT_EQ(container.heard, std::vector<std::string>{"view"});
        control.OnDraw(nullptr, dc, {0, 0, 50, 50});
    }
}

// With a window, a refresh invalidates it; the container is not told.
TEST(ContainerNotify, AWindowIsInvalidatedInsteadOfTellingTheContainer)
{
    testing::RecordingHostWindow window;
    CadControl control(&window);
    RecordingContainer container;
    control.SetViewChangeSink(&container);
    control.Refresh();
    EXPECT_EQ(window.invalidated.size(), 1u);
    EXPECT_TRUE(container.heard.empty());
}

} // namespace
} // namespace bvx
