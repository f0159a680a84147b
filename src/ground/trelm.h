// The run record: every parameter of a run, with its default at the field.
#pragma once

#include "simulation/alignment/options.h"

#include <array>
#include <string>

namespace trelm {

constexpr int maxFixResList = 800; ///< values of -fixRes
constexpr int maxFixAaList = 25;   ///< values of -fixAa
constexpr int maxMedia = 3;        ///< values of -dcID

/// Magnitude estimation.
struct MagnitudeOptions {
    float dcMin = 0.0f; ///< range of the data, Hz
    float dcMax = 0.0f;
    float Da2Par = 0.0f; ///< Da and R of the two-parameter result
    float R2Par = 0.0f;
    float daLo = -1000.0f; ///< limits of Da in the histogram fit, Hz
    float daHi = 1000.0f;
    float rhLo = 0.0f; ///< limits of R in the histogram fit
    float rhHi = 0.667f;
    int optExtrem = 1;    ///< average minimum and maximum coupling
    int nBinIn = 0;       ///< number of bins; 0 is automatic
    int modeFit = 3;      ///< degree of the nonlinear fit
    float sdevDzz = 0.4f; ///< scaling of the Dzz and Dyy errors
    float sdevDyy = 0.9f;
    float Dzz = 0.0f; ///< principal couplings, Hz
    float Dyy = 0.0f;
    float Dxx = 0.0f;
    int nBins = 0;         ///< bins used
    float binWidth = 0.0f; ///< width of a bin, Hz
    float DaFit = 0.0f;    ///< histogram fit result
    float DaErrFit = 0.0f;
    float RFit = 0.0f;
    float RErrFit = 0.0f;
    int mlMap = 0;        ///< transform couplings in the likelihood search
    int mlClear = 0;      ///< clear the pattern before each point of the search
    float lDaMl = -25.0f; ///< Da grid: low, high, increment, Hz
    float hDaMl = -3.0f;
    float incDaMl = 0.1f;
    float lRMl = 0.0f; ///< R grid: low, high, increment
    float hRMl = 0.7f;
    float incRMl = 0.01f;
    float DaMl = 0.0f; ///< likelihood result
    float DaErrMl = 0.0f;
    float RMl = 0.0f;
    float RErrMl = 0.0f;
};

/// The mode, and the kind of best-fit.
struct ModeOptions {
    int trelmMode = 1;  ///< the mode, 1 to 17
    int spreadMode = 0; ///< best-fit: 0 single, 1 jack, 2 mcDc, 3 mcStruc, 4 rand, 5 exhaust, 6 exhaustSel
};

/// How couplings are fitted.
struct FitOptions {
    int allowFixedDI = 1; ///< use fixed interaction constants when possible, else those of PDB distances
    int yzFlag = 0;       ///< exchange the ordering of the y and z axes in tensor analysis
    int eulerFlag = 1;    ///< solve for Euler angles
};

/// What a report shows.
struct ReportOptions {
    int verbFlag = 1; ///< coupling output in extended format
    int qFlag = 1;    ///< 0 Q from rms, 1 Q from the order matrix, 2 a standard deviation
    int rotN = 0;     ///< index of the rotation of the PDB, or of a hinge axis
};

/// Errors of a fit: noise of couplings and structures, and parts of the couplings.
struct NoiseOptions {
    int idum = -1;           ///< seed of the noise of -struc; all other modes draw from a fixed start
    int mapMode = 1;         ///< use only best-fit predictions within experimental errors
    int noiseMode = 1;       ///< structural noise on internuclear vectors (1) or dihedral angles (0)
    float mapFrac = 0.2f;    ///< couplings of each jackknife sample: a fraction, or a number with mapFixCount
    int mapFixCount = 0;     ///< 1: mapFrac is the number of couplings
    int coneFix = 0;         ///< fix the size of the noise cone
    int coneDig = 360;       ///< digitisation of the cone
    double coneWidth = 5.0;  ///< standard deviation of the cone angle, degrees
    int nConeFlag = 1;       ///< adjust structural noise automatically
    int nConeAdjust = 100;   ///< steps in structural noise determination
    float nConeStart = 0.0f; ///< starting structural noise, degrees
    float nConeInc = 0.25f;  ///< structural noise increment, degrees
    int mcAdjustFlag = 1;    ///< adjust the scaling of coupling errors automatically
    int nAdjustMc = 100;     ///< steps in the determination of the error scaling
    float mcAdjustFrac = 0.7f; ///< required fraction of self-consistent best-fits
    float kSigma = 1.0f;       ///< scaling factor of the experimental coupling errors
    float kLSigma = 1.0f;      ///< starting scaling factor
    float incSigma = 0.2f;     ///< increment of the scaling factor
};

/// Comparison of tensors and of coupling sets, analysis of structures.
struct ComparisonOptions {
    int opCode = 2;  ///< comparison: one of modes.h
    float c1 = 1.0f; ///< scale factors of the two operands
    float c2 = 1.0f;
    int elPdbFlag = 0; ///< structure analysis treats the PDB as: 0 steric, 1 electrostatic, 2 user
};

/// Conversion of coupling tables.
struct ConversionOptions {
    int dcProton = 0;  ///< include proton-proton couplings in conversion
    int dcID = 500;    ///< tensor molecule id of conversion output
    int normDc = 0;    ///< normalise couplings in conversion
    int outFormat = 2; ///< conversion: 0 xplor, 1 cns, 2 tbl, 3 dyana, 4 trelm, 5 rosetta
    int dcNoise = 0;   ///< add noise to couplings in conversion
};

/// Sets of couplings drawn at random.
struct DrawOptions {
    int sCount = 30;    ///< selection count, one of the two fields of -nSel
    int histRan = 1000; ///< number of random runs of the magnitude analyses
};

/// Search of assignments.
struct AssignmentOptions {
    int nAaCheck = 1;                               ///< used entries of exCheckList
    std::array<int, maxFixAaList> exCheckList = {}; ///< number of peaks of each amino acid type
    int nSel = 0;                                   ///< peaks to select for -exhaustSel
    int dcSelOpt = 1;                               ///< optimise the peak selection
    int nChainDc = 1;                               ///< used entries of chainDc
    std::array<std::string, maxMedia> chainDc;      ///< alignment media ids, the segment names in the PDB
};

/// Every parameter of a run. Option names stand in the table of command/params.
struct TrelmInfo : AlignmentOptions,
                   MagnitudeOptions,
                   ModeOptions,
                   FitOptions,
                   ReportOptions,
                   NoiseOptions,
                   ComparisonOptions,
                   ConversionOptions,
                   DrawOptions,
                   AssignmentOptions {
    int validCountD = 0; ///< couplings that survive selection and mapping
};

/// A field of DcInfo below this counts as unset.
constexpr int unsetResID = -99999;

/// The window of couplings.
struct DcInfo {
    int segFirst = -999999; ///< first residue of the coupling segment
    int segLast = -999999;  ///< last residue of the segment
    int segID = 1;          ///< segment id
    int segStep = 0;        ///< segment step
    int aFirst = -999999;   ///< first residue in the PDB that corresponds to segFirst
    int excludeMode = 3;    ///< 1 exclusive, 2 inclusive, 3 inclusive with the maximum range
};

/// 1 if the larger of the two residue ids stands among the first nFixAa entries of the list, else 0.
int chkFixAa(int nFixAa, const int *fixResList, int resIDI, int resIDJ);

/// The fatal exit of the numerical code: three lines on the standard error stream, then the process ends with
/// status 1, without the tear-down and the memory balance of other failures.
[[noreturn]] void mzerror(const char *text);

} // namespace trelm
