#include "support/text/text_input.h"

#include "support/text/gzip.h"
#include "support/text/text.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

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

/// Takes the next piece of a file, which may be packed. Returns what is wrong with it, or null. Each piece is
/// looked at as it comes, so that a device of zero bytes ends here at once.
const char *appendPiece(std::string_view piece, std::optional<GzipReader> &gzip, std::string &text)
{
    const std::size_t before = text.size();
    if (!gzip && piece.size() > maxTextBytes - before)
        return "it is too large for a text file";
    if (!gzip)
        text.append(piece);
    else if (const char *why = gzip->unpack(piece, maxTextBytes, text); why != nullptr)
        return why;
    if (text.find('\0', before) != std::string::npos)
        return "it holds binary data";
    return text.size() > maxTextBytes ? "it is too large for a text file" : nullptr;
}

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
    std::optional<GzipReader> gzip;
    std::array<char, 65536> chunk;
    for (std::size_t count = chunk.size(); count == chunk.size();) { // a short one is the last
        errno = 0;
        count = std::fread(chunk.data(), 1, chunk.size(), stream.get());
        const int error = errno;
        const std::string_view piece(chunk.data(), count);
        if (input.text.empty() && !gzip && isGzip(piece))
            gzip.emplace();
        if (const char *why = appendPiece(piece, gzip, input.text); why != nullptr)
            return refuse(input, shownName, why, messages);
        if (std::ferror(stream.get()) != 0)
            return refuse(input, shownName,
                          error != 0 ? std::strerror(error) : "it cannot be read to its end", messages);
    }
    if (const char *why = gzip ? gzip->end() : nullptr; why != nullptr)
        return refuse(input, shownName, why, messages);
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
