// Student's distribution of whole degrees of freedom.
// Source: Abramowitz and Stegun, Handbook of Mathematical Functions, 26.7.3 and 26.7.4: finite sums.
#pragma once

namespace trelm {

/// The probability that |t| of `degrees` degrees of freedom is larger than this. 1 for fewer than one.
double studentTail(double t, int degrees);

/// The |t| that is passed with this probability, 0 < tail < 1; infinite for fewer than one degree of freedom.
double studentLimit(double tail, int degrees);

} // namespace trelm
