// Engine objects on several threads: each thread's objects behave as in a process of their own, a call
// from one thread is served while another thread's macro runs (that macro waits between statements and
// then goes on to its normal end), the resume thread gives running threads turns, and the host's
// control word and error mode are what the host set whenever its code runs.
#include "brannoc.h"
#include "host/EngineLock.h"
#include "host/EntryGuard.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include "host/ResumeThread.h"
#include "host/ThreadContext.h"
#include "host/ThreadTestEngine.h"
#include <gtest/gtest.h>
#include <cstdlib>
#include <float.h>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing;

// Three threads, each with its own engine object, hammer captions, states and short runs at once: no
// crash, every run's output arrives, and each engine is idle after its run.
TEST(EngineThreads, ObjectsOnDifferentThreadsAreAsIndependentAsSeparateProcesses)
{
    constexpr int kThreads = 3;
    constexpr int kRounds = 160;
    std::atomic<int> failures{0};
    std::vector<std::wstring> reports(kThreads);
    auto work = [&](int index) {
        ThreadEngine engine;
        if (!engine.unit) {
            ++failures;
            return;
        }
        const std::wstring macro = Lines({L"Sub Main", L"    Dim i As Integer, total As Integer",
                                          L"    For i = 1 To 10", L"        total = total + i", L"    Next",
                                          L"    Debug.Print \"total\"; total", L"End Sub"});
        int runs = 0;
        for (int round = 0; round < kRounds; ++round) {
            const std::wstring caption = L"thread " + std::to_wstring(index) + L" round " + std::to_wstring(round);
            engine.SetCaption(caption);
            if (engine.Caption() != caption || !engine.IsIdle()) {
                reports[index] += L"caption or state wrong in round " + std::to_wstring(round) + L"\n";
                ++failures;
            }
            if (round % 8 == 0) {
                ++runs;
                if (!engine.RunMacro(L"m" + std::to_wstring(index), macro)) {
                    reports[index] += L"run not idle afterwards in round " + std::to_wstring(round) + L"\n";
                    ++failures;
                }
            }
        }
        std::wstring expected;
        for (int i = 0; i < runs; ++i)
            expected += L"\"total\"55%\r\n";
        if (engine.callBack.AllPrinted() != expected) {
            reports[index] += L"printed " + std::to_wstring(engine.callBack.printed.size()) + L" of " +
                              std::to_wstring(runs) + L" lines\n";
            ++failures;
        }
        if (engine.callBack.badCalls != 0)
            ++failures;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < kThreads; ++i)
        EXPECT_EQ(L"", reports[i]) << "thread " << i;
    EXPECT_EQ(0, failures.load());
}

// While thread A runs a long macro, thread B's calls on its own engine object are served: A's macro
// waits between statements meanwhile (it gives the engine to B) and afterwards runs to its normal end
// with its results intact.
TEST(EngineThreads, ACallFromASecondThreadIsServedWhileAMacroRuns)
{
    HostSignal signal(L"BB_TEST_SERVED_DONE");
    std::atomic<bool> aBegan{false};
    std::atomic<bool> aReturned{false};
    bool aIdle = false;
    std::wstring aPrinted;
    std::thread a([&] {
        ThreadEngine engine;
        engine.callBack.onDebugPrint = [&](IDispatch*) { aBegan = true; };
        aIdle = engine.RunMacro(L"long", CountingMacro(L"BB_TEST_SERVED_DONE"));
        aReturned = true;
        aPrinted = engine.callBack.AllPrinted();
    });
    ASSERT_TRUE(WaitFor([&] { return aBegan.load(); }));

    bool servedWhileARan = true;
    long handOversBefore = EngineLock::HandOverCount();
    std::thread b([&] {
        ThreadEngine engine;
        for (int i = 0; i < 20; ++i) {
            engine.SetCaption(L"served " + std::to_wstring(i));
            servedWhileARan = servedWhileARan && engine.Caption() == L"served " + std::to_wstring(i);
        }
        servedWhileARan = servedWhileARan && engine.RunMacro(L"short", Lines({L"Sub Main", L"Debug.Print 6 * 7", L"End Sub"}));
        servedWhileARan = servedWhileARan && engine.callBack.AllPrinted() == L"42%\r\n";
        servedWhileARan = servedWhileARan && !aReturned.load();
    });
    b.join();
    const long handOvers = EngineLock::HandOverCount() - handOversBefore;
    signal.Raise();
    a.join();
    EXPECT_TRUE(servedWhileARan) << "B's calls were served and answered while A's macro still ran";
    EXPECT_GE(handOvers, 1) << "A's macro gave the engine to B between statements";
    EXPECT_TRUE(aIdle) << "A's Run returned with the engine idle";
    EXPECT_EQ(L"\"begin\"\r\n\"intact\"True\r\n", aPrinted);
}

