// Completion list and parameter tip in a real frame: characters typed into the text area bring them up
// through commands 326 and 327, Enter inserts the chosen word in place of the prefix, Esc and focus
// loss close the list, the tip follows the argument being typed and closes with its ")". The two
// components are also driven directly by dispatch number, as created by program identifier.
#include "EditorFrameFixture.h"
#include "ShopLibrary.h"

#include "ide/CommandTable.h"
#include "ide/PopupComponents.h"
#include "support/WindowImage.h"

#include "values/Variant.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;
using brannoc::test::ShopLibrary;
using brannoc::test::WindowImage;

namespace {

constexpr char kListClass[] = "__BrannocCompletionList";
constexpr char kTipClass[] = "__BrannocParameterTip";

bool PopupVisible(const char* className)
{
    HWND popup = FindWindowA(className, nullptr);
    return popup && IsWindowVisible(popup);
}

std::string PopupText(const char* className)
{
    char text[256] = {};
    GetWindowTextA(FindWindowA(className, nullptr), text, sizeof(text));
    return text;
}

class CompletionInFrame : public EditorFrameFixture {
protected:
    void TearDown() override
    {
        EditorFrameFixture::TearDown();
        if (!m_path.empty())
            DeleteFileA(m_path.c_str());
    }

    // A frame without engine showing `code`, with the Shop library referenced; the caret at a line's end.
    void OpenSheet(const std::string& code, int caretLine)
    {
        ASSERT_NE(nullptr, m_shop.Library());
        m_path = TempPath("completion_frame.bas");
        WriteFileBytes(m_path, "'#Reference " + Narrow(m_shop.Path()) + "\r\n" + code);
        Create(kDefaultOptions | FO_NO_ENGINE);
        ASSERT_EQ(0, SendText(FM_FILE, m_path, 1));
        SetForegroundWindow(m_frame);
        SetFocus(Editor());
        SendMessageA(Editor(), TAM_GOTOLINE, static_cast<WPARAM>(Document()->Buffer().LineLength(caretLine)),
                     MAKELPARAM(caretLine, 0));
        Pump();
    }

    // Characters as the message loop hands them to the text area, one at a time, with the commands the
    // text area posts carried out in between.
    void Type(const std::string& text) const
    {
        for (char c : text) {
            SendMessageA(Editor(), WM_CHAR, static_cast<unsigned char>(c), 1);
            Pump();
        }
    }

    // A key as the message loop delivers it: the key-down, then the character TranslateMessage made of it.
    void Key(WPARAM key, char character = 0) const
    {
        SendMessageA(Editor(), WM_KEYDOWN, key, 1);
        if (character)
            SendMessageA(Editor(), WM_CHAR, static_cast<unsigned char>(character), 1);
        Pump();
    }

    std::string Line(int line) const { return std::string(Document()->Line(line)); }
    TextAreaPopupView Popups() const { return TextAreaPopupsShown(Editor()); }

    ShopLibrary m_shop;
    std::string m_path;
};

constexpr char kBasketSheet[] = "Sub Main\r\n    Dim b As Basket\r\n    \r\nEnd Sub\r\n";

TEST_F(CompletionInFrame, BothComponentsAreCreatedAndOfferedInTheMenu)
{
    OpenSheet(kBasketSheet, 2);
    EXPECT_EQ(1, SendMessageA(Editor(), TAM_HASPOPUP, 0, 0));
    EXPECT_EQ(1, SendMessageA(Editor(), TAM_HASPOPUP, 1, 0));
    HMENU menu = GetMenu(m_frame);
    EXPECT_NE(-1, GetMenuState(menu, CMD_COMPLETE_WORD, MF_BYCOMMAND));
    EXPECT_NE(-1, GetMenuState(menu, CMD_PARAMETER_INFO, MF_BYCOMMAND));
}

TEST_F(CompletionInFrame, ADotShowsTheMembersAndEnterReplacesThePrefixByTheChosenWord)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.");
    EXPECT_TRUE(Popups().listShown);
    EXPECT_TRUE(PopupVisible(kListClass));
    Type("co");
    EXPECT_TRUE(Popups().listShown) << "word characters narrow the list";
    const int lines = Document()->LineCount();
    Key(VK_RETURN, '\r');
    EXPECT_EQ("    b.Count", Line(2));
    EXPECT_FALSE(Popups().listShown);
    EXPECT_FALSE(PopupVisible(kListClass));
    EXPECT_EQ(lines, Document()->LineCount()) << "Enter chose the word and made no new line";
}

TEST_F(CompletionInFrame, DownMovesTheChoiceAndTabAcceptsIt)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.");
    ASSERT_TRUE(Popups().listShown);
    Key(VK_DOWN);
    Key(VK_DOWN);
    Key(VK_TAB, '\t');
    EXPECT_EQ("    b.Item", Line(2)) << "Add, Count, Item: two rows down";
}

