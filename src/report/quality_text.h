// What a fit is worth, as text: DATA lines, and at the end a table of the couplings in the form of the
// others.
#pragma once

#include "couplings/quality.h"

#include <string>

namespace trelm {

/// `shownFree`: the way to leave out whose Q stands as DATA Q_FREE.
std::string qualityText(const DTable &dTab, const FitQuality &quality, LeaveOut shownFree);

/// A row as it is told: "GLY 76 H - GLY 76 N".
std::string rowText(const DInfo &row);

/// REMARK lines of the couplings that were dropped, for the report of the fit; empty without any.
std::string droppedRemark(const DTable &dTab, const FitQuality &quality);

} // namespace trelm
