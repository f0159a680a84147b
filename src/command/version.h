// The version of the program.
#pragma once

namespace trelm {

/// True if the run is asked for its version: -version stands on the line, and -help, which goes first, does
/// not.
bool asksVersion(int argc, char **argv);

/// Writes name and version, one line, to standard output. Returns 0, or 1 after a message if it could not.
int printVersion();

} // namespace trelm
