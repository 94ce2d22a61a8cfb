// The text area answers the EDIT messages as a real multi-line EDIT control does on the same text:
// both controls get the same text and the same requests, and every answer is compared.
#include "ide/TextAreaFixture.h"

#include <string>

namespace brannoc::test {
namespace {

class EditMessagesTest : public TextAreaFixture {
protected:
    void SetUp() override
    {
        TextAreaFixture::SetUp();
        m_edit = CreateWindowExA(0, "EDIT", "", WS_CHILD | ES_MULTILINE | ES_AUTOHSCROLL | ES_AUTOVSCROLL | WS_VSCROLL,
                                 0, 0, 300, 200, m_host, reinterpret_cast<HMENU>(2), GetModuleHandleA(nullptr), nullptr);
        ASSERT_NE(m_edit, nullptr);
        SendMessageA(m_edit, EM_SETLIMITTEXT, 0x7FFFFFFE, 0);
    }

    // Sends the same message to both controls and expects the same answer.
    void Same(UINT message, WPARAM wParam, LPARAM lParam, const std::string& what) const
    {
        LRESULT expected = SendMessageA(m_edit, message, wParam, lParam);
        LRESULT actual = Send(message, wParam, lParam);
        EXPECT_EQ(actual, expected) << what << " (message 0x" << std::hex << message << std::dec << ", wParam "
                                    << static_cast<int>(wParam) << ", lParam " << static_cast<int>(lParam) << ")";
    }

    void SameText(const std::string& what) const
    {
        char expected[512] = {}, actual[512] = {};
        LRESULT expectedLength = SendMessageA(m_edit, WM_GETTEXT, sizeof expected, reinterpret_cast<LPARAM>(expected));
        LRESULT actualLength = Send(WM_GETTEXT, sizeof actual, reinterpret_cast<LPARAM>(actual));
        EXPECT_EQ(actualLength, expectedLength) << what;
        EXPECT_STREQ(actual, expected) << what;
        Same(WM_GETTEXTLENGTH, 0, 0, what);
        Same(EM_GETLINECOUNT, 0, 0, what);
    }

    void SameSelection(const std::string& what) const
    {
        DWORD expectedStart = 0, expectedEnd = 0, actualStart = 0, actualEnd = 0;
        LRESULT expected = SendMessageA(m_edit, EM_GETSEL, reinterpret_cast<WPARAM>(&expectedStart),
                                        reinterpret_cast<LPARAM>(&expectedEnd));
        LRESULT actual = Send(EM_GETSEL, reinterpret_cast<WPARAM>(&actualStart), reinterpret_cast<LPARAM>(&actualEnd));
        EXPECT_EQ(actual, expected) << what;
        EXPECT_EQ(actualStart, expectedStart) << what;
        EXPECT_EQ(actualEnd, expectedEnd) << what;
        Same(EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0, what + ": line of the caret");
        Same(EM_LINEINDEX, static_cast<WPARAM>(-1), 0, what + ": start of the caret line");
        Same(EM_LINELENGTH, static_cast<WPARAM>(-1), 0, what + ": unselected characters of the selected lines");
    }

