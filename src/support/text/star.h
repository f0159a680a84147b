// The files of NMR-STAR, NEF and mmCIF, which share one grammar: blocks, frames, items and loops. All that is
// handed out is a view into the text: nothing is copied.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// A value. One without quotes may say that there is none.
struct StarValue {
    std::string_view text;
    bool isBare = true; ///< neither quoted nor a text field

    /// "." (not applicable) or "?" (unknown).
    [[nodiscard]] bool isMissing() const { return isBare && (text == "." || text == "?"); }
};

/// Walks through a text. The grammar: S. R. Hall, J. Chem. Inf. Comput. Sci. 31 (1991) 326; a word may begin
/// with any character but those of the grammar, "$" and "[" among them, as files of the archives have it.
class StarReader {
  public:
    enum class Event {
        block,    ///< data_NAME: name()
        frame,    ///< save_NAME: name()
        frameEnd, ///< save_
        item,     ///< a tag and its value: name() with its underscore, value()
        loop, ///< tags(), then nextRow() until it returns false; rows that nobody asks for are passed over
        end,  ///< of the text
        bad   ///< error() and line(); nothing can follow
    };

    explicit StarReader(std::string_view whole) : text(whole) {}

    Event next();
    /// The next row of the loop, as many values as there are tags; false at its end, or where it is broken:
    /// the next event is then bad.
    bool nextRow();

    [[nodiscard]] std::string_view name() const { return word; }
    [[nodiscard]] const StarValue &value() const { return itemValue; }
    [[nodiscard]] std::span<const std::string_view> tags() const { return loopTags; }
    [[nodiscard]] std::span<const StarValue> row() const { return values; }
    [[nodiscard]] std::size_t line() const
    {
        return eventLine;
    } ///< of the event, or of the row's first value
    [[nodiscard]] const std::string &error() const { return why; }

  private:
    enum class Kind { value, tag, block, frame, frameEnd, loop, stop, end, bad };
    struct Token {
        Kind kind = Kind::end;
        StarValue value; ///< of a name: what stands behind the keyword
        std::size_t line = 0;
    };

    void skipSpace();
    Token readToken();
    Token readQuoted(char quote);
    Token readField();
    Token readWord();
    const Token &peek();
    bool readPlain(StarValue &into);
    void take() { hasToken = false; }
    Event fail(std::size_t line, std::string reason);
    Event readItem();
    Event readTags();
    Event readEnd();

    std::string_view text;
    std::size_t place = 0, lineNumber = 1;
    Token token; ///< the one looked at, if hasToken
    bool hasToken = false, isInLoop = false;
    std::string_view word, openFrame;
    std::size_t frameLine = 0; ///< of the frame that is open; 0: none
    StarValue itemValue;
    std::vector<std::string_view> loopTags;
    std::vector<StarValue> values;
    std::size_t eventLine = 0;
    std::string why;
};

} // namespace trelm
