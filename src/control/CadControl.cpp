#include "CadControl.h"

#include "buffer/Rounding.h"
#include "shapes/CRectShape.h"

#include <cmath>

namespace bvx {

namespace {
constexpr int16_t kAllLayers = -1;
constexpr int32_t kNoShape = -1;

bool HasTool(int32_t tool) { return (tool >= -3 && tool <= 15) || (tool >= 17 && tool <= 20); }
} // namespace

CadControl::CadControl(HostWindow* window, EventSink* sink) : view_(window, sink) {}

bool CadControl::UserMode() const { return !view_.Window || view_.Window->UserMode(); }

template <typename Change> void CadControl::ChangeShape(CObjShape& shape, Change change)
{
    view_.InvalidateShape(&shape, false);
    change();
    view_.InvalidateShape(&shape, true);
}

void CadControl::Refresh()
{
    view_.NeedRepaint = 1;
    view_.RebuildBackBuffer = 1;
    if (view_.Window) view_.Window->InvalidateRect(nullptr, false);
}

uint32_t CadControl::GetBackColor() { return backColor_; }

Status CadControl::PutBackColor(uint32_t color)
{
    if (color == backColor_) return {};
    backColor_ = color;
    view_.BackColorCopy = color;
    Refresh();
    return {};
}

// ---- world ----

double CadControl::GetWorldLeft() { return view_.World.RoundCoord(view_.World.WorldLeft); }
double CadControl::GetWorldTop() { return view_.World.RoundCoord(view_.World.WorldTop); }
double CadControl::GetWorldRight() { return view_.World.RoundCoord(view_.World.WorldRight); }
double CadControl::GetWorldBottom() { return view_.World.RoundCoord(view_.World.WorldBottom); }

// Left and right let the X scale decide a square world, top and bottom the Y.
void CadControl::PutWorldLeft(double v)
{
    view_.World.SetEdge(view_.World.WorldLeft, v, 2);
    view_.Redraw(0);
}
void CadControl::PutWorldRight(double v)
{
    view_.World.SetEdge(view_.World.WorldRight, v, 2);
    view_.Redraw(0);
}
void CadControl::PutWorldTop(double v)
{
    view_.World.SetEdge(view_.World.WorldTop, v, 1);
    view_.Redraw(0);
}
void CadControl::PutWorldBottom(double v)
{
    view_.World.SetEdge(view_.World.WorldBottom, v, 1);
    view_.Redraw(0);
}

void CadControl::WorldSet(double left, double top, double right, double bottom)
{
    view_.World.SetWorld(left, top, right, bottom, 0);
    Refresh();
}

void CadControl::WorldPan(double dx, double dy)
{
    view_.World.Pan(dx, dy);
    view_.Redraw(0);
}

bool CadControl::GetWorldSquare() { return view_.World.WorldSquare != 0; }

void CadControl::PutWorldSquare(bool on)
{
    view_.World.SetWorldSquare(on);
    view_.Redraw(0);
}

double CadControl::GetAbsToWorldX(int32_t x) { return view_.World.RoundCoord(view_.World.DeviceToWorld({x, 0}).x); }
double CadControl::GetAbsToWorldY(int32_t y) { return view_.World.RoundCoord(view_.World.DeviceToWorld({0, y}).y); }
int32_t CadControl::GetWorldToAbsX(double x) { return view_.World.WorldToDevice({x, 0}).x; }
int32_t CadControl::GetWorldToAbsY(double y) { return view_.World.WorldToDevice({0, y}).y; }

int16_t CadControl::GetAngleMode() { return view_.World.AngleMode; }
void CadControl::PutAngleMode(int16_t v) { view_.World.SetAngleMode(v); }
int16_t CadControl::GetWorldCoordPrecision() { return view_.World.WorldCoordPrecision; }
void CadControl::PutWorldCoordPrecision(int16_t v) { view_.World.SetWorldCoordPrecision(v); }
int16_t CadControl::GetWorldAnglePrecision() { return view_.World.WorldAnglePrecision; }
void CadControl::PutWorldAnglePrecision(int16_t v) { view_.World.SetWorldAnglePrecision(v); }

void CadControl::WorldExtents()
{
    CadWorld& w = view_.World;
    if (view_.Buf.Layers.size() < 2) return;
    uint8_t square = w.WorldSquare;
    w.WorldSquare = 1;
    w.Recalculate(0);
    bool any = false;
    WorldRect all{};
    auto unite = [&](WorldRect b) {
        // Ordered in the sense of the axes, so that left is where the world starts.
        if ((b.right - b.left) * w.SignX < 0) std::swap(b.left, b.right);
        if ((b.bottom - b.top) * w.SignY < 0) std::swap(b.top, b.bottom);
        if (!any) {
            all = b;
            any = true;
            return;
        }
        auto lower = [](double a, double b, int16_t sign) { return sign > 0 ? std::min(a, b) : std::max(a, b); };
        auto upper = [](double a, double b, int16_t sign) { return sign > 0 ? std::max(a, b) : std::min(a, b); };
        all = {lower(all.left, b.left, w.SignX), lower(all.top, b.top, w.SignY), upper(all.right, b.right, w.SignX),
               upper(all.bottom, b.bottom, w.SignY)};
    };
    for (size_t l = view_.Buf.Layers.size(); l-- > 1;) {
        const CadLayer& layer = *view_.Buf.Layers[l];
        if (!(layer.Action & LayerActions::Show)) continue;
        for (size_t i = layer.Shapes.size(); i-- > 0;) unite(layer.Shapes[i]->GetWorldBounds(w));
    }
    w.SetWorld(all.left, all.top, all.right, all.bottom, 0);
    // Centre what was found in the window the square rule made.
    double dy = std::fabs(w.RoundCoord(w.WorldBottom) - w.RoundCoord(w.WorldTop)) - std::fabs(all.bottom - all.top);
    double dx = std::fabs(w.RoundCoord(w.WorldRight) - w.RoundCoord(w.WorldLeft)) - std::fabs(all.right - all.left);
    double hy = std::fabs(dy) / 2 * w.SignY, hx = std::fabs(dx) / 2 * w.SignX;
    w.SetWorld(all.left - hx, all.top - hy, all.right + hx, all.bottom + hy, 0);
    w.WorldSquare = square;
    w.Recalculate(0);
    view_.Redraw(0);
}

// ---- mouse, keys and view modes ----

Reply<int32_t> CadControl::GetViewMouseTool()
{
    if (!HasTool(view_.CurrentTool)) return Reply<int32_t>::Unwritten();
    return Reply<int32_t>::With(view_.CurrentTool);
}

void CadControl::PutViewMouseTool(int32_t tool)
{
    view_.CancelMouse();
    view_.SetMouseTool(int16_t(tool));
}

bool CadControl::GetViewPersistMouseTool() { return view_.ViewPersistMouseTool != 0; }
void CadControl::PutViewPersistMouseTool(bool on)
{
    view_.ViewPersistMouseTool = on;
    if (!on) view_.SetMouseTool(bvxSelect);
}
bool CadControl::GetViewKeyDelete() { return view_.ViewKeyDelete != 0; }
void CadControl::PutViewKeyDelete(bool on) { view_.ViewKeyDelete = on; }
bool CadControl::GetViewKeyCopy() { return view_.ViewKeyCopy != 0; }
void CadControl::PutViewKeyCopy(bool on) { view_.ViewKeyCopy = on; }
bool CadControl::GetViewKeySelect() { return view_.ViewKeySelect != 0; }
void CadControl::PutViewKeySelect(bool on) { view_.ViewKeySelect = on; }
int16_t CadControl::GetViewMouseBounds() { return view_.Buf.MouseBounds; }
void CadControl::PutViewMouseBounds(int16_t v) { view_.Buf.SetMouseBounds(v); }
bool CadControl::GetViewShowTracker() { return view_.Buf.ShowTracker != 0; }
void CadControl::PutViewShowTracker(bool on)
{
    view_.Buf.ShowTracker = on;
    view_.Redraw(0);
}
bool CadControl::GetViewDrawOrthogonal() { return view_.ViewDrawOrthogonal != 0; }
void CadControl::PutViewDrawOrthogonal(bool on) { view_.ViewDrawOrthogonal = on; }
int16_t CadControl::GetViewSelectMode() { return view_.Buf.SelectMode; }
void CadControl::PutViewSelectMode(int16_t v) { view_.Buf.SetSelectMode(v); }
int16_t CadControl::GetViewCopyMode() { return view_.Buf.CopyMode; }
void CadControl::PutViewCopyMode(int16_t v) { view_.Buf.SetCopyMode(v); }
int16_t CadControl::GetViewShapeMoveMode() { return view_.Buf.ShapeMoveMode; }
void CadControl::PutViewShapeMoveMode(int16_t v) { view_.Buf.SetShapeMoveMode(v); }
int32_t CadControl::GetViewHeight() { return int32_t(std::abs(view_.World.ClientRect.Height())); }
int32_t CadControl::GetViewWidth() { return int32_t(std::abs(view_.World.ClientRect.Width())); }

int32_t CadControl::GetCadShapeCount()
{
    int64_t count = 0;
    for (const auto& layer : view_.Buf.Layers) count += int64_t(layer->Shapes.size());
    return int32_t(count);
}

int16_t CadControl::GetHiddenViewDialogType() { return view_.HiddenViewDialogType; }
void CadControl::PutHiddenViewDialogType(int16_t v) { view_.HiddenViewDialogType = v; }
int32_t CadControl::GetHiddenViewDialogData() { return view_.HiddenViewDialogData; }
void CadControl::PutHiddenViewDialogData(int32_t v) { view_.HiddenViewDialogData = v; }

// ---- snap ----

int16_t CadControl::GetViewSnapToShape() { return view_.Buf.SnapToShape; }
void CadControl::PutViewSnapToShape(int16_t v) { view_.Buf.SnapToShape = v; }
int16_t CadControl::GetViewSnapToGrid() { return view_.Buf.SnapToGrid; }
void CadControl::PutViewSnapToGrid(int16_t v) { view_.Buf.SetSnapToGrid(v); }
int16_t CadControl::GetViewSnapMode() { return view_.Buf.SnapMode; }
void CadControl::PutViewSnapMode(int16_t v) { view_.Buf.SetSnapMode(v); }
bool CadControl::GetViewSnapMarkerOn() { return view_.Buf.SnapMarkerOn != 0; }
void CadControl::PutViewSnapMarkerOn(bool on) { view_.Buf.SnapMarkerOn = on; }
uint32_t CadControl::GetViewSnapMarkerColor() { return view_.StoredColor(view_.Buf.SnapMarkerAttr.PenColor()); }
void CadControl::PutViewSnapMarkerColor(uint32_t color)
{
    view_.Buf.SnapMarkerAttr.SetPenColor(uint32_t(view_.ColorIndex(color)));
    view_.Redraw(0);
}

// ---- grid ----

void CadControl::GridSet(bool on, double width, double height, uint32_t color)
{
    view_.World.GridSet(on, width, height, color);
    view_.Redraw(0);
}
bool CadControl::GetGridOn() { return view_.World.GridOn != 0; }
void CadControl::PutGridOn(bool on)
{
    view_.World.GridOn = on;
    view_.Redraw(0);
}
uint32_t CadControl::GetGridColor() { return view_.World.GridColor; }
void CadControl::PutGridColor(uint32_t color)
{
    view_.World.GridColor = color;
    view_.Redraw(0);
}
double CadControl::GetGridWidth() { return view_.World.GridWidth; }
void CadControl::PutGridWidth(double v)
{
    view_.World.GridWidth = view_.World.RoundCoord(v);
    view_.Redraw(0);
}
double CadControl::GetGridHeight() { return view_.World.GridHeight; }
void CadControl::PutGridHeight(double v)
{
    if (v == view_.World.GridHeight) return;
    view_.World.GridHeight = view_.World.RoundCoord(v);
    Refresh();
}
int16_t CadControl::GetGridDrawOrder() { return view_.World.GridDrawOrder; }
void CadControl::PutGridDrawOrder(int16_t v)
{
    int16_t before = view_.World.GridDrawOrder;
    view_.World.SetGridDrawOrder(v);
    if (before != view_.World.GridDrawOrder) view_.Redraw(0);
}

// ---- creating and deleting ----

int32_t CadControl::DrawShape(int16_t type, WorldPoint first, WorldPoint second, int16_t layer)
{
    if (!view_.Buf.IsLayer(layer)) return kNoShape;
    CObjShape* shape = view_.CreateShape(type, layer);
    if (!shape) return kNoShape;
    // The host may have deleted the shape from the event that announced it.
    int32_t number = shape->number;
    if (!(shape = Shape(number))) return number;
    shape->SetPoint(0, first.x, first.y, &view_);
    shape->SetPoint(1, second.x, second.y, &view_);
    view_.InvalidateShape(shape, true);
    return number;
}

int32_t CadControl::DrawLine(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawShape(bvxLine, {x1, y1}, {x2, y2}, layer);
}
int32_t CadControl::DrawRectangle(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawShape(bvxRectangle, {x1, y1}, {x2, y2}, layer);
}
int32_t CadControl::DrawEllipse(double cx, double cy, double rx, double ry, int16_t layer)
{
    return DrawShape(bvxEllipse, {cx, cy}, {rx, ry}, layer);
}
int32_t CadControl::DrawCircle(double cx, double cy, double r, int16_t layer)
{
    return DrawShape(bvxCircle, {cx, cy}, {r, r}, layer);
}

int32_t CadControl::ShapeAdd(int32_t type, int16_t layer)
{
    if (!view_.Buf.IsLayer(layer) || type < 1 || type > 20) return kNoShape;
    CObjShape* shape = view_.CreateShape(int16_t(type), layer);
    return shape ? shape->number : kNoShape;
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
    view_.Redraw(4);
}

void CadControl::CadClearShapes(int16_t layer)
{
    if (layer != kAllLayers && !view_.Buf.IsLayer(layer)) return;
    // A shape being drawn goes with its layer: the draw must end first.
    if (layer == kAllLayers || layer == view_.Buf.CurrentLayerNumber) view_.CancelMouse();
    view_.Buf.ClearLayer(layer);
    view_.Redraw(0);
}

void CadControl::CadClearAll()
{
    view_.CancelMouse();
    view_.Buf.BackPic.reset();
    view_.Buf.ClearAll();
    view_.Buf.SnapMarkerUp = 0;
    view_.Clear();
    view_.Buf.Reset();
    Refresh();
}

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
    view_.Buf.Select(shape);
    view_.InvalidateShape(shape, true);
    view_.Fire<&EventSink::ShapeNumberSelected>(shape->GetShapeType(), shape->number);
    return true;
}

