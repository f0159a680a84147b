// The contents of a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Empty if there is no such file.
inline std::string fileText(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
