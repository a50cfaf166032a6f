// The script host's event sink: every event that fires becomes a line of
// text, `ShapeNumberAdded(ShapeType=3, ShapeNumber=1)`, kept until taken.
#pragma once

#include "control/EventSink.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace bvx::script {

class EventLog : public EventSink {
public:
    // The lines recorded since the last call, oldest first.
    std::vector<std::string> Take();

    void WorldMouseDown(int16_t button, int16_t shift, int16_t action, double x, double y) override;
    void WorldMouseMove(int16_t shift, double x, double y, double magnitude, double angle) override;
    void WorldMouseUp(int16_t button, int16_t shift, double x, double y) override;
    void WorldMouseSnap(int16_t action, double x, double y) override;
    void WorldRectPos(double startX, double startY, double endX, double endY) override;
    void PictureEntry(int32_t shapeNumber) override;
    void DrawBegin(int16_t shapeType, double x, double y) override;
    void DrawEnd(int16_t shapeType, double x, double y) override;
    void FontOpened(int16_t fontHandle) override;
    void ShapeNumberAdded(int16_t shapeType, int32_t shapeNumber) override;
    void ShapeNumberSelected(int16_t shapeType, int32_t shapeNumber) override;
    void DrawRadius(double x, double y) override;
    void ShapeNumberDeleted(int32_t shapeNumber) override;
    void Click(double x, double y) override;
    void DblClick(double x, double y) override;

private:
    // Every argument of every event is a number; their names come from the
    // event table.
    void Record(std::string_view event, std::initializer_list<double> values);

    std::vector<std::string> lines_;
};

} // namespace bvx::script
