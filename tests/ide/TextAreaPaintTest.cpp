// The text area's painting, checked as pixels read back from the screen: keyword and comment
// colours, the plain line being edited, the error and current-statement lines, break points, the
// procedure separators, and colours switched off. A screenshot of a sample module goes to the build.
#include "ide/TextAreaFixture.h"
#include "support/WindowImage.h"

namespace brannoc::test {
namespace {

using ide::EditorColour;

constexpr COLORREF kKeyword0 = RGB(0, 0, 255);
constexpr COLORREF kKeyword1 = RGB(0, 0, 128);
constexpr COLORREF kKeyword2 = RGB(0, 128, 128);
constexpr COLORREF kComment = RGB(0, 128, 0);
constexpr COLORREF kError = RGB(255, 0, 0);
constexpr COLORREF kCurrent = RGB(255, 255, 0);
constexpr COLORREF kBreak = RGB(128, 0, 0);
constexpr COLORREF kText = RGB(0, 0, 0);
constexpr COLORREF kBackground = RGB(255, 255, 255);
constexpr COLORREF kGrey = RGB(128, 128, 128);

const char kSample[] =
    "Option Explicit\r\n"                 // 0
    "Dim x As Integer\r\n"                // 1
    "\r\n"                                // 2
    "' Main does it all\r\n"              // 3
    "Sub Main\r\n"                        // 4
    "    x = 1 ' set x\r\n"               // 5
    "    Debug.Print \"it's\"\r\n"        // 6
    "    MsgBox \"a\"\r\n"                // 7
    "End Sub\r\n"                         // 8
    "\r\n"                                // 9
    "Function Twice(n)\r\n"               // 10
    "    Twice = 2 * n\r\n"               // 11
    "End Function\r\n";                   // 12

class PaintTest : public TextAreaFixture {
protected:
    void SetUp() override
    {
        TextAreaFixture::SetUp();
        m_colours.SetEntry(EditorColour::Keyword0, kKeyword0);
        m_colours.SetEntry(EditorColour::Keyword1, kKeyword1);
        m_colours.SetEntry(EditorColour::Keyword2, kKeyword2);
        m_colours.SetEntry(EditorColour::Comment, kComment);
        m_colours.SetEntry(EditorColour::ErrorText, kError);
        m_colours.SetEntry(EditorColour::CurrentStatement, kCurrent);
        m_colours.SetEntry(EditorColour::BreakPoint, kBreak);
        m_colours.SetEntry(EditorColour::Text, kText);
        m_colours.SetEntry(EditorColour::Background, kBackground);
        m_colours.SetEntry(EditorColour::SelectedText, RGB(255, 255, 255));
        m_colours.SetEntry(EditorColour::SelectedBackground, RGB(0, 0, 128));
        ide::SetTextAreaColours(m_textArea, m_colours);
        SetText(kSample);
        Measure();
    }

    // Line height, text origin and character width, read from the caret rectangle.
    void Measure()
    {
        RECT first{}, second{};
        GoTo(0, 0);
        Send(ide::TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&first));
        GoTo(0, 1);
        Send(ide::TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&second));
        POINT origin{0, 0};
        ClientToScreen(m_textArea, &origin);
        m_lineHeight = first.bottom - first.top;
        m_textLeft = first.left - origin.x;
        m_charWidth = second.left - first.left;
        GoTo(2, 0);
        ASSERT_GT(m_lineHeight, 4);
        ASSERT_GT(m_charWidth, 2);
    }

    // The text part of a line from column `from` to column `to` (to -1: the window's right side).
    RECT TextOf(int line, int from = 0, int to = -1) const
    {
        return RECT{m_textLeft + from * m_charWidth, line * m_lineHeight,
                    to < 0 ? kWidth - 20 : m_textLeft + to * m_charWidth, (line + 1) * m_lineHeight - 1};
    }
    RECT MarginOf(int line) const { return RECT{0, line * m_lineHeight, m_lineHeight, (line + 1) * m_lineHeight}; }
    RECT BottomRowOf(int line) const
    {
        return RECT{m_textLeft, (line + 1) * m_lineHeight - 1, kWidth - 20, (line + 1) * m_lineHeight};
    }
    WindowImage Capture() const { return WindowImage::Capture(m_textArea); }

