// Prints the man page, a completion or the reference of the options: trelm_manual man|bash|zsh|reference.
#include "manual.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace {

struct Guide {
    std::string_view name;
    std::string (*make)();
};

constexpr Guide guides[] = {
    {"man", trelm::manPage},
    {"bash", trelm::bashCompletion},
    {"zsh", trelm::zshCompletion},
    {"reference", trelm::referencePage},
};

} // namespace

int main(int argc, char **argv)
{
    const auto *guide = std::ranges::find(guides, argc == 2 ? argv[1] : "", &Guide::name);
    if (guide == std::end(guides)) {
        std::fputs("Usage: trelm_manual man|bash|zsh|reference\n", stderr);
        return 1;
    }
    std::fputs(guide->make().c_str(), stdout);
    if (std::fflush(stdout) == 0)
        return 0;
    std::fputs("trelm_manual: standard output could not be written.\n", stderr);
    return 1;
}
