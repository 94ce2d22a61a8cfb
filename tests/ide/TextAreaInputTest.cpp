// Caret and selection keys (through SendInput, with real Shift and Ctrl state), the mouse and the
// wheel.
#include "ide/TextAreaFixture.h"

namespace brannoc::test {
namespace {

class InputTest : public TextAreaFixture {
protected:
    ide::TextPosition Caret() const { return Document().Caret(); }
    ide::TextPosition Anchor() const { return Document().Anchor(); }
    int LineHeight() const
    {
        RECT caret{};
        Send(ide::TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&caret));
        return caret.bottom - caret.top;
    }
    int TextLeft() const
    {
        ide::TextPosition caret = Caret();
        GoTo(Document().FirstVisibleLine(), 0);
        RECT rect{};
        Send(ide::TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&rect));
        POINT origin{0, 0};
        ClientToScreen(m_textArea, &origin);
        GoTo(caret.line, caret.column);
        return rect.left - origin.x;
    }
};

std::string NumberedLines(int count)
{
    std::string text;
    for (int line = 0; line < count; ++line)
        text += (line ? "\r\n" : "") + std::string("line ") + std::to_string(line);
    return text;
}

TEST_F(InputTest, SmartHomeWordMovesAndShiftSelection)
{
    SetText("    Dim name_1 As Long\r\nx");
    GoTo(0, 10);
    PressKey(VK_HOME);
    EXPECT_EQ(Caret().column, 4) << "first non-blank";
    PressKey(VK_HOME);
    EXPECT_EQ(Caret().column, 0) << "column 0 when already there";
    PressKey(VK_HOME);
    EXPECT_EQ(Caret().column, 4);
    PressKey(VK_RIGHT, {VK_CONTROL});
    EXPECT_EQ(Caret().column, 8) << "to the next word";
    PressKey(VK_RIGHT, {VK_CONTROL});
    EXPECT_EQ(Caret().column, 15) << "name_1 is one word";
    PressKey(VK_LEFT, {VK_CONTROL});
    EXPECT_EQ(Caret().column, 8);
    PressKey(VK_RIGHT, {VK_SHIFT, VK_CONTROL});
    EXPECT_EQ(Send(ide::TAM_HASSELECTION), 1);
    char selected[32] = {};
    Send(ide::TAM_GETSELTEXT, sizeof selected, reinterpret_cast<LPARAM>(selected));
    EXPECT_STREQ(selected, "name_1 ");
    PressKey(VK_END, {VK_SHIFT, VK_CONTROL});
    EXPECT_EQ(Anchor().column, 8);
    EXPECT_EQ(Caret().line, 1);
    EXPECT_EQ(Caret().column, 1);
    PressKey(VK_HOME, {VK_CONTROL});
    EXPECT_EQ(Caret(), (ide::TextPosition{0, 0}));
    EXPECT_EQ(Send(ide::TAM_HASSELECTION), 0);
}

TEST_F(InputTest, PagesAndScrollingWithoutMovingTheCaret)
{
    SetText(NumberedLines(200));
    int visible = kHeight / LineHeight();
    int page = std::max(1, (kHeight - GetSystemMetrics(SM_CYHSCROLL)) / LineHeight() - 1);
    PressKey(VK_NEXT);
    EXPECT_EQ(Caret().line, page);
    EXPECT_GT(Document().FirstVisibleLine(), 0);
    PressKey(VK_PRIOR);
    EXPECT_EQ(Caret().line, 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 0);
    PressKey(VK_DOWN, {VK_CONTROL});
    PressKey(VK_DOWN, {VK_CONTROL});
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 2);
    EXPECT_EQ(Caret().line, 0) << "Ctrl+Down scrolls without moving the caret";
    PressKey(VK_UP, {VK_CONTROL});
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 1);
    Send(EM_LINESCROLL, 3, 10);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 11);
    EXPECT_EQ(Document().FirstVisibleColumn(), 3);
    Send(EM_SCROLLCARET);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 0);
    (void)visible;
}

