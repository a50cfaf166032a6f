// Shape and tool numbers: the values of the interface's tool enumeration.
#pragma once

#include <cstdint>

namespace bvx {

enum bvxViewMouseToolVals : int16_t {
    bvxNetZoom = -3,
    bvxPan = -2,
    bvxNetSelect = -1,
    bvxSelect = 0,
    bvxRectangle = 1,
    bvxRoundRectangle = 2,
    bvxLine = 3,
    bvx2PointEllipse = 4,
    bvxPolyline = 5,
    bvxPolygon = 6,
    bvxFreehand = 7,
    bvxSpline = 8,
    bvxClosedSpline = 9,
    bvx3PointArc = 10,
    bvxText = 11,
    bvxPicture = 12,
    bvxArc = 13,
    bvxPieSlice = 14,
    bvxChord = 15,
    bvxPoint = 17,
    bvxGroup = 18,
    bvxCircle = 19,
    bvxEllipse = 20,
};

// Whether a ViewMouseTool value has a tool; 16 has none.
constexpr bool IsToolNumber(int32_t tool)
{
    return (tool >= bvxNetZoom && tool <= bvxChord) || (tool >= bvxPoint && tool <= bvxEllipse);
}
// The tools that draw a shape, as opposed to select, pan and zoom.
constexpr bool IsDrawingTool(int32_t tool) { return tool >= bvxRectangle && tool <= bvxEllipse; }

// Mouse pointer roles, by the MouseMode that names them to the host; a shape
// names the role of each of its handles.
namespace PointerRole {
constexpr int16_t NetZoom = -3;
constexpr int16_t Pan = -2;
constexpr int16_t NetSelect = -1;
constexpr int16_t Select = 0; // the select tool, and idle
constexpr int16_t Draw = 1;   // any drawing tool; also what an unknown MouseMode reads
constexpr int16_t SizeCorner = 2;
constexpr int16_t SizeVertical = 3;
constexpr int16_t SizeHorizontal = 4;
constexpr int16_t SizeRising = 5;
constexpr int16_t SizeFalling = 6;
constexpr int16_t MoveFree = 7;
constexpr int16_t MoveVertical = 8;
constexpr int16_t MoveHorizontal = 9;
constexpr int16_t Wait = 10;
constexpr int16_t Copy = 11;
} // namespace PointerRole

// Search methods: where a press must land to find a shape.
constexpr int16_t kSearchOnBorder = 0;
constexpr int16_t kSearchInShape = 1;

} // namespace bvx
