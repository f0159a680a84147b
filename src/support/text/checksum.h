// The size and the check sum of a file, by which a result tells what it was made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace trelm {

struct FileSum {
    std::uint64_t bytes = 0;
    std::uint32_t crc32 = 0; ///< that of gzip and zlib
};

/// Nothing for what is no regular file (a pipe can be read only once) and for a file that cannot be read.
std::optional<FileSum> checksumOf(const std::string &name);

} // namespace trelm
