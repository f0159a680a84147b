#include "command/cmndargs.h"

#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace trelm {

int badFlag = 0;

namespace {

constexpr int maxArgs = 255; ///< words with an entry in the map; those behind are used, but not checked

constexpr auto emptyMap = [] {
    std::array<char, maxArgs> map = {};
    map.fill('0');
    return map;
}();

/// What is known of the command line between initArgs and checkArgs.
struct ArgState {
    std::array<char, maxArgs> argMap = emptyMap; ///< '0' unused, '1' used
    const char *currentProgName = nullptr;
    int currentArgc = 0;
    int currentChecksum = 0;
    int currentCheckMode = checkNone;
};

ArgState state;

const char *progName()
{
    return state.currentProgName != nullptr ? state.currentProgName : "program";
}

void markUsed(int n)
{
    if (n >= 0 && n < maxArgs)
        state.argMap[static_cast<std::size_t>(n)] = '1';
}

bool isUsed(int n)
{
    return state.argMap[static_cast<std::size_t>(n)] == '1';
}

/// The sum of all characters, each as a signed char, modulo 2^32.
int checksumOf(int argc, char **argv)
{
    unsigned sum = 0;
    for (int i = 0; i < argc; ++i)
        for (const char *c = argv[i]; c != nullptr && *c != '\0'; ++c)
            sum += static_cast<unsigned>(static_cast<signed char>(*c));
    return static_cast<int>(sum);
}

int modeOfEnvironment()
{
    const char *value = std::getenv("NMRCHECK");
    if (value == nullptr)
        return checkNone;
    if (equalNoCase(value, "FLAGS"))
        return checkFlags;
    return equalNoCase(value, "DEBUG") ? checkDebug : checkAll;
}

bool isBlank(const char *arg)
{
    return arg != nullptr && std::ranges::all_of(std::string_view(arg), isSpace);
}

void listArgs(int argc, char **argv)
{
    complain("Debug Info from %s. Original Checksum: %d Final Checksum: %d.\n", progName(),
             state.currentChecksum, checksumOf(argc, argv));
    for (int i = 0; i < std::min(argc, maxArgs); ++i) {
        const char *arg = argv[i];
        complain("%3d. %c %3d Characters: '%s'\n", i, state.argMap[static_cast<std::size_t>(i)],
                 arg != nullptr ? static_cast<int>(std::strlen(arg)) : -1, arg != nullptr ? arg : "(None)");
    }
}

void appendHint(std::string &text, const char *arg, FlagHint hint)
{
    if (hint == nullptr || isFlag(arg) == 0)
        return;
    const std::string meant(hint(arg));
    if (!meant.empty())
        appendf(text, "  %s: did you mean %s?\n", arg, meant.c_str());
}

void reportRun(char **argv, int first, int last, FlagHint hint)
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
    for (int i = first; i <= last; ++i)
        appendHint(text, argv[i], hint);
    complain("%s", text.c_str());
}

int reportUnused(int argc, char **argv, FlagHint hint)
{
    const int end = std::min(argc, maxArgs);
    for (int i = 1; i < end; ++i)
        if (isBlank(argv[i]))
            markUsed(i);
    int count = 0;
    for (int i = 1; i < end; ++i) {
        if (isUsed(i) || (state.currentCheckMode != checkAll && isFlag(argv[i]) == 0))
            continue;
        int last = i;
        if (state.currentCheckMode != checkFlags)
            while (last + 1 < end && !isUsed(last + 1))
                ++last;
        reportRun(argv, i, last, hint);
        ++count;
        i = last;
    }
    return count;
}

/// The place of the word behind an option, or 0 if the option or the word is missing.
int valueLoc(int argc, char **argv, std::string_view flag)
{
    const int loc = flagLoc(argc, argv, flag);
    return loc > 0 && loc + 1 < argc ? loc + 1 : 0;
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

void warnSpelling(std::string_view flag, std::string_view word, Spelling spelling, const std::string &used)
{
    if (spelling == Spelling::number)
        return;
    const char *fault = spelling == Spelling::outOfRange  ? "out of range"
                        : spelling == Spelling::noInteger ? "not an integer"
                                                          : "not a number";
    complain("Warning: the value %s of option %s is %s, %s is used.\n", std::string(word).c_str(),
             std::string(flag).c_str(), fault, used.c_str());
}

std::string shortForm(double value)
{
    std::string text;
    appendf(text, "%g", value);
    return text;
}

} // namespace

