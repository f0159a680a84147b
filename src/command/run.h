// The stages of a run.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Prints the banner and asks for the records. Returns 0, or 1 after a message.
int startRun(Run &run);

/// Reads the command line into the records and checks its words. Returns 0, or 1 after a message.
int readOptions(int argc, char **argv, Run &run);

/// The one tear-down: releases the records and prints the memory balance. Returns the status, or 1 if
/// standard output or the standard error stream could not be written to its end, or if any request for memory
/// failed.
int endRun(Run &run, int status);

} // namespace trelm
