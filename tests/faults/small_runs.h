// Whole runs of every mode, on input so small that a run can be made thousands of times.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

struct SmallRun {
    const char *name;
    std::string options;
    const char *checkMode = nullptr; ///< NMRCHECK
};

/// For the messages of the tests.
inline std::ostream &operator<<(std::ostream &out, const SmallRun &run)
{
    return out << run.name;
}

const std::vector<SmallRun> &smallRuns();

/// Writes the files that the runs read into a folder; a run finds it as "../in".
void writeSmallInputs(const std::filesystem::path &folder);
