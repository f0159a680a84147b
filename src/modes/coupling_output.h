// Reports, tables and turned structures as files.
#pragma once

#include "couplings/table_analysis.h"
#include "modes/run.h"

#include <span>
#include <string>
#include <string_view>

namespace trelm {

struct AtomLabel;
struct EulerLists;

/// What the reports of a run show of it.
ShownParameters parametersOf(const Run &run);

/// Where a report goes, and what stands at its head beside the parameters.
struct CouplingOutput {
    const std::string &name;
    const char *access = "w"; ///< mode of fopen
    std::string_view remark = {};
};

/// Analyses a table and writes its report (with verbFlag) and the table. The file is opened as `output` says;
/// an empty name is standard output, and so is, after a message, one that cannot be opened. Fails after a
/// message: values that are no finite numbers, but for the quotients of a comparison; no memory; or the
/// output could not be written to its end.
Status writeCouplings(const CouplingOutput &output, const FittedTable &table,
                      const ShownParameters &parameters, Messages &messages);

/// A best-fit as files: the report of a fitted table, and the structure in the frames of its tensor.
/// `remark`: whole lines for the report, or empty. Fails after a message.
Status writeFit(const Run &run, const FittedTable &table, std::string_view remark, Messages &messages);

/// The structure of a run, turned into four frames, its atoms marked with `labels` if there are any. Fails
/// after messages that end in `complaint`.
Status writeFrames(const Run &run, const EulerLists &euler, const char *complaint, Messages &messages,
                   std::span<const AtomLabel> labels = {});

} // namespace trelm
