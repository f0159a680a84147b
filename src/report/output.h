// The coupling output: report and table.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/tensor.h"
#include "report/parameters.h"
#include "structure/select.h"

#include <string>
#include <string_view>

namespace trelm {

/// Where a report goes.
struct TableOutput {
    const std::string &name;
    const char *access = "w"; ///< mode of fopen
};

/// Writes the report (with verbFlag) and the table of a run; the table can be read back by readDC. The file
/// is opened as `output` says; an empty name is standard output, and so is, after a message, one
/// that cannot be opened. Fails after a message if the statistics failed or the output could not be written
/// to its end.
Status writeDCmod(const TableOutput &output, const DTable &dTab, const TrelmInfo &trelmInfo,
                  std::string_view remark, Messages &messages);

/// A best-fit that is to be written: an argument of writeFit, and no more, for it holds references.
struct FittedRun {
    const PDBInfo *pdbInfo = nullptr;
    const PDBSelectInfo *sInfo = nullptr; ///< atoms of the structures
    const DTable *dTab = nullptr;
    const TrelmInfo *trelmInfo = nullptr;
    const std::string &outDName;   ///< couplings
    const std::string &pdbRotName; ///< structures in the frames of the tensor
    const char *remark = nullptr;  ///< of the structures; may be null
};

/// Writes couplings and turned structures. Fails after a message.
Status writeFit(const FittedRun &run, Messages &messages);

/// The block of text with irreducible representation, eigensystem and Euler angles; empty if `eulerFlag` is
/// 0.
void writeEulerInfo(const TensorAnalysis &analysis, std::string &result, int eulerFlag);

/// The short form of an order matrix in reports: its five values, Da(NH) in Hz, and R; R is 0 without Da.
void appendSaupeLines(const Saupe &saupe, const TensorAnalysis &analysis, std::string &text);

} // namespace trelm
