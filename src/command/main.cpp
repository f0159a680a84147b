#include "command/run.h"
#include "command/version.h"
#include "ground/out_of_memory.h"

#include <cstdio>
#include <new>
#include <stdexcept>

// What stands behind the handlers asks for no memory. NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv)
{
    using trelm::Status;
    trelm::Messages &messages = trelm::standardMessages();
    if (trelm::asksVersion(argc, argv))
        return static_cast<int>(trelm::printVersion(messages));
    trelm::Run run;
    Status status = Status::failed;
    try {
        status = trelm::startRun(run, messages);
        if (status == Status::ok)
            status = trelm::readOptions(argc, argv, run, messages);
        if (status == Status::ok)
            status = trelm::runMode(run, messages);
    } catch (const trelm::OutOfMemory &failure) {
        return failure.status;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = Status::failed;
    } catch (const std::length_error &) { // a container of more elements than there can be memory for
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = Status::failed;
    }
    return trelm::endRun(run, status, messages);
}
