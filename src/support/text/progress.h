// Progress lines that cost next to nothing.
#pragma once

#include "ground/messages.h"

#include <chrono>
#include <string>
#include <string_view>

namespace trelm {

/// Lines that overwrite each other: "<text>N of T\r". On a terminal about twenty a second and the last one
/// are shown; elsewhere all of them are written, in large pieces. What else is said between the first line
/// and end() comes after pause().
class Progress {
  public:
    Progress(Messages &receiver, std::string_view before, int count);

    /// Line number n, 1 to the count.
    void show(int n);

    /// For lines of another form, each ending in "\r": whether one would be shown now; and one that is.
    [[nodiscard]] bool isDue(bool isLast) const;
    void showLine(std::string_view line);

    /// Writes what waits to be written: something else is to be said, or the work has failed.
    void pause();

    /// Ends the lines with a newline.
    void end();

  private:
    Messages &messages;
    std::string text; ///< before the number
    std::string tail; ///< behind it
    int total;
    std::string pending; ///< what is not written yet
    std::chrono::steady_clock::time_point lastShown = {};
};

} // namespace trelm
