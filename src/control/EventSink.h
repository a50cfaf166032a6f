// Where the view's events go: one typed call per event of the host's event
// interface. A view without a sink fires into nothing.
#pragma once

#include <cstdint>

namespace bvx {

class EventSink {
public:
    virtual ~EventSink() = default;
    virtual void WorldMouseDown(int16_t button, int16_t shift, int16_t action, double x, double y) = 0;
    virtual void WorldMouseMove(int16_t shift, double x, double y, double magnitude, double angle) = 0;
    virtual void WorldMouseUp(int16_t button, int16_t shift, double x, double y) = 0;
    virtual void WorldMouseSnap(int16_t action, double x, double y) = 0;
    virtual void WorldRectPos(double startX, double startY, double endX, double endY) = 0;
    virtual void PictureEntry(int32_t shapeNumber) = 0;
    virtual void DrawBegin(int16_t shapeType, double x, double y) = 0;
    virtual void DrawEnd(int16_t shapeType, double x, double y) = 0;
    virtual void FontOpened(int16_t fontHandle) = 0;
    virtual void ShapeNumberAdded(int16_t shapeType, int32_t shapeNumber) = 0;
    virtual void ShapeNumberSelected(int16_t shapeType, int32_t shapeNumber) = 0;
    virtual void DrawRadius(double x, double y) = 0;
    virtual void ShapeNumberDeleted(int32_t shapeNumber) = 0;
    virtual void Click(double x, double y) = 0;
    virtual void DblClick(double x, double y) = 0;
};

} // namespace bvx
