#include "assignment/interrupt.h"

#include <utility>

namespace trelm {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void note(int)
{
    interrupted = 1;
}

} // namespace

InterruptGuard::InterruptGuard()
{
    interrupted = 0;
    struct sigaction action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART; // a line that is being written is written
    sigemptyset(&action.sa_mask);
    for (const auto &[signal, before] : {std::pair(SIGINT, &beforeInt), std::pair(SIGTERM, &beforeTerm)}) {
        sigaction(signal, &action, before);
        if (before->sa_handler == SIG_IGN) // who runs us does not want it to be heard
            sigaction(signal, before, nullptr);
    }
}

InterruptGuard::~InterruptGuard()
{
    sigaction(SIGINT, &beforeInt, nullptr);
    sigaction(SIGTERM, &beforeTerm, nullptr);
}

bool InterruptGuard::isInterrupted()
{
    return interrupted != 0;
}

} // namespace trelm
