// The keyword classes taken from an engine object: blocked words leave the sets, the sheet's macro
// names form the third set (coloured and case-corrected like the second), the host's extra lists join
// sets 1 and 3, and switching a colour off empties its sets.
#include "ide/EngineKeywords.h"
#include "ide/TextAreaFixture.h"
#include "host/FakeCallBack.h"

namespace brannoc::test {
namespace {

class EngineKeywordsTest : public TextAreaFixture {
protected:
    void SetUp() override
    {
        TextAreaFixture::SetUp();
        ASSERT_NE(nullptr, engine);
        engine->SetCallBack(&callBack);
        callBack.macros[L"ledger"] = L"Dim totalAmount As Double\r\n"
                                     L"Sub Main\r\n    addRow 1\r\nEnd Sub\r\n"
                                     L"Function addRow(ByVal x As Double) As Double\r\nEnd Function\r\n";
        BSTR name = SysAllocString(L"ledger");
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine->Load(name, &loaded));
        SysFreeString(name);
        ASSERT_EQ(VARIANT_TRUE, loaded);
    }
    void TearDown() override
    {
        ide::SetTextAreaKeywords(m_textArea, nullptr);
        TextAreaFixture::TearDown();
        if (engine) {
            engine->SetCallBack(nullptr);
            engine->Release();
        }
    }
    std::string Blocked()
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, engine->get_BlockedKeywords(&text));
        std::string result;
        for (UINT i = 0; text && i < SysStringLen(text); ++i)
            result += static_cast<char>(text[i]);
        SysFreeString(text);
        return result;
    }

    _CodeUnit* engine = static_cast<_CodeUnit*>(KZ_CreateCodeUnit());
    brannoc::testing::FakeCallBack callBack;
    ide::KeywordSets sets;
};

TEST_F(EngineKeywordsTest, TheSetsComeFromTheEnginesKeywordsAndTheMacrosOwnNames)
{
    ide::EditorColours colours;
    ASSERT_TRUE(ide::BuildKeywordSetsFromEngine(sets, *engine, "ledger", "GetObject|HostWord|OtherWord", colours));
    EXPECT_EQ(Blocked(), "GetObject ") << "the blocked part went to the engine";
    EXPECT_EQ(sets.Find("SUB").set, 0);
    EXPECT_EQ(sets.Find("SUB").canonical, "Sub");
    EXPECT_EQ(sets.Find("getobject").set, -1) << "a blocked word is no keyword";
    EXPECT_EQ(sets.Find("createobject").canonical, "CreateObject");
    EXPECT_EQ(sets.Find("hostword").set, 1);
    EXPECT_EQ(sets.Find("ADDROW").set, 2);
    EXPECT_EQ(sets.Find("ADDROW").canonical, "addRow");
    EXPECT_EQ(sets.Find("totalamount").canonical, "totalAmount");
    EXPECT_EQ(ide::KeywordSets::ColourOfSet(2), ide::EditorColour::Keyword1);
    EXPECT_EQ(sets.Find("otherword").set, 3);
    EXPECT_EQ(sets.Find("localnothing").set, -1);

    // Through the control: a line left after typing takes the macro's own spelling too.
    ide::SetTextAreaKeywords(m_textArea, &sets);
    SetText("\r\n");
    TypeText("call addrow(totalamount): sub");
    Send(WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_EQ(LineText(0), "Call addRow(totalAmount): Sub");
}

TEST_F(EngineKeywordsTest, AColourSwitchedOffEmptiesItsSetsAndAnotherMacroGivesOtherNames)
{
    ide::EditorColours colours;
    colours.SetEntry(ide::EditorColour::Keyword1, ide::kColourOff);
    ASSERT_TRUE(ide::BuildKeywordSetsFromEngine(sets, *engine, "ledger", "|HostWord|OtherWord", colours));
    EXPECT_EQ(Blocked(), "");
    EXPECT_EQ(sets.Find("getobject").canonical, "GetObject") << "unblocked again";
    EXPECT_EQ(sets.Find("addrow").set, -1) << "colour 1 also governs the macro's own words";
    EXPECT_EQ(sets.Find("hostword").set, -1);
    EXPECT_EQ(sets.Find("otherword").set, 3);

    ide::EditorColours all;
    ASSERT_TRUE(ide::BuildKeywordSetsFromEngine(sets, *engine, "not-loaded", "", all));
    EXPECT_EQ(sets.Find("addrow").set, -1) << "a macro that is not loaded has no names";
    EXPECT_EQ(sets.Find("sub").set, 0);
}

} // namespace
} // namespace brannoc::test
