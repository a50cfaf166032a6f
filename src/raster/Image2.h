// The base of the image writers: a 5120-byte output buffer over a file, and
// error reporting through a process-wide callback the host installs.
#pragma once

#include "Dib.h"
#include "platform/ByteStream.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace bvx {

// Codes the image writers report.
namespace ImageError {
enum : int32_t {
    CannotCreate = 1,
    CannotClose = 2,
    CannotWrite = 4,
    CannotFlush = 5,
    CannotAllocate = 6,
    NotImplemented = 7,
    CannotWriteSignature = 17,
    CannotWritePalette = 18,
};
} // namespace ImageError

using ErrorReporter = std::function<void(const std::string& message)>;

// Installs the callback that shows "Error %d" messages; an empty one
// silences them. Returns the one installed before.
ErrorReporter SetErrorReporter(ErrorReporter reporter);

class Image2 {
public:
    static constexpr size_t kOutBufferSize = 5120;
    static constexpr size_t kPaletteBytes = 768;
    // This output name writes nothing and only counts.
    static constexpr const char* kCountOnlyName = "(null)";

    Image2() = default;
    virtual ~Image2() = default;
    Image2(const Image2&) = delete;
    Image2& operator=(const Image2&) = delete;

    // Not provided here: report NotImplemented and return false.
    virtual bool Compress();
    virtual bool Expand();

    // Creates the file; a failure reports CannotCreate.
    bool OpenOutput(const std::string& name);
    // Takes an output the caller made, such as memory.
    bool OpenOutput(std::unique_ptr<ByteSink> sink);
    bool WriteByte(uint8_t value);
    bool WriteBytes(std::span<const uint8_t> bytes);
    bool FlushOutput();
    bool CloseOutput();
    // Records the code and passes "Error <code>" to the reporter; the
    // operation goes on.
    void ReportError(int32_t code);

    int32_t Error() const { return error; }
    bool CountOnly() const { return countOnly; }
    uint32_t ByteCount() const { return byteCount; }

protected:
    DibPtr pixelBlock;
    std::array<uint8_t, kPaletteBytes> paletteBlock{};
    std::array<uint8_t, kOutBufferSize> outBuffer{};
    uint32_t outUsed = 0;
    std::unique_ptr<ByteSink> file;
    std::string fileName;
    int32_t error = 0;
    uint16_t width = 0;
    uint16_t height = 0;
    uint16_t colorCount = 0;
    uint16_t bitCount = 0;
    bool countOnly = false;
    uint32_t byteCount = 0;

private:
    // Writes the buffer out; a failure reports `failureCode`.
    bool WriteBuffer(int32_t failureCode);
};

} // namespace bvx
