// What all mappings of a fit's error share: the tensors of repeated fits, what they have in common, and how
// both are written.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/tensor.h"
#include "ground/alloc.h"
#include "ground/trelm.h"
#include "structure/select.h"
#include "support/text/output_file.h"

#include <array>
#include <string>

namespace trelm {

constexpr int maxSamples = 11000; ///< tensors that are kept; the averages cover later ones too

/// Results of a mapping. An empty name is standard output.
struct MappingFiles {
    std::string outDName;   ///< couplings with the statistics of the mapping
    std::string pdbRotName; ///< structure in the frame of the mean tensor
    std::string outDaName;  ///< Da and R of each sample
    std::string outMapName; ///< principal axes of each sample on a map of the world
    std::string
        outDFailName; ///< couplings with the number of fits that missed them; empty but for coupling noise
    std::string outAngName;       ///< each sample's angles to the mean tensor
    std::string outAName;         ///< the samples' Saupe vectors
    const char *remark = nullptr; ///< for the structures; may be null
};

/// What a mapping is given.
struct MappingSetup {
    PDBInfo *pdbInfo = nullptr;
    const PDBSelectInfo *sInfo = nullptr; ///< atoms of the structures
    DTable *dTab = nullptr;
    TrelmInfo *trelmInfo = nullptr;
    MappingFiles files;
    int mapCount = 0; ///< samples to draw
    int verbose = 0;  ///< of the fits
};

/// The files that are written sample by sample.
struct SampleOutputs {
    OutFile map, da, angles, saupe;
    std::string text; ///< work space
};

/// Words of a mapping that differ from branch to branch.
struct MappingWords {
    const char *noAngles; ///< before the name of a file of angles that can not be opened
    const char *dot;      ///< behind this name and that of the file of Da and R
    const char *saupeGap; ///< between number and values in the file of Saupe vectors
};
constexpr const char *daHead = "# SVD_ID    Aa         R\n\n"; ///< first lines of the file of Da and R
constexpr const char *noDaWords = "TRELM Error opening log file for Da distribution mapping ";
constexpr MappingWords noiseWords = {noDaWords, "", " "};
constexpr MappingWords mappingWords = {"TRELM Error opening log file for Angular distribution ", ".", "  "};

/// Opens the four files. Returns 0, or 1 after a message.
int openOutputs(const MappingSetup &setup, const MappingWords &words, SampleOutputs &outputs);

/// Closes them. Returns 0, or 1 after a message if one could not be written to its end.
int closeOutputs(SampleOutputs &outputs);

/// Sum, sum of squares and range of a quantity.
struct Spread {
    double sum = 0.0, sqrSum = 0.0, min = 0.0, max = 0.0;
    void add(double value)
    {
        sum += value;
        sqrSum += value * value;
    }
    void widen(double value, bool isFirst)
    {
        min = isFirst || value < min ? value : min;
        max = isFirst || value > max ? value : max;
    }
    [[nodiscard]] double average(double count) const { return sum / count; }
    [[nodiscard]] double stdDev(double count) const;
};

/// Range of an angle, degrees, in the precision of the fits.
struct AngleRange {
    float min = 0.0f, max = 0.0f;
    void widen(float value, bool isFirst)
    {
        min = isFirst || value < min ? value : min;
        max = isFirst || value > max ? value : max;
    }
};

/// One Euler solution, degrees.
struct EulerSolution {
    float phi = 0.0f, psi = 0.0f, theta = 0.0f;
    [[nodiscard]] bool isZero() const { return phi == 0.0f && psi == 0.0f && theta == 0.0f; }
};
EulerSolution eulerSolution(const DTensor &dTensor, std::size_t j);

/// The tensors of the counted fits. Da and Dr without unit, daNH on the scale of an amide pair, Hz.
struct TensorSamples {
    Block<Saupe> store; ///< the first maxSamples of them
    int count = 0;
    EulerSolution orig;     ///< of the fit that is mapped
    std::size_t chosen = 0; ///< Euler solution of the last sample that was compared with it
    Spread szz, gMag, da, dr, angle5d;
    float daNHSum = 0.0f, daNHSqrSum = 0.0f, daNHMin = 0.0f, daNHMax = 0.0f;
    std::array<Spread, saupeCount> saupe;
    AngleRange phi, psi, theta;

    Saupe saupeAve = {}, saupeStdDev = {}; ///< settled by averageSamples
    double daNHAve = 0.0, daNHStdDev = 0.0;
    int averaged = 0; ///< samples behind the averages

    Saupe saupeMin = {}, saupeMax = {}; ///< samples of smallest and largest magnitude, by comparePass
    EulerLists euler;                   ///< of the mean tensor
};

/// Asks for the store. Returns 0, or 1 after a message.
int makeSamples(TensorSamples &samples);

/// Counts the tensor that the last fit left in the table, and writes its lines. `n`: number of the try, from
/// 1. Returns 0, or 1 after a message.
int takeSample(TensorSamples &samples, const MappingSetup &setup, int n, SampleOutputs &outputs);

/// Averages and deviations of what was counted.
void averageSamples(TensorSamples &samples);

/// Holds the stored samples against the mean tensor, and writes them. samples.count is maxSamples at most
/// from then on. Returns 0, or 1 after a message.
int comparePass(TensorSamples &samples, const MappingSetup &setup, const MappingWords &words,
                SampleOutputs &outputs);

/// The statistics of a mapping as DATA lines.
std::string mappingReport(const TensorSamples &samples);

/// The structure in the frame of the mean tensor. Returns 0, or non-zero after messages that end in `words`.
int writeMeanFrame(const TensorSamples &samples, const MappingSetup &setup, const char *words);

/// Ends a mapping on the couplings of the mean tensor: report, couplings, structure. The table's tensor is
/// then the mean one, its tensorMode tensorGiven. Returns 0, or non-zero after a message.
int reportMeanTensor(const TensorSamples &samples, const MappingSetup &setup);

/// Whether the first element of the fitted Saupe vector is 999.9 or more, which is no order: such a sample is
/// dropped. A fit of fewer than five couplings leaves zeros, and those count.
bool isWithoutTensor(const DTable &dTab);

} // namespace trelm