TEST_F(CompletionInFrame, EscAndFocusLossCloseTheListAndLeaveTheText)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.");
    ASSERT_TRUE(Popups().listShown);
    Key(VK_ESCAPE, 0x1B);
    EXPECT_FALSE(Popups().listShown);
    EXPECT_FALSE(PopupVisible(kListClass));
    EXPECT_EQ("    b.", Line(2));

    Command(CMD_COMPLETE_WORD);
    Pump();
    ASSERT_TRUE(Popups().listShown);
    SetFocus(Child(ID_FRAME_OBJECT_LIST));
    Pump();
    EXPECT_FALSE(Popups().listShown);
    EXPECT_FALSE(PopupVisible(kListClass));
}

TEST_F(CompletionInFrame, ATypedParenthesisAcceptsTheEntryAndOpensTheTip)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.Pa(");
    EXPECT_EQ("    b.Paint(", Line(2));
    TextAreaPopupView popups = Popups();
    EXPECT_TRUE(popups.tipShown);
    EXPECT_EQ("Paint(Colour As ShopColour, Glossy As Boolean) As Boolean", popups.prototype);
    EXPECT_EQ(0, popups.argument);
    EXPECT_EQ(popups.prototype, PopupText(kTipClass));
    EXPECT_TRUE(popups.listShown) << "the enumeration's values are offered for the first argument";
    Type("scG");
    Key(VK_RETURN, '\r');
    EXPECT_EQ("    b.Paint(scGreen", Line(2));
}

TEST_F(CompletionInFrame, ANonWordCharacterBeforeAnyPrefixClosesTheListWithoutChoosing)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.Paint(");
    ASSERT_TRUE(Popups().listShown);
    Type(" ");
    EXPECT_TRUE(Popups().listShown) << "a blank moves the list's start";
    Type(")");
    EXPECT_FALSE(Popups().listShown);
    EXPECT_EQ("    b.Paint( )", Line(2));
}

TEST_F(CompletionInFrame, TheTipFollowsTheArgumentAndClosesWithItsParenthesis)
{
    OpenSheet("Function Add(a As Integer, Optional b As Integer = 2) As Integer\r\nEnd Function\r\nSub Main\r\n    \r\n"
              "End Sub\r\n",
              3);
    Type("x = Add(");
    TextAreaPopupView popups = Popups();
    ASSERT_TRUE(popups.tipShown);
    EXPECT_TRUE(PopupVisible(kTipClass));
    EXPECT_EQ("Add(a As Integer, [b As Integer = 2]) As Integer", popups.prototype);
    EXPECT_EQ(0, popups.argument);
    Type("Max(1, 2)");
    EXPECT_EQ(0, Popups().argument) << "the comma inside parentheses does not count";
    Type(",");
    EXPECT_EQ(1, Popups().argument);
    Type(" 3)");
    EXPECT_FALSE(Popups().tipShown);
    EXPECT_FALSE(PopupVisible(kTipClass));
    EXPECT_EQ("    x = Add(Max(1, 2), 3)", Line(3));
}

TEST_F(CompletionInFrame, HidingForAMomentAndShowingAgain)
{
    OpenSheet(kBasketSheet, 2);
    Type("b.Paint(");
    ASSERT_TRUE(Popups().tipShown);
    ASSERT_TRUE(Popups().listShown);
    SendMessageA(Editor(), TAM_HIDEPOPUPS, 0, 0);
    EXPECT_FALSE(PopupVisible(kListClass));
    EXPECT_FALSE(PopupVisible(kTipClass));
    SendMessageA(Editor(), TAM_HIDEPOPUPS, 1, 0);
    EXPECT_TRUE(PopupVisible(kListClass));
    EXPECT_TRUE(PopupVisible(kTipClass));
    EXPECT_EQ(0, Popups().argument);
}

TEST_F(CompletionInFrame, AsOffersTheTypesAfterItsBlank)
{
    OpenSheet(kBasketSheet, 2);
    Type("Dim c As ");
    EXPECT_TRUE(Popups().listShown);
    Type("Car");
    Key(VK_RETURN, '\r');
    EXPECT_EQ("    Dim c As Cart", Line(2));
}

TEST_F(CompletionInFrame, ScreenshotsOfTheListAndTheTip)
{
    OpenSheet("Dim Basket1 As Shop.Basket\r\nSub Main\r\n    Dim ok As Boolean\r\n    \r\nEnd Sub\r\n", 3);
    Type("ok = Basket1.");
    ASSERT_TRUE(Popups().listShown);
    auto capture = [&](const wchar_t* name) {
        WindowImage image = WindowImage::Capture(m_frame, true);
        RECT frame;
        GetWindowRect(m_frame, &frame);
        for (const char* popupClass : {kTipClass, kListClass}) {
            HWND popup = FindWindowA(popupClass, nullptr);
            if (!popup || !IsWindowVisible(popup))
                continue;
            RECT place;
            GetWindowRect(popup, &place);
            image.Overlay(WindowImage::Capture(popup, true), place.left - frame.left, place.top - frame.top);
        }
        image.WriteScreenshot(name);
    };
    capture(L"editor_completion");
    Type("Paint(scRed, ");
    ASSERT_TRUE(Popups().tipShown);
    EXPECT_EQ(1, Popups().argument);
    capture(L"editor_parameter_tip");
}

