// Incomplete gamma and beta functions, single precision. Source: the textbook's chapter on special
// functions (series, and continued fractions by the modified method of Lentz).
#pragma once

namespace trelm {

/// ln of the gamma function for xx > 0, computed in double.
float gammln(float xx);

/// Incomplete gamma function Q(a, x) = 1 - P(a, x) for a > 0 and x >= 0. Other arguments are reported and
/// give 0.
float gammq(float a, float x);

/// P(a, x) by its series, quick for x < a + 1.
float gser(float a, float x);

/// Q(a, x) by its continued fraction, quick for x > a + 1.
float gcf(float a, float x);

/// Incomplete beta function I_x(a, b) for a, b > 0 and x in 0 to 1. Another x is reported and gives 0.
float betai(float a, float b, float x);

/// The continued fraction of betai.
float betacf(float a, float b, float x);

} // namespace trelm
