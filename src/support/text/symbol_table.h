// A chained symbol table: names to values, hashed. Of equal names the latest is found first.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace trelm {

/// A symbol. `next` is the place of the one behind it in the table's symbol list, -1 for none.
struct HSymInfo {
    std::size_t nameStart = 0; ///< in the table's text store
    std::size_t nameLength = 0;
    int value = 0;
    int next = -1;
};

/// A table. It owns its symbols and gives them back at its end. The number of chains grows with the number of
/// symbols, so that a look-up costs the same in a table of any size.
struct HTabInfo {
    int hashLength = 0; ///< chains; 0: the table is not made yet
    int symbolCount = 0;
    Block<int> base; ///< head of each chain, -1 for an empty one
    Block<HSymInfo> symbols;
    Block<char> names;
    std::size_t namesUsed = 0;
};

/// Makes a table of `length` chains, or 253 if length is below 1. Fails after a message.
Status hSymTabAlloc(HTabInfo &hTab, int length, Messages &messages);

/// The value of a name, if it has one.
std::optional<int> hFindSym(std::string_view name, const HTabInfo &hTab);

/// Adds a symbol, even if the name is there. Fails after a message if there is no memory.
Status hAddSym(std::string_view name, int value, HTabInfo &hTab, Messages &messages);

/// The PJW hash of a name, before it is taken modulo the number of chains.
unsigned hashName(std::string_view name);

} // namespace trelm
