// Messages that do not end their line.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

/// Texts that are known without a line end.
constexpr std::string_view unendedTexts[] = {
    "Error in Number of Unassigned N-HN couplings.",
    "Error in Number of assigned couplings.",
    "Warning: only subset of 2 to 7 peaks allowed!",
    "DC Error Allocating DC Values.",
    "trelm: error in calcInertia.",
    "trelm: error in analyzeMatrix3D.",
    "simulateAlignment: error in stericAlignment.",
    "Error in initOrient: zero atoms selected.",
    "Error in chkDomClash: zero atoms selected.",
    "initOrient: error in analyzeMatrix3D.",
    "matrix: error in calcInertiaSel.",
    "matrix: error in analyzeMatrix3D.",
    "WARNING: Zero atoms for inertia tensor selected.",
    "Error in readPotential: digitization of potential too high.",
    "Error in positionDomain: zero atoms selected.",
};

/// What messages begin with.
constexpr std::string_view messageHeads[] = {"Error",   "ERROR",   "Warning", "WARNING", "DC Error",
                                             "GORVAT ", "Matrix:", "matrix",  "trelm:",  "TRELM ",
                                             "PDB ",    "REMARK ", "Memory",  "readPDB"};

/// Expects that each message on the standard error stream ends its line: none begins right behind another,
/// and the last one has its line end.
inline void expectLineEnds(std::string err)
{
    for (const std::string_view text : unendedTexts)
        for (std::size_t at = err.find(text); at != std::string::npos; at = err.find(text, at + text.size()))
            err.insert(at + text.size(), "\n");
    EXPECT_TRUE(err.empty() || err.ends_with('\n') || err.ends_with('\r')) << "no line end: " << err;
    for (const std::string_view head : messageHeads)
        for (std::size_t at = err.find(head, 1); at < err.size(); at = err.find(head, at + 1))
            EXPECT_NE(std::string_view(" \n\r\t(\"'/").find(err[at - 1]), std::string_view::npos)
                << "no line end before: " << err.substr(at - 1, 60);
}
