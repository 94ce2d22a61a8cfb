// The frame window: its children by option bits, the new-macro skeleton with the caret inside, the
// caption forms, and a screenshot of the whole frame.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/FrameStatusBar.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;
using brannoc::test::WindowImage;

namespace {

class EditorFrame : public EditorFrameFixture {};

TEST_F(EditorFrame, ShowsTheChildrenItsOptionsAskFor)
{
    Create(FO_TOOLBAR | FO_STATUS_BAR | FO_FILES | FO_SHEETS);
    for (int id : {ID_FRAME_TOOLBAR, ID_FRAME_STATUS_BAR, ID_FRAME_SHEET_TABS, ID_FRAME_EDITOR})
        EXPECT_TRUE(IsWindowVisible(Child(id))) << "child " << id;
    char className[64];
    GetClassNameA(Editor(), className, sizeof(className));
    EXPECT_STREQ(kTextAreaClassName, className);
    EXPECT_EQ(0, Send(FM_HASNOENGINE)) << "the frame owns an engine object";

    Create(FO_FILES);
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_TOOLBAR)));
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_STATUS_BAR)));
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_SHEET_TABS)));
    EXPECT_TRUE(IsWindowVisible(Editor()));

    Create(FO_TOOLBAR | FO_NO_ENGINE);
    EXPECT_EQ(1, Send(FM_HASNOENGINE));
}

TEST_F(EditorFrame, NewMacroShowsTheSkeletonWithTheCaretOnTheMiddleLine)
{
    Create();
    ASSERT_NE(nullptr, Document());
    EXPECT_EQ("Sub Main\r\n\t\r\nEnd Sub\r\n", Get(FM_GETTEXT));
    EXPECT_EQ(1, Document()->Caret().line);
    EXPECT_EQ(1, Document()->Caret().column) << "after the tab of the empty middle line";
    HWND status = Child(ID_FRAME_STATUS_BAR);
    EXPECT_GT(SendMessageA(status, SBM_HEIGHT, 0, 0), 6);
}

TEST_F(EditorFrame, CaptionTakesTheFormOfTheStateSheetAndKind)
{
    Create();
    EXPECT_EQ("Brannoc Basic - [design] Macro1 (macro)", Caption());
    EXPECT_EQ(Caption(), WindowText(m_frame)) << "a top-level frame shows the caption";

    // A modified sheet named "a - b.bas" of kind Macro.
    std::string path = TempPath("a - b.bas");
    WriteFileBytes(path, "Sub Main\r\nEnd Sub\r\n");
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    SendText(FM_SETTEXT, "Sub Main\r\n\tBeep\r\nEnd Sub\r\n");
    EXPECT_EQ("Brannoc Basic - [design] a -- b.bas * (macro)", Caption());

    Send(FM_SETDESIGNDISPLAY, 0, 0);
    EXPECT_EQ("Brannoc Basic - a -- b.bas * (macro)", Caption()) << "no state with the design display off";
    Send(FM_SETDESIGNDISPLAY, 0, 1);

    struct Row { int command; const char* caption; };
    const Row rows[] = {
        {CMD_NEW_CODE, "Brannoc Basic - [design] Module1 (code)"},
        {CMD_NEW_OBJECT, "Brannoc Basic - [design] Object1 (object)"},
        {CMD_NEW_CLASS, "Brannoc Basic - [design] Class1 (class)"},
        {CMD_NEW, "Brannoc Basic - [design] Macro2 (macro)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(1, Command(row.command));
        EXPECT_EQ(row.caption, Caption()) << "command " << row.command;
    }
    SendText(FM_SETTITLE, "Ledger");
    EXPECT_EQ("Ledger - [design] Macro2 (macro)", Caption());
    SendText(FM_SETMACRONOUN, "Script");
    EXPECT_EQ("Ledger - [design] Script2 (script)", Caption());
    DeleteFileA(path.c_str());
}

TEST_F(EditorFrame, ChildFrameAnswersTheTextMessagesWithTheSheetsCode)
{
    Create(FO_TOOLBAR | FO_FILES, true);
    EXPECT_EQ("Sub Main\r\n\t\r\nEnd Sub\r\n", WindowText(m_frame));
    SetWindowTextA(m_frame, "Sub Main\r\nEnd Sub\r\n");
    EXPECT_EQ("Sub Main\r\nEnd Sub\r\n", Get(FM_GETTEXT));

    Create(FO_TOOLBAR | FO_FILES | FO_CAPTION_TEXT, true);
    EXPECT_EQ("Brannoc Basic - [design] Macro1 (macro)", WindowText(m_frame));
}

TEST_F(EditorFrame, Screenshot)
{
    Create(FO_TOOLBAR | FO_STATUS_BAR | FO_FILES | FO_SHEETS);
    Command(CMD_NEW_CODE);
    Command(CMD_NEW);
    SendText(FM_SETTEXT, "Sub Main\r\n\tDebug.Print \"Hello\"\r\n\tBeep\r\nEnd Sub\r\n");
    Send(FM_SETLISTMODE, 0, 2);
    SendText(FM_STATUSHELP, "Ready", 0);
    Send(FM_UPDATE);
    Pump(200);
    WindowImage image = WindowImage::Capture(m_frame, true);
    EXPECT_FALSE(image.WriteScreenshot(L"editor_frame").empty());
    // The toolbar's Start button draws its green triangle.
    RECT run{};
    ASSERT_TRUE(SendMessageA(Child(ID_FRAME_TOOLBAR), 1036, CMD_RUN, reinterpret_cast<LPARAM>(&run)));
    RECT client = ChildRect(ID_FRAME_TOOLBAR);
    OffsetRect(&run, client.left, client.top);
    WindowImage clientImage = WindowImage::Capture(m_frame);
    EXPECT_TRUE(clientImage.Contains(run, RGB(0, 128, 0)));
}

} // namespace
