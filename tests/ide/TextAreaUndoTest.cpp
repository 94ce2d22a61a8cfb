// Undo and redo through the control's messages: typing on one line is one step, at most 20 steps are
// kept, redo applies undone steps again, a new change clears the redo list, and emptying clears both.
#include "ide/TextAreaFixture.h"

namespace brannoc::test {
namespace {

using UndoTest = TextAreaFixture;

TEST_F(UndoTest, TypingOnOneLineIsOneStep)
{
    SetText("first\r\nsecond");
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
    GoTo(1, 6);
    TypeText("0123456789");
    EXPECT_EQ(Text(), "first\r\nsecond0123456789");
    EXPECT_EQ(Send(EM_GETMODIFY), TRUE);
    EXPECT_EQ(Send(EM_UNDO), TRUE);
    EXPECT_EQ(Text(), "first\r\nsecond");
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
    EXPECT_EQ(Send(EM_GETMODIFY), FALSE) << "the modified flag comes back with the step";
    DWORD start = 0, end = 0;
    Send(EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, 13u) << "the caret goes back where it was before the change";
}

TEST_F(UndoTest, TheTwentyFirstChangeDropsTheOldest)
{
    std::string text;
    for (int line = 0; line < 25; ++line)
        text += "line\r\n";
    SetText(text);
    for (int line = 0; line < 21; ++line) {
        GoTo(line, 0);
        TypeText("x");
    }
    EXPECT_EQ(Document().UndoCount(), 20u);
    for (int step = 0; step < 20; ++step)
        EXPECT_EQ(Send(EM_UNDO), TRUE) << "step " << step;
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
    EXPECT_EQ(Send(EM_UNDO), FALSE);
    EXPECT_EQ(LineText(0), "xline") << "the oldest change could not be undone";
    for (int line = 1; line < 21; ++line)
        EXPECT_EQ(LineText(line), "line") << "line " << line;
}

TEST_F(UndoTest, RedoAndClearingTheLists)
{
    SetText("a\r\nb");
    GoTo(0, 1);
    TypeText("bc");
    GoTo(1, 1);
    TypeText("!");
    EXPECT_EQ(Send(ide::TAM_CANREDO), 0);
    Send(EM_UNDO);
    Send(EM_UNDO);
    EXPECT_EQ(Text(), "a\r\nb");
    EXPECT_EQ(Send(ide::TAM_CANREDO), 1);
    EXPECT_EQ(Send(ide::TAM_REDO), 1);
    EXPECT_EQ(Text(), "abc\r\nb");
    EXPECT_EQ(Send(ide::TAM_REDO), 1);
    EXPECT_EQ(Text(), "abc\r\nb!");
    EXPECT_EQ(Send(ide::TAM_CANREDO), 0);
    EXPECT_EQ(Send(ide::TAM_REDO), 0);

    Send(EM_UNDO);
    EXPECT_EQ(Send(ide::TAM_CANREDO), 1);
    GoTo(1, 0);
    TypeText("z");
    EXPECT_EQ(Send(ide::TAM_CANREDO), 0) << "a new change clears the redo list";
    EXPECT_EQ(Text(), "abc\r\nzb");

    Send(EM_UNDO);
    EXPECT_EQ(Send(EM_CANUNDO), TRUE);
    EXPECT_EQ(Send(ide::TAM_CANREDO), 1);
    Send(EM_EMPTYUNDOBUFFER);
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
    EXPECT_EQ(Send(ide::TAM_CANREDO), 0);
}

TEST_F(UndoTest, UndoAndRedoOfLineBreaksAndWmUndo)
{
    SetText("    a  b");
    GoTo(0, 5);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(Text(), "    a\r\n    b") << "auto-indent, blanks after the caret removed";
    EXPECT_EQ(Send(WM_UNDO), TRUE);
    EXPECT_EQ(Text(), "    a  b") << "Enter with its indent is one step";
    Send(ide::TAM_REDO);
    EXPECT_EQ(Text(), "    a\r\n    b");
    // A grouped change is undone together with the one before it.
    Document().Select(ide::TextPosition{0, 0}, ide::TextPosition{0, 0});
    Document().ReplaceSelection("1", ide::ChangeKind::Forced);
    Document().Select(ide::TextPosition{1, 0}, ide::TextPosition{1, 0});
    Document().ReplaceSelection("2", ide::ChangeKind::Grouped);
    EXPECT_EQ(Text(), "1    a\r\n2    b");
    Send(EM_UNDO);
    EXPECT_EQ(Text(), "    a\r\n    b");
    Send(ide::TAM_REDO);
    EXPECT_EQ(Text(), "1    a\r\n2    b");
}

TEST_F(UndoTest, AFailedGrowthChangesNothingAndKeepsNoStep)
{
    SetText("a\r\nb");
    Document().Buffer().SetGrowthLimitForTest(2);
    GoTo(0, 1);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(Text(), "a\r\nb");
    EXPECT_EQ(Send(EM_CANUNDO), FALSE);
    EXPECT_EQ(Send(EM_GETMODIFY), FALSE);
}

} // namespace
} // namespace brannoc::test
