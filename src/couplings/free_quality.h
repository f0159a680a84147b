// Q of couplings that took no part in the fit that predicts them.
// Source of leaving out one by one without new fits: the residual e / (1 - h) of linear regression, h the
// leverage (Allen, Technometrics 16 (1974) 125: PRESS).
#pragma once

#include "couplings/quality_rows.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace trelm {

/// How couplings are left out.
enum class LeaveOut { oneByOne, byType, inParts };

/// Rows that were left out together.
struct FreePart {
    std::size_t part = 0; ///< place of the type, or number of the random part from 0 on
    int count = 0;
    bool isPredicted = false; ///< the rest determines a tensor
    double rms = 0.0;         ///< Hz, of observed minus predicted
    double q = 0.0;           ///< rms over that of the observed
};

struct FreeQuality {
    LeaveOut kind = LeaveOut::oneByOne;
    int count = 0;                      ///< couplings that could be predicted
    double rms = 0.0;                   ///< Hz
    double q = 0.0;                     ///< over all of them
    int seed = 0;                       ///< of the random parts
    std::vector<FreePart> parts = {};   ///< none of one by one
    std::vector<double> predicted = {}; ///< Hz, by row; the calculated coupling of rows that nothing predicts
};

/// How it is asked for: kind, and of random parts their number (2 or more) and seed.
struct FreeOptions {
    LeaveOut kind = LeaveOut::oneByOne;
    int parts = 5;
    int seed = 1;
};

/// Leaves out as asked. Random parts differ in size by one row at most.
FreeQuality leaveOut(std::span<const QualityRow> rows, const FreeOptions &options);

} // namespace trelm
