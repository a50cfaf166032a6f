// Members that create, delete and describe shapes, and their points.
#include "CadControl.h"

#include "CadControlSupport.h"
#include "shapes/CPolyShape.h"
#include "shapes/Intersections.h"
#include "shapes/ShapeFactory.h"
#include "world/Rounding.h"
#include "shapes/CRectShape.h"

namespace bvx {

// ---- creating and deleting ----

int32_t CadControl::DrawShape(int16_t type, std::initializer_list<WorldPoint> points, int16_t layer)
{
    if (!view_.Buf.IsLayer(layer)) return kNoShape;
    const int32_t number = view_.CreateShape(type, layer);
    // The host may have deleted the shape from the event that announced it.
    CObjShape* shape = Shape(number);
    if (!shape) return number;
    int16_t index = 0;
    for (const WorldPoint& p : points) shape->SetPoint(index++, p.x, p.y, &view_);
    view_.InvalidateShape(shape, true);
    return number;
}

int32_t CadControl::DrawLine(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawShape(bvxLine, {{x1, y1}, {x2, y2}}, layer);
}
int32_t CadControl::DrawRectangle(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawShape(bvxRectangle, {{x1, y1}, {x2, y2}}, layer);
}
int32_t CadControl::DrawEllipse(double cx, double cy, double rx, double ry, int16_t layer)
{
    return DrawShape(bvxEllipse, {{cx, cy}, {rx, ry}}, layer);
}
int32_t CadControl::DrawCircle(double cx, double cy, double r, int16_t layer)
{
    return DrawShape(bvxCircle, {{cx, cy}, {r, r}}, layer);
}

int32_t CadControl::DrawArc(double cx, double cy, double rx, double ry, double start, double end, int16_t layer)
{
    return DrawShape(bvxArc, {{cx, cy}, {rx, ry}, {start, end}}, layer);
}
int32_t CadControl::DrawPieSlice(double cx, double cy, double rx, double ry, double start, double end, int16_t layer)
{
    return DrawShape(bvxPieSlice, {{cx, cy}, {rx, ry}, {start, end}}, layer);
}
int32_t CadControl::DrawChord(double cx, double cy, double rx, double ry, double start, double end, int16_t layer)
{
    return DrawShape(bvxChord, {{cx, cy}, {rx, ry}, {start, end}}, layer);
}

bool CadControl::ShapeConvert(int32_t number, int16_t type, int16_t mode, double value)
{
    if (mode < 0 || mode > 3) return false;
    CObjShape* source = Shape(number);
    // Texts, pictures, points and groups are no conversion's result.
    const bool convertible = type != bvxText && type != bvxPicture && type != bvxPoint && type != bvxGroup;
    std::unique_ptr<CObjShape> target = convertible ? NewShapeOfClass(type) : nullptr;
    if (!source || !target) return false;
    source->CopyBaseTo(*target);
    // The new shape keeps the look the old one had, inherited or not.
    target->SetAttr(view_.EffectiveAttr(*source));
    target->SetShapeType(uint8_t(type), 0);
    if (mode == 2 && view_.World.AngleMode == 1) value *= kDegreesToRadians;
    if (!source->ConvertTo(type, target.get(), mode, value, &view_)) return false;
    target->SetSearchMethod(source->GetSearchMethod());

    CadBuf& buf = view_.Buf;
    const bool wasSelected = source->Selected;
    const bool wasFocus = buf.FocusShape == source;
    CObjShape* otherFocus = wasFocus ? nullptr : buf.FocusShape;
    const int16_t layer = source->Layer;
    // Gone and back under the same number, and the host hears of neither.
    if (!view_.DeleteShape(source, false)) return false;
    CObjShape* converted = buf.AddShape(std::move(target), view_, layer, number, false);
    if (!converted) return false;
    if (wasSelected) buf.Select(converted);
    buf.FocusShape = wasFocus ? converted : otherFocus;
    if (!buf.FocusShape) buf.FocusPoint = -1;
    converted->UpdateBounds(view_);
    view_.InvalidateShape(converted, true);
    return true;
}

int32_t CadControl::DrawThreePointArc(double x1, double y1, double x2, double y2, double x3, double y3,
                                      int16_t layer)
{
    return DrawShape(bvx3PointArc, {{x1, y1}, {x2, y2}, {x3, y3}}, layer);
}

int32_t CadControl::DrawPoint(double x, double y, int16_t layer) { return DrawShape(bvxPoint, {{x, y}}, layer); }

int32_t CadControl::ShapeAdd(int32_t type, int16_t layer)
{
    if (!view_.Buf.IsLayer(layer) || type < 1 || type > 20) return kNoShape;
    return view_.CreateShape(int16_t(type), layer);
}

void CadControl::ShapeDelete(int32_t number)
{
    CObjShape* shape = Shape(number);
    if (view_.DrawInProgress && shape) {
        view_.CancelMouse();
        return;
    }
    view_.DeleteShape(shape, true);
}

void CadControl::ShapeSelectDelete()
{
    view_.CancelMouse();
    view_.Redraw(RedrawMode::DeleteSelection);
}

void CadControl::CadClearShapes(int16_t layer)
{
    if (layer != kAllLayers && !view_.Buf.IsLayer(layer)) return;
    // A shape being drawn goes with its layer: the draw must end first.
    if (layer == kAllLayers || layer == view_.Buf.CurrentLayerNumber) view_.CancelMouse();
    view_.Buf.ClearLayer(layer);
    view_.Redraw(RedrawMode::Full);
}

void CadControl::CadClearAll()
{
    view_.ClearDrawing();
    view_.Buf.Reset();
    view_.FontTable.InitDefaultFont();
    Refresh();
}

// ---- one shape ----

int16_t CadControl::GetShapeType(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetShapeType() : 0;
}
int16_t CadControl::ShapeOnLayer(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->Layer : -1;
}
int32_t CadControl::ShapeOnGroup(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->Group : -1;
}
double CadControl::GetShapeArea(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetArea() : 0.0;
}
std::u16string CadControl::GetShapeNotes(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->Notes : std::u16string();
}
void CadControl::PutShapeNotes(int32_t number, std::u16string notes)
{
    if (CObjShape* s = Shape(number)) s->Notes = std::move(notes);
}
int16_t CadControl::GetShapeSearchMethod(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetSearchMethod() : -1;
}
void CadControl::PutShapeSearchMethod(int32_t number, int16_t method)
{
    if (CObjShape* s = Shape(number)) s->SetSearchMethod(method);
}
int16_t CadControl::GetShapeLineType(int32_t number)
{
    const auto* line = dynamic_cast<const CRectShape*>(Shape(number));
    return line && line->GetShapeType() == bvxLine ? line->GetLineType() : -1;
}
void CadControl::PutShapeLineType(int32_t number, int16_t type)
{
    auto* line = dynamic_cast<CRectShape*>(Shape(number));
    if (!line || line->GetShapeType() != bvxLine) return;
    line->SetLineType(type);
    view_.InvalidateShape(line, true);
}
bool CadControl::GetShapeIsColorSet(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s && s->Attr;
}
void CadControl::ShapeColorReset(int32_t number)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    s->SetAttr(std::nullopt);
    view_.InvalidateShape(s, true);
}

