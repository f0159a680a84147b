// The plain best-fit, its statistics block, and the selections that error analysis and histograms share.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"
#include "structure/select.h"

#include <string>
#include <vector>

namespace trelm {

/// One best-fit: fit, coupling table, turned structures. Returns 0, or the status of the failing step after a
/// message.
int simDC(PDBInfo *pdbInfo, const PDBSelectInfo *sInfo, DTable *dTab, TrelmInfo *trelmInfo,
          const char *remark, const std::string &outDName, const std::string &pdbRotName, int verbose);

/// Statistics of measured against calculated couplings as DATA lines; couplings/statistics.h tells how they
/// differ from those of the report. REGRESSION OFFSET is that of measured on calculated couplings, SLOPE that
/// of calculated on measured ones. `result` is cleared, and filled if `verbose` is not 0; verbose 2 also
/// lists the couplings on the standard error stream. Returns 0, or 1 after a message if there is no memory.
int statDC(const DTable &dTab, std::string &result, int verbose);

/// Keeps a random part of the valid calculated couplings: the fraction `frac`, or with `fixed` the number
/// `frac`. Returns how many were kept. Draws from ran3. Without memory the process ends (mzerror).
int selectDcFrac(int *idum, DTable *dTab, float frac, int fixed);

/// Couplings by residue for random selection.
struct ResidueCouplings {
    std::vector<std::vector<float>> dcMat;  ///< couplings of each residue, Hz
    std::vector<std::vector<float>> sigMat; ///< their errors, Hz
};

/// Draws sCount different residues, or all if there are fewer, from ran3 and appends all their couplings.
/// rAveDD becomes the mean of the copied errors, 0 without any. Returns the number of couplings copied.
int selectDcResidue(int *idum, const ResidueCouplings &residues, int sCount, std::vector<float> &coupList,
                    std::vector<float> &sigmaList, float &rAveDD);

} // namespace trelm
