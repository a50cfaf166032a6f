// Every seed of the .bmp, .cur and drawing file fuzz corpora goes through its fuzz target;
// seeds named "bad_" must be refused and the others accepted, a .bmp read
// with a leading length when its name holds "sized". The seeds are the
// readers' tables of accepted and malformed files.
#include "fuzz/CursorReadFuzz.h"
#include "fuzz/DibReadFuzz.h"
#include "fuzz/NativeReadFuzz.h"

#include "buffer/NativeFile.h"
#include "control/CadView.h"
#include "platform/ByteStream.h"
#include "raster/CursorFile.h"
#include "raster/Dib.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

namespace bvx {
namespace {

std::vector<uint8_t> ReadFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Each seed of a corpus goes through its fuzz target, and `accepts` must say
// yes to exactly the seeds not named "bad_".
void Replay(const char* corpus, int (*target)(const uint8_t*, size_t),
            const std::function<bool(const std::vector<uint8_t>&, const std::string&)>& accepts)
{
    const std::filesystem::path dir = std::filesystem::path(BVX_FUZZ_CORPUS_DIR) / corpus;
    size_t seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (!entry.is_regular_file()) continue;
        const std::vector<uint8_t> bytes = ReadFile(entry.path());
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        EXPECT_EQ(target(bytes.data(), bytes.size()), 0);
        EXPECT_EQ(accepts(bytes, name), name.rfind("bad_", 0) != 0);
        ++seeds;
    }
    EXPECT_GT(seeds, 0u);
}

TEST(FuzzCorpusReplay, DibRead)
{
    Replay("dib_read", fuzz::DibReadOne, [](const std::vector<uint8_t>& bytes, const std::string& name) {
        MemorySource source(bytes);
        return DibReadBlock(source, name.find("sized") != std::string::npos) != nullptr;
    });
}

TEST(FuzzCorpusReplay, CursorRead)
{
    Replay("cursor_read", fuzz::CursorReadOne, [](const std::vector<uint8_t>& bytes, const std::string&) {
        MemorySource source(bytes);
        return ReadCursor(source).has_value();
    });
}

// Drawing files behind the byte that says how to load them; all are loaded
// whole here.
TEST(FuzzCorpusReplay, NativeRead)
{
    Replay("native_read", fuzz::NativeReadOne, [](const std::vector<uint8_t>& bytes, const std::string&) {
        MemorySource source(std::span<const uint8_t>(bytes).subspan(bytes.empty() ? 0 : 1));
        CadView view;
        return NativeFile::Read(view, source, NativeFile::kAllLayers, NativeFile::kAllLayers, 0);
    });
}

} // namespace
} // namespace bvx
