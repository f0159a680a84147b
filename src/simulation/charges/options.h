// Charges, and the fields that they feel.
#pragma once

namespace trelm {

/// Partial charges of a force field.
enum CharmmKind : int { charmmNone = 0, charmm19 = 1, charmm22 = 2 };

/// The charges of a molecule.
struct ChargeOptions {
    int elFlag = 0;  ///< electrostatic run
    int pkaFlag = 1; ///< without a charge file: charges by pKa or a table
    CharmmKind charmm = charmmNone;
    int chTerminiFlag = 1; ///< put charges at the termini
    float pH = 7.0f;
    int dipoleFlag = 0;   ///< replace the charges by a dipole
    int chSelFlag = 0;    ///< use charged atoms only
    float kMonoCh = 1.0f; ///< scale of monopole, dipole and quadrupole charges
    float kDipoCh = 1.0f;
    float kQuadCh = 1.0f;
};

/// The field of a charged wall or rod in salt.
struct FieldOptions {
    float concNaCl = 0.2f;          ///< NaCl concentration, molar
    float chDensSurf = -0.47f;      ///< surface charge density, e per square nanometre
    float temperaturePot = 298.15f; ///< Boltzmann temperature, kelvin
    float kPot = 1.0f;              ///< scale of the potential
    double cutoffPot = 6e-6; ///< end of the field: at a wall a distance, angstrom, at a rod a potential, kT/e
    float kEnergy = 1.0f;    ///< scale of the energy, at the interaction face alone
    float iFace = 50.0f;     ///< surface distance of the interaction face, angstrom
    float pow = 1.0f;        ///< power of the potential term: read, and of no effect
    float kAtt = 0.0f;       ///< attraction term: shown alone
    int chFlag = 0;          ///< report electrostatic information
};

/// A potential at the points of a grid in space, and the sample that gives each particle its cell.
struct Grid3DOptions {
    int grid3DnX = 1; ///< grid positions along each axis
    int grid3DnY = 1;
    int grid3DnZ = 1;
    float grid3DdeltaX = 0.2f; ///< spacing along each axis, angstrom
    float grid3DdeltaY = 0.2f;
    float grid3DdeltaZ = 0.2f;
    int z1 = 0; ///< first and last z position in use, from 1
    int zN = 0;
    float maxPot = 5.0f;         ///< maximum (plus or minus) used potential, kT/e
    float volSample = 515.0f;    ///< sample volume, microlitres
    float mwLC = 268000.0f;      ///< liquid crystal molecular weight, g/mol
    float massLC = 0.05f;        ///< liquid crystal mass, g
    float unitLengthLC = 1.574f; ///< liquid crystal unit height, angstrom
    float polymerDeg = 1707.0f;  ///< polymerisation degree
};

} // namespace trelm
