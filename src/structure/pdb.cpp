#include "structure/pdb.h"

#include "structure/hydrogens.h"
#include "structure/models.h"
#include "structure/read_mmcif.h"
#include "structure/select.h"
#include "support/text/text.h"
#include "support/text/text_input.h"
#include "support/text/token.h"

#include <algorithm>
#include <array>
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
constexpr pdbFieldInfo fieldModel = {
    6, 20}; ///< of a MODEL line; columns 11 to 14, but not all writers keep them

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

Status readAtoms(TextInput &input, PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, Models &models,
                 Messages &messages)
{
    const int hetatmFlag = sInfo != nullptr ? sInfo->hetatmFlag : 0;
    for (std::string_view line; fgetsAlloc(input, line);) {
        if (firstWord(line) == "MODEL")
            models.begin(toInt(column(line, fieldModel).view()));
        if (!models.isOpen || !isAtomLine(line, hetatmFlag))
            continue;
        AtomInfo atom;
        readNames(line, atom);
        if (!pdbSelectTest(sInfo, atom))
            continue;
        Coord3D at;
        if (readNumbers(line, atom, at, messages) != Status::ok ||
            takeAtom(atom, at, models, pdbInfo, messages) != Status::ok)
            return Status::failed;
    }
    return Status::ok;
}

/// A structure at work.
struct Reading {
    PDBInfo &pdbInfo;
    const PDBSelectInfo *sInfo;
    const char *name;
    bool useLabels;
};

/// Reads the atoms of a file of either form.
Status readForm(TextInput &input, const Reading &to, Models &models, Messages &messages)
{
    if (!isMmcif(input.text))
        return readAtoms(input, to.pdbInfo, to.sInfo, models, messages);
    const bool takesHetatms = to.sInfo != nullptr && to.sInfo->hetatmFlag != 0;
    return readMmcif({input.text, to.name, to.useLabels, takesHetatms}, to.sInfo, models, to.pdbInfo,
                     messages);
}

Status tellModels(const Models &models, const char *name, Messages &messages)
{
    if (models.all != nullptr)
        return Status::ok;
    if (models.wanted != 0 && !models.wasFound && !(models.wanted == 1 && models.count == 0))
        return messages.fail("PDB Error: %s has no model %d.\n", name, models.wanted);
    if (models.wanted == 0 && models.count > 1)
        messages.warn("trelm: %d models in %s, the first is used (-model N, all, mean)\n", models.count,
                      name);
    return Status::ok;
}

Status buildHydrogens(const HydrogenBonds &bonds, PDBInfo &pdbInfo, ModelSet *all, Messages &messages)
{
    std::size_t built = 0;
    if ((all != nullptr ? addHydrogensToAll(bonds, pdbInfo, *all, built, messages)
                        : addHydrogens(bonds, pdbInfo, built, messages)) != Status::ok)
        return Status::failed;
    messages.note("trelm: %zu hydrogens built, N-H %.3f and C-H %.3f angstrom.\n", built, bonds.nitrogen,
                  bonds.carbon);
    return Status::ok;
}

/// Atoms that stand behind another of their name in the residue: fits find the first.
void tellAlternates(const PDBInfo &pdbInfo, const char *name, Messages &messages)
{
    const auto isAlternate = [&](const AtomInfo &atom) {
        const AtomInfo *first = atom.locID.empty() ? nullptr
                                                   : findAtom(pdbInfo, atom.resID, atom.atomName.view(),
                                                              atom.chainID.view(), atom.segID.view());
        return first != nullptr && first != &atom && !(first->locID == atom.locID);
    };
    const auto count = std::ranges::count_if(pdbInfo.atoms(), isAlternate);
    if (count > 0)
        messages.warn(
            "trelm: %td alternate locations in %s: fits use the first of each atom, simulations all\n", count,
            name);
}

/// Coordinates that programs write where they know none: the ends of the column, or one place for many atoms.
void tellPlaceholders(const PDBInfo &pdbInfo, const char *name, Messages &messages)
{
    constexpr float farthest = 9998.0f;   // the column ends at 9999.999
    constexpr std::size_t mostAtOnce = 3; // alternates, and groups of three that noise has put into one place
    const std::span<const Coord3D> coords = pdbInfo.coordinates();
    const auto isFar = [](const Coord3D &at) {
        return std::max({std::fabs(at.x), std::fabs(at.y), std::fabs(at.z)}) > farthest;
    };
    if (const auto far = std::ranges::find_if(coords, isFar); far != coords.end()) {
        const AtomInfo &atom = pdbInfo.atoms()[static_cast<std::size_t>(far - coords.begin())];
        messages.warn(
            "trelm: %td atoms of %s stand more than 9998 angstrom away, the first is %s of residue %d"
            " (correct or remove them)\n",
            std::ranges::count_if(coords, isFar), name, atom.atomName.c_str(), atom.resID);
    }
    std::vector<std::array<float, 3>> places;
    for (const Coord3D &at : coords)
        places.push_back({at.x, at.y, at.z});
    std::ranges::sort(places);
    for (auto first = places.begin(); first != places.end();) {
        const auto beyond = std::find_if(first, places.end(), [&](const auto &at) { return at != *first; });
        if (const auto count = static_cast<std::size_t>(beyond - first); count > mostAtOnce) {
            messages.warn("trelm: %zu atoms of %s stand at one place, %g %g %g (correct or remove them)\n",
                          count, name, double{(*first)[0]}, double{(*first)[1]}, double{(*first)[2]});
            return;
        }
        first = beyond;
    }
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

Status readPDB(const std::string &pdbName, PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, Messages &messages,
               const StructureReading &reading)
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
    Models models{.wanted = reading.model, .all = reading.all};
    if (readForm(input, {pdbInfo, sInfo, shownName, reading.useLabels}, models, messages) != Status::ok ||
        tellModels(models, shownName, messages) != Status::ok)
        return Status::failed;
    if (reading.all != nullptr && completeModels(pdbInfo, shownName, *reading.all, messages) != Status::ok)
        return Status::failed;
    if (reading.hydrogens && buildHydrogens(*reading.hydrogens, pdbInfo, reading.all, messages) != Status::ok)
        return Status::failed;
    if (pdbInfo.atomCount == 0 && sInfo == nullptr) // a selection may leave out all atoms of a good file
        messages.warn("PDB Warning: no ATOM line in %s: is it a PDB file?\n", shownName);
    if (indexPDB(pdbInfo, messages) != Status::ok)
        return messages.fail("PDB Error Indexing PDB File %s\n", shownName);
    tellAlternates(pdbInfo, shownName, messages);
    tellPlaceholders(pdbInfo, shownName, messages);
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