// The components as any client sees them: created by program identifier, called by dispatch number.
class PopupComponentCalls : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(OleInitialize(nullptr)));
        m_classes = std::make_unique<PopupClassObjects>();
        m_host = CreateWindowExA(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 10, 10, 200, 100, nullptr, nullptr,
                                 GetModuleHandleA(nullptr), nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(m_host);
        m_classes.reset();
        OleUninitialize();
    }

    static Variant Call(IDispatch* component, DISPID id, WORD flags, std::vector<Variant> arguments = {})
    {
        std::vector<VARIANT> values;
        for (auto it = arguments.rbegin(); it != arguments.rend(); ++it)
            values.push_back(it->Raw());
        DISPID put = DISPID_PROPERTYPUT;
        DISPPARAMS parameters{values.data(), flags == DISPATCH_PROPERTYPUT ? &put : nullptr,
                              static_cast<UINT>(values.size()), flags == DISPATCH_PROPERTYPUT ? 1u : 0u};
        Variant result;
        const bool answers = flags == DISPATCH_PROPERTYGET || id == POPUP_SHOW;
        EXPECT_EQ(S_OK, component->Invoke(id, IID_NULL, 0x409, flags, &parameters, answers ? &result.Raw() : nullptr,
                                          nullptr, nullptr))
            << "member " << id;
        return result;
    }
    static Variant Number(long value)
    {
        Variant number;
        number.Raw().vt = VT_I4;
        number.Raw().lVal = value;
        return number;
    }
    static Variant Text(const wchar_t* value)
    {
        Variant text;
        text.Raw().vt = VT_BSTR;
        text.Raw().bstrVal = SysAllocString(value);
        return text;
    }
    std::vector<Variant> ShowArguments(const wchar_t* text) const
    {
        return {Number(static_cast<long>(reinterpret_cast<LONG_PTR>(m_host))),
                Number(static_cast<long>(reinterpret_cast<LONG_PTR>(GetStockObject(DEFAULT_GUI_FONT)))), Number(20),
                Number(40), Number(16), Text(text)};
    }

    std::unique_ptr<PopupClassObjects> m_classes;
    HWND m_host = nullptr;
};

TEST_F(PopupComponentCalls, TheListSelectsByPrefixAndAnswersTheChosenWord)
{
    ComRef<IDispatch> list = CreatePopupComponent(kCompletionProgId);
    ASSERT_TRUE(list);
    EXPECT_EQ(1, Call(list.Get(), POPUP_SHOW, DISPATCH_METHOD, ShowArguments(L"Add A\r\nCount B\r\nItem C\r\n")).Raw().lVal);
    EXPECT_TRUE(PopupVisible(kListClass));
    Call(list.Get(), POPUP_WORD, DISPATCH_PROPERTYPUT, {Text(L"co")});
    EXPECT_EQ(L"Count", Call(list.Get(), POPUP_WORD, DISPATCH_PROPERTYGET).StringView());
    Call(list.Get(), POPUP_WORD, DISPATCH_PROPERTYPUT, {Text(L"x")});
    EXPECT_EQ(L"", Call(list.Get(), POPUP_WORD, DISPATCH_PROPERTYGET).StringView()) << "nothing begins with x";
    Call(list.Get(), POPUP_MOVE, DISPATCH_METHOD, {Number(30), Number(50)});
    Call(list.Get(), POPUP_HIDE, DISPATCH_METHOD);
    EXPECT_FALSE(PopupVisible(kListClass));
    EXPECT_EQ(0, Call(list.Get(), POPUP_SHOW, DISPATCH_METHOD, ShowArguments(L"")).Raw().lVal) << "an empty list is not shown";
}

TEST_F(PopupComponentCalls, TheTipKeepsItsArgumentIndex)
{
    ComRef<IDispatch> tip = CreatePopupComponent(kParameterTipProgId);
    ASSERT_TRUE(tip);
    EXPECT_EQ(1, Call(tip.Get(), POPUP_SHOW, DISPATCH_METHOD, ShowArguments(L"Add(a As Integer, [b])")).Raw().lVal);
    EXPECT_EQ("Add(a As Integer, [b])", PopupText(kTipClass));
    Call(tip.Get(), POPUP_INDEX, DISPATCH_PROPERTYPUT, {Number(1)});
    EXPECT_EQ(1, Call(tip.Get(), POPUP_INDEX, DISPATCH_PROPERTYGET).Raw().lVal);
    Call(tip.Get(), POPUP_HIDE, DISPATCH_METHOD);
    EXPECT_FALSE(PopupVisible(kTipClass));
}

} // namespace
