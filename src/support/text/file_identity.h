// Whether two names lead to one file.
#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

namespace trelm {

/// The file that a name leads to, which need not be there yet.
std::string followLinks(const std::string &name);

/// What makes a regular file one: its place on the disk or, as long as it is not there, its name in a folder.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;
    std::string newName; ///< in the folder of this device and number; empty for a file that is there
    bool operator==(const FileIdentity &) const = default;
};

/// Nothing for standard input and output (an empty name and "-"), for what is no regular file, since a device
/// can be read and written under two names, and for a name in a folder that is not there.
std::optional<FileIdentity> fileIdentity(const std::string &name);

/// Whether what is written under this name is passed on and not kept: "-", a device, a pipe.
[[nodiscard]] bool isPassedOn(const std::string &name);

} // namespace trelm
