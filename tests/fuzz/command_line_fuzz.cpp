// Command lines: each line of the input is a word. The first byte chooses how unused words are reported.
#include "fuzz_input.h"

#include "command/run.h"
#include "simulation/alignment/alignment.h"
#include "simulation/charges/potential.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

using namespace trelm;
using fuzz::require;

/// Above the number of words that the checking has room for. More of them show nothing new, and take long.
constexpr std::size_t maxWords = 300;

std::vector<std::string> wordsOf(std::string_view text)
{
    std::vector<std::string> words = {"trelm"};
    while (!text.empty() && words.size() < maxWords) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        words.emplace_back(text.substr(0, std::min(end, text.find('\0'))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

/// The variable that turns the checking on.
void setChecking(unsigned choice)
{
    constexpr const char *values[] = {"FLAGS", "DEBUG", "ALL"};
    if (choice % 4 == 3)
        ::unsetenv("NMRCHECK");
    else
        ::setenv("NMRCHECK", values[choice % 4], 1);
}

void checkRecords(const Options &options)
{
    require(options.trelmMode >= 1 && options.trelmMode <= 17, "the mode is one of the modes");
    require(!options.media.empty() && options.media.size() <= maxMedia, "media are within their limit");
    require(options.classes.size() <= maxClasses, "classes are within their limit");
    require(options.fixedResidues.size() <= maxFixedResidues, "fixed residues are within their limit");
    require(options.wCount == static_cast<int>(options.wList.length()), "weights are counted");
    for (const float value :
         {options.concentration, options.radiusModel, options.pH, options.daLo, options.da})
        require(std::isfinite(value), "a number is finite whatever was typed");
    require(std::isfinite(options.coneWidth) && std::isfinite(options.cutoffPot),
            "a number is finite whatever was typed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    setChecking(data[0]);
    std::vector<std::string> words = wordsOf(fuzz::asText(data + 1, size - 1));
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    CommandRun commandRun;
    require(startRun(commandRun.run, standardMessages()) == Status::ok, "a run starts");
    const Status status =
        readOptions(static_cast<int>(words.size()), argv.data(), commandRun, standardMessages());
    setAlloc(0); // a debug level would trace all later inputs
    if (status == Status::ok) {
        const Options &options = commandRun.options;
        checkRecords(options);
        static_cast<void>(checkSample(options, standardMessages()));
        static_cast<void>(checkSimulation(options, standardMessages()));
        std::size_t points = 0;
        static_cast<void>(gridPoints(options, points, standardMessages()));
        static_cast<void>(refine_bicelle(options));
    }
    require(endRun(commandRun, status, standardMessages()) == static_cast<int>(status),
            "a run ends with the status it is given");
    return 0;
}
