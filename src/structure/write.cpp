#include "structure/write.h"

#include "structure/rotate.h"
#include "structure/select.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>

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
void appendAtom(std::string &text, const AtomInfo &atom)
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
    for (const float coordinate : {atom.x, atom.y, atom.z})
        appendFixed(text, coordinate, 8, 3, SignPlace::blank);
    appendFixed(text, atom.occupancy, 6, 2, SignPlace::none);
    appendFixed(text, atom.tempFactor, 6, 2, SignPlace::none);
    text += "      ";
    appendRight(text, atom.segID.view(), 4);
    appendRight(text, atom.element.view(), 2);
    appendRight(text, atom.chargeStr.view(), 2);
    text += '\n';
}

std::string fileText(const PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, const char *remark)
{
    constexpr std::size_t lineLength = 82;
    std::string text;
    text.reserve(static_cast<std::size_t>(pdbInfo.atomCount) * lineLength);
    if (remark != nullptr)
        text.append("REMARK ").append(remark).append("\n\n");
    for (const AtomInfo &atom : pdbInfo.atoms())
        if (pdbSelectTest(sInfo, atom))
            appendAtom(text, atom);
    text += "END\n";
    return text;
}

Written writeFile(const std::string &pdbName, std::string_view text)
{
    OutFile out;
    if (openOut(out, pdbName, "w") != Status::ok) {
        complain("PDB Error opening PDB file %s\n", pdbName.c_str());
        return Written::notOpened;
    }
    writeOut(out, text);
    return closeOut(out, standardMessages()) == Status::ok ? Written::whole : Written::cut;
}

/// Turns the molecule and puts its mean at the origin.
int turnMolecule(const std::array<double, 3> &angle, PDBInfo *pdbInfo)
{
    rotateDomain(angle, pdbInfo, pdbInfo->minResID, pdbInfo->maxResID);
    if (shiftMol2Domain(pdbInfo, pdbInfo->minResID, pdbInfo->maxResID) != 0)
        return complain("trelm: error in shiftMol2Domain.\n");
    return 0;
}

/// The files of one solution: the plain name if it is the chosen one, and the numbered name. A numbered file
/// that cannot be opened is told and passed over, one that could not be written to its end is a failure.
int writeSolution(int i, int rotID, PDBInfo *pdbInfo, const PDBSelectInfo *sInfo, const std::string &outName,
                  const char *remark)
{
    int status = 0;
    const std::string text = fileText(*pdbInfo, sInfo, remark);
    if (i == rotID && !outName.empty() && writeFile(outName, text) != Written::whole)
        status = 1;
    if (writeFile(outName + "." + std::to_string(i), text) == Written::cut)
        status = 1;
    return status;
}

} // namespace

int storePDBCoords(PDBInfo *pdbInfo)
{
    if (pdbInfo == nullptr || !pdbInfo->coordList)
        return 0;
    std::ranges::transform(pdbInfo->atoms(), pdbInfo->coordList.data(), [](const AtomInfo &atom) {
        return Coord3D{atom.x, atom.y, atom.z};
    });
    return 0;
}

int restorePDBCoords(PDBInfo *pdbInfo)
{
    if (pdbInfo == nullptr || !pdbInfo->coordList)
        return 0;
    const Coord3D *saved = pdbInfo->coordList.data();
    for (AtomInfo &atom : pdbInfo->atoms()) {
        atom.x = saved->x;
        atom.y = saved->y;
        atom.z = saved->z;
        ++saved;
    }
    return 0;
}

int writePDB(const std::string &pdbName, PDBInfo *pdbInfo, const PDBSelectInfo *sInfo, const char *remark)
{
    if (pdbInfo == nullptr)
        return 0;
    return writeFile(pdbName, fileText(*pdbInfo, sInfo, remark)) == Written::whole ? 0 : 1;
}

int writePDBRot(std::span<const double, 4> angleList1, std::span<const double, 4> angleList2,
                std::span<const double, 4> angleList3, int rotID, PDBInfo *pdbInfo,
                const PDBSelectInfo *sInfo, const std::string &outName, const char *remark)
{
    if (!outName.empty() && (rotID < 0 || rotID > 3))
        complain("trelm: -rotID %d: the four frames have the numbers 0 to 3, none goes to the plain name.\n",
                 rotID);
    int status = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        storePDBCoords(pdbInfo);
        const int turned = turnMolecule({-angleList1[i], -angleList2[i], -angleList3[i]}, pdbInfo);
        if (turned == 0) {
            const int written = writeSolution(static_cast<int>(i), rotID, pdbInfo, sInfo, outName, remark);
            status = status != 0 ? status : written;
        }
        restorePDBCoords(pdbInfo);
        if (turned != 0)
            return turned;
    }
    return status;
}

} // namespace trelm
