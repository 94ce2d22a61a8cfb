// Class descriptions: the member records a text gives (names, ids, slots, kinds, types) and the first
// error of a text, shown in the "Method Definition Error" box with "<here>" at its position.
#include "automation/ClassDescription.h"
#include "support/MessageBoxCapture.h"

#include "brannoc.h"

#include <gtest/gtest.h>

using namespace brannoc::automation;
using brannoc::test::MessageBoxCapture;

namespace {

const wchar_t kCallBack[] = L"=CallBack\nDebugPrint CodeUnit*,Text$\nDoEvents CodeUnit*\nNotify CodeUnit*,Type%\n"
                            L"ReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n";

ClassDescription Parse(const wchar_t* text, bool ansi = false)
{
    ClassDescription description;
    DescriptionError error;
    EXPECT_TRUE(ParseClassDescription(text, ansi, description, error)) << error.Text();
    return description;
}

std::wstring ErrorText(const wchar_t* text, bool ansi = false)
{
    ClassDescription description;
    DescriptionError error;
    if (ParseClassDescription(text, ansi, description, error))
        return L"(no error)";
    return error.Text();
}

} // namespace

TEST(ClassDescription, CallBackDescriptionGivesFiveMembersAtSlotsZeroToFour)
{
    ClassDescription description = Parse(kCallBack, true);
    EXPECT_EQ(L"CallBack", description.interfaceName);
    ASSERT_EQ(5u, description.members.size());
    struct Row {
        const wchar_t* name;
        WORD kind;
        VARTYPE result;
        std::vector<VARTYPE> parameters;
    } rows[] = {
        {L"DebugPrint", DISPATCH_METHOD, VT_EMPTY, {VT_DISPATCH, VT_BSTR}},
        {L"DoEvents", DISPATCH_METHOD, VT_EMPTY, {VT_DISPATCH}},
        {L"Notify", DISPATCH_METHOD, VT_EMPTY, {VT_DISPATCH, VT_I2}},
        {L"ReadMacro", DISPATCH_METHOD, VT_BSTR, {VT_DISPATCH, VT_BSTR}},
        {L"Window", DISPATCH_PROPERTYGET, VT_I4, {}},
    };
    for (UINT i = 0; i < 5; ++i) {
        const MemberRecord& member = description.members[i];
        SCOPED_TRACE(member.name);
        EXPECT_EQ(rows[i].name, member.name);
        EXPECT_EQ(i, member.methodIndex);
        EXPECT_EQ(rows[i].kind, member.kind);
        EXPECT_EQ(rows[i].result, member.resultType);
        ASSERT_EQ(rows[i].parameters.size(), member.parameters.size());
        for (size_t p = 0; p < member.parameters.size(); ++p)
            EXPECT_EQ(rows[i].parameters[p], member.parameters[p].type);
        EXPECT_EQ(DispatchIdFromName(member.name), member.id);
    }
    EXPECT_EQ(L"MacroName", description.members[3].parameters[1].name);
}

TEST(ClassDescription, DispatchIdsFromNumbersNamesAndReservedNames)
{
    ClassDescription description = Parse(L"12:Twelve|0x7FFFFFFF:Big|_NewEnum As Unknown|evaluate$(X$)|Item?(I%)|Plain");
    ASSERT_EQ(6u, description.members.size());
    EXPECT_EQ(12, description.members[0].id);
    EXPECT_EQ(0x7FFFFFFF, description.members[1].id);
    EXPECT_EQ(DISPID_NEWENUM, description.members[2].id);
    EXPECT_EQ(VT_UNKNOWN, description.members[2].resultType);
    EXPECT_EQ(DISPID_EVALUATE, description.members[3].id);
    EXPECT_EQ(DISPID_VALUE, description.members[4].id);
    EXPECT_EQ(DispatchIdFromName(L"PLAIN"), description.members[5].id);
}

