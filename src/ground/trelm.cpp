#include "ground/trelm.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace trelm {

int chkFixAa(int nFixAa, const int *fixResList, int resIDI, int resIDJ)
{
    const int *last = fixResList + std::max(nFixAa, 0);
    return std::find(fixResList, last, std::max(resIDI, resIDJ)) != last ? 1 : 0;
}

void mzerror(const char *text)
{
    std::fprintf(stderr, "Numerical Recipes run-time error...\n%s\n...now exiting to system...\n", text);
    std::exit(1);
}

} // namespace trelm
