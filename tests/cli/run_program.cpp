#include "cli/run_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

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

[[noreturn]] void runChild(const std::string &program, const std::vector<std::string> &args,
                           const RunSetting &setting, const fs::path &folder)
{
    if (chdir(folder.c_str()) != 0)
        _exit(126);
    redirect(setting.stdoutFile.empty() ? "stdout.txt" : setting.stdoutFile, STDOUT_FILENO);
    redirect("stderr.txt", STDERR_FILENO);
    unsetenv("NMRCHECK");
    for (const auto &[name, value] : setting.environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<std::string> words = {program};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    alarm(60); // a run that hangs is a failure
    execv(program.c_str(), argv.data());
    _exit(127);
}

} // namespace

std::string fileText(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

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

Ran runProgram(const std::vector<std::string> &args, const RunSetting &setting)
{
    std::string pattern = (fs::temp_directory_path() / "trelm_cli_XXXXXX").string();
    Ran ran;
    if (mkdtemp(pattern.data()) == nullptr)
        return ran;
    ran.folder = pattern;
    for (const auto &[name, text] : setting.files)
        std::ofstream(ran.folder / name, std::ios::binary) << text;
    const pid_t child = fork();
    if (child == 0)
        runChild(setting.program.empty() ? TRELM_PROGRAM : setting.program, args, setting, ran.folder);
    int state = 0;
    waitpid(child, &state, 0);
    ran.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    ran.out = fileText(ran.folder / "stdout.txt");
    ran.err = fileText(ran.folder / "stderr.txt");
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
