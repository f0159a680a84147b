// What every reader of coupling files promises.
#pragma once

#include "couplings/formats/forms.h"

#include <string_view>

namespace trelm::fuzz {

/// Reads a text and asks for rows that make sense, or for one line with its place.
void checkArchive(ArchiveReader read, std::string_view text);

} // namespace trelm::fuzz