// The number of calls of the hand-over stress test: `normal`, or BRANNOC_STRESS_CALLS when set.
static int CallsForStress(int normal)
{
    char text[16] = "";
    const DWORD length = GetEnvironmentVariableA("BRANNOC_STRESS_CALLS", text, sizeof text);
    const int asked = length > 0 && length < sizeof text ? std::atoi(text) : 0;
    return asked > 0 ? asked : normal;
}

// Many hand-overs: a thread makes short calls in a tight loop while another thread's macro runs; every
// call takes the engine from the running thread and gives it back. Nothing hangs and the macro neither
// loses nor repeats a statement.
TEST(EngineThreads, ManyHandOversLoseAndRepeatNoStatement)
{
    // The suite makes 10 000 calls; a longer stress run sets BRANNOC_STRESS_CALLS (README).
    const int kCalls = CallsForStress(10000);
    HostSignal signal(L"BB_TEST_MANY_DONE");
    std::atomic<bool> aBegan{false};
    bool aIdle = false;
    std::wstring aPrinted;
    std::thread a([&] {
        ThreadEngine engine;
        engine.callBack.onDebugPrint = [&](IDispatch*) { aBegan = true; };
        aIdle = engine.RunMacro(L"long", CountingMacro(L"BB_TEST_MANY_DONE"));
        aPrinted = engine.callBack.AllPrinted();
    });
    ASSERT_TRUE(WaitFor([&] { return aBegan.load(); }));
    const long before = EngineLock::HandOverCount();
    int answered = 0;
    std::thread b([&] {
        ThreadEngine engine;
        for (int i = 0; i < kCalls; ++i)
            answered += engine.IsIdle() ? 1 : 0;
    });
    b.join();
    const long handOvers = EngineLock::HandOverCount() - before;
    signal.Raise();
    a.join();
    EXPECT_EQ(kCalls, answered);
    EXPECT_GE(handOvers, kCalls / 2) << "most calls found the macro running and took the engine from it";
    EXPECT_TRUE(aIdle);
    EXPECT_EQ(L"\"begin\"\r\n\"intact\"True\r\n", aPrinted);
}

// The resume thread runs while engine objects live on two threads and stops when the object of the
// second thread goes; threads that run macros at the same time then take turns.
TEST(EngineThreads, TheResumeThreadRunsWhileObjectsLiveOnTwoThreads)
{
    ThreadEngine here;
    EXPECT_FALSE(ResumeThread::IsRunning());
    bool runningWithTwo = false;
    bool runningAfterwards = true;
    std::thread other([&] {
        {
            ThreadEngine there;
            runningWithTwo = ResumeThread::IsRunning();
        }
        runningAfterwards = ResumeThread::IsRunning();
    });
    other.join();
    EXPECT_TRUE(runningWithTwo);
    EXPECT_FALSE(runningAfterwards);
}

TEST(EngineThreads, ThreadsThatRunMacrosAtTheSameTimeTakeTurns)
{
    HostSignal signal(L"BB_TEST_TURNS_DONE");
    std::atomic<int> began{0};
    std::wstring printed[2];
    bool idle[2] = {false, false};
    auto run = [&](int index) {
        ThreadEngine engine;
        engine.callBack.onDebugPrint = [&](IDispatch*) { ++began; };
        idle[index] = engine.RunMacro(L"turns", CountingMacro(L"BB_TEST_TURNS_DONE"));
        printed[index] = engine.callBack.AllPrinted();
    };
    std::thread first(run, 0);
    ASSERT_TRUE(WaitFor([&] { return began.load() >= 1; }));
    std::thread second(run, 1);
    ASSERT_TRUE(WaitFor([&] { return began.load() >= 2; }));
    // Both macros are in their loops now; neither makes a call out of the engine, so the engine changes
    // hands only when the resume thread gives the parked one its turn.
    const long before = EngineLock::HandOverCount();
    const bool alternated = WaitFor([&] { return EngineLock::HandOverCount() - before >= 6; });
    signal.Raise();
    first.join();
    second.join();
    EXPECT_TRUE(alternated) << "the two runs took turns several times";
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(idle[i]) << i;
        EXPECT_EQ(L"\"begin\"\r\n\"intact\"True\r\n", printed[i]) << i;
    }
}

namespace {

UINT CurrentErrorMode()
{
    const UINT mode = SetErrorMode(0);
    SetErrorMode(mode);
    return mode;
}

} // namespace

