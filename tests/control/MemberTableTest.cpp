#include "HostDoubles.h"
#include "VariantPrint.h"
#include "control/CadControl.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace bvx {
namespace {

using members::AutoType;
using members::Kind;
using members::MemberRow;

struct HandRow {
    std::string name;
    std::string kind;
    std::string neutral;
};

// The hand-written list: dispid, name, kind and, where given, the value a
// read of an unknown shape gives.
struct HandList {
    std::map<int32_t, HandRow> memberRows;
    std::map<int32_t, HandRow> eventRows;
};

const HandList& Hand()
{
    static const HandList list = [] {
        HandList l;
        std::ifstream in(BVX_TEST_DATA_DIR "/members.txt");
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line[0] == '#') continue;
            std::istringstream words(line);
            int32_t id = 0;
            HandRow row;
            words >> id >> row.name >> row.kind;
            words >> row.neutral;
            (row.kind == "event" ? l.eventRows : l.memberRows)[id] = row;
        }
        return l;
    }();
    return list;
}

TEST(MemberTable, EveryRowMatchesTheHandWrittenList)
{
    ASSERT_EQ(Hand().memberRows.size(), 177u);
    ASSERT_EQ(Hand().eventRows.size(), 15u);
    std::map<int32_t, std::set<Kind>> kinds;
    for (const MemberRow& row : members::kMemberRows) {
        auto it = Hand().memberRows.find(row.dispid);
        ASSERT_NE(it, Hand().memberRows.end()) << "no member " << row.dispid << " in the list: " << row.name;
        EXPECT_EQ(it->second.name, row.name) << "dispid " << row.dispid;
        EXPECT_TRUE(kinds[row.dispid].insert(row.kind).second) << row.name << " twice";
        EXPECT_FALSE(row.summary.empty()) << row.name;
    }
    for (const auto& [id, set] : kinds) {
        const std::string& kind = Hand().memberRows.at(id).kind;
        std::string ours = set.count(Kind::Method) ? "method" : set.count(Kind::PropertyPut) ? "getput" : "get";
        EXPECT_EQ(ours, kind) << Hand().memberRows.at(id).name;
        if (ours == "getput") {
            EXPECT_TRUE(set.count(Kind::PropertyGet));
        }
    }
    ASSERT_EQ(std::size(members::kEventRows), 15u);
    for (const auto& event : members::kEventRows) {
        auto it = Hand().eventRows.find(event.dispid);
        ASSERT_NE(it, Hand().eventRows.end()) << event.name;
        EXPECT_EQ(it->second.name, event.name);
    }
}

// A text picture of everything a member could change.
std::string Fingerprint(CadControl& control)
{
    CadView& v = control.View();
    std::ostringstream out;
    out << v.Colors().size() << '|' << v.World.WorldLeft << ',' << v.World.WorldTop << ',' << v.World.WorldRight
        << ',' << v.World.WorldBottom << '|' << v.Buf.CurrentLayerNumber << '|' << v.Buf.NextShapeNumber << '|';
    for (const auto& layer : v.Buf.Layers) {
        out << ToUtf8(layer->Name) << ':' << layer->Action << ':' << layer->LineType << ':'
            << (layer->Attr ? layer->Attr->Word0() : 0) << ':' << (layer->Attr ? layer->Attr->Word1() : 0) << '[';
        for (const auto& s : layer->Shapes) {
            WorldPoint p0 = s->GetPoint(0, v), p1 = s->GetPoint(1, v);
            out << s->Number << '/' << s->GetShapeType() << '/' << p0.x << ',' << p0.y << ',' << p1.x << ',' << p1.y
                << '/' << (s->Attr ? s->Attr->Word0() : 0) << '/' << int(s->Selected) << '/' << ToUtf8(s->Notes)
                << ';';
        }
        out << ']';
    }
    for (const CObjShape* s : v.Buf.Selection) out << s->Number << ',';
    return out.str();
}

// An argument of each type for the rows that take more than a number.
Variant Filler(AutoType type)
{
    switch (type) {
    case AutoType::I2: return Variant::I2(1);
    case AutoType::I4: return Variant::I4(1);
    case AutoType::R8: return Variant::R8(1.5);
    case AutoType::Bool: return Variant::Bool(true);
    case AutoType::Bstr: return Variant::String(u"x");
    case AutoType::Color: return Variant::I4(0x123456);
    case AutoType::Tool: return Variant::I4(1);
    default: return Variant();
    }
}

