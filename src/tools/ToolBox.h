// One control's mouse tools and the state they share. Each control has its
// own box, so that two controls in one process never disturb each other.
#pragma once

#include "CArcTool.h"
#include "CEllipseTool.h"
#include "CGroupTool.h"
#include "CPanTool.h"
#include "CPictTool.h"
#include "CPointTool.h"
#include "CPolyTool.h"
#include "CRectTool.h"
#include "CSelectTool.h"
#include "CTextTool.h"
#include "platform/Geometry.h"

namespace bvx {

class ToolBox {
public:
    ToolBox();

    // The tool of a ViewMouseTool value, null for a value without one. The
    // net values arm the select tool on every lookup.
    CDrawTool* FindTool(int16_t value);
    // The same without arming: the tool that makes shapes of a type.
    CDrawTool* ToolFor(int16_t value);
    // A cancelled drag leaves the select tool and the current one idle.
    void ResetForCancel(int16_t currentTool);

    DevicePoint ToolDeviceStart{};   // where a rubber rectangle started
    DevicePoint ToolDeviceCurrent{}; // its moving corner
    WorldPoint ToolLastPoint{};      // the press, then the last move step
    int32_t ToolHandle = 0;          // the handle a drag holds; 0 for none
    int32_t DrawnNumber = -1;        // the shape being drawn; -1 until it has a number

    CSelectTool Select;
    CPanTool Pan;
    CRectTool Rect;
    CEllipseTool Ellipse;
    CArcTool Arc;
    CPolyTool Poly;
    CPointTool Point;
    CGroupTool Group;
    CTextTool Text;
    CPictTool Picture;
};

} // namespace bvx
