// Regular expressions, compiled into a small byte program.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

constexpr std::size_t regSubCount = 20;        ///< the whole match and up to 19 groups
constexpr std::size_t regMaxProgram = 32766;   ///< bytes of a program
constexpr unsigned char regProgramMagic = 156; ///< the first byte of a program

/// A compiled expression. A node of the program is an opcode, the offset to the next node in two bytes (high
/// byte first, 0 for none; of a BACK node backwards), and its operand: a text closed by a zero byte, or a
/// node.
struct Regexp {
    std::array<const char *, regSubCount> startp{}; ///< starts of the last match, null for an idle group
    std::array<const char *, regSubCount> endp{};   ///< and its ends
    char regstart = '\0';                           ///< any match begins with it; 0: not known
    char reganch = 0;                               ///< non-zero: a match begins at the start only
    std::string regmust;                            ///< any match contains it
    std::vector<unsigned char> program;
};

/// Compiles an expression; a zero byte ends it. Null, with `error` set, if it is faulty or too large.
std::unique_ptr<Regexp> strRegComp(std::string_view exp, std::string &error);

/// 1 if the expression occurs in `string` at or behind the place `start`, else 0. "^" is the beginning of
/// `string` and "$" its end. The time taken is bounded by the size of the program times that of the string:
/// no state of the search is entered twice. `error` is set when the program is none.
int strRegExec2(Regexp &prog, std::string_view string, std::size_t start, std::string &error);

} // namespace trelm
