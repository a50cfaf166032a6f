#include "ScriptTranscript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace bvx::script {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = BVX_EXAMPLES_DIR;

std::vector<std::string> ExampleNames()
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(kExamples, error))
        if (entry.path().extension() == ".bvxs") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

class Example : public ::testing::TestWithParam<std::string> {};

// Each example runs on a fresh control, as `bvxcad run` runs it.
TEST_P(Example, PrintsItsExpectedOutput)
{
    const fs::path expected = kExamples / (GetParam() + ".expected");
    ASSERT_TRUE(fs::exists(expected)) << expected;
    EventLog events;
    CadControl control(nullptr, &events);
    EXPECT_EQ(Transcript(control, events, ReadFile(kExamples / (GetParam() + ".bvxs"))), ReadFile(expected));
}

INSTANTIATE_TEST_SUITE_P(Scripts, Example, ::testing::ValuesIn(ExampleNames()),
                         [](const auto& info) { return info.param; });

TEST(Examples, AreThere) { EXPECT_GE(ExampleNames().size(), 3u) << kExamples; }

} // namespace
} // namespace bvx::script
