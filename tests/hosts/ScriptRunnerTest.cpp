#include "ScriptTranscript.h"
#include "control/HostDoubles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>

namespace bvx::script {
namespace {

// Scripts and what they print, from a data file (see its head).
struct ScriptCase {
    std::string name;
    std::string script;
    std::string transcript;
    friend void PrintTo(const ScriptCase& c, std::ostream* out) { *out << c.name; }
};

std::vector<ScriptCase> ScriptCases()
{
    std::vector<ScriptCase> cases;
    std::istringstream file(ReadFile(BVX_TEST_DATA_DIR "/script_runs.txt"));
    bool inScript = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("== ", 0) == 0) {
            cases.push_back({line.substr(3), "", ""});
            inScript = true;
        } else if (line == "--") {
            inScript = false;
        } else if (!cases.empty()) {
            (inScript ? cases.back().script : cases.back().transcript) += line + "\n";
        }
    }
    return cases;
}

class ScriptRun : public ::testing::TestWithParam<ScriptCase> {
protected:
    EventLog events;
    CadControl control{nullptr, &events};
};

TEST_P(ScriptRun, PrintsWhatTheUserExpects)
{
    EXPECT_EQ(Transcript(control, events, GetParam().script), GetParam().transcript);
}

INSTANTIATE_TEST_SUITE_P(Cases, ScriptRun, ::testing::ValuesIn(ScriptCases()),
                         [](const auto& info) { return info.param.name; });

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
