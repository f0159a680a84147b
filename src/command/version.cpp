#include "command/version.h"

#include "support/text/output_file.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

namespace trelm {

const char *versionText()
{
    return TRELM_VERSION;
}

bool asksVersion(int argc, char **argv)
{
    const std::span<char *> words(argv, static_cast<std::size_t>(argc));
    const auto has = [words](std::string_view flag) {
        return std::ranges::any_of(words,
                                   [flag](const char *word) { return word != nullptr && flag == word; });
    };
    return has("-version") && !has("-help");
}

Status printVersion(Messages &messages)
{
    OutFile out;
    writeOut(out, std::string("trelm ") + versionText() + "\n");
    return closeOut(out, messages);
}

} // namespace trelm
