// A result file that is written to its end, or the user hears of it.
#pragma once

#include "ground/messages.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace trelm {

/// A result file. Owns its stream, unless the name was empty: then it is standard output, never closed.
struct OutFile {
    std::FILE *fp = stdout;
    std::string name;
    std::string target;    ///< the file that `name` leads to, where the result goes in the end
    std::string temporary; ///< the file that is written until then; empty: the target itself
    bool holdsOld = false; ///< what the target held before is still in it
    bool isSpoilt = false; ///< it would not go

    OutFile() = default;
    OutFile(const OutFile &) = delete;
    OutFile &operator=(const OutFile &) = delete;
    ~OutFile(); // after a failure: closed, not judged, and a temporary file is removed
};

/// Opens a file to be replaced ("w") or continued ("a"); an empty name or "-" is standard output. A regular
/// file is written under a temporary name in its folder and takes its place, its permissions and the links to
/// it, when it is whole, at closeOut: until then the result of an earlier run stands as it was, whatever
/// happens. A file that is continued, a device, a pipe, and a file in a folder that takes no new one are
/// written themselves; what such a file to be replaced held before goes with the first text written or,
/// without any, at closeOut. Fails if the file cannot be opened: the message is the caller's, and `out` is
/// then standard output.
Status openOut(OutFile &out, const std::string &name, const char *access);

/// Writes a text. What the stream says is asked at the close.
void writeOut(OutFile &out, std::string_view text);

/// Ends a success: flushes to the disk, closes what is owned, and puts it in its place; in a strict run that
/// has warned it is thrown away. Fails after "Error writing %s.\n" if anything could not be written to its
/// end.
Status closeOut(OutFile &out, Messages &messages);

/// After a failure: what was written stays, if there was no such file before.
void keepNew(OutFile &out, Messages &messages);

/// Why a file cannot be opened to be written, as far as that shows without opening it; empty where nothing
/// speaks against it.
std::string writeObstacle(const std::string &name);

} // namespace trelm
