// The orientations of a simulation: each dot on the sphere with equal steps of a third angle.
#pragma once

#include "couplings/tensor.h"
#include "ground/messages.h"
#include "structure/rotate.h"
#include "support/text/progress.h"

#include <span>
#include <vector>

namespace trelm {

// Saupe elements of one orientation, from axes of the molecule in the laboratory: their third element is the
// direction cosine with the director.
double Szz(const Axis &tensor_zaxis);
double Sxx(const Axis &tensor_xaxis);
double Syy(const Axis &tensor_yaxis);
double Sxy(const Axis &tensor_xaxis, const Axis &tensor_yaxis);
double Sxz(const Axis &tensor_xaxis, const Axis &tensor_zaxis);
double Syz(const Axis &tensor_yaxis, const Axis &tensor_zaxis);

/// One orientation.
struct Turn {
    Saupe saupe;  ///< its elements: Szz, Sxx - Syy, Sxy, Sxz, Syz
    Axis column1; ///< the obstacle's normal (laboratory x) in the frame of the molecule
    Axis column2; ///< the direction at right angles to normal and director, likewise
    Axis column3; ///< the director, likewise
};

/// A set of orientations: dots outermost, then steps of the third angle.
struct OrientationSet {
    std::span<const double> dots; ///< three values each
    std::vector<SinCos> psi;      ///< one for each step
    [[nodiscard]] int count() const { return static_cast<int>(dots.size() / 3 * psi.size()); }
};

OrientationSet makeOrientationSet(std::span<const double> dots, int digit_psi);

/// What all steps of the third angle share: the spherical angles of a dot, and the elements, which do not
/// depend on the third angle.
struct DotTurn {
    SinCos theta, phi;
    Saupe saupe;
};

DotTurn makeDotTurn(const double *dot);

Turn makeTurn(const DotTurn &dot, const SinCos &psi);

/// Calls visit(const Turn &) for each orientation in order. The trigonometry is done once for each dot and
/// once for each step.
template <class Visit>
void forEachTurn(const OrientationSet &set, Visit visit)
{
    for (std::size_t i = 0; i + 2 < set.dots.size(); i += 3) {
        const DotTurn dot = makeDotTurn(&set.dots[i]);
        for (const SinCos &psi : set.psi)
            visit(makeTurn(dot, psi));
    }
}

/// The same, with progress lines.
template <class Visit>
void forEachTurnShown(const OrientationSet &set, Messages &messages, Visit visit)
{
    Progress progress(messages, "REMARK Orientation ", set.count());
    int done = 0;
    forEachTurn(set, [&](const Turn &turn) {
        progress.show(++done);
        visit(turn);
    });
    progress.end();
}

inline void addWeighted(Saupe &sum, const Saupe &saupe, double weight)
{
    for (std::size_t k = 0; k < sum.size(); ++k)
        sum[k] += saupe[k] * weight;
}

/// From weighted sums to averages. Fails after a message of the routine if the weights sum up to 0
/// or to no finite number. A sum below 0, which free positions that count negative can give, warns: the
/// averages then have the wrong sign and size.
Status divideByWeights(const char *routine, double total, Saupe &saupe, Messages &messages);

} // namespace trelm
