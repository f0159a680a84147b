// Regular expressions, compiled into a small byte program.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

constexpr unsigned regMostGroups = 19;       ///< of an expression
constexpr std::size_t regMaxProgram = 32766; ///< bytes of a program

/// A compiled expression. The first byte of the program is no node. A node is an opcode, the offset to the
/// next node in two bytes (high byte first, 0 for none; of a BACK node backwards), and its operand: a text
/// closed by a zero byte, or a node.
struct Regexp {
    char regstart = '\0'; ///< any match begins with it; 0: not known
    bool reganch = false; ///< a match begins at the start only
    std::string regmust;  ///< any match contains it
    std::vector<unsigned char> program;
};

/// Compiles an expression; a zero byte ends it. Null, with `error` set, if it is faulty or too large.
std::unique_ptr<Regexp> strRegComp(std::string_view exp, std::string &error);

/// True if the expression occurs in a text. "^" is its beginning and "$" its end. The time taken is bounded
/// by the size of the program times that of the text: no state of the search is entered twice.
bool strRegExec2(const Regexp &prog, std::string_view text);

} // namespace trelm
