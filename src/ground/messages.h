// What a run says while it works: results and remarks, warnings and errors, and how far it is.
#pragma once

#include "ground/status.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// Handed down to whoever has something to say. The program binds it to its streams; a test or another
/// program binds it to what it likes.
class Messages {
  public:
    /// `note`: remarks on the error stream that tell of nothing wrong.
    enum class Stream { out, err, note, progress };
    /// Takes a piece of text, as it comes: pieces need not be whole lines.
    using Sink = std::function<void(Stream stream, std::string_view text)>;

    /// `isTerminal`: progress is read by someone who waits, not kept.
    explicit Messages(Sink receiver, bool isTerminal = false);

    /// Results and remarks of the run, printf-style.
    [[gnu::format(printf, 2, 3)]] void out(const char *format, ...);
    /// Warnings and remarks about the run.
    [[gnu::format(printf, 2, 3)]] void err(const char *format, ...);
    /// A remark on the error stream: how large the input is, what a step has found.
    [[gnu::format(printf, 2, 3)]] void note(const char *format, ...);
    /// A warning, one line, of input or options that the user did hardly mean like this. It is counted.
    [[gnu::format(printf, 2, 3), gnu::cold]] void warn(const char *format, ...);
    /// An error. Returns Status::failed, so that a check reads `return messages.fail(...)`.
    [[gnu::format(printf, 2, 3), gnu::cold]] Status fail(const char *format, ...);

    /// A text that is made already.
    void text(Stream stream, std::string_view text);

    [[nodiscard]] bool isTerminal() const { return hasTerminal; }

    /// From now on a warning makes the run fail.
    void setStrict() { isStrict = true; }
    /// Whether result files may be put in their places: not in a strict run that has warned.
    [[nodiscard]] bool mayWrite() const { return !isStrict || warned.empty(); }
    [[nodiscard]] int warningCount() const { return static_cast<int>(warned.size()); }
    /// The warnings so far, without the ends of their lines.
    [[nodiscard]] const std::vector<std::string> &warnings() const { return warned; }

  private:
    Sink sink;
    bool hasTerminal;
    bool isStrict = false;
    std::vector<std::string> warned;
};

/// Messages to standard output and, all others, the standard error stream.
Messages &standardMessages();

/// The same without remarks and progress.
Messages &quietMessages();

} // namespace trelm
