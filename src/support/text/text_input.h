// Text files from outside, read whole and looked at line by line.
#pragma once

#include "ground/messages.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace trelm {

/// The most bytes a text file may hold. A larger one is refused: it is no table and no structure, and a
/// device without an end must not hang the run.
constexpr std::size_t maxTextBytes = std::size_t{512} << 20;

/// A whole text file and the place of the next line.
struct TextInput {
    std::string text;
    std::size_t place = 0;
};

enum class TextStatus { read, noFile, bad };

/// Reads a file, or standard input if the name is empty or "-". One that gzip packed is unpacked. A byte
/// order mark of UTF-8 is left out. `noFile`: it cannot be opened, and the message is the caller's. `bad`: it
/// cannot be read to its end, exceeds maxTextBytes, holds binary data (a zero byte), or was cut or damaged
/// after it was packed; one message says which.
[[nodiscard]] TextStatus readText(TextInput &input, const std::string &name, Messages &messages);

/// The next line, without its newline and a carriage return before it; a line is of any length. Returns false
/// at the end of the text. The view holds as long as `input.text` is left alone.
bool fgetsAlloc(TextInput &input, std::string_view &line);

/// Drops blank lines behind the last line that says something.
void trimEnd(TextInput &input);

/// Back to the first line.
void rewindText(TextInput &input);

} // namespace trelm
