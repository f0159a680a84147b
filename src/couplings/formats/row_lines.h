// Coupling lists whose rows are lines: what their readers and writers share.
#pragma once

#include "couplings/formats/archive.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace trelm {

/// The most characters of a line. No list comes near it: a text without line ends is none.
constexpr std::size_t longestLine = 65536;
constexpr std::string_view lineTooLong = "a line of more than 65536 characters";

/// The lines of a file that hold something, without their comments. A comment reaches from a word that begins
/// with one of the marks to the end of its line.
struct RowLines {
    const ArchiveText &file;
    std::string_view marks;
    Messages &messages;
    std::string_view rest = file.text;
    std::string_view line = {}; ///< the one at hand
    std::size_t number = 0;     ///< of it, counted from 1
    Status status = Status::ok; ///< failed, after a message, if the lines end at one that is too long
};

/// Goes to the next line. False at the end, or at a line that is too long: see RowLines::status.
bool nextLine(RowLines &lines);

/// A word as messages show it: a long one is cut.
std::string shownWord(std::string_view word);

/// The first words as value, error and weight of a row, as many as there are. An error of 0 is none. Fails
/// after a message on a word that is no number, and on a negative error or weight.
Status readNumbers(const ArchiveText &file, std::size_t line, std::span<const std::string_view> words,
                   ArchiveRow &row, Messages &messages);

} // namespace trelm
