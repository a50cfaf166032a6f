#include "hosts/cli/ScriptParser.h"
#include "control/VariantPrint.h"

#include <gtest/gtest.h>

#include <charconv>
#include <fstream>

namespace bvx::script {
namespace {

// Every field of an argument, so that a wrong type or form shows as well as a wrong value.
std::string Describe(const Argument& a)
{
    if (a.form == Argument::Form::Omitted) return "_";
    if (a.form == Argument::Form::Name) return "$" + a.name;
    if (a.literal.Type() != VarType::R8) return ::testing::PrintToString(a.literal);
    char text[32]; // the shortest text that reads back as the same double
    return "R8 " + std::string(text, std::to_chars(text, text + sizeof text, a.literal.Real()).ptr);
}

std::string Describe(const std::vector<Argument>& args)
{
    std::string out;
    for (const Argument& a : args) out += (out.empty() ? "" : ", ") + Describe(a);
    return out;
}

std::string Describe(const ParsedLine& parsed)
{
    std::string out = "blank";
    if (auto* c = std::get_if<MemberCall>(&parsed.statement))
        out = (c->resultName.empty() ? "" : "$" + c->resultName + " = ") + c->member + "(" + Describe(c->args) + ")";
    if (auto* p = std::get_if<PropertyAssignment>(&parsed.statement))
        out = p->member + "[" + Describe(p->index) + "] := " + Describe(p->value);
    if (auto* n = std::get_if<NameAssignment>(&parsed.statement)) out = "$" + n->name + " := " + Describe(n->value);
    if (auto* h = std::get_if<HostCommand>(&parsed.statement)) out = "." + h->name + " [" + h->text + "]";
    return parsed.error.empty() ? out : out + " ! " + parsed.error;
}

// Lines and what they parse to, from a data file: the line, a tab, the
// expected text. \xNN there stands for a byte.
std::vector<std::pair<std::string, std::string>> Cases(const char* name)
{
    auto unescape = [](std::string text) {
        for (size_t i = 0; (i = text.find("\\x", i)) != std::string::npos && i + 4 <= text.size(); ++i)
            text.replace(i, 4, 1, char(std::stoi(text.substr(i + 2, 2), nullptr, 16)));
        return text;
    };
    std::vector<std::pair<std::string, std::string>> cases;
    std::ifstream file(std::string(BVX_TEST_DATA_DIR "/") + name, std::ios::binary);
    for (std::string line; std::getline(file, line);)
        if (size_t tab = line.find('\t'); tab != std::string::npos && line[0] != '#')
            cases.emplace_back(unescape(line.substr(0, tab)), unescape(line.substr(tab + 1)));
    return cases;
}

// A refused line says why and makes no statement.
TEST(ScriptParser, LinesMakeTheirStatementOrSayWhatIsWrong)
{
    for (auto [name, prefix, min] : {std::tuple{"script_lines.txt", "", 45u}, {"script_errors.txt", "blank ! ", 30u}}) {
        const auto cases = Cases(name);
        EXPECT_GE(cases.size(), min) << name;
        for (const auto& [line, expected] : cases) EXPECT_EQ(Describe(ParseLine(line)), prefix + expected) << line;
    }
}

} // namespace
} // namespace bvx::script
