// Looking up arguments by name, anywhere on the line, and telling which words nobody used.
//
// An option is found by its first occurrence only, names are compared exactly, and a value is the word behind
// the option, whatever it looks like. A map of the words that were used is kept from initArgs to checkArgs.
#pragma once

#include "ground/alloc.h"

#include <string>
#include <string_view>

namespace trelm {

/// How unused words are reported.
constexpr int checkNone = 0;
constexpr int checkFlags = 1;
constexpr int checkAll = 2;
constexpr int checkDebug = 3;
constexpr int checkFromEnvironment = 4; ///< NMRCHECK: unset none, "FLAGS", "DEBUG", anything else all

/// 1 after a look-up that failed, else 0.
extern int badFlag;

/// Starts the map of used words. With checking on it says so on the standard error stream.
void initArgs(int argc, char **argv, int checkMode);

/// 1 if the word is a flag: a minus sign, and neither a digit nor a point behind it. "-5" and "-.5" are
/// values.
int isFlag(const char *arg);

/// The place of the first word that equals `flag`, marked as used; 0 if there is none.
int flagLoc(int argc, char **argv, std::string_view flag);

/// The place of the first flag behind place `prevFlag`, or argc.
int nextFlag(int argc, char **argv, int prevFlag);

/// Word n, marked as used; null if n is out of range.
const char *getNthArg(int argc, char **argv, int n);

// The value of an option. If the option and a word behind it are there: both marked as used, the word stored,
// result 1. Otherwise `value` stays as it is, result 0. The pointer of ptrArgD lives as long as argv.
int intArgD(int argc, char **argv, std::string_view flag, int *value);
int fltArgD(int argc, char **argv, std::string_view flag, float *value);
int strArgD(int argc, char **argv, std::string_view flag, std::string *value);
int ptrArgD(int argc, char **argv, std::string_view flag, const char **value);

/// All words between the option and the next flag, as numbers, tag "listArg". Empty with length 0 if there
/// is no such option or no word, with length -1 if there is no memory.
Block<float> rListArg(int argc, char **argv, std::string_view flag, int *length);

/// The option that an unknown flag probably meant; empty if there is no hint to give.
using FlagHint = std::string_view (*)(std::string_view word);

/// Reports the words that nobody used, if checking is on, each warning with the hints on its flags, and
/// forgets everything. Returns the number of warnings.
int checkArgs(int argc, char **argv, FlagHint hint = nullptr);

// The number at the start of a word, 0 where there is none. What lies outside the range of the type becomes
// its nearest limit, and a word that spells a NaN is 0.
int intWord(std::string_view word);
float fltWord(std::string_view word);
double dblWord(std::string_view word);

/// A number in single precision; beyond its range the nearest limit, 0 for a NaN.
float boundedFloat(double value);

// One line on the standard error stream if the whole word is no number of that type, with the value that is
// used in its place.
void warnIntWord(std::string_view flag, std::string_view word);
void warnFltWord(std::string_view flag, std::string_view word);
void warnDblWord(std::string_view flag, std::string_view word);

/// One line that an option has no value.
void warnNoValue(std::string_view flag);

} // namespace trelm
