#include "ScriptTranscript.h"
#include "control/HostDoubles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>

namespace bvx::script {
namespace {

struct ScriptCase {
    const char* name;
    std::string script;
    std::string transcript;
    friend void PrintTo(const ScriptCase& c, std::ostream* out) { *out << c.name; }
};

class ScriptRun : public ::testing::TestWithParam<ScriptCase> {
protected:
    EventLog events;
    CadControl control{nullptr, &events};
};

TEST_P(ScriptRun, PrintsWhatTheUserExpects)
{
    EXPECT_EQ(Transcript(control, events, GetParam().script), GetParam().transcript);
}

std::string CaseName(const ::testing::TestParamInfo<ScriptCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Members, ScriptRun,
    ::testing::Values(
        ScriptCase{"PropertiesReadAndWrite",
                   "WorldSet -10, 20, 30, -5\nWorldLeft\nWorldLeft = -20\nWorldLeft\nworldleft\n",
                   "-> -10\n-> -20\n-> -20\n"},
        ScriptCase{"IndexedPropertiesInParenthesesOrNot",
                   "LayerName(1) = \"Say \"\"hi\"\"\"\nLayerName 1\nLayerName(1)\n",
                   "-> \"Say \"\"hi\"\"\"\n-> \"Say \"\"hi\"\"\"\n"},
        ScriptCase{"VoidMethodsPrintNothing", "Refresh\nWorldPan 1, 1\nRefresh()\n", ""},
        ScriptCase{"ResultsAreKeptAndUsed",
                   "$first = DrawLine 0, 0, 1, 1\n$second = DrawRectangle(0, 0, 2, 2)\nShapeType $second\n"
                   "ShapeType $first\n$x = 12.5\nWorldLeft = $x\nWorldLeft\n$y = $x\nWorldRight = $y\n",
                   "-> 1\n-> 2\n-> 1\n-> 3\n-> 12.5\n"},
        ScriptCase{
            "OmittedOptionalTakesItsDefault",
            "LayerOpen \"Extra\"\nDrawLine 0, 0, 1, 1, 9\n$a = DrawLine 0, 0, 1, 1, 2\n$b = DrawLine 0, 0, 1, 1,\n"
            "$c = DrawLine(0, 0, 1, 1)\nShapeOnLayer $a\nShapeOnLayer $b\nShapeOnLayer $c\n",
            "-> 2\n-> -1\n-> 1\n-> 2\n-> 3\n-> 2\n-> 0\n-> 0\n"},
        ScriptCase{"ColoursPrintAsHex", "BackColor = &H80FF\nBackColor\nBackColor = 255\nBackColor\n",
                   "-> &H0080FF\n-> &H0000FF\n"},
        ScriptCase{"ArraysPrintInBraces", "DrawLine 0, 0, 1, 1\nDrawLine 0, 0, 1, 1\nLayerShapeNumbers 0\n",
                   "-> 1\n-> 2\n-> {1, 2}\n"},
        ScriptCase{"EventsAreListedOnceAndCleared", ".events\nDrawLine 0, 0, 1, 1\n.events\n.events\n.echo  done  \n",
                   "no events\n-> 1\nevent ShapeNumberAdded(ShapeType=3, ShapeNumber=1)\nno events\ndone\n"},
        ScriptCase{"CommentsAndBlankLines", "# heading\n\n  ' note\nWorldLeft # trailing, 1, 2\r\n", "-> 0\n"}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Errors, ScriptRun,
    ::testing::Values(
        ScriptCase{"StopsAtTheFirstBadLine", "WorldLeft\n\nFoo 1\nWorldLeft\n", "-> 0\nline 3: unknown member 'Foo'\n"},
        ScriptCase{"UnknownOnTheLeftOfAnAssignment", "Bar(1) = 2\n", "line 1: unknown member 'Bar'\n"},
        ScriptCase{"ParseErrorsCarryTheLineNumber", "# one\nLayerName(1) = \"Walls\n", "line 2: unterminated string\n"},
        ScriptCase{"TypeMismatchNamesTheArgument", "DrawLine 0, \"wide\", 1, 1\n",
                   "line 1: DrawLine: type mismatch in argument 2 (Y1)\n"},
        ScriptCase{"OverflowNamesTheArgument", "LayerName 70000\n",
                   "line 1: LayerName: overflow in argument 1 (LayerNumber)\n"},
        ScriptCase{"HugeNumbersOverflow", "DrawLine 0, 0, 1, 1, 99999999999999999999\n",
                   "line 1: DrawLine: overflow in argument 5 (LayerNumber)\n"},
        ScriptCase{"MismatchInTheAssignedValue", "WorldLeft = \"far\"\n",
                   "line 1: WorldLeft: type mismatch in the value\n"},
        ScriptCase{"RequiredArgumentLeftOut", "DrawLine 0, 0, , 1\n",
                   "line 1: DrawLine: argument 3 (X2) is not optional\n"},
        ScriptCase{"RequiredArgumentsMissingAtTheEnd", "DrawLine 0, 0\n",
                   "line 1: DrawLine: argument 3 (X2) is not optional\n"},
        ScriptCase{"IndexMissingInAnAssignment", "LayerName = \"x\"\n",
                   "line 1: LayerName: argument 1 (LayerNumber) is not optional\n"},
        ScriptCase{"TooManyArguments", "DrawLine 0, 0, 1, 1, 0, 0\n",
                   "line 1: DrawLine: too many arguments (takes at most 5)\n"},
        ScriptCase{"TooManyIndexArguments", "LayerName(1, 2) = \"x\"\n",
                   "line 1: LayerName: too many index arguments (takes 1)\n"},
        ScriptCase{"ReadOnlyProperty", "LayerCount = 3\n", "line 1: LayerCount is read-only\n"},
        ScriptCase{"MethodsCannotBeAssigned", "Refresh = 1\n", "line 1: Refresh is a method and cannot be assigned\n"},
        ScriptCase{"NothingToKeep", "$r = Refresh\n", "line 1: Refresh returns nothing to keep in $r\n"},
        ScriptCase{"UnsetName", "$a = 1\nWorldLeft = $b\n", "line 2: $b is not set\n"},
        ScriptCase{"UnknownHostCommand", ".draw 10, 10\n", "line 1: unknown host command '.draw'\n"},
        ScriptCase{"WindowCommandsNeedAWindow", ".paint\n", "line 1: .paint needs a window: give it one with .size first\n"},
        ScriptCase{"SaveNeedsAWindow", ".save x.bmp\n", "line 1: .save needs a window: give it one with .size first\n"},
        ScriptCase{"SizeTakesTwoPositiveNumbers", ".size 0, 10\n",
                   "line 1: .size takes a width and a height, 1 to 16384: '0, 10'\n"},
        ScriptCase{"SizeRefusesAHugeWindow", ".size 100000, 10\n",
                   "line 1: .size takes a width and a height, 1 to 16384: '100000, 10'\n"}),
    CaseName);

TEST(ScriptRunDesignTime, GatedReadsAreRefused)
{
    testing::RecordingHostWindow window;
    window.userMode = false;
    EventLog events;
    CadControl control(&window, &events);
    EXPECT_EQ(Transcript(control, events, "WorldLeft\nLayerName 0\n"),
              "-> 0\nline 2: LayerName: not available at design time\n");
}

TEST(ScriptRunLines, LinesRunOneByOneAndUnreadableScriptsFail)
{
    EventLog events;
    CadControl control(nullptr, &events);
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    EXPECT_EQ(runner.RunLine("$n = DrawLine 0, 0, 5, 5"), "");
    EXPECT_EQ(runner.RunLine("ShapeType $n"), "");
    EXPECT_EQ(runner.RunLine("ShapeType $m"), "$m is not set");
    EXPECT_EQ(out.str(), "-> 1\n-> 3\n");

    std::istream unreadable(nullptr);
    std::optional<ScriptError> error = runner.Run(unreadable);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->ToString(), "line 1: cannot read the script");
}

// Lines of script-like garbage, run one by one: each either runs or ends in
// one short message; none crashes or hangs.
TEST(ScriptRunLines, GarbageEndsInOneShortMessage)
{
    const std::vector<std::string> pieces = {
        "DrawLine", "LayerName", "ShapeSelect", "WorldLeft", "$a",   "=", "(", ")", ",", "1",    "-2.5",
        "1e400",    "&HFF",      "\"x\"",       "\"",        "True", "#", ".", "'", " ", "\x01", "\xC3"};
    EventLog events;
    CadControl control(nullptr, &events);
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    uint32_t state = 12345;
    auto next = [&state] { return (state = state * 1664525u + 1013904223u) >> 8; };
    for (int line = 0; line < 5000; ++line) {
        std::string text;
        for (uint32_t n = next() % 9; n > 0; --n) text += pieces[next() % pieces.size()];
        const std::string error = runner.RunLine(text);
        EXPECT_EQ(error.find('\n'), std::string::npos) << text;
        EXPECT_LT(error.size(), 120u) << text;
    }
}

} // namespace
} // namespace bvx::script
