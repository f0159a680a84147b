// The coupling output: report and table, as text.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/statistics.h"
#include "couplings/table_analysis.h"
#include "couplings/tensor.h"
#include "report/parameters.h"
#include "support/numerics/vec3.h"

#include <string>
#include <string_view>

namespace trelm {

/// A place on a sinusoidal map of the sphere, radians.
struct MapPlace {
    double x = 0.0, y = 0.0;
};

/// The place of an axis, or of the opposite direction.
MapPlace mapPlace(const Vec3 &axis, bool inverse);

/// The report of a table, and the table, which readDC reads back. Without a coupling that is compared it ends
/// at the line "DATA SEQUENCE". `remark`: whole lines, or empty.
std::string couplingReport(const FittedTable &table, const TableAnalysis &analysis,
                           const ShownParameters &parameters, std::string_view remark);

/// The table alone. Its head comes even without a valid row.
std::string couplingTable(const FittedTable &table);

/// Appends the statistics of a simulation as DATA lines. REGRESSION OFFSET is that of measured on calculated
/// couplings, SLOPE that of calculated on measured ones.
void appendCompared(const ComparedCouplings &found, std::string &text);

/// Appends irreducible representation, eigensystem and Euler angles; nothing if `eulerFlag` is 0.
void appendEulerInfo(const TensorAnalysis &analysis, std::string &result, int eulerFlag);

/// The short form of an order matrix in reports: its five values, Da(NH) in Hz, and R; R is 0 without Da.
void appendSaupeLines(const Saupe &saupe, const TensorAnalysis &analysis, std::string &text);

} // namespace trelm
