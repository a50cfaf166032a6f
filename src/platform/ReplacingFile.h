// A file written beside its target under a temporary name and moved over
// the target only once it is whole, so that a save that fails half way
// (a full disk, a vanished directory) leaves the old file as it was.
#pragma once

#include "ByteStream.h"

#include <memory>
#include <string>

namespace bvx {

class ReplacingFile final : public ByteSink {
public:
    // Null when no file can be made in the target's directory.
    static std::unique_ptr<ReplacingFile> Create(const std::string& target);
    // A temporary file never committed is removed.
    ~ReplacingFile() override;

    bool Write(const void* data, size_t count) override;
    bool Flush() override;
    // Closes the temporary file and puts it in the target's place, with the
    // old file's permissions; false, and the target untouched, if anything
    // failed on the way.
    bool Commit();

private:
    ReplacingFile(std::unique_ptr<FileSink> file, std::string temporary, std::string target);
    void Discard();

    std::unique_ptr<FileSink> file_;
    std::string temporary_;
    std::string target_;
};

} // namespace bvx
