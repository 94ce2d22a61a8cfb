#include "frontend/TypeCode.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

TEST(TypeCodeTest, SizesAndValueTags)
{
    struct Row {
        std::uint16_t code;
        std::uint32_t size;
        std::uint16_t tag;
    };
    const Row rows[] = {
        {TypeCode::kByte, 1, 17},    {TypeCode::kBoolean, 2, 11}, {TypeCode::kInteger, 2, 2},
        {TypeCode::kLong, 4, 3},     {TypeCode::kSingle, 4, 4},   {TypeCode::kDouble, 8, 5},
        {TypeCode::kCurrency, 8, 6}, {TypeCode::kDate, 8, 7},     {TypeCode::kDecimal, 16, 14},
        {TypeCode::kString, 4, 8},   {TypeCode::kVariant, 16, 12}, {TypeCode::kObject, 4, 9},
        {TypeCode::kEmpty, 0, 0},    {TypeCode::kNull, 4, 1},     {TypeCode::kError, 4, 10},
        {TypeCode::kUnknown, 4, 13},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(TypeCode(row.code).StorageSize(), row.size) << std::hex << row.code;
        EXPECT_EQ(TypeCode(row.code).ValueTag(), row.tag) << std::hex << row.code;
    }
    EXPECT_EQ(TypeCode(TypeCode::kUserType).StorageSize(40), 40u);
    EXPECT_EQ(TypeCode(TypeCode::kUserType).ValueTag(), 36);
    EXPECT_EQ(TypeCode(TypeCode::kDouble).WithRank(3).StorageSize(), 12u);
    EXPECT_EQ(TypeCode(TypeCode::kDouble).WithRank(3).Rank(), 3);
    EXPECT_EQ(TypeCode(TypeCode::kDouble).WithRank(3).Code(), 0x6410);
}

TEST(TypeCodeTest, FixedLengthStringCodes)
{
    struct Row {
        long long length;
        bool valid;
        std::uint16_t code;
    };
    const Row rows[] = {
        {0, false, 0},        {1, true, 0x1801},     {1000, true, 0x1800 | 1000}, {1001, false, 0},
        {1023, false, 0},     {1024, true, 0x1800 | 1001}, {2048, true, 0x1800 | 1002},
        {23 * 1024, true, 0x1800 | 1023}, {24 * 1024, false, 0}, {-5, false, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(TypeCode::IsValidFixedLength(row.length), row.valid) << row.length;
        if (!row.valid)
            continue;
        const TypeCode type = TypeCode::FixedString(static_cast<int>(row.length));
        EXPECT_EQ(type.Code(), row.code) << row.length;
        EXPECT_EQ(type.FixedLength(), row.length);
        EXPECT_TRUE(type.IsFixedString());
        EXPECT_EQ(type.StorageSize(), 2u * static_cast<std::uint32_t>(row.length));
        EXPECT_EQ(type.ValueTag(), 8);
    }
}

TEST(TypeCodeTest, Suffixes)
{
    EXPECT_EQ(TypeOfSuffix('!'), TypeCode(TypeCode::kSingle));
    EXPECT_EQ(TypeOfSuffix('#'), TypeCode(TypeCode::kDouble));
    EXPECT_EQ(TypeOfSuffix('$'), TypeCode(TypeCode::kString));
    EXPECT_EQ(TypeOfSuffix('%'), TypeCode(TypeCode::kInteger));
    EXPECT_EQ(TypeOfSuffix('&'), TypeCode(TypeCode::kLong));
    EXPECT_EQ(TypeOfSuffix('?'), TypeCode(TypeCode::kLong));
    EXPECT_EQ(TypeOfSuffix('@'), TypeCode(TypeCode::kCurrency));
    EXPECT_EQ(TypeOfSuffix('x'), TypeCode());
}

} // namespace
} // namespace brannoc
