// Whole runs of the program, each in a folder of its own.
#pragma once

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

/// How to run: environment settings, the program (empty: trelm itself), a file for standard output.
struct RunSetting {
    std::map<std::string, std::string> environment = {};
    std::string program = {};
    std::string stdoutFile = {};
    std::map<std::string, std::string> files = {}; ///< written into the folder before the run
};

/// Runs trelm with its working folder in a new temporary folder.
Ran runProgram(const std::vector<std::string> &args, const RunSetting &setting = {});

/// The absolute name of a file of examples/ubiquitin.
std::string example(std::string_view name);

/// The contents of a file.
std::string fileText(const std::filesystem::path &path);

/// How often a text occurs in another.
int countOf(std::string_view text, std::string_view part);

/// The numbers behind a label at the start of a line; empty if no line begins with it.
std::vector<double> numbersAfter(std::string_view text, std::string_view label);

/// The rows of a coupling table written by the program: the words of each line behind the FORMAT line.
std::vector<std::vector<std::string>> tableRows(std::string_view text);
