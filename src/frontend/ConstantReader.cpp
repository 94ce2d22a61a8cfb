#include "frontend/ConstantReader.h"

#include "frontend/BodyParser.h"

#include "frontend/NestingLimits.h"

#include "frontend/LanguageConstants.h"

#include "frontend/CharClasses.h"
#include "frontend/Lexer.h"
#include "frontend/Module.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace brannoc {
namespace {

// Binary operators of constant expressions and their precedence (higher binds tighter).
struct BinaryOperator {
    Token token;
    int precedence;
};

constexpr BinaryOperator kBinaryOperators[] = {
    {Token::Caret, 800},    {Token::Star, 700},     {Token::Slash, 700},   {Token::Backslash, 600},
    {Token::Mod, 500},      {Token::Plus, 400},     {Token::Minus, 400},   {Token::Ampersand, 300},
    {Token::Equal, 200},    {Token::NotEqual, 200}, {Token::Less, 200},    {Token::Greater, 200},
    {Token::LessEqual, 200}, {Token::GreaterEqual, 200}, {Token::Like, 200}, {Token::And, 100}, {Token::Or, 90},
    {Token::Xor, 80},       {Token::Eqv, 70},       {Token::Imp, 60},
};
constexpr int kUnaryPrecedence = 900;
constexpr int kNotPrecedence = 110;

int PrecedenceOf(Token token)
{
    for (const BinaryOperator& op : kBinaryOperators)
        if (op.token == token)
            return op.precedence;
    return -1;
}

} // namespace

bool PassTextLiteral(Lexer& lexer)
{
    const char following = lexer.FollowingChar();
    const char* end = lexer.TokenEnd();
    lexer.NextToken();
    if (following == '&' || TypeOfSuffix(following) == TypeCode() || lexer.TokenStart() != end)
        return true;
    lexer.SignalError(CompileMessage::TypeMismatch);
    return false;
}

// constant: a constant expression, folded to its value as it is read
bool ConstantReader::Read(ConstantValue& value) { return ReadBinary(0, value); }

// constant: a constant expression, converted to a Long
bool ConstantReader::ReadInteger(long long& value)
{
    ConstantValue constant;
    if (!Read(constant))
        return false;
    if (!constant.ConvertTo(TypeCode(TypeCode::kLong))) {
        m_lexer.SignalError(CompileMessage::ExpectingAIntegerConstant);
        return false;
    }
    value = constant.integer;
    return true;
}

// unary {operator unary}: only operators binding tighter than minimumPrecedence; equal ones associate left
bool ConstantReader::ReadBinary(int minimumPrecedence, ConstantValue& value)
{
    if (!ReadUnary(value))
        return false;
    for (;;) {
        const Token op = m_lexer.Kind();
        const int precedence = PrecedenceOf(op);
        if (precedence < 0 || precedence <= minimumPrecedence)
            return true;
        m_lexer.NextToken();
        ConstantValue right;
        if (!ReadBinary(precedence, right))
            return false;
        ConstantValue result;
        if (!Fold(TokenNumber(op), value, right, result))
            return false;
        value = std::move(result);
    }
}

// "-" unary | "+" unary | Not operand | primary: Not takes all that binds tighter than And
bool ConstantReader::ReadUnary(ConstantValue& value)
{
    const NestingLevel level(m_depth, kMaxExpressionDepth);
    if (!level.Entered()) {
        m_lexer.SignalError(CompileMessage::MacroModuleIsTooLarge);
        return false;
    }
    const Token token = m_lexer.Kind();
    if (token == Token::Minus || token == Token::Plus || token == Token::Not) {
        m_lexer.NextToken();
        if (token == Token::Not ? !ReadBinary(kNotPrecedence, value) : !ReadBinary(kUnaryPrecedence, value))
            return false;
        if (value.IsString()) {
            m_lexer.SignalError(CompileMessage::TypeMismatch);
            return false;
        }
        if (token == Token::Plus)
            return true;
        // The operator's own computation: Not keeps a Boolean or a Byte, negation widens -32768.
        Variant operand = body::FromConstant(value);
        long error = 0;
        if (!body::FoldConstantOperand(token == Token::Minus ? OperationId::kNegate : OperationId::kNot, operand,
                                       error) ||
            !body::ToConstant(operand, value)) {
            m_lexer.SignalError(error != 0 ? static_cast<CompileMessage>(error) : CompileMessage::TypeMismatch);
            return false;
        }
        return true;
    }
    return ReadPrimary(value);
}

