#include "support/text/star.h"

#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace trelm {
namespace {

/// Words that begin with these are no values. Behind `save_` stands the name of a frame, or its end.
constexpr std::string_view keywords[] = {"data_", "save_", "loop_", "stop_", "global_"};

bool isKeywordStart(std::string_view word)
{
    constexpr std::string_view letters = "dDsSlLgG";
    return letters.find(word[0]) != std::string_view::npos && word.find('_') != std::string_view::npos;
}

/// The keyword that a word is or begins with; empty for a value.
std::string_view keywordOf(std::string_view word)
{
    if (!isKeywordStart(word))
        return {};
    for (const std::string_view keyword : keywords) {
        const bool hasName = keyword == "data_" || keyword == "save_";
        if (equalNoCase(hasName ? word.substr(0, keyword.size()) : word, keyword))
            return keyword;
    }
    return {};
}

/// What a byte may be for the short way through plain values.
enum ByteKind : unsigned char { inWord, space, newline, special, keywordStart };

/// By byte. Words that begin with a special one are read the long way; one that begins like a keyword is
/// looked at.
constexpr std::array<ByteKind, 256> byteKinds = [] {
    std::array<ByteKind, 256> kinds = {};
    for (const char c : {' ', '\t', '\r', '\v', '\f'})
        kinds[static_cast<unsigned char>(c)] = space;
    kinds['\n'] = newline;
    for (const char c : {'#', ';', '_', '\'', '"'})
        kinds[static_cast<unsigned char>(c)] = special;
    for (const char c : {'d', 'D', 's', 'S', 'l', 'L', 'g', 'G'})
        kinds[static_cast<unsigned char>(c)] = keywordStart;
    return kinds;
}();

ByteKind kindOf(char c)
{
    return byteKinds[static_cast<unsigned char>(c)];
}

bool isSpaceKind(char c)
{
    const ByteKind kind = kindOf(c);
    return kind == space || kind == newline;
}

/// What of a word is told in a message, which is one line.
std::string shown(std::string_view word)
{
    constexpr std::size_t most = 60;
    const std::size_t length = std::min({most, word.size(), word.find_first_of("\r\n")});
    return std::string(word.substr(0, length)).append(length < word.size() ? "..." : "");
}

} // namespace

void StarReader::skipSpace()
{
    while (place < text.size()) {
        const char c = text[place];
        if (c == '#')
            place = std::min(text.find('\n', place), text.size());
        else if (isSpace(c))
            lineNumber += text[place++] == '\n' ? 1 : 0;
        else
            return;
    }
}

StarReader::Token StarReader::readToken()
{
    skipSpace();
    if (place == text.size())
        return {Kind::end, {}, lineNumber};
    const char c = text[place];
    if (c == ';' && (place == 0 || text[place - 1] == '\n'))
        return readField();
    return c == '\'' || c == '"' ? readQuoted(c) : readWord();
}

/// A quote ends a value only before white space.
StarReader::Token StarReader::readQuoted(char quote)
{
    const std::size_t start = ++place;
    for (; place < text.size() && text[place] != '\n'; ++place) {
        if (text[place] != quote || (place + 1 < text.size() && !isSpace(text[place + 1])))
            continue;
        return {Kind::value, {text.substr(start, place++ - start), false}, lineNumber};
    }
    return {Kind::bad, {"a quote that does not end on its line"}, lineNumber};
}

/// A text field ends before the next line that begins with a semicolon.
StarReader::Token StarReader::readField()
{
    const std::size_t start = place + 1, first = lineNumber;
    const std::size_t end = text.find("\n;", place);
    if (end == std::string_view::npos)
        return {Kind::bad, {"a text field that never ends"}, first};
    const std::string_view field = text.substr(start, end - start);
    lineNumber += static_cast<std::size_t>(std::ranges::count(field, '\n')) + 1;
    place = end + 2;
    return {Kind::value, {field, false}, first};
}

StarReader::Token StarReader::readWord()
{
    const std::size_t start = place;
    while (place < text.size() && !isSpace(text[place]))
        ++place;
    const std::string_view found = text.substr(start, place - start);
    if (found[0] == '_')
        return {Kind::tag, {found}, lineNumber};
    const std::string_view keyword = keywordOf(found);
    if (keyword.empty())
        return {Kind::value, {found}, lineNumber};
    const StarValue rest = {found.substr(keyword.size())};
    switch (keyword[0]) {
    case 'd':
        return {Kind::block, rest, lineNumber};
    case 'l':
        return {Kind::loop, rest, lineNumber};
    case 'g':
        return {Kind::block, rest, lineNumber};
    default:
        if (keyword == "stop_")
            return {Kind::stop, rest, lineNumber};
        return {rest.text.empty() ? Kind::frameEnd : Kind::frame, rest, lineNumber};
    }
}

