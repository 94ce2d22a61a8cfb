// MacroKeywords: the names a loaded macro defines, for the editor's keyword colouring, and the same
// names inside Keywords when trace byte B asks for them; CU_MacroKeywords hands them over as ANSI.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include "support/MessageBoxCapture.h"

#include <gtest/gtest.h>

#include <string>

using namespace brannoc;

namespace {

class MacroKeywordsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        unit->SetCallBack(&callBack);
        callBack.macros[L"ledger"] =
            L"'#Uses \"helpers\"\r\n"
            L"Option Explicit\r\n"
            L"Const TaxRate = 0.2\r\n"
            L"Dim totalAmount As Double\r\n"
            L"Type LedgerRow\r\n    amount As Double\r\nEnd Type\r\n"
            L"Enum RowKind\r\n    kindDebit\r\n    kindCredit\r\nEnd Enum\r\n"
            L"Sub Main\r\n    Dim localOnly As Integer\r\n    AddRow 1\r\nEnd Sub\r\n"
            L"Private Function addRow(ByVal x As Double) As Double\r\n    addRow = x\r\nEnd Function\r\n"
            L"Property Get Total() As Double\r\n    Total = totalAmount\r\nEnd Property\r\n"
            L"Property Let Total(ByVal v As Double)\r\n    totalAmount = v\r\nEnd Property\r\n";
        callBack.macros[L"helpers"] =
            L"Attribute VB_Name = \"Helpers\"\r\n"
            L"Public SharedCount As Long\r\n"
            L"Private hiddenCount As Long\r\n"
            L"Public Sub Announce()\r\nEnd Sub\r\n"
            L"Private Sub Secret()\r\nEnd Sub\r\n";
    }
    void TearDown() override
    {
        if (!unit)
            return;
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    bool Load(const wchar_t* name)
    {
        BSTR text = SysAllocString(name);
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Load(text, &loaded));
        SysFreeString(text);
        return loaded == VARIANT_TRUE;
    }
    std::wstring MacroKeywords(const wchar_t* name)
    {
        BSTR macro = SysAllocString(name);
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_MacroKeywords(macro, &text));
        SysFreeString(macro);
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : L"<null>";
        SysFreeString(text);
        return result;
    }
    std::wstring Keywords()
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_Keywords(&text));
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : L"<null>";
        SysFreeString(text);
        return result;
    }
    void SetTraceByteB(short value)
    {
        VARIANT_BOOL answer = VARIANT_TRUE;
        EXPECT_EQ(S_OK, unit->Run(static_cast<short>(0x8100 | value), &answer));
        EXPECT_EQ(VARIANT_FALSE, answer);
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    brannoc::testing::FakeCallBack callBack;
};

const wchar_t kLedgerWords[] = L"Main addRow Total totalAmount TaxRate LedgerRow RowKind kindDebit kindCredit "
                               L"Announce SharedCount ";

} // namespace

TEST_F(MacroKeywordsTest, ALoadedMacroListsItsOwnNamesAndThePublicNamesOfTheModulesItUses)
{
    ASSERT_TRUE(Load(L"ledger"));
    std::wstring words = MacroKeywords(L"ledger");
    // Each name once, as declared, followed by a blank; locals, parameters, record elements and the
    // used module's private names are not the macro's keywords.
    for (const wchar_t* name : {L"Main ", L"addRow ", L"Total ", L"totalAmount ", L"TaxRate ", L"LedgerRow ",
                                L"RowKind ", L"kindDebit ", L"kindCredit ", L"Announce ", L"SharedCount "})
        EXPECT_NE(std::wstring::npos, words.find(name)) << name;
    for (const wchar_t* name : {L"localOnly", L"hiddenCount", L"Secret", L"amount ", L"AddRow ", L" x "})
        EXPECT_EQ(std::wstring::npos, words.find(name)) << name;
    EXPECT_EQ(std::wstring::npos, words.find(L"Total Total")) << "Property Get and Let give one name";
    EXPECT_EQ(kLedgerWords, words) << "procedures, variables, constants, types, enumerations, then the used module";
    EXPECT_EQ(words, MacroKeywords(L"LEDGER")) << "the macro name is compared without regard to case";
}

TEST_F(MacroKeywordsTest, AnEmptyOrUnknownOrUnloadedNameGivesEmptyText)
{
    EXPECT_EQ(L"", MacroKeywords(L""));
    EXPECT_EQ(L"", MacroKeywords(L"ledger")) << "not loaded yet";
    ASSERT_TRUE(Load(L"ledger"));
    EXPECT_EQ(L"", MacroKeywords(L"nothing-such"));
    EXPECT_EQ(L"", MacroKeywords(nullptr));
}

TEST_F(MacroKeywordsTest, TraceByteBBitOnePutsTheLoadedMacrosNamesIntoKeywords)
{
    ASSERT_TRUE(Load(L"ledger"));
    std::wstring plain = Keywords();
    size_t secondLine = plain.find(L"\r\n") + 2;
    EXPECT_EQ(0u, plain.compare(secondLine, 9, L".Print \r\n"));
    SetTraceByteB(0x01);
    std::wstring withMacro = Keywords();
    EXPECT_EQ(plain.substr(0, secondLine) + MacroKeywords(L"ledger") + plain.substr(secondLine), withMacro);
    SetTraceByteB(0x00);
    EXPECT_EQ(plain, Keywords());
}

TEST_F(MacroKeywordsTest, TheExportedFunctionAnswersAnsiTextAndReportsANullHandle)
{
    ASSERT_TRUE(Load(L"ledger"));
    BSTR words = CU_MacroKeywords(static_cast<_CodeUnit*>(unit), "ledger");
    ASSERT_NE(nullptr, words);
    std::string ansi(reinterpret_cast<const char*>(words), OA_SysStringLenA(words));
    OA_SysFreeStringA(words);
    EXPECT_EQ(std::string(std::begin(kLedgerWords), std::end(kLedgerWords) - 1), ansi);

    brannoc::test::MessageBoxCapture capture;
    EXPECT_EQ(nullptr, CU_MacroKeywords(nullptr, "ledger"));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"get_MacroKeywords Error", capture.Boxes()[0].caption);
    EXPECT_EQ(L"CodeUnit object is 'Nothing'.", capture.Boxes()[0].text);
}
