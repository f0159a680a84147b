#include "support/text/symbol_table.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace trelm {
namespace {

constexpr const char *tag = "hsym";

std::size_t chainOf(std::string_view name, const HTabInfo &hTab)
{
    return hashName(name) % static_cast<unsigned>(hTab.hashLength);
}

std::string_view nameOf(const HSymInfo &symbol, const HTabInfo &hTab)
{
    return {hTab.names.data() + symbol.nameStart, symbol.nameLength};
}

/// Puts a symbol in front of its chain.
void linkFirst(HTabInfo &hTab, int place)
{
    HSymInfo &symbol = hTab.symbols[static_cast<std::size_t>(place)];
    int &head = hTab.base[chainOf(nameOf(symbol, hTab), hTab)];
    symbol.next = head;
    head = place;
}

/// More chains for a table that has grown. The symbols are linked anew in the order they came in, so that of
/// equal names the latest stays in front.
bool rehash(HTabInfo &hTab)
{
    constexpr int most = std::numeric_limits<int>::max();
    if (hTab.hashLength > (most - 1) / 4)
        return true;
    const int length = 4 * hTab.hashLength + 1;
    Block<int> chains(tag, static_cast<std::size_t>(length));
    if (!chains)
        return false;
    std::ranges::fill(chains.span(), -1);
    hTab.base = std::move(chains);
    hTab.hashLength = length;
    for (int place = 0; place < hTab.symbolCount; ++place)
        linkFirst(hTab, place);
    return true;
}

Status roomForSymbol(HTabInfo &hTab, std::size_t nameLength, Messages &messages)
{
    constexpr std::size_t first = 256;
    if (!makeRoom(hTab.symbols, tag, static_cast<std::size_t>(hTab.symbolCount), 1, first))
        return messages.fail("SymAlloc Error allocating memory.\n");
    if (!makeRoom(hTab.names, tag, hTab.namesUsed, nameLength, first))
        return messages.fail("NameAlloc Error allocating name.\n");
    if (hTab.symbolCount >= 2 * static_cast<long>(hTab.hashLength) && !rehash(hTab))
        return messages.fail("SymAlloc Error allocating memory.\n");
    return Status::ok;
}

} // namespace

unsigned hashName(std::string_view name)
{
    constexpr unsigned topBits = 0xf0000000u;
    unsigned hash = 0;
    for (char c : name) {
        hash = (hash << 4) + static_cast<unsigned char>(c);
        const unsigned g = hash & topBits;
        if (g != 0)
            hash = (hash ^ (g >> 24)) & ~topBits;
    }
    return hash;
}

Status hSymTabAlloc(HTabInfo &hTab, int length, Messages &messages)
{
    constexpr int defaultLength = 253;
    hTab = HTabInfo{};
    const int chains = length < 1 ? defaultLength : length;
    hTab.base = Block<int>(tag, static_cast<std::size_t>(chains));
    if (!hTab.base)
        return messages.fail("SymTabAlloc Error allocating memory.\n");
    std::ranges::fill(hTab.base.span(), -1);
    hTab.hashLength = chains;
    return Status::ok;
}

std::optional<int> hFindSym(std::string_view name, const HTabInfo &hTab)
{
    if (hTab.hashLength < 1)
        return std::nullopt;
    for (int place = hTab.base[chainOf(name, hTab)]; place >= 0;) {
        const HSymInfo &symbol = hTab.symbols[static_cast<std::size_t>(place)];
        if (nameOf(symbol, hTab) == name)
            return symbol.value;
        place = symbol.next;
    }
    return std::nullopt;
}

Status hAddSym(std::string_view name, int value, HTabInfo &hTab, Messages &messages)
{
    if (hTab.hashLength < 1 || roomForSymbol(hTab, name.size(), messages) != Status::ok)
        return messages.fail("AddSym Error Allocating Symbol.\n");
    const int place = hTab.symbolCount++;
    hTab.symbols[static_cast<std::size_t>(place)] = {hTab.namesUsed, name.size(), value, -1};
    std::ranges::copy(name, hTab.names.data() + hTab.namesUsed);
    hTab.namesUsed += name.size();
    linkFirst(hTab, place);
    return Status::ok;
}

} // namespace trelm
