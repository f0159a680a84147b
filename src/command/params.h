// The options: rows of tables that say which field an option fills, and the walk over them.
#pragma once

#include "assignment/options.h"
#include "command/command_line.h"
#include "compare/options.h"
#include "couplings/dipolar.h"
#include "couplings/options.h"
#include "couplings/window.h"
#include "errors/options.h"
#include "magnitude/options.h"
#include "modes/run_options.h"
#include "report/modes.h"
#include "simulation/alignment/options.h"
#include "structure/select.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace trelm {

/// The records of the branches.
struct TrelmInfo : AlignmentOptions,
                   MagnitudeOptions,
                   ModeOptions,
                   FitOptions,
                   ReportOptions,
                   JackknifeOptions,
                   CouplingNoiseOptions,
                   StructuralNoiseOptions,
                   ComparisonOptions,
                   ConversionOptions,
                   DrawOptions,
                   AssignmentOptions,
                   TensorWindow {};

/// Everything that a command line sets.
struct Options : RunOptions, TrelmInfo, DcInfo, PDBSelectInfo, DTensor {};

/// A field that an option fills.
using Target =
    std::variant<int Options::*, float Options::*, double Options::*, std::string Options::*,
                 const char * Options::*, Mode Options::*, SpreadKind Options::*, OpCode Options::*,
                 PdbKind Options::*, TableFormat Options::*, LcType Options::*, CharmmKind Options::*,
                 FitChoice Options::*, NoiseKind Options::*, QKind Options::*, WindowKind Options::*,
                 TensorMode Options::*, SelectMode Options::*, SelectClass Options::*, MatchMode Options::*>;

/// One option and one field. Rows stand in look-up order: of two contradicting flags the later row wins. An
/// option that fills several fields has several rows.
struct OptionRow {
    std::string_view flag;             ///< as typed, with its minus sign
    Target target;                     ///< the field that it fills
    std::optional<double> preset = {}; ///< what a bare flag stores; empty: the next word is the value
    bool quiet = false;                ///< no word on a missing or faulty value: it may be missing, or
                                       ///< another row tells
};

/// Reads the options of a table in the order of its rows. Returns the number of rows that filled their field.
std::ptrdiff_t readRows(CommandLine &line, std::span<const OptionRow> rows, Options &options);

/// Reads an option that takes exactly values.size() numbers. Fails after
/// "GORVAT Error: %s option requires %d values.\n" with `name` if the count is another.
Status readValues(CommandLine &line, std::string_view flag, std::string_view name, std::span<double> values);

/// All tables in look-up order, those of the selection and the tensor included.
std::vector<std::span<const OptionRow>> optionTables();
std::vector<std::span<const OptionRow>> selectionTables();
std::vector<std::span<const OptionRow>> tensorTables();

/// The options that are read by steps of their own, not by rows.
std::span<const std::string_view> specialFlags();

/// Reads the command line into options, which hold their defaults. Fails after the help text (asked for, or
/// no arguments at all) or after the message on a list of the wrong length. What follows such a list in
/// look-up order is then not read.
Status getparams(CommandLine &line, Options &options);

/// Reads the selection options.
void getPDBSelectArgs(CommandLine &line, Options &options);

/// Reads the tensor options into a tensor with its defaults. Fails after the message on a Saupe
/// vector that has not five values.
Status getDCTensorParams(CommandLine &line, Options &options);

} // namespace trelm
