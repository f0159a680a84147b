#include "report/structure_report.h"

#include "compare/options.h"
#include "couplings/options.h"
#include "report/output.h"
#include "report/run_report.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <array>

namespace trelm {
namespace {

void appendDipole(const Dipole &dipole, std::string &text)
{
    const auto place = [&](const char *name, const std::array<float, 3> &at) {
        appendf(text, "DATA PDB_EL %s  % e   % e   % e\n", name, number(at[0]), number(at[1]), number(at[2]));
    };
    appendf(text, "\nDATA PDB_EL MONOPOL  % e\n", number(dipole.chargeDipol[0] + dipole.chargeDipol[1]));
    appendf(text, "DATA PDB_EL SUM_POS  % e\n", number(dipole.chargeDipol[0]));
    appendf(text, "DATA PDB_EL SUM_NEG  % e\n", number(dipole.chargeDipol[1]));
    text += "DATA PDB_EL LOC (x,y,z)\n";
    place("LOC_NEG", dipole.aveNeg);
    place("LOC_POS", dipole.avePos);
    appendf(text, "DATA PDB_EL DIPOL    % e\n", number(dipole.magnitude));
}

} // namespace

std::string structureReport(const ShownParameters &parameters, const StructureAnalysis &found,
                            const Saupe &saupe)
{
    std::string text = "REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n";
    writeTrelm(parameters, text);
    const bool hasDipole = parameters.comparison.elPdbFlag != asShape;
    text += hasDipole ? "\n\nREMARK Dipole tensor." : "\n\nREMARK Inertia tensor.";
    appendEulerInfo(found.structure, text, parameters.fit.eulerFlag);
    if (hasDipole)
        appendDipole(found.dipole, text);
    text += "\n\nREMARK Input tensor.";
    appendEulerInfo(found.input, text, parameters.fit.eulerFlag);
    appendSaupeLines(saupe, found.input, text);
    text += "\n\nREMARK Relative orientation of two coordinate systems.\n\n";
    appendf(text, "DATA DCOS_DEG (x/y/z)    %.3f  %.3f  %.3f\n", found.angles[0], found.angles[1],
            found.angles[2]);
    return text;
}

} // namespace trelm
