#include "support/progress.h"

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

void appendLine(Progress &progress, int n)
{
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), n).ptr;
    progress.pending.append(progress.text).append(digits.begin(), end).append(progress.tail);
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

void showProgress(Progress &progress, int n)
{
    if (!progress.isTerminal) {
        appendLine(progress, n);
        if (progress.pending.size() >= pieceSize)
            flush(progress);
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (n < progress.total && now - progress.lastShown < interval)
        return;
    progress.lastShown = now;
    appendLine(progress, n);
    flush(progress);
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
