// Convolution of real values on a ring with a symmetric response, for a window of the ring only.
//
// The window is cut in two halves that one complex transform takes as its real and its imaginary part: the
// transform of a symmetric response is real, so the parts do not mix. Each half brings the neighbours within
// reach of the response along, whose places are dropped afterwards. Source: the overlap-save method,
// Stockham, AFIPS Proc. 28 (1966) 229.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"

#include <cstddef>
#include <span>

namespace trelm {

/// What the convolutions with one response share.
struct SymmetricFilter {
    std::size_t wing = 0;   ///< places of the response on either side of its centre
    std::size_t half = 0;   ///< places of a half of the window
    Block<float> resp;      ///< transform of the response, in the order in which a transform comes out
    Block<float> cosines;   ///< turns of the stages: those of a stage that joins n values begin at place n
    Block<float> sines;     ///< the same
    Block<float> real, ans; ///< the halves; `ans` holds both, one behind the other, when done
};

/// Places of the shortest transform for a window, a power of two.
std::size_t filterLength(std::size_t wing, std::size_t window);

/// Sets a filter up for a response, given from its centre to its end, and windows of up to `window` places.
/// Fails after a message if there is no memory.
Status startFilter(SymmetricFilter &filter, std::span<const float> response, std::size_t window,
                   Messages &messages);

/// Convolves the ring for the window that begins at place `first`. The result stands in the first `window`
/// places of `ans` until the next call. Returns the largest value at all 2 `half` places that were computed,
/// those behind the window with them: the rounding of the transforms goes by it.
float applyFilter(SymmetricFilter &filter, std::span<const float> ring, std::size_t first);

} // namespace trelm
