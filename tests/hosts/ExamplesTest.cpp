#include "ScriptTranscript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace bvx::script {
namespace {

namespace fs = std::filesystem;

// The examples a user reads, and the behaviour cases kept beside the tests;
// both are scripts with the output they must print.
const fs::path kScriptDirs[] = {BVX_EXAMPLES_DIR, BVX_SCRIPT_CASES_DIR};

std::vector<fs::path> ScriptPaths()
{
    std::vector<fs::path> paths;
    for (const fs::path& dir : kScriptDirs) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(dir, error))
            if (entry.path().extension() == ".bvxs") paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

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