    ide::EditorColours m_colours;
    int m_lineHeight = 0, m_textLeft = 0, m_charWidth = 0;
};

TEST_F(PaintTest, KeywordsAndCommentsTakeTheirColours)
{
    WindowImage image = Capture();
    EXPECT_TRUE(image.Contains(TextOf(1, 0, 3), kKeyword0)) << "Dim";
    EXPECT_TRUE(image.Contains(TextOf(1, 6, 8), kKeyword0)) << "As";
    EXPECT_TRUE(image.Contains(TextOf(1, 4, 5), kText)) << "x";
    EXPECT_FALSE(image.Contains(TextOf(1, 4, 5), kKeyword0)) << "x";
    // x = 1 ' set x: only the part from the apostrophe on is a comment.
    EXPECT_FALSE(image.Contains(TextOf(5, 0, 10), kComment));
    EXPECT_TRUE(image.Contains(TextOf(5, 4, 9), kText));
    EXPECT_TRUE(image.Contains(TextOf(5, 10, 17), kComment));
    EXPECT_TRUE(image.Contains(TextOf(3), kComment)) << "a whole comment line";
    // An apostrophe inside a string starts no comment.
    EXPECT_FALSE(image.Contains(TextOf(6), kComment));
    EXPECT_TRUE(image.Contains(TextOf(6, 14, 20), kText));
}

TEST_F(PaintTest, TheLineBeingEditedIsPlainUntilTheCaretLeavesIt)
{
    GoTo(1, 16);
    TypeText(" ' dim");
    WindowImage editing = Capture();
    EXPECT_FALSE(editing.Contains(TextOf(1), kKeyword0));
    EXPECT_FALSE(editing.Contains(TextOf(1), kComment));
    EXPECT_TRUE(editing.Contains(TextOf(1, 0, 3), kText));
    GoTo(2, 0);
    WindowImage left = Capture();
    EXPECT_TRUE(left.Contains(TextOf(1, 0, 3), kKeyword0));
    EXPECT_TRUE(left.Contains(TextOf(1, 17, 22), kComment));
}

TEST_F(PaintTest, ErrorCurrentStatementAndBreakPointLines)
{
    Send(ide::TAM_MARKERROR, 0, 7);
    Send(ide::TAM_MARKCURRENT, 0, 11);
    Document().SetBreakPoint(5, true);
    GoTo(2, 0);
    WindowImage image = Capture();
    // The error line's text is in the error colour, on the normal background.
    EXPECT_TRUE(image.Contains(TextOf(7, 4, 10), kError));
    EXPECT_FALSE(image.Contains(TextOf(7), kKeyword0));
    EXPECT_FALSE(image.Contains(TextOf(7), kText));
    // The current statement is drawn on its colour, with the arrow in the margin.
    EXPECT_GT(image.Count(TextOf(11, 20), kCurrent), 20);
    EXPECT_TRUE(image.Contains(MarginOf(11), kCurrent));
    EXPECT_FALSE(image.Contains(MarginOf(10), kCurrent));
    // The break-point line is drawn on its colour, the contrasting text colour (white on dark red) and a dot.
    EXPECT_GT(image.Count(TextOf(5, 20), kBreak), 20);
    EXPECT_TRUE(image.Contains(TextOf(5, 4, 9), kBackground));
    EXPECT_FALSE(image.Contains(TextOf(5), kComment));
    EXPECT_TRUE(image.Contains(MarginOf(5), kBreak));
    EXPECT_FALSE(image.Contains(MarginOf(6), kBreak));
}

