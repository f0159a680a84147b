// Xplor and CNS: couplings are restraints of six selections, of which the first four are the axes of a
// medium. Restraints of other kinds may stand between them.
#include "couplings/formats/forms.h"
#include "couplings/formats/row_lines.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace trelm {
namespace {

// ---- words ----

struct RestraintWord {
    enum class Kind { word, quoted, openQuote, open, close, end, bad };
    Kind kind = Kind::end;
    std::string_view text; ///< of a bad one: what is wrong
    std::size_t line = 0;
    bool isFirst = false; ///< on its line
};
using WordKind = RestraintWord::Kind;

/// Cuts a text into words and parentheses. Comments: "!" to the end of the line; braces, nested; lines that
/// begin with "#", ";" or REMARK.
class RestraintWords {
  public:
    explicit RestraintWords(std::string_view whole) : text(whole) {}

    const RestraintWord &peek()
    {
        if (!hasWord)
            word = read();
        hasWord = true;
        return word;
    }
    RestraintWord take()
    {
        const RestraintWord found = peek();
        hasWord = false;
        return found;
    }

  private:
    RestraintWord read();
    bool skipSpace();
    bool skipBraces();
    [[nodiscard]] bool isCommentLine() const;
    RestraintWord readQuoted();

    std::string_view text;
    std::size_t place = 0, line = 1, lineStart = 0;
    bool isFirst = true, hasWord = false;
    RestraintWord word;
};

bool RestraintWords::isCommentLine() const
{
    const char c = text[place];
    return c == '#' || c == ';' || ((c == 'R' || c == 'r') && equalNoCase(text.substr(place, 6), "REMARK"));
}

/// Goes behind the brace that closes the one at hand; false if none does.
bool RestraintWords::skipBraces()
{
    std::size_t depth = 0;
    for (std::size_t end = place; end < text.size(); ++end) {
        if (text[end] == '{')
            ++depth;
        else if (text[end] == '}' && --depth == 0) {
            place = end + 1;
            return true;
        } else if (text[end] == '\n') {
            ++line;
            lineStart = end + 1;
        }
    }
    return false;
}

/// Goes to the next word; false at a comment that never ends, whose line stays.
bool RestraintWords::skipSpace()
{
    while (place < text.size()) {
        const char c = text[place];
        if (c == '\n') {
            lineStart = ++place;
            ++line;
            isFirst = true;
        } else if (isSpace(c)) {
            ++place;
        } else if (c == '!' || (isFirst && isCommentLine())) {
            place = std::min(text.find('\n', place), text.size());
        } else if (c == '{') {
            const std::size_t opened = line;
            if (!skipBraces()) {
                line = opened;
                return false;
            }
        } else {
            return true;
        }
    }
    return true;
}

RestraintWord RestraintWords::readQuoted()
{
    const std::size_t start = place + 1, end = text.find_first_of("\"\n", start);
    if (end == std::string_view::npos || text[end] == '\n')
        return {WordKind::openQuote, text.substr(place++, 1), line};
    place = end + 1;
    return {WordKind::quoted, text.substr(start, end - start), line};
}

RestraintWord RestraintWords::read()
{
    if (!skipSpace())
        return {WordKind::bad, "a comment in braces that never ends", line};
    if (place == text.size())
        return {WordKind::end, {}, line};
    if (place - lineStart > longestLine)
        return {WordKind::bad, lineTooLong, line};
    const bool startsLine = std::exchange(isFirst, false);
    const std::size_t start = place;
    if (text[place] == '"')
        return readQuoted();
    if (text[place] == '(' || text[place] == ')')
        return {text[place++] == '(' ? WordKind::open : WordKind::close, text.substr(start, 1), line};
    const auto ends = [](char c) { return c == '(' || c == ')' || c == '{' || c == '!' || isSpace(c); };
    while (place < text.size() && !ends(text[place]))
        ++place;
    if (place - lineStart > longestLine)
        return {WordKind::bad, lineTooLong, line};
    return {WordKind::word, text.substr(start, place - start), line, startsLine};
}

/// Whether a word is a keyword or what is left of it when it is cut behind its fourth letter or later.
bool isKeyword(const RestraintWord &word, std::string_view keyword)
{
    constexpr std::size_t fewest = 4;
    return word.kind == WordKind::word && word.text.size() >= std::min(fewest, keyword.size()) &&
           equalNoCase(word.text, keyword.substr(0, word.text.size()));
}

bool isAssign(const RestraintWord &word)
{
    return isKeyword(word, "assign");
}

// ---- selections ----

/// One way to meet a selection. What it says nothing about is empty.
struct Choice {
    std::string_view residue, atom, segment, resName;
    bool isSegmentQuoted = false;
};

constexpr std::size_t mostChoices = 64; ///< so many ways no coupling has
constexpr int deepest = 32;             ///< parentheses within another

/// Reads an expression: the ways to meet it are those to meet each of its parts. What is behind "not" takes
/// nothing away: such parts exclude the axes, and not an atom.
struct SelectionReader {
    std::span<const RestraintWord> words;
    bool hasOr = false; ///< somewhere: else there is one way, and nothing to keep for another
    std::size_t place = 0;
    int depth = 0;
    std::string problem = {}; ///< why it cannot be used

