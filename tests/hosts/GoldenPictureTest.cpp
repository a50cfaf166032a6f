// Scripted drawings painted in the script host's window and compared byte for
// byte with reviewed pictures (8-bit run-length BMPs). BVX_UPDATE_GOLDEN=1
// rewrites the pictures after a change that was looked at and meant.
#include "hosts/cli/ScriptRunner.h"
#include "platform/ByteStream.h"
#include "raster/Dib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace bvx::script {
namespace {

namespace fs = std::filesystem;

const fs::path kGolden = BVX_GOLDEN_DIR;
constexpr int32_t kRunLength8 = 1;

std::vector<fs::path> Scripts()
{
    std::vector<fs::path> paths;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(kGolden, error))
        if (entry.path().extension() == ".bvxs") paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string ReadBytes(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

class GoldenPicture : public ::testing::TestWithParam<fs::path> {};

TEST_P(GoldenPicture, MatchesTheReviewedPicture)
{
    EventLog events;
    CadControl control(nullptr, &events);
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    std::istringstream script(ReadBytes(GetParam()));
    ASSERT_FALSE(runner.Run(script).has_value()) << GetParam();
    ASSERT_TRUE(runner.Window().Exists());

    auto dib = DibFromBitmap(*runner.Window().Surface(), 8, kRunLength8, nullptr);
    ASSERT_TRUE(dib);
    MemorySink sink;
    ASSERT_TRUE(DibWriteBmp(*dib, sink));
    const std::string painted(sink.Bytes().begin(), sink.Bytes().end());

    fs::path picture = GetParam();
    picture.replace_extension(".bmp");
    const char* update = std::getenv("BVX_UPDATE_GOLDEN");
    if (update && std::string(update) == "1") {
        std::ofstream(picture, std::ios::binary) << painted;
        GTEST_SKIP() << "rewrote " << picture;
    }
    ASSERT_TRUE(fs::exists(picture)) << picture << " is missing: run with BVX_UPDATE_GOLDEN=1 and look at it";
    EXPECT_TRUE(painted == ReadBytes(picture)) << GetParam().filename() << " paints differently from " << picture;
}

INSTANTIATE_TEST_SUITE_P(Scripts, GoldenPicture, ::testing::ValuesIn(Scripts()),
                         [](const auto& info) { return info.param.stem().string(); });

} // namespace
} // namespace bvx::script
