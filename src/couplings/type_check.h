// Whether the types of coupling in one fit agree: signs turned and values scaled show when a type is
// predicted by the others.
//
// A file does not say which signs its values have (all types that of N-H, or physical ones, where a pair
// without N has the other sign), nor whether a type was brought to the size of N-H couplings. Each type of
// three couplings or more is tried as it is, turned, normalised, and both, all types at once, and the
// combination of the smallest chi-square is looked at: what it changes has to fit far worse unchanged.
#pragma once

#include "couplings/quality_rows.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace trelm {

/// What a type is to the rest.
enum class TypeVerdict {
    agrees,
    turned,           ///< its sign
    normalised,       ///< its values are multiplied by the constant of N-H over its own
    turnedNormalised, ///< both
    scaled,           ///< the slope is another one
    onlyType,         ///< there is no other
    tooFew,           ///< couplings: nothing can be said
    notPredicted,     ///< the rest does not determine the tensor
};

/// Whether something is wrong with a type of this verdict.
bool isDoubtful(TypeVerdict verdict);

/// Couplings of one type.
struct TypeQuality {
    std::string name;
    double constant = 0.0;                   ///< Hz, mean magnitude of the interaction constant
    int count = 0;                           ///< that are fitted
    double rms = 0.0, q = 0.0;               ///< in the fit of all: Hz, and over the rms of observed
    double slope = 0.0, offset = 0.0;        ///< of observed on calculated, offset in Hz; 0 for fewer than 2
    bool isPredicted = false;                ///< the rest determines the tensor
    double leftOutRms = 0.0, leftOutQ = 0.0; ///< predicted by the rest
    double leftOutSlope = 0.0, leftOutSlopeError = 0.0; ///< of observed on predicted, through 0
    Saupe rest = {};                                    ///< Saupe vector of the rest
    TypeVerdict verdict = TypeVerdict::tooFew;
    double factor = 1.0; ///< observed over what the rest takes it for: -1 of a turned type
};

struct TypeCheck {
    std::vector<TypeQuality> types;
    bool signsArePhysical = false; ///< what is turned are the types without N, and all of them
    bool areAllNormalised = false; ///< all types whose constant is not that of N-H
};

/// The types of a table and their normal equations.
struct TypeSums {
    std::vector<NormalSums> sums;     ///< of the fitted rows, by type
    std::vector<double> constantSums; ///< Hz

    /// A row that is not fitted makes its type known, no more.
    void add(const QualityRow &row);
};

/// The verdicts alone, from sums: for tables of any length. `names` are those of the types.
TypeCheck checkTypes(const TypeSums &sums, std::span<const std::string> names);

/// The statistics of each type, from its rows.
void addTypeStatistics(std::span<const QualityRow> rows, TypeCheck &check);

/// A verdict in words, "sign turned against the rest (turn its values)".
std::string verdictText(const TypeCheck &check, const TypeQuality &type);

} // namespace trelm