void CadControl::ShapeSelectRect(double x1, double y1, double x2, double y2)
{
    view_.CancelMouse();
    DeviceRect r = OrderedRect(view_.World.WorldRectToDevice({x1, y1}, {x2, y2}));
    view_.Buf.SelectInRect(r, false, view_);
    view_.Redraw(2);
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
    for (const CObjShape* s : view_.Buf.Selection) numbers.push_back(Variant::I4(s->number));
    return Variant::Array1D(VarType::I4, std::move(numbers));
}

bool CadControl::GetShapeIsSelected(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s && s->selected;
}

int16_t CadControl::GetShapeSelectType() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->GetShapeType() : 0; }
int16_t CadControl::GetShapeSelectLayer() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->layer : 0; }
int32_t CadControl::GetShapeSelectNumber() { return view_.Buf.FocusShape ? view_.Buf.FocusShape->number : 0; }
int16_t CadControl::GetShapeSelectPoint() { return view_.Buf.FocusPoint; }

// ---- one shape ----

int16_t CadControl::GetShapeType(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetShapeType() : 0;
}
int16_t CadControl::ShapeOnLayer(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->layer : -1;
}
int32_t CadControl::ShapeOnGroup(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->group : -1;
}
double CadControl::GetShapeArea(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->GetArea() : 0.0;
}
std::u16string CadControl::GetShapeNotes(int32_t number)
{
    const CObjShape* s = Shape(number);
    return s ? s->notes : std::u16string();
}
void CadControl::PutShapeNotes(int32_t number, std::u16string notes)
{
    if (CObjShape* s = Shape(number)) s->notes = std::move(notes);
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
    return s && s->attr;
}
void CadControl::ShapeColorReset(int32_t number)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    s->SetAttr(nullptr);
    view_.InvalidateShape(s, true);
}

