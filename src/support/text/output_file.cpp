#include "support/text/output_file.h"

#include <filesystem>
#include <system_error>

namespace trelm {
namespace {

/// Empties a file of what it held before.
void dropOld(OutFile &out)
{
    if (!out.holdsOld)
        return;
    std::error_code failure;
    std::filesystem::resize_file(out.name, 0, failure);
    out.isSpoilt = static_cast<bool>(failure);
    out.holdsOld = false;
}

} // namespace

OutFile::~OutFile()
{
    if (fp != stdout)
        std::fclose(fp);
}

Status openOut(OutFile &out, const std::string &name, const char *access)
{
    if (out.fp != stdout)
        std::fclose(out.fp);
    out.fp = stdout;
    out.name = name;
    out.holdsOld = out.isSpoilt = false;
    if (name.empty())
        return Status::ok;
    // Opening to append asks for the same rights as opening to replace, and loses nothing.
    std::FILE *opened = std::fopen(name.c_str(), "a");
    if (opened == nullptr)
        return Status::failed;
    out.fp = opened;
    std::error_code none;
    out.holdsOld = *access == 'w' && std::filesystem::is_regular_file(name, none);
    return Status::ok;
}

bool isSameFile(const std::string &a, const std::string &b)
{
    namespace fs = std::filesystem;
    if (a.empty() || b.empty())
        return false;
    std::error_code none;
    const fs::path pathA = fs::weakly_canonical(fs::absolute(a, none), none),
                   pathB = fs::weakly_canonical(fs::absolute(b, none), none);
    const bool isOne = pathA == pathB || fs::equivalent(pathA, pathB, none); // the second: a hard link
    return isOne && (!fs::exists(pathA, none) || fs::is_regular_file(pathA, none));
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
    const bool owned = out.fp != stdout;
    dropOld(out);
    bool bad = out.isSpoilt || std::ferror(out.fp) != 0;
    bad = std::fflush(out.fp) != 0 || bad; // a full device is often heard of only here, or at the close
    if (owned)
        bad = std::fclose(out.fp) != 0 || bad;
    out.fp = stdout;
    out.isSpoilt = false;
    return bad ? messages.fail("Error writing %s.\n", owned ? out.name.c_str() : "(stdout)") : Status::ok;
}

} // namespace trelm