TEST_F(InputTest, OverwriteModeReplacesTheCharacterUnderTheCaret)
{
    SetText("abcd");
    GoTo(0, 1);
    PressKey(VK_INSERT);
    TypeText("XY");
    EXPECT_EQ(Text(), "aXYd");
    TypeText("\t");
    EXPECT_EQ(Text(), "aXY\td") << "a tab never overwrites";
    TypeText("12");
    EXPECT_EQ(Text(), "aXY\t12") << "past the end it appends";
    PressKey(VK_INSERT);
    GoTo(0, 0);
    TypeText("i");
    EXPECT_EQ(Text(), "iaXY\t12");
    // Control characters and DEL are ignored.
    Send(WM_CHAR, 1, 1);
    Send(WM_CHAR, 127, 1);
    EXPECT_EQ(Text(), "iaXY\t12");
}

TEST_F(InputTest, DeleteKeysAndWordDelete)
{
    SetText("Dim value As Long");
    GoTo(0, 10);
    PressKey(VK_BACK, {VK_CONTROL});
    EXPECT_EQ(Text(), "Dim As Long") << "the word before the caret with the blanks after it";
    PressKey(VK_DELETE);
    EXPECT_EQ(Text(), "Dim s Long");
}

TEST_F(InputTest, MouseMarginStripDoubleClickAndDrag)
{
    SetText(NumberedLines(100));
    int height = LineHeight();
    int textLeft = TextLeft();
    // A click in the margin moves the caret and posts Toggle Break to the parent.
    Click(2, 3 * height + 2);
    EXPECT_EQ(Caret().line, 3);
    Pump(50);
    ASSERT_EQ(PostedCommands().size(), 1u);
    EXPECT_EQ(PostedCommands()[0], 360u);
    // The strip between margin and text selects whole lines.
    Click(textLeft - 3, 5 * height + 2);
    int last = -1;
    EXPECT_EQ(Send(ide::TAM_SELECTEDLINES, 0, reinterpret_cast<LPARAM>(&last)), 5);
    EXPECT_EQ(last, 5);
    char selected[32] = {};
    Send(ide::TAM_GETSELTEXT, sizeof selected, reinterpret_cast<LPARAM>(selected));
    EXPECT_STREQ(selected, "line 5\r\n");
    // A double click selects the word under the mouse.
    Click(textLeft + 1, 7 * height + 2, true);
    Send(ide::TAM_GETSELTEXT, sizeof selected, reinterpret_cast<LPARAM>(selected));
    EXPECT_STREQ(selected, "line");
    // Dragging below the window scrolls (the 50 ms timer) and extends the selection.
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(textLeft + 1, 2 * height + 2));
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(textLeft + 1, kHeight + 40));
    Pump(400);
    Send(WM_LBUTTONUP, 0, MAKELPARAM(textLeft + 1, kHeight + 40));
    EXPECT_GT(Send(EM_GETFIRSTVISIBLELINE), 0) << "auto-scroll while dragging";
    EXPECT_EQ(Anchor(), (ide::TextPosition{2, 0}));
    EXPECT_GT(Caret().line, kHeight / height - 2);
    int before = Send(EM_GETFIRSTVISIBLELINE);
    Pump(200);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), before) << "scrolling stops with the button";
}

TEST_F(InputTest, WheelScrollsByTheSystemsLinesPerNotch)
{
    SetText(NumberedLines(100));
    UINT lines = 3;
    SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    ASSERT_EQ(lines, 3u) << "the default setting of the test prefix";
    Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-120)), 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 3);
    Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-240)), 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 9);
    Send(WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 6);
    EXPECT_EQ(Caret().line, 0) << "the wheel does not move the caret";
    Send(WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 99);
    Send(WM_HSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(Document().FirstVisibleColumn(), 1024);
    Send(WM_HSCROLL, SB_TOP, 0);
    EXPECT_EQ(Document().FirstVisibleColumn(), 0);
}

} // namespace
} // namespace brannoc::test