// ---- points ----

int16_t CadControl::GetShapePointCount(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetPointCount() : -1;
}

double CadControl::RoundPoint(const CObjShape& shape, int16_t point, double value) const
{
    const CadWorld& w = view_.World;
    return RoundTo(value, shape.GetPointKind(point) == 2 ? w.WorldAnglePrecision : w.WorldCoordPrecision);
}

double CadControl::ShapePointGetX(int32_t number, int16_t point)
{
    const CObjShape* s = Shape(number);
    return s ? RoundPoint(*s, point, s->GetPoint(point, view_).x) : 0.0;
}

double CadControl::ShapePointGetY(int32_t number, int16_t point)
{
    const CObjShape* s = Shape(number);
    return s ? RoundPoint(*s, point, s->GetPoint(point, view_).y) : 0.0;
}

void CadControl::ShapePointSetX(int32_t number, int16_t point, double x)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    double y = s->GetPoint(point, view_).y;
    ChangeShape(*s, [&] { s->SetPoint(point, RoundPoint(*s, point, x), y, &view_); });
}

void CadControl::ShapePointSetY(int32_t number, int16_t point, double y)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    double x = s->GetPoint(point, view_).x;
    ChangeShape(*s, [&] { s->SetPoint(point, x, RoundPoint(*s, point, y), &view_); });
}

