#include "support/text/regexp.h"

#include <algorithm>
#include <utility>

namespace trelm {
namespace {

enum Opcode : unsigned char {
    END = 0,
    BOL = 1,
    EOL = 2,
    ANY = 3,
    ANYOF = 4,
    ANYBUT = 5,
    BRANCH = 6,
    BACK = 7,
    EXACTLY = 8,
    NOTHING = 9,
    STAR = 10,
    PLUS = 11,
    OPEN = 20, ///< and the number of the group
    CLOSE = 40
};

constexpr std::size_t nodeSize = 3;
constexpr std::size_t noNode = 0; ///< the first byte is none
constexpr std::size_t firstNode = 1;
constexpr std::string_view metaCharacters = "^$.[()|?+*\\";

/// What is known of a piece of an expression.
constexpr unsigned hasWidth = 1;   ///< it never matches the empty text
constexpr unsigned isSimple = 2;   ///< one character wide, and good as operand of STAR and PLUS
constexpr unsigned startsLoop = 4; ///< begins with something that is repeated by "*", "+" or "?"

using Program = std::vector<unsigned char>;

std::size_t nextNode(const Program &program, std::size_t node)
{
    const std::size_t offset = program[node + 1] * std::size_t{256} + program[node + 2];
    if (offset == 0)
        return noNode;
    return program[node] == BACK ? node - offset : node + offset;
}

/// The text operand of a node.
std::string_view operandText(const Program &program, std::size_t node)
{
    return reinterpret_cast<const char *>(program.data() + node + nodeSize);
}

// ---------------------------------------------------------------------------------------------------------
// Compiling. The first pass only measures: it writes nothing, and its nodes have no addresses.

struct Compiler {
    std::string_view exp;
    std::string &error;
    bool emit = false;
    std::size_t place = 0; ///< in the expression
    std::size_t size = 1;  ///< of the program, its first byte included
    unsigned groups = 1;   ///< number of the next group
    Program program = {};
};

bool isRepeat(char c)
{
    return c == '*' || c == '+' || c == '?';
}

/// The character `ahead` places further; 0 at the end.
char peek(const Compiler &c, std::size_t ahead = 0)
{
    return c.place + ahead < c.exp.size() ? c.exp[c.place + ahead] : '\0';
}

std::size_t fail(Compiler &c, const char *message)
{
    c.error = message;
    return noNode;
}

void addByte(Compiler &c, unsigned char byte)
{
    ++c.size;
    if (c.emit)
        c.program.push_back(byte);
}

std::size_t addNode(Compiler &c, unsigned opcode)
{
    const std::size_t node = c.emit ? c.program.size() : firstNode;
    addByte(c, static_cast<unsigned char>(opcode));
    addByte(c, 0);
    addByte(c, 0);
    return node;
}

/// Puts a node in front of the operand that was added last.
void insertNode(Compiler &c, unsigned opcode, std::size_t operand)
{
    c.size += nodeSize;
    if (c.emit)
        c.program.insert(c.program.begin() + static_cast<std::ptrdiff_t>(operand),
                         {static_cast<unsigned char>(opcode), 0, 0});
}

/// Lets the chain that begins at a node end in `target`.
void setTail(Compiler &c, std::size_t node, std::size_t target)
{
    if (!c.emit)
        return;
    for (std::size_t next = node; next != noNode; next = nextNode(c.program, node))
        node = next;
    const std::size_t offset = c.program[node] == BACK ? node - target : target - node;
    c.program[node + 1] = static_cast<unsigned char>(offset >> 8);
    c.program[node + 2] = static_cast<unsigned char>(offset & 255);
}

/// The same for the operand of a BRANCH; other nodes have none to chain.
void setOperandTail(Compiler &c, std::size_t node, std::size_t target)
{
    if (c.emit && c.program[node] == BRANCH)
        setTail(c, node + nodeSize, target);
}

std::size_t Reg(Compiler &c, bool inGroup, unsigned &flags);

/// The characters of a set, ranges written out.
bool addSet(Compiler &c)
{
    if (peek(c) == ']' || peek(c) == '-')
        addByte(c, static_cast<unsigned char>(c.exp[c.place++]));
    while (peek(c) != '\0' && peek(c) != ']') {
        const auto character = static_cast<unsigned char>(c.exp[c.place++]);
        const char after = peek(c);
        if (character != '-' || after == ']' || after == '\0') {
            addByte(c, character);
            continue;
        }
        // The low end stands in the set already.
        const unsigned low = static_cast<unsigned char>(c.exp[c.place - 2]);
        const unsigned high = static_cast<unsigned char>(after);
        if (low > high)
            return fail(c, "invalid [] range") != noNode;
        for (unsigned i = low + 1; i <= high; ++i)
            addByte(c, static_cast<unsigned char>(i));
        ++c.place;
    }
    addByte(c, '\0');
    if (peek(c) != ']')
        return fail(c, "unmatched []") != noNode;
    ++c.place;
    return true;
}

std::size_t addLiteral(Compiler &c, std::size_t length, unsigned &flags)
{
    const std::size_t node = addNode(c, EXACTLY);
    for (std::size_t i = 0; i < length; ++i)
        addByte(c, static_cast<unsigned char>(c.exp[c.place++]));
    addByte(c, '\0');
    flags = length == 1 ? hasWidth | isSimple : hasWidth;
    return node;
}

/// A run of ordinary characters. An operator behind it binds the last one alone, which is left for the next
/// atom.
std::size_t addRun(Compiler &c, unsigned &flags)
{
    const std::size_t end = std::min(c.exp.find_first_of(metaCharacters, c.place), c.exp.size());
    std::size_t length = end - c.place;
    if (length == 0)
        return fail(c, "internal disaster");
    if (length > 1 && isRepeat(peek(c, length)))
        --length;
    return addLiteral(c, length, flags);
}

std::size_t addAtom(Compiler &c, unsigned &flags)
{
    flags = 0;
    switch (peek(c)) {
    case '^':
        ++c.place;
        return addNode(c, BOL);
    case '$':
        ++c.place;
        return addNode(c, EOL);
    case '.':
        ++c.place;
        flags = hasWidth | isSimple;
        return addNode(c, ANY);
    case '[': {
        const bool complement = peek(c, 1) == '^';
        c.place += complement ? 2 : 1;
        const std::size_t node = addNode(c, complement ? ANYBUT : ANYOF);
        flags = hasWidth | isSimple;
        return addSet(c) ? node : noNode;
    }
    case '(': {
        ++c.place;
        unsigned inner = 0;
        const std::size_t node = Reg(c, true, inner);
        flags = inner & (hasWidth | startsLoop);
        return node;
    }
    case '\0':
    case '|':
    case ')':
        return fail(c, "internal urp");
    case '?':
    case '+':
    case '*':
        return fail(c, "?+* follows nothing");
    case '\\':
        if (peek(c, 1) == '\0')
            return fail(c, "trailing \\");
        ++c.place;
        return addLiteral(c, 1, flags);
    default:
        return addRun(c, flags);
    }
}

/// Makes the atom at `node` one that is repeated.
void addRepeat(Compiler &c, char repeat, bool simple, std::size_t node)
{
    if (repeat != '?' && simple) {
        insertNode(c, repeat == '*' ? STAR : PLUS, node);
    } else if (repeat == '*') { // (x and back | nothing)
        insertNode(c, BRANCH, node);
        setOperandTail(c, node, addNode(c, BACK));
        setOperandTail(c, node, node);
        setTail(c, node, addNode(c, BRANCH));
        setTail(c, node, addNode(c, NOTHING));
    } else if (repeat == '+') { // x (back | nothing)
        const std::size_t choice = addNode(c, BRANCH);
        setTail(c, node, choice);
        setTail(c, addNode(c, BACK), node);
        setTail(c, choice, addNode(c, BRANCH));
        setTail(c, node, addNode(c, NOTHING));
    } else { // (x | nothing)
        insertNode(c, BRANCH, node);
        setTail(c, node, addNode(c, BRANCH));
        const std::size_t nothing = addNode(c, NOTHING);
        setTail(c, node, nothing);
        setOperandTail(c, node, nothing);
    }
}

/// An atom and the operator behind it.
std::size_t Regpiece(Compiler &c, unsigned &flags)
{
    unsigned atomFlags = 0;
    const std::size_t node = addAtom(c, atomFlags);
    if (node == noNode)
        return noNode;
    const char repeat = peek(c);
    if (!isRepeat(repeat)) {
        flags = atomFlags;
        return node;
    }
    if ((atomFlags & hasWidth) == 0 && repeat != '?')
        return fail(c, "*+ operand could be empty");
    flags = repeat == '+' ? hasWidth | startsLoop : startsLoop;
    addRepeat(c, repeat, (atomFlags & isSimple) != 0, node);
    ++c.place;
    if (isRepeat(peek(c)))
        return fail(c, "nested *?+");
    return node;
}

/// One alternative: pieces in a row.
std::size_t addBranch(Compiler &c, unsigned &flags)
{
    flags = 0;
    const std::size_t node = addNode(c, BRANCH);
    std::size_t last = noNode;
    while (peek(c) != '\0' && peek(c) != '|' && peek(c) != ')') {
        unsigned pieceFlags = 0;
        const std::size_t piece = Regpiece(c, pieceFlags);
        if (piece == noNode)
            return noNode;
        flags |= pieceFlags & hasWidth;
        if (last == noNode)
            flags |= pieceFlags & startsLoop;
        else
            setTail(c, last, piece);
        last = piece;
    }
    if (last == noNode)
        addNode(c, NOTHING);
    return node;
}

/// The end of an expression or a group, after its closing node was added.
bool closeExpression(Compiler &c, bool inGroup)
{
    const char found = peek(c);
    if (inGroup ? found != ')' : found == ')')
        return fail(c, "unmatched ()") != noNode;
    if (!inGroup && found != '\0')
        return fail(c, "junk on end") != noNode;
    c.place += inGroup ? 1 : 0;
    return true;
}

/// An expression: the whole one, or one in a group. Groups are numbered before they are entered, so that it
/// calls itself no deeper than there are groups.
std::size_t Reg(Compiler &c, bool inGroup, unsigned &flags)
{
    std::size_t start = noNode;
    unsigned closer = END;
    if (inGroup) {
        if (c.groups > regMostGroups)
            return fail(c, "too many ()");
        closer = CLOSE + c.groups;
        start = addNode(c, OPEN + c.groups++);
    }
    flags = hasWidth;
    for (bool more = true; more;) {
        unsigned branchFlags = 0;
        const std::size_t branch = addBranch(c, branchFlags);
        if (branch == noNode)
            return noNode;
        if (start == noNode)
            start = branch;
        else
            setTail(c, start, branch);
        if ((branchFlags & hasWidth) == 0)
            flags &= ~hasWidth;
        flags |= branchFlags & startsLoop;
        more = peek(c) == '|';
        c.place += more ? 1 : 0;
    }
    const std::size_t end = addNode(c, closer);
    setTail(c, start, end);
    if (c.emit)
        for (std::size_t node = start; node != noNode; node = nextNode(c.program, node))
            setOperandTail(c, node, end);
    return closeExpression(c, inGroup) ? start : noNode;
}

/// Finds what every match must have, so that most texts are refused at a glance.
void optimise(Regexp &prog, unsigned flags)
{
    const Program &program = prog.program;
    if (program[nextNode(program, firstNode)] != END)
        return; // more than one alternative
    const std::size_t start = firstNode + nodeSize;
    if (program[start] == EXACTLY)
        prog.regstart = operandText(program, start).front();
    else if (program[start] == BOL)
        prog.reganch = true;
    if ((flags & startsLoop) == 0)
        return;
    for (std::size_t node = start; node != noNode; node = nextNode(program, node))
        if (program[node] == EXACTLY && operandText(program, node).size() >= prog.regmust.size())
            prog.regmust = operandText(program, node);
}

// ---------------------------------------------------------------------------------------------------------
// Matching.

/// One search in one text. The states still to be tried stand in a list of their own, not in the call stack,
/// and a state that failed once is not entered again: it would fail again.
struct Matcher {
    struct State {
        std::size_t node, place;
    };

