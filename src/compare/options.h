// What comparisons, structure analysis and conversion are asked for.
#pragma once

namespace trelm {

/// What -anA and -anDc do with their two operands.
enum OpCode : int { opAdd = 1, opSub = 2, opMul = 3, opDiv = 4, opMax = 5 };

/// How a structure is analysed: by its shape, by its charges too, or in a frame of the user's.
enum PdbKind : int { asShape = 0, asCharged = 1, asUserFrame = 2 };

/// The formats of a coupling table, named after their flags. That of trelm is the one that readDC reads.
enum TableFormat : int {
    formatXplor = 0,
    formatCns = 1,
    formatTbl = 2,
    formatDyana = 3,
    formatTrelm = 4,
    formatRosetta = 5,
    formatStar = 6, ///< from here on forms that other programs and archives have
    formatNef = 7,
    formatCyana = 8,
    formatRosettaList = 9,
    formatCsv = 10,
};

/// Comparison of tensors and of coupling sets, analysis of structures.
struct ComparisonOptions {
    OpCode opCode = opSub;
    float c1 = 1.0f; ///< scale factors of the two operands
    float c2 = 1.0f;
    PdbKind elPdbFlag = asShape;
};

/// Conversion of coupling tables.
struct ConversionOptions {
    int dcProton = 0; ///< include proton-proton couplings in the listing
    int dcID = 500;   ///< residue id of the tensor's molecule in restraints
    int normDc = 0;   ///< multiply couplings by their weights
    TableFormat outFormat = formatTbl;
    int dcNoise = 0; ///< add noise to couplings
};

} // namespace trelm
