// Whole runs of the program, each in a folder of its own.
#pragma once

#include "common/file_text.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What a run left behind. The folder goes away with this record.
struct Ran {
    int status = -1; ///< exit status; 128 + n after signal n
    std::string out;
    std::string err;
    std::filesystem::path folder;

    Ran() = default;
    Ran(const Ran &) = delete;
    Ran &operator=(const Ran &) = delete;
    Ran(Ran &&other) noexcept = default;
    ~Ran();

    [[nodiscard]] std::string file(std::string_view name) const; ///< the contents of a file of the folder
    [[nodiscard]] bool exists(std::string_view name) const;
};

using Files = std::map<std::string, std::string>; ///< texts by name

/// How to run.
struct RunSetting {
    Files files = {}; ///< written into the folder before the run
    std::map<std::string, std::string> environment = {};
    std::string stdinFile = {};    ///< for standard input
    std::string stdoutFile = {};   ///< for standard output
    std::string stderrFile = {};   ///< for the standard error stream
    unsigned interruptedAfter = 0; ///< seconds; 0: never
};

/// Runs trelm with these words, which stand apart by blanks, in a new temporary folder. Two names in it lead
/// to the examples: ubi to those of ubiquitin, assignment to those of the assignment.
Ran runProgram(std::string_view words, const RunSetting &setting = {});

/// The same, for a run that must end with status 0.
Ran goodRun(std::string_view words, const RunSetting &setting = {});

/// The absolute name of a file of examples/ubiquitin.
std::string example(std::string_view name);

/// How often a text occurs in another.
int countOf(std::string_view text, std::string_view part);

/// The numbers behind a label at the start of a line; empty if no line begins with it.
std::vector<double> numbersAfter(std::string_view text, std::string_view label);

/// The first of these numbers; NaN if there is none.
double number(std::string_view text, std::string_view label);

/// The five numbers of a Saupe vector, as a report has them.
std::vector<double> saupeOf(std::string_view text);

void expectNear(const std::vector<double> &found, const std::vector<double> &expected, double tolerance);

/// Expects the texts in this order, one behind the other.
void expectOrder(const std::string &text, const std::vector<std::string> &parts);

/// The standard error stream without the lines that tell of the progress.
std::string withoutProgress(const std::string &err);

/// What a run says on the standard error stream beside progress, banner, the inputs it has read and the
/// balance.
std::string complaints(const std::string &err);

/// What a run says on the standard error stream between the banner and the balance of memory, without the
/// lines that tell of the progress.
std::string ownErrors(const std::string &err);

/// The rows of a coupling table written by the program: the words of each line behind the FORMAT line.
std::vector<std::vector<std::string>> tableRows(std::string_view text);
