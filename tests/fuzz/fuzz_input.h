// What the fuzzers share. Each of them hands bytes to one reader of outside bytes and then asks for what the
// reader promises about its result.
#pragma once

#include "structure/pdb.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace trelm::fuzz {

std::string_view asText(const std::uint8_t *data, std::size_t size);

/// Puts the bytes into a file, since the readers take file names. It is one in memory: a run makes millions,
/// and a process that ends with a fault leaves nothing behind. The next call overwrites it. Returns its name.
std::string fileOf(std::string_view text);

/// Ends the process as a fault does, with a word on what was broken.
void require(bool holds, const char *promise);

/// A few residues of a protein, for readers that look atoms up.
PDBInfo &smallMolecule();

} // namespace trelm::fuzz
