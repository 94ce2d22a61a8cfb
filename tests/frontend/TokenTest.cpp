#include "frontend/Token.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace brannoc {
namespace {

TEST(TokenTest, TableBoundariesHaveTheirTexts)
{
    struct Row {
        int number;
        const char* text;
    };
    const Row rows[] = {
        {0, ""},          {1, "operator"},  {5, "other"},        {6, "!"},          {7, "="},
        {8, ">="},        {12, "<>"},       {14, ":="},          {19, "\\"},        {29, ";"},
        {30, "reserved"}, {31, "Abs"},      {73, "DefStr"},      {74, "DefObj"},    {162, "Xor"},
        {163, "id"},      {164, "Access"},  {206, "EOF"},        {223, "GetObject"}, {324, "TextBox"},
        {338, "AboutBrannocBasic"},         {339, "CallersLine"}, {340, ""},        {-1, ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(KeywordText(row.number), row.text) << "token " << row.number;
}

TEST(TokenTest, EveryTextIsFoundByItsOwnNumberInAnyCase)
{
    for (int number = 1; number < kTokenCount; ++number) {
        std::string text(KeywordText(number));
        EXPECT_EQ(TokenNumber(LookupKeyword(text)), number) << text;
        for (char& c : text)
            c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        EXPECT_EQ(TokenNumber(LookupKeyword(text)), number) << text;
    }
}

TEST(TokenTest, TextsAreUnique)
{
    std::set<std::string> seen;
    for (int number = 1; number < kTokenCount; ++number)
        EXPECT_TRUE(seen.insert(std::string(KeywordText(number))).second) << KeywordText(number);
}

TEST(TokenTest, NonKeywordsAreIdentifiers)
{
    for (const char* text : {"x", "Mainx", "Texts", "", "Dimm", "[If]"})
        EXPECT_EQ(LookupKeyword(text), Token::Id) << text;
}

TEST(TokenTest, HashFoldsCaseAndPairsCharacters)
{
    // "Ab": 'A'&31 = 1, 'b'&31 = 2 -> 1 + 2*16 = 33; "abc" adds 'c'&31 = 3.
    EXPECT_EQ(KeywordHash("Ab"), 33u);
    EXPECT_EQ(KeywordHash("aB"), 33u);
    EXPECT_EQ(KeywordHash("abc"), 36u);
    EXPECT_EQ(KeywordHash(""), 0u);
    std::string longText(300, 'z'); // 150 pairs of 26 + 26*16 = 442 each
    EXPECT_EQ(KeywordHash(longText), (150u * 442u) & 0x7FFu);
}

TEST(TokenTest, NameTokensStartAtTheIdentifierKind)
{
    EXPECT_TRUE(IsNameToken(Token::Id));
    EXPECT_TRUE(IsNameToken(Token::Text));
    EXPECT_TRUE(IsNameToken(Token::Line));
    EXPECT_FALSE(IsNameToken(Token::Dim));
    EXPECT_FALSE(IsNameToken(Token::Next));
    EXPECT_TRUE(IsReservedWord(Token::Next));
    EXPECT_FALSE(IsReservedWord(Token::Name));
}

} // namespace
} // namespace brannoc
