#include "ReplacingFile.h"

#include <cstdio>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace bvx {

namespace {

// Creates a file that did not exist, so that two saves never share one.
std::FILE* CreateNew(const std::string& path, const std::string& target)
{
#ifdef _WIN32
    (void)target;
    const int fd = _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (fd < 0) return nullptr;
    std::FILE* file = _fdopen(fd, "wb");
    if (!file) _close(fd);
    return file;
#else
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return nullptr;
    // The file that is replaced keeps its permissions.
    struct stat old{};
    if (::stat(target.c_str(), &old) == 0) (void)::fchmod(fd, old.st_mode & 07777);
    std::FILE* file = ::fdopen(fd, "wb");
    if (!file) ::close(fd);
    return file;
#endif
}

bool MoveOver(const std::string& from, const std::string& to)
{
#ifdef _WIN32
    // ReplaceFile keeps the old file's attributes and security; a target
    // that does not exist yet is simply renamed to.
    if (GetFileAttributesA(to.c_str()) != INVALID_FILE_ATTRIBUTES &&
        ReplaceFileA(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr))
        return true;
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
#else
    return std::rename(from.c_str(), to.c_str()) == 0;
#endif
}

int ProcessNumber()
{
#ifdef _WIN32
    return int(GetCurrentProcessId());
#else
    return int(::getpid());
#endif
}

} // namespace

std::unique_ptr<ReplacingFile> ReplacingFile::Create(const std::string& target)
{
    if (target.empty()) return nullptr;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string temporary =
            target + ".~" + std::to_string(ProcessNumber()) + "-" + std::to_string(attempt) + ".tmp";
        if (std::FILE* file = CreateNew(temporary, target))
            return std::unique_ptr<ReplacingFile>(new ReplacingFile(FileSink::Adopt(file), temporary, target));
    }
    return nullptr;
}

ReplacingFile::ReplacingFile(std::unique_ptr<FileSink> file, std::string temporary, std::string target)
    : file_(std::move(file)), temporary_(std::move(temporary)), target_(std::move(target))
{
}

ReplacingFile::~ReplacingFile() { Discard(); }

void ReplacingFile::Discard()
{
    if (!file_) return;
    file_->Close();
    file_.reset();
    std::remove(temporary_.c_str());
}

bool ReplacingFile::Write(const void* data, size_t count) { return file_ && file_->Write(data, count); }

bool ReplacingFile::Flush() { return file_ && file_->Flush(); }

bool ReplacingFile::Commit()
{
    if (!file_) return false;
    const bool closed = file_->Close();
    file_.reset();
    if (closed && MoveOver(temporary_, target_)) return true;
    std::remove(temporary_.c_str());
    return false;
}

} // namespace bvx
