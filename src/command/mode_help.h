// The help text of one mode, and the short words that everybody tries first.
#pragma once

#include "ground/messages.h"

#include <optional>

namespace trelm {

/// Answers a line that asks for no run: -version, -v and --version with the version; -h and --help with all
/// options, and `-help MODE` with those of a mode, on standard output. Returns how that ended, or nothing
/// where a run is asked for; that includes -help alone, whose text and status are the run's.
std::optional<Status> answerWithoutRun(int argc, char **argv, Messages &messages);

} // namespace trelm
