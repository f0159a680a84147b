// The type of a coupling: N-H, H-C, CA-HA and so on, whatever the order and the names of the file.
#pragma once

#include "couplings/dipolar.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace trelm {

/// The types of a table, numbered as they are met. Those of the backbone are named by their atoms, and by
/// their residues where these are not the bonded ones, "N-H i,i+2"; all others by their nuclei, "other C-H".
class CouplingTypes {
  public:
    /// The number of the row's type.
    std::size_t of(const DInfo &row);
    [[nodiscard]] const std::vector<std::string> &names() const { return names_; }

  private:
    std::map<std::pair<const RowNames *, int>, std::size_t> known_; ///< by names and step between residues
    std::vector<std::string> names_;
};

} // namespace trelm
