// Synthetic powder patterns for tests: the couplings of vectors spread evenly over the sphere, with normal
// noise. Synthetic: no molecule stands behind them, so that the tensor is known exactly.
#pragma once

#include "couplings/dipolar.h"

#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>
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

/// A file name's coupling table of such a pattern, N-H pairs of residues 1, 2, 3 ... Returns false if it
/// could not be written.
inline bool writePowder(const std::string &name, const Powder &powder)
{
    std::FILE *fp = std::fopen(name.c_str(), "w");
    if (fp == nullptr)
        return false;
    std::fputs("VARS   RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\n"
               "FORMAT %5d %6s %6s %5d %6s %6s %9.3f %9.3f %.2f\n\n",
               fp);
    int resID = 0;
    for (const float d : powderCouplings(powder)) {
        ++resID;
        std::fprintf(fp, "%5d ALA H %5d ALA N %9.3f %9.3f 1.00\n", resID, resID, static_cast<double>(d),
                     powder.sigma);
    }
    return std::fclose(fp) == 0;
}
