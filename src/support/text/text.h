// Text under construction, and the small string helpers.
#pragma once

#include "ground/messages.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace trelm {

/// Appends printf-style to a text.
[[gnu::format(printf, 2, 3)]] void appendf(std::string &text, const char *format, ...);

/// Append a word, left- or right-justified: "%-*s" and "%*s", without printf, which result files of thousands
/// of lines would notice.
void appendLeft(std::string &text, std::string_view word, std::size_t width);
void appendRight(std::string &text, std::string_view word, std::size_t width);

/// Appends an integer as "%*d".
void appendInt(std::string &text, int value, std::size_t width);

/// Append a number to the byte as "%*.*f" and "%.*e" print it, or as "% *.*f" and "% .*e" with a blank where
/// a minus sign would be. decimals: up to 60.
enum class SignPlace { none, blank };
void appendFixed(std::string &text, double value, std::size_t width, int decimals, SignPlace sign);
void appendScientific(std::string &text, double value, int decimals, SignPlace sign);

/// The two lines of an error of the numerical code, on which the run goes on. Returns Status::failed.
Status nrerror(const char *message, Messages &messages);

/// True if the texts are equal, capitals or not (letters a to z only).
bool equalNoCase(std::string_view a, std::string_view b);

/// White space as the C locale has it: blank, tab, newline, carriage return, vertical tab, form feed.
constexpr bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The number at the start of a text, in the manner of atoi and atof: 0 where there is none, and what follows
/// the number is ignored. An integer beyond the range of int becomes its nearest limit.
int toInt(std::string_view text);
double toDouble(std::string_view text);

/// The integer part of a number; beyond the range of int its nearest limit, 0 for what is no number.
int truncated(float value);

} // namespace trelm
