// Noise on a structure: on the vectors between coupled atoms, or on the backbone angles.
//
// All draws come from the generators of support/numerics/random.h, in the order told at each function: the
// same run gives the same structure. One seed serves ran1 and ran3 in turns.
#pragma once

#include "couplings/dipolar.h"
#include "errors/options.h"
#include "ground/messages.h"
#include "structure/pdb.h"
#include "structure/rotate.h"
#include "support/numerics/random.h"

#include <array>
#include <span>
#include <string_view>

namespace trelm {

/// The narrowest Gaussian cone, degrees: the narrower it is, the more angles are drawn in vain, about 72 /
/// width of them for each that is taken, and soon without end. A narrower one moves no atom.
constexpr double minConeWidth = 1e-6;

/// The cone on which a noisy vector lies around the true one.
struct ConeSetup {
    double coneWidth = 5.0; ///< standard deviation of the half angle, degrees; 0 or below: no noise
    int coneDig = 360;      ///< positions around the cone
    int coneFix = 0;        ///< 1: coneWidth is the half angle itself
    double rotInc = 1.0;    ///< degrees from one position to the next

    [[nodiscard]] bool hasNoise() const { return coneFix != 0 ? coneWidth > 0.0 : coneWidth >= minConeWidth; }
};

/// Which residue of the structure belongs to the first of the couplings.
struct ResidueOffset {
    int aFirst = 0;                ///< number in the structure
    int segFirst = 0, segLast = 0; ///< numbers in the couplings
};

/// What has to be added to a coupling's residue number; a sum beyond int becomes its limit.
int offsetOf(const ResidueOffset &offset);

ConeSetup coneOf(const ConeOptions &options);

/// Fails after a message if vectors have no place on the cone.
Status checkPositions(const ConeOptions &options, Messages &messages);

/// Warns of a width set by the user that moves no atom though it is above 0, or is wider than an angle can
/// be.
void warnOfWidth(const ConeOptions &options, Messages &messages);

/// Turns r around the unit vector A, on the cone of half angle Gamma (radians), by w degrees. A vector on the
/// axis stays as it is.
void rotCone(const Axis &A, double w, double Gamma, Axis &r);

/// An angle of the cone, radians; below 0 on the other side of the axis. Draws gauss and ran1 in pairs and
/// takes an angle where its sine is above the second: a ring around the axis holds places in proportion to
/// it. A fixed cone has its own angle, and nothing is drawn.
double drawAngle(RandomStream &random, const ConeSetup &cone);

/// Moves a vector, angstrom, to a random place on its cone; its length is kept. Draws gauss and ran1 in pairs
/// until an angle is taken (none of them with a fixed cone), then ran3. Returns the length.
float addVecNoise(RandomStream &random, std::array<float, 3> &coor, const ConeSetup &cone);

/// A molecule whose atoms are moved, and the table whose rows they belong to.
struct NoiseTarget {
    Conformation molecule;
    DTable &dTab;
};

/// Turns phi and psi of every residue by random angles, phi drawn first, and builds the calculated rows anew
/// with the run's allowFixedDI. Residue after residue along the list: a turn moves all atoms on the shorter
/// side.
void addPhiPsiNoise(RandomStream &random, const NoiseTarget &target, const ConeSetup &cone,
                    const ResidueOffset &offset, int allowFixedDI, Messages &messages);

/// Finds the places of the atoms of a name again after they were moved, a name with wildcards expanded with
/// 1, 2, 3. Nothing in the molecule changes: whoever moved them has written their places.
void modifyAtomCoorList(const PDBInfo &pdbInfo, int resID, std::string_view atomName,
                        std::string_view chainName, std::string_view segName, SideAtoms &atoms);

/// Moves the vectors of the rows with a mark in dCalcValid (one for each row). Of a pair the second atom
/// moves. Three equivalent atoms are moved to one place: their mean stands for them. A row whose atoms are
/// found no more becomes invalid. Rows that share an atom move it in turns. Returns the number of rows moved.
int addPdbNoise(const NoiseTarget &target, const ConeSetup &cone, int aOff, std::span<const int> dCalcValid,
                RandomStream &random);

} // namespace trelm
