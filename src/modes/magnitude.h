// The modes that estimate the tensor's magnitude from histograms. They read their own input.
#pragma once

#include "ground/messages.h"
#include "magnitude/observed.h"
#include "magnitude/results.h"
#include "modes/run.h"

namespace trelm {

/// The table of a run, and the couplings of it that an estimate goes by.
struct ObservedTable {
    DTable dTab;
    DcInfo window; ///< settled by the table
    ObservedCouplings couplings;
};

/// Reads the table of a run, chooses the couplings, tells their number, and collects them. Fails after a
/// message: the table cannot be read, no coupling is left, or what collectObserved refuses.
Status readObserved(const Run &run, ObservedTable &observed, Messages &messages);

/// Writes the report of an estimate, which shows `result`, with a table. Fails after a message if the
/// output cannot be written to its end.
Status reportMagnitude(const Run &run, const MagnitudeResult &result, const DTable &dTab, Messages &messages);

// Both fail after their messages.
Status estimateByHistogram(const Run &run, Messages &messages);
Status estimateByMotion(const Run &run, Messages &messages);

} // namespace trelm
