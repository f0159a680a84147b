// A molecule of two domains for tests: two copies of ubiquitin, residues 1 to 76 and 101 to 176, the second
// one moved along x.
#pragma once

#include <cstdio>
#include <fstream>
#include <string>

/// The molecule as PDB text. Shift in angstrom: the copies of the whole molecule touch below about 35.
inline std::string twoDomains(int lastResidue, double shift)
{
    std::string first, second, line;
    char number[16];
    std::ifstream pdb(TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb");
    while (std::getline(pdb, line)) {
        if (!line.starts_with("ATOM") || std::stoi(line.substr(22, 4)) > lastResidue)
            continue;
        first += line + "\n";
        std::snprintf(number, sizeof number, "%4d", std::stoi(line.substr(22, 4)) + 100);
        line.replace(22, 4, number);
        std::snprintf(number, sizeof number, "%8.3f", std::stod(line.substr(30, 8)) + shift);
        second += line.replace(30, 8, number) + "\n";
    }
    return first + second + "END\n";
}
