// The one byte-stream interface every file format reads and writes through.
// Implementations buffer, so callers may read and write field by field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace bvx {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Returns the bytes read; fewer than asked means the end was reached or
    // the medium failed.
    virtual size_t Read(void* buffer, size_t count) = 0;
    virtual uint64_t Position() const = 0;
    virtual bool Seek(uint64_t position) = 0;
    virtual uint64_t Size() const = 0;

    bool ReadExact(void* buffer, size_t count) { return Read(buffer, count) == count; }
    template <typename T> bool ReadLe(T& value)
    {
        uint8_t bytes[sizeof(T)];
        if (!ReadExact(bytes, sizeof(T))) return false;
        using U = std::make_unsigned_t<T>;
        U v = 0;
        for (size_t i = sizeof(T); i-- > 0;) v = U((v << 8) | bytes[i]);
        value = T(v);
        return true;
    }
};

class ByteSink {
public:
    virtual ~ByteSink() = default;
    virtual bool Write(const void* data, size_t count) = 0;
    virtual bool Flush() = 0;

    bool Write(std::span<const uint8_t> bytes) { return Write(bytes.data(), bytes.size()); }
    template <typename T> bool WriteLe(T value)
    {
        using U = std::make_unsigned_t<T>;
        U v = U(value);
        uint8_t bytes[sizeof(T)];
        for (size_t i = 0; i < sizeof(T); ++i, v = U(v >> 8)) bytes[i] = uint8_t(v);
        return Write(bytes, sizeof(T));
    }
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    size_t Read(void* buffer, size_t count) override;
    uint64_t Position() const override { return position_; }
    bool Seek(uint64_t position) override;
    uint64_t Size() const override { return bytes_.size(); }

private:
    std::span<const uint8_t> bytes_;
    size_t position_ = 0;
};

class MemorySink final : public ByteSink {
public:
    bool Write(const void* data, size_t count) override;
    bool Flush() override { return true; }
    const std::vector<uint8_t>& Bytes() const { return bytes_; }

private:
    std::vector<uint8_t> bytes_;
};

// Buffered files. A name is taken as bytes, as the platform's "A" calls take it.
class FileSource final : public ByteSource {
public:
    static std::unique_ptr<FileSource> Open(const std::string& path);
    ~FileSource() override;
    size_t Read(void* buffer, size_t count) override;
    uint64_t Position() const override;
    bool Seek(uint64_t position) override;
    uint64_t Size() const override { return size_; }

private:
    FileSource(std::FILE* file, uint64_t size);
    std::FILE* file_;
    uint64_t size_;
};

class FileSink final : public ByteSink {
public:
    // Creates or truncates the file.
    static std::unique_ptr<FileSink> Create(const std::string& path);
    // Takes over a file opened for writing.
    static std::unique_ptr<FileSink> Adopt(std::FILE* file);
    ~FileSink() override;
    bool Write(const void* data, size_t count) override;
    bool Flush() override;
    // Flushes and closes; false if anything failed on the way.
    bool Close();

private:
    explicit FileSink(std::FILE* file);
    std::FILE* file_;
    bool failed_ = false;
};

} // namespace bvx
