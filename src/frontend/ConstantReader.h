#pragma once
// Reads and folds a constant expression at the lexer's current token: literals, named constants of the
// module, parentheses and the arithmetic, text, comparison and logical operators.
#include "frontend/ConstantValue.h"

namespace brannoc {

class Lexer;
struct ParseState;

class ConstantReader final {
public:
    ConstantReader(Lexer& lexer, const ParseState* names) : m_lexer(lexer), m_names(names) {}

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
};

} // namespace brannoc
