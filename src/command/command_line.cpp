#include "command/command_line.h"

#include "support/text/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace trelm {
namespace {

/// The sum of all characters, each as a signed char, modulo 2^32.
int checksumOf(int argc, char **argv)
{
    unsigned sum = 0;
    for (int i = 0; i < argc; ++i)
        for (const char *c = argv[i]; c != nullptr && *c != '\0'; ++c)
            sum += static_cast<unsigned>(static_cast<signed char>(*c));
    return static_cast<int>(sum);
}

bool isBlank(const char *arg)
{
    return arg != nullptr && std::ranges::all_of(std::string_view(arg), isSpace);
}

/// The nearest value within -limit..limit; 0 for a NaN.
double bounded(double value, double limit)
{
    return std::isnan(value) ? 0.0 : std::clamp(value, -limit, limit);
}

enum class Spelling { number, outOfRange, noInteger, noNumber };

template <class Value>
Spelling spellingOf(std::string_view word)
{
    while (!word.empty() && isSpace(word.front()))
        word.remove_prefix(1); // blanks in front are no fault: the conversion skips them
    if (word.starts_with('+') && !word.starts_with("+-"))
        word.remove_prefix(1); // from_chars knows no plus sign
    Value value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    // Letters that from_chars accepts, as in "nan" and "inf", make no number that a run can work with.
    const bool whole = end == word.data() + word.size() &&
                       word.find_first_not_of("0123456789+-.eE") == std::string_view::npos;
    if (whole && error == std::errc{})
        return Spelling::number;
    if (whole && error == std::errc::result_out_of_range)
        return Spelling::outOfRange;
    return Spelling::noNumber;
}

Spelling spellingOfInt(std::string_view word)
{
    const Spelling spelling = spellingOf<int>(word);
    if (spelling == Spelling::noNumber && spellingOf<double>(word) == Spelling::number)
        return Spelling::noInteger;
    return spelling;
}

void warnSpelling(std::string_view flag, std::string_view word, Spelling spelling, const std::string &used,
                  Messages &messages)
{
    if (spelling == Spelling::number)
        return;
    const char *fault = spelling == Spelling::outOfRange  ? "out of range"
                        : spelling == Spelling::noInteger ? "not an integer"
                                                          : "not a number";
    messages.warn("Warning: the value %s of option %s is %s, %s is used.\n", std::string(word).c_str(),
                  std::string(flag).c_str(), fault, used.c_str());
}

std::string shortForm(double value)
{
    std::string text;
    appendf(text, "%g", value);
    return text;
}

} // namespace

ArgumentCheck checkOfEnvironment()
{
    const char *value = std::getenv("NMRCHECK");
    if (value == nullptr)
        return ArgumentCheck::none;
    if (equalNoCase(value, "FLAGS"))
        return ArgumentCheck::flags;
    return equalNoCase(value, "DEBUG") ? ArgumentCheck::debug : ArgumentCheck::all;
}

CommandLine::CommandLine(int wordCount, char **words, ArgumentCheck check, Messages &receiver)
    : messages(receiver), argc(wordCount), argv(words), mode(check)
{
    markUsed(0);
    if (mode == ArgumentCheck::none)
        return;
    if (has("-help"))
        messages.err("Program %s, argument checking enabled.\n", progName());
    if (argc > maxArgs)
        messages.err("Warning from %s: not all arguments will be checked.\n", progName());
    checksum = checksumOf(argc, argv);
}

void CommandLine::markUsed(int n)
{
    if (n >= 0 && n < maxArgs)
        used[static_cast<std::size_t>(n)] = true;
}

int CommandLine::flagLoc(std::string_view flag)
{
    for (int i = 0; i < argc; ++i) {
        if (argv[i] != nullptr && flag == argv[i]) {
            markUsed(i);
            return i;
        }
    }
    return 0;
}

int CommandLine::nextFlag(int prevFlag) const
{
    for (int i = prevFlag + 1; i < argc; ++i)
        if (isFlag(argv[i]))
            return i;
    return argc;
}

const char *CommandLine::word(int n)
{
    if (n < 0 || n >= argc)
        return nullptr;
    markUsed(n);
    return argv[n];
}

const char *CommandLine::valueOf(std::string_view flag)
{
    const int loc = flagLoc(flag);
    const char *value = loc > 0 ? word(loc + 1) : nullptr;
    if (isFlag(value))
        takers.push_back(loc);
    return value;
}

std::vector<const char *> CommandLine::listOf(std::string_view flag)
{
    std::vector<const char *> words;
    const int loc = flagLoc(flag);
    if (loc == 0)
        return words;
    const int end = nextFlag(loc);
    for (int i = loc + 1; i < end; ++i)
        words.push_back(word(i));
    return words;
}

