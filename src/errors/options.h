// What the analysis of a fit's errors is asked for.
#pragma once

namespace trelm {

/// Parts of the couplings, drawn at random.
struct JackknifeOptions {
    float mapFrac = 0.2f; ///< couplings of each sample: a fraction, or a number with mapFixCount
    int mapFixCount = 0;  ///< 1: mapFrac is the number of couplings
};

/// Which noisy fits count.
enum FitChoice : int {
    everyFit = 0,
    fitsWithinErrors = 1, ///< those that predict all couplings within their errors
};

/// Noise on the couplings.
struct CouplingNoiseOptions {
    FitChoice mapMode = fitsWithinErrors;
    int mcAdjustFlag = 1;      ///< adjust the scale of the errors automatically
    int nAdjustMc = 100;       ///< fits at each scale that is tried
    float mcAdjustFrac = 0.7f; ///< required fraction of self-consistent fits
    float kSigma = 1.0f;       ///< scale of the errors without a search
    float kLSigma = 1.0f;      ///< first scale of the search
    float incSigma = 0.2f;     ///< its step
};

/// What structural noise moves.
enum NoiseKind : int { noiseOnAngles = 0, noiseOnVectors = 1 };

/// Noise on the structure.
struct ConeOptions {
    int idum = -1; ///< seed of the noise of -struc; all other modes draw from a fixed start
    NoiseKind noiseMode = noiseOnVectors; ///< of the backbone, or between the nuclei
    int coneFix = 0;                      ///< 1: coneWidth is the angle itself
    int coneDig = 360;      ///< positions around the cone; below 0 it is walked the other way round
    double coneWidth = 5.0; ///< standard deviation of the cone angle, degrees
};

/// The search of the width of the cone.
struct ConeSearchOptions {
    int nConeFlag = 1;       ///< adjust the width automatically
    int nConeAdjust = 100;   ///< fits at each width that is tried
    float nConeStart = 0.0f; ///< first width, degrees
    float nConeInc = 0.25f;  ///< step of the width, degrees
};

/// Noise on the structure for repeated fits.
struct StructuralNoiseOptions : ConeOptions, ConeSearchOptions {};

} // namespace trelm
