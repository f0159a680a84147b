// Plain forms of the likelihood search: response, pattern and convolution anew at each grid point, and all
// orientations anew for each coupling, as the method tells it. They judge the fast ones.
#pragma once

#include "magnitude/likelihood.h"

#include <vector>

namespace trelm {

/// The broadened pattern on all places of the axis. `data`, 8192 values, is written over, not cleared.
std::vector<float> broadenedPlain(double delta, double Dab, double R, std::vector<float> &data);

/// The score of one point; `data` as above, cleared first if `clear` is set.
double scorePlain(std::span<const float> couplings, double delta, const MlPoint &point, bool clear,
                  std::vector<float> &data);

/// mlMagTensor without its progress lines and refusals.
std::vector<MlPoint> mlMagTensorPlain(const MlCouplings &couplings, const MlGrid &grid, bool clear);

/// The range of one coupling.
void mapMagToDcPlain(const MagnitudeRange &range, double coup, double coupErr, double &coupAve,
                     double &coupAveErr);

} // namespace trelm