ShapeAttr& CadControl::OwnAttr(CObjShape& shape)
{
    if (!shape.attr) shape.attr = std::make_unique<ShapeAttr>(view_.EffectiveAttr(shape));
    return *shape.attr;
}

template <typename Read>
auto CadControl::ReadShapeAttr(int32_t number, Read read) -> decltype(read(ShapeAttr::Default()))
{
    const CObjShape* s = Shape(number);
    return s ? read(view_.EffectiveAttr(*s)) : decltype(read(ShapeAttr::Default()))(0);
}

template <typename Write> void CadControl::WriteShapeAttr(int32_t number, Write write)
{
    CObjShape* s = Shape(number);
    if (!s) return;
    write(OwnAttr(*s));
    view_.InvalidateShape(s, true);
}

#define BVX_ATTR_MEMBERS(Owner, Key, KeyName, Field)                                                               \
    uint32_t CadControl::Get##Owner##PenFg(Key KeyName)                                                            \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [&](const ShapeAttr& a) { return view_.StoredColor(a.PenColor()); });    \
    }                                                                                                              \
    void CadControl::Put##Owner##PenFg(Key KeyName, uint32_t c)                                                    \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetPenColor(uint32_t(view_.ColorIndex(c))); });          \
    }                                                                                                              \
    int16_t CadControl::Get##Owner##PenWidth(Key KeyName)                                                          \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [](const ShapeAttr& a) { return int16_t(a.PenWidth()); });               \
    }                                                                                                              \
    void CadControl::Put##Owner##PenWidth(Key KeyName, int16_t v)                                                  \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetPenWidth(uint32_t(v) & 15); });                       \
    }                                                                                                              \
    int16_t CadControl::Get##Owner##PenStyle(Key KeyName)                                                          \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [](const ShapeAttr& a) { return int16_t(a.PenStyle()); });               \
    }                                                                                                              \
    void CadControl::Put##Owner##PenStyle(Key KeyName, int16_t v)                                                  \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetPenStyle(uint32_t(v) & 7); });                        \
    }                                                                                                              \
    uint32_t CadControl::Get##Owner##BrushFg(Key KeyName)                                                          \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [&](const ShapeAttr& a) { return view_.StoredColor(a.BrushFg()); });     \
    }                                                                                                              \
    void CadControl::Put##Owner##BrushFg(Key KeyName, uint32_t c)                                                  \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetBrushFg(uint32_t(view_.ColorIndex(c))); });           \
    }                                                                                                              \
    uint32_t CadControl::Get##Owner##BrushBg(Key KeyName)                                                          \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [&](const ShapeAttr& a) { return view_.StoredColor(a.BrushBg()); });     \
    }                                                                                                              \
    void CadControl::Put##Owner##BrushBg(Key KeyName, uint32_t c)                                                  \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetBrushBg(uint32_t(view_.ColorIndex(c))); });           \
    }                                                                                                              \
    int16_t CadControl::Get##Owner##BrushStyle(Key KeyName)                                                        \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [](const ShapeAttr& a) { return int16_t(a.BrushStyle()); });             \
    }                                                                                                              \
    void CadControl::Put##Owner##BrushStyle(Key KeyName, int16_t v)                                                \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetBrushStyle(uint32_t(v) & 7); });                      \
    }                                                                                                              \
    int16_t CadControl::Get##Owner##BrushMode(Key KeyName)                                                         \
    {                                                                                                              \
        return Read##Field##Attr(KeyName, [](const ShapeAttr& a) { return int16_t(a.BrushMode() + 1); });          \
    }                                                                                                              \
    /* Odd is transparent, even opaque. */                                                                         \
    void CadControl::Put##Owner##BrushMode(Key KeyName, int16_t v)                                                 \
    {                                                                                                              \
        Write##Field##Attr(KeyName, [&](ShapeAttr& a) { a.SetBrushMode((v & 1) ? 0 : 1); });                       \
    }

