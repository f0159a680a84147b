#include "report/assignment_table.h"

#include "support/text/text.h"

#include <cmath>

namespace trelm {
namespace {

void appendSecond(const Certainty &certainty, std::span<const int> resIdList, std::string &text)
{
    if (!std::isfinite(certainty.secondScore)) {
        appendf(text, "REMARK Second-best assignment: more than %.3f above.\n", certaintyReach);
        return;
    }
    appendf(text, "REMARK Second-best assignment: score %.3f; it has", certainty.secondScore);
    for (const PeakCertainty &peak : certainty.peaks)
        if (const int row = certainty.second[peak.peak]; row != peak.row)
            appendf(text, " peak %d on %d", resIdList[peak.peak], resIdList[row]);
    text += ".\n";
}

void appendUndecided(const Certainty &certainty, std::span<const int> resIdList, std::string &text)
{
    std::string undecided;
    for (const PeakCertainty &peak : certainty.peaks)
        if (peak.gap < undecidedGap)
            appendf(undecided, " %d", resIdList[peak.peak]);
    appendf(text, "REMARK Undecided peaks, gap below %.2f:%s.\n", undecidedGap,
            undecided.empty() ? " none" : undecided.c_str());
}

void appendPeak(const PeakCertainty &peak, std::span<const int> resIdList, std::string &text)
{
    appendf(text, "%6d %6d %9.3f %5d ", resIdList[peak.peak], resIdList[peak.row], peak.gap,
            peak.gap < undecidedGap ? 0 : 1);
    const char *before = "";
    for (const auto &[row, gap] : peak.alternatives) {
        appendf(text, "%s%d:%.3f", before, resIdList[row], gap);
        before = ",";
    }
    text += peak.alternatives.empty() ? "-\n" : "\n";
}

} // namespace

std::string certaintyTable(const Certainty &certainty, std::span<const int> resIdList)
{
    std::string text;
    appendf(text, "REMARK Best assignment: score %.3f, the sum of ((D - calculated) W)^2.\n",
            certainty.score);
    appendSecond(certainty, resIdList, text);
    appendUndecided(certainty, resIdList, text);
    appendf(
        text,
        "REMARK GAP: by how much the score rises with the peak on any other residue; %.3f: that or more.\n",
        certaintyReach);
    appendf(text, "REMARK ELSEWHERE: residue:rise, where that is below %.2f.\n", undecidedGap);
    if (!certainty.isProved)
        text += "REMARK Not proved: the search was interrupted, and gaps may be smaller.\n";
    text += "\nVARS   PEAK RESID GAP DECIDED ELSEWHERE\nFORMAT %6d %6d %9.3f %5d %s\n\n";
    for (const PeakCertainty &peak : certainty.peaks)
        appendPeak(peak, resIdList, text);
    return text;
}

} // namespace trelm