    void SetBoth(const std::string& text) const
    {
        SendMessageA(m_edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
        SetText(text);
    }

    HWND m_edit = nullptr;
};

const char* const kTexts[] = {
    "",
    "one",
    "one\r\ntwo\r\n\r\nfour",
    "line\r\n",
    "\r\n\r\n",
    "Sub Main\r\n\tDebug.Print \"it's\"\r\nEnd Sub\r\n",
};

TEST_F(EditMessagesTest, TextLinesAndPositionsAnswerAsEdit)
{
    for (const char* text : kTexts) {
        std::string what = std::string("text \"") + text + "\"";
        SetBoth(text);
        SameText(what);
        SameSelection(what + " after WM_SETTEXT");
        int length = static_cast<int>(std::string(text).size());
        int lines = static_cast<int>(SendMessageA(m_edit, EM_GETLINECOUNT, 0, 0));
        for (int line = 0; line <= lines; ++line)
            Same(EM_LINEINDEX, static_cast<WPARAM>(line), 0, what);
        for (int position = 0; position <= length + 1; ++position) {
            Same(EM_LINEFROMCHAR, static_cast<WPARAM>(position), 0, what);
            Same(EM_LINELENGTH, static_cast<WPARAM>(position), 0, what);
        }
        for (int line = 0; line < lines; ++line) {
            char expected[64] = {}, actual[64] = {};
            *reinterpret_cast<WORD*>(expected) = sizeof expected - 1;
            *reinterpret_cast<WORD*>(actual) = sizeof actual - 1;
            LRESULT expectedCount = SendMessageA(m_edit, EM_GETLINE, line, reinterpret_cast<LPARAM>(expected));
            LRESULT actualCount = Send(EM_GETLINE, line, reinterpret_cast<LPARAM>(actual));
            EXPECT_EQ(actualCount, expectedCount) << what << " line " << line;
            EXPECT_EQ(std::string(actual, actualCount), std::string(expected, expectedCount)) << what << " line " << line;
        }
    }
}

TEST_F(EditMessagesTest, GetTextIntoASmallBufferAnswersAsEdit)
{
    SetBoth("one\r\ntwo");
    for (WPARAM size : {0u, 1u, 2u, 4u, 5u, 6u, 9u}) {
        char expected[16], actual[16];
        memset(expected, '#', sizeof expected);
        memset(actual, '#', sizeof actual);
        LRESULT expectedCount = SendMessageA(m_edit, WM_GETTEXT, size, reinterpret_cast<LPARAM>(expected));
        LRESULT actualCount = Send(WM_GETTEXT, size, reinterpret_cast<LPARAM>(actual));
        EXPECT_EQ(actualCount, expectedCount) << "buffer of " << size;
        EXPECT_EQ(std::string(actual, sizeof actual), std::string(expected, sizeof expected)) << "buffer of " << size;
    }
}

TEST_F(EditMessagesTest, SelectionsAnswerAsEdit)
{
    const std::string text = "one\r\ntwo\r\n\r\nfour";
    int length = static_cast<int>(text.size());
    SetBoth(text);
    // Every pair of positions that are not inside a CR LF pair, both directions, and the special values.
    // Line starts, line ends, positions inside lines and past the end (none inside a CR LF pair).
    std::vector<int> positions = {0, 2, 3, 5, 8, 10, 12, 14, length, length + 5};
    for (int start : positions) {
        for (int end : positions) {
            SendMessageA(m_edit, EM_SETSEL, start, end);
            Send(EM_SETSEL, start, end);
            SameSelection("EM_SETSEL " + std::to_string(start) + ", " + std::to_string(end));
        }
    }
    for (auto [start, end] : {std::pair{0, -1}, std::pair{-1, 3}, std::pair{2, -1}}) {
        SendMessageA(m_edit, EM_SETSEL, 6, 8);
        Send(EM_SETSEL, 6, 8);
        SendMessageA(m_edit, EM_SETSEL, static_cast<WPARAM>(start), end);
        Send(EM_SETSEL, static_cast<WPARAM>(start), end);
        SameSelection("EM_SETSEL " + std::to_string(start) + ", " + std::to_string(end));
    }
}

TEST_F(EditMessagesTest, ReplaceSelectionAndModifyFlagAnswerAsEdit)
{
    struct Row {
        int start, end;
        const char* replacement;
    };
    const Row rows[] = {
        {0, 0, "X"}, {1, 3, "ab\r\ncd"}, {3, 10, ""}, {5, 5, "\r\n"}, {0, -1, "xyz\r\nqrs"}, {2, 2, "mid"},
    };
    SetBoth("one\r\ntwo\r\n\r\nfour");
    Same(EM_GETMODIFY, 0, 0, "after WM_SETTEXT");
    for (const Row& row : rows) {
        std::string what = "replace " + std::to_string(row.start) + ".." + std::to_string(row.end) + " by \"" +
                           row.replacement + "\"";
        SendMessageA(m_edit, EM_SETSEL, row.start, row.end);
        Send(EM_SETSEL, row.start, row.end);
        SendMessageA(m_edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(row.replacement));
        Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(row.replacement));
        SameText(what);
        SameSelection(what);
        Same(EM_GETMODIFY, 0, 0, what);
        Same(EM_CANUNDO, 0, 0, what);
    }
    Same(EM_SETMODIFY, FALSE, 0, "clearing the flag");
    Same(EM_GETMODIFY, 0, 0, "after EM_SETMODIFY FALSE");
    Same(EM_SETMODIFY, TRUE, 0, "setting the flag");
    Same(EM_GETMODIFY, 0, 0, "after EM_SETMODIFY TRUE");
    SetBoth("fresh");
    Same(EM_GETMODIFY, 0, 0, "WM_SETTEXT clears the flag");
}

// Unlike an EDIT control the text area writes keywords of replaced lines in their canonical case.
TEST_F(EditMessagesTest, ReplacedLinesGetKeywordCase)
{
    SetText("x");
    Send(EM_SETSEL, 0, -1);
    Send(EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>("dim a as string\r\nif a = \"dim\" then ' dim"));
    EXPECT_EQ(Text(), "Dim a As String\r\nIf a = \"dim\" Then ' dim");
}

TEST_F(EditMessagesTest, ReadOnlyStyleAnswersAsEdit)
{
    SetBoth("text");
    for (WPARAM flag : {TRUE, FALSE, TRUE}) {
        Same(EM_SETREADONLY, flag, 0, "EM_SETREADONLY");
        EXPECT_EQ(GetWindowLongA(m_textArea, GWL_STYLE) & ES_READONLY, GetWindowLongA(m_edit, GWL_STYLE) & ES_READONLY);
    }
    // A read-only control refuses typing and replacing; both keep their text.
    Send(WM_CHAR, 'x', 1);
    SendMessageA(m_edit, WM_CHAR, 'x', 1);
    SameText("typing while read-only");
    Send(EM_SETREADONLY, FALSE, 0);
}

TEST_F(EditMessagesTest, LimitIsTwoThousandMillion)
{
    EXPECT_EQ(Send(EM_GETLIMITTEXT), 2000000000);
    EXPECT_EQ(Send(WM_GETDLGCODE), 0x87);
    char name[64] = {};
    GetClassNameA(m_textArea, name, sizeof name);
    EXPECT_STREQ(name, "__BrannocTextArea");
}

} // namespace
} // namespace brannoc::test
