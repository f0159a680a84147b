#include "reference/fit_reference.h"

namespace trelm {

void findSPlain(const FitVectors &vectors, SaupeValues &saupe)
{
    FitWork fresh;
    static_cast<void>(findS(vectors, saupe, fresh, standardMessages()));
}

} // namespace trelm