void initArgs(int argc, char **argv, int checkMode)
{
    state = ArgState{};
    markUsed(0);
    state.currentProgName = argc > 0 ? argv[0] : nullptr;
    state.currentArgc = argc;
    state.currentCheckMode = checkMode == checkFromEnvironment ? modeOfEnvironment() : checkMode;
    if (state.currentCheckMode == checkNone)
        return;
    if (flagLoc(argc, argv, "-help") != 0)
        complain("Program %s, argument checking enabled.\n", progName());
    if (argc > maxArgs)
        complain("Warning from %s: not all arguments will be checked.\n", progName());
    state.currentChecksum = checksumOf(argc, argv);
}

int isFlag(const char *arg)
{
    if (arg == nullptr || arg[0] != '-')
        return 0;
    const bool value = (arg[1] >= '0' && arg[1] <= '9') || arg[1] == '.';
    return value ? 0 : 1;
}

int flagLoc(int argc, char **argv, std::string_view flag)
{
    for (int i = 0; i < argc; ++i) {
        if (argv[i] != nullptr && flag == argv[i]) {
            markUsed(i);
            badFlag = 0;
            return i;
        }
    }
    badFlag = 1;
    return 0;
}

int nextFlag(int argc, char **argv, int prevFlag)
{
    for (int i = prevFlag + 1; i < argc; ++i)
        if (isFlag(argv[i]) != 0)
            return i;
    return argc;
}

const char *getNthArg(int argc, char **argv, int n)
{
    if (n < 0 || n >= argc)
        return nullptr;
    markUsed(n);
    return argv[n];
}

int ptrArgD(int argc, char **argv, std::string_view flag, const char **value)
{
    const int loc = valueLoc(argc, argv, flag);
    if (loc == 0 || argv[loc] == nullptr)
        return 0;
    *value = getNthArg(argc, argv, loc);
    return 1;
}

int strArgD(int argc, char **argv, std::string_view flag, std::string *value)
{
    const char *word = nullptr;
    if (ptrArgD(argc, argv, flag, &word) == 0)
        return 0;
    *value = word;
    return 1;
}

int intArgD(int argc, char **argv, std::string_view flag, int *value)
{
    const char *word = nullptr;
    if (ptrArgD(argc, argv, flag, &word) == 0)
        return 0;
    *value = intWord(word);
    return 1;
}

int fltArgD(int argc, char **argv, std::string_view flag, float *value)
{
    const char *word = nullptr;
    if (ptrArgD(argc, argv, flag, &word) == 0)
        return 0;
    *value = fltWord(word);
    return 1;
}

Block<float> rListArg(int argc, char **argv, std::string_view flag, int *length)
{
    *length = 0;
    const int loc = flagLoc(argc, argv, flag);
    const int count = loc > 0 ? nextFlag(argc, argv, loc) - loc - 1 : 0;
    if (count < 1)
        return {};
    Block<float> list("listArg", static_cast<std::size_t>(count));
    if (!list) {
        *length = -1;
        return list;
    }
    for (int i = 0; i < count; ++i) {
        const char *word = getNthArg(argc, argv, loc + 1 + i);
        list[static_cast<std::size_t>(i)] = word != nullptr ? fltWord(word) : 0.0f;
    }
    *length = count;
    return list;
}

int checkArgs(int argc, char **argv, FlagHint hint)
{
    int warnings = 0;
    if (state.currentCheckMode != checkNone && argc > 1) {
        if (state.currentCheckMode == checkDebug) {
            listArgs(argc, argv);
            state.currentCheckMode = checkAll;
        }
        if (checksumOf(argc, argv) != state.currentChecksum || argc != state.currentArgc)
            complain("Warning from %s: argument checking may not be valid.\n", progName());
        warnings = reportUnused(argc, argv, hint);
    }
    state = ArgState{};
    badFlag = 0;
    return warnings;
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

void warnIntWord(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOfInt(word), std::to_string(intWord(word)));
}

void warnFltWord(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOf<float>(word), shortForm(static_cast<double>(fltWord(word))));
}

void warnDblWord(std::string_view flag, std::string_view word)
{
    warnSpelling(flag, word, spellingOf<double>(word), shortForm(dblWord(word)));
}

void warnNoValue(std::string_view flag)
{
    complain("Warning: option %s has no value.\n", std::string(flag).c_str());
}

} // namespace trelm
