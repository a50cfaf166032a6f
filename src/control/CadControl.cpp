#include "CadControl.h"

#include "buffer/Rounding.h"

namespace bvx {

CadControl::CadControl(HostWindow* window, EventSink* sink) : view_(window, sink) {}

bool CadControl::UserMode() const { return !view_.Window || view_.Window->UserMode(); }

void CadControl::Refresh()
{
    view_.NeedRepaint = 1;
    view_.RebuildBackBuffer = 1;
    if (view_.Window) view_.Window->InvalidateRect(nullptr, false);
}

uint32_t CadControl::GetBackColor() { return backColor_; }

Reply<bool> CadControl::PutBackColor(uint32_t color)
{
    if (color == backColor_) return Reply<bool>(hresult::Ok);
    backColor_ = color;
    view_.BackColorCopy = color;
    Refresh();
    return Reply<bool>(hresult::Ok);
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

// ---- drawing ----

int32_t CadControl::DrawTwoPointShape(int16_t type, double x1, double y1, double x2, double y2, int16_t layer)
{
    if (!view_.Buf.IsLayer(layer)) return -1;
    CObjShape* shape = view_.CreateShape(type, layer);
    if (!shape) return -1;
    // The shape may be gone already if the host deleted it from the event.
    int32_t number = shape->number;
    if (!(shape = Shape(number))) return number;
    shape->SetPoint(0, x1, y1, &view_);
    shape->SetPoint(1, x2, y2, &view_);
    view_.InvalidateShape(shape, true);
    return number;
}

int32_t CadControl::DrawLine(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawTwoPointShape(bvxLine, x1, y1, x2, y2, layer);
}

int32_t CadControl::DrawRectangle(double x1, double y1, double x2, double y2, int16_t layer)
{
    return DrawTwoPointShape(bvxRectangle, x1, y1, x2, y2, layer);
}

// ---- layers ----

std::u16string CadControl::GetLayerName(int16_t layer)
{
    const CadLayer* l = view_.Buf.Layer(layer);
    return l ? l->Name : std::u16string();
}

void CadControl::PutLayerName(int16_t layer, std::u16string name)
{
    if (CadLayer* l = view_.Buf.Layer(layer)) l->Name = std::move(name);
}

} // namespace bvx
