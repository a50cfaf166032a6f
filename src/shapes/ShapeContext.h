// What the shapes and the document may ask of the view that holds them: the
// world mapping, the few view states that drawing, hit testing and editing
// read or report, and the view's services (repaint requests, the look of a
// record, notices to the host). The view implements it; nothing below the
// view knows the view.
#pragma once

#include "ShapeAttr.h"
#include "platform/Geometry.h"
#include "world/CadWorld.h"

#include <cstdint>
#include <functional>

namespace bvx {

class CadFontTable;
class CObjShape;
class DeviceContext;

class ShapeContext {
public:
    virtual ~ShapeContext() = default;

    // Held here rather than behind a call: every conversion of every shape
    // reads it.
    CadWorld World;
    // Non-zero while a mouse tool drags: selected shapes are then drawn by
    // the tool, and hit tests pass over them.
    int16_t MouseActive = 0;
    // How far outside its border a press still finds a shape, in pixels.
    int16_t HitTolerance = 3;
    // Lines drag along the nearer axis.
    bool ViewDrawOrthogonal = false;
    // The distance and angle a drag reports to the host.
    double ReadoutDistance = 0;
    double ReadoutAngle = 0;
    // Where the text caret goes: the upper right of the text last measured.
    int32_t CaretX = 0;
    int32_t CaretY = 0;

    // Repaint requests: the old bounds before a change (commit false), the new
    // ones after it (commit true); a null shape means the whole view.
    virtual void InvalidateShape(const CObjShape* shape, bool commit) = 0;
    // Ends a drag or a drawing under way, as Escape does.
    virtual void CancelMouse() = 0;
    virtual void ShowTextCaret(bool on) = 0;

    // The record a shape is drawn with: its own, its group's or its layer's.
    virtual const ShapeAttr& EffectiveAttr(const CObjShape& shape) const = 0;
    // Draws a shape with a record's pen, brush and colours selected, and
    // puts the device back afterwards.
    virtual void DrawWithAttr(DeviceContext& dc, CObjShape& shape, const ShapeAttr& attr, const DeviceRect& clip,
                              int32_t mode) = 0;

    // What the document knows that a shape may need.
    virtual CObjShape* FindShape(int32_t number) const = 0;
    virtual int16_t LayerLineType(int16_t layer) const = 0;
    // The fonts text shapes refer to.
    virtual CadFontTable& Fonts() = 0;
    // Runs `measure` on a device context of the window (a memory one when
    // there is no window), as text measuring needs one.
    virtual void WithWindowDC(const std::function<void(DeviceContext&)>& measure) = 0;
    // A layer's own pen and brush record.
    virtual const ShapeAttr& LayerLook(int16_t layer) const = 0;
    virtual bool ShowTracker() const = 0;
    virtual int16_t SelectMode() const = 0;
    // Puts the pointer on a world point found from a device press.
    virtual void SnapPointerTo(const WorldPoint& point, DevicePoint press) = 0;

    // Notices for the host.
    virtual void ShapeAdded(int16_t type, int32_t number) = 0;
    virtual void ShapeSelected(int16_t type, int32_t number) = 0;
    virtual void RadiusDragged(double radiusX, double radiusY) = 0;
};

} // namespace bvx
