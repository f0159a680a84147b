#include "support/text/checksum.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <zlib.h>

namespace trelm {

std::optional<FileSum> checksumOf(const std::string &name)
{
    std::error_code failure;
    if (!std::filesystem::is_regular_file(name, failure))
        return std::nullopt;
    struct Close {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(name.c_str(), "rb"));
    if (!file)
        return std::nullopt;
    FileSum sum;
    std::array<unsigned char, 16384> piece;
    while (const std::size_t read = std::fread(piece.data(), 1, piece.size(), file.get())) {
        sum.crc32 = static_cast<std::uint32_t>(crc32(sum.crc32, piece.data(), static_cast<uInt>(read)));
        sum.bytes += read;
    }
    return std::ferror(file.get()) == 0 ? std::optional(sum) : std::nullopt;
}

} // namespace trelm
