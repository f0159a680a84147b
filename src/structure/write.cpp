#include "structure/write.h"

#include "structure/rotate.h"
#include "structure/select.h"
#include "support/text/file_identity.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <string_view>
#include <vector>

namespace trelm {
namespace {

enum class Written { whole, notOpened, cut };

/// The first character of a name, a blank for an empty one.
char firstOf(const Name &name)
{
    return name.empty() ? ' ' : name.text[0];
}

/// One ATOM line: "%s%5d %-4s%1c%-4s%1c%4d%1c   % 8.3f% 8.3f% 8.3f%6.2f%6.2f      %4s%2s%2s\n". A name of up
/// to three characters stands one column to the right.
void appendAtom(std::string &text, const AtomInfo &atom, const Coord3D &at, const AtomLabel &label)
{
    const bool isLong = atom.atomName.view().size() > 3;
    text += "ATOM  ";
    appendInt(text, atom.atomID, 5);
    text += isLong ? " " : "  ";
    appendLeft(text, atom.atomName.view(), isLong ? 4 : 3);
    text += firstOf(atom.locID);
    appendLeft(text, atom.resName.view(), 4);
    text += firstOf(atom.chainID);
    appendInt(text, atom.resID, 4);
    text += firstOf(atom.icode);
    text += "   ";
    for (const float coordinate : {at.x, at.y, at.z})
        appendFixed(text, coordinate, 8, 3, SignPlace::blank);
    appendFixed(text, atom.occupancy, 6, 2, SignPlace::none);
    appendFixed(text, label.tempFactor, 6, 2, SignPlace::none);
    text += "      ";
    appendRight(text, atom.segID.view(), 4);
    appendRight(text, atom.element.view(), 2);
    appendRight(text, label.chargeStr.view(), 2);
    text += '\n';
}

std::string fileText(const PDBOutput &output, std::span<const Coord3D> coords)
{
    constexpr std::size_t lineLength = 82;
    const std::span<const AtomInfo> atoms = output.pdbInfo.atoms();
    std::string text;
    text.reserve(atoms.size() * lineLength);
    if (output.remark != nullptr)
        text.append("REMARK ").append(output.remark).append("\n\n");
    const AtomMask mask = pdbSelectTestAll(output.sInfo, atoms);
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        const AtomLabel asRead = {atoms[i].tempFactor, atoms[i].chargeStr};
        if (mask[i] != 0)
            appendAtom(text, atoms[i], coords[i], output.labels.empty() ? asRead : output.labels[i]);
    }
    text += "END\n";
    return text;
}

Written writeFile(const std::string &pdbName, std::string_view text, Messages &messages)
{
    OutFile out;
    if (openOut(out, pdbName, "w") != Status::ok) {
        messages.err("PDB Error opening PDB file %s\n", pdbName.c_str());
        return Written::notOpened;
    }
    writeOut(out, text);
    return closeOut(out, messages) == Status::ok ? Written::whole : Written::cut;
}

/// The files of one solution: the plain name if it is the chosen one, and the numbered name. A numbered file
/// that cannot be opened is told and passed over, one that could not be written to its end is a failure. A
/// name that keeps nothing has no numbered ones beside it.
Status writeSolution(const std::string &text, std::size_t i, int rotID, const std::string &outName,
                     Messages &messages)
{
    Status status = Status::ok;
    if (static_cast<int>(i) == rotID && !outName.empty() &&
        writeFile(outName, text, messages) != Written::whole)
        status = Status::failed;
    if (!isPassedOn(outName) && writeFile(outName + "." + std::to_string(i), text, messages) == Written::cut)
        status = Status::failed;
    return status;
}

} // namespace

Status writePDB(const std::string &pdbName, const PDBOutput &output, std::span<const Coord3D> coords,
                Messages &messages)
{
    return writeFile(pdbName, fileText(output, coords), messages) == Written::whole ? Status::ok
                                                                                    : Status::failed;
}

Status writePDBRot(const FrameAngles &frames, int rotID, const PDBOutput &output, const std::string &outName,
                   Messages &messages)
{
    if (!outName.empty() && (rotID < 0 || rotID > 3))
        messages.err(
            "trelm: -rotID %d: the four frames have the numbers 0 to 3, none goes to the plain name.\n",
            rotID);
    const PDBInfo &pdbInfo = output.pdbInfo;
    std::vector<Coord3D> coords;
    Status status = Status::ok;
    for (std::size_t i = 0; i < frames.alpha.size(); ++i) {
        coords = copyOfCoordinates(pdbInfo);
        const Conformation turned = {pdbInfo, coords};
        rotateMolecule({-frames.gamma[i], -frames.beta[i], -frames.alpha[i]}, turned);
        if (shiftMol2Domain(turned, pdbInfo.minResID, pdbInfo.maxResID, messages) != Status::ok)
            return messages.fail("trelm: error in shiftMol2Domain.\n");
        if (writeSolution(fileText(output, coords), i, rotID, outName, messages) != Status::ok)
            status = Status::failed;
    }
    return status;
}

} // namespace trelm
