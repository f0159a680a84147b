#include "cli/run_program.h"

#include "common/line.h"
#include "common/line_ends.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

void redirect(const std::string &path, int stream)
{
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || dup2(fd, stream) < 0)
        _exit(126);
    close(fd);
}

[[noreturn]] void runChild(std::string_view words, const RunSetting &setting, const fs::path &folder)
{
    if (chdir(folder.c_str()) != 0)
        _exit(126);
    redirect(setting.stdoutFile.empty() ? "stdout.txt" : setting.stdoutFile, STDOUT_FILENO);
    redirect(setting.stderrFile.empty() ? "stderr.txt" : setting.stderrFile, STDERR_FILENO);
    if (!setting.stdinFile.empty() && std::freopen(setting.stdinFile.c_str(), "r", stdin) == nullptr)
        _exit(126);
    unsetenv("NMRCHECK");
    for (const auto &[name, value] : setting.environment)
        setenv(name.c_str(), value.c_str(), 1);
    trelm::Line line(TRELM_PROGRAM, std::string(words));
    std::signal(SIGINT, SIG_DFL); // the job of a script may ignore it, and a child takes that over
    alarm(60);                    // a run that hangs is a failure
    execv(TRELM_PROGRAM, line.argv());
    _exit(127);
}

} // namespace

Ran::~Ran()
{
    std::error_code ignored;
    if (!folder.empty())
        fs::remove_all(folder, ignored);
}

std::string Ran::file(std::string_view name) const
{
    return fileText(folder / name);
}

bool Ran::exists(std::string_view name) const
{
    return fs::exists(folder / name);
}

Ran runProgram(std::string_view words, const RunSetting &setting)
{
    std::string pattern =
        (fs::temp_directory_path() / ("trelm_cli_" + std::to_string(getpid()) + "_XXXXXX")).string();
    Ran ran;
    if (mkdtemp(pattern.data()) == nullptr)
        return ran;
    ran.folder = pattern;
    fs::create_directory_symlink(TRELM_EXAMPLES "/ubiquitin", ran.folder / "ubi");
    fs::create_directory_symlink(TRELM_EXAMPLES "/assignment", ran.folder / "assignment");
    for (const auto &[name, text] : setting.files)
        std::ofstream(ran.folder / name, std::ios::binary) << text;
    const pid_t child = fork();
    if (child < 0)
        return ran;
    if (child == 0)
        runChild(words, setting, ran.folder);
    if (setting.interruptedAfter > 0) {
        sleep(setting.interruptedAfter);
        kill(child, SIGINT);
    }
    int state = 0;
    waitpid(child, &state, 0);
    ran.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    ran.out = fileText(ran.folder / "stdout.txt");
    ran.err = fileText(ran.folder / "stderr.txt");
    expectLineEnds(ran.err);
    return ran;
}

Ran goodRun(std::string_view words, const RunSetting &setting)
{
    Ran ran = runProgram(words, setting);
    EXPECT_EQ(ran.status, 0) << words << "\n" << withoutProgress(ran.err);
    return ran;
}

std::string example(std::string_view name)
{
    return std::string(TRELM_EXAMPLES "/ubiquitin/") + std::string(name);
}

int countOf(std::string_view text, std::string_view part)
{
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::vector<double> numbersAfter(std::string_view text, std::string_view label)
{
    std::istringstream lines{std::string(text)};
    std::vector<double> numbers;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(label))
            continue;
        std::istringstream words(line.substr(label.size()));
        for (std::string word; words >> word;) {
            char *end = nullptr;
            const double number = std::strtod(word.c_str(), &end);
            if (*end == '\0')
                numbers.push_back(number);
        }
        break;
    }
    return numbers;
}

double number(std::string_view text, std::string_view label)
{
    const std::vector<double> numbers = numbersAfter(text, label);
    return numbers.empty() ? std::nan("") : numbers[0];
}

std::vector<double> saupeOf(std::string_view text)
{
    std::vector<double> saupe = numbersAfter(text, "DATA SAUPE ");
    EXPECT_EQ(saupe.size(), 5U) << text;
    saupe.resize(5, std::nan(""));
    return saupe;
}

void expectNear(const std::vector<double> &found, const std::vector<double> &expected, double tolerance)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k)
        EXPECT_NEAR(found[k], expected[k], tolerance) << k;
}

void expectOrder(const std::string &text, const std::vector<std::string> &parts)
{
    std::size_t from = 0;
    for (const std::string &part : parts) {
        const std::size_t at = text.find(part, from);
        ASSERT_NE(at, std::string::npos) << "missing or out of order: " << part << "\n" << text;
        from = at + part.size();
    }
}

std::string withoutProgress(const std::string &err)
{
    std::istringstream in(err);
    std::string text;
    for (std::string line; std::getline(in, line);)
        text += line.substr(line.rfind('\r') + 1) + "\n";
    return text;
}

std::string complaints(const std::string &err)
{
    std::istringstream lines(withoutProgress(err));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line.find_first_of("*|") != 0 &&
            line.find(" Couplings, Residues ") == std::string::npos &&
            line.find(" Atoms, Residues ") == std::string::npos &&
            !line.starts_with("REMARK Memory Allocation Status."))
            text += line + '\n';
    return text;
}

std::string ownErrors(const std::string &err)
{
    constexpr std::string_view bannerEnd = "-*\n\n\n";
    const std::string text = withoutProgress(err);
    const std::size_t from = text.find(bannerEnd), to = text.find("REMARK Memory Allocation Status.");
    if (from == std::string::npos || to == std::string::npos)
        return "no banner or no balance: " + text;
    return text.substr(from + bannerEnd.size(), to - from - bannerEnd.size());
}

std::vector<std::vector<std::string>> tableRows(std::string_view text)
{
    std::istringstream lines{std::string(text)};
    std::vector<std::vector<std::string>> rows;
    bool inTable = false;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::vector<std::string> row;
        for (std::string word; words >> word;)
            row.push_back(word);
        if (inTable && !row.empty())
            rows.push_back(row);
        inTable = inTable || line.starts_with("FORMAT");
    }
    return rows;
}
