// The text area's automatic triggers: after the characters that open a completion or call context it
// posts command 326 or 327 to its parent through the toolbar message (lParam -1), so that the frame's
// filter and enable set apply; elsewhere it posts nothing.
#include "TextAreaFixture.h"

using brannoc::test::TextAreaFixture;

namespace {

class TextAreaTriggers : public TextAreaFixture {
protected:
    // Types `typed` at the end of line `line` of `text` and answers the commands posted meanwhile.
    std::vector<WPARAM> CommandsAfter(const std::string& text, int line, const std::string& typed)
    {
        SetText(text);
        GoTo(line, static_cast<int>(LineText(line).size()));
        Pump();
        const size_t before = PostedCommands().size();
        TypeText(typed);
        Pump();
        std::vector<WPARAM> commands = PostedCommands();
        return std::vector<WPARAM>(commands.begin() + static_cast<long>(before), commands.end());
    }
};

constexpr char kReportSheet[] = "Sub Report(Text As String, Optional Count As Long)\r\nEnd Sub\r\nSub Main\r\n    \r\nEnd Sub\r\n";

TEST_F(TextAreaTriggers, ABlankAfterAsAsksForTheList)
{
    EXPECT_EQ((std::vector<WPARAM>{326}), CommandsAfter(kReportSheet, 3, "Dim x As "));
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "Dim x ")) << "a blank after another word";
}

TEST_F(TextAreaTriggers, ACallAsksForTheTip)
{
    EXPECT_EQ((std::vector<WPARAM>{327}), CommandsAfter(kReportSheet, 3, "Report("));
    EXPECT_EQ((std::vector<WPARAM>{327}), CommandsAfter(kReportSheet, 3, "Report "));
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "Main(")) << "Main has no parameters";
}

TEST_F(TextAreaTriggers, ADotWithoutAKnownTypeAsksForNothing)
{
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "x."));
    EXPECT_EQ(1, Send(brannoc::ide::TAM_HASPOPUP, 0)) << "the component is there all the same";
}

TEST_F(TextAreaTriggers, TheCommandsShowTheListAndTheTip)
{
    SetText(kReportSheet);
    GoTo(3, 4);
    TypeText("Report \"a\", ");
    EXPECT_EQ(1, Send(brannoc::ide::TAM_SHOWPOPUP, 1)) << "Parameter Info";
    brannoc::ide::TextAreaPopupView shown = brannoc::ide::TextAreaPopupsShown(m_textArea);
    EXPECT_EQ("Report(Text As String, [Count As Long])", shown.prototype);
    EXPECT_EQ(1, shown.argument);
    TypeText(":");
    EXPECT_FALSE(brannoc::ide::TextAreaPopupsShown(m_textArea).tipShown) << "a \":\" ends the call";
    GoTo(3, 4);
    EXPECT_EQ(0, Send(brannoc::ide::TAM_SHOWPOPUP, 0)) << "no word before the blank: no list";
}

// The registry value of a key under HKEY_CLASSES_ROOT ("" when missing).
std::string ClassesValue(const char* key)
{
    char value[128] = {};
    LONG size = sizeof(value);
    return RegQueryValueA(HKEY_CLASSES_ROOT, key, value, &size) == ERROR_SUCCESS ? value : "";
}

TEST_F(TextAreaTriggers, WithoutTheListComponentCompletionIsAbsent)
{
    const std::string classId = ClassesValue("Brannoc.AutoFill.3\\CLSID");
    ASSERT_FALSE(classId.empty());
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyA(HKEY_CLASSES_ROOT, "Brannoc.AutoFill.3\\CLSID"));
    HWND other = CreateWindowExA(0, brannoc::ide::kTextAreaClassName, "", WS_CHILD | WS_VISIBLE, 0, 0, 300, 200, m_host,
                                 nullptr, GetModuleHandleA(nullptr), nullptr);
    RegSetValueA(HKEY_CLASSES_ROOT, "Brannoc.AutoFill.3\\CLSID", REG_SZ, classId.c_str(),
                 static_cast<DWORD>(classId.size()));
    ASSERT_NE(nullptr, other);
    EXPECT_EQ(0, SendMessageA(other, brannoc::ide::TAM_HASPOPUP, 0, 0)) << "no completion list";
    EXPECT_EQ(1, SendMessageA(other, brannoc::ide::TAM_HASPOPUP, 1, 0)) << "the parameter tip all the same";
    SendMessageA(other, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Sub Main\r\n    \r\nEnd Sub\r\n"));
    SendMessageA(other, brannoc::ide::TAM_GOTOLINE, 4, MAKELPARAM(1, 0));
    const size_t before = PostedCommands().size();
    for (char c : std::string("Dim x As "))
        SendMessageA(other, WM_CHAR, static_cast<unsigned char>(c), 1);
    Pump();
    EXPECT_EQ(before, PostedCommands().size()) << "no list is asked for";
    EXPECT_EQ(0, SendMessageA(other, brannoc::ide::TAM_SHOWPOPUP, 0, 0));
    DestroyWindow(other);
    EXPECT_EQ(classId, ClassesValue("Brannoc.AutoFill.3\\CLSID"));
}

} // namespace
