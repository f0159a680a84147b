// What a fit is worth: one record of all that tells how far its tensor can be believed. Reports write it.
//
// Couplings, residuals and rms are in Hz and not weighted; W of a table takes a row out if it is 0, and
// changes nothing else here. Source of Q: Cornilescu et al., J. Am. Chem. Soc. 120 (1998) 6836; of the R
// factor and the size of a tensor: Clore and Garrett, J. Am. Chem. Soc. 121 (1999) 9008.
#pragma once

#include "couplings/covariance.h"
#include "couplings/free_quality.h"
#include "couplings/outliers.h"
#include "couplings/type_check.h"

#include <optional>
#include <vector>

namespace trelm {

/// The agreement of observed and calculated couplings under its names.
struct Agreement {
    int count = 0;
    double rms = 0.0;                 ///< Hz
    double q = 0.0;                   ///< rms over that of the observed
    double qBySize = 0.0;             ///< rms on the scale of N-H over root of Da^2 (4 + 3 R^2) / 5
    double rFactor = 0.0;             ///< q over root 2
    double rFactorBySize = 0.0;       ///< qBySize over root 2
    double correlation = 0.0;         ///< Pearson's, -1 to 1
    double slope = 0.0, offset = 0.0; ///< of observed on calculated, Hz
};

struct FitQuality {
    int unknowns = 0;         ///< of the tensor: 5, with Da and Dr held 3, 0 of a given tensor
    int degreesOfFreedom = 0; ///< couplings minus unknowns, can be below 0
    double condition = 0.0;   ///< largest over smallest singular value of the design; infinite if it is 0
    double chiSquare = 0.0;   ///< sum of squared residuals over errors
    double unitWeight = 0.0;  ///< its root over the degrees of freedom: residuals in units of the errors
    bool hasErrors = true;    ///< false: the table has no error above 0
    double errorScale = 1.0;  ///< unitWeight where it is above 1 or nothing is known of the errors

    Saupe saupe = {};        ///< of the fitted tensor
    TensorAnalysis analysis; ///< of the same
    /// Nothing of another fit than the linear one, nor of couplings that do not determine it. `errors` are
    /// those of the errors as given, which is nothing without errors; `scaledErrors` with errorScale.
    std::optional<TensorErrors> errors, scaledErrors;

    std::vector<QualityRow> rows;
    std::vector<RowResidual> residuals; ///< one for each row
    double meanLeverage = 0.0, largestLeverage = 0.0;
    TypeCheck byType;
    std::vector<Outlier> outliers;
    std::vector<Outlier> dropped;  ///< that a fit before this one had, and that this one was made without
    Agreement fitted, notFitted;   ///< the second: of rows that were left out of the fit
    std::vector<FreeQuality> free; ///< first one by one, by type if there are several, then as asked for
};

/// The types alone, without their statistics: what a run warns of, whatever it writes.
TypeCheck checkTypesOf(const FitInput &input);

/// How a fit is judged.
struct QualityOptions {
    int yzFlag = 0;                       ///< as FitOptions
    std::optional<FreeOptions> free = {}; ///< beside leaving out one by one and by type
};

/// Judges a fit. Fails after a message where the tensor has no axes: it is no number.
Status assessQuality(const FitInput &input, const FitResult &fit, const QualityOptions &options,
                     FitQuality &quality, Messages &messages);

} // namespace trelm
