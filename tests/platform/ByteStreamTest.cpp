#include "platform/ByteStream.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <numeric>

namespace bvx {
namespace {

TEST(ByteStream, LittleEndianFieldsRoundTripThroughMemory)
{
    MemorySink sink;
    sink.WriteLe<uint16_t>(0x4D42);
    sink.WriteLe<int32_t>(-2);
    sink.WriteLe<uint32_t>(0xA1B2C3D4);
    ASSERT_EQ(sink.Bytes().size(), 10u);
    EXPECT_EQ(sink.Bytes()[0], 'B');
    EXPECT_EQ(sink.Bytes()[1], 'M');
    EXPECT_EQ(sink.Bytes()[6], 0xD4);

    MemorySource source(sink.Bytes());
    uint16_t magic = 0;
    int32_t negative = 0;
    uint32_t word = 0;
    ASSERT_TRUE(source.ReadLe(magic) && source.ReadLe(negative) && source.ReadLe(word));
    EXPECT_EQ(magic, 0x4D42);
    EXPECT_EQ(negative, -2);
    EXPECT_EQ(word, 0xA1B2C3D4u);
    // Past the end: a short read, never a read outside the buffer.
    uint8_t extra = 0;
    EXPECT_FALSE(source.ReadLe(extra));
}

TEST(ByteStream, MemorySourceRefusesSeekPastEnd)
{
    const uint8_t bytes[4] = {1, 2, 3, 4};
    MemorySource source(bytes);
    EXPECT_TRUE(source.Seek(4));
    EXPECT_FALSE(source.Seek(5));
    EXPECT_EQ(source.Position(), 4u);
    uint8_t buffer[8];
    EXPECT_EQ(source.Read(buffer, sizeof buffer), 0u);
    ASSERT_TRUE(source.Seek(1));
    EXPECT_EQ(source.Read(buffer, sizeof buffer), 3u);
    EXPECT_EQ(buffer[0], 2);
}

TEST(ByteStream, FileRoundTripLargerThanItsBuffer)
{
    auto path = (std::filesystem::temp_directory_path() / "bvx_bytestream_test.bin").string();
    std::vector<uint8_t> data(300000);
    std::iota(data.begin(), data.end(), uint8_t(0));
    {
        auto sink = FileSink::Create(path);
        ASSERT_TRUE(sink);
        for (size_t i = 0; i < data.size(); i += 1000) ASSERT_TRUE(sink->Write(&data[i], 1000));
        EXPECT_TRUE(sink->Close());
    }
    auto source = FileSource::Open(path);
    ASSERT_TRUE(source);
    EXPECT_EQ(source->Size(), data.size());
    std::vector<uint8_t> back(data.size());
    EXPECT_TRUE(source->ReadExact(back.data(), back.size()));
    EXPECT_EQ(back, data);
    ASSERT_TRUE(source->Seek(12345));
    uint8_t b = 0;
    ASSERT_TRUE(source->ReadLe(b));
    EXPECT_EQ(b, data[12345]);
    EXPECT_FALSE(source->Seek(data.size() + 1));
    source.reset();
    std::remove(path.c_str());
}

TEST(ByteStream, MissingFilesAndFoldersFailQuietly)
{
    EXPECT_EQ(FileSource::Open("/nonexistent-folder/none.bin"), nullptr);
    EXPECT_EQ(FileSink::Create("/nonexistent-folder/none.bin"), nullptr);
}

} // namespace
} // namespace bvx