// The host's floating-point control word and error mode hold whenever host code runs: after every call
// and inside the callbacks, while engine code runs with its own.
TEST(EngineThreads, TheHostsControlWordAndErrorModeHoldOutsideEngineCode)
{
    std::thread host([] {
        _controlfp(_PC_24 | _RC_CHOP, _MCW_PC | _MCW_RC);
        const UINT hostMode = SEM_NOGPFAULTERRORBOX;
        SetErrorMode(hostMode);
        const unsigned hostWord = _controlfp(0, 0) & EntryGuard::kControlMask;
        {
            ThreadEngine engine;
            std::vector<unsigned> wordsInCallBacks;
            std::vector<UINT> modesInCallBacks;
            engine.callBack.onDebugPrint = [&](IDispatch*) {
                wordsInCallBacks.push_back(_controlfp(0, 0) & EntryGuard::kControlMask);
                modesInCallBacks.push_back(CurrentErrorMode());
            };
            engine.SetCaption(L"x");
            EXPECT_EQ(hostWord, _controlfp(0, 0) & EntryGuard::kControlMask);
            EXPECT_EQ(hostMode, CurrentErrorMode());
            EXPECT_TRUE(engine.RunMacro(L"fp", Lines({L"Sub Main", L"Debug.Print 1 / 3", L"Debug.Print 2", L"End Sub"})));
            EXPECT_EQ(L"0.333333333333333#\r\n2%\r\n", engine.callBack.AllPrinted()) << "engine code ran in double precision";
            EXPECT_EQ((std::vector<unsigned>{hostWord, hostWord}), wordsInCallBacks);
            EXPECT_EQ((std::vector<UINT>{hostMode, hostMode}), modesInCallBacks);
            EXPECT_TRUE(engine.IsIdle());
            EXPECT_EQ(hostWord, _controlfp(0, 0) & EntryGuard::kControlMask);
            EXPECT_EQ(hostMode, CurrentErrorMode());
        }
        EXPECT_EQ(hostWord, _controlfp(0, 0) & EntryGuard::kControlMask);
        EXPECT_EQ(hostMode, CurrentErrorMode());
        SetErrorMode(0);
    });
    host.join();
}

// A callback that calls its engine object again does not deadlock; an end it requests there is carried
// out once the callback has returned. Meanwhile other threads are served: the engine is not held during
// the callback.
TEST(EngineThreads, ACallBackMayCallItsEngineAgainAndOtherThreadsAreServedMeanwhile)
{
    ThreadEngine engine;
    bool activeInCallBack = false;
    bool otherThreadServed = false;
    engine.callBack.onDebugPrint = [&](IDispatch* caller) {
        if (engine.callBack.printed.size() != 1)
            return;
        _CodeUnit* unit = nullptr;
        ASSERT_EQ(S_OK, caller->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&unit)));
        VARIANT_BOOL state = VARIANT_FALSE;
        unit->get_IsActive(&state);
        activeInCallBack = state == VARIANT_TRUE;
        unit->HaltAll(&state);
        unit->Release();
        std::thread other([&] {
            ThreadEngine second;
            otherThreadServed = second.RunMacro(L"other", Lines({L"Sub Main", L"Debug.Print 5", L"End Sub"})) &&
                                second.callBack.AllPrinted() == L"5%\r\n";
        });
        other.join();
    };
    EXPECT_TRUE(engine.RunMacro(L"again", Lines({L"Sub Main", L"Debug.Print \"one\"", L"Debug.Print \"two\"", L"End Sub"})));
    EXPECT_TRUE(activeInCallBack);
    EXPECT_TRUE(otherThreadServed);
    EXPECT_EQ(L"\"one\"\r\n", engine.callBack.AllPrinted()) << "the end came after the callback, before the next statement";
    EXPECT_TRUE(engine.IsIdle());
}

namespace {

BOOL CALLBACK CollectTimerWindow(HWND window, LPARAM found)
{
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    if (std::wstring(name) == ThreadContext::kTimerWindowClass)
        reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
    return TRUE;
}

} // namespace

// Each thread that uses the engine has one hidden timer window, which goes when the thread ends.
TEST(EngineThreads, EachThreadHasOneHiddenTimerWindowUntilItEnds)
{
    DWORD threadId = 0;
    long liveWhileUsed = 0;
    std::vector<HWND> windows;
    std::thread user([&] {
        threadId = GetCurrentThreadId();
        ThreadEngine engine;
        engine.SetCaption(L"first");
        ThreadEngine another;
        another.SetCaption(L"second");
        EnumThreadWindows(threadId, &CollectTimerWindow, reinterpret_cast<LPARAM>(&windows));
        ASSERT_EQ(1u, windows.size());
        EXPECT_EQ(windows[0], ThreadContext::Existing()->TimerWindow());
        liveWhileUsed = ThreadContext::LiveCount();
        EXPECT_FALSE(IsWindowVisible(windows[0]));
        EXPECT_EQ(nullptr, GetParent(windows[0]));
        EXPECT_EQ(ThreadContext::kTimerWindowStyle,
                  static_cast<DWORD>(GetWindowLongW(windows[0], GWL_STYLE)) & ThreadContext::kTimerWindowStyle);
    });
    user.join();
    ASSERT_EQ(1u, windows.size());
    EXPECT_FALSE(IsWindow(windows[0]));
    EXPECT_EQ(liveWhileUsed - 1, ThreadContext::LiveCount()) << "the thread's record went with the thread";
}
