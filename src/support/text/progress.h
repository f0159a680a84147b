// Progress lines that cost next to nothing.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace trelm {

/// Lines that overwrite each other on the standard error stream: "<text>N of T\r". On a terminal about
/// twenty a second and the last one are shown; elsewhere all of them are written, in large pieces. What else
/// is written to the stream between the first line and endProgress comes after pauseProgress.
struct Progress {
    std::string text; ///< before the number
    std::string tail; ///< behind it
    std::string line; ///< work space
    int total = 0;
    bool isTerminal = false;
    std::string pending; ///< what is not written yet
    std::chrono::steady_clock::time_point lastShown = {};
};

Progress startProgress(std::string_view text, int total);

/// Line number n, 1 to total.
void showProgress(Progress &progress, int n);

/// For lines of another form, each ending in "\r": whether one would be shown now; and one that is.
bool isDue(const Progress &progress, bool isLast);
void showLine(Progress &progress, std::string_view line);

/// Writes what waits to be written.
void pauseProgress(Progress &progress);

/// On the road of a failure: writes what waits to be written. Returns 1.
int failed(Progress &progress);

/// Ends the lines with a newline and flushes.
void endProgress(Progress &progress);

} // namespace trelm
