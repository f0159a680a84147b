// Molecules of the structure tests.
#pragma once

#include "common/heard.h"
#include "common/said.h"
#include "common/temp_file.h"
#include "structure/pdb.h"

#include <string>

namespace trelm {

/// 1231 atoms, 602 of them heavy, residues 1 to 76 of chain A.
inline PDBInfo readUbiquitin()
{
    PDBInfo pdb;
    EXPECT_EQ(readPDB(TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb", pdb, nullptr, standardMessages()),
              Status::ok);
    EXPECT_EQ(pdb.atomCount, 1231);
    return pdb;
}

inline std::string atomLine(const char *name, int resID, char chain = 'A', const char *seg = "",
                            char icode = ' ')
{
    char line[100];
    std::snprintf(line, sizeof line, "ATOM  %5d %-4s LYS %c%4d%c   %8.3f%8.3f%8.3f  1.00  0.00      %-4s\n",
                  7, name, chain, resID, icode, 1.0, 2.0, 3.0, seg);
    return line;
}

/// A text as a molecule.
struct ReadPdb {
    PDBInfo pdb;
    Status status = Status::noSolution;
    std::string messages;

    explicit ReadPdb(const std::string &text, const PDBSelectInfo *sInfo = nullptr)
    {
        const TempFile file(text);
        Heard heard;
        status = readPDB(file.name, pdb, sInfo, heard.messages);
        messages = heard.err;
    }
};

} // namespace trelm
