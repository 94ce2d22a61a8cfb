// The control's own messages: going to and selecting lines, the selected lines and text, the
// statement walk over " _" continuation lines, the marks, the active flag and attaching documents.
#include "ide/CodeLineScan.h"
#include "ide/TextAreaFixture.h"

namespace brannoc::test {
namespace {

using OwnMessagesTest = TextAreaFixture;

const char kModule[] =
    "Dim a As Long\r\n"          // 0
    "Sub Main\r\n"               // 1
    "    MsgBox \"x\", _\r\n"    // 2
    "        1, _\r\n"           // 3
    "        \"t\"\r\n"          // 4
    "    a = 1\r\n"              // 5
    "End Sub\r\n"                // 6
    "Function F(b As Long) _\r\n"// 7
    "    As Long\r\n"            // 8
    "End Function";              // 9

struct Walked {
    int first, last;
    std::string text;
    unsigned flags;
};

struct Walk : ide::StatementVisitor {
    std::vector<Walked> seen;
    size_t stopAfter = 1000;
    static int Visit(StatementVisitor* self, int first, int last, const char* text, unsigned flags)
    {
        Walk* walk = static_cast<Walk*>(self);
        walk->seen.push_back(Walked{first, last, text, flags});
        return walk->seen.size() < walk->stopAfter ? 1 : 0;
    }
    Walk(unsigned wanted = 0xFF) { mask = wanted; visit = Visit; }
    std::vector<int> Firsts() const
    {
        std::vector<int> firsts;
        for (const Walked& w : seen)
            firsts.push_back(w.first);
        return firsts;
    }
};

TEST_F(OwnMessagesTest, GoingToAndSelectingLines)
{
    SetText("zero\r\none\r\ntwo");
    Send(ide::TAM_GOTOLINE, static_cast<WPARAM>(-1), MAKELPARAM(1, 0));
    char text[32] = {};
    EXPECT_EQ(Send(ide::TAM_GETSELTEXT, sizeof text, reinterpret_cast<LPARAM>(text)), 3);
    EXPECT_STREQ(text, "one");
    EXPECT_EQ(Send(ide::TAM_GETSELTEXT, 0, 0), 3) << "the length without a buffer";
    EXPECT_EQ(Send(ide::TAM_HASSELECTION), 1);
    Send(ide::TAM_GOTOLINE, static_cast<WPARAM>(-2), MAKELPARAM(0, 0));
    EXPECT_EQ(Document().Caret(), (ide::TextPosition{1, 0}));
    EXPECT_EQ(Send(ide::TAM_HASSELECTION), 0);
    Send(ide::TAM_GOTOLINE, 2, MAKELPARAM(2, 0));
    EXPECT_EQ(Document().Caret(), (ide::TextPosition{2, 2}));
    Send(ide::TAM_SELECTLINES, 0, 1);
    int last = -1;
    EXPECT_EQ(Send(ide::TAM_SELECTEDLINES, 0, reinterpret_cast<LPARAM>(&last)), 0);
    EXPECT_EQ(last, 1);
    EXPECT_EQ(Send(ide::TAM_GETSELTEXT, sizeof text, reinterpret_cast<LPARAM>(text)), 11);
    EXPECT_STREQ(text, "zero\r\none\r\n");
    Send(ide::TAM_SELECTLINES, 1, 2);
    EXPECT_EQ(Send(ide::TAM_SELECTEDLINES, 0, reinterpret_cast<LPARAM>(&last)), 1);
    EXPECT_EQ(last, 2);
    char whole[32] = {};
    EXPECT_EQ(Send(ide::TAM_GETWHOLETEXT, sizeof whole, reinterpret_cast<LPARAM>(whole)), 14);
    EXPECT_STREQ(whole, "zero\r\none\r\ntwo");
}

TEST_F(OwnMessagesTest, TheWholeTextHoldsTheHiddenHeaderAndReferences)
{
    const std::string hidden = "Attribute VB_Name = \"Ledger\"\r\n'#Reference {1}#1.0#0#a.tlb#A\r\n";
    ide::TextDocument sheet;
    sheet.LoadModule(hidden + "Sub Main\r\nEnd Sub");
    EXPECT_EQ(sheet.HiddenLineCount(), 2);
    Send(ide::TAM_ATTACH, 0, reinterpret_cast<LPARAM>(&sheet));
    EXPECT_EQ(Text(), "Sub Main\r\nEnd Sub") << "only the code is shown";
    EXPECT_EQ(Send(EM_GETLINECOUNT), 2);

    GoTo(1, 0);
    TypeText("x");
    const std::string whole = hidden + "Sub Main\r\nxEnd Sub";
    EXPECT_EQ(Send(ide::TAM_GETWHOLETEXT, 0, 0), static_cast<LRESULT>(whole.size())) << "the length without a buffer";
    std::vector<char> buffer(whole.size() + 1, '?');
    EXPECT_EQ(Send(ide::TAM_GETWHOLETEXT, buffer.size(), reinterpret_cast<LPARAM>(buffer.data())),
              static_cast<LRESULT>(whole.size()));
    EXPECT_EQ(std::string(buffer.data()), whole) << "the edit on the line being typed is in it";
    char shortBuffer[8] = {};
    EXPECT_EQ(Send(ide::TAM_GETWHOLETEXT, sizeof shortBuffer, reinterpret_cast<LPARAM>(shortBuffer)), 7);
    EXPECT_STREQ(shortBuffer, "Attribu") << "cut to the buffer with its terminating zero";
    Send(ide::TAM_ATTACH, 0, 0);
}

TEST_F(OwnMessagesTest, WalkingWholeStatements)
{
    SetText(kModule);
    Walk all;
    EXPECT_EQ(Send(ide::TAM_WALKSTATEMENTS, 0, reinterpret_cast<LPARAM>(&all)), 1);
    EXPECT_EQ(all.Firsts(), (std::vector<int>{0, 1, 2, 5, 6, 7, 9}));
    ASSERT_EQ(all.seen.size(), 7u);
    EXPECT_EQ(all.seen[2].last, 4);
    EXPECT_EQ(all.seen[2].text, "    MsgBox \"x\", _\r\n        1, _\r\n        \"t\"");
    EXPECT_EQ(all.seen[5].last, 8);
    EXPECT_TRUE(all.seen[5].flags & ide::LineClass::ProcedureHeader);

    Walk headers(ide::LineClass::ProcedureHeader);
    Send(ide::TAM_WALKSTATEMENTS, 0, reinterpret_cast<LPARAM>(&headers));
    EXPECT_EQ(headers.Firsts(), (std::vector<int>{1, 7}));

    Walk down;
    Send(ide::TAM_WALKSTATEMENTS, static_cast<WPARAM>(-3), reinterpret_cast<LPARAM>(&down));
    EXPECT_EQ(down.Firsts(), (std::vector<int>{0, 1, 2})) << "down to line 3";

    GoTo(4, 0);
    Walk up;
    Send(ide::TAM_WALKSTATEMENTS, 1, reinterpret_cast<LPARAM>(&up));
    EXPECT_EQ(up.Firsts(), (std::vector<int>{2, 1})) << "up from the caret's statement to line 1";

    Walk stopped;
    stopped.stopAfter = 2;
    EXPECT_EQ(Send(ide::TAM_WALKSTATEMENTS, 0, reinterpret_cast<LPARAM>(&stopped)), 0);
    EXPECT_EQ(stopped.seen.size(), 2u);
}

TEST_F(OwnMessagesTest, StatementMarksSpanContinuationLines)
{
    SetText(kModule);
    Send(ide::TAM_MARKCURRENT, 0, 2);
    EXPECT_EQ(Document().CurrentStatement().first, 2);
    EXPECT_EQ(Document().CurrentStatement().last, 4);
    EXPECT_EQ(Document().Caret(), (ide::TextPosition{2, 0})) << "the caret goes to the statement";
    Send(ide::TAM_MARKERROR, 0, 7);
    EXPECT_EQ(Document().ErrorStatement().first, 7);
    EXPECT_EQ(Document().ErrorStatement().last, 8);
    Send(ide::TAM_MARKERROR, 0, -1);
    EXPECT_EQ(Document().ErrorStatement().first, -1);
    // Lines inserted above a mark move it; editing inside it clears it.
    GoTo(0, 0);
    Send(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(Document().CurrentStatement().first, 3);
    GoTo(4, 0);
    TypeText("x");
    EXPECT_EQ(Document().CurrentStatement().first, -1);
}

TEST_F(OwnMessagesTest, ActiveFlagCaretRectangleAndAttachedDocuments)
{
    Send(ide::TAM_SETACTIVE, 1);
    EXPECT_EQ(Send(ide::TAM_SETACTIVE, 0), 1);
    EXPECT_EQ(Send(ide::TAM_SETACTIVE, 1), 0);
    RECT caret{};
    EXPECT_EQ(Send(ide::TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&caret)), 1);
    EXPECT_GT(caret.bottom, caret.top);
    EXPECT_EQ(Send(ide::TAM_HASPOPUP, 0), 1) << "the completion list component";
    EXPECT_EQ(Send(ide::TAM_HASPOPUP, 1), 1) << "the parameter tip component";

    SetText("own text");
    ide::TextDocument sheet;
    sheet.Load("sheet text\r\nline 2");
    Send(ide::TAM_ATTACH, 0, reinterpret_cast<LPARAM>(&sheet));
    EXPECT_EQ(Text(), "sheet text\r\nline 2");
    TypeText("x");
    EXPECT_EQ(std::string(sheet.Line(0)), "xsheet text");
    Send(ide::TAM_ATTACH, 0, 0);
    EXPECT_EQ(Text(), "own text");
}

} // namespace
} // namespace brannoc::test
