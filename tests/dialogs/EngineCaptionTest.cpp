// Macros run by an engine object: the engine's Caption is the title of MsgBox, InputBox and a UserDialog
// that give none, and the name in the about box, which closes itself after its Timeout.
#include "host/EngineTest.h"
#include "support/MessageBoxCapture.h"
#include "support/WindowImage.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using brannoc::CodeUnit;
using brannoc::test::MessageBoxCapture;

namespace {

class EngineCaptionTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        BSTR caption = SysAllocString(L"Ledger Macros");
        EXPECT_EQ(S_OK, unit->put_Caption(caption));
        SysFreeString(caption);
    }
    std::wstring Printed() const
    {
        std::wstring all;
        for (const std::wstring& text : callBack.printed)
            all += text;
        return all;
    }
};

// Calls act once for each new visible window of this thread whose class is `className`.
class WindowRobot final {
public:
    WindowRobot(const wchar_t* className, std::function<void(HWND)> act) : m_className(className), m_act(std::move(act))
    {
        s_active = this;
        m_timer = SetTimer(nullptr, 0, 40, &Tick);
    }
    ~WindowRobot()
    {
        KillTimer(nullptr, m_timer);
        s_active = nullptr;
    }
    int Acted() const { return m_acted; }

private:
    static BOOL CALLBACK Find(HWND window, LPARAM found)
    {
        wchar_t className[64] = L"";
        GetClassNameW(window, className, 64);
        if (s_active->m_className == className && IsWindowVisible(window)) {
            *reinterpret_cast<HWND*>(found) = window;
            return FALSE;
        }
        return TRUE;
    }
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        WindowRobot* robot = s_active;
        if (!robot || robot->m_busy)
            return;
        HWND window = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), &Find, reinterpret_cast<LPARAM>(&window));
        if (!window || window == robot->m_last)
            return;
        robot->m_busy = true;
        robot->m_last = window;
        ++robot->m_acted;
        robot->m_act(window);
        robot->m_busy = false;
    }
    static inline WindowRobot* s_active = nullptr;
    std::wstring m_className;
    std::function<void(HWND)> m_act;
    UINT_PTR m_timer = 0;
    HWND m_last = nullptr;
    int m_acted = 0;
    bool m_busy = false;
};

std::wstring TitleOf(HWND window)
{
    wchar_t text[128] = L"";
    GetWindowTextW(window, text, 128);
    return text;
}

CodeUnit* s_haltedUnit = nullptr;

void CALLBACK HaltOnce(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    VARIANT_BOOL answer = VARIANT_FALSE;
    if (s_haltedUnit)
        s_haltedUnit->Halt(&answer);
}

} // namespace

TEST_F(EngineCaptionTest, IsTheTitleOfMsgBoxInputBoxAndAUserDialogThatGiveNone)
{
    std::wstring dialogTitle;
    WindowRobot robot(L"__BrannocBasicDynDlgWindow", [&](HWND dialog) {
        dialogTitle = TitleOf(dialog);
        SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    });
    MessageBoxCapture capture;
    RunMacro(L"Sub Main\r\n"
             L"    MsgBox \"plain\"\r\n"
             L"    MsgBox \"titled\", 0, \"Own Title\"\r\n"
             L"    Debug.Print InputBox(\"Name?\", , \"Ann\")\r\n"
             L"    Begin Dialog UserDialog 200, 70\r\n"
             L"        OKButton 10, 40, 60, 20\r\n"
             L"    End Dialog\r\n"
             L"    Dim dlg As UserDialog\r\n"
             L"    Debug.Print Dialog(dlg)\r\n"
             L"End Sub\r\n");
    EXPECT_EQ(Printed(), L"\"Ann\"\r\n-1%\r\n");
    auto boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 3u) << "two message boxes and the input box";
    EXPECT_EQ(boxes[0].caption, L"Ledger Macros");
    EXPECT_EQ(boxes[0].text, L"plain");
    EXPECT_EQ(boxes[1].caption, L"Own Title");
    EXPECT_EQ(boxes[2].caption, L"Ledger Macros");
    EXPECT_EQ(boxes[2].text, L"Name?");
    EXPECT_EQ(robot.Acted(), 1);
    EXPECT_EQ(dialogTitle, L"Ledger Macros");
}

TEST_F(EngineCaptionTest, TheAboutBoxNamesTheEngineAndClosesAfterItsTimeout)
{
    std::wstring title;
    std::wstring name;
    int closedByRobot = 0;
    WindowRobot robot(L"#32770", [&](HWND box) {
        title = TitleOf(box);
        name = TitleOf(GetDlgItem(box, 101));
        EXPECT_FALSE(brannoc::test::WindowImage::Capture(box, true).WriteScreenshot(L"aboutbox").empty());
        // The box closes itself after a second; only if it is still up long after does the robot close it.
        for (int i = 0; i < 200 && IsWindow(box) && IsWindowVisible(box); ++i) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            Sleep(50);
        }
        if (IsWindow(box) && IsWindowVisible(box)) {
            ++closedByRobot;
            PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        }
    });
    RunMacro(L"Sub Main\r\n    AboutBrannocBasic 1.9\r\n    Debug.Print \"after\"\r\nEnd Sub\r\n");
    EXPECT_EQ(Printed(), L"\"after\"\r\n");
    EXPECT_EQ(robot.Acted(), 1);
    EXPECT_EQ(title, L"About Ledger Macros");
    EXPECT_EQ(name, L"Ledger Macros");
    EXPECT_EQ(closedByRobot, 0) << "the Timeout did not close the box";
}

TEST_F(EngineCaptionTest, AStopWhileTheAboutBoxIsUpAbandonsTheStatement)
{
    WindowRobot robot(L"#32770", [&](HWND) {
        VARIANT_BOOL answer = VARIANT_FALSE;
        unit->Halt(&answer);
    });
    RunMacro(L"Sub Main\r\n    Debug.Print \"before\"\r\n    AboutBrannocBasic 60\r\n    Debug.Print \"after\"\r\nEnd Sub\r\n");
    EXPECT_EQ(Printed(), L"\"before\"\r\n");
    EXPECT_EQ(robot.Acted(), 1);
    EXPECT_TRUE(callBack.errorNumbers.empty()) << "no error is reported";
}

TEST_F(EngineCaptionTest, AHostHaltWhileAnInputBoxFileDialogOrWaitIsUpAbandonsTheStatement)
{
    for (const wchar_t* statement : {L"    Debug.Print InputBox(\"Name?\", , \"Ann\")\r\n",
                                     L"    Debug.Print GetFilePath(, \"txt\")\r\n", L"    Wait 30\r\n"}) {
        SCOPED_TRACE(statement);
        callBack.printed.clear();
        callBack.errorNumbers.clear();
        // Wait shows no window: a thread timer halts the engine while it waits.
        s_haltedUnit = unit;
        const UINT_PTR timer = SetTimer(nullptr, 0, 300, &HaltOnce);
        RunMacro(std::wstring(L"Sub Main\r\n    Debug.Print \"before\"\r\n") + statement +
                 L"    Debug.Print \"after\"\r\nEnd Sub\r\n");
        KillTimer(nullptr, timer);
        EXPECT_EQ(Printed(), L"\"before\"\r\n");
        EXPECT_TRUE(callBack.errorNumbers.empty()) << "no error is reported";
        HWND leftOver = FindWindowW(L"#32770", nullptr);
        EXPECT_TRUE(!leftOver || !IsWindowVisible(leftOver)) << "the window went with the statement";
    }
}
