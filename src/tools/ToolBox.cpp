#include "ToolBox.h"

namespace bvx {

ToolBox::ToolBox() : Select(*this), Pan(*this), Rect(*this), Ellipse(*this), Arc(*this), Poly(*this), Point(*this), Group(*this), Text(*this), Picture(*this) {}

CDrawTool* ToolBox::ToolFor(int16_t value)
{
    switch (value) {
    case bvxNetZoom:
    case bvxNetSelect:
    case bvxSelect: return &Select;
    case bvxPan: return &Pan;
    case bvxRectangle:
    case bvxRoundRectangle:
    case bvxLine:
    case bvx2PointEllipse: return &Rect;
    case bvxCircle:
    case bvxEllipse: return &Ellipse;
    case bvxPolyline:
    case bvxPolygon:
    case bvxFreehand:
    case bvxSpline:
    case bvxClosedSpline:
    case bvx3PointArc: return &Poly;
    case bvxArc:
    case bvxPieSlice:
    case bvxChord: return &Arc;
    case bvxPoint: return &Point;
    case bvxGroup: return &Group;
    case bvxText: return &Text;
    case bvxPicture: return &Picture;
    default: return nullptr; // the other shapes' tools come with their shapes
    }
}

CDrawTool* ToolBox::FindTool(int16_t value)
{
    if (value == bvxNetSelect) Select.State = CSelectTool::NetSelect;
    if (value == bvxNetZoom) Select.State = CSelectTool::NetZoom;
    return ToolFor(value);
}

void ToolBox::ResetForCancel(int16_t currentTool)
{
    Select.State = CSelectTool::Idle;
    DrawnNumber = -1;
    if (CDrawTool* tool = ToolFor(currentTool)) tool->State = 0;
}

} // namespace bvx