// The same seven attribute members serve shapes (the record in force) and
// layers (their own record).
BVX_ATTR_MEMBERS(Shape, int32_t, number, Shape)
BVX_ATTR_MEMBERS(Layer, int16_t, layer, Layer)
#undef BVX_ATTR_MEMBERS

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
    if (!s || s->group != -1 || !buf.IsLayer(layer)) return kNoShape;
    bool wasSelected = s->selected, wasFocus = buf.FocusShape == s;
    if (wasSelected) buf.Deselect(s);
    view_.InvalidateShape(s, false);
    CObjShape* placed = nullptr;
    if (copy) {
        std::unique_ptr<CObjShape> clone = s->Clone(buf.CopyMode);
        clone->number = ++buf.NextShapeNumber;
        clone->layer = layer;
        placed = clone.get();
        buf.Layers[size_t(layer)]->Shapes.push_back(std::move(clone));
        buf.ShapeMap[placed->number] = placed;
        if (placed->GroupList()) buf.NumberGroupMembers(placed);
    } else {
        std::unique_ptr<CObjShape> moved = buf.DetachShape(s);
        if (!moved) return kNoShape;
        moved->layer = layer;
        placed = moved.get();
        buf.Layers[size_t(layer)]->Shapes.push_back(std::move(moved));
    }
    if (wasSelected) buf.Select(placed);
    if (wasFocus) buf.FocusShape = placed;
    view_.InvalidateShape(placed, true);
    return placed->number;
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
            if (hit) return shape.number;
        }
    }
    return kNoShape;
}

