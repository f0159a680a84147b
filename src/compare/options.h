// What comparisons, structure analysis and conversion are asked for.
#pragma once

namespace trelm {

/// opCode of -anA and -anDc.
constexpr int opAdd = 1;
constexpr int opSub = 2;
constexpr int opMul = 3;
constexpr int opDiv = 4;
constexpr int opMax = 5;

/// Comparison of tensors and of coupling sets, analysis of structures.
struct ComparisonOptions {
    int opCode = 2;  ///< what is done with the two operands: one of the five above
    float c1 = 1.0f; ///< scale factors of the two operands
    float c2 = 1.0f;
    int elPdbFlag = 0; ///< structure analysis treats the PDB as: 0 steric, 1 electrostatic, 2 user
};

/// Conversion of coupling tables.
struct ConversionOptions {
    int dcProton = 0;  ///< include proton-proton couplings in the listing
    int dcID = 500;    ///< residue id of the tensor's molecule in restraints
    int normDc = 0;    ///< multiply couplings by their weights
    int outFormat = 2; ///< 0 xplor, 1 cns, 2 tbl, 3 dyana, 4 trelm, 5 rosetta
    int dcNoise = 0;   ///< add noise to couplings
};

} // namespace trelm
