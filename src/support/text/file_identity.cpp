#include "support/text/file_identity.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace trelm {

std::string followLinks(const std::string &name)
{
    namespace fs = std::filesystem;
    constexpr int mostLinks = 40; // as the system has it; more are a ring
    fs::path path = name;
    std::error_code none;
    for (int i = 0; i < mostLinks && fs::is_symlink(path, none); ++i) {
        const fs::path next = fs::read_symlink(path, none);
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return path.string();
}

std::optional<FileIdentity> fileIdentity(const std::string &name)
{
    struct stat found = {};
    if (name.empty() || name == "-")
        return std::nullopt;
    if (stat(name.c_str(), &found) == 0)
        return S_ISREG(found.st_mode) ? std::optional<FileIdentity>({found.st_dev, found.st_ino, {}})
                                      : std::nullopt;
    const std::string target = followLinks(name);
    const std::size_t slash = target.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string folder = start == 0 ? "." : target.substr(0, start);
    if (stat(folder.c_str(), &found) != 0)
        return std::nullopt;
    return FileIdentity{found.st_dev, found.st_ino, target.substr(start)};
}

bool isPassedOn(const std::string &name)
{
    struct stat found = {};
    return name == "-" ||
           (stat(name.c_str(), &found) == 0 && !S_ISREG(found.st_mode) && !S_ISDIR(found.st_mode));
}

} // namespace trelm