// number | "text" | #date# | True | False | Win32 | Win16 | Empty | Null | "(" constant ")" | constant name
// A constant name: a module constant, an enum member or one of the language's constants.
bool ConstantReader::ReadPrimary(ConstantValue& value)
{
    switch (m_lexer.Kind()) {
    case Token::LiteralNumber:
        return ReadNumber(value);
    case Token::LiteralString: {
        const std::string_view text = m_lexer.Text();
        value = ConstantValue::String(std::wstring(text.begin(), text.end()));
        return PassTextLiteral(m_lexer);
    }
    case Token::True:
    case Token::False:
    case Token::Win32:
    case Token::Win16:
        // Win32 and Win16 tell the platform the macro runs on: this one is 32-bit.
        value = ConstantValue::Boolean(m_lexer.Kind() == Token::True || m_lexer.Kind() == Token::Win32);
        m_lexer.NextToken();
        return true;
    case Token::Empty:
    case Token::Null:
        value = ConstantValue{};
        if (m_lexer.Kind() == Token::Null)
            value.type = TypeCode(TypeCode::kNull);
        m_lexer.NextToken();
        return true;
    case Token::LeftParen:
        m_lexer.NextToken();
        if (!Read(value))
            return false;
        return m_lexer.ExpectToken(Token::RightParen);
    case Token::Hash:
        if (!m_lexer.ScanDateLiteral())
            break;
        return ReadDate(value);
    case Token::LiteralDate:
        return ReadDate(value);
    default:
        break;
    }
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
        return false;
    }
    if (m_names != nullptr) {
        const auto found = m_names->names.find(UpperName(m_lexer.Text()));
        if (found != m_names->names.end()) {
            const SymbolRef& ref = found->second;
            if (ref.kind == SymbolKind::Constant) {
                value = m_names->constants[ref.index]->value;
                m_lexer.NextToken();
                return true;
            }
            if (ref.kind == SymbolKind::EnumMember) {
                value = m_names->enums[ref.index]->members[ref.member].value;
                m_lexer.NextToken();
                return true;
            }
        }
    }
    if (FindLanguageConstant(m_lexer.Text(), value)) {
        m_lexer.NextToken();
        return true;
    }
    if (m_unknownName) {
        *m_unknownName = true;
        return false;
    }
    m_lexer.SignalError(CompileMessage::ExpectingAConstantOrFunctionName);
    return false;
}

// #date#
// The text between the "#" marks, converted to Date by the value conversion in the engine locale. A text
// that is no date is a type mismatch at compile time.
bool ConstantReader::ReadDate(ConstantValue& value)
{
    const std::string_view text = m_lexer.Text();
    Variant date;
    if (!date.SetString(std::wstring(text.begin(), text.end()))) {
        m_lexer.SignalError(CompileMessage::OutOfMemory);
        return false;
    }
    // The conversion raises run-time errors; here a failure becomes the compile error below.
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool converted = ChangeType(date, VT_DATE);
    SetRaiseHandler(previous);
    if (!converted) {
        m_lexer.SignalError(CompileMessage::TypeMismatch);
        return false;
    }
    value = ConstantValue::Real(date.Date(), TypeCode::kDate);
    return PassTextLiteral(m_lexer);
}

