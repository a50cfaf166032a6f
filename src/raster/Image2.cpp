#include "Image2.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace bvx {

namespace {

ErrorReporter& InstalledReporter()
{
    static ErrorReporter reporter;
    return reporter;
}

} // namespace

ErrorReporter SetErrorReporter(ErrorReporter reporter)
{
    return std::exchange(InstalledReporter(), std::move(reporter));
}

bool Image2::Compress()
{
    ReportError(ImageError::NotImplemented);
    return false;
}

bool Image2::Expand()
{
    ReportError(ImageError::NotImplemented);
    return false;
}

bool Image2::OpenOutput(const std::string& name)
{
    fileName = name;
    if (name == kCountOnlyName) {
        countOnly = true;
        return true;
    }
    std::unique_ptr<FileSink> sink = FileSink::Create(name);
    if (!sink) {
        ReportError(ImageError::CannotCreate);
        return false;
    }
    file = std::move(sink);
    return true;
}

bool Image2::OpenOutput(std::unique_ptr<ByteSink> sink)
{
    if (!sink) {
        ReportError(ImageError::CannotCreate);
        return false;
    }
    file = std::move(sink);
    return true;
}

bool Image2::WriteBuffer(int32_t failureCode)
{
    if (outUsed == 0) return true;
    if (!file || !file->Write(outBuffer.data(), outUsed)) {
        ReportError(failureCode);
        return false;
    }
    outUsed = 0;
    return true;
}

bool Image2::WriteByte(uint8_t value) { return WriteBytes({&value, 1}); }

bool Image2::WriteBytes(std::span<const uint8_t> bytes)
{
    if (countOnly) {
        byteCount += uint32_t(bytes.size());
        return true;
    }
    while (!bytes.empty()) {
        // A full buffer goes out only when there is more to store.
        if (outUsed == kOutBufferSize && !WriteBuffer(ImageError::CannotWrite)) return false;
        const size_t n = std::min(bytes.size(), kOutBufferSize - outUsed);
        std::memcpy(outBuffer.data() + outUsed, bytes.data(), n);
        outUsed += uint32_t(n);
        bytes = bytes.subspan(n);
    }
    return true;
}

bool Image2::FlushOutput()
{
    if (countOnly) return true;
    if (!WriteBuffer(ImageError::CannotFlush)) return false;
    if (!file || !file->Flush()) {
        ReportError(ImageError::CannotFlush);
        return false;
    }
    return true;
}

bool Image2::CloseOutput()
{
    if (countOnly) return true;
    bool closed = file != nullptr && file->Flush();
    if (auto* disk = dynamic_cast<FileSink*>(file.get())) closed = disk->Close() && closed;
    file.reset();
    if (!closed) ReportError(ImageError::CannotClose);
    return closed;
}

void Image2::ReportError(int32_t code)
{
    error = code;
    if (const ErrorReporter& reporter = InstalledReporter()) reporter("Error " + std::to_string(code));
}

} // namespace bvx
