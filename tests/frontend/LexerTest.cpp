#include "frontend/Lexer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brannoc {
namespace {

struct Lexed {
    int kind;
    std::string text;
    int line;
    int offset;
    bool operator==(const Lexed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Lexed& token)
{
    return out << "{" << token.kind << ", \"" << token.text << "\", line " << token.line << ", offset "
               << token.offset << "}";
}

// Every token of the text, line ends included, until the end of the text.
std::vector<Lexed> LexAll(const char* text)
{
    Lexer lexer;
    lexer.SetText(text);
    std::vector<Lexed> tokens;
    for (int guard = 0; guard < 1000; ++guard) {
        tokens.push_back({lexer.KindNumber(), std::string(lexer.Text()), lexer.Line(), lexer.Offset()});
        if (lexer.Kind() == Token::EndOfLine) {
            if (lexer.AtEnd())
                break;
            lexer.SkipStatement();
        } else {
            lexer.NextToken();
        }
    }
    return tokens;
}

constexpr int kEol = 0;
constexpr int kNum = 3;
constexpr int kStr = 4;
constexpr int kId = 163;

int N(Token token) { return TokenNumber(token); }

struct LexCase {
    const char* source;
    std::vector<Lexed> expected;
};

void RunCases(const std::vector<LexCase>& cases)
{
    for (const LexCase& row : cases)
        EXPECT_EQ(LexAll(row.source), row.expected) << "source: " << row.source;
}

TEST(LexerTest, NumbersAndHex)
{
    RunCases({
        {".5", {{kNum, "0.5", 1, 0}, {kEol, "", 1, 2}}},
        {"x=.25e3", {{kId, "x", 1, 0}, {N(Token::Equal), "=", 1, 1}, {kNum, "0.25e3", 1, 2}, {kEol, "", 1, 7}}},
        {"1.5D-3 2E+10 7e", {{kNum, "1.5D-3", 1, 0}, {kNum, "2E+10", 1, 7}, {kNum, "7e", 1, 13}, {kEol, "", 1, 15}}},
        {"&hff&", {{kNum, "&hFF", 1, 0}, {N(Token::Ampersand), "&", 1, 4}, {kEol, "", 1, 5}}},
        {"&O17 &Habc", {{kNum, "&O17", 1, 0}, {kNum, "&HABC", 1, 5}, {kEol, "", 1, 10}}},
        {"a & b", {{kId, "a", 1, 0}, {N(Token::Ampersand), "&", 1, 2}, {kId, "b", 1, 4}, {kEol, "", 1, 5}}},
        {"12%", {{kNum, "12", 1, 0}, {N(Token::Other), "%", 1, 2}, {kEol, "", 1, 3}}},
    });
}

// The table names its token kinds with words ("operator", "other", "literal-string"); such words in
// source are names like any other.
TEST(LexerTest, NamesOfTokenKindsAreIdentifiers)
{
    RunCases({
        {"operator = other", {{kId, "operator", 1, 0}, {N(Token::Equal), "=", 1, 9}, {kId, "other", 1, 11},
                              {kEol, "", 1, 16}}},
        {"[reserved]", {{kId, "reserved", 1, 0}, {kEol, "", 1, 10}}},
    });
}

TEST(LexerTest, Strings)
{
    RunCases({
        {"\"a\"\"b\"", {{kStr, "a\"b", 1, 0}, {kEol, "", 1, 6}}},
        {"\"\"", {{kStr, "", 1, 0}, {kEol, "", 1, 2}}},
        {"\"open\r\nx", {{kStr, "open", 1, 0}, {kEol, "", 1, 5}, {kId, "x", 2, 0}, {kEol, "", 2, 1}}},
        {"\"a\"\"\"", {{kStr, "a\"", 1, 0}, {kEol, "", 1, 5}}},
    });
}

TEST(LexerTest, BracketedNames)
{
    RunCases({
        {"[two words]", {{kId, "two words", 1, 0}, {kEol, "", 1, 11}}},
        {"[a]]b]", {{kId, "a]b", 1, 0}, {kEol, "", 1, 6}}},
        {"[a[[b]", {{kId, "a[b", 1, 0}, {kEol, "", 1, 6}}},
        {"[]", {{kId, "[]", 1, 0}, {kEol, "", 1, 2}}},
        {"[If]", {{N(Token::If), "If", 1, 0}, {kEol, "", 1, 4}}},
        {"[opened", {{kId, "opened", 1, 0}, {kEol, "", 1, 7}}},
    });
}

TEST(LexerTest, Operators)
{
    RunCases({
        {"=<", {{N(Token::Equal), "=", 1, 0}, {N(Token::Less), "<", 1, 1}, {kEol, "", 1, 2}}},
        {"<>", {{N(Token::NotEqual), "<>", 1, 0}, {kEol, "", 1, 2}}},
        {"<=>=:=:", {{N(Token::LessEqual), "<=", 1, 0}, {N(Token::GreaterEqual), ">=", 1, 2},
                     {N(Token::ColonEqual), ":=", 1, 4}, {N(Token::Colon), ":", 1, 6}, {kEol, "", 1, 7}}},
        {"a.b!c", {{kId, "a", 1, 0}, {N(Token::Dot), ".", 1, 1}, {kId, "b", 1, 2}, {N(Token::Bang), "!", 1, 3},
                   {kId, "c", 1, 4}, {kEol, "", 1, 5}}},
        {"x\\2^3", {{kId, "x", 1, 0}, {N(Token::Backslash), "\\", 1, 1}, {kNum, "2", 1, 2},
                    {N(Token::Caret), "^", 1, 3}, {kNum, "3", 1, 4}, {kEol, "", 1, 5}}},
        {"' note", {{N(Token::Apostrophe), "'", 1, 0}, {kId, "note", 1, 2}, {kEol, "", 1, 6}}},
    });
}

TEST(LexerTest, LineContinuationCarriesTheNextLineNumber)
{
    RunCases({
        {"a _\r\n  b\r\nc",
         {{kId, "a", 1, 0}, {kId, "b", 2, 2}, {kEol, "", 2, 3}, {kId, "c", 3, 0}, {kEol, "", 3, 1}}},
        {"a _\r\n _\r\nb", {{kId, "a", 1, 0}, {kId, "b", 3, 0}, {kEol, "", 3, 1}}},
        // Underscore written directly after a name is part of the name.
        {"a_\r\nb", {{kId, "a_", 1, 0}, {kEol, "", 1, 2}, {kId, "b", 2, 0}, {kEol, "", 2, 1}}},
        // An underscore followed by anything but the line end is an ordinary character.
        {"a _ b", {{kId, "a", 1, 0}, {N(Token::Other), "_", 1, 2}, {kId, "b", 1, 4}, {kEol, "", 1, 5}}},
        {"a _\rb", {{kId, "a", 1, 0}, {kId, "b", 2, 0}, {kEol, "", 2, 1}}},
    });
}

TEST(LexerTest, KeywordsKeepTheirWrittenCase)
{
    RunCases({
        {"dim TEXT as string",
         {{N(Token::Dim), "dim", 1, 0}, {N(Token::Text), "TEXT", 1, 4}, {N(Token::As), "as", 1, 9},
          {N(Token::String), "string", 1, 12}, {kEol, "", 1, 18}}},
    });
}

TEST(LexerTest, DateLiteralsAreReadOnRequest)
{
    Lexer lexer;
    lexer.SetText("#1/2/2003# + # 5#");
    ASSERT_EQ(lexer.Kind(), Token::Hash);
    ASSERT_TRUE(lexer.ScanDateLiteral());
    EXPECT_EQ(lexer.Kind(), Token::LiteralDate);
    EXPECT_EQ(lexer.Text(), "1/2/2003");
    lexer.NextToken();
    EXPECT_EQ(lexer.Kind(), Token::Plus);
    lexer.NextToken();
    EXPECT_EQ(lexer.Kind(), Token::Hash);
    EXPECT_FALSE(lexer.ScanDateLiteral());
    EXPECT_EQ(lexer.Kind(), Token::Hash);
    lexer.SetText("#12");
    EXPECT_FALSE(lexer.ScanDateLiteral());
}

TEST(LexerTest, LongTokensAreCutAt1023Characters)
{
    std::string text(1500, 'a');
    Lexer lexer;
    lexer.SetText(text.c_str());
    EXPECT_EQ(lexer.Text().size(), 1023u);
    std::string number(1023, '1');
    number += "9";
    lexer.SetText(number.c_str());
    EXPECT_EQ(lexer.Text().size(), 1023u);
    lexer.NextToken();
    EXPECT_EQ(lexer.Text(), "9");
}

TEST(LexerTest, FollowingCharacters)
{
    Lexer lexer;
    lexer.SetText("a$ b");
    EXPECT_EQ(lexer.FollowingChar(), '$');
    lexer.NextToken();
    EXPECT_EQ(lexer.PreviousFollowingChar(), '$');
    EXPECT_EQ(lexer.Text(), "$");
}

TEST(LexerTest, SeekLineAndRestOfLine)
{
    Lexer lexer;
    lexer.SetText("one\r\ntwo three ' c\r\n\r\nfour");
    lexer.SeekLine(2);
    EXPECT_EQ(lexer.Text(), "two");
    EXPECT_EQ(lexer.Line(), 2);
    lexer.NextToken();
    EXPECT_EQ(lexer.RestOfLine(), "three ' c");
    EXPECT_EQ(lexer.LineText(), "two three ' c");
    EXPECT_TRUE(lexer.SkipStatement());
    EXPECT_EQ(lexer.Kind(), Token::EndOfLine);
    EXPECT_EQ(lexer.Line(), 3);
    EXPECT_TRUE(lexer.SkipStatement());
    EXPECT_EQ(lexer.Text(), "four");
    EXPECT_EQ(lexer.Line(), 4);
    EXPECT_FALSE(lexer.SkipStatement());
    EXPECT_TRUE(lexer.AtEnd());
}

TEST(LexerTest, BlockedKeywordLists)
{
    Lexer lexer;
    const std::string all = lexer.Keywords();
    EXPECT_EQ(all.substr(0, 18), "Abs AddressOf And ");
    EXPECT_NE(all.find(" Declare "), std::string::npos);
    lexer.SetBlockedKeywords("declare  Shell nonsense");
    EXPECT_TRUE(lexer.IsBlocked(Token::Declare));
    EXPECT_TRUE(lexer.IsBlocked(Token::Shell));
    EXPECT_FALSE(lexer.IsBlocked(Token::Dim));
    EXPECT_EQ(lexer.BlockedKeywords(), "Declare Shell ");
    EXPECT_EQ(lexer.Keywords().find("Declare"), std::string::npos);
    EXPECT_EQ(lexer.Keywords().size(), all.size() - 8);
    EXPECT_EQ(lexer.RecognisedNames().find("Shell"), std::string::npos);
    EXPECT_EQ(lexer.RecognisedNames().substr(0, 17), "Access Alias All ");
    lexer.SetBlockedKeywords("");
    EXPECT_EQ(lexer.BlockedKeywords(), "");
}

class RecordingSink final : public CompileErrorSink {
public:
    void Report(const CompileError& error) override { errors.push_back(error); }
    std::vector<CompileError> errors;
};

TEST(LexerTest, ExpectTokenReportsOncePerStatement)
{
    RecordingSink sink;
    Lexer lexer;
    lexer.SetErrorSink(&sink);
    lexer.SetErrorLimit(5);
    lexer.SetText("a b\r\n  c", "Mod1");
    lexer.NextToken();
    EXPECT_FALSE(lexer.ExpectToken(Token::Comma));
    EXPECT_FALSE(lexer.ExpectToken(Token::Comma));
    lexer.SkipStatement();
    EXPECT_FALSE(lexer.ExpectToken(Token::RightParen));
    ASSERT_EQ(sink.errors.size(), 2u);
    EXPECT_EQ(sink.errors[0].number, 10586u);
    EXPECT_EQ(sink.errors[0].message, L"Expecting ','");
    EXPECT_EQ(sink.errors[0].module, "Mod1");
    EXPECT_EQ(sink.errors[0].lineText, "a b");
    EXPECT_EQ(sink.errors[0].line, 1);
    EXPECT_EQ(sink.errors[0].offset, 2);
    EXPECT_EQ(sink.errors[1].message, L"Expecting ')'");
    EXPECT_EQ(sink.errors[1].lineText, "  c");
    EXPECT_EQ(sink.errors[1].line, 2);
    EXPECT_EQ(sink.errors[1].offset, 2);
    EXPECT_EQ(lexer.ErrorCount(), 2);
}

TEST(LexerTest, ErrorLimitBelowOneIsOne)
{
    Lexer lexer;
    lexer.SetErrorLimit(0);
    EXPECT_EQ(lexer.ErrorLimit(), 1);
    lexer.SetErrorLimit(-4);
    EXPECT_EQ(lexer.ErrorLimit(), 1);
}

} // namespace
} // namespace brannoc