Block<float> CommandLine::numbersOf(std::string_view flag, int &length)
{
    const std::vector<const char *> words = listOf(flag);
    length = static_cast<int>(words.size());
    if (words.empty())
        return {};
    Block<float> list("listArg", words.size());
    if (!list)
        length = -1;
    else
        std::ranges::transform(words, list.data(), [](const char *word) { return fltWord(word); });
    return list;
}

bool CommandLine::holds(std::string_view flag) const
{
    for (int i = 1; i < argc; ++i)
        if (at(i) == flag)
            return true;
    return false;
}

std::string_view CommandLine::at(int n) const
{
    return n >= 0 && n < argc && argv[n] != nullptr ? argv[n] : std::string_view();
}

std::vector<int> CommandLine::unusedWords() const
{
    std::vector<int> places;
    for (int i = 1; i < std::min(argc, maxArgs); ++i)
        if (!isUsed(i) && argv[i] != nullptr && !isBlank(argv[i]))
            places.push_back(i);
    return places;
}

std::vector<const char *> CommandLine::unusedFlags() const
{
    std::vector<const char *> flags;
    for (int i = 1; i < std::min(argc, maxArgs); ++i)
        if (!isUsed(i) && isFlag(argv[i]))
            flags.push_back(argv[i]);
    return flags;
}

void CommandLine::listWords() const
{
    messages.err("Debug Info from %s. Original Checksum: %d Final Checksum: %d.\n", progName(), checksum,
                 checksumOf(argc, argv));
    for (int i = 0; i < std::min(argc, maxArgs); ++i) {
        const char *arg = argv[i];
        messages.err("%3d. %c %3d Characters: '%s'\n", i, isUsed(i) ? '1' : '0',
                     arg != nullptr ? static_cast<int>(std::strlen(arg)) : -1,
                     arg != nullptr ? arg : "(None)");
    }
}

void CommandLine::reportRun(int first, int last) const
{
    std::string text;
    appendf(text, "Warning from %s:\n", progName());
    if (last > first)
        appendf(text, "  Arguments %d to %d may be unknown or unused:\n", first, last);
    else
        appendf(text, "  Argument %d may be unknown or unused:\n", first);
    text += "  '";
    for (int i = first; i <= last; ++i)
        appendf(text, " %s", argv[i] != nullptr ? argv[i] : "(None)");
    text += " '\n";
    messages.text(Messages::Stream::err, text);
}

void CommandLine::reportUnused()
{
    if (mode == ArgumentCheck::none || argc <= 1)
        return;
    if (mode == ArgumentCheck::debug)
        listWords();
    if (checksumOf(argc, argv) != checksum)
        messages.err("Warning from %s: argument checking may not be valid.\n", progName());
    const int end = std::min(argc, maxArgs);
    for (int i = 1; i < end; ++i)
        if (isBlank(argv[i]))
            markUsed(i);
    const bool flagsAlone = mode == ArgumentCheck::flags;
    for (int i = 1; i < end; ++i) {
        if (isUsed(i) || (flagsAlone && !isFlag(argv[i])))
            continue;
        const int first = i;
        while (!flagsAlone && i + 1 < end && !isUsed(i + 1))
            ++i;
        reportRun(first, i);
    }
}

void CommandLine::warnInt(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOfInt(word), std::to_string(intWord(word)), messages);
}

void CommandLine::warnFloat(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOf<float>(word), shortForm(static_cast<double>(fltWord(word))),
                 messages);
}

void CommandLine::warnDouble(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOf<double>(word), shortForm(dblWord(word)), messages);
}

void CommandLine::warnNoValue(std::string_view flag)
{
    messages.warn("Warning: option %s has no value.\n", std::string(flag).c_str());
}

bool isFlag(const char *arg)
{
    if (arg == nullptr || arg[0] != '-')
        return false;
    const bool isValue = (arg[1] >= '0' && arg[1] <= '9') || arg[1] == '.';
    return !isValue;
}

bool isNumber(std::string_view word)
{
    return spellingOf<double>(word) != Spelling::noNumber;
}

int intWord(std::string_view word)
{
    return toInt(word);
}

float fltWord(std::string_view word)
{
    return boundedFloat(toDouble(word));
}

float boundedFloat(double value)
{
    return static_cast<float>(bounded(value, std::numeric_limits<float>::max()));
}

double dblWord(std::string_view word)
{
    return bounded(toDouble(word), std::numeric_limits<double>::max());
}

} // namespace trelm
