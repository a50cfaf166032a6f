// Image2's buffered output: when bytes reach the file, counting without a
// file, and the error codes passed to the host's reporter.
#include "raster/Image2.h"

#include "platform/ByteStream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>
#include <tuple>

namespace bvx {
namespace {

// Logs the size of each write; fails writes from the `failFrom`-th on, and
// flushes when asked to.
struct RecordingSink final : ByteSink {
    RecordingSink(std::vector<size_t>& writes, std::vector<uint8_t>& bytes, int failFrom = -1, bool failFlush = false)
        : writes(writes), bytes(bytes), failFrom(failFrom), failFlush(failFlush) {}
    bool Write(const void* data, size_t count) override
    {
        if (failFrom >= 0 && int(writes.size()) >= failFrom) return false;
        writes.push_back(count);
        bytes.insert(bytes.end(), static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + count);
        return true;
    }
    bool Flush() override { return !failFlush; }
    std::vector<size_t>& writes;
    std::vector<uint8_t>& bytes;
    int failFrom;
    bool failFlush;
};

std::vector<uint8_t> Sequence(size_t n)
{
    std::vector<uint8_t> bytes(n);
    std::iota(bytes.begin(), bytes.end(), uint8_t(7));
    return bytes;
}

TEST(Image2Output, WritesWholeBuffersOnlyWhenMoreMustBeHeld)
{
    std::vector<size_t> writes;
    std::vector<uint8_t> bytes;
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(writes, bytes)));
    const std::vector<uint8_t> data = Sequence(12000);
    for (size_t i = 0; i < Image2::kOutBufferSize; ++i) ASSERT_TRUE(image.WriteByte(data[i]));
    EXPECT_TRUE(writes.empty());
    ASSERT_TRUE(image.WriteBytes(std::span(data).subspan(Image2::kOutBufferSize)));
    ASSERT_TRUE(image.FlushOutput());
    EXPECT_EQ(writes, (std::vector<size_t>{5120, 5120, 1760}));
    EXPECT_EQ(bytes, data);
    EXPECT_TRUE(image.CloseOutput());
    EXPECT_EQ(image.Error(), 0);
}

TEST(Image2Output, CountsWithoutAFileForTheNullNameAndWritesRealFiles)
{
    Image2 counter;
    ASSERT_TRUE(counter.OpenOutput(Image2::kCountOnlyName));
    EXPECT_TRUE(counter.WriteByte(1) && counter.WriteBytes(Sequence(6000)) && counter.FlushOutput());
    EXPECT_TRUE(counter.CloseOutput());
    EXPECT_EQ(counter.ByteCount(), 6001u);
    EXPECT_FALSE(std::filesystem::exists(Image2::kCountOnlyName));

    const std::filesystem::path path = std::filesystem::temp_directory_path() / "bvx_image2_output.bin";
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(path.string()));
    ASSERT_TRUE(image.WriteBytes(Sequence(7000)) && image.FlushOutput() && image.CloseOutput());
    {
        // Closed before the removal: Windows will not remove an open file.
        const std::unique_ptr<FileSource> source = FileSource::Open(path.string());
        ASSERT_TRUE(source);
        std::vector<uint8_t> back(size_t(source->Size()));
        EXPECT_TRUE(source->ReadExact(back.data(), back.size()));
        EXPECT_EQ(back, Sequence(7000));
    }
    std::filesystem::remove(path);
}

// Writes failing from the given one on, a failing flush, the bytes written before flushing and closing (SIZE_MAX:
// none, and no flush), and every message the reporter gets.
TEST(Image2Failure, ReportsItsCodes)
{
    const std::tuple<const char*, int, bool, size_t, std::vector<std::string>> rows[] = {
        {"buffer write", 0, false, 6000, {"Error 4"}},
        {"final flush", 0, false, 100, {"Error 5"}},
        {"flush to disk", -1, true, 100, {"Error 5", "Error 2"}},
        {"close alone", -1, true, SIZE_MAX, {"Error 2"}}};
    for (const auto& [name, failFrom, failFlush, count, expected] : rows) {
        std::vector<std::string> shown;
        const ErrorReporter previous = SetErrorReporter([&shown](const std::string& m) { shown.push_back(m); });
        std::vector<size_t> writes;
        std::vector<uint8_t> bytes;
        Image2 image;
        ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(writes, bytes, failFrom, failFlush)));
        if (count != SIZE_MAX && image.WriteBytes(Sequence(count))) image.FlushOutput();
        image.CloseOutput();
        SetErrorReporter(previous);
        EXPECT_EQ(shown, expected) << name;
        EXPECT_NE(image.Error(), 0) << name;
    }
}

TEST(Image2Errors, UncreatableFileAndBaseClassOperations)
{
    std::vector<std::string> shown;
    const ErrorReporter previous = SetErrorReporter([&shown](const std::string& m) { shown.push_back(m); });
    Image2 image;
    EXPECT_FALSE(image.OpenOutput((std::filesystem::temp_directory_path() / "no_such_dir" / "x.gif").string()));
    EXPECT_EQ(image.Error(), ImageError::CannotCreate);
    EXPECT_FALSE(image.Compress());
    EXPECT_FALSE(image.Expand());
    SetErrorReporter(nullptr);
    image.ReportError(18); // no reporter: only the code is kept
    SetErrorReporter(previous);
    EXPECT_EQ(shown, (std::vector<std::string>{"Error 1", "Error 7", "Error 7"}));
    EXPECT_EQ(image.Error(), 18);
}

} // namespace
} // namespace bvx
