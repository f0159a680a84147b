#include "structure/pdb.h"

#include "structure/select.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr std::size_t firstAtoms = 4096; ///< room for atoms at the start
constexpr int atomChains = 4111;         ///< hash chains of the atom table

/// One column range of an ATOM line, counted from 1, inclusive.
struct pdbFieldInfo {
    int loc1;
    int locn;
};

constexpr pdbFieldInfo fieldAtomID = {7, 11};
constexpr pdbFieldInfo fieldAtomName = {13, 16};
constexpr pdbFieldInfo fieldLocID = {17, 17};
constexpr pdbFieldInfo fieldResName = {18, 21};
constexpr pdbFieldInfo fieldChainID = {22, 22};
constexpr pdbFieldInfo fieldResID = {23, 26};
constexpr pdbFieldInfo fieldIcode = {27, 27};
constexpr pdbFieldInfo fieldX = {31, 38};
constexpr pdbFieldInfo fieldY = {39, 46};
constexpr pdbFieldInfo fieldZ = {47, 54};
constexpr pdbFieldInfo fieldOccupancy = {55, 60};
constexpr pdbFieldInfo fieldTempFactor = {61, 66};
constexpr pdbFieldInfo fieldSegID = {73, 76};
constexpr pdbFieldInfo fieldElement = {77, 78};
constexpr pdbFieldInfo fieldCharge = {79, 80};

/// The characters of a column that are not white space; a name so does not depend on how it was justified. A
/// line that ends before the column gives the empty text. No column is wider than a name.
Name column(std::string_view line, const pdbFieldInfo &field)
{
    Name text;
    std::size_t length = 0;
    const std::size_t end = std::min(line.size(), static_cast<std::size_t>(field.locn));
    for (std::size_t i = static_cast<std::size_t>(field.loc1) - 1; i < end; ++i)
        if (!isSpace(line[i]))
            text.text[length++] = line[i];
    return text;
}

float number(std::string_view line, const pdbFieldInfo &field)
{
    return static_cast<float>(toDouble(column(line, field).view()));
}

bool isAtomLine(std::string_view line, int hetatmFlag)
{
    const std::string_view word = firstWord(line);
    return equalNoCase(word, "ATOM") || (hetatmFlag != 0 && equalNoCase(word, "HETATM"));
}

/// The fields that a selection looks at, so that a line can be passed over before the rest is read.
void readNames(std::string_view line, AtomInfo &atom)
{
    atom.resID = toInt(column(line, fieldResID).view());
    atom.atomName = column(line, fieldAtomName);
    atom.resName = column(line, fieldResName);
    atom.locID = column(line, fieldLocID);
    atom.chainID = column(line, fieldChainID);
    atom.segID = column(line, fieldSegID);
    atom.icode = column(line, fieldIcode);
}

Status readNumbers(std::string_view line, AtomInfo &atom, Coord3D &at, Messages &messages)
{
    atom.atomID = toInt(column(line, fieldAtomID).view());
    at = {number(line, fieldX), number(line, fieldY), number(line, fieldZ)};
    atom.occupancy = number(line, fieldOccupancy);
    atom.tempFactor = number(line, fieldTempFactor);
    atom.element = column(line, fieldElement);
    atom.chargeStr = column(line, fieldCharge);
    if (!std::isfinite(at.x) || !std::isfinite(at.y) || !std::isfinite(at.z))
        return messages.fail("PDB Error: the coordinates of atom %d are no finite numbers.\n", atom.atomID);
    return Status::ok;
}

Status appendAtom(const AtomInfo &atom, const Coord3D &at, PDBInfo &pdbInfo, Messages &messages)
{
    const auto count = static_cast<std::size_t>(pdbInfo.atomCount);
    if (!makeRoom(pdbInfo.atomList, "pdb", count, 1, firstAtoms))
        return messages.fail("PDB Error Allocating Atom memory.\n");
    if (!makeRoom(pdbInfo.coordList, "pdb", count, 1, firstAtoms))
        return messages.fail("PDB Error Allocating PDB coords.\n");
    pdbInfo.atomList[count] = atom;
    pdbInfo.coordList[count] = at;
    ++pdbInfo.atomCount;
    return Status::ok;
}

/// The other form of structure files, whose atoms stand in ATOM lines, too. It begins with "data_".
bool isMmcif(TextInput &input)
{
    std::string_view line, word;
    while ((word.empty() || word.starts_with('#')) && fgetsAlloc(input, line))
        word = firstWord(line);
    rewindText(input);
    return equalNoCase(word.substr(0, 5), "data_");
}

Status readAtoms(TextInput &input, PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, Messages &messages)
{
    const int hetatmFlag = sInfo != nullptr ? sInfo->hetatmFlag : 0;
    for (std::string_view line; fgetsAlloc(input, line);) {
        if (!isAtomLine(line, hetatmFlag))
            continue;
        AtomInfo atom;
        readNames(line, atom);
        if (!pdbSelectTest(sInfo, atom))
            continue;
        Coord3D at;
        if (readNumbers(line, atom, at, messages) != Status::ok ||
            appendAtom(atom, at, pdbInfo, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

Status makeTables(PDBInfo &pdbInfo, Messages &messages)
{
    if (hSymTabAlloc(pdbInfo.atomTab, atomChains, messages) != Status::ok ||
        hSymTabAlloc(pdbInfo.resTab, 0, messages) != Status::ok ||
        hSymTabAlloc(pdbInfo.chainTab, 0, messages) != Status::ok ||
        hSymTabAlloc(pdbInfo.segTab, 0, messages) != Status::ok)
        return messages.fail("PDB Error creating object tables.\n");
    return Status::ok;
}

} // namespace

std::vector<Coord3D> copyOfCoordinates(const PDBInfo &pdbInfo)
{
    const std::span<const Coord3D> coords = pdbInfo.coordinates();
    return {coords.begin(), coords.end()};
}

Status readPDB(const std::string &pdbName, PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, Messages &messages)
{
    pdbInfo = PDBInfo{};
    if (makeTables(pdbInfo, messages) != Status::ok)
        return Status::failed;
    TextInput input;
    const TextStatus status = readText(input, pdbName, messages);
    if (status == TextStatus::noFile)
        return messages.fail("PDB Error opening PDB file %s\n", pdbName.c_str());
    if (status != TextStatus::read)
        return Status::failed;
    const char *shownName = pdbName.empty() ? "(stdin)" : pdbName.c_str();
    if (isMmcif(input))
        return messages.fail("PDB Error: %s is an mmCIF file: the PDB format is wanted.\n", shownName);
    if (readAtoms(input, pdbInfo, sInfo, messages) != Status::ok)
        return Status::failed;
    if (pdbInfo.atomCount == 0 && sInfo == nullptr) // a selection may leave out all atoms of a good file
        messages.err("PDB Warning: no ATOM line in %s: is it a PDB file?\n", shownName);
    if (indexPDB(pdbInfo, messages) != Status::ok)
        return messages.fail("PDB Error Indexing PDB File %s\n", shownName);
    return Status::ok;
}

Name pdbStrCpy(std::string_view text, Messages &messages)
{
    if (text.size() > Name::capacity)
        messages.err("PDB Error: string item too long: %s\n",
                     std::string(text.substr(Name::capacity)).c_str());
    return Name::of(text);
}

bool blankName(Name &name)
{
    if (!(name == "{}") && !equalNoCase(name.view(), "none") && !equalNoCase(name.view(), "(Null)"))
        return false;
    name = Name{};
    return true;
}

} // namespace trelm
