// Every seed of the .bmp fuzz corpus goes through the fuzz target; seeds
// named "bad_" must be refused and the others accepted, read with a leading
// length when their name holds "sized". The seeds are the reader's table of
// accepted and malformed files.
#include "fuzz/DibReadFuzz.h"

#include "platform/ByteStream.h"
#include "raster/Dib.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace bvx {
namespace {

std::vector<uint8_t> ReadFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(FuzzCorpusReplay, DibRead)
{
    const std::filesystem::path dir = std::filesystem::path(BVX_FUZZ_CORPUS_DIR) / "dib_read";
    size_t seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (!entry.is_regular_file()) continue;
        const std::vector<uint8_t> bytes = ReadFile(entry.path());
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        EXPECT_EQ(fuzz::DibReadOne(bytes.data(), bytes.size()), 0);
        MemorySource source(bytes);
        const bool accepted = DibReadBlock(source, name.find("sized") != std::string::npos) != nullptr;
        EXPECT_EQ(accepted, name.rfind("bad_", 0) != 0);
        ++seeds;
    }
    EXPECT_GT(seeds, 0u);
}

} // namespace
} // namespace bvx
