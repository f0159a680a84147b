// A file of a test that goes away with its record.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace trelm {

/// Its name is its own, in this program and among those that run at the same time.
struct TempFile {
    std::string name;

    TempFile()
        : name(testing::TempDir() + "trelm_" + std::to_string(getpid()) + "_" + std::to_string(++made()))
    {
    }
    explicit TempFile(std::string_view text) : TempFile() { std::ofstream(name, std::ios::binary) << text; }
    TempFile(const TempFile &) = delete;
    TempFile &operator=(const TempFile &) = delete;
    ~TempFile() { std::filesystem::remove(name); }

  private:
    static int &made()
    {
        static int count = 0;
        return count;
    }
};

} // namespace trelm
