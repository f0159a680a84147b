// The names in the rows of a coupling table. Few sets of them differ: a row holds a pointer to its set, which
// is kept once for all rows that share it.
#pragma once

#include "structure/pdb.h"

#include <cstddef>
#include <unordered_set>

namespace trelm {

/// The names of both sides of a row, as the table has them; empty where it has none.
struct RowNames {
    Name resNameI = {}, resNameJ = {}, atomNameI = {}, atomNameJ = {};
    Name chainNameI = {}, chainNameJ = {}, segNameI = {}, segNameJ = {};

    [[nodiscard]] bool operator==(const RowNames &) const = default;
};

inline constexpr RowNames noNames = {};

/// Sets of names, each of them once. Their places hold as long as the store.
class NameStore {
  public:
    /// The kept set that equals this one.
    const RowNames *keep(const RowNames &names) { return &*kept_.insert(names).first; }

  private:
    struct Hash {
        std::size_t operator()(const RowNames &names) const;
    };
    std::unordered_set<RowNames, Hash> kept_;
};

} // namespace trelm