// ---- transforms ----

void CadControl::TransformShape(CObjShape& shape, const TransformRequest& request)
{
    Matrix3 m = view_.World.BuildTransform(request);
    ChangeShape(shape, [&] { shape.Transform(m, view_); });
}

// The step every shape of ShapeTransform and the layer forms passes: in
// degree mode the angle is converted once more, as it always has been.
TransformRequest CadControl::LayerStepRequest(TransformRequest request) const
{
    if (view_.World.AngleMode == 1) request.angleDegrees *= kDegreesToRadians;
    return request;
}

void CadControl::TransformLayer(int16_t layer, TransformRequest request)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return;
    request = LayerStepRequest(request);
    for (size_t i = 0; i < l->Shapes.size(); ++i) TransformShape(*l->Shapes[i], request);
}

void CadControl::ShapeTransform(int32_t number, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                                double scaleY, double translateX, double translateY, int16_t reflectMode,
                                int16_t shearMode, double shear)
{
    if (CObjShape* s = Shape(number))
        TransformShape(*s, LayerStepRequest({mode, pivotX, pivotY, angle, scaleX, scaleY, translateX, translateY,
                                             reflectMode, shearMode, shear}));
}

void CadControl::LayerTransform(int16_t layer, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                                double scaleY, double translateX, double translateY, int16_t reflectMode,
                                int16_t shearMode, double shear)
{
    TransformLayer(layer, {mode, pivotX, pivotY, angle, scaleX, scaleY, translateX, translateY, reflectMode, shearMode,
                           shear});
}

