// Fast Fourier transforms and convolution, single precision. A complex value is two floats, real part first.
// Source: Danielson and Lanczos, J. Franklin Inst. 233 (1942) 365; Cooley and Tukey, Math. Comput. 19 (1965)
// 297. Lengths are powers of two; another length, or a span that is too short, is reported and returns 1.
//
// The plain form that tests and benchmarks judge the program's convolution by,
// support/numerics/symmetric_filter.
#pragma once

#include <span>

namespace trelm {

/// Replaces data.size() / 2 complex values by their transform: sum of x_k exp(isign 2 pi i j k / n), not
/// normalised. Returns 0, or 1 as told above, and so do all below.
int four1(std::span<float> data, int isign);

/// Transform of data.size() real values: the positive half of the spectrum, with the real last value in the
/// place of the imaginary part of the first. isign -1 goes back; the result then wants the factor 2 / n.
int realft(std::span<float> data, int isign);

/// The full complex transforms (2 n floats each) of two real arrays of the same length n.
int twofft(std::span<const float> data1, std::span<const float> data2, std::span<float> fft1,
           std::span<float> fft2);

/// Convolves (isign 1) or deconvolves (-1) n real values with a response of odd length m <= n in wrap-around
/// order: positive times from the start, negative times from the end. `ans` has room for 2 n floats; the
/// first n are the result. A response whose transform has a zero cannot be deconvolved: reported, status 1.
int convlv(std::span<const float> data, std::span<const float> respns, int isign, std::span<float> ans);

} // namespace trelm
