// The end of the multi-thread mode (CU_Yield) lasts for the rest of the process, so it is tested in a
// program of its own: afterwards the resume thread no longer runs, and a macro that gave the engine to
// another thread stays parked until some thread calls KZ_Yield.
#include "brannoc.h"
#include "host/EngineLock.h"
#include "host/ResumeThread.h"
#include "host/ThreadTestEngine.h"
#include <gtest/gtest.h>
#include <atomic>
#include <thread>

using namespace brannoc;
using namespace brannoc::testing;

TEST(MultiThreadModeEnd, AfterCU_YieldAParkedMacroWaitsForKZ_Yield)
{
    ThreadEngine here;
    std::atomic<bool> otherHasObject{false};
    std::atomic<bool> releaseOther{false};
    std::thread holder([&] {
        ThreadEngine there;
        otherHasObject = true;
        WaitFor([&] { return releaseOther.load(); });
    });
    ASSERT_TRUE(WaitFor([&] { return otherHasObject.load(); }));
    EXPECT_TRUE(ResumeThread::IsRunning()) << "objects live on two threads";
    EXPECT_TRUE(EngineLock::MultiThreadMode());

    CU_Yield();
    EXPECT_FALSE(ResumeThread::IsRunning());
    EXPECT_FALSE(EngineLock::MultiThreadMode());

    HostSignal signal(L"BB_TEST_YIELD_DONE");
    std::atomic<bool> began{false};
    std::atomic<bool> returned{false};
    bool idle = false;
    std::wstring printed;
    std::thread runner([&] {
        ThreadEngine engine;
        engine.callBack.onDebugPrint = [&](IDispatch*) { began = true; };
        idle = engine.RunMacro(L"long", CountingMacro(L"BB_TEST_YIELD_DONE"));
        printed = engine.callBack.AllPrinted();
        returned = true;
    });
    ASSERT_TRUE(WaitFor([&] { return began.load(); }));
    EXPECT_FALSE(ResumeThread::IsRunning()) << "the mode stays off: a new thread's object starts nothing";

    // A call from this thread takes the engine from the running macro, which then stays parked: it does
    // not even see the signal that would end its loop.
    EXPECT_TRUE(here.IsIdle());
    EXPECT_EQ(1, EngineLock::ParkedCount());
    signal.Raise();
    Sleep(300);
    EXPECT_FALSE(returned.load()) << "the parked macro did not go on by itself";
    EXPECT_EQ(1, EngineLock::ParkedCount());

    KZ_Yield();
    runner.join();
    EXPECT_EQ(0, EngineLock::ParkedCount());
    EXPECT_TRUE(idle);
    // The macro may have been parked before its loop's first pass (it then sees the signal at once and
    // counts nothing), so only its integrity is fixed here, not whether it counted.
    EXPECT_EQ(0u, printed.rfind(L"\"begin\"\r\n\"intact\"", 0)) << std::wstring(printed);
    releaseOther = true;
    holder.join();
}
