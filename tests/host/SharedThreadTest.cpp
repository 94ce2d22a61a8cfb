// Engine objects sharing one thread: a run asked for while the thread is running another engine's
// statements joins that engine's ring and answers at once; the joined runs follow the ring's own run
// and alternate with each other in time slices until each has ended.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include <gtest/gtest.h>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing_text;
using brannoc::testing::FakeCallBack;

namespace {

// One clock for all engines of the test: each read moves it 10 ticks, so slices and polls fall after a
// known number of reads whatever the machine's speed.
std::atomic<DWORD> s_clock{0};
DWORD WINAPI TestClock() { return s_clock += 10; }

// The order in which the engines' DebugPrint lines arrived, each line prefixed with its engine's tag.
std::vector<std::wstring> s_order;

// What Debug.Print shows for the Long values 1 to n.
std::wstring Counted(int n)
{
    std::wstring text;
    for (int i = 1; i <= n; ++i)
        text += std::to_wstring(i) + L"&\r\n";
    return text;
}

struct Engine {
    explicit Engine(const wchar_t* tagText) : tag(tagText)
    {
        unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
        callBack.offerDoEvents = true;
        callBack.onDebugPrint = [this](IDispatch*) { s_order.push_back(tag + L":" + callBack.printed.back()); };
        unit->SetCallBack(&callBack);
        unit->Context().Machine().SetTickSource(&TestClock);
    }
    ~Engine()
    {
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    // A macro that prints its tag and a counter `prints` times, with a loop of work between the lines.
    void Load(int prints, int work)
    {
        callBack.macros[L"m"] = Lines({L"Sub Main", L"    Dim i As Long, j As Long, n As Long",
                                       (L"    For i = 1 To " + std::to_wstring(prints)).c_str(),
                                       (L"        For j = 1 To " + std::to_wstring(work)).c_str(),
                                       L"            n = n + 1", L"        Next", L"        Debug.Print i",
                                       L"    Next", L"End Sub"});
    }
    bool Start()
    {
        BSTR name = SysAllocString(L"m");
        VARIANT_BOOL result = VARIANT_FALSE;
        unit->Start(name, &result);
        SysFreeString(name);
        return result == VARIANT_TRUE;
    }
    // Run to the end; true while the engine is still active afterwards.
    bool Run()
    {
        VARIANT_BOOL active = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Run(0, &active));
        return active == VARIANT_TRUE;
    }
    bool IsIdle()
    {
        VARIANT_BOOL idle = VARIANT_FALSE;
        unit->get_IsIdle(&idle);
        return idle == VARIANT_TRUE;
    }

    std::wstring tag;
    FakeCallBack callBack;
    CodeUnit* unit = nullptr;
};

class SharedThread : public ::testing::Test {
protected:
    void SetUp() override { s_order.clear(); }

    // Index in the arrival order of a tag's first and last line.
    static std::pair<size_t, size_t> Span(const std::wstring& tag)
    {
        size_t first = s_order.size(), last = 0;
        for (size_t i = 0; i < s_order.size(); ++i) {
            if (s_order[i].rfind(tag + L":", 0) == 0) {
                first = std::min(first, i);
                last = i;
            }
        }
        return {first, last};
    }
};

} // namespace

TEST_F(SharedThread, RunsAskedForDuringAPollJoinTheRingAndFollowInSlices)
{
    Engine a(L"A"), b(L"B"), c(L"C");
    a.Load(3, 2000);
    b.Load(6, 2000);
    c.Load(6, 2000);
    bool joinedActive[2] = {false, false};
    std::wstring printedWhenJoined;
    a.callBack.onDoEvents = [&](IDispatch*) {
        if (b.callBack.reads.empty()) {
            ASSERT_TRUE(b.Start());
            ASSERT_TRUE(c.Start());
            joinedActive[0] = b.Run();
            joinedActive[1] = c.Run();
            printedWhenJoined = b.callBack.AllPrinted() + c.callBack.AllPrinted();
        }
    };
    ASSERT_TRUE(a.Start());
    EXPECT_FALSE(a.Run()) << "the ring's own run ended";

    EXPECT_TRUE(joinedActive[0] && joinedActive[1]) << "a joining run answers Active at once";
    EXPECT_EQ(L"", printedWhenJoined) << "a joined run waits for the ring's scheduler";
    EXPECT_EQ(Counted(3), a.callBack.AllPrinted());
    EXPECT_EQ(Counted(6), b.callBack.AllPrinted());
    EXPECT_EQ(Counted(6), c.callBack.AllPrinted());

    const auto [aFirst, aLast] = Span(L"A");
    const auto [bFirst, bLast] = Span(L"B");
    const auto [cFirst, cLast] = Span(L"C");
    EXPECT_LT(aLast, bFirst) << "the joined runs follow the ring's own run";
    EXPECT_LT(aLast, cFirst);
    EXPECT_LT(cFirst, bLast) << "the joined runs alternate in slices";
    EXPECT_LT(bFirst, cLast);

    for (Engine* engine : {&a, &b, &c}) {
        EXPECT_TRUE(engine->IsIdle()) << engine->tag;
        EXPECT_EQ(1, engine->callBack.Count(2)) << engine->tag << " was told once that its run ended";
        EXPECT_EQ(0, engine->callBack.Count(3)) << engine->tag << " was never stopped";
    }
}

TEST_F(SharedThread, AJoinedRunHaltedBetweenSlicesLeavesTheRing)
{
    Engine a(L"A"), b(L"B"), c(L"C");
    a.Load(2, 2000);
    b.Load(50, 2000);
    c.Load(6, 2000);
    a.callBack.onDoEvents = [&](IDispatch*) {
        if (b.callBack.reads.empty()) {
            ASSERT_TRUE(b.Start());
            ASSERT_TRUE(c.Start());
            b.Run();
            c.Run();
        }
    };
    // C's first poll halts B, whose statements are between slices then.
    c.callBack.onDoEvents = [&](IDispatch*) {
        VARIANT_BOOL ignored;
        if (!b.IsIdle())
            b.unit->HaltAll(&ignored);
    };
    ASSERT_TRUE(a.Start());
    EXPECT_FALSE(a.Run());
    EXPECT_TRUE(b.IsIdle());
    EXPECT_EQ(1, b.callBack.Count(2));
    EXPECT_LT(b.callBack.printed.size(), 50u) << "B ended before its last line";
    EXPECT_EQ(Counted(6), c.callBack.AllPrinted()) << "C ran on to its end";
}

TEST_F(SharedThread, WithoutPollingARunAskedForInACallbackRunsAtOnce)
{
    Engine a(L"A"), b(L"B");
    a.unit->put_DoEvents(VARIANT_FALSE);
    a.Load(2, 10);
    b.Load(2, 10);
    bool bActiveAfterRun = true;
    a.callBack.onDebugPrint = [&](IDispatch*) {
        s_order.push_back(L"A:" + a.callBack.printed.back());
        if (b.callBack.reads.empty()) {
            ASSERT_TRUE(b.Start());
            bActiveAfterRun = b.Run();
        }
    };
    ASSERT_TRUE(a.Start());
    EXPECT_FALSE(a.Run());
    EXPECT_FALSE(bActiveAfterRun) << "no ring: the nested run went to its end inside the call";
    const auto [bFirst, bLast] = Span(L"B");
    const auto [aFirst, aLast] = Span(L"A");
    EXPECT_LT(bLast, aLast) << "B ran between A's first and last line";
}
