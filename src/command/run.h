// The stages of a run.
#pragma once

#include "command/params.h"
#include "modes/run.h"

namespace trelm {

/// The options of a run as its modes see them: views of `options`.
AskedOptions recordsOf(const Options &options);

/// A run, and the options that it goes by. Nothing of them changes once they are read.
struct CommandRun {
    Options options;
    Run run{recordsOf(options), {}};

    CommandRun() = default;
    CommandRun(const CommandRun &) = delete;
    CommandRun &operator=(const CommandRun &) = delete;
};

/// What the run speaks through: with -quiet on its line without remarks and progress.
Messages &messagesOf(int argc, char **argv);

/// Prints the banner and asks for the records. Fails after a message.
Status startRun(Run &run, Messages &messages);

/// Reads the command line into the options and checks its words. Fails after a message.
Status readOptions(int argc, char **argv, CommandRun &commandRun, Messages &messages);

/// The one tear-down: releases the records and prints the memory balance; for a run that a model has ended,
/// it does neither. Returns the status, or 1 if standard output or the standard error stream could not be
/// written to its end, or if any request for memory failed.
int endRun(CommandRun &commandRun, Status status, Messages &messages);

} // namespace trelm
