// The world window, the view modes, snap and grid members.
#include "CadControl.h"

#include "CadControlSupport.h"
#include "shapes/CTextShape.h"

#include <algorithm>
#include <cmath>

namespace bvx {

// ---- world ----

double CadControl::GetWorldLeft() { return view_.World.RoundCoord(view_.World.WorldLeft); }
double CadControl::GetWorldTop() { return view_.World.RoundCoord(view_.World.WorldTop); }
double CadControl::GetWorldRight() { return view_.World.RoundCoord(view_.World.WorldRight); }
double CadControl::GetWorldBottom() { return view_.World.RoundCoord(view_.World.WorldBottom); }

// Left and right let the X scale decide a square world, top and bottom the Y.
void CadControl::PutWorldEdge(double& edge, double value, int32_t mode)
{
    view_.World.SetEdge(edge, value, mode);
    view_.Redraw(RedrawMode::Full);
}
void CadControl::PutWorldLeft(double v) { PutWorldEdge(view_.World.WorldLeft, v, 2); }
void CadControl::PutWorldRight(double v) { PutWorldEdge(view_.World.WorldRight, v, 2); }
void CadControl::PutWorldTop(double v) { PutWorldEdge(view_.World.WorldTop, v, 1); }
void CadControl::PutWorldBottom(double v) { PutWorldEdge(view_.World.WorldBottom, v, 1); }

void CadControl::WorldSet(double left, double top, double right, double bottom)
{
    view_.World.SetWorld(left, top, right, bottom, 0);
    Refresh();
}

void CadControl::WorldPan(double dx, double dy)
{
    view_.World.Pan(dx, dy);
    view_.Redraw(RedrawMode::Full);
}

bool CadControl::GetWorldSquare() { return view_.World.WorldSquare; }

void CadControl::PutWorldSquare(bool on)
{
    view_.World.SetWorldSquare(on);
    view_.Redraw(RedrawMode::Full);
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
    bool square = w.WorldSquare;
    w.WorldSquare = true;
    w.Recalculate(0);
    WorldRectUnion shapes(w);
    for (size_t l = view_.Buf.Layers.size(); l-- > 1;) {
        const CadLayer& layer = *view_.Buf.Layers[l];
        if (!(layer.Action & LayerActions::Show)) continue;
        for (size_t i = layer.Shapes.size(); i-- > 0;) {
            CObjShape& shape = *layer.Shapes[i];
            if (shape.GetShapeType() != bvxText) {
                shapes.Add(shape.GetWorldBounds(view_));
                continue;
            }
            // A text has no bounds without its font: it measures itself in a
            // world just big enough around its anchor.
            auto& text = static_cast<CTextShape&>(shape);
            const WorldPoint p = text.Origin;
            w.SetWorld(p.x, p.y, p.x + 5 * w.SignX, p.y + text.Font.Height * w.SignY, 1);
            WorldRect measured;
            if (text.MeasureWorld(view_, measured)) shapes.Add(measured);
        }
    }
    const WorldRect& all = shapes.Result();
    w.SetWorld(all.left, all.top, all.right, all.bottom, 0);
    // Centre what was found in the window the square rule made.
    double dy = std::fabs(w.RoundCoord(w.WorldBottom) - w.RoundCoord(w.WorldTop)) - std::fabs(all.bottom - all.top);
    double dx = std::fabs(w.RoundCoord(w.WorldRight) - w.RoundCoord(w.WorldLeft)) - std::fabs(all.right - all.left);
    double hy = std::fabs(dy) / 2 * w.SignY, hx = std::fabs(dx) / 2 * w.SignX;
    w.SetWorld(all.left - hx, all.top - hy, all.right + hx, all.bottom + hy, 0);
    w.WorldSquare = square;
    w.Recalculate(0);
    view_.Redraw(RedrawMode::Full);
}

// ---- mouse, keys and view modes ----

Reply<int32_t> CadControl::GetViewMouseTool()
{
    if (!IsToolNumber(view_.CurrentTool)) return Reply<int32_t>::Unwritten();
    return Reply<int32_t>::With(view_.CurrentTool);
}

void CadControl::PutViewMouseTool(int32_t tool) { view_.ChooseTool(int16_t(tool)); }

bool CadControl::GetViewPersistMouseTool() { return view_.ViewPersistMouseTool; }
void CadControl::PutViewPersistMouseTool(bool on)
{
    view_.ViewPersistMouseTool = on;
    if (!on) view_.SetMouseTool(bvxSelect);
}
bool CadControl::GetViewKeyDelete() { return view_.ViewKeyDelete; }
void CadControl::PutViewKeyDelete(bool on) { view_.ViewKeyDelete = on; }
bool CadControl::GetViewKeyCopy() { return view_.ViewKeyCopy; }
void CadControl::PutViewKeyCopy(bool on) { view_.ViewKeyCopy = on; }
bool CadControl::GetViewKeySelect() { return view_.ViewKeySelect; }
void CadControl::PutViewKeySelect(bool on) { view_.ViewKeySelect = on; }
int16_t CadControl::GetViewMouseBounds() { return view_.Buf.MouseBounds; }
void CadControl::PutViewMouseBounds(int16_t v) { view_.Buf.SetMouseBounds(v); }
bool CadControl::GetViewShowTracker() { return view_.Buf.ShowTracker; }
void CadControl::PutViewShowTracker(bool on)
{
    view_.Buf.ShowTracker = on;
    view_.Redraw(RedrawMode::Full);
}
bool CadControl::GetViewDrawOrthogonal() { return view_.ViewDrawOrthogonal; }
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
bool CadControl::GetViewSnapMarkerOn() { return view_.Buf.SnapMarkerOn; }
void CadControl::PutViewSnapMarkerOn(bool on) { view_.Buf.SnapMarkerOn = on; }
uint32_t CadControl::GetViewSnapMarkerColor() { return view_.StoredColor(view_.Buf.SnapMarkerAttr.PenColor()); }
void CadControl::PutViewSnapMarkerColor(uint32_t color)
{
    view_.Buf.SnapMarkerAttr.SetPenColor(uint32_t(view_.ColorIndex(color)));
    view_.Redraw(RedrawMode::Full);
}

// ---- grid ----

void CadControl::GridSet(bool on, double width, double height, uint32_t color)
{
    view_.World.GridSet(on, width, height, color);
    view_.Redraw(RedrawMode::Full);
}
bool CadControl::GetGridOn() { return view_.World.GridOn; }
void CadControl::PutGridOn(bool on)
{
    view_.World.GridOn = on;
    view_.Redraw(RedrawMode::Full);
}
uint32_t CadControl::GetGridColor() { return view_.World.GridColor; }
void CadControl::PutGridColor(uint32_t color)
{
    view_.World.GridColor = color;
    view_.Redraw(RedrawMode::Full);
}
double CadControl::GetGridWidth() { return view_.World.GridWidth; }
void CadControl::PutGridWidth(double v)
{
    view_.World.GridWidth = view_.World.RoundCoord(v);
    view_.Redraw(RedrawMode::Full);
}
double CadControl::GetGridHeight() { return view_.World.GridHeight; }
int16_t CadControl::GetGridDrawOrder() { return view_.World.GridDrawOrder; }
void CadControl::PutGridDrawOrder(int16_t v)
{
    int16_t before = view_.World.GridDrawOrder;
    view_.World.SetGridDrawOrder(v);
    if (before != view_.World.GridDrawOrder) view_.Redraw(RedrawMode::Full);
}

} // namespace bvx
