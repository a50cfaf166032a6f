// The drawing file's field streams. Every field of a drawing goes through
// one of these, so the common case is a bounds test and a copy out of (or
// into) a block of memory; only a refill or a flush reaches the byte stream.
#pragma once

#include "platform/ByteStream.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace bvx {

static_assert(std::endian::native == std::endian::little, "the drawing file is little-endian, as are the hosts");

// Reads fields in file order. A read past the end fails the reader for
// good and yields zeros; callers test Ok() where a record ends.
class NativeReader {
public:
    explicit NativeReader(ByteSource& source);

    bool Ok() const { return !failed_; }
    void Fail() { failed_ = true; }
    // Bytes not yet read: the bound for any count or size read from the file.
    uint64_t Remaining() const { return failed_ ? 0 : unread_ + uint64_t(end_ - cur_); }

    template <typename T> T Get()
    {
        static_assert(std::is_trivially_copyable_v<T>);
        T value;
        if (size_t(end_ - cur_) >= sizeof(T)) {
            std::memcpy(&value, cur_, sizeof(T));
            cur_ += sizeof(T);
            return value;
        }
        if (!Copy(&value, sizeof(T))) return T{};
        return value;
    }
    uint8_t U8() { return Get<uint8_t>(); }
    int16_t I16() { return Get<int16_t>(); }
    uint16_t U16() { return Get<uint16_t>(); }
    int32_t I32() { return Get<int32_t>(); }
    uint32_t U32() { return Get<uint32_t>(); }
    double F64() { return Get<double>(); }
    // A coordinate of a version: f32 before code 8, widened, else f64.
    double Coord(int32_t version) { return version < 8 ? double(Get<float>()) : Get<double>(); }

    // False, and the reader failed, when fewer bytes remain.
    bool Bytes(void* out, uint64_t count) { return Copy(out, count); }
    bool Skip(uint64_t count);
    // A text of `count` bytes in the system code page, up to its first NUL.
    bool AnsiText(uint64_t count, std::string& text);

private:
    bool Copy(void* out, uint64_t count);
    bool Refill();

    ByteSource& source_;
    std::vector<uint8_t> block_;
    const uint8_t* cur_ = nullptr;
    const uint8_t* end_ = nullptr;
    uint64_t unread_ = 0; // in the source, behind the block
    bool failed_ = false;
};

// Writes fields in file order into a block that goes to the sink when full.
class NativeWriter {
public:
    explicit NativeWriter(ByteSink& sink);

    template <typename T> void Put(T value)
    {
        static_assert(std::is_trivially_copyable_v<T>);
        if (size_t(block_.data() + block_.size() - cur_) < sizeof(T)) Drain();
        std::memcpy(cur_, &value, sizeof(T));
        cur_ += sizeof(T);
    }
    void U8(uint8_t v) { Put(v); }
    void I16(int16_t v) { Put(v); }
    void U16(uint16_t v) { Put(v); }
    void I32(int32_t v) { Put(v); }
    void U32(uint32_t v) { Put(v); }
    void F64(double v) { Put(v); }
    void Bytes(const void* data, size_t count);
    void Zeros(size_t count);
    // Everything written so far handed to the sink; false if the sink failed
    // at any point.
    bool Finish();

private:
    void Drain();

    ByteSink& sink_;
    std::vector<uint8_t> block_;
    uint8_t* cur_ = nullptr;
    bool failed_ = false;
};

} // namespace bvx
