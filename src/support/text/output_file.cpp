#include "support/text/output_file.h"

#include "support/text/file_identity.h"
#include "support/text/text.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace trelm {
namespace {

namespace fs = std::filesystem;

/// Empties a file of what it held before.
void dropOld(OutFile &out)
{
    if (!out.holdsOld)
        return;
    std::error_code failure;
    fs::resize_file(out.target, 0, failure);
    out.isSpoilt = static_cast<bool>(failure);
    out.holdsOld = false;
}

/// A new file beside the target, hidden and named after it. Null if the folder takes none.
std::FILE *openBeside(const fs::path &target, std::string &temporary)
{
    constexpr int mostTries = 100; // runs that were killed may have left theirs
    const std::string name = (target.parent_path() / ('.' + target.filename().string())).string();
    for (int i = 0; i < mostTries; ++i) {
        temporary = name;
        appendf(temporary, ".%d.%d", static_cast<int>(getpid()), i);
        if (std::FILE *fp = std::fopen(temporary.c_str(), "wx"); fp != nullptr || errno != EEXIST)
            return fp;
    }
    return nullptr;
}

/// Whether a file can be written that a new one beside it cannot stand for.
bool mustWriteItself(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

std::FILE *openTarget(OutFile &out, bool isReplaced)
{
    struct stat found = {};
    const bool exists = stat(out.target.c_str(), &found) == 0;
    if (isReplaced && (!exists || S_ISREG(found.st_mode))) {
        if (exists && access(out.target.c_str(), W_OK) != 0)
            return nullptr;
        std::FILE *fp = openBeside(out.target, out.temporary);
        if (fp != nullptr && exists)
            chmod(out.temporary.c_str(), found.st_mode & 07777);
        if (fp != nullptr || !mustWriteItself(errno))
            return fp;
        out.temporary.clear();
        out.holdsOld = exists;
    }
    // Opening to append asks for the same rights as opening to replace, and loses nothing.
    return std::fopen(out.target.c_str(), "a");
}

/// Closes without a judgement, and takes back what was not finished.
void abandon(OutFile &out)
{
    if (out.fp != stdout)
        std::fclose(out.fp);
    if (!out.temporary.empty())
        unlink(out.temporary.c_str());
    out.fp = stdout;
    out.temporary.clear();
    out.holdsOld = out.isSpoilt = false;
}

/// Flushes an owned stream to the disk, and closes it. A full device is often heard of only here.
bool closeWhole(std::FILE *fp)
{
    bool isWhole = std::ferror(fp) == 0;
    isWhole = std::fflush(fp) == 0 && isWhole;
    if (const int fd = fileno(fp); fd >= 0)
        isWhole = (fsync(fd) == 0 || errno == EINVAL || errno == EROFS) && isWhole; // a pipe has no disk
    return std::fclose(fp) == 0 && isWhole;
}

} // namespace

OutFile::~OutFile()
{
    abandon(*this);
}

Status openOut(OutFile &out, const std::string &name, const char *access)
{
    abandon(out);
    out.name = name == "-" ? "" : name;
    if (out.name.empty())
        return Status::ok;
    out.target = followLinks(name);
    std::FILE *opened = openTarget(out, *access == 'w');
    if (opened == nullptr) {
        out.temporary.clear();
        return Status::failed;
    }
    out.fp = opened;
    return Status::ok;
}

void writeOut(OutFile &out, std::string_view text)
{
    if (text.empty())
        return;
    dropOld(out);
    // A short write leaves the stream's error flag set, and closeOut looks at that.
    if (!out.isSpoilt)
        std::fwrite(text.data(), 1, text.size(), out.fp);
}

Status closeOut(OutFile &out, Messages &messages)
{
    if (out.fp == stdout) {
        const bool isWhole = std::ferror(stdout) == 0;
        return std::fflush(stdout) == 0 && isWhole ? Status::ok
                                                   : messages.fail("Error writing %s.\n", "(stdout)");
    }
    dropOld(out);
    bool isWhole = closeWhole(out.fp) && !out.isSpoilt;
    out.fp = stdout;
    if (isWhole && !out.temporary.empty() && messages.mayWrite()) {
        isWhole = std::rename(out.temporary.c_str(), out.target.c_str()) == 0;
        if (isWhole)
            out.temporary.clear();
    }
    abandon(out);
    return isWhole ? Status::ok : messages.fail("Error writing %s.\n", out.name.c_str());
}

void keepNew(OutFile &out, Messages &messages)
{
    if (out.fp != stdout && !out.temporary.empty() && !fs::exists(out.target))
        static_cast<void>(closeOut(out, messages)); // the run has failed already
}

std::string writeObstacle(const std::string &name)
{
    if (name.empty() || name == "-")
        return {};
    const fs::path target = followLinks(name);
    struct stat found = {};
    bool isFree = false;
    if (stat(target.c_str(), &found) == 0) {
        errno = EISDIR; // where it is a folder, which can be asked for anything
        isFree = !S_ISDIR(found.st_mode) && access(target.c_str(), W_OK) == 0;
    } else if (errno == ENOENT) {
        isFree = access(target.has_parent_path() ? target.parent_path().c_str() : ".", W_OK | X_OK) == 0;
    }
    return isFree ? "" : std::strerror(errno);
}

} // namespace trelm
