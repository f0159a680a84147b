// Name matching: exact, by regular expression, by glob. The dialects of expressions and of globs are the
// program's own, not those of the platform.
#pragma once

#include <string>
#include <string_view>

namespace trelm {

constexpr int matchExact = 1;
constexpr int matchRegex = 2;
constexpr int matchGlob = 3;

/// 1 if the whole string matches the pattern (for a regular expression: if the pattern occurs in it), else 0.
/// In mode 1 `caseMode` 0 ignores case; in modes 2 and 3 case always counts. Other modes give 0.
int strMatch(std::string_view string, std::string_view pattern, int matchMode, int caseMode);

/// 1 or 0, by the glob dialect: * ? [a-z] and a backslash before a literal.
int strMatchGlob(std::string_view string, std::string_view pattern);

/// What the last strMatch found wrong with its pattern or its memory, empty if nothing: a fault is no match
/// and is not printed here.
const std::string &strMatchError();

} // namespace trelm
