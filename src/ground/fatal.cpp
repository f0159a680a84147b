#include "ground/fatal.h"

#include <cstdio>
#include <cstdlib>

namespace trelm {

void mzerror(const char *text)
{
    std::fprintf(stderr, "Numerical Recipes run-time error...\n%s\n...now exiting to system...\n", text);
    std::exit(1);
}

} // namespace trelm
