// The parameters of a run, as its report shows them.
#pragma once

#include "report/modes.h"

namespace trelm {

struct AlignmentOptions;
struct ComparisonOptions;
struct ConversionOptions;
struct FitOptions;
struct MagnitudeOptions;
struct MagnitudeResult;
struct ReportOptions;
struct SampleGeometry;

/// The records of a run whose values stand at the head of its reports. An argument, and no more, for it holds
/// references.
struct ShownParameters {
    Mode trelmMode;
    const FitOptions &fit;
    const ReportOptions &report;
    const AlignmentOptions &alignment;
    const MagnitudeOptions &magnitude;
    const ComparisonOptions &comparison;
    const ConversionOptions &conversion;
    const SampleGeometry *geometry = nullptr;  ///< of a simulation; null: as the options have it
    const MagnitudeResult *estimate = nullptr; ///< of a magnitude mode; null: zeros
};

} // namespace trelm