TEST(ClassDescription, NameHashFollowsTheRotateAndXorRule)
{
    // "AB": h = 'A' = 65, then ((65 << 5) | 0) ^ 66 = 2080 ^ 66 = 2146.
    EXPECT_EQ(2146, DispatchIdFromName(L"ab"));
    EXPECT_EQ(2146, DispatchIdFromName(L"AB"));
    EXPECT_EQ(0x40000000, DispatchIdFromName(L""));
    // Seven characters push bits past 31: the top bits come round to the bottom.
    std::uint32_t h = 0;
    for (char c : std::string("ABCDEFG"))
        h = (((h & 0x3FFFFFFu) << 5) | (h >> 26)) ^ static_cast<std::uint32_t>(c);
    EXPECT_EQ(static_cast<DISPID>(h), DispatchIdFromName(L"abcdefg"));
}

TEST(ClassDescription, PropertiesGiveGetAndPutAtConsecutiveSlots)
{
    ClassDescription description = Parse(L"First|Value$=NewValue$|Target*=Other*|Any?(I%)=V?|ReadOnly&=");
    ASSERT_EQ(8u, description.members.size());
    const MemberRecord& get = description.members[1];
    const MemberRecord& put = description.members[2];
    EXPECT_EQ(DISPATCH_PROPERTYGET, get.kind);
    EXPECT_EQ(DISPATCH_PROPERTYPUT, put.kind);
    EXPECT_EQ(DISPID_VALUE, get.id);
    EXPECT_EQ(DISPID_VALUE, put.id);
    EXPECT_EQ(1u, get.methodIndex);
    EXPECT_EQ(2u, put.methodIndex);
    ASSERT_EQ(1u, put.parameters.size());
    EXPECT_EQ(VT_BSTR, put.parameters[0].type);
    EXPECT_EQ(VT_EMPTY, put.resultType);
    EXPECT_EQ(DISPATCH_PROPERTYPUTREF, description.members[4].kind);
    const MemberRecord& variantPut = description.members[6];
    EXPECT_EQ(DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF, variantPut.kind);
    ASSERT_EQ(2u, variantPut.parameters.size());
    EXPECT_EQ(VT_I2, variantPut.parameters[0].type);
    EXPECT_EQ(VT_VARIANT, variantPut.parameters[1].type);
    EXPECT_EQ(6u, variantPut.methodIndex);
    EXPECT_EQ(7u, description.members[7].methodIndex);
}

TEST(ClassDescription, TypesByCharacterAndByNameAndByRef)
{
    ClassDescription description =
        Parse(L"M a~, b/, c%, d&, e!, f#, g^, h@, i$, j*, k+, l?\n"
              L"N(a As boolean, b As BYTE, ByRef c As Integer, byref d&) As Date ; a comment\r\n"
              L"  \t\r\n; only a comment\n"
              L"O As Currency");
    ASSERT_EQ(3u, description.members.size());
    const VARTYPE expected[] = {VT_BOOL, VT_UI1, VT_I2, VT_I4, VT_R4, VT_R8, VT_DATE, VT_CY, VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_VARIANT};
    ASSERT_EQ(12u, description.members[0].parameters.size());
    for (size_t i = 0; i < 12; ++i)
        EXPECT_EQ(expected[i], description.members[0].parameters[i].type) << i;
    const MemberRecord& n = description.members[1];
    EXPECT_EQ(VT_DATE, n.resultType);
    ASSERT_EQ(4u, n.parameters.size());
    EXPECT_EQ(VT_BOOL, n.parameters[0].type);
    EXPECT_EQ(VT_UI1, n.parameters[1].type);
    EXPECT_EQ(VT_I2 | VT_BYREF, n.parameters[2].type);
    EXPECT_EQ(VT_I4 | VT_BYREF, n.parameters[3].type);
    EXPECT_EQ(VT_CY, description.members[2].resultType);
    // ByRef String is fine in a wide class.
    EXPECT_EQ(VT_BSTR | VT_BYREF, Parse(L"P ByRef s$").members[0].parameters[0].type);
}

