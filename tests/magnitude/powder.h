// Synthetic powder patterns for tests: the couplings of vectors spread evenly over the sphere, with normal
// noise. Synthetic: no molecule stands behind them, so that the tensor is known exactly.
#pragma once

#include "common/heard.h"
#include "couplings/dipolar.h"
#include "magnitude/observed.h"

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

/// The tensor and the size of a pattern.
struct Powder {
    double da = -10.3; ///< Hz
    double rhombicity = 0.22;
    int count = 5000;   ///< couplings
    double sigma = 0.5; ///< their error, Hz: noise of this size is added
    unsigned seed = 1;
};

/// The couplings, Hz. The vectors stand on a spiral of equal areas (Fibonacci's), so that a pattern of a few
/// hundred has its extremes and its peak; only the noise depends on the seed.
inline std::vector<float> powderCouplings(const Powder &powder)
{
    std::mt19937 engine(powder.seed);
    std::normal_distribution<double> noise(0.0, 1.0);
    const double turn = std::numbers::pi * (3.0 - std::sqrt(5.0));
    std::vector<float> couplings;
    for (int i = 0; i < powder.count; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / powder.count;
        const double rhombic = 1.5 * powder.rhombicity * (1.0 - z * z) * std::cos(2.0 * turn * i);
        couplings.push_back(
            static_cast<float>(powder.da * (3.0 * z * z - 1.0 + rhombic) + powder.sigma * noise(engine)));
    }
    return couplings;
}

/// A table of such a pattern, N-H pairs of residues 1, 2, 3 ...
inline trelm::DTable powderTable(const Powder &powder)
{
    using namespace trelm;
    DTable table;
    const auto count = static_cast<std::size_t>(powder.count);
    table.dObsList = Block<DInfo>("powder", count);
    table.dCalcList = Block<DCalc>("powder", count);
    table.dCount = count;
    int resID = 0;
    for (const float d : powderCouplings(powder)) {
        DInfo &row = table.dObsList[static_cast<std::size_t>(resID++)];
        row.resIDI = row.resIDJ = resID;
        row.d = d;
        row.sigma = static_cast<float>(powder.sigma);
        row.w = 1.0f;
        row.valid = 1;
    }
    return table;
}

/// The same couplings as the estimates take them.
inline trelm::ObservedCouplings observedPowder(const Powder &powder)
{
    trelm::ObservedCouplings observed;
    trelm::Heard heard;
    if (collectObserved(powderTable(powder), observed, heard.messages) != trelm::Status::ok)
        observed = {};
    return observed;
}
