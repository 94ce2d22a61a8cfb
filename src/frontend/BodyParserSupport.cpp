#include "frontend/BodyParser.h"

#include <windows.h>

#include <cmath>
#include <limits>

namespace brannoc::body {

std::wstring Widen(std::string_view text)
{
    if (text.empty())
        return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), length);
    return out;
}

Variant FromConstant(const ConstantValue& value)
{
    Variant out;
    switch (value.type.Code()) {
    case TypeCode::kByte: out.SetByte(static_cast<BYTE>(value.integer)); break;
    case TypeCode::kBoolean: out.SetBoolean(value.integer != 0); break;
    case TypeCode::kInteger: out.SetInteger(static_cast<SHORT>(value.integer)); break;
    case TypeCode::kLong: out.SetLong(static_cast<LONG>(value.integer)); break;
    case TypeCode::kSingle: out.SetSingle(static_cast<FLOAT>(value.real)); break;
    case TypeCode::kDouble: out.SetDouble(value.real); break;
    case TypeCode::kCurrency: {
        // A constant folded from a Currency value at an end of the range may lie a rounding beyond it in
        // its Double: it keeps that end.
        std::int64_t units = value.real < 0 ? std::numeric_limits<std::int64_t>::min()
                                             : std::numeric_limits<std::int64_t>::max();
        (void)ConstantValue::CurrencyUnits(value.real, units);
        out.SetCurrencyUnits(units);
        break;
    }
    case TypeCode::kDate: out.SetDate(value.real); break;
    case TypeCode::kString: (void)out.SetString(value.text); break;
    case TypeCode::kNull: out.SetNull(); break;
    default: break;
    }
    return out;
}

bool ToConstant(const Variant& value, ConstantValue& constant)
{
    switch (value.Tag()) {
    case VT_UI1: constant = ConstantValue::Integer(value.Byte(), TypeCode::kByte); return true;
    case VT_BOOL: constant = ConstantValue::Boolean(value.Boolean() != 0); return true;
    case VT_I2: constant = ConstantValue::Integer(value.Integer(), TypeCode::kInteger); return true;
    case VT_I4: constant = ConstantValue::Integer(value.Long(), TypeCode::kLong); return true;
    case VT_R4: constant = ConstantValue::Real(value.Single(), TypeCode::kSingle); return true;
    case VT_R8: constant = ConstantValue::Real(value.Double()); return true;
    case VT_CY:
        constant = ConstantValue::Real(static_cast<double>(value.Currency().int64) / 10000.0, TypeCode::kCurrency);
        return true;
    case VT_DATE: constant = ConstantValue::Real(value.Date(), TypeCode::kDate); return true;
    case VT_BSTR: constant = ConstantValue::String(std::wstring(value.StringView())); return true;
    case VT_NULL:
        constant = ConstantValue{};
        constant.type = TypeCode(TypeCode::kNull);
        return true;
    case VT_EMPTY: constant = ConstantValue{}; return true;
    default: return false;
    }
}

TypeCode TypeOfValue(const Variant& value)
{
    switch (value.Tag()) {
    case VT_UI1: return TypeCode(TypeCode::kByte);
    case VT_BOOL: return TypeCode(TypeCode::kBoolean);
    case VT_I2: return TypeCode(TypeCode::kInteger);
    case VT_I4: return TypeCode(TypeCode::kLong);
    case VT_R4: return TypeCode(TypeCode::kSingle);
    case VT_R8: return TypeCode(TypeCode::kDouble);
    case VT_CY: return TypeCode(TypeCode::kCurrency);
    case VT_DATE: return TypeCode(TypeCode::kDate);
    case VT_DECIMAL: return TypeCode(TypeCode::kDecimal);
    case VT_BSTR: return TypeCode(TypeCode::kString);
    default: return TypeCode(TypeCode::kVariant);
    }
}

const BinaryOperator* FindBinary(Token token)
{
    for (const BinaryOperator& entry : kBinaryOperators) {
        if (entry.token == token)
            return &entry;
    }
    return nullptr;
}

TypeCode TypeOfWord(Token token)
{
    switch (token) {
    case Token::Boolean: return TypeCode(TypeCode::kBoolean);
    case Token::Byte: return TypeCode(TypeCode::kByte);
    case Token::Integer: return TypeCode(TypeCode::kInteger);
    case Token::Long:
    case Token::PortInt: return TypeCode(TypeCode::kLong); // the platform's integer: Long on 32-bit
    case Token::Single: return TypeCode(TypeCode::kSingle);
    case Token::Double: return TypeCode(TypeCode::kDouble);
    case Token::Currency: return TypeCode(TypeCode::kCurrency);
    case Token::Date: return TypeCode(TypeCode::kDate);
    case Token::Decimal: return TypeCode(TypeCode::kDecimal);
    case Token::String: return TypeCode(TypeCode::kString);
    case Token::Variant: return TypeCode(TypeCode::kVariant);
    default: return TypeCode();
    }
}

const char* SkipBlanks(const char* p)
{
    while (*p == ' ' || *p == '\t')
        ++p;
    return p;
}

bool IsStatementEnd(Token token)
{
    return token == Token::EndOfLine || token == Token::Apostrophe || token == Token::Colon || token == Token::Else;
}

std::string_view BlockWord(BlockKind kind)
{
    switch (kind) {
    case BlockKind::If: return "If";
    case BlockKind::Select: return "Select";
    case BlockKind::For: return "For";
    case BlockKind::Do: return "Do";
    case BlockKind::While: return "While";
    case BlockKind::With: return "With";
    }
    return {};
}

} // namespace brannoc::body
