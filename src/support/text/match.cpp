#include "support/text/match.h"

#include <utility>

namespace trelm {
namespace {

/// True if a character is in the set whose text begins behind a "[". `size` gets the length of the set with
/// its "]"; a set that is never closed has no member.
bool isInSet(char c, std::string_view text, std::size_t &size)
{
    const std::size_t close = text.find(']');
    if (close == std::string_view::npos)
        return false;
    const auto wanted = static_cast<unsigned char>(c);
    const std::string_view set = text.substr(0, close);
    size = close + 1;
    for (std::size_t i = 0; i < set.size(); ++i) {
        auto low = static_cast<unsigned char>(set[i]), high = low;
        if (i + 2 < set.size() && set[i + 1] == '-') {
            high = static_cast<unsigned char>(set[i + 2]);
            i += 2;
        }
        if (low > high)
            std::swap(low, high);
        if (low <= wanted && wanted <= high)
            return true;
    }
    return false;
}

/// The length of the pattern's first element if it matches the character, else 0. The element is no "*".
std::size_t matchedElement(char c, std::string_view pattern)
{
    std::size_t size = 0;
    switch (pattern.front()) {
    case '?':
        return 1;
    case '[':
        return isInSet(c, pattern.substr(1), size) ? size + 1 : 0;
    case '\\':
        return pattern.size() > 1 && pattern[1] == c ? 2 : 0;
    default:
        return pattern.front() == c ? 1 : 0;
    }
}

} // namespace

bool strMatchGlob(std::string_view string, std::string_view pattern)
{
    // Every element but "*" takes one character, so that after a mismatch only the last "*" has to take one
    // more: an earlier one could gain nothing. That keeps the time below string times pattern.
    constexpr std::size_t none = std::string_view::npos;
    std::size_t place = 0, element = 0;
    std::size_t starElement = none, starPlace = 0; // behind the last "*", and where its rest was tried
    for (;;) {
        if (element < pattern.size() && pattern[element] == '*') {
            starElement = ++element;
            starPlace = place;
            continue;
        }
        if (place == string.size())
            return element == pattern.size();
        const std::size_t size =
            element < pattern.size() ? matchedElement(string[place], pattern.substr(element)) : 0;
        if (size > 0) {
            element += size;
            ++place;
        } else if (starElement != none) {
            element = starElement;
            place = ++starPlace;
        } else {
            return false;
        }
    }
}

NamePattern::NamePattern(std::string_view text, MatchMode matchMode) : pattern(text), mode(matchMode)
{
    if (mode == matchRegex)
        prog = strRegComp(pattern, fault);
}

bool NamePattern::matches(std::string_view name) const
{
    switch (mode) {
    case matchExact:
        return name == pattern;
    case matchRegex:
        return prog && strRegExec2(*prog, name);
    case matchGlob:
        return strMatchGlob(name, pattern);
    default:
        return false;
    }
}

} // namespace trelm
