#include "faults/forked_run.h"

#include "common/file_text.h"
#include "common/line.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

int trelmMain(int argc, char **argv); ///< main of the program, under another name

// A fault found by a sanitizer must not look like a run that failed as it should.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
    return "exitcode=86";
}

namespace {

constexpr unsigned longestRun = 60; // seconds; a run that hangs is a failure

void redirect(const char *path, int flags, int stream)
{
    const int fd = open(path, flags, 0644);
    if (fd < 0 || dup2(fd, stream) < 0)
        _exit(126);
    close(fd);
}

[[noreturn]] void runChild(const WalkFolder &folder, const SmallRun &run, const ChosenFault &fault)
{
    if (chdir((folder.root / "run").c_str()) != 0)
        _exit(126);
    redirect("/dev/null", O_RDONLY, STDIN_FILENO);
    redirect("../stdout", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect("../stderr", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    unsetenv("NMRCHECK");
    if (run.checkMode != nullptr)
        setenv("NMRCHECK", run.checkMode, 1);
    trelm::Line line("trelm", run.options);
    alarm(longestRun);
    startFaults(fault.kind, fault.n, *folder.shared);
    std::exit(trelmMain(line.argc(), line.argv()));
}

} // namespace

WalkFolder::WalkFolder()
{
    const std::string name = "trelm_walk_" + std::to_string(getpid());
    root = fs::temp_directory_path() / name;
    fs::create_directories(root / "in");
    writeSmallInputs(root / "in");
    void *page =
        mmap(nullptr, sizeof(FaultRecord), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    shared = page == MAP_FAILED ? nullptr : new (page) FaultRecord{};
}

WalkFolder::~WalkFolder()
{
    if (shared != nullptr)
        munmap(shared, sizeof(FaultRecord));
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

ForkedRun runForked(const WalkFolder &folder, const SmallRun &run, const ChosenFault &fault)
{
    fs::remove_all(folder.root / "run");
    fs::create_directory(folder.root / "run");
    for (const std::string &name : fault.earlier)
        std::ofstream(folder.root / "run" / name) << earlierResult;
    *folder.shared = {};
    folder.shared->notesPlaces = fault.notesPlaces;
    std::fflush(nullptr); // the child must not write what waits here
    const pid_t child = fork();
    if (child == 0)
        runChild(folder, run, fault);
    int state = 0;
    waitpid(child, &state, 0);
    ForkedRun ran;
    ran.status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    ran.out = fileText(folder.root / "stdout");
    ran.err = fileText(folder.root / "stderr");
    ran.faults = *folder.shared;
    return ran;
}

std::map<std::string, std::string> filesOf(const WalkFolder &folder)
{
    std::map<std::string, std::string> files;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder.root / "run"))
        files[entry.path().filename().string()] = fileText(entry.path());
    return files;
}
