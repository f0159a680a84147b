#include "support/symbol_table.h"

#include "support/text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

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
    symbol.prev = -1;
    symbol.next = head;
    if (head >= 0)
        symbolAt(hTab, head).prev = place;
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

/// Room for `extra` more elements: doubling, so that a long list costs no more for each than a short one.
template <class T>
bool growFor(Block<T> &block, std::size_t used, std::size_t extra)
{
    constexpr std::size_t first = 256;
    if (used + extra <= block.length())
        return true;
    return block.grow(tag, std::max({first, 2 * block.length(), used + extra}));
}

bool roomForSymbol(HTabInfo &hTab, std::size_t nameLength)
{
    if (!growFor(hTab.symbols, static_cast<std::size_t>(hTab.symbolCount), 1)) {
        complain("SymAlloc Error allocating memory.\n");
        return false;
    }
    if (!growFor(hTab.names, hTab.namesUsed, nameLength)) {
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

HSymInfo *hAddSym(std::string_view name, int type, HTabInfo &hTab)
{
    static int lastId = 0; // one count for all tables: an id names one symbol of the run
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
    symbol.id = ++lastId;
    symbol.val.type = type;
    linkFirst(hTab, place);
    return &symbol;
}

HSymInfo *hFindOrAddSym(std::string_view name, int type, HTabInfo &hTab)
{
    HSymInfo *symbol = hFindSym(name, hTab);
    if (symbol == nullptr)
        return hAddSym(name, type, hTab);
    if (symbol->val.type != type)
        complain("Symbol Notice: Type Clash for Symbol %s\n", std::string(name).c_str());
    return symbol;
}

int hSetSymFlt(std::string_view name, float val, HTabInfo &hTab)
{
    HSymInfo *symbol = hFindOrAddSym(name, symFloat, hTab);
    if (symbol == nullptr)
        return 1;
    symbol->val.type = symFloat; // after a clash the type follows what is stored
    symbol->val.f = val;
    return 0;
}

std::string_view hSymName(const HSymInfo &symbol, const HTabInfo &hTab)
{
    if (symbol.nameLength == 0)
        return {};
    return {hTab.names.data() + symbol.nameStart, symbol.nameLength};
}

int hSymDepth(const HSymInfo &symbol, const HTabInfo &hTab)
{
    int depth = 0;
    for (int place = symbol.prev; place >= 0; place = hTab.symbols[static_cast<std::size_t>(place)].prev)
        ++depth;
    return depth;
}

int hMaxDepth(const HTabInfo &hTab)
{
    int deepest = 0;
    for (int head : hTab.base.span()) {
        int length = 0;
        for (int place = head; place >= 0; place = hTab.symbols[static_cast<std::size_t>(place)].next)
            ++length;
        deepest = std::max(deepest, length - 1);
    }
    return deepest;
}

void hSymTabFree(HTabInfo &hTab)
{
    hTab = HTabInfo{};
}

} // namespace trelm