TEST_F(PaintTest, SeparatorsUnderProcedureEndsAndTheDeclarations)
{
    WindowImage image = Capture();
    auto hasSeparator = [&](int line) { return image.Count(BottomRowOf(line), kGrey) > (kWidth - 20 - m_textLeft) / 2; };
    EXPECT_TRUE(hasSeparator(1)) << "end of the declarations (the comment above Sub belongs to it)";
    EXPECT_TRUE(hasSeparator(8)) << "End Sub";
    EXPECT_TRUE(hasSeparator(12)) << "End Function";
    for (int line : {0, 2, 3, 4, 5, 9, 10, 11})
        EXPECT_FALSE(hasSeparator(line)) << "line " << line;
}

TEST_F(PaintTest, TheOffValueSwitchesAClassOrAHighlightOff)
{
    m_colours.SetEntry(EditorColour::Keyword0, ide::kColourOff);
    m_colours.SetEntry(EditorColour::ErrorText, ide::kColourOff);
    m_colours.SetEntry(EditorColour::CurrentStatement, ide::kColourOff);
    m_colours.SetEntry(EditorColour::BreakPoint, ide::kColourOff);
    ide::SetTextAreaColours(m_textArea, m_colours);
    Send(ide::TAM_MARKERROR, 0, 7);
    Send(ide::TAM_MARKCURRENT, 0, 11);
    Document().SetBreakPoint(5, true);
    GoTo(2, 0);
    WindowImage image = Capture();
    EXPECT_TRUE(image.Contains(TextOf(1, 0, 3), kText)) << "Dim drawn as plain text";
    EXPECT_FALSE(image.Contains(TextOf(7), kError));
    EXPECT_TRUE(image.Contains(TextOf(7, 11, 14), kText)) << "MsgBox line coloured as any other line";
    EXPECT_TRUE(image.Contains(TextOf(7, 4, 10), kKeyword2)) << "MsgBox, a word of the third set";
    EXPECT_TRUE(image.Contains(TextOf(5, 10, 17), kComment)) << "break-point line coloured as any other line";
    EXPECT_EQ(image.Count(MarginOf(5), kBackground), m_lineHeight * m_lineHeight) << "no dot";
    EXPECT_EQ(image.Count(MarginOf(11), kBackground), m_lineHeight * m_lineHeight) << "no arrow";
    // Keywords of the macro's own words and of colour 1 are still coloured where their colour is on.
    EXPECT_FALSE(image.Contains(TextOf(11, 20), kCurrent));
}

TEST_F(PaintTest, PrintClientPaintsWhatTheScreenShows)
{
    Document().SetBreakPoint(5, true);
    GoTo(2, 0);
    WindowImage screen = Capture();
    HDC windowDc = GetDC(m_textArea);
    HDC memory = CreateCompatibleDC(windowDc);
    HBITMAP bitmap = CreateCompatibleBitmap(windowDc, screen.Width(), screen.Height());
    HGDIOBJ old = SelectObject(memory, bitmap);
    Send(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory), PRF_CLIENT);
    int differing = 0;
    for (int line : {1, 5, 8})
        for (int x = 0; x < screen.Width(); x += 3)
            for (int y = line * m_lineHeight; y < (line + 1) * m_lineHeight; ++y)
                differing += GetPixel(memory, x, y) != screen.Pixel(x, y);
    EXPECT_EQ(differing, 0);
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(m_textArea, windowDc);
}

TEST_F(PaintTest, ScreenshotOfASampleModule)
{
    Send(ide::TAM_MARKERROR, 0, 7);
    Send(ide::TAM_MARKCURRENT, 0, 11);
    Document().SetBreakPoint(5, true);
    GoTo(6, 4);
    WindowImage image = Capture();
    std::wstring path = image.WriteScreenshot(L"text-area-sample");
    ASSERT_FALSE(path.empty());
    WindowImage reread = image;
    EXPECT_EQ(reread.Width(), kWidth - GetSystemMetrics(SM_CXVSCROLL));
}

} // namespace
} // namespace brannoc::test
