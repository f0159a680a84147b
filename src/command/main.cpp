#include "command/mode_help.h"
#include "command/run.h"
#include "ground/out_of_memory.h"

#include <cstdio>
#include <new>
#include <optional>
#include <stdexcept>

// What stands behind the handlers asks for no memory. NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv)
{
    using trelm::Status;
    trelm::Messages &messages = trelm::messagesOf(argc, argv);
    std::optional<trelm::CommandRun> commandRun;
    Status status = Status::failed;
    try {
        if (const auto answer = trelm::answerWithoutRun(argc, argv, messages); answer)
            return static_cast<int>(*answer);
        commandRun.emplace(); // the defaults of the options ask for memory
        status = trelm::startRun(commandRun->run, messages);
        if (status == Status::ok)
            status = trelm::readOptions(argc, argv, *commandRun, messages);
        if (status == Status::ok)
            status = trelm::runMode(commandRun->run, messages);
    } catch (const trelm::OutOfMemory &failure) {
        return failure.status;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = Status::failed;
    } catch (const std::length_error &) { // a container of more elements than there can be memory for
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = Status::failed;
    }
    return commandRun ? trelm::endRun(*commandRun, status, messages) : static_cast<int>(status);
}
