#include "modes/structure_analysis.h"

#include "report/output.h"
#include "report/run_report.h"
#include "simulation/charges/charge_labels.h"
#include "simulation/charges/dipole.h"
#include "simulation/domains/inertia.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/orientations/rotation.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace trelm {
namespace {

constexpr Matrix3d ownFrame = {0.0, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 0.0, 0.0}; ///< columns z, y, x

/// What the report tells.
struct Findings {
    TensorAnalysis structure; ///< of the structure
    TensorAnalysis input;     ///< of the order matrix
    Dipole dipole;
};

/// What chCoorSelect is given to fill.
struct Buffers {
    Block<double> xI, yI, zI;
    std::vector<int> chargeAtomID;
    std::vector<float> charges;
};

bool isFinite(const Matrix3d &matrix)
{
    return std::ranges::all_of(matrix, [](double element) { return std::isfinite(element); });
}

/// The dipole's axes as the dipole has them: its direction first, the others not at unit length. Without a
/// direction the structure keeps its frame.
Status dipoleFrame(const Matrix3d &dipoleVec, Matrix3d &eigVec, Messages &messages)
{
    eigVec = dipoleVec;
    if (isFinite(eigVec))
        return Status::ok;
    const double x = dipoleVec[0], y = dipoleVec[3];
    if (x == 0.0 && y == 0.0) {
        eigVec = ownFrame;
        return messages.fail("eigVec2euler: error occured!\n");
    }
    // At right angles to z, where the rule for the third axis divides by zero and tends to z.
    eigVec = {x, y, 0.0, y, -x, 0.0, 0.0, 0.0, 1.0};
    return Status::ok;
}

/// The charges as numbered by the places in the coordinate arrays, and their dipole.
void analyzeCharges(const Buffers &buffers, const ChargeSet &placed, Findings &findings, Messages &messages)
{
    messages.out("REMARK %d charges selected for simulation.\n", placed.chCount);
    const auto count = static_cast<std::size_t>(placed.chCount);
    findings.dipole = dipoleMoment({buffers.xI.span(), buffers.yI.span(), buffers.zI.span(),
                                    placed.chargeAtomID.first(count), placed.charges.first(count)});
    TensorAnalysis &structure = findings.structure;
    if (dipoleFrame(findings.dipole.dipoleVec, structure.eigVec, messages) == Status::ok)
        eigVec2euler(structure.eigVec, structure.euler);
}

Status analyzeShape(const SelectedAtoms &atoms, int yzFlag, Findings &findings, Messages &messages)
{
    Matrix3d inertiaTensor;
    if (calcInertia(atoms, inertiaTensor, messages) != Status::ok || !isFinite(inertiaTensor))
        return messages.fail("trelm: error in calcInertia.");
    if (analyzeMatrix3D(inertiaTensor, yzFlag, findings.structure, messages) != Status::ok)
        return messages.fail("trelm: error in analyzeMatrix3D.");
    return Status::ok;
}

/// The frames of structure and order matrix.
Status findFrames(const SelectedAtoms &molecule, const TrelmInfo &trelmInfo, ChargeSet &charges,
                  const Saupe &saupe, Findings &findings, Messages &messages)
{
    constexpr const char *tag = "analyzePDB";
    const std::size_t coords = molecule.mask.size() + maxCharges + 1;
    Buffers buffers = {Block<double>(tag, coords),
                       Block<double>(tag, coords),
                       Block<double>(tag, coords),
                       {charges.chargeAtomID.begin(), charges.chargeAtomID.end()},
                       {charges.charges.begin(), charges.charges.end()}};
    if (!buffers.xI || !buffers.yI || !buffers.zI)
        return messages.fail("Error in analyzePDB: allocating coord buffers.\n");
    ChargeSet placed = charges;
    placed.chargeAtomID = buffers.chargeAtomID;
    placed.charges = buffers.charges;
    SelectedCount selected;
    if (chCoorSelect(molecule, trelmInfo, {buffers.xI.span(), buffers.yI.span(), buffers.zI.span()}, placed,
                     selected, messages) != Status::ok)
        return messages.fail("trelm: error reading selection of atoms.\n");
    if (selected.dipole)
        reportDipole(*selected.dipole, messages);
    messages.out("REMARK %zu atoms selected for simulation.\n", selected.places);
    if (trelmInfo.elPdbFlag == asCharged) {
        analyzeCharges(buffers, placed, findings, messages);
        charges.chSum = findings.dipole.chSum;
    } else if (analyzeShape({molecule.pdbInfo, selected.atoms}, trelmInfo.yzFlag, findings, messages) !=
               Status::ok) {
        return Status::failed;
    }
    if (analyzeSaupe(saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, findings.input, messages) != Status::ok ||
        !std::isfinite(findings.input.gMag))
        return messages.fail("trelm: error in analyzeSaupe.\n");
    return Status::ok;
}

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

void appendInput(const TensorAnalysis &input, const Saupe &saupe, int eulerFlag, std::string &text)
{
    std::string block;
    writeEulerInfo(input, block, eulerFlag);
    text.append("\n\nREMARK Input tensor.").append(block);
    appendSaupeLines(saupe, input, text);
}

void appendReport(const TrelmInfo &trelmInfo, const Findings &findings, const Saupe &saupe, std::string &text)
{
    text += "REMARK Molecular Alignment Simulation.\n\nREMARK Simulation parameters.\n";
    writeTrelm(trelmInfo, text);
    const bool hasDipole = trelmInfo.elPdbFlag != asShape;
    std::string block;
    writeEulerInfo(findings.structure, block, trelmInfo.eulerFlag);
    text.append(hasDipole ? "\n\nREMARK Dipole tensor." : "\n\nREMARK Inertia tensor.").append(block);
    if (hasDipole)
        appendDipole(findings.dipole, text);
    appendInput(findings.input, saupe, trelmInfo.eulerFlag, text);
    text += "\n\nREMARK Relative orientation of two coordinate systems.\n\n";
    constexpr double degrees = 180.0 / pi;
    const auto dcos = calcDcos(findings.structure.eigVec, findings.input.eigVec);
    appendf(text, "DATA DCOS_DEG (x/y/z)    %.3f  %.3f  %.3f\n", dcos[0] * degrees, dcos[1] * degrees,
            dcos[2] * degrees);
}

} // namespace

Status analyzePDB(const SelectedAtoms &molecule, const TrelmInfo &trelmInfo, ChargeSet &charges,
                  const Saupe &saupe, const AnalysisFiles &files, Messages &messages)
{
    OutFile report;
    if (openOut(report, files.reportName, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", files.reportName.c_str());
    Findings findings;
    if (findFrames(molecule, trelmInfo, charges, saupe, findings, messages) != Status::ok)
        return Status::failed;
    std::vector<AtomLabel> labels;
    if (trelmInfo.elPdbFlag == asCharged)
        labels = labelCharges(molecule.pdbInfo, charges);
    const EulerLists &euler =
        trelmInfo.elPdbFlag == asUserFrame ? findings.input.euler : findings.structure.euler;
    if (writePDBRot({euler.gamma, euler.beta, euler.alpha}, trelmInfo.rotN,
                    {molecule.pdbInfo, files.sInfo, files.remark, labels}, files.pdbRotName,
                    messages) != Status::ok)
        return messages.fail("matrix: error in writePDBRot.\n");
    std::string text;
    appendReport(trelmInfo, findings, saupe, text);
    writeOut(report, text);
    return closeOut(report, messages);
}

} // namespace trelm
