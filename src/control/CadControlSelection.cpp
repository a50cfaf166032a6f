// Selection, z-order, moving shapes between layers and hit tests.
#include "CadControl.h"

#include "CadControlSupport.h"

namespace bvx {

// ---- selection ----

bool CadControl::ShapeSelect(int32_t number, bool add)
{
    view_.CancelMouse();
    if (number == -1) {
        view_.ClearSelection(nullptr);
        return true;
    }
    CObjShape* shape = Shape(number);
    if (!shape) return false;
    if (!add) view_.ClearSelection(nullptr);
    CObjShape* formerFocus = view_.Buf.FocusShape;
    view_.Buf.Select(shape);
    view_.InvalidateShape(shape, true);
    // The former focus shape's handles turn from black to white.
    if (formerFocus && formerFocus != shape) view_.InvalidateShape(formerFocus, true);
    view_.Fire<&EventSink::ShapeNumberSelected>(shape->GetShapeType(), shape->Number);
    return true;
}

void CadControl::ShapeSelectRect(double x1, double y1, double x2, double y2)
{
    view_.CancelMouse();
    DeviceRect r = OrderedRect(view_.World.WorldRectToDevice({x1, y1}, {x2, y2}));
    view_.Buf.SelectInRect(r, false, view_);
    view_.Redraw(RedrawMode::Selection);
}

void CadControl::ShapeSelectMoveDelta(double dx, double dy)
{
    for (size_t i = 0; i < view_.Buf.Selection.size(); ++i) {
        CObjShape* shape = view_.Buf.Selection[i];
        shape->Move({dx, dy}, view_);
        view_.InvalidateShape(shape, true);
    }
}

int32_t CadControl::GetShapeSelectCount() { return int32_t(view_.Buf.Selection.size()); }

Variant CadControl::GetShapeSelectNumbers()
{
    std::vector<Variant> numbers;
    for (const CObjShape* s : view_.Buf.Selection) numbers.push_back(Variant::I4(s->Number));
    return Variant::Array1D(VarType::I4, std::move(numbers));
}

bool CadControl::GetShapeIsSelected(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s && s->Selected;
}

int16_t CadControl::GetShapeSelectType() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->GetShapeType() : 0; }
int16_t CadControl::GetShapeSelectLayer() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->Layer : 0; }
int32_t CadControl::GetShapeSelectNumber() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->Number : 0; }
int16_t CadControl::GetShapeSelectPoint() { return view_.Buf.FocusPoint; }

// ---- z-order ----

void CadControl::ShapeToFront(int32_t number)
{
    if (CObjShape* s = Shape(number)) {
        view_.Buf.ToFront(s);
        view_.InvalidateShape(s, true);
    }
}

void CadControl::ShapeToBack(int32_t number)
{
    if (CObjShape* s = Shape(number)) {
        view_.Buf.ToBack(s);
        view_.InvalidateShape(s, true);
    }
}

void CadControl::ShapeZOrderJump(int32_t number, int32_t levels)
{
    if (CObjShape* s = Shape(number)) {
        view_.Buf.ZOrderJump(s, levels);
        view_.InvalidateShape(s, true);
    }
}

int32_t CadControl::GetShapeZOrder(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? view_.Buf.GetZOrder(s) : -1;
}

void CadControl::PutShapeZOrder(int32_t number, int32_t position)
{
    if (CObjShape* s = Shape(number)) {
        view_.Buf.SetZOrder(s, position);
        view_.InvalidateShape(s, true);
    }
}

// ---- layers of shapes and hit tests ----

int32_t CadControl::ShapeToLayer(int32_t number, int16_t layer, bool copy)
{
    CObjShape* s = Shape(number);
    CadBuf& buf = view_.Buf;
    if (!s || s->Group != -1 || !buf.IsLayer(layer)) return kNoShape;
    bool wasSelected = s->Selected, wasFocus = buf.FocusShape == s;
    if (wasSelected) buf.Deselect(s);
    // Another shape's focus survives the move: Select would take it.
    CObjShape* otherFocus = buf.FocusShape;
    view_.InvalidateShape(s, false);
    CObjShape* placed = nullptr;
    if (copy) {
        std::unique_ptr<CObjShape> clone = s->Clone(buf.CopyMode);
        clone->Number = ++buf.NextShapeNumber;
        clone->Layer = layer;
        placed = clone.get();
        buf.Layers[size_t(layer)]->Shapes.push_back(std::move(clone));
        buf.ShapeMap.Insert(placed->Number, placed);
        if (placed->GroupList()) buf.NumberGroupMembers(placed);
    } else {
        std::unique_ptr<CObjShape> moved = buf.DetachShape(s);
        if (!moved) return kNoShape;
        moved->Layer = layer;
        placed = moved.get();
        buf.Layers[size_t(layer)]->Shapes.push_back(std::move(moved));
    }
    if (wasSelected) buf.Select(placed);
    buf.FocusShape = wasFocus ? placed : otherFocus;
    view_.InvalidateShape(placed, true);
    return placed->Number;
}

int32_t CadControl::ShapeHitTest(double x, double y, int16_t searchMethod)
{
    DevicePoint p = view_.World.WorldToDevice({x, y});
    CadBuf& buf = view_.Buf;
    // Only Show counts here: a layer closed to the mouse still answers.
    for (size_t l = buf.Layers.size(); l-- > 1;) {
        CadLayer& layer = *buf.Layers[l];
        if (!(layer.Action & LayerActions::Show)) continue;
        for (size_t i = layer.Shapes.size(); i-- > 0;) {
            CObjShape& shape = *layer.Shapes[i];
            bool hit;
            if (searchMethod == 2) {
                hit = shape.HitTest(p, view_) != 0;
            } else {
                int16_t saved = shape.GetSearchMethod();
                shape.SetSearchMethod(searchMethod == 0 || shape.GetShapeType() == bvxLine ? 0 : 1);
                hit = shape.HitTest(p, view_) != 0;
                shape.SetSearchMethod(saved);
            }
            if (hit) return shape.Number;
        }
    }
    return kNoShape;
}

} // namespace bvx
