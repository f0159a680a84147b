// The run record: every parameter of a run, with its default at the field.
#pragma once

#include "assignment/options.h"
#include "compare/options.h"
#include "errors/options.h"
#include "magnitude/options.h"
#include "magnitude/results.h"

#include <array>
#include <string>

namespace trelm {

constexpr int maxCharges = 1200;       ///< charges of a simulation
constexpr int maxOrientations = 40001; ///< orientation points on the sphere

/// Domains and ensembles. Most of it comes from the configuration file.
struct DomainOptions {
    int outEflag = 0;       ///< ensemble output; 2 ends the run after the set-up, 3 only lists the states
    int densE = 200;        ///< ensemble density
    int angleDomFlag = 0;   ///< domain angle variation on
    float angleDom[3] = {}; ///< domain angles alpha, beta, gamma, degrees
    int resDom1Origin = 0;  ///< origin residue of each domain
    int resDom2Origin = 0;
    int startResDom2 = 0; ///< residue ranges of the domains
    int startResDom1 = 0;
    int endResDom1 = 0;
    int endResDom2 = 0;
    int digPsiE = 1;        ///< third angle steps in the ensemble
    float lBetaCone = 0.0f; ///< low and high limit of the beta cone, degrees
    float hBetaCone = 30.0f;
    /// Called the half width of the alpha cone, but compared with a length: states whose axis of length 1
    /// reaches further than this along y are left out. From 1 on none is.
    float errAlphaCone = 180.0f;
    int startResPart1 = 0; ///< residues of the angle definition
    int endResPart1 = 0;
    int startResPart2 = 0;
    int endResPart2 = 0;
    int clashFlag = 1;      ///< steric clash check of ensemble states
    float clashDist = 3.6f; ///< clash distance, angstrom
    int initOrientFlag = 1; ///< align along z before ensemble set-up
    int pivotCenter = 1;    ///< pivot at the centre
    int fixRotDomain = 0;   ///< keep the first domain in position
};

/// Electrostatics.
struct ChargeOptions {
    float pow = 1.0f;   ///< power of the potential term
    float kAtt = 0.0f;  ///< attraction term
    int elFlag = 0;     ///< electrostatic run
    int pkaFlag = 1;    ///< use pKa defaults
    int charmm = 0;     ///< partial charges: 0 none, 1 CHARMM19, 2 CHARMM22
    int dipoleFlag = 0; ///< consider the molecule as a dipole
    int chSelFlag = 0;  ///< use charged atoms only
    float pH = 7.0f;
    float concNaCl = 0.2f;     ///< NaCl concentration, molar
    float chDensSurf = -0.47f; ///< surface charge density, e per square nanometre
    int chTerminiFlag = 1;     ///< put charges at the termini
    float kEnergy = 1.0f;      ///< scale of the energy, at the interaction face alone
    float kPot = 1.0f;         ///< scale of the potential
    float kMonoCh = 1.0f;      ///< scale of monopole, dipole and quadrupole charges
    float kDipoCh = 1.0f;
    float kQuadCh = 1.0f;
    double cutoffPot = 6e-6; ///< end of the field: at a wall a distance, angstrom, at a rod a potential, kT/e
    float maxPot = 5.0f;     ///< maximum (plus or minus) used potential, kT/e
    int z1 = 0;              ///< first and last z position in the 3D grid
    int zN = 0;
    float temperaturePot = 298.15f; ///< Boltzmann temperature, kelvin
    int chFlag = 0;                 ///< report electrostatic information
    float iFace = 50.0f;            ///< surface distance of the interaction face, angstrom
};

/// The mode, and the kind of best-fit.
struct ModeOptions {
    int trelmMode = 1;  ///< the mode, 1 to 17
    int spreadMode = 0; ///< best-fit: 0 single, 1 jack, 2 mcDc, 3 mcStruc, 4 rand, 5 exhaust, 6 exhaustSel
};

/// The liquid crystal: its particles, its composition, and how finely it is looked at.
struct ObstacleOptions {
    int lcType = 1;              ///< liquid crystal model: 1 wall, 2 rod, 3 general 3D potential
    float concentration = 0.05f; ///< liquid crystal concentration
    float volSample = 515.0f;    ///< sample volume, microlitres
    float mwLC = 268000.0f;      ///< liquid crystal molecular weight, g/mol
    float massLC = 0.05f;        ///< liquid crystal mass, g
    float unitLengthLC = 1.574f; ///< liquid crystal unit height, angstrom
    float polymerDeg = 1707.0f;  ///< polymerisation degree
    float radiusModel = 20.0f;   ///< half model thickness, angstrom
    float gridSpacing = 0.2f;    ///< angstrom
    int grid3DnX = 1;            ///< grid positions along each axis of a 3D potential
    int grid3DnY = 1;
    int grid3DnZ = 1;
    float grid3DdeltaX = 0.2f; ///< 3D grid spacing along each axis, angstrom
    float grid3DdeltaY = 0.2f;
    float grid3DdeltaZ = 0.2f;
    float includeRim = 0.0f;    ///< rim inclusion of the wall model
    float molarRatio = 3.0f;    ///< ratio of the bicelle lipids
    float lengthModel = 200.0f; ///< length of the model, angstrom
    float orderDiscRim = 0.25f; ///< disc-to-rim fraction
    float lcOrder = 0.8f;       ///< liquid crystal order, 0 to 1
    float radiusAtom = 0.0f;    ///< angstrom
    float rSingleCell = 0.0f;   ///< single-cell radius of the wall model, angstrom
};

/// The orientations of a simulation.
struct SamplingOptions {
    int densityNSC = 100; ///< density of orientations on the sphere
    int digPsiNSC = 18;   ///< number of steps of the third angle
};

/// The atoms of a simulation.
struct AtomOptions {
    int Hflag = 0;    ///< 0 drops hydrogens from the simple PDB selection
    int surfFlag = 1; ///< select surface accessible atoms
};

/// How couplings are fitted.
struct FitOptions {
    int allowFixedDI = 1; ///< use fixed interaction constants when possible, else those of PDB distances
    int yzFlag = 0;       ///< exchange the ordering of the y and z axes in tensor analysis
    int eulerFlag = 1;    ///< solve for Euler angles
};

/// What a report shows.
struct ReportOptions {
    int verbFlag = 1; ///< coupling output in extended format
    int qFlag = 1;    ///< 0 Q from rms, 1 Q from the order matrix, 2 a standard deviation
    int rotN = 0;     ///< index of the rotation of the PDB, or of a hinge axis
};

/// Every parameter of a run. Option names stand in the table of command/params.
struct TrelmInfo : DomainOptions,
                   ChargeOptions,
                   MagnitudeOptions,
                   MagnitudeResult,
                   ModeOptions,
                   ObstacleOptions,
                   SamplingOptions,
                   AtomOptions,
                   FitOptions,
                   ReportOptions,
                   JackknifeOptions,
                   CouplingNoiseOptions,
                   StructuralNoiseOptions,
                   ComparisonOptions,
                   ConversionOptions,
                   DrawOptions,
                   AssignmentOptions,
                   TensorWindow {
    int validCountD = 0; ///< couplings that survive selection and mapping
};

/// A field of DcInfo below this counts as unset.
constexpr int unsetResID = -99999;

/// The window of couplings.
struct DcInfo {
    int segFirst = -999999; ///< first residue of the coupling segment
    int segLast = -999999;  ///< last residue of the segment
    int segID = 1;          ///< segment id
    int segStep = 0;        ///< segment step
    int aFirst = -999999;   ///< first residue in the PDB that corresponds to segFirst
    int excludeMode = 3;    ///< 1 exclusive, 2 inclusive, 3 inclusive with the maximum range
};

/// The fatal exit of the numerical code: three lines on the standard error stream, then the process ends with
/// status 1, without the tear-down and the memory balance of other failures.
[[noreturn]] void mzerror(const char *text);

} // namespace trelm
