#include "ByteStream.h"

#include <cstring>

namespace bvx {

namespace {
constexpr size_t kFileBufferSize = 64 * 1024;
}

size_t MemorySource::Read(void* buffer, size_t count)
{
    size_t n = std::min(count, bytes_.size() - position_);
    if (n) std::memcpy(buffer, bytes_.data() + position_, n);
    position_ += n;
    return n;
}

bool MemorySource::Seek(uint64_t position)
{
    if (position > bytes_.size()) return false;
    position_ = size_t(position);
    return true;
}

bool MemorySink::Write(const void* data, size_t count)
{
    auto p = static_cast<const uint8_t*>(data);
    bytes_.insert(bytes_.end(), p, p + count);
    return true;
}

std::unique_ptr<FileSource> FileSource::Open(const std::string& path)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return nullptr;
    std::setvbuf(f, nullptr, _IOFBF, kFileBufferSize);
    uint64_t size = 0;
    if (std::fseek(f, 0, SEEK_END) == 0) {
        long end = std::ftell(f);
        if (end > 0) size = uint64_t(end);
    }
    std::fseek(f, 0, SEEK_SET);
    return std::unique_ptr<FileSource>(new FileSource(f, size));
}

FileSource::FileSource(std::FILE* file, uint64_t size) : file_(file), size_(size) {}

FileSource::~FileSource() { std::fclose(file_); }

size_t FileSource::Read(void* buffer, size_t count) { return std::fread(buffer, 1, count, file_); }

uint64_t FileSource::Position() const
{
    long p = std::ftell(file_);
    return p < 0 ? 0 : uint64_t(p);
}

bool FileSource::Seek(uint64_t position)
{
    if (position > size_) return false;
    return std::fseek(file_, long(position), SEEK_SET) == 0;
}

std::unique_ptr<FileSink> FileSink::Create(const std::string& path)
{
    return Adopt(std::fopen(path.c_str(), "wb"));
}

std::unique_ptr<FileSink> FileSink::Adopt(std::FILE* file)
{
    if (!file) return nullptr;
    std::setvbuf(file, nullptr, _IOFBF, kFileBufferSize);
    return std::unique_ptr<FileSink>(new FileSink(file));
}

FileSink::FileSink(std::FILE* file) : file_(file) {}

FileSink::~FileSink()
{
    if (file_) std::fclose(file_);
}

bool FileSink::Write(const void* data, size_t count)
{
    if (!file_ || std::fwrite(data, 1, count, file_) != count) failed_ = true;
    return !failed_;
}

bool FileSink::Flush()
{
    if (!file_ || std::fflush(file_) != 0) failed_ = true;
    return !failed_;
}

bool FileSink::Close()
{
    if (!file_) return false;
    bool ok = std::fflush(file_) == 0 && !failed_;
    ok = std::fclose(file_) == 0 && ok;
    file_ = nullptr;
    return ok;
}

} // namespace bvx
