// One thing that a check of a coupling table has found.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trelm {

enum class TableFault {
    noValues,       ///< no column D
    noErrors,       ///< no column DD
    isReport,       ///< D was calculated
    noNumber,       ///< cells that are no number
    partlyNumber,   ///< cells that begin with one
    cutNumber,      ///< fractions in a column of integers
    beyondInt,      ///< integers that are too large
    sentinel,       ///< values that stand for none in other programs
    beyondPair,     ///< couplings that the pair cannot have
    twice,          ///< rows of a pair that has one already
    someErrorsZero, ///< DD 0 beside others
    allErrorsZero,
    severalScales,  ///< several kinds of pairs, all of weight 1
    otherResidues,  ///< residue names that are not those of the structure
    shiftedNumbers, ///< the same, where another numbering makes them agree
};

/// How often, in how many rows or names, and where.
struct TableFinding {
    TableFault fault;
    std::size_t count = 0, all = 0;
    std::string column = {};                ///< of a fault of cells
    std::vector<std::string> first = {};    ///< some of the places
    int shift = 0, firstResidue = 0;        ///< of the numbers that agree: what to add, and the value of -a1
    std::size_t agreeing = 0, compared = 0; ///< names with this shift
};

} // namespace trelm
