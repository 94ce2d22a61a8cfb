#pragma once
// The 16-bit compile-time type code: rank in bits 13-15, class in bits 10-12, kind in the low bits.
#include <cstdint>

namespace brannoc {

class TypeCode final {
public:
    // Classes (bits 10 to 12).
    static constexpr std::uint16_t kClassMask = 0x1C00;
    static constexpr std::uint16_t kNumericClass = 0x400;
    static constexpr std::uint16_t kStringClass = 0x800;
    static constexpr std::uint16_t kVariantClass = 0xC00;
    static constexpr std::uint16_t kUserTypeClass = 0x1000;
    static constexpr std::uint16_t kFixedStringClass = 0x1800;
    static constexpr std::uint16_t kObjectClass = 0x1C00;
    static constexpr std::uint16_t kRankShift = 13;
    static constexpr std::uint16_t kScalarMask = 0x1FFF;
    static constexpr std::uint16_t kFixedLengthMask = 0x3FF;
    static constexpr int kMaxRank = 6;
    // A dynamic array whose rank the declaration does not fix.
    static constexpr int kDynamicRank = 7;

    // Codes of the scalar types.
    static constexpr std::uint16_t kEmpty = 0;
    static constexpr std::uint16_t kNull = 1;
    static constexpr std::uint16_t kError = 2;
    static constexpr std::uint16_t kUnknown = 3;
    static constexpr std::uint16_t kByte = 0x400;
    static constexpr std::uint16_t kBoolean = 0x401;
    static constexpr std::uint16_t kInteger = 0x402;
    static constexpr std::uint16_t kLong = 0x404;
    static constexpr std::uint16_t kSingle = 0x408;
    static constexpr std::uint16_t kDouble = 0x410;
    static constexpr std::uint16_t kCurrency = 0x420;
    static constexpr std::uint16_t kDate = 0x440;
    static constexpr std::uint16_t kDecimal = 0x480;
    static constexpr std::uint16_t kString = 0x800;
    static constexpr std::uint16_t kVariant = 0xC00;
    static constexpr std::uint16_t kUserType = 0x1000;
    static constexpr std::uint16_t kObject = 0x1C00;

    constexpr TypeCode() = default;
    constexpr explicit TypeCode(std::uint16_t code) : m_code(code) {}

    // A fixed-length string of `length` characters; the length must be valid (IsValidFixedLength).
    static constexpr TypeCode FixedString(int length)
    {
        const int code = length <= 1000 ? length : 1000 + length / 1024;
        return TypeCode(static_cast<std::uint16_t>(kFixedStringClass | code));
    }
    // 1 to 1000, or k * 1024 with k from 1 to 23.
    static constexpr bool IsValidFixedLength(long long length)
    {
        return (length >= 1 && length <= 1000) || (length % 1024 == 0 && length >= 1024 && length <= 23 * 1024);
    }

    constexpr std::uint16_t Code() const { return m_code; }
    constexpr std::uint16_t Class() const { return m_code & kClassMask; }
    constexpr int Rank() const { return m_code >> kRankShift; }
    constexpr bool IsArray() const { return Rank() != 0; }
    constexpr TypeCode Scalar() const { return TypeCode(m_code & kScalarMask); }
    constexpr TypeCode WithRank(int rank) const
    {
        return TypeCode(static_cast<std::uint16_t>((m_code & kScalarMask) | (rank << kRankShift)));
    }
    constexpr bool IsNumeric() const { return Class() == kNumericClass; }
    constexpr bool IsString() const { return Class() == kStringClass; }
    constexpr bool IsFixedString() const { return Class() == kFixedStringClass; }
    constexpr bool IsVariant() const { return Class() == kVariantClass; }
    constexpr bool IsUserType() const { return Class() == kUserTypeClass; }
    constexpr bool IsObject() const { return Class() == kObjectClass; }

    // Characters of a fixed-length string: the code itself up to 1000, else (code - 1000) * 1024.
    constexpr int FixedLength() const
    {
        const int code = m_code & kFixedLengthMask;
        return code <= 1000 ? code : (code - 1000) * 1024;
    }

    // Bytes of storage of a scalar or array variable of this type; a user-defined type's size is not
    // known here and is given by the caller.
    std::uint32_t StorageSize(std::uint32_t userTypeSize = 0) const;
    // The value tag (VbVarType) of a value of this type outside its storage (arrays: the element's).
    constexpr std::uint16_t ValueTag() const;

    constexpr bool operator==(const TypeCode&) const = default;

private:
    std::uint16_t m_code = kEmpty;
};

// Type of a suffix character ("!", "#", "$", "%", "&", "?", "@"); the empty code for any other.
TypeCode TypeOfSuffix(char suffix);

// Read on hot paths (parameter binding, references): defined here so that it is inlined.
constexpr std::uint16_t TypeCode::ValueTag() const
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

} // namespace brannoc
