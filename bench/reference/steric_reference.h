// Plain forms of the steric kernels: positions times atoms, as the method tells it. They judge the fast ones.
#pragma once

#include "simulation/obstacle/steric.h"

#include <span>
#include <vector>

namespace trelm {

/// The axes of one orientation, each with its own trigonometry. Step: of the third angle, from 0.
Turn turnPlain(const double *dot, int step, int digit_psi);

/// The atoms of one orientation as the plain form turns them.
struct TurnedAtoms {
    std::vector<float> xJ, yJ;
};

/// Turns all atoms; yJ only with `withSide`.
void turnAtomsPlain(const Coordinates &atoms, const Axis &column1, const Axis &column2, bool withSide,
                    TurnedAtoms &turnedAtoms);

/// One position: is any atom in the way? The first hit ends the scan.
bool touchesWallPlain(const TurnedAtoms &turnedAtoms, float wallLimit);
bool touchesRodPlain(const TurnedAtoms &turnedAtoms, float positionDist, float reach);

/// stericAlignment without its progress lines; `allowedCount` gets the free orientations of each position.
int stericAlignmentPlain(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                         Saupe &saupe, std::vector<double> &allowedCount);

} // namespace trelm
