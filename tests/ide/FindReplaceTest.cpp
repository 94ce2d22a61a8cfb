// Find and replace: Ctrl+F opens Find with the word at the caret, a match is selected, no match shows
// "Search string not found." without wrapping, Replace All, and F3 repeating the last search or Replace.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/FindReplace.h"
#include "support/DialogRobot.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;

namespace {

constexpr int kFindField = 0x480;    // edt1
constexpr int kReplaceField = 0x481; // edt2
constexpr int kReplaceButton = 0x400;
constexpr int kReplaceAllButton = 0x401;

TEST(FindInText, SearchesDownOrUpWithOrWithoutCase)
{
    const std::string text = "Dim a\r\nA = a + 1\r\n";
    EXPECT_EQ(4u, FindInText(text, "a", 0, true, true));
    EXPECT_EQ(7u, FindInText(text, "a", 5, true, false)) << "case-insensitive finds A";
    EXPECT_EQ(11u, FindInText(text, "a", 5, true, true));
    EXPECT_EQ(7u, FindInText(text, "a", 11, false, false)) << "upwards from the selection's start";
    EXPECT_EQ(std::string::npos, FindInText(text, "a", 12, true, true)) << "no wrapping";
    EXPECT_EQ(std::string::npos, FindInText(text, "", 0, true, true));
    std::string three = "x a a a";
    EXPECT_EQ(3, ReplaceAllInText(three, "a", "bb", 1, true));
    EXPECT_EQ("x bb bb bb", three) << "three characters longer";
    std::string before = "a a";
    EXPECT_EQ(1, ReplaceAllInText(before, "a", "b", 1, true));
    EXPECT_EQ("a b", before) << "only from the given start";
}

class FindReplace : public EditorFrameFixture {
protected:
    std::pair<DWORD, DWORD> Selection() const
    {
        DWORD start = 0, end = 0;
        SendMessageA(Editor(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
        return {start, end};
    }
    void Caret(int offset) const { SendMessageA(Editor(), EM_SETSEL, static_cast<WPARAM>(offset), offset); }
};

TEST_F(FindReplace, CtrlFOpensFindWithTheWordAtTheCaretAndSelectsTheNextMatch)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tTotal = 1\r\n\tTotal = Total + 2\r\nEnd Sub\r\n");
    Caret(12); // inside the first "Total"
    std::string offered;
    DialogRobot robot([&](HWND dialog) {
        offered = DialogRobot::Text(dialog, kFindField);
        EXPECT_TRUE(IsWindowVisible(dialog));
        SetForegroundWindow(dialog);
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Sleep(100);
        brannoc::test::WindowImage::Capture(dialog, true).WriteScreenshot(L"find_dialog");
        DialogRobot::Press(dialog, IDOK); // Find Next
    });
    PressKey('F', {VK_CONTROL});
    for (int wait = 0; wait < 50 && robot.Dialogs().empty(); ++wait)
        Pump(100);
    Pump(200);
    ASSERT_EQ(1u, robot.Dialogs().size());
    EXPECT_EQ("Total", offered);
    EXPECT_EQ((std::pair<DWORD, DWORD>{23, 28}), Selection()) << "the next Total after the caret's word";
    EXPECT_FALSE(IsWindow(robot.Dialogs()[0])) << "a match found from Find closes the dialog";

    // F3 repeats the search; at the end it reports and does not wrap.
    PressKey(VK_F3);
    EXPECT_EQ((std::pair<DWORD, DWORD>{31, 36}), Selection());
    MessageBoxCapture capture(IDOK);
    PressKey(VK_F3);
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Search string not found.", capture.Boxes()[0].text);
    EXPECT_EQ((std::pair<DWORD, DWORD>{31, 36}), Selection()) << "no wrap to the top";
}

TEST_F(FindReplace, NoMatchReportsAndReopensTheDialog)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    Caret(0);
    MessageBoxCapture capture(IDOK);
    DialogRobot robot([&](HWND dialog) {
        if (DialogRobot::Text(dialog, kFindField) == "Sub") {
            DialogRobot::SetText(dialog, kFindField, "Nothing");
            DialogRobot::Press(dialog, IDOK);
        } else {
            EXPECT_EQ("Nothing", DialogRobot::Text(dialog, kFindField)) << "the dialog keeps the text";
            DialogRobot::Press(dialog, IDCANCEL);
        }
    });
    Command(CMD_FIND);
    for (int wait = 0; wait < 50 && robot.Dialogs().size() < 2; ++wait)
        Pump(100);
    Pump(100);
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Search string not found.", capture.Boxes()[0].text);
    EXPECT_EQ(L"Brannoc Basic", capture.Boxes()[0].caption);
    EXPECT_EQ(2u, robot.Dialogs().size()) << "the same dialog opened again";
}

TEST_F(FindReplace, ReplaceAndReplaceAll)
{
    Create();
    SendText(FM_SETTEXT, "a\r\na a a\r\n");
    Caret(1);
    int step = 0;
    DialogRobot robot([&](HWND dialog) {
        DialogRobot::SetText(dialog, kFindField, "a");
        DialogRobot::SetText(dialog, kReplaceField, "bb");
        DialogRobot::Press(dialog, kReplaceAllButton);
        ++step;
    });
    Command(CMD_REPLACE);
    for (int wait = 0; wait < 50 && step == 0; ++wait)
        Pump(100);
    Pump(200);
    ASSERT_EQ(1, step);
    EXPECT_EQ("a\r\nbb bb bb\r\n", Get(FM_GETTEXT)) << "three a after the caret, three characters longer";
    HWND dialog = robot.Dialogs()[0];
    EXPECT_TRUE(IsWindow(dialog)) << "the Replace dialog stays open";
    // Replace: the selection is the find text, so it is replaced and the next match selected.
    SendMessageA(Editor(), EM_SETSEL, 3, 5);
    SetDlgItemTextA(dialog, kFindField, "bb");
    SetDlgItemTextA(dialog, kReplaceField, "c");
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(kReplaceButton, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, kReplaceButton)));
    Pump(100);
    EXPECT_EQ("a\r\nc bb bb\r\n", Get(FM_GETTEXT));
    EXPECT_EQ((std::pair<DWORD, DWORD>{5, 7}), Selection());
    SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    Pump(100);

    // F3 repeats the Replace without the dialog: the selected match is replaced, the next one selected.
    PressKey(VK_F3);
    EXPECT_EQ("a\r\nc c bb\r\n", Get(FM_GETTEXT));
    EXPECT_EQ((std::pair<DWORD, DWORD>{7, 9}), Selection());
    // In read-only code Again only searches: the selected match stays and, with none after it, the
    // search reports.
    Send(FM_SETREADONLY, 0, 1);
    MessageBoxCapture capture(IDOK);
    PressKey(VK_F3);
    EXPECT_EQ("a\r\nc c bb\r\n", Get(FM_GETTEXT));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Search string not found.", capture.Boxes()[0].text);
}

} // namespace
