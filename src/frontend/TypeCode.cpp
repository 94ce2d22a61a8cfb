#include "frontend/TypeCode.h"

namespace brannoc {

std::uint32_t TypeCode::StorageSize(std::uint32_t userTypeSize) const
{
    if (IsArray())
        return 12;
    switch (Class()) {
    case kNumericClass:
        switch (m_code) {
        case kByte: return 1;
        case kBoolean:
        case kInteger: return 2;
        case kLong:
        case kSingle: return 4;
        case kDecimal: return 16;
        default: return 8;
        }
    case kStringClass:
    case kObjectClass: return 4;
    case kVariantClass: return 16;
    case kUserTypeClass: return userTypeSize;
    case kFixedStringClass: return 2u * static_cast<std::uint32_t>(FixedLength());
    default: return m_code == kEmpty ? 0 : 4;
    }
}

std::uint16_t TypeCode::ValueTag() const
{
    switch (Class()) {
    case kNumericClass:
        switch (Scalar().Code()) {
        case kByte: return 17;
        case kBoolean: return 11;
        case kInteger: return 2;
        case kLong: return 3;
        case kSingle: return 4;
        case kDouble: return 5;
        case kCurrency: return 6;
        case kDate: return 7;
        default: return 14;
        }
    case kStringClass:
    case kFixedStringClass: return 8;
    case kVariantClass: return 12;
    case kUserTypeClass: return 36;
    case kObjectClass: return 9;
    default:
        switch (Scalar().Code()) {
        case kNull: return 1;
        case kError: return 10;
        case kUnknown: return 13;
        default: return 0;
        }
    }
}

TypeCode TypeOfSuffix(char suffix)
{
    switch (suffix) {
    case '!': return TypeCode(TypeCode::kSingle);
    case '#': return TypeCode(TypeCode::kDouble);
    case '$': return TypeCode(TypeCode::kString);
    case '%': return TypeCode(TypeCode::kInteger);
    case '&':
    case '?': return TypeCode(TypeCode::kLong);
    case '@': return TypeCode(TypeCode::kCurrency);
    default: return TypeCode();
    }
}

} // namespace brannoc
