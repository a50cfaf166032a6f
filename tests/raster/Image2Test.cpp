// Image2's buffered output: when bytes reach the file, counting without a
// file, and the error codes passed to the host's reporter.
#include "raster/Image2.h"

#include "platform/ByteStream.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <numeric>

namespace bvx {
namespace {

// Records each write as it arrives; fails from a chosen write on.
class RecordingSink final : public ByteSink {
public:
    struct Log {
        std::vector<size_t> writeSizes;
        std::vector<uint8_t> bytes;
        int flushes = 0;
    };
    RecordingSink(Log& log, int failFromWrite = -1, bool failFlush = false)
        : log_(log), failFromWrite_(failFromWrite), failFlush_(failFlush) {}
    bool Write(const void* data, size_t count) override
    {
        if (failFromWrite_ >= 0 && int(log_.writeSizes.size()) >= failFromWrite_) return false;
        log_.writeSizes.push_back(count);
        const auto* p = static_cast<const uint8_t*>(data);
        log_.bytes.insert(log_.bytes.end(), p, p + count);
        return true;
    }
    bool Flush() override
    {
        ++log_.flushes;
        return !failFlush_;
    }

private:
    Log& log_;
    int failFromWrite_;
    bool failFlush_;
};

// Installs a reporter for the test's lifetime and keeps what it was told.
class ReporterScope {
public:
    ReporterScope() { previous_ = SetErrorReporter([this](const std::string& m) { messages.push_back(m); }); }
    ~ReporterScope() { SetErrorReporter(previous_); }
    std::vector<std::string> messages;

private:
    ErrorReporter previous_;
};

std::vector<uint8_t> Sequence(size_t n)
{
    std::vector<uint8_t> bytes(n);
    std::iota(bytes.begin(), bytes.end(), uint8_t(7));
    return bytes;
}

TEST(Image2Output, HoldsBytesUntilTheBufferMustMakeRoom)
{
    RecordingSink::Log log;
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(log)));
    const std::vector<uint8_t> data = Sequence(Image2::kOutBufferSize + 1);
    for (size_t i = 0; i < Image2::kOutBufferSize; ++i) ASSERT_TRUE(image.WriteByte(data[i]));
    EXPECT_TRUE(log.writeSizes.empty());
    ASSERT_TRUE(image.WriteByte(data.back()));
    EXPECT_EQ(log.writeSizes, std::vector<size_t>{Image2::kOutBufferSize});
    ASSERT_TRUE(image.FlushOutput());
    EXPECT_EQ(log.writeSizes, (std::vector<size_t>{Image2::kOutBufferSize, 1}));
    EXPECT_EQ(log.bytes, data);
    EXPECT_TRUE(image.CloseOutput());
    EXPECT_EQ(image.Error(), 0);
}

TEST(Image2Output, WritesLongRunsInWholeBuffers)
{
    RecordingSink::Log log;
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(log)));
    const std::vector<uint8_t> data = Sequence(12000);
    ASSERT_TRUE(image.WriteBytes(std::span(data).first(3)));
    ASSERT_TRUE(image.WriteBytes(std::span(data).subspan(3)));
    ASSERT_TRUE(image.FlushOutput());
    EXPECT_EQ(log.writeSizes, (std::vector<size_t>{5120, 5120, 1760}));
    EXPECT_EQ(log.bytes, data);
}

TEST(Image2Output, CountsWithoutAFileForTheNullName)
{
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(Image2::kCountOnlyName));
    EXPECT_TRUE(image.CountOnly());
    EXPECT_TRUE(image.WriteByte(1));
    EXPECT_TRUE(image.WriteBytes(Sequence(6000)));
    EXPECT_TRUE(image.FlushOutput());
    EXPECT_TRUE(image.CloseOutput());
    EXPECT_EQ(image.ByteCount(), 6001u);
    EXPECT_FALSE(std::filesystem::exists(Image2::kCountOnlyName));
}

TEST(Image2Output, WritesARealFile)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "bvx_image2_output.bin";
    const std::vector<uint8_t> data = Sequence(7000);
    {
        Image2 image;
        ASSERT_TRUE(image.OpenOutput(path.string()));
        ASSERT_TRUE(image.WriteBytes(data));
        ASSERT_TRUE(image.FlushOutput());
        ASSERT_TRUE(image.CloseOutput());
    }
    {
        // Closed before the removal: Windows will not remove an open file.
        const std::unique_ptr<FileSource> source = FileSource::Open(path.string());
        ASSERT_TRUE(source);
        std::vector<uint8_t> back(size_t(source->Size()));
        EXPECT_TRUE(source->ReadExact(back.data(), back.size()));
        EXPECT_EQ(back, data);
    }
    std::filesystem::remove(path);
}

struct FailureCase {
    const char* name;
    int failFromWrite;
    bool failFlush;
    size_t bytes;       // written before flushing and closing
    int32_t expected;   // the first code reported
};

void PrintTo(const FailureCase& c, std::ostream* os) { *os << c.name; }

class Image2Failure : public testing::TestWithParam<FailureCase> {};

TEST_P(Image2Failure, ReportsItsCode)
{
    const FailureCase& c = GetParam();
    ReporterScope reporter;
    RecordingSink::Log log;
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(log, c.failFromWrite, c.failFlush)));
    const bool wrote = image.WriteBytes(Sequence(c.bytes));
    const bool flushed = wrote && image.FlushOutput();
    const bool closed = image.CloseOutput();
    EXPECT_FALSE(wrote && flushed && closed);
    ASSERT_FALSE(reporter.messages.empty());
    EXPECT_EQ(reporter.messages.front(), "Error " + std::to_string(c.expected));
    EXPECT_NE(image.Error(), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, Image2Failure,
                         testing::Values(FailureCase{"buffer write", 0, false, 6000, ImageError::CannotWrite},
                                         FailureCase{"final flush", 0, false, 100, ImageError::CannotFlush},
                                         FailureCase{"flush to disk", -1, true, 100, ImageError::CannotFlush}));

TEST(Image2Errors, CloseFailureReportsTwo)
{
    ReporterScope reporter;
    RecordingSink::Log log;
    Image2 image;
    ASSERT_TRUE(image.OpenOutput(std::make_unique<RecordingSink>(log, -1, true)));
    EXPECT_FALSE(image.CloseOutput());
    EXPECT_EQ(reporter.messages, std::vector<std::string>{"Error 2"});
    EXPECT_EQ(image.Error(), ImageError::CannotClose);
}

TEST(Image2Errors, UncreatableFileAndBaseClassOperations)
{
    ReporterScope reporter;
    Image2 image;
    EXPECT_FALSE(image.OpenOutput((std::filesystem::temp_directory_path() / "no_such_dir" / "x.gif").string()));
    EXPECT_EQ(image.Error(), ImageError::CannotCreate);
    EXPECT_FALSE(image.Compress());
    EXPECT_FALSE(image.Expand());
    EXPECT_EQ(reporter.messages, (std::vector<std::string>{"Error 1", "Error 7", "Error 7"}));
}

TEST(Image2Errors, WithoutAReporterOnlyTheCodeIsKept)
{
    const ErrorReporter previous = SetErrorReporter(nullptr);
    Image2 image;
    image.ReportError(18);
    EXPECT_EQ(image.Error(), 18);
    SetErrorReporter(previous);
}

} // namespace
} // namespace bvx
