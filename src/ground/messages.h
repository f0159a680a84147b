// What a run says while it works: results and remarks, warnings and errors, and how far it is.
#pragma once

#include "ground/status.h"

#include <functional>
#include <string_view>

namespace trelm {

/// Handed down to whoever has something to say. The program binds it to its streams; a test or another
/// program binds it to what it likes.
class Messages {
  public:
    enum class Stream { out, err, progress };
    /// Takes a piece of text, as it comes: pieces need not be whole lines.
    using Sink = std::function<void(Stream stream, std::string_view text)>;

    /// `isTerminal`: progress is read by someone who waits, not kept.
    explicit Messages(Sink receiver, bool isTerminal = false);

    /// Results and remarks of the run, printf-style.
    [[gnu::format(printf, 2, 3)]] void out(const char *format, ...);
    /// Warnings and remarks about the run.
    [[gnu::format(printf, 2, 3)]] void err(const char *format, ...);
    /// An error. Returns Status::failed, so that a check reads `return messages.fail(...)`.
    [[gnu::format(printf, 2, 3), gnu::cold]] Status fail(const char *format, ...);

    /// A text that is made already.
    void text(Stream stream, std::string_view text);

    [[nodiscard]] bool isTerminal() const { return hasTerminal; }

  private:
    Sink sink;
    bool hasTerminal;
};

/// Messages to standard output and, all others, the standard error stream.
Messages &standardMessages();

} // namespace trelm
