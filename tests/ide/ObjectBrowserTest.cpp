// The object browser: member description lines taken apart, the argument templates Paste writes, and
// the dialog browsing an extension object and a referenced library, plus the nothing-to-browse message.
#include "EditorFrameFixture.h"

#include "ide/BrowsePath.h"
#include "ide/CommandTable.h"
#include "ide/EngineLink.h"
#include "ide/MemberLine.h"
#include "ide/MemberTemplate.h"
#include "ide/ReferenceList.h"
#include "support/DialogRobot.h"
#include "support/WindowImage.h"

#include "brannoc.h"

#include <algorithm>

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::CapturedMessageBox;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;
using brannoc::test::WindowImage;

namespace {

MemberLine Member(MemberKind kind, std::vector<std::string> parameters, std::string type = {})
{
    MemberLine member;
    member.kind = kind;
    member.name = "Member";
    member.parameters = std::move(parameters);
    member.type = std::move(type);
    return member;
}

TEST(MemberLine, FunctionsSubsAndPropertiesAreTakenApart)
{
    auto function = ParseMemberLine("0x60020001:MsgBox(Prompt As String, Optional Buttons As Variant : 0) As Long");
    ASSERT_TRUE(function.has_value());
    EXPECT_EQ(0x60020001, function->id);
    EXPECT_EQ(MemberKind::Function, function->kind);
    EXPECT_EQ("MsgBox", function->name);
    EXPECT_EQ((std::vector<std::string>{"Prompt As String", "Optional Buttons As Variant : 0"}), function->parameters);
    EXPECT_EQ("Long", function->type);
    EXPECT_EQ("Variant", ParameterType(function->parameters[1]));

    auto sub = ParseMemberLine("0x00000007:Show Text As String, Times As Integer");
    ASSERT_TRUE(sub.has_value());
    EXPECT_EQ(MemberKind::Sub, sub->kind);
    EXPECT_EQ((std::vector<std::string>{"Text As String", "Times As Integer"}), sub->parameters);
    EXPECT_TRUE(sub->type.empty());

    auto get = ParseMemberLine("0x00000000:Item(Index As Long) As Variant=>");
    ASSERT_TRUE(get.has_value());
    EXPECT_EQ(MemberKind::PropertyGet, get->kind);
    EXPECT_EQ("Variant", get->type);

    auto put = ParseMemberLine("0x00000003:Title Value As String=<");
    ASSERT_TRUE(put.has_value());
    EXPECT_EQ(MemberKind::PropertyLet, put->kind);
    EXPECT_TRUE(put->parameters.empty()) << "the value is not an argument";
    EXPECT_EQ("String", put->type);

    auto variable = ParseMemberLine("0x00000004:Size As Currency");
    ASSERT_TRUE(variable.has_value());
    EXPECT_EQ(MemberKind::Property, variable->kind);
    EXPECT_EQ("Currency", variable->type);

    auto constant = ParseMemberLine("0x00000005:vbOK As Long", true);
    ASSERT_TRUE(constant.has_value());
    EXPECT_EQ(MemberKind::Const, constant->kind);

    auto arrays = ParseMemberLine("0x00000006:Join(Items As Variant(), Separator As String) As String");
    ASSERT_TRUE(arrays.has_value());
    EXPECT_EQ((std::vector<std::string>{"Items As Variant()", "Separator As String"}), arrays->parameters);

    EXPECT_FALSE(ParseMemberLine("Missing id").has_value());
    EXPECT_FALSE(ParseMemberLine("0x123:Short").has_value());
}

TEST(MemberLine, KindsAreLabelledAndHiddenNamesLeftOut)
{
    EXPECT_STREQ("Const:", MemberKindLabel(MemberKind::Const));
    EXPECT_STREQ("Sub:", MemberKindLabel(MemberKind::Sub));
    EXPECT_STREQ("Function:", MemberKindLabel(MemberKind::Function));
    EXPECT_STREQ("Property Get:", MemberKindLabel(MemberKind::PropertyGet));
    EXPECT_STREQ("Property Let:", MemberKindLabel(MemberKind::PropertyLet));
    EXPECT_STREQ("Property:", MemberKindLabel(MemberKind::Property));
    EXPECT_TRUE(IsHiddenMember(*ParseMemberLine("0x60000000:_QueryInterface riid As _PTR, ppvObj As _PTR")));
    EXPECT_FALSE(IsHiddenMember(*ParseMemberLine("0x60000000:Visible As Boolean")));
}

TEST(MemberLine, AGetAndPutPairBecomesOneProperty)
{
    std::vector<MemberLine> members = {*ParseMemberLine("0x00000003:Title() As String=>"),
                                       *ParseMemberLine("0x00000004:Run"),
                                       *ParseMemberLine("0x00000003:Title Value As String=<")};
    std::vector<MemberLine> joined = JoinPropertyPairs(members);
    ASSERT_EQ(2u, joined.size());
    EXPECT_EQ(MemberKind::Property, joined[0].kind);
    EXPECT_EQ("Title", joined[0].name);
    EXPECT_EQ("String", joined[0].type);
    EXPECT_EQ(MemberKind::Sub, joined[1].kind);
}

TEST(MemberTemplate, ParametersAreReducedToTheirNames)
{
    EXPECT_EQ("_Prompt", ParameterTemplate("Prompt As String"));
    EXPECT_EQ("Buttons:=_", ParameterTemplate("Optional Buttons As Variant : 0"));
    EXPECT_EQ("_Target", ParameterTemplate("ByVal Target As Object"));
    EXPECT_EQ("Count:=_", ParameterTemplate("Optional ByRef Count As Long"));
    EXPECT_EQ("...", ParameterTemplate("ParamArray Optional Args As Variant()"));
}

TEST(MemberTemplate, ASubTakesItsArgumentsAfterABlank)
{
    const MemberLine sub = Member(MemberKind::Sub, {"Prompt As String", "Optional Buttons As Variant"});
    EXPECT_EQ(" _Prompt, Buttons:=_", ArgumentTemplate(sub, TemplateForm::Statement));
    EXPECT_EQ(" _Prompt, Buttons:=_", ArgumentTemplate(sub, TemplateForm::Expression));
    EXPECT_EQ("", ArgumentTemplate(Member(MemberKind::Sub, {}), TemplateForm::Statement));
}

TEST(MemberTemplate, APropertyLetAssignsItsValueType)
{
    EXPECT_EQ(" = _String", ArgumentTemplate(Member(MemberKind::PropertyLet, {}, "String"), TemplateForm::Expression));
    EXPECT_EQ("(_Index) = _Variant",
              ArgumentTemplate(Member(MemberKind::PropertyLet, {"Index As Long"}, "Variant"), TemplateForm::Statement));
}

TEST(MemberTemplate, AFunctionInAnExpressionGetsParentheses)
{
    const MemberLine function = Member(MemberKind::Function, {"Prompt As String", "Optional Buttons As Variant"}, "Long");
    EXPECT_EQ("(_Prompt, Buttons:=_)", ArgumentTemplate(function, TemplateForm::Expression));
    EXPECT_EQ("", ArgumentTemplate(Member(MemberKind::Function, {}, "Long"), TemplateForm::Expression));
    // Written like a Sub only when it has no result type to pass on.
    EXPECT_EQ(" _Prompt", ArgumentTemplate(Member(MemberKind::Function, {"Prompt As String"}), TemplateForm::Statement));
    EXPECT_EQ("(_Prompt)", ArgumentTemplate(Member(MemberKind::Function, {"Prompt As String"}), TemplateForm::Expression));
}

TEST(MemberTemplate, APropertyIsAssignedInTheStatementFormOnly)
{
    const MemberLine property = Member(MemberKind::Property, {}, "Currency");
    EXPECT_EQ(" = _Currency", ArgumentTemplate(property, TemplateForm::Statement));
    EXPECT_EQ("", ArgumentTemplate(property, TemplateForm::Expression));
    EXPECT_EQ("(_Index)", ArgumentTemplate(Member(MemberKind::PropertyGet, {"Index As Long"}, "Variant"),
                                           TemplateForm::Statement));
}

TEST(MemberTemplate, ParamArrayAndConstants)
{
    EXPECT_EQ("(_Text, ...)", ArgumentTemplate(Member(MemberKind::Function, {"Text As String", "ParamArray Args As Variant()"},
                                                      "String"),
                                               TemplateForm::Expression));
    EXPECT_EQ("", ArgumentTemplate(Member(MemberKind::Const, {}, "Long"), TemplateForm::Statement));
}

// An extension object made from a class description over a plain object (never called here).
const char kGreeter[] = "=Greeter\nShow Prompt$, Buttons?\nHello$(Name$)\nTitle$=Value$\nCount&=\n";

struct PlainGreeter {
    virtual void __stdcall Show(BSTR, VARIANT) {}
    virtual BSTR __stdcall Hello(BSTR) { return nullptr; }
    virtual BSTR __stdcall Title() { return nullptr; }
    virtual void __stdcall SetTitle(BSTR) {}
    virtual long __stdcall Count() { return 0; }
};

void __stdcall NoDestroy(void*, void*) {}

std::vector<std::string> ListTexts(HWND list, UINT countMessage, UINT textMessage)
{
    std::vector<std::string> texts;
    const LRESULT count = SendMessageA(list, countMessage, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        char text[256] = {};
        SendMessageA(list, textMessage, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        texts.push_back(text);
    }
    return texts;
}

std::string SelectedComboText(HWND dialog, int id)
{
    HWND combo = GetDlgItem(dialog, id);
    const LRESULT index = SendMessageA(combo, CB_GETCURSEL, 0, 0);
    char text[256] = {};
    if (index >= 0)
        SendMessageA(combo, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
    return text;
}

// Selects the member list's entry with that text and tells the dialog; false when there is none.
bool SelectMember(HWND dialog, const std::string& entry)
{
    HWND list = GetDlgItem(dialog, 111);
    const LRESULT index = SendMessageA(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(entry.c_str()));
    if (index < 0)
        return false;
    SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(111, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    return true;
}

bool Contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// Writes a small type library "Shop": the dispatch interface Application whose property Document gives
// the dispatch interface Document (with a String property Title). False when the platform refuses.
bool WriteShopLibrary(const std::wstring& path)
{
    ICreateTypeLib2* library = nullptr;
    if (FAILED(CreateTypeLib2(SYS_WIN32, path.c_str(), &library)))
        return false;
    const GUID libraryId = {0x6b1f0a10, 0x2c3d, 0x4e5f, {0x80, 0x91, 0xa2, 0xb3, 0xc4, 0xd5, 0xe6, 0xf7}};
    const GUID documentId = {0x6b1f0a11, 0x2c3d, 0x4e5f, {0x80, 0x91, 0xa2, 0xb3, 0xc4, 0xd5, 0xe6, 0xf7}};
    const GUID applicationId = {0x6b1f0a12, 0x2c3d, 0x4e5f, {0x80, 0x91, 0xa2, 0xb3, 0xc4, 0xd5, 0xe6, 0xf7}};
    library->SetName(const_cast<LPOLESTR>(L"Shop"));
    library->SetGuid(libraryId);
    library->SetVersion(1, 0);
    library->SetLcid(0);
    ICreateTypeInfo* document = nullptr;
    ICreateTypeInfo* application = nullptr;
    bool written = SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Document"), TKIND_DISPATCH, &document)) &&
                   SUCCEEDED(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Application"), TKIND_DISPATCH, &application));
    ITypeInfo* documentType = nullptr;
    HREFTYPE documentReference = 0;
    if (written) {
        document->SetGuid(documentId);
        application->SetGuid(applicationId);
        FUNCDESC title{};
        title.memid = 1;
        title.funckind = FUNC_DISPATCH;
        title.invkind = INVOKE_PROPERTYGET;
        title.callconv = CC_STDCALL;
        title.elemdescFunc.tdesc.vt = VT_BSTR;
        LPOLESTR titleName[] = {const_cast<LPOLESTR>(L"Title")};
        written = SUCCEEDED(document->AddFuncDesc(0, &title)) && SUCCEEDED(document->SetFuncAndParamNames(0, titleName, 1)) &&
                  SUCCEEDED(document->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&documentType))) &&
                  SUCCEEDED(application->AddRefTypeInfo(documentType, &documentReference));
    }
    if (written) {
        TYPEDESC user{};
        user.vt = VT_USERDEFINED;
        user.hreftype = documentReference;
        FUNCDESC property{};
        property.memid = 2;
        property.funckind = FUNC_DISPATCH;
        property.invkind = INVOKE_PROPERTYGET;
        property.callconv = CC_STDCALL;
        property.elemdescFunc.tdesc.vt = VT_PTR;
        property.elemdescFunc.tdesc.lptdesc = &user;
        LPOLESTR propertyName[] = {const_cast<LPOLESTR>(L"Document")};
        written = SUCCEEDED(application->AddFuncDesc(0, &property)) &&
                  SUCCEEDED(application->SetFuncAndParamNames(0, propertyName, 1)) && SUCCEEDED(library->SaveAllChanges());
    }
    for (IUnknown* object : {static_cast<IUnknown*>(documentType), static_cast<IUnknown*>(document),
                             static_cast<IUnknown*>(application), static_cast<IUnknown*>(library)})
        if (object)
            object->Release();
    return written;
}

class ObjectBrowserBox : public EditorFrameFixture {
protected:
    void TearDown() override
    {
        EditorFrameFixture::TearDown();
        if (m_extension)
            m_extension->Release();
        if (m_type)
            m_type->Release();
    }

    void AddGreeter()
    {
        m_type = OA_CreateTypeA(kGreeter);
        ASSERT_NE(nullptr, m_type);
        m_extension = OA_CreateDispatch(m_type, NoDestroy, &m_greeter, nullptr);
        ASSERT_NE(nullptr, m_extension);
        SendText(ide::FM_SETAPPPREFIX, "Greeter.");
        ASSERT_EQ(0, Send(ide::FM_ADDAPPOBJECT, 0, reinterpret_cast<LPARAM>(m_extension)));
    }

    PlainGreeter m_greeter;
    ITypeInfo* m_type = nullptr;
    IDispatch* m_extension = nullptr;
};

TEST_F(ObjectBrowserBox, BrowsingAnExtensionObjectPastesAStatementTemplate)
{
    Create();
    AddGreeter();
    SendText(FM_SETTEXT, "Sub Main\r\n    Greeter\r\nEnd Sub\r\n");
    const std::string text = Get(FM_GETTEXT);
    const size_t at = text.find("Greeter");
    SendMessageA(Editor(), EM_SETSEL, at + 3, at + 3); // the caret inside the word
    SetFocus(Editor());

    std::string caption, dataType, dispatchId, result, expression;
    std::vector<std::string> libraries, members, parameters;
    DialogRobot robot([&](HWND dialog) {
        char title[128] = {};
        GetWindowTextA(dialog, title, sizeof(title));
        caption = title;
        libraries = ListTexts(GetDlgItem(dialog, 109), CB_GETCOUNT, CB_GETLBTEXT);
        dataType = SelectedComboText(dialog, 110);
        members = ListTexts(GetDlgItem(dialog, 111), LB_GETCOUNT, LB_GETTEXT);
        ASSERT_TRUE(SelectMember(dialog, "Sub: Show"));
        dispatchId = DialogRobot::Text(dialog, 113);
        result = DialogRobot::Text(dialog, 116);
        parameters = ListTexts(GetDlgItem(dialog, 125), LB_GETCOUNT, LB_GETTEXT);
        expression = DialogRobot::Text(dialog, 120);
        WindowImage::Capture(dialog, true).WriteScreenshot(L"editor_object_browser");
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(1, Command(CMD_BROWSE));
    ASSERT_EQ(1u, robot.Dialogs().size());
    EXPECT_EQ("ActiveX Automation Members", caption);
    EXPECT_TRUE(Contains(libraries, "(All Libraries)"));
    EXPECT_EQ("Greeter", dataType);
    EXPECT_EQ((std::vector<std::string>{"Sub: Show", "Function: Hello", "Property: Title", "Property Get: Count"}), members);
    EXPECT_EQ((std::vector<std::string>{"Prompt As String", "Buttons As Variant"}), parameters);
    EXPECT_EQ(10u, dispatchId.size());
    EXPECT_EQ("", result);
    EXPECT_EQ("Greeter.Show", expression);
    EXPECT_EQ("Sub Main\r\n    Greeter.Show _Prompt, _Buttons\r\nEnd Sub\r\n", Get(FM_GETTEXT));
}

TEST_F(ObjectBrowserBox, AFunctionInsideAnExpressionGetsItsArgumentsInParentheses)
{
    Create();
    AddGreeter();
    SendText(FM_SETTEXT, "Sub Main\r\n    x = Greeter\r\nEnd Sub\r\n");
    const std::string text = Get(FM_GETTEXT);
    const size_t at = text.find("Greeter");
    SendMessageA(Editor(), EM_SETSEL, at, at + 7);
    std::string value;
    DialogRobot robot([&](HWND dialog) {
        ASSERT_TRUE(SelectMember(dialog, "Function: Hello"));
        value = DialogRobot::Text(dialog, 116);
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(0, Send(FM_BROWSE));
    EXPECT_EQ("String", value);
    EXPECT_EQ("Sub Main\r\n    x = Greeter.Hello(_Name)\r\nEnd Sub\r\n", Get(FM_GETTEXT));
}

TEST_F(ObjectBrowserBox, APropertyStartingAStatementGetsItsValueTemplate)
{
    Create();
    AddGreeter();
    SendText(FM_SETTEXT, "Sub Main\r\n    Greeter\r\nEnd Sub\r\n");
    const size_t at = Get(FM_GETTEXT).find("Greeter");
    SendMessageA(Editor(), EM_SETSEL, at, at);
    DialogRobot robot([&](HWND dialog) {
        ASSERT_TRUE(SelectMember(dialog, "Property: Title"));
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(0, Send(FM_BROWSE));
    EXPECT_EQ("Sub Main\r\n    Greeter.Title = _String\r\nEnd Sub\r\n", Get(FM_GETTEXT));
}

TEST_F(ObjectBrowserBox, AReferencedLibrarysDataTypeIsFoundByItsPath)
{
    std::vector<ReferenceEntry> found = ReadRegisteredLibraries();
    // OLE Automation 2.0 (stdole2): the 1.0 library of the same key has no StdFont.
    auto stdole = std::find_if(found.begin(), found.end(), [](const ReferenceEntry& e) {
        return lstrcmpiA(e.guid.c_str(), "{00020430-0000-0000-C000-000000000046}") == 0 && e.version == "2.0";
    });
    ASSERT_NE(found.end(), stdole);
    const std::string path = TempPath("browse.bas");
    WriteFileBytes(path, ReferenceLine(*stdole) + "\r\nSub Main\r\nEnd Sub\r\n");
    Create(kDefaultOptions | FO_NO_ENGINE);
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    std::vector<std::string> libraries, members;
    std::string dataType, expression;
    DialogRobot robot([&](HWND dialog) {
        libraries = ListTexts(GetDlgItem(dialog, 109), CB_GETCOUNT, CB_GETLBTEXT);
        dataType = SelectedComboText(dialog, 110);
        members = ListTexts(GetDlgItem(dialog, 111), LB_GETCOUNT, LB_GETTEXT);
        SelectMember(dialog, "Property: Size");
        expression = DialogRobot::Text(dialog, 120);
        DialogRobot::Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(1, SendText(FM_BROWSE, "stdole.StdFont"));
    EXPECT_TRUE(Contains(libraries, "stdole")) << libraries.size();
    EXPECT_EQ("StdFont", dataType);
    EXPECT_TRUE(Contains(members, "Property: Size")) << members.size();
    EXPECT_EQ("stdole.StdFont.Size", expression);
    DeleteFileA(path.c_str());
}

TEST_F(ObjectBrowserBox, FollowWalksToAResultTypeAndBackReturns)
{
    const std::string libraryPath = TempPath("browse_shop.tlb");
    ASSERT_TRUE(WriteShopLibrary(WideText(libraryPath)));
    const std::string path = TempPath("browse_shop.bas");
    WriteFileBytes(path, "'#Reference " + libraryPath + "\r\nSub Main\r\nEnd Sub\r\n");
    Create(kDefaultOptions | FO_NO_ENGINE);
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    std::string result, followedType, followedExpression, backType;
    std::vector<std::string> members, followedMembers;
    bool followEnabled = false, backEnabled = false;
    DialogRobot robot([&](HWND dialog) {
        members = ListTexts(GetDlgItem(dialog, 111), LB_GETCOUNT, LB_GETTEXT);
        SelectMember(dialog, "Property Get: Document");
        result = DialogRobot::Text(dialog, 116);
        followEnabled = IsWindowEnabled(GetDlgItem(dialog, 114)) != FALSE;
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(114, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, 114)));
        followedType = SelectedComboText(dialog, 110);
        followedMembers = ListTexts(GetDlgItem(dialog, 111), LB_GETCOUNT, LB_GETTEXT);
        SelectMember(dialog, "Property Get: Title");
        followedExpression = DialogRobot::Text(dialog, 120);
        backEnabled = IsWindowEnabled(GetDlgItem(dialog, 119)) != FALSE;
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(119, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, 119)));
        backType = SelectedComboText(dialog, 110);
        DialogRobot::Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(1, SendText(FM_BROWSE, "Shop.Application"));
    EXPECT_EQ((std::vector<std::string>{"Property Get: Document"}), members);
    EXPECT_EQ("Document", result);
    EXPECT_TRUE(followEnabled);
    EXPECT_EQ("Document", followedType);
    EXPECT_EQ((std::vector<std::string>{"Property Get: Title"}), followedMembers);
    EXPECT_EQ("Shop.Application.Document.Title", followedExpression);
    EXPECT_TRUE(backEnabled);
    EXPECT_EQ("Application", backType);
    Destroy();
    DeleteFileA(path.c_str());
    DeleteFileA(libraryPath.c_str());
}

TEST_F(ObjectBrowserBox, NothingToBrowseShowsAMessageAndNoDialog)
{
    Create(kDefaultOptions | FO_NO_ENGINE);
    SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    SetFocus(Editor());
    MessageBoxCapture capture;
    DialogRobot robot([](HWND dialog) { DialogRobot::Press(dialog, IDCANCEL); });
    Command(CMD_BROWSE);
    EXPECT_TRUE(robot.Dialogs().empty());
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"No specialized object data types to browse.", capture.Boxes()[0].text);
}

} // namespace
