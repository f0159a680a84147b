#include "command/flag_hint.h"

#include "command/params.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

namespace trelm {
namespace {

// A letter in the wrong case (-outd for -outD) is half a fault.
constexpr int edit = 2;
constexpr int wrongCase = 1;
constexpr std::size_t longestWord = 64; // no option is near anything longer

int replaceCost(char a, char b)
{
    if (a == b)
        return 0;
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(a) == lower(b) ? wrongCase : edit;
}

/// The cost of the cheapest edits that make one word the other; each letter is edited once (optimal string
/// alignment: Levenshtein 1966, with the exchange of neighbours of Damerau 1964).
int editCost(std::string_view a, std::string_view b)
{
    std::array<std::array<int, longestWord + 1>, longestWord + 1> cost;
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = edit * static_cast<int>(i + j);
                continue;
            }
            cost[i][j] = std::min({cost[i - 1][j] + edit, cost[i][j - 1] + edit,
                                   cost[i - 1][j - 1] + replaceCost(a[i - 1], b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + edit);
        }
    }
    return cost[a.size()][b.size()];
}

/// What may be wrong with a word. In a short one a single letter more would make any option near.
int costLimit(std::size_t letters)
{
    if (letters < 3)
        return wrongCase;
    return letters < 6 ? edit + wrongCase : 2 * edit;
}

} // namespace

std::vector<std::string_view> knownFlags()
{
    std::vector<std::string_view> flags;
    const auto add = [&flags](std::string_view flag) {
        if (std::ranges::find(flags, flag) == flags.end())
            flags.push_back(flag);
    };
    for (const auto table : optionTables())
        for (const OptionRow &row : table)
            add(row.flag);
    std::ranges::for_each(specialFlags(), add);
    return flags;
}

std::string_view nearestFlag(std::string_view word)
{
    if (word.size() < 2 || word.size() > longestWord)
        return {};
    int best = costLimit(word.size() - 1) + 1;
    std::string_view nearest;
    static const std::vector<std::string_view> flags = knownFlags(); // asked for with every unknown word
    for (const std::string_view flag : flags) {
        if (flag == word)
            return {};
        const auto surplus = static_cast<int>(word.size()) - static_cast<int>(flag.size());
        if (std::abs(surplus) * edit >= best)
            continue; // each letter that one has more is an edit
        const int cost = editCost(word, flag);
        if (cost < best) {
            best = cost;
            nearest = flag;
        }
    }
    return nearest;
}

} // namespace trelm
