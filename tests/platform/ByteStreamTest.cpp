// Byte streams: little-endian fields, short reads and seeks that stay inside
// the data, files larger than a buffer, and quiet failure on missing paths.
#include "platform/ByteStream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>

namespace bvx {
namespace {

TEST(ByteStream, MemoryFieldsAreLittleEndianAndReadsStayInside)
{
    MemorySink sink;
    sink.WriteLe<uint16_t>(0x4D42);
    sink.WriteLe<int32_t>(-2);
    sink.WriteLe<uint32_t>(0xA1B2C3D4);
    EXPECT_EQ(sink.Bytes(), (std::vector<uint8_t>{'B', 'M', 0xFE, 0xFF, 0xFF, 0xFF, 0xD4, 0xC3, 0xB2, 0xA1}));
    MemorySource source(sink.Bytes());
    uint16_t magic = 0;
    int32_t negative = 0;
    uint32_t word = 0;
    ASSERT_TRUE(source.ReadLe(magic) && source.ReadLe(negative) && source.ReadLe(word));
    EXPECT_EQ(negative, -2);
    EXPECT_EQ(word, 0xA1B2C3D4u);
    uint8_t buffer[8];
    EXPECT_FALSE(source.ReadLe(buffer[0]));
    EXPECT_FALSE(source.Seek(11));
    EXPECT_EQ(source.Position(), 10u);
    ASSERT_TRUE(source.Seek(7));
    EXPECT_EQ(source.Read(buffer, sizeof buffer), 3u);
    EXPECT_EQ(buffer[0], 0xC3);
}

TEST(ByteStream, FileRoundTripLargerThanItsBuffer)
{
    const std::string path = (std::filesystem::temp_directory_path() / "bvx_bytestream_test.bin").string();
    std::vector<uint8_t> data(300000);
    std::iota(data.begin(), data.end(), uint8_t(0));
    {
        auto sink = FileSink::Create(path);
        ASSERT_TRUE(sink);
        for (size_t i = 0; i < data.size(); i += 1000) ASSERT_TRUE(sink->Write(&data[i], 1000));
        EXPECT_TRUE(sink->Close());
    }
    {
        auto source = FileSource::Open(path);
        ASSERT_TRUE(source);
        std::vector<uint8_t> back(size_t(source->Size()));
        EXPECT_TRUE(source->ReadExact(back.data(), back.size()));
        EXPECT_EQ(back, data);
        uint8_t b = 0;
        ASSERT_TRUE(source->Seek(12345) && source->ReadLe(b));
        EXPECT_EQ(b, data[12345]);
        EXPECT_FALSE(source->Seek(data.size() + 1));
    }
    std::filesystem::remove(path);
    EXPECT_TRUE(!FileSource::Open("/nonexistent-folder/none.bin") && !FileSink::Create("/nonexistent-folder/none.bin"));
}

} // namespace
} // namespace bvx
