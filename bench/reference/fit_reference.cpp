#include "reference/fit_reference.h"

#include "support/numerics/svd.h"

namespace trelm {

int findSPlain(const FitVectors &vectors, std::array<float, 5> &saupe, std::array<float, 5> &dSaupe)
{
    svdPolyFree();
    return findS(vectors, saupe, dSaupe);
}

} // namespace trelm
