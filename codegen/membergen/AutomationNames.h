// How the member table's types and defaults are spelled in the IDL and in
// the reference page's Basic signatures.
#pragma once

#include "control/MemberSpec.h"

#include <string>
#include <string_view>

namespace bvx::membergen {

struct EnumValue {
    std::string_view name;
    int value;
};

// The values a Tool-typed member takes; the type library publishes them as
// an enumeration so that hosts can name them.
inline constexpr std::string_view kToolEnumName = "bvxViewMouseToolVals";
inline constexpr EnumValue kToolValues[] = {
    {"bvxNetZoom", -3},       {"bvxPan", -2},    {"bvxNetSelect", -1},    {"bvxSelect", 0},     {"bvxRectangle", 1},
    {"bvxRoundRectangle", 2}, {"bvxLine", 3},    {"bvx2PointEllipse", 4}, {"bvxPolyline", 5},   {"bvxPolygon", 6},
    {"bvxFreehand", 7},       {"bvxSpline", 8},  {"bvxClosedSpline", 9},  {"bvx3PointArc", 10}, {"bvxText", 11},
    {"bvxPicture", 12},       {"bvxArc", 13},    {"bvxPieSlice", 14},     {"bvxChord", 15},     {"bvxPoint", 17},
    {"bvxGroup", 18},         {"bvxCircle", 19}, {"bvxEllipse", 20},
};

// The IDL's type names, which the C++ header spells the same way.
std::string_view IdlTypeName(members::AutoType type);
std::string_view BasicTypeName(members::AutoType type);

// An optional argument's default as a literal: numbers as the shortest
// decimal that reads back the same; text and booleans are the callers' to
// spell, since IDL and Basic write them differently.
std::string DefaultNumberText(const members::ArgSpec& arg);

std::string Utf8(std::u16string_view text);

// Members that browsers should not list: the scratch values of the property
// pages, whose names say so.
bool IsHidden(const members::MemberRow& row);

// The name of a member's vtable entry: get_X and put_X for properties.
std::string VtableName(const members::MemberRow& row);

} // namespace bvx::membergen
