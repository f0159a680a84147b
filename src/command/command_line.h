// Looking up arguments by name, anywhere on the line, and telling which words nobody used.
//
// An option is found by its first occurrence only, names are compared exactly, and a value is the word behind
// the option, whatever it looks like.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// How unused words are reported.
enum class ArgumentCheck { none, flags, all, debug };

/// What NMRCHECK asks for: unset none, "FLAGS", "DEBUG", anything else all.
ArgumentCheck checkOfEnvironment();

/// The words of a run, with a map of those that were used.
class CommandLine {
  public:
    /// With checking on it says so.
    CommandLine(int argc, char **argv, ArgumentCheck check, Messages &receiver);

    Messages &messages;

    /// The number of words, the name of the program included.
    [[nodiscard]] int count() const { return argc; }

    /// The place of the first word that equals `flag`, marked as used; 0 if there is none.
    int flagLoc(std::string_view flag);
    bool has(std::string_view flag) { return flagLoc(flag) != 0; }

    /// The place of the first flag behind place `prevFlag`, or the number of words.
    [[nodiscard]] int nextFlag(int prevFlag) const;

    /// Word n, marked as used; null if n is out of range.
    const char *word(int n);

    /// The word behind an option, both marked as used; null if one of them is missing. It lives as long as
    /// argv.
    const char *valueOf(std::string_view flag);

    /// All words between the option and the next flag, marked as used.
    std::vector<const char *> listOf(std::string_view flag);

    /// The same as numbers, tag "listArg". Empty with length 0 if there is no such option or no word, with
    /// length -1 if there is no memory.
    Block<float> numbersOf(std::string_view flag, int &length);

    // One line if the whole word is no number of that type, with the value that is used in its place.
    void warnInt(std::string_view flag, std::string_view word);
    void warnFloat(std::string_view flag, std::string_view word);
    void warnDouble(std::string_view flag, std::string_view word);

    /// One line that an option has no value.
    void warnNoValue(std::string_view flag);

    /// Whether a word equals `flag`; it is not marked.
    [[nodiscard]] bool holds(std::string_view flag) const;

    /// Word n as it stands; empty if n is out of range.
    [[nodiscard]] std::string_view at(int n) const;

    /// The places of words behind the program's name that nobody used, blank ones left out.
    [[nodiscard]] std::vector<int> unusedWords() const;

    /// The places of options that took a flag as their value.
    [[nodiscard]] const std::vector<int> &flagTakers() const { return takers; }

    /// The flags that nobody used; whoever read a word as a value has used it.
    [[nodiscard]] std::vector<const char *> unusedFlags() const;

    /// Reports the words that nobody used, if checking is on.
    void reportUnused();

  private:
    /// Words with an entry in the map; those behind are used, but not checked.
    static constexpr int maxArgs = 255;

    [[nodiscard]] const char *progName() const
    {
        return argc > 0 && argv[0] != nullptr ? argv[0] : "program";
    }
    [[nodiscard]] bool isUsed(int n) const { return used[static_cast<std::size_t>(n)]; }
    void markUsed(int n);
    void listWords() const;
    void reportRun(int first, int last) const;

    int argc;
    char **argv;
    ArgumentCheck mode;
    int checksum = 0;
    std::array<bool, maxArgs> used = {};
    std::vector<int> takers = {};
};

/// True for a flag: a minus sign, and neither a digit nor a point behind it. "-5" and "-.5" are values.
bool isFlag(const char *arg);

/// True if the whole word is a number.
bool isNumber(std::string_view word);

// The number at the start of a word, 0 where there is none. What lies outside the range of the type becomes
// its nearest limit, and a word that spells a NaN is 0.
int intWord(std::string_view word);
float fltWord(std::string_view word);
double dblWord(std::string_view word);

/// A number in single precision; beyond its range the nearest limit, 0 for a NaN.
float boundedFloat(double value);

} // namespace trelm
