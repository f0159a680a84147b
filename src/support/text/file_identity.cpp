#include "support/text/file_identity.h"

#include <sys/stat.h>

namespace trelm {

std::optional<FileIdentity> fileIdentity(const std::string &name)
{
    struct stat found = {};
    if (name.empty() || name == "-")
        return std::nullopt;
    if (stat(name.c_str(), &found) == 0)
        return S_ISREG(found.st_mode) ? std::optional<FileIdentity>({found.st_dev, found.st_ino, {}})
                                      : std::nullopt;
    const std::size_t slash = name.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    const std::string folder = start == 0 ? "." : name.substr(0, start);
    if (stat(folder.c_str(), &found) != 0)
        return std::nullopt;
    return FileIdentity{found.st_dev, found.st_ino, name.substr(start)};
}

} // namespace trelm
