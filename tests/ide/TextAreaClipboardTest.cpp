// Clipboard messages and keys: Copy without a selection takes the caret line, Cut deletes what it
// copied, Paste turns LF-only line ends into CR LF, and a read-only control refuses Cut and Paste.
#include "ide/TextAreaFixture.h"

#include <cstring>

namespace brannoc::test {
namespace {

class ClipboardTest : public TextAreaFixture {
protected:
    static std::string ClipboardText()
    {
        std::string text;
        if (!OpenClipboard(nullptr))
            return "<clipboard not available>";
        if (HANDLE data = GetClipboardData(CF_TEXT)) {
            text = static_cast<const char*>(GlobalLock(data));
            GlobalUnlock(data);
        }
        CloseClipboard();
        return text;
    }
    static void SetClipboardText(const std::string& text)
    {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
        std::memcpy(GlobalLock(memory), text.c_str(), text.size() + 1);
        GlobalUnlock(memory);
        SetClipboardData(CF_TEXT, memory);
        CloseClipboard();
    }
};

TEST_F(ClipboardTest, CopyWithoutASelectionCopiesTheCaretLine)
{
    SetText("first\r\nsecond\r\nlast");
    GoTo(1, 3);
    Send(WM_COPY);
    EXPECT_EQ(ClipboardText(), "second\r\n");
    EXPECT_EQ(Text(), "first\r\nsecond\r\nlast");
    GoTo(2, 1);
    PressKey(VK_INSERT, {VK_CONTROL});
    EXPECT_EQ(ClipboardText(), "last");
    Send(EM_SETSEL, 2, 10);
    Send(WM_COPY);
    EXPECT_EQ(ClipboardText(), "rst\r\nsec");
}

TEST_F(ClipboardTest, CutDeletesWhatItCopied)
{
    SetText("first\r\nsecond\r\nlast");
    GoTo(1, 3);
    Send(WM_CUT);
    EXPECT_EQ(ClipboardText(), "second\r\n");
    EXPECT_EQ(Text(), "first\r\nlast");
    Send(EM_SETSEL, 1, 3);
    PressKey(VK_DELETE, {VK_SHIFT});
    EXPECT_EQ(ClipboardText(), "ir");
    EXPECT_EQ(Text(), "fst\r\nlast");
    Send(EM_UNDO);
    EXPECT_EQ(Text(), "first\r\nlast");
}

TEST_F(ClipboardTest, PastedLineEndsBecomeCrLf)
{
    SetText("ab");
    SetClipboardText("one\ntwo\rthree\r\n");
    GoTo(0, 1);
    Send(WM_PASTE);
    EXPECT_EQ(Text(), "aone\r\ntwo\r\nthree\r\nb");
    Send(EM_SETSEL, 0, -1);
    SetClipboardText("x\ny");
    PressKey(VK_INSERT, {VK_SHIFT});
    EXPECT_EQ(Text(), "x\r\ny");
    Send(EM_SETSEL, 0, 1);
    Send(WM_CLEAR);
    EXPECT_EQ(Text(), "\r\ny");
}

TEST_F(ClipboardTest, ReadOnlyRefusesCutPasteAndClear)
{
    SetText("text");
    Send(EM_SETREADONLY, TRUE);
    SetClipboardText("other");
    Send(EM_SETSEL, 0, 2);
    Send(WM_PASTE);
    Send(WM_CUT);
    Send(WM_CLEAR);
    EXPECT_EQ(Text(), "text");
    EXPECT_EQ(ClipboardText(), "other");
    Send(WM_COPY);
    EXPECT_EQ(ClipboardText(), "te") << "copying is still allowed";
}

} // namespace
} // namespace brannoc::test
