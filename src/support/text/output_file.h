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
    bool holdsOld = false; ///< what the file held before is still there
    bool isSpoilt = false; ///< it would not go

    OutFile() = default;
    OutFile(const OutFile &) = delete;
    OutFile &operator=(const OutFile &) = delete;
    ~OutFile(); // a road of failure: closed, not judged
};

/// Opens a file to be replaced ("w") or continued ("a"); an empty name is standard output. What a file to be
/// replaced held before stays until there is a result: it goes with the first text written or, without any,
/// at closeOut. So a run that fails before leaves the result of an earlier one as it was, and every road of
/// success has to end in closeOut. Fails if the file cannot be opened: the message is the caller's, and `out`
/// is then standard output.
Status openOut(OutFile &out, const std::string &name, const char *access);

/// True if both names lead to one file, by whatever path; false if one of them is empty. A device can be
/// written to under two names.
[[nodiscard]] bool isSameFile(const std::string &a, const std::string &b);

/// Writes a text. What the stream says is asked at the close.
void writeOut(OutFile &out, std::string_view text);

/// Ends the road of success: flushes and closes what is owned. Fails after "Error writing %s.\n" if anything
/// could not be written to its end.
Status closeOut(OutFile &out, Messages &messages);

} // namespace trelm
