// BlockedKeywords: a host closes language features; each blocked word is then a compile error.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include <gtest/gtest.h>
#include <string>

using namespace brannoc;

namespace {

class BlockedKeywordsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        unit->SetCallBack(&callBack);
    }
    void TearDown() override
    {
        if (!unit)
            return;
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    void Block(const wchar_t* words)
    {
        BSTR text = SysAllocString(words);
        EXPECT_EQ(S_OK, unit->put_BlockedKeywords(text));
        SysFreeString(text);
    }
    std::wstring Blocked()
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_BlockedKeywords(&text));
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
        SysFreeString(text);
        return result;
    }
    std::wstring Keywords()
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_Keywords(&text));
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
        SysFreeString(text);
        return result;
    }
    // Loads the macro; the first error it reported (the compile error, before the load's own 10012),
    // or 0 when it compiled.
    long Load(const wchar_t* name)
    {
        callBack.errorNumbers.clear();
        BSTR text = SysAllocString(name);
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Load(text, &loaded));
        SysFreeString(text);
        EXPECT_EQ(loaded == VARIANT_TRUE, callBack.errorNumbers.empty());
        return callBack.errorNumbers.empty() ? 0 : callBack.errorNumbers.front();
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    brannoc::testing::FakeCallBack callBack;
};

} // namespace

TEST_F(BlockedKeywordsTest, TheListIsKeptInKeywordOrderAndUnknownWordsAreIgnored)
{
    EXPECT_EQ(L"", Blocked());
    Block(L"GetObject  nonsense CreateObject Declare");
    EXPECT_EQ(L"Declare CreateObject GetObject ", Blocked());
    Block(L"");
    EXPECT_EQ(L"", Blocked());
}

TEST_F(BlockedKeywordsTest, EachBlockedWordIsACompileErrorAndUnblockingOpensItAgain)
{
    callBack.macros[L"create"] = L"Sub Main\r\n    Dim o As Object\r\n    Set o = CreateObject(\"X.Y\")\r\nEnd Sub\r\n";
    callBack.macros[L"find"] = L"Sub Main\r\n    Dim o As Object\r\n    Set o = GetObject(, \"X.Y\")\r\nEnd Sub\r\n";
    callBack.macros[L"declare"] = L"Declare Function GetTickCount Lib \"kernel32\" () As Long\r\nSub Main\r\nEnd Sub\r\n";
    Block(L"CreateObject GetObject Declare");
    EXPECT_EQ(10540, Load(L"create"));
    EXPECT_EQ(10540, Load(L"find"));
    EXPECT_EQ(10540, Load(L"declare"));
    Block(L"");
    EXPECT_EQ(0, Load(L"create"));
    EXPECT_EQ(0, Load(L"find"));
    EXPECT_EQ(0, Load(L"declare"));
}

TEST_F(BlockedKeywordsTest, BlockedRecognisedNamesCloseTheirStatementsButStillNameVariables)
{
    callBack.macros[L"rename"] = L"Sub Main\r\n    Name \"a.txt\" As \"b.txt\"\r\nEnd Sub\r\n";
    callBack.macros[L"lineinput"] = L"Sub Main\r\n    Dim s\r\n    Line Input #1, s\r\nEnd Sub\r\n";
    callBack.macros[L"dialog"] = L"Sub Main\r\n    Begin Dialog UserDialog 100,50\r\n        OKButton 10,10,40,14\r\n"
                                 L"    End Dialog\r\n    Dim d As UserDialog\r\n    Dialog d\r\nEnd Sub\r\n";
    callBack.macros[L"names"] =
        L"Sub Main\r\n    Dim Name, Line\r\n    Name = 1\r\n    Line = Name + 1\r\nEnd Sub\r\n";
    Block(L"Name Line Dialog");
    EXPECT_EQ(10540, Load(L"rename"));
    EXPECT_EQ(10540, Load(L"lineinput"));
    EXPECT_EQ(10540, Load(L"dialog"));
    EXPECT_EQ(0, Load(L"names"));
    Block(L"");
    EXPECT_EQ(0, Load(L"rename"));
    EXPECT_EQ(0, Load(L"lineinput"));
    EXPECT_EQ(0, Load(L"dialog"));
}

TEST_F(BlockedKeywordsTest, KeywordsListsThreeLinesWithoutTheBlockedWords)
{
    const std::wstring all = Keywords();
    const std::size_t first = all.find(L"\r\n");
    ASSERT_NE(std::wstring::npos, first);
    const std::size_t second = all.find(L"\r\n", first + 2);
    ASSERT_NE(std::wstring::npos, second);
    const std::wstring reserved = all.substr(0, first);
    EXPECT_EQ(0u, reserved.find(L"Abs AddressOf And "));
    EXPECT_EQ(L' ', reserved.back()) << "each word is followed by one blank";
    EXPECT_EQ(L".Print ", all.substr(first + 2, second - first - 2));
    const std::wstring names = all.substr(second + 2);
    ASSERT_GE(names.size(), 2u);
    EXPECT_EQ(L"\r\n", names.substr(names.size() - 2));
    EXPECT_NE(std::wstring::npos, names.find(L" CreateObject "));
    EXPECT_NE(std::wstring::npos, reserved.find(L" Declare "));

    Block(L"CreateObject Declare");
    const std::wstring blocked = Keywords();
    EXPECT_EQ(std::wstring::npos, blocked.find(L" CreateObject "));
    EXPECT_EQ(std::wstring::npos, blocked.find(L" Declare "));
    EXPECT_EQ(all.size() - std::wstring(L"CreateObject Declare ").size(), blocked.size());
}
