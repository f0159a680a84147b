#include "command/run.h"
#include "command/version.h"
#include "ground/out_of_memory.h"

#include <cstdio>
#include <new>
#include <stdexcept>

// What stands behind the handlers asks for no memory. NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv)
{
    if (trelm::asksVersion(argc, argv))
        return trelm::printVersion();
    trelm::Run run;
    int status = 1;
    try {
        status = trelm::startRun(run);
        if (status == 0)
            status = trelm::readOptions(argc, argv, run);
        if (status == 0)
            status = static_cast<int>(trelm::runMode(run, trelm::standardMessages()));
    } catch (const trelm::OutOfMemory &failure) {
        return failure.status;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = 1;
    } catch (const std::length_error &) { // a container of more elements than there can be memory for
        std::fprintf(stderr, "Memory allocation failure.\n");
        status = 1;
    }
    return trelm::endRun(run, status);
}
