// Molecules, charges and orientations of the tests of the simulation.
#pragma once

#include "common/temp_file.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/sphere.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace trelm {

inline PDBInfo readMolecule(const std::string &name)
{
    PDBInfo pdbInfo;
    EXPECT_EQ(readPDB(name, pdbInfo, nullptr, standardMessages()), Status::ok);
    return pdbInfo;
}

inline AtomMask allAtoms(const PDBInfo &pdbInfo)
{
    return AtomMask(pdbInfo.atoms().size(), 1);
}

inline PDBInfo ubiquitin()
{
    return readMolecule(TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb");
}

/// One from the text of a PDB file.
inline PDBInfo moleculeOf(std::string_view text)
{
    const TempFile file(text);
    return readMolecule(file.name);
}

inline bool isHydrogen(const AtomInfo &atom)
{
    return atom.atomName.text[0] == 'H';
}

/// A set of orientations.
inline std::vector<double> dotsOf(int densit)
{
    std::vector<double> dots;
    EXPECT_TRUE(do_unsp(densit, dots));
    return dots;
}

/// Charges by the places of their atoms.
struct Charges {
    std::vector<int> atoms;
    std::vector<float> values;
    ChargeSet set()
    {
        ChargeSet charges;
        charges.chargeAtomID = atoms;
        charges.charges = values;
        charges.chCount = static_cast<int>(values.size());
        return charges;
    }
};

} // namespace trelm
