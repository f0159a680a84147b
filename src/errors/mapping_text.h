// What the samples of a mapping say, as text.
#pragma once

#include "errors/tensor_samples.h"

#include <string>

namespace trelm {

// The first lines of the tables of samples.
constexpr const char *magnitudeHead = "# SVD_ID    Aa         R\n\n";
constexpr const char *anglesHead = "# SVD_ID  ANGLE_X  ANGLE_Y  ANGLE_Z       ANGLE_5D        COLL_5D\n\n";
constexpr const char *saupeHead = "VARS     ID   S_ZZ     S_XXYY     S_XY     S_XZ     S_YZ\n"
                                  "FORMAT  %5d  %e       %e       %e     %e     %e\n\n";

/// Da on the scale of an amide pair (Hz), R, and the misfit of a sample; R is no number without a tensor.
std::string magnitudeLine(const CountedSample &sample);

/// The axes of a sample as points of a sinusoidal map of the world, and their opposite ends: two lines.
std::string axesLines(const CountedSample &sample);

/// The angles of stored sample i to the mean tensor, degrees.
std::string anglesLine(const TensorSamples &samples, std::size_t i);

/// The Saupe vector of stored sample i; `gap` stands between number and values.
std::string saupeLine(const TensorSamples &samples, std::size_t i, const char *gap);

/// The statistics of a mapping as DATA lines.
std::string mappingReport(const TensorSamples &samples);

} // namespace trelm
