#include "support/text/progress.h"

#include <array>
#include <charconv>

namespace trelm {
namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 14;
constexpr auto interval = std::chrono::milliseconds(50);

} // namespace

Progress::Progress(Messages &receiver, std::string_view before, int count)
    : messages(receiver), text(before), tail(" of " + std::to_string(count) + '\r'), total(count)
{
}

void Progress::show(int n)
{
    if (!isDue(n >= total))
        return;
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), n).ptr;
    pending.append(text).append(digits.begin(), end);
    showLine(tail);
}

bool Progress::isDue(bool isLast) const
{
    return !messages.isTerminal() || isLast || std::chrono::steady_clock::now() - lastShown >= interval;
}

void Progress::showLine(std::string_view line)
{
    pending += line;
    if (messages.isTerminal())
        lastShown = std::chrono::steady_clock::now();
    if (messages.isTerminal() || pending.size() >= pieceSize)
        pause();
}

void Progress::pause()
{
    messages.text(Messages::Stream::progress, pending);
    pending.clear();
}

void Progress::end()
{
    pending += '\n';
    pause();
}

} // namespace trelm