TEST(ClassDescription, EachErrorWithItsPosition)
{
    struct Row {
        const wchar_t* text;
        bool ansi;
        const wchar_t* shown;
    } rows[] = {
        {L"Foo a%, b", false,
         L"Foo a%, b<here>\n\nExpecting '~', '%', '&', '!', '#', '^', '@', '$', '*', '+', '?' or As type"},
        {L"Foo(a As Long, b As Text)", false,
         L"Foo(a As Long, b As <here>Text)\n\nExpecting 'Boolean', 'Byte', 'Integer', 'Long', 'Single', 'Double', "
         L"'Date', 'Currency', 'String', 'Object', 'Unknown' or 'Variant'"},
        {L"Foo a% b%", false, L"Foo a% <here>b%\n\nExpecting ','"},
        {L"Foo(a% b%)", false, L"Foo(a% <here>b%)\n\nExpecting ')'"},
        {L"Foo(a%", false, L"Foo(a%<here>\n\nExpecting ')'"},
        {L"12 Foo", false, L"12 <here>Foo\n\nExpecting ':'"},
        {L"4294967296:Foo", false, L"<here>4294967296:Foo\n\nNumber is too big"},
        {L"0x123456789:Foo", false, L"<here>0x123456789:Foo\n\nNumber is too big"},
        {L"(a%)", false, L"<here>(a%)\n\nExpecting an identifier"},
        {L"Foo$ extra", false, L"Foo$ <here>extra\n\nUnexpected text"},
        {L"Foo$() As Long", false, L"Foo$() <here>As Long\n\nUnexpected text"},
        {L"Foo ByRef s$", true, L"Foo ByRef <here>s$\n\nAscii interface can't handle ByRef String param."},
        {L"Value$=NewValue%", false, L"Value$=<here>NewValue%\n\nProperty put and get types must be the same."},
        {L"12:A|0xC:B", false, L"0xC:<here>B\n\nSame dispatch id used twice. B"},
        {L"Value|Item", false, L"<here>Item\n\nSame dispatch id used twice. Item"},
        {L"=Name\n=Again", false, L"<here>=Again\n\nExpecting an identifier"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.shown, ErrorText(row.text, row.ansi));
    }
}

TEST(ClassDescription, LongLinesAreShownUpToTwoHundredCharacters)
{
    std::wstring line = L"Foo ";
    for (int i = 0; i < 60; ++i)
        line += L"a%, ";
    line += L"b";
    // The error is at the end, past the 200 characters shown: "<here>" is appended.
    std::wstring text = ErrorText(line.c_str());
    EXPECT_EQ(line.substr(0, 200) + L"<here>\n\nExpecting '~', '%', '&', '!', '#', '^', '@', '$', '*', '+', '?' or As type",
              text);
    std::wstring tooLong = L"Foo " + std::wstring(64, L'a') + L"%";
    EXPECT_EQ(L"Foo <here>" + tooLong.substr(4) + L"\n\nExpecting an identifier", ErrorText(tooLong.c_str()));
}

TEST(ClassDescription, CreateTypeShowsTheErrorBoxOnceAndAnswersNull)
{
    MessageBoxCapture capture;
    EXPECT_EQ(nullptr, OA_CreateTypeA("Good|Foo a\nBar b"));
    ASSERT_EQ(1u, capture.Count());
    auto box = capture.Boxes()[0];
    EXPECT_EQ(L"Method Definition Error", box.caption);
    EXPECT_EQ(L"Foo a<here>\n\nExpecting '~', '%', '&', '!', '#', '^', '@', '$', '*', '+', '?' or As type", box.text);
    capture.Clear();
    ITypeInfo* type = OA_CreateTypeW(kCallBack);
    ASSERT_NE(nullptr, type);
    EXPECT_EQ(0u, capture.Count());
    type->Release();
}
