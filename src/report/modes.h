// What a run does.
#pragma once

namespace trelm {

/// The mode of a run, named after its flag.
enum Mode : int {
    modeStTrelm = 1,
    modeStTrelmFree = 2,
    modeStTrelmGrid = 3,
    modeElTrelm = 4,
    modeElTrelmFree = 5,
    modeElTrelmGrid = 6,
    modeBestFit = 7,
    modeCsSim = 8,
    modeDaHist = 9,
    modeDaMl = 10,
    modeDaFlex = 11,
    modeAsRan = 12,
    modeAnDc = 13,
    modeAnA = 14,
    modeAnPdb = 15,
    modeStruc = 16,
    modeConv = 17,
};

/// The kind of best-fit: one fit, a mapping of its error, or a search of assignments.
enum SpreadKind : int {
    spreadSingle = 0,
    spreadJack = 1,
    spreadMcDc = 2,
    spreadMcStruc = 3,
    spreadRand = 4,
    spreadExhaust = 5,
    spreadExhaustSel = 6,
};

/// Whether a kind of best-fit puts couplings on other residues than those of the table.
constexpr bool searchesAssignment(SpreadKind kind)
{
    return kind == spreadRand || kind == spreadExhaust || kind == spreadExhaustSel;
}

/// The mode, and the kind of best-fit.
struct ModeOptions {
    Mode trelmMode = modeStTrelm;
    SpreadKind spreadMode = spreadSingle;
};

} // namespace trelm
