#include "NativeStream.h"

#include <algorithm>

namespace bvx {

namespace {
constexpr size_t kBlockSize = 1 << 16;
}

NativeReader::NativeReader(ByteSource& source) : source_(source), block_(kBlockSize)
{
    const uint64_t size = source.Size(), at = source.Position();
    unread_ = size > at ? size - at : 0;
    cur_ = end_ = block_.data();
}

bool NativeReader::Refill()
{
    if (failed_ || unread_ == 0) return false;
    const size_t want = size_t(std::min<uint64_t>(unread_, block_.size()));
    const size_t got = source_.Read(block_.data(), want);
    // A source shorter than it claimed ends the file here.
    unread_ = got == want ? unread_ - got : 0;
    cur_ = block_.data();
    end_ = cur_ + got;
    return got != 0;
}

bool NativeReader::Copy(void* out, uint64_t count)
{
    if (failed_ || count > Remaining()) {
        failed_ = true;
        return false;
    }
    auto* to = static_cast<uint8_t*>(out);
    while (count > 0) {
        if (cur_ == end_ && !Refill()) {
            failed_ = true;
            return false;
        }
        const size_t n = size_t(std::min<uint64_t>(count, uint64_t(end_ - cur_)));
        std::memcpy(to, cur_, n);
        to += n;
        cur_ += n;
        count -= n;
    }
    return true;
}

bool NativeReader::Skip(uint64_t count)
{
    if (failed_ || count > Remaining()) {
        failed_ = true;
        return false;
    }
    while (count > 0) {
        if (cur_ == end_ && !Refill()) {
            failed_ = true;
            return false;
        }
        const size_t n = size_t(std::min<uint64_t>(count, uint64_t(end_ - cur_)));
        cur_ += n;
        count -= n;
    }
    return true;
}

bool NativeReader::AnsiText(uint64_t count, std::string& text)
{
    text.clear();
    if (count > Remaining()) {
        failed_ = true;
        return false;
    }
    // Most texts (empty notes, names) lie in the block whole.
    if (count <= uint64_t(end_ - cur_)) {
        const void* nul = std::memchr(cur_, 0, size_t(count));
        text.assign(reinterpret_cast<const char*>(cur_),
                    nul ? size_t(static_cast<const uint8_t*>(nul) - cur_) : size_t(count));
        cur_ += count;
        return true;
    }
    text.resize(size_t(count));
    if (!Copy(text.data(), count)) return false;
    text.resize(std::min(text.find('\0'), text.size()));
    return true;
}

NativeWriter::NativeWriter(ByteSink& sink) : sink_(sink), block_(kBlockSize) { cur_ = block_.data(); }

void NativeWriter::Drain()
{
    const size_t used = size_t(cur_ - block_.data());
    if (used != 0 && !failed_ && !sink_.Write(block_.data(), used)) failed_ = true;
    cur_ = block_.data();
}

void NativeWriter::Bytes(const void* data, size_t count)
{
    const auto* from = static_cast<const uint8_t*>(data);
    while (count > 0) {
        size_t room = size_t(block_.data() + block_.size() - cur_);
        if (room == 0) {
            Drain();
            room = block_.size();
        }
        const size_t n = std::min(count, room);
        std::memcpy(cur_, from, n);
        cur_ += n;
        from += n;
        count -= n;
    }
}

void NativeWriter::Zeros(size_t count)
{
    static constexpr uint8_t kZeros[64] = {};
    while (count > 0) {
        const size_t n = std::min(count, sizeof kZeros);
        Bytes(kZeros, n);
        count -= n;
    }
}

bool NativeWriter::Finish()
{
    Drain();
    if (!failed_ && !sink_.Flush()) failed_ = true;
    return !failed_;
}

} // namespace bvx
