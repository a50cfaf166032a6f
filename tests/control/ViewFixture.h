// A view at 101 by 101 pixels showing world 0 to 100, with recording
// doubles for its window and its events, and quick ways to add shapes.
#pragma once

#include "HostDoubles.h"
#include "control/CadView.h"
#include "shapes/CEllipseShape.h"
#include "shapes/CRectShape.h"

#include <gtest/gtest.h>

namespace bvx::testing {

class ViewFixture : public ::testing::Test {
protected:
    ViewFixture() : view(&window, &sink) { view.World.SetClientRect({0, 0, 101, 101}); }

    CRectShape* AddRect(double x1, double y1, double x2, double y2, int32_t layer = 1, int16_t type = bvxRectangle)
    {
        auto* shape = static_cast<CRectShape*>(view.Buf.FindShape(view.CreateShape(type, layer)));
        if (!shape) return nullptr;
        shape->SetPoint(0, x1, y1, &view);
        shape->SetPoint(1, x2, y2, &view);
        return shape;
    }

    CEllipseShape* AddEllipse(double cx, double cy, double rx, double ry, int32_t layer = 1,
                              int16_t type = bvxEllipse)
    {
        auto* shape = static_cast<CEllipseShape*>(view.Buf.FindShape(view.CreateShape(type, layer)));
        if (!shape) return nullptr;
        shape->SetPoint(0, cx, cy, &view);
        shape->SetPoint(1, rx, ry, &view);
        return shape;
    }

    DevicePoint Device(double x, double y) const { return view.World.WorldToDevice({x, y}); }

    RecordingHostWindow window;
    RecordingEventSink sink;
    CadView view;
};

} // namespace bvx::testing
