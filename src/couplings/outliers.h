// Couplings that do not belong to the fit of the others.
//
// Externally studentised residuals against the limit of Bonferroni, one coupling after the other: the worst
// one is taken out and the rest fitted again. Two that pull the tensor the same way can hide each other, so a
// robust measure stands beside: where several rows pass the limit by it and none by the first, they are taken
// out together, and the worst of them is tested against the fit without all of them.
// Sources: Cook and Weisberg, Residuals and Influence in Regression (1982), chapter 2; Rousseeuw and Leroy,
// Robust Regression and Outlier Detection (1987), chapter 1.
#pragma once

#include "couplings/quality_rows.h"

#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// The chance that a table without outliers shows one.
constexpr double outlierChance = 0.01;

/// What a row is to the fit of all fitted rows; 0 where the fit has too few for it.
struct RowResidual {
    double leverage = 0.0;    ///< 0 to 1
    double studentised = 0.0; ///< residual over its standard deviation from the fit without the row
    double robust = 0.0;      ///< residual over 1.4826 times the median distance from the median
    double leftOut = 0.0;     ///< Hz: observed minus predicted by the fit without the row
};

/// One for each row; rows that are not fitted have zeros but for `leftOut`.
std::vector<RowResidual> residualsOf(std::span<const QualityRow> rows, const NormalSolution &solution);

/// A row that was taken out, and the fit without it and those before it.
struct Outlier {
    std::size_t row = 0;       ///< place among the rows
    double studentised = 0.0;  ///< when it was taken out
    double leverage = 0.0;     ///< then
    double leftOut = 0.0;      ///< Hz, then
    double limit = 0.0;        ///< what `studentised` had to pass
    double robust = 0.0;       ///< as of RowResidual, in the fit of all rows
    bool wasHidden = false;    ///< found by the robust measure
    double da = 0.0, dr = 0.0; ///< of the fit without, no unit
    double q = 0.0;            ///< Q of the fit without: rms of residuals over that of observed
};

/// The outliers in the order in which they were taken out; never more than a third of the rows, nor more
/// than 100. yzFlag: as FitOptions.
std::vector<Outlier> findOutliers(std::span<const QualityRow> rows, int yzFlag);

/// The limit for the largest of n studentised residuals of this many degrees of freedom.
double outlierLimit(int rows, int degrees);

} // namespace trelm
