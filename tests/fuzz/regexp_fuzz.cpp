// Regular expressions and globs: the first line is the pattern, the rest the text.
#include "fuzz_input.h"

#include "support/text/match.h"
#include "support/text/regexp.h"

#include <algorithm>
#include <memory>

namespace {

using namespace trelm;
using fuzz::require;

/// 1, 0, or -1 for an expression that is refused.
int outcome(const std::string &pattern, std::string_view text)
{
    std::string error;
    const std::unique_ptr<Regexp> prog = strRegComp(pattern, error);
    require((prog == nullptr) == !error.empty(), "a refused expression has its message");
    if (!prog)
        return -1;
    return strRegExec2(*prog, text) ? 1 : 0;
}

void checkExpression(const std::string &pattern, std::string_view text)
{
    const int plain = outcome(pattern, text);
    if (plain < 0)
        return;
    require(NamePattern(pattern, matchRegex).matches(text) == (plain == 1), "both ways to match agree");
    // Each of these may be refused as too large, or for its many groups.
    const int grouped = outcome("(" + pattern + ")", text);
    const int twice = outcome(pattern + "|" + pattern, text);
    const int optional = outcome("(" + pattern + ")?$", text);
    require(grouped < 0 || grouped == plain, "a group matches as its contents");
    require(twice < 0 || twice == plain, "two equal branches match as one");
    require(optional != 0, "an optional group may be missing");
}

void checkGlob(const std::string &pattern, std::string_view text)
{
    const bool plain = strMatchGlob(text, pattern);
    require(!plain || strMatchGlob(text, "*" + pattern + "*"), "a star takes nothing, too");
    require(strMatchGlob(text, "**" + pattern) == strMatchGlob(text, "*" + pattern), "two stars are one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view input = fuzz::asText(data, size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    // A zero byte ends an expression, and no command line holds one.
    const std::string pattern(input.substr(0, std::min(end, input.find('\0'))));
    const std::string_view text = input.substr(std::min(end + 1, input.size()));
    checkExpression(pattern, text);
    checkGlob(pattern, text);
    return 0;
}