Variant Expected(const std::string& neutral, AutoType type)
{
    if (neutral == "\"\"") return Variant::String(u"");
    if (neutral == "{0x3}") return Variant::Array2D(VarType::Variant, 0, 3, {}); // rows of three, none
    Variant v;
    ChangeType(Variant::String(FromUtf8(neutral)), VarType::R8, v);
    Variant typed;
    switch (type) {
    case AutoType::Bool: return Variant::Bool(v.Real() != 0);
    case AutoType::I2: ChangeType(v, VarType::I2, typed); return typed;
    case AutoType::R8: return v;
    default: ChangeType(v, VarType::I4, typed); return typed;
    }
}

class NeutralAnswer : public ::testing::TestWithParam<const MemberRow*> {
protected:
    // A drawing with something on each layer, a selection and colours.
    void SetUp() override
    {
        control.View().World.SetClientRect({0, 0, 101, 101});
        control.DrawRectangle(10, 10, 40, 40, 1);
        control.DrawEllipse(60, 60, 10, 5, 1);
        control.LayerOpen(u"Two");
        control.DrawLine(0, 0, 50, 50, 2);
        control.ShapeSelect(1, false);
    }
    CadControl control;
};

std::vector<const MemberRow*> RowsKeyedBy(std::string_view firstArg, bool propertiesOnly)
{
    std::vector<const MemberRow*> rows;
    for (const MemberRow& row : members::kMemberRows)
        if (!row.args.empty() && row.args[0].name == firstArg && (!propertiesOnly || row.kind != Kind::Method))
            rows.push_back(&row);
    return rows;
}

std::string RowName(const ::testing::TestParamInfo<const MemberRow*>& info)
{
    return std::string(info.param->name) + (info.param->kind == Kind::PropertyPut ? "_put" : "");
}

// An unknown shape or group number, or a bad layer, is no error: reads give
// their row's value in members.txt, and nothing at all changes. Group members
// answer so for a shape that is no group too, and a shape's list with S_FALSE.
TEST_P(NeutralAnswer, GivesTheRowsValueAndChangesNothing)
{
    const MemberRow& row = *GetParam();
    const std::string& neutral = Hand().memberRows.at(row.dispid).neutral;
    const bool layerRow = row.args[0].name == "LayerNumber", groupRow = row.args[0].name == "GroupNumber";
    for (int32_t number : {9999, groupRow ? 1 : 9999}) {
        std::vector<Variant> args{layerRow ? Variant::I2(77) : Variant::I4(number)};
        for (size_t i = 1; i < row.args.size(); ++i) args.push_back(Filler(row.args[i].type));
        if (row.kind == Kind::PropertyPut) args.push_back(Filler(row.result));
        std::string before = Fingerprint(control);
        Variant result = Variant::Error(12345);
        EXPECT_EQ(control.Invoke(row.dispid, row.kind, args, &result),
                  neutral == "null" && !layerRow ? hresult::False : hresult::Ok);
        EXPECT_EQ(Fingerprint(control), before) << row.name << " " << number;
        if (row.kind == Kind::PropertyPut || row.result == AutoType::Void) {
            EXPECT_EQ(result, Variant::Error(12345)) << "nothing to read";
        } else if (neutral == "null") {
            EXPECT_EQ(result.TypeWord(), 8195);
            EXPECT_FALSE(result.HasArrayData());
        } else {
            ASSERT_FALSE(neutral.empty()) << row.name << " needs its value in members.txt";
            EXPECT_EQ(result, Expected(neutral, row.result)) << row.name;
        }
    }
}

std::vector<const MemberRow*> RowsKeyedByNumberOrLayer()
{
    std::vector<const MemberRow*> rows = RowsKeyedBy("ShapeNumber", false);
    for (const MemberRow* row : RowsKeyedBy("GroupNumber", false)) rows.push_back(row);
    for (const MemberRow* row : RowsKeyedBy("LayerNumber", true)) rows.push_back(row);
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Rows, NeutralAnswer, ::testing::ValuesIn(RowsKeyedByNumberOrLayer()), RowName);

} // namespace
} // namespace bvx
