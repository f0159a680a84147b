#include "support/text/symbol_table.h"

#include "support/text/text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace trelm {
namespace {

constexpr const char *tag = "hsym";

std::size_t chainOf(std::string_view name, const HTabInfo &hTab)
{
    return hashName(name) % static_cast<unsigned>(hTab.hashLength);
}

HSymInfo &symbolAt(HTabInfo &hTab, int place)
{
    return hTab.symbols[static_cast<std::size_t>(place)];
}

/// Puts a symbol in front of its chain.
void linkFirst(HTabInfo &hTab, int place)
{
    HSymInfo &symbol = symbolAt(hTab, place);
    int &head = hTab.base[chainOf(hSymName(symbol, hTab), hTab)];
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

bool roomForSymbol(HTabInfo &hTab, std::size_t nameLength)
{
    constexpr std::size_t first = 256;
    if (!makeRoom(hTab.symbols, tag, static_cast<std::size_t>(hTab.symbolCount), 1, first)) {
        complain("SymAlloc Error allocating memory.\n");
        return false;
    }
    if (!makeRoom(hTab.names, tag, hTab.namesUsed, nameLength, first)) {
        complain("NameAlloc Error allocating name.\n");
        return false;
    }
    if (hTab.symbolCount >= 2 * static_cast<long>(hTab.hashLength) && !rehash(hTab)) {
        complain("SymAlloc Error allocating memory.\n");
        return false;
    }
    return true;
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

int hSymTabAlloc(HTabInfo &hTab, int length)
{
    constexpr int defaultLength = 253;
    hTab = HTabInfo{};
    const int chains = length < 1 ? defaultLength : length;
    hTab.base = Block<int>(tag, static_cast<std::size_t>(chains));
    if (!hTab.base)
        return complain("SymTabAlloc Error allocating memory.\n");
    std::ranges::fill(hTab.base.span(), -1);
    hTab.hashLength = chains;
    return 0;
}

HSymInfo *hFindSym(std::string_view name, HTabInfo &hTab)
{
    if (hTab.hashLength < 1)
        return nullptr;
    for (int place = hTab.base[chainOf(name, hTab)]; place >= 0; place = symbolAt(hTab, place).next)
        if (hSymName(symbolAt(hTab, place), hTab) == name)
            return &symbolAt(hTab, place);
    return nullptr;
}

HSymInfo *hAddSym(std::string_view name, int value, HTabInfo &hTab)
{
    if (hTab.hashLength < 1 || !roomForSymbol(hTab, name.size())) {
        complain("AddSym Error Allocating Symbol.\n");
        return nullptr;
    }
    const int place = hTab.symbolCount++;
    HSymInfo &symbol = symbolAt(hTab, place);
    symbol = HSymInfo{};
    symbol.nameStart = hTab.namesUsed;
    symbol.nameLength = name.size();
    if (!name.empty())
        std::memcpy(hTab.names.data() + hTab.namesUsed, name.data(), name.size());
    hTab.namesUsed += name.size();
    symbol.value = value;
    linkFirst(hTab, place);
    return &symbol;
}

std::string_view hSymName(const HSymInfo &symbol, const HTabInfo &hTab)
{
    if (symbol.nameLength == 0)
        return {};
    return {hTab.names.data() + symbol.nameStart, symbol.nameLength};
}

} // namespace trelm
