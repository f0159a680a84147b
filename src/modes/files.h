// The files of a run, known before any work: none of them may take another's place.
#pragma once

#include "ground/messages.h"
#include "modes/run.h"

#include <string>
#include <vector>

namespace trelm {

/// A file that a run reads or writes, and the option that names it.
struct RunFile {
    std::string option;
    std::string name;
    bool isOutput = false;
};

/// The files of a run in its mode, those included that it names itself.
std::vector<RunFile> filesOfRun(const Run &run);

/// Fails, after one line that names both options, if an output is another file of the run: one regular file,
/// by whatever name or link, or one new name in one folder (a device can be read and written under two
/// names); or if two inputs are standard input. An output that cannot be opened is warned of, which fails in
/// a strict run alone.
Status checkFiles(const std::vector<RunFile> &files, Messages &messages);

} // namespace trelm
