// Scripted drawings painted in the script host's window and compared byte for
// byte with reviewed pictures (8-bit run-length BMPs). BVX_UPDATE_GOLDEN=1
// rewrites the pictures after a change that was looked at and meant.
#include "ScriptTranscript.h"
#include "platform/ByteStream.h"
#include "raster/Dib.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace bvx::script {
namespace {

namespace fs = std::filesystem;

const fs::path kGolden = BVX_GOLDEN_DIR;
constexpr int32_t kRunLength8 = 1;

class GoldenPicture : public ::testing::TestWithParam<fs::path> {};

TEST_P(GoldenPicture, MatchesTheReviewedPicture)
{
    EventLog events;
    CadControl control(nullptr, &events);
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    std::istringstream script(ReadFile(GetParam()));
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
    EXPECT_TRUE(painted == ReadFile(picture)) << GetParam().filename() << " paints differently from " << picture;
}

INSTANTIATE_TEST_SUITE_P(Scripts, GoldenPicture, ::testing::ValuesIn(ScriptsIn({kGolden})),
                         [](const auto& info) { return info.param.stem().string(); });

} // namespace
} // namespace bvx::script