namespace {
TransformRequest Rotation(double degrees, double x, double y)
{
    TransformRequest r;
    r.mode = TransformBits::Rotate;
    r.angleDegrees = degrees;
    r.pivotX = x;
    r.pivotY = y;
    return r;
}
TransformRequest Reflection(int16_t mode, double x, double y)
{
    TransformRequest r;
    r.mode = TransformBits::Reflect;
    r.reflectMode = mode;
    r.pivotX = x;
    r.pivotY = y;
    return r;
}
TransformRequest Translation(double dx, double dy)
{
    TransformRequest r;
    r.mode = TransformBits::Translate;
    r.translateX = dx;
    r.translateY = dy;
    return r;
}
TransformRequest Shearing(int16_t mode, double displacement)
{
    TransformRequest r;
    r.mode = TransformBits::Shear;
    r.shearMode = mode;
    r.shear = displacement;
    return r;
}
TransformRequest Scaling(double x, double y, double fx, double fy)
{
    TransformRequest r;
    r.mode = TransformBits::Scale;
    r.pivotX = x;
    r.pivotY = y;
    r.scaleX = fx;
    r.scaleY = fy;
    return r;
}
} // namespace

// The shape forms build their matrix directly, without the layer step.
void CadControl::ShapeRotate(int32_t number, int16_t degrees, double pivotX, double pivotY)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Rotation(degrees, pivotX, pivotY));
}
void CadControl::ShapeReflect(int32_t number, int16_t mode, double x, double y)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Reflection(mode, x, y));
}
void CadControl::ShapeTranslate(int32_t number, double dx, double dy)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Translation(dx, dy));
}
void CadControl::ShapeShear(int32_t number, int16_t mode, double displacement)
{
    if (CObjShape* s = Shape(number)) TransformShape(*s, Shearing(mode, displacement));
}
void CadControl::ShapeScale(int32_t number, double x, double y, double factorX, double factorY)
{
    // A factor of zero or below would flatten or mirror: it counts as 1.
    if (CObjShape* s = Shape(number))
        TransformShape(*s, Scaling(x, y, factorX > 0 ? factorX : 1.0, factorY > 0 ? factorY : 1.0));
}
void CadControl::LayerRotate(int16_t layer, int16_t degrees, double pivotX, double pivotY)
{
    TransformLayer(layer, Rotation(degrees, pivotX, pivotY));
}
void CadControl::LayerReflect(int16_t layer, int16_t mode, double x, double y)
{
    TransformLayer(layer, Reflection(mode, x, y));
}
void CadControl::LayerTranslate(int16_t layer, double dx, double dy) { TransformLayer(layer, Translation(dx, dy)); }
void CadControl::LayerShear(int16_t layer, int16_t mode, double displacement)
{
    TransformLayer(layer, Shearing(mode, displacement));
}
void CadControl::LayerScale(int16_t layer, double x, double y, double factorX, double factorY)
{
    TransformLayer(layer, Scaling(x, y, factorX, factorY));
}

