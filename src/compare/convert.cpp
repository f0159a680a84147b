#include "compare/convert.h"

#include "couplings/formats/forms.h"
#include "support/numerics/numbers.h"
#include "support/numerics/random.h"
#include "support/numerics/sort.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <unordered_set>
#include <vector>

namespace trelm {
namespace {

/// A table on its way out.
struct Conversion {
    const std::string &inDName;
    const ConversionOptions &options;
    const DTable &dTab;
    std::span<const int> resIdList; ///< residues of the listing, ascending
    std::span<const int> indexList; ///< the row that names each of them
};

bool isAmideProton(const Name &name)
{
    return name == "HN" || name == "H";
}

/// Calls `visit` with the observed and the calculated row of each coupling that is valid in both.
template <class Visit>
void forEachValid(const DTable &dTab, Visit visit)
{
    const auto observed = dTab.observed();
    const auto calculated = dTab.calculated();
    for (std::size_t i = 0; i < observed.size(); ++i)
        if (observed[i].valid != 0 && calculated[i].valid != 0)
            visit(observed[i], calculated[i]);
}

// ---- restraints: the tensor is a pseudo-molecule of four atoms, OO Z X Y ----

void appendRestraints(const Conversion &job, std::string &text)
{
    appendf(text, "! %s from %s.\n",
            job.options.normDc != 0 ? "Normalized dipolar couplings" : "Dipolar couplings",
            job.inDName.c_str());
    if (job.options.dcNoise != 0)
        text += "! Gaussian noise has been added.\n\n";
    const int dcID = job.options.dcID;
    forEachValid(job.dTab, [&](const DInfo &obs, const DCalc &calc) {
        appendf(text, "\nassign ( resid %3d and name OO  )\n", dcID);
        for (const char *axis : {"Z", "X", "Y"})
            appendf(text, "       ( resid %3d and name %s   )\n", dcID, axis);
        appendf(text, "       ( resid %3d and name %s and not segid REF )\n", obs.resIDI,
                obs.names->atomNameI.c_str());
        appendf(text, "       ( resid %3d and name %s and not segid REF )   ", obs.resIDJ,
                obs.names->atomNameJ.c_str());
        appendf(text, "%.4f %.4f\n", number(calc.d), number(calc.sigma));
    });
}

// ---- plain rows ----

void appendAmides(const Conversion &job, std::string &text)
{
    forEachValid(job.dTab, [&](const DInfo &obs, const DCalc &calc) {
        if (!(obs.names->atomNameI == "N" && isAmideProton(obs.names->atomNameJ)) &&
            !(obs.names->atomNameJ == "N" && isAmideProton(obs.names->atomNameI)))
            return;
        appendf(text, "%3d %s HN %9.2f %7.2f %5.1f\n", obs.resIDI, obs.names->resNameI.c_str(),
                number(calc.d), number(calc.sigma), number(calc.w));
    });
}

void appendCountedRows(const Conversion &job, std::string &text)
{
    appendf(text, "%s from %s.\n",
            job.options.normDc != 0 ? "Normalized dipolar couplings" : "Dipolar couplings",
            job.inDName.c_str());
    text +=
        job.options.dcNoise != 0 ? "Gaussian noise has been added.\n" : "No Gaussian noise has been added.\n";
    text += "comment\n";
    int count = 0;
    forEachValid(job.dTab, [&](const DInfo &, const DCalc &) { ++count; });
    appendf(text, "%d\n", count);
    forEachValid(job.dTab, [&](const DInfo &obs, const DCalc &calc) {
        appendf(text, "%s %4d %4s %4d %4s  %10.2f\n", "a", obs.resIDI, obs.names->atomNameI.c_str(),
                obs.resIDJ, obs.names->atomNameJ.c_str(), number(calc.d));
    });
}

// ---- the listing: a line for each residue, a column for each kind of coupling ----

/// The residue whose line takes a coupling.
enum class LineOf { first, larger, amideProton };

struct Column {
    const char *atomA, *atomB; ///< in either order; HN stands for H, too
    LineOf line;
};

constexpr Column columns[] = {
    {"HN", "N", LineOf::first},        {"N", "C", LineOf::larger},  {"HN", "C", LineOf::larger},
    {"CA", "C", LineOf::first},        {"CA", "HA", LineOf::first}, {"HN", "CA", LineOf::larger},
    {"HN", "HA", LineOf::amideProton}, // with dcProton alone
};
constexpr const char *noValue = " -9999.000"; ///< a residue without such a coupling

bool isNamed(const Name &name, std::string_view wanted)
{
    return name == wanted || (wanted == "HN" && name == "H");
}

bool isInColumn(const DInfo &row, const Column &column)
{
    return (isNamed(row.names->atomNameI, column.atomA) && isNamed(row.names->atomNameJ, column.atomB)) ||
           (isNamed(row.names->atomNameJ, column.atomA) && isNamed(row.names->atomNameI, column.atomB));
}

int lineResidue(const DInfo &row, LineOf line)
{
    if (line == LineOf::first)
        return row.resIDI;
    if (line == LineOf::larger)
        return std::max(row.resIDI, row.resIDJ);
    return isAmideProton(row.names->atomNameI) ? row.resIDI : row.resIDJ;
}

/// Cells of the listing, columns of a residue side by side: the couplings that each holds, as text.
std::vector<std::string> fillCells(const Conversion &job, std::span<const Column> shown)
{
    std::vector<std::string> cells(job.resIdList.size() * shown.size());
    const auto observed = job.dTab.observed();
    const auto calculated = job.dTab.calculated();
    for (std::size_t i = 0; i < observed.size(); ++i) {
        const DInfo &row = observed[i];
        if (row.valid == 0 || !(row.d < missingCoupling))
            continue;
        for (std::size_t k = 0; k < shown.size(); ++k) {
            if (!isInColumn(row, shown[k]))
                continue;
            const int id = lineResidue(row, shown[k].line);
            const auto place = std::ranges::lower_bound(job.resIdList, id);
            if (place != job.resIdList.end() && *place == id)
                appendf(cells[static_cast<std::size_t>(place - job.resIdList.begin()) * shown.size() + k],
                        " %.3f", number(calculated[i].d));
        }
    }
    return cells;
}

void appendName(const Name &name, std::string &text)
{
    appendf(text, " %4s", name.empty() ? "None" : name.c_str());
}

void appendListing(const Conversion &job, std::string &text)
{
    const auto shown = std::span(columns).first(std::size(columns) - (job.options.dcProton != 0 ? 0 : 1));
    const std::vector<std::string> cells = fillCells(job, shown);
    for (std::size_t line = 0; line < job.resIdList.size(); ++line) {
        const DInfo &row = job.dTab.observed()[static_cast<std::size_t>(job.indexList[line])];
        appendf(text, " %4d %4s %4s", row.resIDI, row.names->resNameI.c_str(), row.names->atomNameI.c_str());
        if (job.dTab.nullChainName == 0)
            appendName(row.names->chainNameI, text);
        if (job.dTab.nullSegName == 0)
            appendName(row.names->segNameI, text);
        for (std::size_t k = 0; k < shown.size(); ++k) {
            const std::string &cell = cells[line * shown.size() + k];
            text += cell.empty() ? noValue : cell;
        }
        text += '\n';
    }
}

// ---- the job ----

/// The residues of the listing, each with its first row, in ascending order. Returns their number.
std::size_t indexResidues(const DTable &dTab, std::span<int> resIdList, std::span<int> indexList)
{
    std::unordered_set<int> known;
    std::size_t count = 0;
    int index = 0;
    for (const DInfo &row : dTab.observed()) {
        const int id = std::max(row.resIDI, row.resIDJ);
        if (row.valid != 0 && row.d < missingCoupling && known.insert(id).second) {
            resIdList[count] = id;
            indexList[count++] = index;
        }
        ++index;
    }
    iSort2(resIdList.first(count), indexList.first(count));
    return count;
}

using Writer = void (*)(const Conversion &job, std::string &text);
constexpr Writer writers[] = {appendRestraints, appendRestraints, appendListing,
                              appendAmides,     nullptr,          appendCountedRows}; // by outFormat

/// The forms of other programs and archives.
struct ArchiveRowOf {
    TableFormat format;
    ArchiveWriter write;
};
constexpr ArchiveRowOf archiveWriters[] = {{formatStar, writeStar},
                                           {formatNef, writeNef},
                                           {formatCyana, writeCyana},
                                           {formatRosettaList, writeRosettaList},
                                           {formatCsv, writeCsv}};

/// Tells what a form has no room for: the chains of several, as CYANA has none.
void tellLoss(TableFormat format, const DTable &dTab, Messages &messages)
{
    std::set<std::string_view> chains;
    forEachValid(dTab, [&](const DInfo &obs, const DCalc &) {
        chains.insert({obs.names->chainNameI.view(), obs.names->chainNameJ.view()});
    });
    if (format == formatCyana && chains.size() > 1)
        messages.warn("trelm: the form has no chains: residues of %zu chains are told apart by their numbers"
                      " alone.\n",
                      chains.size());
}

} // namespace

Status fillConverted(const ConversionOptions &options, DTable &dTab, Messages &messages)
{
    const auto observed = dTab.observed();
    const auto calculated = dTab.calculated();
    RandomStream random;
    bool areFinite = true;
    for (std::size_t i = 0; i < observed.size(); ++i) {
        DInfo &obs = observed[i];
        DCalc &calc = calculated[i];
        if (obs.valid == 0)
            continue;
        calc.valid = 1;
        calc.w = obs.w;
        calc.sigma = obs.sigma;
        calc.d = options.dcNoise != 0 ? static_cast<float>(number(obs.d) + random.gauss() * number(obs.sigma))
                                      : obs.d;
        if (options.normDc != 0) {
            const float f = obs.w;
            calc.d *= f;
            calc.sigma *= f;
            obs.sigma *= f;
            calc.w = obs.w = 1.0f;
        }
        areFinite = areFinite && std::isfinite(calc.d) && std::isfinite(calc.sigma);
    }
    return areFinite ? Status::ok
                     : messages.fail("trelm: with its weight or noise a coupling is no finite number.\n");
}

Status convertTab(const ConversionOptions &options, const DTable &dTab, const std::string &inDName,
                  std::string &text, Messages &messages)
{
    if (const auto *archive = std::ranges::find(archiveWriters, options.outFormat, &ArchiveRowOf::format);
        archive != std::end(archiveWriters)) {
        tellLoss(options.outFormat, dTab, messages);
        archive->write({dTab, inDName, dTab.origin.tensor}, text);
        return Status::ok;
    }
    const std::size_t rows = dTab.dCount + 1; // no more residues than rows
    Block<int> resIdList("convertTab", rows), indexList("convertTab", rows);
    if (!resIdList || !indexList)
        return messages.fail("Error allocating coord buffers.\n");
    const std::size_t residues = indexResidues(dTab, resIdList.span(), indexList.span());
    writers[options.outFormat](
        {inDName, options, dTab, resIdList.span().first(residues), indexList.span().first(residues)}, text);
    return Status::ok;
}

} // namespace trelm
