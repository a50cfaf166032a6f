// The files bvx_membergen wrote in this build, read back against the member
// table they were made from.
#include "control/MemberSpec.h"

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace bvx::members {
namespace {

const std::string kGenerated = BVX_GENERATED_DIR;

struct Declaration {
    int id = 0;
    std::string access; // propget, propput or empty
    std::string name;
    int parameters = 0;
    bool operator==(const Declaration&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Declaration& d)
{
    return out << "id(" << d.id << ") " << d.access << " " << d.name << " /" << d.parameters;
}

size_t Count(const std::string& text, const std::string& what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
}

// The declarations of one interface block: an attribute line `[id(n), ...]`
// followed by `HRESULT Name(...)` or `void Name(...)`.
std::vector<Declaration> Declarations(std::istream& idl, const std::string& blockStart)
{
    std::vector<Declaration> found;
    std::string line;
    while (std::getline(idl, line) && line.find(blockStart) == std::string::npos) {}
    Declaration pending;
    bool attributes = false;
    while (std::getline(idl, line) && line.find("};") == std::string::npos) {
        if (size_t at = line.find("[id("); at != std::string::npos) {
            pending.id = std::stoi(line.substr(at + 4));
            pending.access = line.find("propget") != std::string::npos   ? "propget"
                             : line.find("propput") != std::string::npos ? "propput"
                                                                         : "";
            attributes = true;
        } else if (attributes) {
            size_t open = line.find('(');
            size_t nameStart = line.rfind(' ', open) + 1;
            pending.name = line.substr(nameStart, open - nameStart);
            pending.parameters = int(Count(line, "[in") + Count(line, "[out"));
            found.push_back(pending);
            attributes = false;
        }
    }
    return found;
}

std::vector<Declaration> ExpectedMembers()
{
    std::vector<Declaration> expected;
    for (const MemberRow& row : kMemberRows) {
        const char* access = row.kind == Kind::PropertyGet ? "propget" : row.kind == Kind::PropertyPut ? "propput" : "";
        const bool extra = row.kind != Kind::Method || row.result != AutoType::Void;
        expected.push_back({row.dispid, access, std::string(row.name), int(row.args.size()) + (extra ? 1 : 0)});
    }
    return expected;
}

// The dual interface holds every member row and the event interface every
// event, each in table order.
TEST(GeneratedIdl, DeclaresEveryRowInOrder)
{
    std::vector<Declaration> events;
    for (const EventRow& row : kEventRows) events.push_back({row.dispid, "", std::string(row.name), int(row.args.size())});
    for (const auto& [block, expected] : {std::pair{"interface IBvxCAD", ExpectedMembers()},
                                          std::pair{"dispinterface _CADEvents", events}}) {
        std::ifstream idl(kGenerated + "/bvxcad.idl");
        ASSERT_TRUE(idl) << kGenerated;
        EXPECT_EQ(Declarations(idl, block), expected) << block;
    }
}

TEST(GeneratedReferencePage, HasAnEntryPerMemberAndEvent)
{
    std::ifstream file(kGenerated + "/members.md");
    ASSERT_TRUE(file);
    std::stringstream text;
    text << file.rdbuf();
    const std::string page = text.str();
    for (const MemberRow& row : kMemberRows) {
        const std::string heading = "\n### " + std::string(row.name) + "\n";
        EXPECT_EQ(Count(page, heading), 1u) << row.name;
        EXPECT_NE(page.find("dispid " + std::to_string(row.dispid) + " "), std::string::npos) << row.name;
    }
    for (const EventRow& row : kEventRows)
        EXPECT_EQ(Count(page, "\n### " + std::string(row.name) + "\n"), 1u) << row.name;
}

} // namespace
} // namespace bvx::members
