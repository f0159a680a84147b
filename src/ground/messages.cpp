#include "ground/messages.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

namespace trelm {
namespace {

std::string formatted(const char *format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length <= 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

Messages::Messages(Sink receiver) : sink(std::move(receiver)) {}

void Messages::text(Stream stream, std::string_view text)
{
    sink(stream, text);
}

void Messages::out(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    text(Stream::out, formatted(format, arguments));
    va_end(arguments);
}

void Messages::err(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    text(Stream::err, formatted(format, arguments));
    va_end(arguments);
}

Status Messages::fail(const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    text(Stream::err, formatted(format, arguments));
    va_end(arguments);
    return Status::failed;
}

Messages &standardMessages()
{
    static Messages messages([](Messages::Stream stream, std::string_view text) {
        std::fwrite(text.data(), 1, text.size(), stream == Messages::Stream::out ? stdout : stderr);
    });
    return messages;
}

} // namespace trelm
