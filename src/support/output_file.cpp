#include "support/output_file.h"

#include "support/text.h"

#include <filesystem>

namespace trelm {

OutFile::~OutFile()
{
    if (fp != stdout)
        std::fclose(fp);
}

int openOut(OutFile &out, const std::string &name, const char *access)
{
    if (out.fp != stdout)
        std::fclose(out.fp);
    out.fp = stdout;
    out.name = name;
    if (name.empty())
        return 0;
    std::FILE *opened = std::fopen(name.c_str(), access);
    if (opened == nullptr)
        return 1;
    out.fp = opened;
    return 0;
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
    // A short write leaves the stream's error flag set, and closeOut looks at that.
    if (!text.empty())
        std::fwrite(text.data(), 1, text.size(), out.fp);
}

int closeOut(OutFile &out)
{
    const bool owned = out.fp != stdout;
    bool bad = std::ferror(out.fp) != 0;
    bad = std::fflush(out.fp) != 0 || bad; // a full device is often heard of only here, or at the close
    if (owned)
        bad = std::fclose(out.fp) != 0 || bad;
    out.fp = stdout;
    return bad ? complain("Error writing %s.\n", owned ? out.name.c_str() : "(stdout)") : 0;
}

} // namespace trelm
