// The Font, Open Uses, help, About and project-view commands of the frame.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/FrameHelp.h"
#include "ide/FrameOpenUses.h"
#include "support/DialogRobot.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;

namespace {

std::vector<int> g_notifications;
std::vector<std::string> g_helpWords;

void CALLBACK RecordNotification(HWND, int code)
{
    g_notifications.push_back(code);
}

BOOL CALLBACK TakeHelpWord(HWND, const char* word)
{
    g_helpWords.push_back(word);
    return TRUE;
}

class FrameFontUsesHelp : public EditorFrameFixture {
protected:
    void SetUp() override
    {
        g_notifications.clear();
        g_helpWords.clear();
    }
    HFONT EditorFont() const { return reinterpret_cast<HFONT>(SendMessageA(Editor(), WM_GETFONT, 0, 0)); }
};

TEST_F(FrameFontUsesHelp, FontDialogChangesTheDisplayFontAndTellsTheHost)
{
    Create();
    Send(FM_SETNOTIFYCALLBACK, 0, reinterpret_cast<LPARAM>(&RecordNotification));
    HFONT before = EditorFont();
    LOGFONTA original{};
    GetObjectA(before, sizeof(original), &original);

    DialogRobot cancel([](HWND dialog) { DialogRobot::Press(dialog, IDCANCEL); });
    EXPECT_EQ(1, Command(CMD_FONT));
    EXPECT_EQ(1u, cancel.Dialogs().size());
    EXPECT_EQ(before, EditorFont()) << "cancelled: the font stays";
    EXPECT_EQ(std::vector<int>{}, g_notifications);
}

TEST_F(FrameFontUsesHelp, ChosenFontBecomesTheDisplayFont)
{
    Create();
    Send(FM_SETNOTIFYCALLBACK, 0, reinterpret_cast<LPARAM>(&RecordNotification));
    HFONT before = EditorFont();
    LOGFONTA original{};
    GetObjectA(before, sizeof(original), &original);
    std::string faceShown;
    DialogRobot choose([&](HWND dialog) {
        faceShown = DialogRobot::Text(dialog, 0x470); // the face name box
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(1, Command(CMD_FONT));
    ASSERT_EQ(1u, choose.Dialogs().size());
    EXPECT_EQ(original.lfFaceName, faceShown) << "the dialog starts from the display font";
    HFONT after = EditorFont();
    EXPECT_NE(before, after) << "a new font was made for the text area";
    LOGFONTA chosen{};
    GetObjectA(after, sizeof(chosen), &chosen);
    EXPECT_STREQ(original.lfFaceName, chosen.lfFaceName);
    EXPECT_EQ(std::vector<int>{16}, g_notifications) << "the host is told with 16";
}

TEST_F(FrameFontUsesHelp, HostsDisplayFontIsUsedAndStaysTheHosts)
{
    HFONT hostFont = CreateFontA(-20, 0, 0, 0, FW_NORMAL, 0, 0, 0, ANSI_CHARSET, 0, 0, 0, FIXED_PITCH, "Courier New");
    Create();
    Send(FM_SETDISPLAYFONT, reinterpret_cast<WPARAM>(hostFont));
    EXPECT_EQ(hostFont, EditorFont());
    DialogRobot choose([](HWND dialog) { DialogRobot::Press(dialog, IDOK); });
    EXPECT_EQ(1, Command(CMD_FONT));
    EXPECT_NE(hostFont, EditorFont()) << "a chosen font replaces it";
    Destroy();
    LOGFONTA font{};
    EXPECT_NE(0, GetObjectA(hostFont, sizeof(font), &font)) << "the frame did not delete the host's font";
    DeleteObject(hostFont);
}

TEST_F(FrameFontUsesHelp, OpenUsesOpensEveryNamedModuleBesideTheSheet)
{
    EXPECT_EQ((std::vector<std::string>{"a.bas", "b b.bas", "c.cls"}),
              UsesFileNames("'#Uses \"a.bas\", \" b b.bas \"\r\nSub Main\r\n'#uses \"c.cls\"\r\n' \"not.bas\"\r\n"));

    Create();
    std::string folder = TempPath("");
    WriteFileBytes(folder + "brannoc-uses-a.bas", "Attribute VB_Name = \"UsesA\"\r\nSub A\r\nEnd Sub\r\n");
    WriteFileBytes(folder + "brannoc-uses-b.cls",
                   "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_Name = \"UsesB\"\r\n");
    WriteFileBytes(folder + "brannoc-uses-main.bas",
                   "'#Uses \"brannoc-uses-a.bas\"\r\n'#Uses \" brannoc-uses-b.cls \"\r\nSub Main\r\nEnd Sub\r\n");
    ASSERT_EQ(0, SendText(FM_FILE, folder + "brannoc-uses-main.bas", 1));
    int before = static_cast<int>(Send(FM_SHEETCOUNT));
    MessageBoxCapture capture(IDOK);
    EXPECT_EQ(1, Command(CMD_OPEN_USES));
    EXPECT_EQ(0u, capture.Count());
    EXPECT_EQ(before + 2, Send(FM_SHEETCOUNT));
    EXPECT_GT(SendText(FM_FINDSHEET, folder + "brannoc-uses-a.bas"), 0);
    EXPECT_GT(SendText(FM_FINDSHEET, folder + "brannoc-uses-b.cls"), 0);
    EXPECT_EQ(3, Send(FM_SHEETKIND)) << "the last one opened is shown: the class module";

    Command(CMD_NEW);
    EXPECT_EQ(1, Command(CMD_OPEN_USES));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"No '#Uses statements found.", capture.Boxes()[0].text);
    for (const char* name : {"brannoc-uses-a.bas", "brannoc-uses-b.cls", "brannoc-uses-main.bas"})
        DeleteFileA((folder + name).c_str());
}

TEST_F(FrameFontUsesHelp, TopicSearchOffersTheWordAtTheCaretToTheHost)
{
    EXPECT_EQ("C:\\apps\\ledger.HLP", EditorHelpFileOf("C:\\apps\\ledger.exe"));
    EXPECT_EQ("C:\\a.b\\host.HLP", EditorHelpFileOf("C:\\a.b\\host"));

    Create();
    Send(FM_SETHELPCALLBACK, 0, reinterpret_cast<LPARAM>(&TakeHelpWord));
    SendText(FM_SETTEXT, "Dim Total_1 As Long\r\n\r\n");
    SendMessageA(Editor(), EM_SETSEL, 6, 6);
    EXPECT_EQ(1, Command(CMD_TOPIC_SEARCH));
    SendMessageA(Editor(), EM_SETSEL, 21, 21);
    EXPECT_EQ(1, Command(CMD_TOPIC_SEARCH));
    EXPECT_EQ((std::vector<std::string>{"Total_1", " "}), g_helpWords) << "a single blank when there is no word";

    // F1 while the frame is active asks for Topic Search; with Ctrl it is left alone.
    g_helpWords.clear();
    SendMessageA(Editor(), EM_SETSEL, 13, 13);
    PressKey(VK_F1);
    PumpUntil([] { return !g_helpWords.empty(); });
    EXPECT_EQ(std::vector<std::string>{"As"}, g_helpWords);
    PressKey(VK_F1, {VK_CONTROL});
    EXPECT_EQ(1u, g_helpWords.size());
}

TEST_F(FrameFontUsesHelp, AboutShowsTheBuiltInBoxWithoutAHostCallback)
{
    Create();
    MessageBoxCapture capture(IDOK);
    DialogRobot robot([](HWND dialog) { DialogRobot::Press(dialog, IDOK); });
    EXPECT_EQ(1, Command(CMD_ABOUT));
    EXPECT_EQ(1u, capture.Count() + robot.Dialogs().size()) << "the about box was shown and closed";
}

TEST_F(FrameFontUsesHelp, ProjectViewsAreNotImplemented)
{
    Create(kDefaultOptions | FO_PROJECT);
    MessageBoxCapture capture(IDOK);
    for (int command : {CMD_PROJECT, CMD_PROJECT_PROPERTIES, CMD_MORE})
        EXPECT_EQ(1, Command(command));
    ASSERT_EQ(3u, capture.Count());
    for (const auto& box : capture.Boxes())
        EXPECT_EQ(L"Not implemented.", box.text);
}

} // namespace
