// Editing in the control: keyword case correction when the caret leaves a line, auto-indent,
// Backspace to the previous tab stop, tabs as spaces, indent and outdent of selected lines.
#include "ide/TextAreaFixture.h"

namespace brannoc::test {
namespace {

using EditingTest = TextAreaFixture;

TEST_F(EditingTest, KeywordCaseIsCorrectedWhenTheCaretLeavesTheLine)
{
    SetText("\r\nqq zz");
    TypeText("dim s as string: s = \"if\" & [rem] ' dim");
    EXPECT_EQ(LineText(0), "dim s as string: s = \"if\" & [rem] ' dim") << "unchanged while typed on";
    Send(WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_EQ(LineText(0), "Dim s As String: s = \"if\" & [rem] ' dim");
    // Leaving by a click, and by losing the focus.
    TypeText(" rem end sub");
    Click(400, 0);
    EXPECT_EQ(LineText(1), "qq zz Rem end sub");
    GoTo(1, 0);
    TypeText("debug.print ");
    SetFocus(m_host);
    EXPECT_EQ(LineText(1), "Debug.Print qq zz Rem end sub");
    // A correction is no step of its own, and both typings on line 1 are one step: undo restores the
    // line as it was before the first.
    Send(EM_UNDO);
    EXPECT_EQ(LineText(1), "qq zz");
}

TEST_F(EditingTest, EnterIndentsLikeTheLineAbove)
{
    SetText("Sub Main\r\n\t  If x Then");
    GoTo(1, 12);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    TypeText("y = 1");
    EXPECT_EQ(Text(), "Sub Main\r\n\t  If x Then\r\n\t  y = 1");
    // The caret inside the indent takes only the blanks before it.
    GoTo(2, 1);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(Text(), "Sub Main\r\n\t  If x Then\r\n\t\r\n\ty = 1");
    // Blanks right after the caret leave the new line; the break, the indent and that removal are
    // one undo step.
    SetText("    x = 1   y");
    GoTo(0, 9);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(Text(), "    x = 1\r\n    y");
    EXPECT_EQ(Send(EM_UNDO), TRUE);
    EXPECT_EQ(Text(), "    x = 1   y");
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
}

TEST_F(EditingTest, BackspaceGoesBackToThePreviousTabStopOverBlanks)
{
    struct Row {
        const char* line;
        int column;
        int tabWidth;
        const char* after;
    };
    const Row rows[] = {
        {"      ", 6, 4, "    "},     // six blanks, width 4: back to column 4
        {"        x", 8, 4, "    x"},  // at a stop: back a whole stop
        {"  ab", 4, 4, "  a"},        // text before the caret: one character
        {"   ", 3, 2, "  "},
        {"a\r\nb", 0, 4, "ab"},       // at a line start: joins the lines
    };
    for (const Row& row : rows) {
        SetText(row.line);
        Send(ide::TAM_SETTABS, 0, row.tabWidth);
        std::string text = row.line;
        int line = text.find('\r') != std::string::npos ? 1 : 0;
        GoTo(line, row.column);
        Send(WM_KEYDOWN, VK_BACK, 0);
        EXPECT_EQ(Text(), row.after) << "\"" << row.line << "\" at " << row.column;
    }
}

TEST_F(EditingTest, TabsAsSpacesExpandWhenTheLineIsCommitted)
{
    SetText("\r\nz");
    Send(ide::TAM_SETTABS, 1, 4);
    TypeText("a\tb");
    EXPECT_EQ(LineText(0), "a\tb") << "a typed tab stays until the line is left";
    GoTo(1, 0);
    EXPECT_EQ(LineText(0), "a   b");
    // Outside that mode tabs stay.
    Send(ide::TAM_SETTABS, 0, 4);
    GoTo(0, 0);
    TypeText("\t");
    GoTo(1, 0);
    EXPECT_EQ(LineText(0), "\ta   b");
    // Width limits: 0 becomes 1, 9 becomes 8.
    Send(ide::TAM_SETTABS, 0, 0);
    EXPECT_EQ(Document().TabWidth(), 1);
    Send(ide::TAM_SETTABS, 0, 9);
    EXPECT_EQ(Document().TabWidth(), 8);
}

TEST_F(EditingTest, IndentAndOutdentSelectedLines)
{
    SetText("a\r\n  b\r\n     c\r\n \td\r\ne");
    Send(ide::TAM_SETTABS, 0, 4);
    Send(ide::TAM_SELECTLINES, 0, 3);
    ide::IndentTextArea(m_textArea, false);
    EXPECT_EQ(Text(), "\ta\r\n\t  b\r\n\t     c\r\n\t \td\r\ne");
    int last = -1;
    EXPECT_EQ(Send(ide::TAM_SELECTEDLINES, 0, reinterpret_cast<LPARAM>(&last)), 0);
    EXPECT_EQ(last, 3) << "the selection covers the same lines";
    ide::IndentTextArea(m_textArea, true);
    ide::IndentTextArea(m_textArea, true);
    EXPECT_EQ(Text(), "a\r\nb\r\n c\r\nd\r\ne") << "up to four blanks, or fewer and a tab";
    Send(EM_UNDO);
    EXPECT_EQ(Text(), "a\r\n  b\r\n     c\r\n \td\r\ne") << "each indent or outdent is one step";
}

} // namespace
} // namespace brannoc::test
