// The run of an ensemble of two domains, and the configuration that tells them apart.
#pragma once

#include <string>

inline const std::string twoDomainsConfig =
    "START_RESID_1: 1\nEND_RESID_1: 76\nSTART_RESID_2: 101\nEND_RESID_2: 176\n"
    "START_RES_ANGLE_1: 1\nEND_RES_ANGLE_1: 70\n"
    "START_RES_ANGLE_2: 101\nEND_RES_ANGLE_2: 170\nORIGIN_DOM1: 53\n";
inline const std::string ensembleLine = "-stTrelmGrid -pdb m.pdb -inD ubi/bicelle_hn.tab -inp c.inp -ave "
                                        "ave.tab -H -dot 32 -digPsi 6 -dcEns all.tab -flex log";
