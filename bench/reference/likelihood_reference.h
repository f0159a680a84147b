// Plain forms of the likelihood search: response, pattern and convolution anew at each grid point, and all
// orientations anew for each coupling, as the method tells it. They judge the fast ones.
#pragma once

#include "magnitude/likelihood.h"

#include <vector>

namespace trelm {

/// The density of couplings of a rigid molecule at `Fi`, per Hz, not broadened; 0 outside the pattern. Dab
/// and Fi in Hz, Dab negative, R from 0 to below 2.
double analytical(double Dab, double R, double Fi);

/// The coupling of an orientation (radians), rounded to single precision before Dab scales it.
double dip_coup(double theta, double phi, double Dab, double R);

/// The score of one point, the broadened pattern as a sum at each coupling. `data`, the 8192 values of the
/// pattern before, is written over, and cleared first if `clear` is set.
double scorePlain(std::span<const float> couplings, double delta, const MlPoint &point, bool clear,
                  std::vector<float> &data);

/// The same with one transform for all places, but for the sums at small values.
double scoreByTransform(std::span<const float> couplings, double delta, const MlPoint &point, bool clear,
                        std::vector<float> &data);

/// mlMagTensor by transforms, without its progress lines and refusals.
std::vector<MlPoint> mlMagTensorPlain(const MlCouplings &couplings, const MlGrid &grid, bool clear);

/// The range of one coupling.
void mapMagToDcPlain(const MagnitudeRange &range, double coup, double coupErr, double &coupAve,
                     double &coupAveErr);

} // namespace trelm