void CadControl::ShapePointSet(int32_t number, int16_t point, double x, double y)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    ChangeShape(*s, [&] { s->SetPoint(point, RoundPoint(*s, point, x), RoundPoint(*s, point, y), &view_); });
}

int16_t CadControl::ShapePointGetNearest(int32_t number, double x, double y)
{
    const CObjShape* s = Shape(number);
    return s ? s->NearestPoint(view_.World.WorldToDevice({x, y}), view_) : -1;
}

void CadControl::ShapePointSnapToGrid(int32_t number, int16_t point)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    WorldPoint p = s->GetPoint(point, view_);
    if (!view_.World.SnapToGrid(p)) return;
    ChangeShape(*s, [&] { s->SetPoint(point, p.x, p.y, &view_); });
}

// Only the lists of free points take or give up points; a three-point arc
// has exactly its three.
bool CadControl::ShapePointInsert(int32_t number, int16_t point, double x, double y)
{
    auto* poly = dynamic_cast<CPolyShape*>(Shape(number));
    if (!poly || poly->GetShapeType() > bvxClosedSpline) return false;
    bool done = false;
    ChangeShape(*poly, [&] { done = poly->InsertPoint(point, x, y, view_); });
    return done;
}

bool CadControl::ShapePointDelete(int32_t number, int16_t point)
{
    auto* poly = dynamic_cast<CPolyShape*>(Shape(number));
    if (!poly || poly->GetShapeType() > bvxClosedSpline) return false;
    bool done = false;
    ChangeShape(*poly, [&] { done = poly->DeletePoint(point, view_); });
    return done;
}

Variant CadControl::ShapeIntersectPoints(int32_t number, int16_t layer)
{
    constexpr int32_t kColumns = 3;
    std::vector<Variant> cells;
    const CObjShape* source = Shape(number);
    if (source && CanIntersect(*source)) {
        auto ordered = [](WorldRect r) {
            return WorldRect{std::min(r.left, r.right), std::min(r.top, r.bottom), std::max(r.left, r.right),
                             std::max(r.top, r.bottom)};
        };
        const WorldRect reach = ordered(source->GetWorldBounds(view_));
        std::vector<WorldPoint> found;
        const CadBuf& buf = view_.Buf;
        for (size_t l = buf.Layers.size(); l-- > 1;) {
            const CadLayer& each = *buf.Layers[l];
            if (!(each.Action & LayerActions::Show) || (layer != kAllLayers && layer != int16_t(l))) continue;
            for (size_t i = each.Shapes.size(); i-- > 0;) {
                const CObjShape& other = *each.Shapes[i];
                if (&other == source || !CanIntersect(other)) continue;
                const WorldRect b = ordered(other.GetWorldBounds(view_));
                if (b.right < reach.left || b.left > reach.right || b.bottom < reach.top || b.top > reach.bottom)
                    continue;
                found.clear();
                IntersectPoints(*source, other, found);
                for (const WorldPoint& p : found) {
                    cells.push_back(Variant::I4(other.Number));
                    cells.push_back(Variant::R8(p.x));
                    cells.push_back(Variant::R8(p.y));
                }
            }
        }
    }
    const int32_t rows = int32_t(cells.size() / kColumns);
    return Variant::Array2D(VarType::Variant, rows, kColumns, std::move(cells));
}

} // namespace bvx