    const Program &program;
    std::string_view text;
    std::vector<bool> entered; ///< by node and place
    std::vector<State> stack = {};
};

bool isOneCharacter(const Program &program, std::size_t node, char c)
{
    switch (program[node]) {
    case ANY:
        return true;
    case ANYOF:
        return c != '\0' && operandText(program, node).find(c) != std::string_view::npos;
    case ANYBUT:
        return operandText(program, node).find(c) == std::string_view::npos;
    default: // EXACTLY
        return operandText(program, node).front() == c;
    }
}

/// Takes one character of a run and stays at its node, so that the longest run is tried first; the shorter
/// ones are noted on the way. Step by step each length is a state of its own, and two runs that meet at a
/// character have the rest of it in common. `node` is the one behind at the end of the run.
bool stepRun(Matcher &m, std::size_t &node, std::size_t &place)
{
    const Program &program = m.program;
    const std::size_t next = nextNode(program, node);
    const bool isMore = place < m.text.size() && isOneCharacter(program, node + nodeSize, m.text[place]);
    const bool mayEnd = program[node] == STAR;
    if (!isMore) {
        node = next;
        return mayEnd;
    }
    m.stack.push_back({next, mayEnd ? place : place + 1});
    ++place;
    return true;
}

/// One node at one place of the text; both move on. Returns false if it does not match there.
bool step(Matcher &m, std::size_t &node, std::size_t &place)
{
    const Program &program = m.program;
    const unsigned char opcode = program[node];
    const std::size_t next = nextNode(program, node);
    bool matches = true;
    if (opcode == BRANCH) {
        if (program[next] == BRANCH)
            m.stack.push_back({next, place});
        node += nodeSize;
        return true;
    }
    if (opcode == STAR || opcode == PLUS)
        return stepRun(m, node, place);
    if (opcode == BOL) {
        matches = place == 0;
    } else if (opcode == EOL) {
        matches = place == m.text.size();
    } else if (opcode == EXACTLY) {
        const std::string_view literal = operandText(program, node);
        matches = m.text.substr(place).starts_with(literal);
        place += matches ? literal.size() : 0;
    } else if (opcode == ANY || opcode == ANYOF || opcode == ANYBUT) {
        matches = place < m.text.size() && isOneCharacter(program, node, m.text[place]);
        place += matches ? 1 : 0;
    }
    node = next;
    return matches;
}

/// Tries the program at one place of the text.
bool Regmatch(Matcher &m, std::size_t start)
{
    m.stack.clear();
    std::size_t node = firstNode, place = start;
    while (m.program[node] != END) {
        const std::size_t state = node * (m.text.size() + 1) + place;
        const bool isNew = !m.entered[state];
        m.entered[state] = true;
        if (isNew && step(m, node, place))
            continue;
        if (m.stack.empty())
            return false;
        node = m.stack.back().node;
        place = m.stack.back().place;
        m.stack.pop_back();
    }
    return true;
}

} // namespace

std::unique_ptr<Regexp> strRegComp(std::string_view exp, std::string &error)
{
    exp = exp.substr(0, exp.find('\0'));
    unsigned flags = 0;
    Compiler measure{.exp = exp, .error = error};
    if (Reg(measure, false, flags) == noNode)
        return nullptr;
    if (measure.size > regMaxProgram) {
        error = "Regexp too big";
        return nullptr;
    }
    Compiler compiler{.exp = exp, .error = error, .emit = true};
    compiler.program.reserve(measure.size);
    compiler.program.push_back(0);
    if (Reg(compiler, false, flags) == noNode)
        return nullptr;
    auto prog = std::make_unique<Regexp>();
    prog->program = std::move(compiler.program);
    optimise(*prog, flags);
    return prog;
}

bool strRegExec2(const Regexp &prog, std::string_view text)
{
    if (text.find(prog.regmust) == std::string_view::npos)
        return false;
    Matcher m{.program = prog.program, .text = text, .entered = {}};
    m.entered.resize(prog.program.size() * (text.size() + 1));
    if (prog.reganch)
        return Regmatch(m, 0);
    for (std::size_t place = 0; place <= text.size(); ++place) {
        if (prog.regstart != '\0' && (place == text.size() || text[place] != prog.regstart))
            continue;
        if (Regmatch(m, place))
            return true;
    }
    return false;
}

} // namespace trelm
