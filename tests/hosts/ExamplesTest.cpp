#include "ScriptTranscript.h"

#include <gtest/gtest.h>


namespace bvx::script {
namespace {

namespace fs = std::filesystem;

// The examples a user reads, and the behaviour cases kept beside the tests;
// both are scripts with the output they must print.
std::vector<fs::path> ScriptPaths() { return ScriptsIn({BVX_EXAMPLES_DIR, BVX_SCRIPT_CASES_DIR}); }

class Script : public ::testing::TestWithParam<fs::path> {};

// Each script runs on a fresh control, as `bvxcad run` runs it.
TEST_P(Script, PrintsItsExpectedOutput)
{
    fs::path expected = GetParam();
    expected.replace_extension(".expected");
    ASSERT_TRUE(fs::exists(expected)) << expected;
    EventLog events;
    CadControl control(nullptr, &events);
    EXPECT_EQ(Transcript(control, events, ReadFile(GetParam())), ReadFile(expected));
}

INSTANTIATE_TEST_SUITE_P(Scripts, Script, ::testing::ValuesIn(ScriptPaths()), [](const auto& info) {
    return info.param.parent_path().filename().string() + "_" + info.param.stem().string();
});

TEST(Scripts, AreThere) { EXPECT_GE(ScriptPaths().size(), 6u); }

} // namespace
} // namespace bvx::script
