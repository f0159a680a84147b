// Words of a line. Words are separated by white space and counted from 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace trelm {

/// Word number n, a view into `text`; the empty text if there is none.
std::string_view getToken(int n, std::string_view text);

/// The first word of a line, empty for a blank one.
std::string_view firstWord(std::string_view line);

/// All words of a text at once, or the first `most`, for readers of long rows: one pass over the line.
void splitTokens(std::string_view text, std::vector<std::string_view> &words, std::size_t most = SIZE_MAX);

/// A whole word as "%d", "%f" or "%lf" read it: the number at its start. Returns false, with 0, if there is
/// none. An integer beyond the range of int becomes its nearest limit, a real one infinite or 0. As with the
/// conversions named, the words "inf" and "nan" are numbers: a caller that turns a value into an int tests
/// it.
bool wordToInt(std::string_view word, int &value);
bool wordToFloat(std::string_view word, float &value);
bool wordToDouble(std::string_view word, double &value);

/// Whether the whole word is one number, and one without a fraction. Hexadecimal numbers are numbers.
bool isOneNumber(std::string_view word);
bool isInteger(std::string_view word);

/// The numbers at the start of a line, as many as `values` takes, as a row of "%lf" reads them; what follows
/// does not matter. Returns how many there are.
std::size_t scanNumbers(std::string_view line, std::span<double> values);

} // namespace trelm
