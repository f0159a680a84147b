#include "assignment/interrupt.h"

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
    sigaction(SIGINT, &action, &beforeInt);
    sigaction(SIGTERM, &action, &beforeTerm);
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
