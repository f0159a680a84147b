// A statistics block, and the selections that error analysis and histograms share.
#pragma once

#include "couplings/dipolar.h"
#include "ground/messages.h"
#include "support/numerics/random.h"

#include <span>
#include <string>
#include <vector>

namespace trelm {

/// Statistics of measured against calculated couplings as DATA lines; couplings/statistics.h tells how they
/// differ from those of the report. REGRESSION OFFSET is that of measured on calculated couplings, SLOPE that
/// of calculated on measured ones. `result` is replaced. Fails after a message if there is no memory.
Status statDC(const DTable &dTab, std::string &result, Messages &messages);

/// Keeps a random part of the rows that are marked: the fraction `frac`, or with `fixed` the number `frac`.
/// Returns how many were kept. Draws from ran3. Without memory the run ends (OutOfMemory).
int selectDcFrac(RandomStream &random, std::span<unsigned char> marks, float frac, int fixed,
                 Messages &messages);

/// Couplings by residue for random selection.
struct ResidueCouplings {
    std::vector<std::vector<float>> dcMat;  ///< couplings of each residue, Hz
    std::vector<std::vector<float>> sigMat; ///< their errors, Hz
};

/// Draws sCount different residues, or all if there are fewer, from ran3 and appends all their couplings.
/// rAveDD becomes the mean of the copied errors, 0 without any. Returns the number of couplings copied.
int selectDcResidue(RandomStream &random, const ResidueCouplings &residues, int sCount,
                    std::vector<float> &coupList, std::vector<float> &sigmaList, float &rAveDD);

} // namespace trelm
