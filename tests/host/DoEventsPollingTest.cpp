// DoEvents polling while a macro runs: none with polling off, at most one per 100 ticks with it on,
// and the default pump: at most 100 messages a poll, a quit message posted again and the macros halted.
// The engine reads a test clock that moves 10 ticks a read, so the polls fall at known clock values.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include <gtest/gtest.h>
#include <atomic>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing_text;
using brannoc::testing::FakeCallBack;

namespace {

std::atomic<DWORD> s_clock{0};

DWORD WINAPI TestClock() { return s_clock += 10; }

constexpr UINT kCounted = WM_USER + 1;

// A message-only window that counts the messages it is sent.
class CountingWindow final {
public:
    CountingWindow()
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &Procedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"BrannocTestCountingWindow";
        RegisterClassW(&windowClass);
        window = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 windowClass.hInstance, nullptr);
        s_handled = 0;
    }
    ~CountingWindow() { DestroyWindow(window); }
    void Post(int count)
    {
        for (int i = 0; i < count; ++i)
            PostMessageW(window, kCounted, 0, 0);
    }
    static int Handled() { return s_handled; }

    HWND window = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == kCounted) {
            ++s_handled;
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }
    static inline int s_handled = 0;
};

class DoEventsPolling : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        callBack.offerDoEvents = true;
        unit->SetCallBack(&callBack);
        unit->Context().Machine().SetTickSource(&TestClock);
    }
    void TearDown() override
    {
        if (!unit)
            return;
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
    }
    // Starts a macro of `passes` loop passes that prints "done" at its end and runs it.
    void RunLoop(int passes)
    {
        callBack.macros[L"loop"] = Lines({L"Sub Main", L"    Dim i As Long, n As Long",
                                          (L"    For i = 1 To " + std::to_wstring(passes)).c_str(),
                                          L"        n = n + 1", L"    Next", L"    Debug.Print \"done\"",
                                          L"End Sub"});
        BSTR name = SysAllocString(L"loop");
        VARIANT_BOOL result = VARIANT_FALSE;
        unit->Start(name, &result);
        SysFreeString(name);
        ASSERT_EQ(VARIANT_TRUE, result);
        unit->Run(0, &result);
    }
    bool IsIdle()
    {
        VARIANT_BOOL idle = VARIANT_FALSE;
        unit->get_IsIdle(&idle);
        return idle == VARIANT_TRUE;
    }

    FakeCallBack callBack;
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
};

} // namespace

TEST_F(DoEventsPolling, OffMakesNoDoEventsCallDuringARun)
{
    unit->put_DoEvents(VARIANT_FALSE);
    const DWORD start = s_clock;
    RunLoop(3000);
    EXPECT_EQ(0, callBack.doEventsCalls);
    EXPECT_EQ(L"\"done\"\r\n", callBack.AllPrinted());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(start, s_clock.load()) << "without polling the engine does not even read the clock";
}

TEST_F(DoEventsPolling, OnPollsBetweenStatementsAtMostOncePerHundredTicks)
{
    unit->put_DoEvents(VARIANT_TRUE);
    std::vector<DWORD> pollTimes;
    callBack.onDoEvents = [&](IDispatch*) { pollTimes.push_back(s_clock.load()); };
    RunLoop(3000);
    EXPECT_EQ(L"\"done\"\r\n", callBack.AllPrinted());
    ASSERT_GE(pollTimes.size(), 3u) << "a run over thousands of clock ticks polls several times";
    for (size_t i = 1; i < pollTimes.size(); ++i)
        EXPECT_GE(pollTimes[i] - pollTimes[i - 1], 100u) << "poll " << i;
}

TEST_F(DoEventsPolling, TheDefaultPumpHandlesAtMostOneHundredMessagesAPoll)
{
    CountingWindow counter;
    counter.Post(250);
    std::vector<int> handledAfterPoll;
    callBack.onDoEvents = [&](IDispatch* engine) {
        KZ_CallBackDoEvents(engine, nullptr);
        handledAfterPoll.push_back(CountingWindow::Handled());
    };
    RunLoop(3000);
    ASSERT_GE(handledAfterPoll.size(), 3u);
    EXPECT_EQ(100, handledAfterPoll[0]);
    EXPECT_EQ(200, handledAfterPoll[1]);
    EXPECT_EQ(250, handledAfterPoll[2]);
    EXPECT_EQ(L"\"done\"\r\n", callBack.AllPrinted());
}

TEST_F(DoEventsPolling, AQuitMessageIsPostedAgainAndHaltsTheMacros)
{
    CountingWindow counter;
    counter.Post(30);
    PostQuitMessage(7);
    int polls = 0;
    callBack.onDoEvents = [&](IDispatch* engine) {
        ++polls;
        KZ_CallBackDoEvents(engine, nullptr);
    };
    RunLoop(3000);
    EXPECT_EQ(1, polls) << "the macro ended at the first poll";
    EXPECT_EQ(30, CountingWindow::Handled()) << "the messages before the quit message were served";
    EXPECT_EQ(L"", callBack.AllPrinted()) << "the macro was halted before its last statement";
    EXPECT_TRUE(IsIdle());
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "the quit message is queued again";
    EXPECT_EQ(7u, message.wParam);
}
