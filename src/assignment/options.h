// The options of the assignment search.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trelm {

constexpr std::size_t maxClasses = 25;        ///< values of -fixAa
constexpr std::size_t maxMedia = 3;           ///< values of -dcID
constexpr std::size_t maxFixedResidues = 800; ///< values of -fixRes
constexpr int noFixedResidue = -999999;       ///< in the list of fixed residues: none

/// Which assignments a search looks at.
enum class SearchKind {
    random,  ///< some, drawn at random
    all,     ///< all, or all within classes of peaks
    selected ///< all of a few selected peaks
};

struct AssignmentOptions {
    std::vector<int> classes = {};         ///< peaks of each amino acid type; fewer than two: no classes
    std::vector<int> fixedResidues = {};   ///< residues whose assignment is fixed
    int nSel = 0;                          ///< peaks to select for SearchKind::selected
    int dcSelOpt = 1;                      ///< optimise the peak selection
    int needsVector = 0;                   ///< 1: no coupling on a residue without its vector
    std::vector<std::string> media = {""}; ///< alignment media, the segment names in the PDB; 1 to maxMedia
};

/// The tensors that an assignment may have; all limits lie outside of it.
struct TensorWindow {
    float lowDa = -25.0f; ///< Da on the scale of an amide pair, Hz
    float highDa = -3.0f;
    float lowR = 0.0f;
    float highR = 0.7f;
};

} // namespace trelm
