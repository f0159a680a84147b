// The version of the program.
#pragma once

#include "ground/messages.h"

namespace trelm {

/// "0.1.0"
const char *versionText();

/// True if the run is asked for its version: -version stands on the line, and -help, which goes first, does
/// not.
bool asksVersion(int argc, char **argv);

/// Writes name and version, one line, to standard output. Fails after a message if it could not.
Status printVersion(Messages &messages);

} // namespace trelm
