// Name matching: exact, by regular expression, by glob. The dialects of expressions and of globs are the
// program's own, not those of the platform.
#pragma once

#include "support/text/regexp.h"

#include <memory>
#include <string>
#include <string_view>

namespace trelm {

/// How names are held against a pattern.
enum MatchMode : int { matchNone = 0, matchExact = 1, matchRegex = 2, matchGlob = 3 };

/// A pattern that names are held against. Case counts in every mode.
class NamePattern {
  public:
    NamePattern(std::string_view text, MatchMode matchMode);

    /// Whether the whole name matches (for a regular expression: whether the pattern occurs in it). A faulty
    /// expression matches nothing, nor does matchNone.
    [[nodiscard]] bool matches(std::string_view name) const;

    [[nodiscard]] const std::string &text() const { return pattern; }

    /// What is wrong with the expression, empty if nothing.
    [[nodiscard]] const std::string &error() const { return fault; }

  private:
    std::string pattern;
    MatchMode mode;
    std::unique_ptr<Regexp> prog; ///< of matchRegex, null for a faulty one
    std::string fault;
};

/// By the glob dialect: * ? [a-z] and a backslash before a literal.
bool strMatchGlob(std::string_view string, std::string_view pattern);

} // namespace trelm
