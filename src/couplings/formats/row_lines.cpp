#include "couplings/formats/row_lines.h"

#include "support/text/text.h"

#include <algorithm>

namespace trelm {
namespace {

/// The part of a line before its comment.
std::string_view withoutComment(std::string_view line, std::string_view marks)
{
    std::size_t end = line.size();
    for (const char mark : marks) // one search a mark is fast, one for all marks is not
        for (std::size_t place = line.find(mark); place < end; place = line.find(mark, place + 1))
            if (place == 0 || isSpace(line[place - 1]))
                end = place;
    return line.substr(0, end);
}

} // namespace

bool nextLine(RowLines &lines)
{
    while (!lines.rest.empty()) {
        const std::size_t end = std::min(lines.rest.find('\n'), lines.rest.size());
        const std::string_view whole = lines.rest.substr(0, end);
        lines.rest.remove_prefix(std::min(end + 1, lines.rest.size()));
        ++lines.number;
        if (whole.size() > longestLine) {
            lines.status =
                failAt(lines.file, lines.number, lines.messages, "%s", std::string(lineTooLong).c_str());
            return false;
        }
        lines.line = withoutComment(whole, lines.marks);
        if (!std::ranges::all_of(lines.line, isSpace))
            return true;
    }
    return false;
}

std::string shownWord(std::string_view word)
{
    constexpr std::size_t most = 60;
    return std::string(word.substr(0, most)).append(word.size() > most ? "..." : "");
}

Status readNumbers(const ArchiveText &file, std::size_t line, std::span<const std::string_view> words,
                   ArchiveRow &row, Messages &messages)
{
    double numbers[3] = {0.0, 0.0, 1.0};
    const std::size_t count = std::min(words.size(), std::size(numbers));
    for (std::size_t k = 0; k < count; ++k)
        if (!readNumber(words[k], numbers[k]))
            return failAt(file, line, messages, "%s is no number", shownWord(words[k]).c_str());
    if (numbers[1] < 0.0 || numbers[2] < 0.0)
        return failAt(file, line, messages, "a negative error or weight");
    row.value = numbers[0];
    if (numbers[1] > 0.0)
        row.error = numbers[1];
    row.weight = numbers[2];
    return Status::ok;
}

} // namespace trelm
