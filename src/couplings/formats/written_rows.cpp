#include "couplings/formats/written_rows.h"

#include "support/text/text.h"

#include <charconv>
#include <cstdio>

namespace trelm {
namespace {

NamedAtom writtenAtom(int resID, char icode, const Name &resName, const Name &atomName, const Name &chain)
{
    return {.resID = resID, .icode = icode, .resName = resName, .atomName = atomName, .chain = chain};
}

} // namespace

std::vector<ArchiveRow> writtenRows(const TableOut &table)
{
    const auto observed = table.dTab.observed();
    const auto calculated = table.dTab.calculated();
    const std::vector<ArchiveRow> &origin = table.dTab.origin.rows;
    std::vector<ArchiveRow> rows;
    for (std::size_t k = 0; k < observed.size(); ++k) {
        if (observed[k].valid == 0 || calculated[k].valid == 0)
            continue;
        const RowNames &names = *observed[k].names;
        const ArchiveRow from = k < origin.size() ? origin[k] : ArchiveRow{};
        const bool hasChains = !names.chainNameI.empty() || !names.chainNameJ.empty();
        ArchiveRow row = {.i = writtenAtom(observed[k].resIDI, from.i.icode, names.resNameI, names.atomNameI,
                                           hasChains ? names.chainNameI : names.segNameI),
                          .j = writtenAtom(observed[k].resIDJ, from.j.icode, names.resNameJ, names.atomNameJ,
                                           hasChains ? names.chainNameJ : names.segNameJ),
                          .value = static_cast<double>(calculated[k].d)};
        if (calculated[k].sigma > 0.0f)
            row.error = static_cast<double>(calculated[k].sigma);
        rows.push_back(row);
    }
    return rows;
}

std::string residueText(const NamedAtom &atom)
{
    return std::to_string(atom.resID).append(atom.code());
}

std::string_view nameOr(const Name &name, std::string_view none)
{
    return name.empty() ? none : name.view();
}

/// The table has single precision: that is what has to come back.
void appendExact(std::string &text, double value, std::size_t width, int decimals)
{
    char word[64]; // %.3f of the largest float takes 43
    const auto number = static_cast<float>(value);
    const auto size = static_cast<std::size_t>(std::snprintf(word, sizeof word, "%.*f", decimals, value));
    float back = 0.0f;
    std::from_chars(word, word + size, back);
    const char *end = back == number ? word + size : std::to_chars(word, word + sizeof word, number).ptr;
    appendRight(text, {word, end}, width);
}

} // namespace trelm
