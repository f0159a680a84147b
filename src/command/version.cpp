#include "command/version.h"

#include "command/cmndargs.h"
#include "support/text/output_file.h"

namespace trelm {

bool asksVersion(int argc, char **argv)
{
    return flagLoc(argc, argv, "-version") != 0 && flagLoc(argc, argv, "-help") == 0;
}

int printVersion()
{
    OutFile out;
    writeOut(out, "trelm " TRELM_VERSION "\n");
    return static_cast<int>(closeOut(out, standardMessages()));
}

} // namespace trelm
