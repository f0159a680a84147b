// A run of the program in a child of this process, with a fault: no program is started anew, which makes
// thousands of runs cheap.
#pragma once

#include "faults/faults.h"
#include "faults/small_runs.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

constexpr const char *earlierResult = "what an earlier run wrote\n";

/// What to let fail: request `n` of a kind.
struct ChosenFault {
    Fault kind = Fault::memory;
    long n = 0;                            ///< 0: none
    bool notesPlaces = false;              ///< note who made each request
    std::vector<std::string> earlier = {}; ///< files that hold earlierResult before the run
};

struct ForkedRun {
    int status = -1; ///< exit status; 128 + n after signal n
    std::string out, err;
    FaultRecord faults = {};
};

/// A folder of its own for the runs of a test, with the input beside it.
struct WalkFolder {
    std::filesystem::path root;
    FaultRecord *shared = nullptr; ///< written by the child

    WalkFolder();
    WalkFolder(const WalkFolder &) = delete;
    WalkFolder &operator=(const WalkFolder &) = delete;
    ~WalkFolder();
};

/// Runs in an empty folder. What it wrote stays there until the next run.
ForkedRun runForked(const WalkFolder &folder, const SmallRun &run, const ChosenFault &fault);

/// The files that the last run wrote, by name.
std::map<std::string, std::string> filesOf(const WalkFolder &folder);