    [[nodiscard]] bool isAt(std::string_view keyword) const
    {
        return place < words.size() && isKeyword(words[place], keyword);
    }
    void readAny(std::vector<Choice> &choices);
    void readAll(std::vector<Choice> &choices);
    void readPart(std::vector<Choice> &choices);
    void readProperty(std::vector<Choice> &choices);
};

struct Property {
    std::string_view keyword;
    std::string_view Choice::*field;
};
constexpr Property properties[] = {{"residue", &Choice::residue},
                                   {"name", &Choice::atom},
                                   {"segidentifier", &Choice::segment},
                                   {"resname", &Choice::resName}};

void SelectionReader::readAny(std::vector<Choice> &choices)
{
    std::vector<Choice> base, others;
    if (hasOr)
        base = choices;
    readAll(choices);
    while (problem.empty() && isAt("or")) {
        ++place;
        others = base;
        readAll(others);
        choices.insert(choices.end(), others.begin(), others.end());
        if (choices.size() > mostChoices)
            problem = "too many alternatives";
    }
}

void SelectionReader::readAll(std::vector<Choice> &choices)
{
    readPart(choices);
    while (problem.empty() && isAt("and")) {
        ++place;
        readPart(choices);
    }
}

void SelectionReader::readPart(std::vector<Choice> &choices)
{
    if (isAt("not")) {
        ++place;
        std::vector<Choice> excluded = {{}};
        if (++depth > deepest)
            problem = "a selection that is nested too deep";
        else
            readPart(excluded);
        --depth;
    } else if (isAt("all")) {
        ++place;
    } else if (place < words.size() && words[place].kind == WordKind::open) {
        ++place;
        if (++depth > deepest)
            problem = "a selection that is nested too deep";
        else
            readAny(choices);
        --depth;
        if (problem.empty() && (place == words.size() || words[place].kind != WordKind::close))
            problem = "a selection that is not understood";
        ++place;
    } else {
        readProperty(choices);
    }
}

std::string_view withoutBlanks(std::string_view text)
{
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

void SelectionReader::readProperty(std::vector<Choice> &choices)
{
    const auto property =
        std::ranges::find_if(properties, [&](const Property &known) { return isAt(known.keyword); });
    const bool hasValue = place + 1 < words.size() && (words[place + 1].kind == WordKind::word ||
                                                       words[place + 1].kind == WordKind::quoted);
    if (property == std::end(properties) || !hasValue) {
        problem = "a selection that is not understood";
        return;
    }
    const RestraintWord &value = words[place + 1];
    const std::string_view trimmed = withoutBlanks(value.text);
    for (Choice &choice : choices) {
        std::string_view &field = choice.*property->field;
        if (!field.empty() && !equalNoCase(field, trimmed))
            problem = "a selection that nothing can meet";
        field = trimmed;
        if (property->field == &Choice::segment)
            choice.isSegmentQuoted = value.kind == WordKind::quoted;
    }
    place += 2;
}

/// The ways to meet a selection; none, with the problem, if it cannot be used.
std::vector<Choice> choicesOf(std::span<const RestraintWord> selection, std::string &problem)
{
    SelectionReader reader = {selection, std::ranges::any_of(selection, [](const RestraintWord &word) {
                                  return isKeyword(word, "or");
                              })};
    std::vector<Choice> choices = {{}};
    reader.readAny(choices);
    if (reader.problem.empty() && reader.place != selection.size())
        reader.problem = "a selection that is not understood";
    problem = reader.problem;
    return problem.empty() ? choices : std::vector<Choice>{};
}

// ---- restraints ----

using Selection = std::span<const RestraintWord>; ///< without its outer parentheses

/// A medium, by the residue of its axes. Two may share the number, in segments of their own.
struct Axes {
    std::string residue, segment;
    std::size_t medium = 0;
};

struct RestraintFile {
    const ArchiveText &file;
    RestraintWords words;
    Archive &archive;
    Messages &messages;
    std::vector<Axes> axes = {};
    // of the restraint at hand
    std::size_t line = 0;
    std::vector<RestraintWord> taken = {};                        ///< the words of its selections
    std::vector<std::pair<std::size_t, std::size_t>> places = {}; ///< and where each has its own
    std::vector<std::string_view> numbers = {};

    [[nodiscard]] Selection selection(std::size_t k) const
    {
        return std::span(taken).subspan(places[k].first, places[k].second - places[k].first);
    }
};

constexpr std::size_t mostWords = 20000; ///< of a restraint's selections: the largest seen has some hundred

/// Takes the words up to the parenthesis that closes the one at hand.
Status readSelection(RestraintFile &at)
{
    const std::size_t line = at.words.take().line, start = at.taken.size();
    for (int depth = 1;;) {
        const RestraintWord word = at.words.take();
        if (word.kind == WordKind::bad)
            return failAt(at.file, word.line, at.messages, "%s", std::string(word.text).c_str());
        if (word.kind == WordKind::openQuote)
            return failAt(at.file, word.line, at.messages, "a quote that does not end on its line");
        if (word.kind == WordKind::end)
            return failAt(at.file, line, at.messages, "the file ends within a selection");
        if (isAssign(word))
            return failAt(at.file, line, at.messages, "a selection that never ends");
        if (at.taken.size() == mostWords)
            return failAt(at.file, at.line, at.messages, "a restraint of more than %zu words", mostWords);
        depth += word.kind == WordKind::open ? 1 : 0;
        depth -= word.kind == WordKind::close ? 1 : 0;
        if (depth == 0)
            break;
        at.taken.push_back(word);
    }
    at.places.emplace_back(start, at.taken.size());
    return Status::ok;
}

/// Numbers end with their line: what comes next may be rows of other data.
void takeNumbers(RestraintFile &at)
{
    const auto begins = [](const RestraintWord &word) {
        constexpr std::string_view starts = "+-.0123456789";
        return word.kind == WordKind::word &&
               (starts.find(word.text[0]) != std::string_view::npos || equalNoCase(word.text, "nan") ||
                equalNoCase(word.text, "inf"));
    };
    at.numbers.clear();
    const std::size_t line = at.words.peek().line;
    while (begins(at.words.peek()) && at.words.peek().line == line)
        at.numbers.push_back(at.words.take().text);
}

/// The axes of a coupling: OO, Z, X and Y of one residue, in any order. False for anything else.
bool readAxes(const RestraintFile &at, Choice &axes)
{
    constexpr std::string_view names[] = {"OO", "Z", "X", "Y"};
    std::array<bool, std::size(names)> isThere = {};
    std::string problem;
    for (std::size_t k = 0; k < std::size(names); ++k) {
        const std::vector<Choice> choices = choicesOf(at.selection(k), problem);
        if (choices.size() != 1 || choices[0].residue.empty())
            return false;
        const auto *name = std::ranges::find_if(
            names, [&](std::string_view known) { return equalNoCase(choices[0].atom, known); });
        const bool isSame = k == 0 || (equalNoCase(choices[0].residue, axes.residue) &&
                                       equalNoCase(choices[0].segment, axes.segment));
        if (name == std::end(names) || isThere[static_cast<std::size_t>(name - names)] || !isSame)
            return false;
        isThere[static_cast<std::size_t>(name - names)] = true;
        axes = choices[0];
    }
    return true;
}

std::size_t mediumOfAxes(RestraintFile &at, const Choice &axes)
{
    bool hasNumber = false;
    for (const Axes &known : at.axes) {
        if (known.residue == axes.residue && known.segment == axes.segment)
            return known.medium;
        hasNumber = hasNumber || known.residue == axes.residue;
    }
    std::string name(axes.residue);
    if (hasNumber)
        name.append(":").append(axes.segment);
    at.axes.push_back({std::string(axes.residue), std::string(axes.segment), mediumOf(at.archive, name)});
    return at.axes.back().medium;
}

/// A name in capitals: case does not count.
bool readCapitals(std::string_view word, Name &name)
{
    if (!readName(word, name))
        return false;
    for (char &c : name.text)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return true;
}

bool nameAtom(const Choice &choice, NamedAtom &atom)
{
    return !choice.atom.empty() && readResidue(choice.residue, atom) &&
           readCapitals(choice.atom, atom.atomName) && readCapitals(choice.resName, atom.resName) &&
           (choice.isSegmentQuoted ? readName(choice.segment, atom.chain)
                                   : readCapitals(choice.segment, atom.chain));
}

/// The two atoms; empty, or why the row cannot be used.
std::string readPair(const RestraintFile &at, ArchiveRow &row)
{
    std::string problem;
    const std::vector<Choice> first = choicesOf(at.selection(4), problem);
    const std::vector<Choice> second = problem.empty() ? choicesOf(at.selection(5), problem) : first;
    if (!problem.empty())
        return problem;
    if (!nameAtom(first[0], row.i) || !nameAtom(second[0], row.j))
        return "names no two atoms";
    row.alternatives = static_cast<int>(first.size() * second.size());
    return {};
}

std::string pairAsWritten(const RestraintFile &at)
{
    std::string text;
    for (const std::size_t k : {std::size_t{4}, std::size_t{5}}) {
        text += k == 4 ? "(" : " (";
        for (const RestraintWord &word : at.selection(k))
            text.append(" ").append(word.text);
        text += " )";
    }
    return shownWord(text);
}

/// A value and no, one or two errors (minus and plus: their mean counts).
Status readCoupling(RestraintFile &at, const Choice &axes)
{
    ArchiveRow row = {.medium = mediumOfAxes(at, axes), .line = at.line};
    if (at.numbers.empty())
        return failAt(at.file, at.line, at.messages, "a coupling without a value");
    if (readNumbers(at.file, at.line, at.numbers, row, at.messages) != Status::ok)
        return Status::failed;
    constexpr std::size_t mostNumbers = 3;
    std::string problem =
        at.numbers.size() > mostNumbers ? "two couplings in one restraint" : readPair(at, row);
    if (!problem.empty()) {
        at.archive.leftOut.push_back({at.line, pairAsWritten(at), std::move(problem)});
        return Status::ok;
    }
    if (at.numbers.size() == mostNumbers) // the second error stands where others have a weight
        row.error = (row.error.value_or(0.0) + std::exchange(row.weight, 1.0)) / 2.0;
    if (row.error == 0.0)
        row.error.reset();
    addRow(at.archive, row);
    return Status::ok;
}

/// What a restraint that is no coupling is called.
std::string kindOf(std::size_t selections, bool hasAxes)
{
    if (hasAxes && selections == 7)
        return "shift anisotropy";
    if (selections == 2)
        return "distance";
    if (selections == 4)
        return "dihedral angle or J coupling";
    return "restraint of " + std::to_string(selections) + (selections == 1 ? " selection" : " selections");
}

Status readRestraint(RestraintFile &at)
{
    constexpr std::size_t ofCoupling = 6;
    at.taken.clear();
    at.places.clear();
    while (at.words.peek().kind == WordKind::open)
        if (readSelection(at) != Status::ok)
            return Status::failed;
    takeNumbers(at);
    if (const RestraintWord &next = at.words.peek(); next.kind == WordKind::bad)
        return failAt(at.file, next.line, at.messages, "%s", std::string(next.text).c_str());
    if (at.numbers.empty() && at.words.peek().kind == WordKind::end)
        return failAt(at.file, at.line, at.messages, "the file ends within a restraint");
    Choice axes;
    if (at.places.size() == ofCoupling && readAxes(at, axes))
        return readCoupling(at, axes);
    const bool hasAxes =
        std::ranges::any_of(at.taken, [](const RestraintWord &word) { return equalNoCase(word.text, "OO"); });
    if (hasAxes && at.places.size() < ofCoupling)
        return failAt(at.file, at.line, at.messages, "a coupling of %zu selections, where six belong",
                      at.places.size());
    addForeign(at.archive, kindOf(at.places.size(), hasAxes), at.line);
    return Status::ok;
}

} // namespace

Status readXplor(const ArchiveText &file, Archive &archive, Messages &messages)
{
    RestraintFile at = {file, RestraintWords(file.text), archive, messages};
    double number = 0.0;
    for (RestraintWord word = at.words.take(); word.kind != WordKind::end; word = at.words.take()) {
        if (word.kind == WordKind::bad)
            return failAt(file, word.line, messages, "%s", std::string(word.text).c_str());
        at.line = word.line;
        if (isAssign(word) && readRestraint(at) != Status::ok)
            return Status::failed;
        if (word.isFirst && readNumber(word.text, number))
            addForeign(archive, "a row of numbers that is no restraint", word.line);
    }
    return Status::ok;
}

} // namespace trelm
