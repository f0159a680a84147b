#include "command/run.h"

#include "command/command_line.h"
#include "command/flag_hint.h"
#include "command/params.h"
#include "support/text/output_file.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string_view>
#include <variant>

namespace trelm {
namespace {

constexpr std::string_view legalNotice = "\n\n"
                                         "*--------------------------------------------------*\n"
                                         "|                      TRELM                       |\n"
                                         "*--------------------------------------------------*\n"
                                         "\n\n";

/// The mode flag that a word was meant for, if there was one, was the choice of the mode.
bool isModeFlag(std::string_view flag)
{
    const auto rows = optionTables();
    return std::ranges::any_of(rows, [&](std::span<const OptionRow> table) {
        return std::ranges::any_of(table, [&](const OptionRow &row) {
            const auto *field = std::get_if<Mode Options::*>(&row.target);
            return row.flag == flag && field != nullptr && *field == &Options::trelmMode;
        });
    });
}

/// Of the flags that no step has read those that are no option at all.
void warnOfUnknownFlags(const CommandLine &line, Mode trelmMode)
{
    const std::vector<std::string_view> known = knownFlags();
    for (const char *word : line.unusedFlags()) {
        if (std::ranges::find(known, word) != known.end())
            continue;
        const std::string nearest(nearestFlag(word));
        const bool isDefault = isModeFlag(nearest) && trelmMode == ModeOptions{}.trelmMode;
        const char *done = isDefault ? "steric prediction was run" : "it is not used";
        if (nearest.empty())
            line.messages.warn("%s: there is no such option (%s)\n", word, done);
        else
            line.messages.warn("%s: did you mean %s? (%s)\n", word, nearest.c_str(), done);
    }
}

} // namespace

AskedOptions recordsOf(const Options &options)
{
    return {options, options, options, options, options, options, options, options, options,
            options, options, options, options, options, options, options, options};
}

Messages &messagesOf(int argc, char **argv)
{
    const std::span<char *> words(argv, static_cast<std::size_t>(argc));
    const bool isQuiet = std::ranges::any_of(
        words, [](const char *word) { return word != nullptr && std::string_view("-quiet") == word; });
    return isQuiet ? quietMessages() : standardMessages();
}

Status startRun(Run &run, Messages &messages)
{
    messages.text(Messages::Stream::note, legalNotice);
    run.dTab = Block<DTable>("matrix", 1);
    run.pdbInfo = Block<PDBInfo>("matrix", 1);
    if (!run.dTab || !run.pdbInfo)
        return messages.fail("Error allocating DC/PDB/TRELM structures.\n");
    return Status::ok;
}

Status readOptions(int argc, char **argv, CommandRun &commandRun, Messages &messages)
{
    CommandLine line(argc, argv, checkOfEnvironment(), messages);
    Options &options = commandRun.options;
    Status status = getparams(line, options);
    commandRun.run.dTab[0].dTensor = options;
    if (options.wCount < 0) // no memory for the weights
        status = Status::failed;
    if (status != Status::ok)
        return messages.fail("TRELM Error extracting command-line arguments.\n");
    line.reportUnused();
    if (options.isStrict != 0)
        messages.setStrict();
    if (options.hasNoStructures != 0)
        options.pRotName = "/dev/null";
    warnOfUnknownFlags(line, options.trelmMode);
    if (options.RunOptions::dbgFlag > 1)
        setAlloc(1);
    return Status::ok;
}

int endRun(CommandRun &commandRun, Status status, Messages &messages)
{
    Options &options = commandRun.options;
    Run &run = commandRun.run;
    if (status == Status::ended) {
        setAlloc(0);
        status = Status::ok;
    } else {
        if (run.dTab)
            run.dTab[0] = DTable{};
        options.wList.release();
        // The balance is taken here: it shows what the records and buffers of the run still hold.
        if (options.isQuiet == 0)
            showAlloc();
        static_cast<RunInputs &>(run) = RunInputs{};
    }
    // A run that failed has told why already, perhaps just this.
    OutFile out;
    if (status == Status::ok)
        status = closeOut(out, messages);
    if (status == Status::ok && !messages.mayWrite())
        status = failedByWarnings(messages);
    // Warnings and reports go to the standard error stream; of their loss the status alone can tell. And who
    // went on without a block of memory has told of it, but has no whole result.
    const bool isIncomplete = std::ferror(stderr) != 0 || allocHasFailed();
    return static_cast<int>(status == Status::ok && isIncomplete ? Status::failed : status);
}

} // namespace trelm
