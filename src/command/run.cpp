#include "command/run.h"

#include "command/command_line.h"
#include "command/flag_hint.h"
#include "command/params.h"
#include "command/version.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>
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

bool isKnown(std::string_view word)
{
    const std::vector<std::string_view> known = knownFlags();
    return std::ranges::find(known, word) != known.end();
}

/// Of the flags that no step has read those that are no option at all.
void warnOfUnknownFlags(const CommandLine &line, Mode trelmMode)
{
    for (const char *word : line.unusedFlags()) {
        if (isKnown(word))
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

/// Options that stand a second time, and words that stand behind no option. What stands behind a flag that
/// nobody read goes with it.
void warnOfIdleWords(const CommandLine &line)
{
    constexpr std::size_t shown = 3;
    std::size_t count = 0;
    std::string text;
    const std::vector<int> places = line.unusedWords();
    const auto isIdle = [&](int n) { return std::ranges::binary_search(places, n); };
    bool isBehindFlag = false;
    for (const int n : places) {
        const std::string word(line.at(n));
        isBehindFlag = isFlag(word.c_str()) || (isBehindFlag && isIdle(n - 1));
        if (isFlag(word.c_str()) && isKnown(word))
            line.messages.warn("trelm: %s is given again: the first counts\n", word.c_str());
        else if (!isBehindFlag && count++ < shown)
            text.append(text.empty() ? "" : ", ").append(word);
    }
    if (count > shown)
        appendf(text, " and %zu more", count - shown);
    if (count > 0)
        line.messages.warn("trelm: %zu words belong to no option: %s (they are not used)\n", count,
                           text.c_str());
}

/// Options that want a name and took the next option for it.
void warnOfTakenFlags(const CommandLine &line)
{
    for (const int n : line.flagTakers())
        if (const std::string taken(line.at(n + 1)); isKnown(taken))
            line.messages.warn(
                "trelm: %s takes the option %s behind it as its value (give it one of its own)\n",
                std::string(line.at(n)).c_str(), taken.c_str());
}

/// Several modes, of which one is run.
void warnOfModes(const CommandLine &line, Mode trelmMode)
{
    std::string others, chosen;
    for (const std::span<const OptionRow> table : optionTables())
        for (const OptionRow &row : table) {
            const auto *field = std::get_if<Mode Options::*>(&row.target);
            if (field == nullptr || *field != &Options::trelmMode || !line.holds(row.flag))
                continue;
            if (row.preset && static_cast<Mode>(*row.preset) == trelmMode)
                chosen = row.flag;
            else
                others.append(others.empty() ? "" : ", ").append(row.flag);
        }
    if (!others.empty() && !chosen.empty())
        line.messages.warn("trelm: %s and %s are modes: %s is run (give one)\n", others.c_str(),
                           chosen.c_str(), chosen.c_str());
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
    options.words.assign(argv, argv + argc);
    options.version = versionText();
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
    warnOfIdleWords(line);
    warnOfTakenFlags(line);
    warnOfModes(line, options.trelmMode);
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
