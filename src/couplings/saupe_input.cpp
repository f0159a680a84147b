#include "couplings/saupe_input.h"

#include "support/text/text.h"
#include "support/text/text_input.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>
#include <vector>

namespace trelm {

Status readSaupe(const std::string &name, Saupe &saupe, Messages &messages)
{
    TextInput input;
    const TextStatus status = readText(input, name, messages);
    if (status == TextStatus::noFile)
        return messages.fail("trelm: the report %s cannot be opened.\n", name.c_str());
    if (status != TextStatus::read)
        return Status::failed;
    for (std::string_view line; fgetsAlloc(input, line);) {
        std::istringstream stream{std::string(line)};
        const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
        // The two matrices of a comparison have a number of their own before the five.
        if (words.size() != 2 + saupe.size() || words[0] != "DATA" || words[1] != "SAUPE")
            continue;
        std::transform(words.begin() + 2, words.end(), saupe.begin(),
                       [](const std::string &word) { return toDouble(word); });
        const bool isWhole =
            std::ranges::all_of(saupe, [](double element) { return std::isfinite(element); });
        return isWhole ? Status::ok
                       : messages.fail("trelm: the order matrix of %s is not finite.\n", name.c_str());
    }
    return messages.fail("trelm: %s has no order matrix: no line of it begins with DATA SAUPE.\n",
                         name.c_str());
}

} // namespace trelm
