// The settings of a molecule of two domains.
#pragma once

namespace trelm {

/// Domains and ensembles, as the configuration file has them.
struct DomainOptions {
    int outEflag = 0;       ///< ensemble output; 2 ends the run after the set-up, 3 only lists the states
    int densE = 200;        ///< ensemble density
    int angleDomFlag = 0;   ///< domain angle variation on
    float angleDom[3] = {}; ///< domain angles alpha, beta, gamma, degrees
    int resDom1Origin = 0;  ///< origin residue of each domain
    int resDom2Origin = 0;
    int startResDom2 = 0; ///< residue ranges of the domains
    int startResDom1 = 0;
    int endResDom1 = 0;
    int endResDom2 = 0;
    int digPsiE = 1;        ///< third angle steps in the ensemble
    float lBetaCone = 0.0f; ///< low and high limit of the beta cone, degrees
    float hBetaCone = 30.0f;
    /// Called the half width of the alpha cone, but compared with a length: states whose axis of length 1
    /// reaches further than this along y are left out. From 1 on none is.
    float errAlphaCone = 180.0f;
    int startResPart1 = 0; ///< residues of the angle definition
    int endResPart1 = 0;
    int startResPart2 = 0;
    int endResPart2 = 0;
    int clashFlag = 1;      ///< steric clash check of ensemble states
    float clashDist = 3.6f; ///< clash distance, angstrom
    int initOrientFlag = 1; ///< align along z before ensemble set-up
    int pivotCenter = 1;    ///< pivot at the centre
    int fixRotDomain = 0;   ///< keep the first domain in position
};

} // namespace trelm
