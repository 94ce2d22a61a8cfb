#include "library/BuiltinGroups.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace brannoc {
namespace {

constexpr std::string_view kKindCharacters = "$%&!#?/Sa~";

int NameCount(std::string_view names)
{
    if (names.empty())
        return 0;
    int count = 1;
    for (char c : names)
        count += c == ' ';
    return count;
}

// Every record is well formed: known parameter kinds, a name per parameter, optional bits only for
// parameters that exist, exactly one implementation, and instructions only in the evaluating form.
TEST(BuiltinTable, RecordsAreWellFormed)
{
    std::set<int> keywords;
    ForEachBuiltin([&](const BuiltinRecord& record) {
        const std::string_view name = KeywordText(record.keyword);
        SCOPED_TRACE(std::string(name));
        EXPECT_FALSE(name.empty());
        EXPECT_TRUE(keywords.insert(TokenNumber(record.keyword)).second) << "listed twice";
        const std::string_view kinds(record.parameterKinds);
        for (char kind : kinds)
            EXPECT_NE(kKindCharacters.find(kind), std::string_view::npos) << "kind " << kind;
        EXPECT_EQ(NameCount(record.parameterNames), record.ParameterCount());
        EXPECT_EQ(record.optionalMask >> record.ParameterCount(), 0u);
        EXPECT_NE(record.evaluate == nullptr, record.convert == nullptr);
        if (record.convert)
            EXPECT_EQ(record.ParameterCount(), 1);
        if (record.IsInstruction())
            EXPECT_NE(record.evaluate, nullptr);
        if (record.TakesAnyCount())
            EXPECT_GE(record.ParameterCount(), 1);
        EXPECT_EQ(FindBuiltin(record.keyword), &record);
    });
    EXPECT_EQ(FindBuiltin(Token::Dim), nullptr);
    EXPECT_EQ(FindBuiltin(Token::Id), nullptr);
}

TEST(BuiltinTable, NamesParametersAsTheTypeLibraryDoes)
{
    const BuiltinRecord* replace = FindBuiltin(Token::Replace);
    ASSERT_NE(replace, nullptr);
    EXPECT_EQ(replace->ParameterName(0), "S");
    EXPECT_EQ(replace->ParameterName(4), "Count");
    EXPECT_EQ(replace->ParameterName(5), "");
    EXPECT_TRUE(replace->IsOptional(3));
    EXPECT_FALSE(replace->IsOptional(2));
    const BuiltinRecord* choose = FindBuiltin(Token::Choose);
    ASSERT_NE(choose, nullptr);
    EXPECT_EQ(choose->ParameterName(7), "Choice");
    EXPECT_EQ(choose->KindOf(7), '?');
}

} // namespace
} // namespace brannoc
