// The owner of the dialogs and message boxes that macros show comes from the host: its Window, made
// usable (the top-level window of a child, an enabled and visible window down the chain of owned
// windows), then offered to OverrideModalWindowOwner. The outermost macro dialog of the thread is
// announced to the host with notification 6 when it opens and 7 when it has closed.
#include "host/EngineTest.h"
#include "support/MessageBoxCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using brannoc::CodeUnit;
using brannoc::test::MessageBoxCapture;

namespace {

HWND MakeWindow(const wchar_t* title, DWORD style, HWND parentOrOwner = nullptr)
{
    return CreateWindowExW(0, L"STATIC", title, style, 50, 50, 200, 100, parentOrOwner, nullptr, nullptr, nullptr);
}

class ModalOwnerTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.offerWindow = true;
        host = MakeWindow(L"Host window", WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        // Another window is the active one, so that the owner cannot come from the activation.
        other = MakeWindow(L"Other window", WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        SetActiveWindow(other);
    }
    void TearDown() override
    {
        DestroyWindow(other);
        DestroyWindow(host);
        EngineTest::TearDown();
    }
    // The notifications without those of compiling (9) and of the idle user dialog (18).
    std::vector<short> RunNotifications() const
    {
        std::vector<short> seen = callBack.notifications;
        seen.erase(std::remove_if(seen.begin(), seen.end(), [](short code) { return code == 9 || code == 18; }),
                   seen.end());
        return seen;
    }

    HWND host = nullptr;
    HWND other = nullptr;
};

TEST_F(ModalOwnerTest, TheHostsWindowOwnsAMessageBoxAndTheHostIsToldItOpenedAndClosed)
{
    callBack.window = host;
    MessageBoxCapture capture;
    RunMacro(L"Sub Main\r\n    MsgBox \"one\"\r\n    MsgBox \"two\"\r\nEnd Sub\r\n");
    auto boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].owner, host);
    EXPECT_EQ(boxes[1].owner, host);
    EXPECT_EQ((std::vector<short>{1, 6, 7, 6, 7, 2}), RunNotifications());
    EXPECT_EQ(0, callBack.badCalls);
}

TEST_F(ModalOwnerTest, AChildWindowGivesItsTopLevelWindowAndADisabledOneItsOwnedWindow)
{
    HWND child = MakeWindow(L"Child", WS_CHILD | WS_VISIBLE, host);
    callBack.window = child;
    MessageBoxCapture capture;
    RunMacro(L"Sub Main\r\n    MsgBox \"child\"\r\nEnd Sub\r\n");
    HWND owned = MakeWindow(L"Owned", WS_POPUP | WS_CAPTION | WS_VISIBLE, host);
    EnableWindow(host, FALSE);
    RunMacro(L"Sub Main\r\n    MsgBox \"disabled\"\r\nEnd Sub\r\n");
    EnableWindow(host, TRUE);
    auto boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].owner, host);
    EXPECT_EQ(boxes[1].owner, owned);
    DestroyWindow(owned);
}

TEST_F(ModalOwnerTest, TheHostMayReplaceTheOwnerAndAHiddenWindowGivesNone)
{
    callBack.window = host;
    std::vector<long> offered;
    callBack.onOverrideModalWindowOwner = [&](long& owner) {
        offered.push_back(owner);
        if (offered.size() == 1)
            owner = static_cast<long>(reinterpret_cast<LONG_PTR>(other));
    };
    MessageBoxCapture capture;
    RunMacro(L"Sub Main\r\n    MsgBox \"replaced\"\r\nEnd Sub\r\n");
    ShowWindow(host, SW_HIDE);
    RunMacro(L"Sub Main\r\n    MsgBox \"hidden\"\r\nEnd Sub\r\n");
    auto boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].owner, other);
    EXPECT_EQ(boxes[1].owner, nullptr);
    EXPECT_EQ((std::vector<long>{static_cast<long>(reinterpret_cast<LONG_PTR>(host)), 0}), offered);
    EXPECT_EQ(0, callBack.badCalls);
}

HWND s_dialogOwner = nullptr;
HWND s_hostWindow = nullptr;
bool s_hostEnabledWhileUp = true;

// Presses OK of the user dialog once it is up, noting its owner and whether the host's window is enabled.
void CALLBACK PressOK(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dialog = FindWindowW(L"__BrannocBasicDynDlgWindow", nullptr);
    if (!dialog || !IsWindowVisible(dialog))
        return;
    s_dialogOwner = GetWindow(dialog, GW_OWNER);
    s_hostEnabledWhileUp = IsWindowEnabled(s_hostWindow) != FALSE;
    PostMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
}

TEST_F(ModalOwnerTest, AUserDialogIsOwnedByTheHostsWindowAndABoxFromItsFunctionIsNoNewLevel)
{
    callBack.window = host;
    s_hostWindow = host;
    s_dialogOwner = nullptr;
    MessageBoxCapture capture;
    UINT_PTR timer = SetTimer(nullptr, 0, 40, &PressOK);
    RunMacro(L"Function Handler(item$, action%, value%) As Boolean\r\n"
             L"    If action% = 2 Then MsgBox \"from the dialog\"\r\n"
             L"End Function\r\n"
             L"Sub Main\r\n"
             L"    Begin Dialog UserDialog 200, 70, \"Owned\", .Handler\r\n"
             L"        OKButton 10, 40, 60, 20\r\n"
             L"    End Dialog\r\n"
             L"    Dim dlg As UserDialog\r\n"
             L"    Debug.Print Dialog(dlg)\r\n"
             L"End Sub\r\n");
    KillTimer(nullptr, timer);
    EXPECT_EQ(callBack.AllPrinted(), L"-1%\r\n");
    EXPECT_EQ(s_dialogOwner, host);
    EXPECT_FALSE(s_hostEnabledWhileUp);
    EXPECT_TRUE(IsWindowEnabled(host));
    auto boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].owner, host) << "the box comes above the dialog, not behind it";
    EXPECT_EQ((std::vector<short>{1, 6, 7, 2}), RunNotifications());
}

TEST_F(ModalOwnerTest, AnOwnerThatWasDisabledBeforeTheDialogStaysDisabled)
{
    callBack.window = host;
    callBack.onOverrideModalWindowOwner = [&](long& owner) { owner = static_cast<long>(reinterpret_cast<LONG_PTR>(other)); };
    EnableWindow(other, FALSE);
    s_hostWindow = other;
    s_dialogOwner = nullptr;
    UINT_PTR timer = SetTimer(nullptr, 0, 40, &PressOK);
    RunMacro(L"Sub Main\r\n"
             L"    Begin Dialog UserDialog 200, 70, \"Owned\"\r\n"
             L"        OKButton 10, 40, 60, 20\r\n"
             L"    End Dialog\r\n"
             L"    Dim dlg As UserDialog\r\n"
             L"    Debug.Print Dialog(dlg)\r\n"
             L"End Sub\r\n");
    KillTimer(nullptr, timer);
    EXPECT_EQ(callBack.AllPrinted(), L"-1%\r\n");
    EXPECT_EQ(s_dialogOwner, other);
    EXPECT_FALSE(IsWindowEnabled(other)) << "the dialog did not disable it, so it does not enable it";
    EXPECT_TRUE(IsWindowEnabled(host));
    EnableWindow(other, TRUE);
}

} // namespace
