// What the estimates of a tensor's magnitude are asked for.
#pragma once

namespace trelm {

/// The histogram method, of a run and of its random sets.
struct HistogramOptions {
    float daLo = -1000.0f; ///< limits of Da in the fit of a set, Hz
    float daHi = 1000.0f;
    float rhLo = 0.0f; ///< limits of R in the fit of a set
    float rhHi = 0.667f;
    int optExtrem = 1;    ///< average minimum and maximum coupling
    int nBinIn = 0;       ///< number of bins; below 1 is automatic
    int modeFit = 3;      ///< values that are fitted, 2 or 3; with any other number there is no fit
    float sdevDzz = 0.4f; ///< factors of the mean error in the averaging of Dzz and Dyy
    float sdevDyy = 0.9f;

    [[nodiscard]] bool isFitted() const { return modeFit == 2 || modeFit == 3; }
};

/// The likelihood search. Its range of Da also bounds the search of assignments.
struct LikelihoodOptions {
    int mlMap = 0;        ///< write the ranges of the couplings
    int mlClear = 0;      ///< clear the pattern before each point of the search
    float lDaMl = -25.0f; ///< Da grid: low, high, increment, Hz
    float hDaMl = -3.0f;
    float incDaMl = 0.1f;
    float lRMl = 0.0f; ///< R grid: low, high, increment
    float hRMl = 0.7f;
    float incRMl = 0.01f;
};

/// Sets of couplings drawn at random.
struct DrawOptions {
    int sCount = 30;    ///< residues of a set, one of the two fields of -nSel; 0: all
    int histRan = 1000; ///< number of sets
};

/// Those of all magnitude modes.
struct MagnitudeOptions : HistogramOptions, LikelihoodOptions {};

} // namespace trelm
