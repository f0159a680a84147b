// JSON as it is written: piece by piece to the end of a text, so that a table of a million rows needs no
// tree.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// Keeps commas, line ends and brackets in order. Numbers have as many digits as it takes to read them back
/// as they are; what is no finite number is null. Texts are UTF-8; bytes that are none become U+FFFD.
class JsonWriter {
  public:
    explicit JsonWriter(std::string &target) : text(target) {}

    /// Begins an object or an array, whose members stand in lines of their own, or in one line.
    JsonWriter &object(bool inLine = false) { return open('{', '}', inLine); }
    JsonWriter &array(bool inLine = false) { return open('[', ']', inLine); }
    /// Ends the last one that was begun.
    void end();

    /// The name of the next member of an object.
    JsonWriter &key(std::string_view name);

    void value(double number);
    void value(float number);
    void value(bool flag);
    void value(std::string_view words);
    void value(const char *words) { value(std::string_view(words)); }
    void value(std::integral auto number) { piece(std::to_string(number)); }
    void null() { piece("null"); }

    template <class Value>
    void member(std::string_view name, const Value &content)
    {
        key(name).value(content);
    }
    /// Numbers in one line.
    template <class Values>
    void numbers(std::string_view name, const Values &values)
    {
        key(name).array(true);
        for (const auto &number : values)
            value(number);
        end();
    }

  private:
    struct Level {
        char closing;
        bool inLine;
        bool isEmpty = true;
    };

    JsonWriter &open(char opening, char closing, bool inLine);
    void piece(std::string_view words); ///< a value as it stands, after what has to come before it
    void separate();
    void breakLine();
    void quote(std::string_view words);

    std::string &text;
    std::vector<Level> levels;
    bool isKeyed = false; ///< the name of the next value has been written
};

} // namespace trelm