const StarReader::Token &StarReader::peek()
{
    if (!hasToken)
        token = readToken();
    hasToken = true;
    return token;
}

StarReader::Event StarReader::fail(std::size_t line, std::string reason)
{
    if (why.empty()) {
        why = std::move(reason);
        eventLine = line;
    }
    return Event::bad;
}

StarReader::Event StarReader::next()
{
    while (isInLoop && nextRow()) {
    }
    if (!why.empty())
        return Event::bad;
    const Token found = peek();
    eventLine = found.line;
    word = found.value.text;
    switch (found.kind) {
    case Kind::tag:
        return readItem();
    case Kind::loop:
        return readTags();
    case Kind::end:
        return readEnd();
    case Kind::bad:
        return fail(found.line, std::string(word));
    case Kind::value:
        return fail(found.line, "the value " + shown(word) + " has no tag");
    case Kind::stop:
        return fail(found.line, "stop_ without a loop");
    default:
        break;
    }
    take();
    if (found.kind == Kind::frame && frameLine != 0)
        return fail(found.line, "the frame " + shown(word) + " begins within another");
    if (found.kind == Kind::frameEnd && frameLine == 0)
        return fail(found.line, "a frame ends that never began");
    if (found.kind == Kind::block && frameLine != 0)
        return fail(found.line, "a block begins within the frame " + shown(openFrame));
    frameLine = found.kind == Kind::frame ? found.line : 0;
    openFrame = word;
    if (found.kind == Kind::block)
        return Event::block;
    return found.kind == Kind::frame ? Event::frame : Event::frameEnd;
}

StarReader::Event StarReader::readItem()
{
    take();
    const Token &found = peek();
    if (found.kind == Kind::bad)
        return fail(found.line, std::string(found.value.text));
    if (found.kind != Kind::value)
        return fail(eventLine, "the tag " + shown(word) + " has no value");
    itemValue = found.value;
    take();
    return Event::item;
}

StarReader::Event StarReader::readTags()
{
    take();
    loopTags.clear();
    std::unordered_set<std::string> known;
    while (peek().kind == Kind::tag) {
        std::string name(token.value.text);
        std::ranges::transform(name, name.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        if (!known.insert(std::move(name)).second)
            return fail(token.line, "the loop has the tag " + shown(token.value.text) + " twice");
        loopTags.push_back(token.value.text);
        take();
    }
    if (loopTags.empty())
        return fail(eventLine, "a loop without tags");
    isInLoop = true;
    values.resize(loopTags.size());
    return Event::loop;
}

StarReader::Event StarReader::readEnd()
{
    if (frameLine == 0)
        return Event::end;
    return fail(lineNumber, "the file ends within the frame " + shown(openFrame) + " of line " +
                                std::to_string(frameLine));
}

/// The next value, if it is a plain word: nearly all are, and large files are many of them.
bool StarReader::readPlain(StarValue &into)
{
    const char *at = text.data() + place;
    const char *const end = text.data() + text.size();
    for (; at != end && isSpaceKind(*at); ++at)
        lineNumber += kindOf(*at) == newline ? 1 : 0;
    place = static_cast<std::size_t>(at - text.data());
    if (at == end || kindOf(*at) == special)
        return false;
    const char *const start = at;
    while (at != end && !isSpaceKind(*at))
        ++at;
    const std::string_view found(start, static_cast<std::size_t>(at - start));
    if (kindOf(*start) == keywordStart && !keywordOf(found).empty())
        return false;
    into = {found};
    place += found.size();
    return true;
}

bool StarReader::nextRow()
{
    if (!isInLoop)
        return false;
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (!hasToken && readPlain(values[k])) {
            eventLine = k == 0 ? lineNumber : eventLine;
            continue;
        }
        const Token &found = peek();
        if (found.kind == Kind::value) {
            values[k] = found.value;
            eventLine = k == 0 ? found.line : eventLine;
            take();
            continue;
        }
        isInLoop = false;
        if (found.kind == Kind::bad)
            fail(found.line, std::string(found.value.text));
        else if (k != 0)
            fail(found.line, "the loop has " + std::to_string(values.size()) + " tags, its last row " +
                                 std::to_string(k) + (k == 1 ? " value" : " values"));
        else if (found.kind == Kind::stop)
            take();
        return false;
    }
    return true;
}

} // namespace trelm
