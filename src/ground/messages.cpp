#include "ground/messages.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <utility>

namespace trelm {
namespace {

/// Formats, and hands on. A line of usual length needs no memory of its own.
[[gnu::format(printf, 3, 0)]] void pass(Messages &messages, Messages::Stream stream, const char *format,
                                        std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    std::array<char, 512> line;
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    if (length >= static_cast<int>(line.size())) {
        std::string text(static_cast<std::size_t>(length), '\0');
        std::vsnprintf(text.data(), text.size() + 1, format, again);
        messages.text(stream, text);
    } else if (length > 0) {
        messages.text(stream, {line.data(), static_cast<std::size_t>(length)});
    }
    va_end(again);
}

void toStandardStream(Messages::Stream stream, std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stream == Messages::Stream::out ? stdout : stderr);
}

} // namespace

Messages::Messages(Sink receiver, bool isTerminal) : sink(std::move(receiver)), hasTerminal(isTerminal) {}

void Messages::text(Stream stream, std::string_view text)
{
    sink(stream, text);
}

void Messages::out(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    pass(*this, Stream::out, format, arguments);
    va_end(arguments);
}

void Messages::err(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    pass(*this, Stream::err, format, arguments);
    va_end(arguments);
}

void Messages::note(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    pass(*this, Stream::note, format, arguments);
    va_end(arguments);
}

void Messages::warn(const char *format, ...)
{
    std::va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    std::string line(static_cast<std::size_t>(std::max(0, std::vsnprintf(nullptr, 0, format, again))), '\0');
    std::vsnprintf(line.data(), line.size() + 1, format, arguments);
    va_end(again);
    va_end(arguments);
    sink(Stream::err, line);
    warned.push_back(line.ends_with('\n') ? line.substr(0, line.size() - 1) : line);
}

Status Messages::fail(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    pass(*this, Stream::err, format, arguments);
    va_end(arguments);
    return Status::failed;
}

Messages &standardMessages()
{
    static Messages messages(toStandardStream, isatty(STDERR_FILENO) != 0);
    return messages;
}

Messages &quietMessages()
{
    static Messages messages([](Messages::Stream stream, std::string_view text) {
        if (stream == Messages::Stream::out || stream == Messages::Stream::err)
            toStandardStream(stream, text);
    });
    return messages;
}

} // namespace trelm
