#include "driver/version.h"

#include "driver/cmndargs.h"
#include "support/text.h"

#include <cstdio>

namespace trelm {

bool asksVersion(int argc, char **argv)
{
    return flagLoc(argc, argv, "-version") != 0 && flagLoc(argc, argv, "-help") == 0;
}

int printVersion()
{
    std::puts("trelm " TRELM_VERSION);
    const bool isCut = std::fflush(stdout) != 0 || std::ferror(stdout) != 0;
    return isCut ? complain("Error writing %s.\n", "(stdout)") : 0;
}

} // namespace trelm
