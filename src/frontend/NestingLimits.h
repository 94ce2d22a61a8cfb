#pragma once
// How deeply source constructs may nest. The parsers recurse once per level, and so do the trees built
// from what they read (typed expressions, built-in calls) when they are checked and run; each limit keeps
// that recursion well inside the stack of a host thread with 1 MB. Past a limit the compiler reports
// "Macro/module is too large." (10603) at the construct that went one level too deep.
namespace brannoc {

// Parentheses, argument and index lists and unary operators, nested inside one expression (also in the
// expressions of Const declarations).
constexpr int kMaxExpressionDepth = 200;
// Unary operators waiting for their operand in one expression ("- - - x").
constexpr int kMaxPendingOperators = 64;
// Statements nested inside single-line Ifs ("If a Then If b Then ...").
constexpr int kMaxInlineDepth = 50;
// Modules reached through a chain of '#Uses lines, each loading the next. A chain that names its own
// modules back under ever new names (the host resolves names) would otherwise load without end; past the
// limit the '#Uses line reports "Invalid '#Uses module dependency." (10009).
constexpr int kMaxUsesDepth = 64;

// One nesting level, counted for as long as it lives (like Lua's enterlevel): Entered() is false when
// the level is past the limit, and the caller then reports the error and returns failure.
class NestingLevel final {
public:
    NestingLevel(int& depth, int limit) : m_depth(depth), m_entered(++depth <= limit) {}
    ~NestingLevel() { --m_depth; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;
    bool Entered() const { return m_entered; }

private:
    int& m_depth;
    bool m_entered;
};

} // namespace brannoc
