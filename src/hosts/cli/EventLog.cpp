#include "EventLog.h"

#include "control/MemberSpec.h"
#include "control/Variant.h"

#include <utility>

namespace bvx::script {

std::vector<std::string> EventLog::Take() { return std::exchange(lines_, {}); }

void EventLog::Record(std::string_view event, std::initializer_list<double> values)
{
    std::span<const members::ArgSpec> names;
    for (const auto& row : members::kEventRows)
        if (row.name == event) names = row.args;
    std::string line(event);
    line += '(';
    size_t i = 0;
    for (double value : values) {
        if (i) line += ", ";
        if (i < names.size()) line += std::string(names[i].name) + "=";
        line += ToUtf8(FormatNumber(value));
        ++i;
    }
    lines_.push_back(line + ")");
}

void EventLog::WorldMouseDown(int16_t button, int16_t shift, int16_t action, double x, double y)
{
    Record("WorldMouseDown", {double(button), double(shift), double(action), x, y});
}
void EventLog::WorldMouseMove(int16_t shift, double x, double y, double magnitude, double angle)
{
    Record("WorldMouseMove", {double(shift), x, y, magnitude, angle});
}
void EventLog::WorldMouseUp(int16_t button, int16_t shift, double x, double y)
{
    Record("WorldMouseUp", {double(button), double(shift), x, y});
}
void EventLog::WorldMouseSnap(int16_t action, double x, double y) { Record("WorldMouseSnap", {double(action), x, y}); }
void EventLog::WorldRectPos(double startX, double startY, double endX, double endY)
{
    Record("WorldRectPos", {startX, startY, endX, endY});
}
void EventLog::PictureEntry(int32_t shapeNumber) { Record("PictureEntry", {double(shapeNumber)}); }
void EventLog::DrawBegin(int16_t shapeType, double x, double y) { Record("DrawBegin", {double(shapeType), x, y}); }
void EventLog::DrawEnd(int16_t shapeType, double x, double y) { Record("DrawEnd", {double(shapeType), x, y}); }
void EventLog::FontOpened(int16_t fontHandle) { Record("FontOpened", {double(fontHandle)}); }
void EventLog::ShapeNumberAdded(int16_t shapeType, int32_t shapeNumber)
{
    Record("ShapeNumberAdded", {double(shapeType), double(shapeNumber)});
}
void EventLog::ShapeNumberSelected(int16_t shapeType, int32_t shapeNumber)
{
    Record("ShapeNumberSelected", {double(shapeType), double(shapeNumber)});
}
void EventLog::DrawRadius(double x, double y) { Record("DrawRadius", {x, y}); }
void EventLog::ShapeNumberDeleted(int32_t shapeNumber) { Record("ShapeNumberDeleted", {double(shapeNumber)}); }
void EventLog::Click(double x, double y) { Record("Click", {x, y}); }
void EventLog::DblClick(double x, double y) { Record("DblClick", {x, y}); }

} // namespace bvx::script
