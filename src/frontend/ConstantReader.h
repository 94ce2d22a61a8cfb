#pragma once
// Reads and folds a constant expression at the lexer's current token: literals, named constants of the
// module, parentheses and the arithmetic, text, comparison and logical operators.
#include "frontend/ConstantValue.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace brannoc {

// The value of an "&H" or "&O" literal (text includes the "&H"/"&O"): digits are shifted in while the
// value's top 4 (hexadecimal) or 3 (octal) bits are clear. A value that fits in 16 bits is the Integer
// it sign-extends to unless a Long suffix ("&") follows, which keeps it unsigned; others are Longs.
// Nothing when the first character is not a digit or characters are left over ("Invalid numeric
// constant.").
struct RadixLiteral {
    std::int32_t value = 0;
    bool isInteger = false;
};
std::optional<RadixLiteral> ReadRadixLiteral(std::string_view text, bool longSuffix);

// The value of a number literal as the lexer gave it (text without its type suffix; longSuffix when "&"
// follows): "&H"/"&O" literals by ReadRadixLiteral; digits only, an Integer when the value fits in 16
// bits, else a Long when it fits in 32, else a Double; with a point or an exponent ("E" or "D") a
// Double. Nothing ("Invalid numeric constant.") for a malformed literal or one too large for a Double.
// Expressions and Const declarations both read their numbers here.
struct NumberLiteral {
    enum class Kind { kInteger, kLong, kDouble } kind = Kind::kInteger;
    std::int32_t whole = 0;
    double real = 0;
};
std::optional<NumberLiteral> ReadNumberLiteral(std::string_view text, bool longSuffix);

class Lexer;
struct ParseState;

// Moves the lexer past the string or date literal it stands at. A type suffix written right after the
// literal reports "Type mismatch." (false); "&" there is the concatenation operator ("a"&x), not a suffix.
[[nodiscard]] bool PassTextLiteral(Lexer& lexer);

class ConstantReader final {
public:
    ConstantReader(Lexer& lexer, const ParseState* names) : m_lexer(lexer), m_names(names) {}
    // With `unknownName`: a name that is no constant (yet) fails the read without an error and sets it,
    // so that a declaration naming a later constant can be read again once that one is known.
    ConstantReader(Lexer& lexer, const ParseState* names, bool* unknownName)
        : m_lexer(lexer), m_names(names), m_unknownName(unknownName)
    {
    }

    // On success the lexer stands after the expression. On failure an error has been reported.
    [[nodiscard]] bool Read(ConstantValue& value);
    // A constant expression that must be a whole number (array bounds, string lengths).
    [[nodiscard]] bool ReadInteger(long long& value);

private:
    [[nodiscard]] bool ReadBinary(int minimumPrecedence, ConstantValue& value);
    [[nodiscard]] bool ReadUnary(ConstantValue& value);
    [[nodiscard]] bool ReadPrimary(ConstantValue& value);
    [[nodiscard]] bool ReadNumber(ConstantValue& value);
    [[nodiscard]] bool ReadDate(ConstantValue& value);
    [[nodiscard]] bool ApplySuffix(ConstantValue& value);
    [[nodiscard]] bool Fold(int op, const ConstantValue& left, const ConstantValue& right, ConstantValue& result);

    Lexer& m_lexer;
    const ParseState* m_names;
    bool* m_unknownName = nullptr;
    int m_depth = 0; // nesting of parentheses and unary operators (NestingLimits.h)
};

} // namespace brannoc
