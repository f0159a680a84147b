// The user's wish to end a long search with what it has found.
#pragma once

#include <csignal>

namespace trelm {

/// While it lives an interrupt from the keyboard (SIGINT) or a SIGTERM does not end the process but is noted.
/// One at a time.
class InterruptGuard {
  public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard &) = delete;
    InterruptGuard &operator=(const InterruptGuard &) = delete;

    /// Whether one has come.
    [[nodiscard]] static bool isInterrupted();

  private:
    struct sigaction beforeInt = {}, beforeTerm = {};
};

} // namespace trelm
