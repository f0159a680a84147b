#include "support/text/progress.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <unistd.h>

namespace trelm {
namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 14;
constexpr auto interval = std::chrono::milliseconds(50);

void flush(Progress &progress)
{
    std::fputs(progress.pending.c_str(), stderr);
    std::fflush(stderr);
    progress.pending.clear();
}

} // namespace

Progress startProgress(std::string_view text, int total)
{
    Progress progress;
    progress.text = text;
    progress.total = total;
    progress.tail = " of " + std::to_string(total) + '\r';
    progress.isTerminal = isatty(STDERR_FILENO) != 0;
    return progress;
}

bool isDue(const Progress &progress, bool isLast)
{
    return !progress.isTerminal || isLast ||
           std::chrono::steady_clock::now() - progress.lastShown >= interval;
}

void showLine(Progress &progress, std::string_view line)
{
    progress.pending += line;
    if (progress.isTerminal)
        progress.lastShown = std::chrono::steady_clock::now();
    if (progress.isTerminal || progress.pending.size() >= pieceSize)
        flush(progress);
}

void showProgress(Progress &progress, int n)
{
    if (!isDue(progress, n >= progress.total))
        return;
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), n).ptr;
    progress.line.assign(progress.text).append(digits.begin(), end).append(progress.tail);
    showLine(progress, progress.line);
}

void pauseProgress(Progress &progress)
{
    flush(progress);
}

int failed(Progress &progress)
{
    pauseProgress(progress);
    return 1;
}

void endProgress(Progress &progress)
{
    progress.pending += '\n';
    flush(progress);
}

} // namespace trelm