// ---- layers ----

int16_t CadControl::LayerOpen(std::u16string name) { return view_.Buf.AddLayer(name); }

bool CadControl::LayerClose(int16_t layer)
{
    if (layer == 0 || !view_.Buf.IsLayer(layer)) return false;
    bool removed = view_.Buf.RemoveLayer(layer, view_);
    view_.Redraw(0);
    return removed;
}

bool CadControl::LayerCopy(int16_t origin, int16_t destination, bool create)
{
    view_.CancelMouse();
    bool copied = view_.Buf.CopyLayer(origin, destination, create, view_);
    view_.Redraw(0);
    return copied;
}

int16_t CadControl::GetLayerNumber() { return view_.Buf.CurrentLayerNumber; }
void CadControl::PutLayerNumber(int16_t layer) { view_.Buf.OpenLayer(layer); }
int16_t CadControl::GetLayerCount() { return int16_t(view_.Buf.Layers.size()); }
int16_t CadControl::LayerFindByName(std::u16string name) { return view_.Buf.FindLayerByName(name); }

std::u16string CadControl::GetLayerName(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->Name : std::u16string();
}

void CadControl::PutLayerName(int16_t layer, std::u16string name)
{
    if (CadLayer* l = view_.Buf.Layer(layer)) l->Name = std::move(name);
}

std::u16string CadControl::GetLayerNames()
{
    std::u16string names;
    for (const auto& layer : view_.Buf.Layers) names += layer->Name + u",";
    return names;
}

int16_t CadControl::GetLayerAction(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->Action : 0;
}

void CadControl::PutLayerAction(int16_t layer, int16_t action)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return;
    l->SetAction(action);
    view_.Redraw(0);
}

int16_t CadControl::GetLayerSearchMethod(int16_t type)
{
    const CadLayer* l = view_.Buf.CurrentLayer;
    return l ? l->GetSearchMethod(type) : 0;
}

void CadControl::PutLayerSearchMethod(int16_t type, int16_t method)
{
    if (CadLayer* l = view_.Buf.CurrentLayer) l->SetSearchMethod(type, method);
}

// A bad layer number reads as an unknown shape does and changes nothing.
template <typename Read>
auto CadControl::ReadLayerAttr(int16_t layer, Read read) -> decltype(read(ShapeAttr::Default()))
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l && l->Attr ? read(*l->Attr) : decltype(read(ShapeAttr::Default()))(0);
}

template <typename Write> void CadControl::WriteLayerAttr(int16_t layer, Write write)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l || !l->Attr) return;
    write(*l->Attr);
    view_.Redraw(0);
}

int16_t CadControl::GetLayerLineType(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->LineType : -1;
}

void CadControl::PutLayerLineType(int16_t layer, int16_t type)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return;
    l->SetLineType(type);
    view_.Redraw(0);
}

int32_t CadControl::GetLayerShapeCount(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? int32_t(l->Shapes.size()) : -1;
}

Variant CadControl::GetLayerShapeNumbers(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return Variant::NullArray(VarType::I4);
    std::vector<Variant> numbers;
    for (const auto& s : l->Shapes) numbers.push_back(Variant::I4(s->number));
    return Variant::Array1D(VarType::I4, std::move(numbers));
}

} // namespace bvx
