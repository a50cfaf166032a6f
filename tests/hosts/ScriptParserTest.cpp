#include "hosts/cli/ScriptParser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>

namespace bvx::script {
namespace {

// The statement a line parses to, as a copy that outlives the parse.
template <typename T> T Parsed(const std::string& line)
{
    ParsedLine parsed = ParseLine(line);
    EXPECT_EQ(parsed.error, "") << line;
    const T* statement = std::get_if<T>(&parsed.statement);
    if (!statement) {
        ADD_FAILURE() << "another kind of statement: " << line;
        return T{};
    }
    return *statement;
}

// The one argument of `Foo <literal>`.
Variant OnlyLiteral(const std::string& literal)
{
    const auto call = Parsed<MemberCall>("Foo " + literal);
    if (call.args.size() != 1 || call.args[0].form != Argument::Form::Literal) {
        ADD_FAILURE() << "not one literal: " << literal;
        return Variant();
    }
    return call.args[0].literal;
}

struct LiteralCase {
    const char* written;
    Variant value;
    friend void PrintTo(const LiteralCase& c, std::ostream* out) { *out << c.written; }
};

class ScriptLiteral : public ::testing::TestWithParam<LiteralCase> {};

TEST_P(ScriptLiteral, ReadsAsItsValue)
{
    EXPECT_EQ(OnlyLiteral(GetParam().written), GetParam().value) << GetParam().written;
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, ScriptLiteral,
    ::testing::Values(LiteralCase{"0", Variant::I4(0)}, LiteralCase{"-12", Variant::I4(-12)},
                      LiteralCase{"+7", Variant::I4(7)}, LiteralCase{"2147483647", Variant::I4(INT32_MAX)},
                      LiteralCase{"-2147483648", Variant::I4(INT32_MIN)},
                      LiteralCase{"2147483648", Variant::R8(2147483648.0)}, LiteralCase{"2.5", Variant::R8(2.5)},
                      LiteralCase{".5", Variant::R8(0.5)}, LiteralCase{"-0.25", Variant::R8(-0.25)},
                      LiteralCase{"3.", Variant::R8(3)}, LiteralCase{"1e3", Variant::R8(1000)},
                      LiteralCase{"1E+20", Variant::R8(1e20)}, LiteralCase{"2.5e-3", Variant::R8(0.0025)},
                      LiteralCase{"&HFF", Variant::I4(255)}, LiteralCase{"&hff00ff", Variant::I4(0xFF00FF)},
                      LiteralCase{"&H80000005", Variant::I4(int32_t(0x80000005u))},
                      LiteralCase{"&HFFFFFFFF", Variant::I4(-1)}));

INSTANTIATE_TEST_SUITE_P(TextAndTruth, ScriptLiteral,
                         ::testing::Values(LiteralCase{"\"Walls\"", Variant::String(u"Walls")},
                                           LiteralCase{"\"\"", Variant::String(u"")},
                                           LiteralCase{"\"say \"\"hi\"\"\"", Variant::String(u"say \"hi\"")},
                                           LiteralCase{"\"a # b ' c\"", Variant::String(u"a # b ' c")},
                                           LiteralCase{"\"h\xC3\xA9llo\"", Variant::String(u"h\u00E9llo")},
                                           LiteralCase{"True", Variant::Bool(true)},
                                           LiteralCase{"FALSE", Variant::Bool(false)},
                                           LiteralCase{"true", Variant::Bool(true)}));

std::vector<Argument::Form> Forms(const std::string& line)
{
    std::vector<Argument::Form> forms;
    for (const Argument& arg : Parsed<MemberCall>(line).args) forms.push_back(arg.form);
    return forms;
}

TEST(ScriptArguments, EmptySlotsLeaveArgumentsOut)
{
    using F = Argument::Form;
    EXPECT_EQ(Forms("DrawLine 1, , 3,"), (std::vector<F>{F::Literal, F::Omitted, F::Literal, F::Omitted}));
    EXPECT_EQ(Forms("DrawLine , 2"), (std::vector<F>{F::Omitted, F::Literal}));
    EXPECT_EQ(Forms("DrawLine(,)"), (std::vector<F>{F::Omitted, F::Omitted}));
    EXPECT_EQ(Forms("DrawLine $a, 2"), (std::vector<F>{F::Name, F::Literal}));
    EXPECT_TRUE(Forms("Refresh").empty());
    EXPECT_TRUE(Forms("Refresh()").empty());
    EXPECT_TRUE(Forms("Refresh # no arguments, 1, 2").empty());
    EXPECT_EQ(Forms("DrawLine 1,2 ' two").size(), 2u);
}

TEST(ScriptStatements, CallsKeepTheirResultName)
{
    const auto call = Parsed<MemberCall>("  $shape_1 = DrawLine(0, 0, 10, 10)");
    EXPECT_EQ(call.resultName, "shape_1");
    EXPECT_EQ(call.member, "DrawLine");
    EXPECT_EQ(call.args.size(), 4u);

    const auto plain = Parsed<MemberCall>("WorldLeft");
    EXPECT_EQ(plain.resultName, "");
    EXPECT_EQ(plain.member, "WorldLeft");
}

TEST(ScriptStatements, AssignmentsToPropertiesAndNames)
{
    const auto put = Parsed<PropertyAssignment>("WorldLeft = -5.5");
    EXPECT_EQ(put.member, "WorldLeft");
    EXPECT_TRUE(put.index.empty());
    EXPECT_EQ(put.value.literal, Variant::R8(-5.5));

    const auto indexed = Parsed<PropertyAssignment>("LayerName(1, 2) = \"Walls\"");
    EXPECT_EQ(indexed.member, "LayerName");
    ASSERT_EQ(indexed.index.size(), 2u);
    EXPECT_EQ(indexed.index[1].literal, Variant::I4(2));
    EXPECT_EQ(indexed.value.literal, Variant::String(u"Walls"));

    const auto fromName = Parsed<PropertyAssignment>("WorldLeft = $left");
    EXPECT_EQ(fromName.value.form, Argument::Form::Name);
    EXPECT_EQ(fromName.value.name, "left");

    const auto named = Parsed<NameAssignment>("$on = True");
    EXPECT_EQ(named.name, "on");
    EXPECT_EQ(named.value.literal, Variant::Bool(true));
    EXPECT_EQ(Parsed<NameAssignment>("$b = $a").value.name, "a");
}

TEST(ScriptStatements, HostCommandsTakeTheRestOfTheLineVerbatim)
{
    const auto echo = Parsed<HostCommand>("  .echo  drawn: 3 # of 4 \r");
    EXPECT_EQ(echo.name, "echo");
    EXPECT_EQ(echo.text, "drawn: 3 # of 4");
    const auto events = Parsed<HostCommand>(".events");
    EXPECT_EQ(events.name, "events");
    EXPECT_EQ(events.text, "");
}

TEST(ScriptStatements, CommentsAndBlankLinesDoNothing)
{
    for (const char* line : {"", "   ", "# a comment", "  ' another", "\t\r"})
        EXPECT_TRUE(std::holds_alternative<BlankLine>(ParseLine(line).statement)) << line;
}

// Lines the parser refuses and what it says, from a data file; \xNN there
// stands for a byte.
std::vector<std::pair<std::string, std::string>> BadLines()
{
    auto unescape = [](const std::string& text) {
        std::string out;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text.compare(i, 2, "\\x") == 0 && i + 4 <= text.size()) {
                out += char(std::stoi(text.substr(i + 2, 2), nullptr, 16));
                i += 3;
            } else {
                out += text[i];
            }
        }
        return out;
    };
    std::vector<std::pair<std::string, std::string>> cases;
    std::ifstream file(BVX_TEST_DATA_DIR "/script_errors.txt", std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        size_t tab = line.find('\t');
        if (line.empty() || line[0] == '#' || tab == std::string::npos) continue;
        cases.emplace_back(unescape(line.substr(0, tab)), unescape(line.substr(tab + 1)));
    }
    return cases;
}

TEST(ScriptBadLine, SaysWhatIsWrong)
{
    const auto cases = BadLines();
    ASSERT_GE(cases.size(), 30u);
    for (const auto& [line, error] : cases) {
        ParsedLine parsed = ParseLine(line);
        EXPECT_EQ(parsed.error, error) << line;
        EXPECT_TRUE(std::holds_alternative<BlankLine>(parsed.statement)) << line;
    }
}

} // namespace
} // namespace bvx::script
