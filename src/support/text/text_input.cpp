#include "support/text/text_input.h"

#include "support/text/text.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace trelm {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; ///< of UTF-8

struct CloseInput {
    void operator()(std::FILE *stream) const
    {
        if (stream != stdin)
            std::fclose(stream);
    }
};

TextStatus refuse(TextInput &input, const char *shownName, const char *why, Messages &messages)
{
    input = TextInput{};
    messages.err("Error reading %s: %s.\n", shownName, why);
    return TextStatus::bad;
}

} // namespace

TextStatus readText(TextInput &input, const std::string &name, Messages &messages)
{
    input = TextInput{};
    const bool isStandard = name.empty() || name == "-";
    const std::unique_ptr<std::FILE, CloseInput> stream(isStandard ? stdin : std::fopen(name.c_str(), "rb"));
    if (!stream)
        return TextStatus::noFile;
    const char *shownName = isStandard ? "(stdin)" : name.c_str();
    struct stat found = {};
    if (fileno(stream.get()) >= 0 && fstat(fileno(stream.get()), &found) == 0 && S_ISREG(found.st_mode))
        input.text.reserve(std::min(static_cast<std::size_t>(found.st_size), maxTextBytes));
    std::array<char, 65536> chunk;
    for (std::size_t count = chunk.size(); count == chunk.size();) { // a short one is the last
        errno = 0;
        count = std::fread(chunk.data(), 1, chunk.size(), stream.get());
        const int error = errno;
        // Each piece is looked at as it comes, so that a device of zero bytes ends here at once.
        if (std::memchr(chunk.data(), '\0', count) != nullptr)
            return refuse(input, shownName, "it holds binary data", messages);
        if (count > maxTextBytes - input.text.size())
            return refuse(input, shownName, "it is too large for a text file", messages);
        input.text.append(chunk.data(), count);
        if (std::ferror(stream.get()) != 0)
            return refuse(input, shownName,
                          error != 0 ? std::strerror(error) : "it cannot be read to its end", messages);
    }
    if (input.text.starts_with(byteOrderMark))
        input.text.erase(0, byteOrderMark.size());
    return TextStatus::read;
}

bool fgetsAlloc(TextInput &input, std::string_view &line)
{
    const std::string_view text = input.text;
    if (input.place >= text.size())
        return false;
    const std::size_t end = text.find('\n', input.place);
    line = text.substr(input.place, end == std::string_view::npos ? end : end - input.place);
    input.place = end == std::string_view::npos ? text.size() : end + 1;
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return true;
}

void trimEnd(TextInput &input)
{
    while (!input.text.empty() && isSpace(input.text.back()))
        input.text.pop_back();
}

void rewindText(TextInput &input)
{
    input.place = 0;
}

} // namespace trelm