std::optional<RadixLiteral> ReadRadixLiteral(std::string_view text, bool longSuffix)
{
    if (text.size() < 2 || text[0] != '&')
        return std::nullopt;
    const bool hex = text[1] == 'H' || text[1] == 'h';
    if (!hex && text[1] != 'O' && text[1] != 'o')
        return std::nullopt;
    const unsigned shift = hex ? 4 : 3;
    const std::uint32_t topBits = hex ? 0xF0000000u : 0xE0000000u;
    auto digitOf = [hex](char c) {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (hex && c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        if (hex && c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        return 99;
    };
    // Octal literals take the digits 8 and 9 too: each digit is merged into the value shifted by three bits,
    // so "&O8" is 8 and "&O18" is 8 as well.
    const int digitLimit = hex ? 16 : 10;
    const std::string_view digits = text.substr(2);
    if (digits.empty() || digitOf(digits[0]) >= digitLimit)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const char c : digits) {
        const int digit = digitOf(c);
        if (digit >= digitLimit || (number & topBits) != 0)
            return std::nullopt;
        number = (number << shift) | static_cast<std::uint32_t>(digit);
    }
    RadixLiteral literal;
    if (number <= 0xFFFF && !longSuffix) {
        literal.value = static_cast<std::int16_t>(number);
        literal.isInteger = true;
    } else {
        literal.value = static_cast<std::int32_t>(number);
    }
    return literal;
}

std::optional<NumberLiteral> ReadNumberLiteral(std::string_view text, bool longSuffix)
{
    NumberLiteral result;
    if (!text.empty() && text[0] == '&') {
        const std::optional<RadixLiteral> radix = ReadRadixLiteral(text, longSuffix);
        if (!radix)
            return std::nullopt;
        result.kind = radix->isInteger ? NumberLiteral::Kind::kInteger : NumberLiteral::Kind::kLong;
        result.whole = radix->value;
        return result;
    }
    std::string normal(text);
    for (char& c : normal)
        if (c == 'D' || c == 'd')
            c = 'E';
    char* end = nullptr;
    const double number = std::strtod(normal.c_str(), &end);
    if (normal.empty() || end == nullptr || *end != '\0' || !std::isfinite(number))
        return std::nullopt;
    const bool digitsOnly = normal.find_first_not_of("0123456789") == std::string::npos;
    if (digitsOnly && number <= 32767) {
        result.whole = static_cast<std::int32_t>(number);
    } else if (digitsOnly && number <= 2147483647.0) {
        result.kind = NumberLiteral::Kind::kLong;
        result.whole = static_cast<std::int32_t>(number);
    } else {
        result.kind = NumberLiteral::Kind::kDouble;
        result.real = number;
    }
    return result;
}

// number [suffix]: decimal, &H or &O; a suffix converts the value, "$" is a type mismatch
bool ConstantReader::ReadNumber(ConstantValue& value)
{
    const std::optional<NumberLiteral> literal =
        ReadNumberLiteral(m_lexer.Text(), *m_lexer.TokenEnd() == '&');
    if (!literal) {
        m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
        return false;
    }
    switch (literal->kind) {
    case NumberLiteral::Kind::kInteger: value = ConstantValue::Integer(literal->whole, TypeCode::kInteger); break;
    case NumberLiteral::Kind::kLong: value = ConstantValue::Integer(literal->whole, TypeCode::kLong); break;
    case NumberLiteral::Kind::kDouble: value = ConstantValue::Real(literal->real); break;
    }
    m_lexer.NextToken();
    return ApplySuffix(value);
}

// A type suffix written right after the number converts the constant; "$" is a mismatch.
bool ConstantReader::ApplySuffix(ConstantValue& value)
{
    const char suffix = m_lexer.PreviousFollowingChar();
    if (suffix == '\0' || *m_lexer.TokenStart() != suffix)
        return true;
    if (suffix == '$') {
        m_lexer.SignalError(CompileMessage::TypeMismatch);
        return false;
    }
    const TypeCode type = TypeOfSuffix(suffix);
    if (type == TypeCode())
        return true;
    m_lexer.NextToken();
    if (!value.ConvertTo(type)) {
        m_lexer.SignalError(CompileMessage::Overflow);
        return false;
    }
    return true;
}

// left op right by the operator's own computation, so that a constant holds what the same expression gives
// when it runs (a Date plus a number stays a Date, a Boolean sum is an Integer).
bool ConstantReader::Fold(int op, const ConstantValue& left, const ConstantValue& right, ConstantValue& result)
{
    const body::BinaryOperator* binary = body::FindBinary(static_cast<Token>(op));
    if (!binary) {
        m_lexer.SignalError(CompileMessage::OperandOperatorTypeMismatch);
        return false;
    }
    Variant value = body::FromConstant(left);
    long error = 0;
    if (!body::FoldConstantOperands(binary->op, value, body::FromConstant(right), error)) {
        m_lexer.SignalError(error != 0 ? static_cast<CompileMessage>(error) : CompileMessage::TypeMismatch);
        return false;
    }
    if (!body::ToConstant(value, result)) {
        m_lexer.SignalError(CompileMessage::TypeMismatch);
        return false;
    }
    return true;
}

} // namespace brannoc
