// A tensor for each model of a structure file, and what they have in common.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/tensor.h"
#include "ground/messages.h"
#include "structure/models.h"

#include <array>
#include <cstddef>
#include <vector>

namespace trelm {

/// The fit of one model.
struct ModelFit {
    int number = 0;                    ///< of the model
    int count = 0;                     ///< couplings in the fit
    double da = 0.0, r = 0.0;          ///< Da in Hz, of N-H; r is no number where Da is 0
    double q = 0.0;                    ///< rms of the differences over that of the observed couplings
    std::array<double, 3> angles = {}; ///< of the axes z, y, x to those of the mean tensor, degrees, 0 to 90
};

/// A mean with its standard deviation, which goes by the number of models less one; 0 of a single model.
struct MeanValue {
    double mean = 0.0, deviation = 0.0;
};

struct ModelFits {
    std::vector<ModelFit> models;
    std::size_t best = 0; ///< place of the model with the lowest Q
    MeanValue da, r, q;   ///< of the models' values
    double meanDa = 0.0;  ///< of the mean tensor: the mean of the order matrices; Hz, of N-H
    double meanR = 0.0;
    double qOfMeans = 0.0; ///< Q of the couplings' means over the models, each calculated with its own tensor
};

/// What is fitted. Axes are compared in the frame in which the models stand.
struct ModelInput {
    const PDBInfo &pdbInfo;
    const DTable &dTab; ///< brought onto the first model
    const ModelSet &models;
    const RowMatch &match; ///< how that was done: constants by the distances of a model are found anew
    int yzFlag = 0;        ///< as FitOptions
    int verbose = 0;       ///< as in FitInput
};

/// Fits each model by the tensor mode of the table. Fails after a message as fitColumns and analyzeSaupe do.
Status fitModels(const ModelInput &input, ModelFits &fits, Messages &messages);

} // namespace trelm
