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
