// Waiting inside a macro (a message box, Wait) gives the engine up: other threads are served and the
// waiting thread's windows get their messages; a stop from another thread ends the wait and abandons the
// statement; the owner window is disabled while a box is up and enabled again afterwards.
#include "brannoc.h"
#include "host/ThreadTestEngine.h"
#include <gtest/gtest.h>
#include <atomic>
#include <thread>

using namespace brannoc::testing;

namespace {

struct BoxSearch {
    const wchar_t* className;
    HWND found = nullptr;
};

BOOL CALLBACK FindBox(HWND window, LPARAM parameter)
{
    auto* search = reinterpret_cast<BoxSearch*>(parameter);
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    if (std::wstring(name) == search->className && IsWindowVisible(window)) {
        search->found = window;
        return FALSE;
    }
    return TRUE;
}

// The visible window of a class (by default the dialog class of message boxes) of a thread, or null.
HWND BoxOf(DWORD threadId, const wchar_t* className = L"#32770")
{
    BoxSearch search{className};
    EnumThreadWindows(threadId, &FindBox, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

constexpr UINT kPing = WM_USER + 7;
std::atomic<int> s_pings{0};

LRESULT CALLBACK PingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kPing) {
        ++s_pings;
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// A message-only window of the calling thread that counts kPing messages.
HWND MakePingWindow()
{
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &PingProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"BrannocTestPingWindow";
    RegisterClassW(&windowClass);
    return CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           windowClass.hInstance, nullptr);
}

// The state of one waiting macro run on its own thread.
struct WaitingRun {
    std::atomic<DWORD> threadId{0};
    std::atomic<_CodeUnit*> unit{nullptr};
    std::atomic<HWND> hostWindow{nullptr};
    std::atomic<HWND> pingWindow{nullptr};
    std::atomic<bool> finished{false};
    std::atomic<bool> began{false};
    bool stopped = false;
    bool ownerEnabledAfter = false;
    std::wstring printed;

    void Run(const std::wstring& text)
    {
        HWND window = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 200, 100,
                                      nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(window);
        SetActiveWindow(window);
        hostWindow = window;
        pingWindow = MakePingWindow();
        {
            ThreadEngine engine;
            engine.callBack.onDebugPrint = [this](IDispatch*) { began = true; };
            unit = engine.unit;
            threadId = GetCurrentThreadId();
            engine.RunMacro(L"waits", text);
            VARIANT_BOOL state = VARIANT_FALSE;
            engine.unit->get_IsStopped(&state);
            stopped = state == VARIANT_TRUE;
            printed = engine.callBack.AllPrinted();
            unit = nullptr;
        }
        ownerEnabledAfter = IsWindowEnabled(window) != FALSE;
        DestroyWindow(pingWindow);
        DestroyWindow(window);
        finished = true;
    }
};

bool ServedHere()
{
    ThreadEngine mine;
    return mine.RunMacro(L"mine", Lines({L"Sub Main", L"Debug.Print 3 + 4", L"End Sub"})) &&
           mine.callBack.AllPrinted() == L"7%\r\n";
}

} // namespace

TEST(ModalWaits, AStopWhileAMessageBoxIsUpAbandonsTheStatement)
{
    WaitingRun run;
    std::thread waiting([&] {
        run.Run(Lines({L"Sub Main", L"Debug.Print \"before\"", L"x = MsgBox(\"up\")", L"Debug.Print \"after\"",
                       L"End Sub"}));
    });
    HWND box = nullptr;
    ASSERT_TRUE(WaitFor([&] { return run.threadId && (box = BoxOf(run.threadId)) != nullptr; }));
    EXPECT_FALSE(IsWindowEnabled(run.hostWindow)) << "the owner is disabled while the box is up";
    EXPECT_TRUE(ServedHere()) << "another thread is served while the box is up";
    PostMessageW(run.pingWindow, kPing, 0, 0);
    EXPECT_TRUE(WaitFor([] { return s_pings.load() > 0; })) << "the waiting thread's windows get their messages";

    VARIANT_BOOL result = VARIANT_FALSE;
    run.unit.load()->Stop(&result);
    const bool ended = WaitFor([&] { return run.finished.load(); });
    if (!ended && BoxOf(run.threadId))
        PostMessageW(BoxOf(run.threadId), WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    waiting.join();
    EXPECT_TRUE(ended) << "the stop closed the box";
    EXPECT_EQ(L"\"before\"\r\n", run.printed) << "the statement was abandoned and the run stopped";
    EXPECT_TRUE(run.stopped);
    EXPECT_TRUE(run.ownerEnabledAfter);
}

TEST(ModalWaits, WaitServesMessagesAndOtherThreadsAndEndsOnAStop)
{
    s_pings = 0;
    WaitingRun run;
    std::thread waiting([&] {
        run.Run(Lines({L"Sub Main", L"Debug.Print \"before\"", L"Wait 120", L"Debug.Print \"after\"", L"End Sub"}));
    });
    ASSERT_TRUE(WaitFor([&] { return run.began.load(); }));
    // The statement after the print is the Wait.
    Sleep(200);
    EXPECT_TRUE(ServedHere()) << "another thread is served during Wait";
    PostMessageW(run.pingWindow, kPing, 0, 0);
    EXPECT_TRUE(WaitFor([] { return s_pings.load() > 0; })) << "the waiting thread's windows get their messages";
    VARIANT_BOOL result = VARIANT_FALSE;
    run.unit.load()->Stop(&result);
    waiting.join();
    EXPECT_EQ(L"\"before\"\r\n", run.printed) << "the Wait was abandoned and the run stopped";
    EXPECT_TRUE(run.stopped);
}

TEST(ModalWaits, AUserDialogGivesTheEngineUpWhileItWaitsForInput)
{
    WaitingRun run;
    std::thread waiting([&] {
        run.Run(Lines({L"Sub Main", L"Debug.Print \"before\"", L"Begin Dialog UserDialog 200,80,\"Waiting\"",
                       L"    OKButton 10,10,60,20", L"End Dialog", L"Dim d As UserDialog", L"x = Dialog(d)",
                       L"Debug.Print \"after\"", L"End Sub"}));
    });
    HWND dialog = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        return run.threadId && (dialog = BoxOf(run.threadId, L"__BrannocBasicDynDlgWindow")) != nullptr;
    }));
    EXPECT_TRUE(ServedHere()) << "another thread is served while the dialog waits for input";
    VARIANT_BOOL result = VARIANT_FALSE;
    run.unit.load()->Stop(&result);
    const bool ended = WaitFor([&] { return run.finished.load(); });
    if (!ended && BoxOf(run.threadId, L"__BrannocBasicDynDlgWindow"))
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    waiting.join();
    EXPECT_TRUE(ended) << "the stop closed the dialog";
    EXPECT_EQ(L"\"before\"\r\n", run.printed) << "the statement was abandoned and the run stopped";
    EXPECT_TRUE(run.stopped);
}
