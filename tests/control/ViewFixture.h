// A view at 101 by 101 pixels showing world 0 to 100, with recording
// doubles for its window and its events, and quick ways to add shapes.
#pragma once

#include "HostDoubles.h"
#include "control/CadView.h"
#include "shapes/CEllipseShape.h"
#include "shapes/CRectShape.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unordered_set>

namespace bvx::testing {

class ViewFixture : public ::testing::Test {
protected:
    ViewFixture() : view(&window, &sink) { view.World.SetClientRect({0, 0, 101, 101}); }

    // A shape of two points: corners, or a centre and radii.
    template <typename Shape> Shape* Add(int16_t type, int32_t layer, WorldPoint p0, WorldPoint p1)
    {
        auto* shape = static_cast<Shape*>(view.Buf.FindShape(view.CreateShape(type, layer)));
        if (shape) shape->SetPoint(0, p0.x, p0.y, &view), shape->SetPoint(1, p1.x, p1.y, &view);
        return shape;
    }
    CRectShape* AddRect(double x1, double y1, double x2, double y2, int32_t layer = 1, int16_t type = bvxRectangle)
    {
        return Add<CRectShape>(type, layer, {x1, y1}, {x2, y2});
    }
    CEllipseShape* AddEllipse(double cx, double cy, double rx, double ry, int32_t layer = 1, int16_t type = bvxEllipse)
    {
        return Add<CEllipseShape>(type, layer, {cx, cy}, {rx, ry});
    }

    DevicePoint Device(double x, double y) const { return view.World.WorldToDevice({x, y}); }

    RecordingHostWindow window;
    RecordingEventSink sink;
    CadView view;
};

// The numbers of the shapes of one layer, or of all layers, in their order.
inline std::vector<int32_t> ShapeNumbers(const CadBuf& buf, int layer = -1)
{
    std::vector<int32_t> numbers;
    for (size_t l = 0; l < buf.Layers.size(); ++l)
        if (layer < 0 || size_t(layer) == l)
            for (const auto& s : buf.Layers[l]->Shapes) numbers.push_back(s->Number);
    return numbers;
}

// Empty while layers, number table, selection and focus agree; else the
// first thing that doesn't.
inline std::string DrawingInconsistency(const CadView& view)
{
    const CadBuf& buf = view.Buf;
    const auto& sel = buf.Selection;
    auto shape = [](const CObjShape& s) { return "shape " + std::to_string(s.Number); };
    std::unordered_set<const CObjShape*> listed;
    for (size_t l = 0; l < buf.Layers.size(); ++l) {
        for (const auto& s : buf.Layers[l]->Shapes) {
            listed.insert(s.get());
            if (buf.FindShape(s->Number) != s.get()) return shape(*s) + " isn't found by its number";
            if (s->Layer != int16_t(l))
                return shape(*s) + " in layer " + std::to_string(l) + " names layer " + std::to_string(s->Layer);
            if (s->Selected && std::find(sel.begin(), sel.end(), s.get()) == sel.end())
                return shape(*s) + " is marked selected but isn't in the selection";
        }
    }
    if (buf.ShapeMap.Size() != listed.size())
        return "number table holds " + std::to_string(buf.ShapeMap.Size()) + ", layers " +
               std::to_string(listed.size());
    std::unordered_set<const CObjShape*> seen;
    int unnumbered = 0;
    for (const CObjShape* s : sel) {
        if (!seen.insert(s).second) return "a shape is twice in the selection";
        // Only the shape being drawn, before it has its number, is outside every layer.
        if (!listed.count(s)) {
            if (!view.DrawInProgress) return "a selected shape is in no layer, with no draw in progress";
            if (s->Number != -1 || ++unnumbered > 1) return "a numbered selected shape is in no layer";
        }
        if (!s->Selected) return "selected " + shape(*s) + " isn't marked selected";
    }
    if (buf.FocusShape && !listed.count(buf.FocusShape) && !seen.count(buf.FocusShape))
        return "the focus shape is neither in a layer nor selected";
    return {};
}

} // namespace bvx::testing
