// Host calls into macros (handlers, fire objects) that stop for debugging: a break point or a step into
// the call stops the engine inside the call, the caller waits serving the host's DoEvents, the host's
// debugger looks at the stopped call through the engine object and goes on with Run or Step, and the
// call returns when its procedure ends. Also what halts, busy engines and other threads do to a call.
#include "brannoc.h"
#include "host/HostTestText.h"
#include "host/MacroEngine.h"
#include <gtest/gtest.h>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing;
using namespace brannoc::testing_text;

namespace {

// The lines are numbered by the comments.
const std::wstring kMacro = Lines({
    L"Sub Main",                                        // 1
    L"End Sub",                                         // 2
    L"Function Total(a As Long, b As Long) As Long",    // 3
    L"    Dim sum As Long",                             // 4
    L"    sum = a + b",                                 // 5
    L"    Debug.Print sum",                             // 6
    L"    Total = sum",                                 // 7
    L"End Function",                                    // 8
    L"Sub Twice",                                       // 9
    L"    Debug.Print \"first\"",                       // 10
    L"    Debug.Print \"second\"",                      // 11
    L"End Sub",                                         // 12
    L"Sub Risky",                                       // 13
    L"    Stop",                                        // 14
    L"    Err.Raise 1007, , \"Late failure\"",          // 15
    L"End Sub",                                         // 16
});

// A macro that the host starts and stops at its line 3.
const std::wstring kJob = Lines({
    L"Sub Main",                        // 1
    L"    Debug.Print \"job\"",         // 2
    L"    Debug.Print \"job end\"",     // 3
    L"End Sub",                         // 4
});

using Texts = std::vector<std::wstring>;

class HostCallDebuggingTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(engine.Load(L"lib", kMacro));
        engine.callBack.macros[L"job"] = kJob;
        // DoEvents comes only from the waiting calls: running statements do not poll it.
        ASSERT_EQ(S_OK, engine.unit->put_DoEvents(VARIANT_FALSE));
        // The host's debugger: each DoEvents call while a call waits carries out the next step of the
        // script. A script that runs out halts everything, so that a wrong wait cannot hang the test.
        engine.callBack.offerDoEvents = true;
        engine.callBack.onDoEvents = [this](IDispatch*) {
            if (next < script.size()) {
                script[next++]();
                return;
            }
            ranOut = true;
            VARIANT_BOOL ignored;
            engine.unit->HaltAll(&ignored);
        };
    }
    IDispatch* Handler(const wchar_t* prototype) { return engine.CreateHandler(prototype); }
    IDispatch* Fire(bool debugging)
    {
        IDispatch* fire = nullptr;
        EXPECT_EQ(S_OK, engine.unit->get_Fire(debugging ? VARIANT_TRUE : VARIANT_FALSE, &fire));
        return engine.Keep(fire);
    }

    bool Flag(HRESULT (__stdcall _CodeUnit::*member)(VARIANT_BOOL*))
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, (engine.unit->*member)(&result));
        return result == VARIANT_TRUE;
    }
    bool IsStopped() { return Flag(&_CodeUnit::get_IsStopped); }
    bool IsIdle() { return Flag(&_CodeUnit::get_IsIdle); }
    bool IsPaused() { return Flag(&_CodeUnit::get_IsPaused); }
    bool Continue() { return Flag(&_CodeUnit::Continue); }
    bool Step() { return Flag(&_CodeUnit::Step); }
    bool HaltAll() { return Flag(&_CodeUnit::HaltAll); }
    bool Run(short depth)
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine.unit->Run(depth, &result));
        return result == VARIANT_TRUE;
    }
    bool Start(const wchar_t* name)
    {
        BSTR text = SysAllocString(name);
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine.unit->Start(text, &result));
        SysFreeString(text);
        return result == VARIANT_TRUE;
    }
    bool Toggle(const wchar_t* macro, short line)
    {
        BSTR name = SysAllocString(macro);
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine.unit->ToggleBreak(name, line, &result));
        SysFreeString(name);
        return result == VARIANT_TRUE;
    }
    std::wstring CurrentLine()
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, engine.unit->get_CurrentLine(&text));
        return TakeText(text);
    }
    std::wstring CallersLine(short depth)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, engine.unit->get_CallersLine(depth, &text));
        return TakeText(text);
    }
    short StackDepth()
    {
        short depth = -1;
        EXPECT_EQ(S_OK, engine.unit->get_StackDepth(&depth));
        return depth;
    }
    std::wstring Evaluate(const wchar_t* expression, short depth)
    {
        BSTR text = SysAllocString(expression);
        BSTR result = nullptr;
        EXPECT_EQ(S_OK, engine.unit->get_Evaluate(text, depth, &result));
        SysFreeString(text);
        return TakeText(result);
    }
    // The job macro started and stopped at the break point on its line 3; nothing printed kept.
    void StopTheJob()
    {
        ASSERT_TRUE(Start(L"job"));
        ASSERT_TRUE(Toggle(L"job", 3));
        EXPECT_FALSE(Run(0));
        ASSERT_TRUE(IsStopped());
        engine.callBack.printed.clear();
        engine.callBack.notifications.clear();
    }
    const Texts& Printed() const { return engine.callBack.printed; }
    int Count(short code) const { return engine.callBack.Count(code); }

    MacroEngine engine;
    std::vector<std::function<void()>> script;
    std::size_t next = 0;
    bool ranOut = false;
};

} // namespace

TEST_F(HostCallDebuggingTest, AHandlerCallStoppedAtABreakPointReturnsWhenTheHostRunsItToItsEnd)
{
    ASSERT_TRUE(Toggle(L"lib", 6));
    IDispatch* total = Handler(L"Function Total(a As Long, b As Long) As Long");
    bool stopped = false;
    bool paused = true;
    std::wstring line, value;
    short depth = -1;
    int stopsSeen = 0;
    script = {
        [&] {
            stopsSeen = Count(3);
            stopped = IsStopped();
            paused = IsPaused();
            line = CurrentLine();
            depth = StackDepth();
            value = Evaluate(L"sum * 2", 0);
        },
        [&] {
            EXPECT_TRUE(Continue());
            EXPECT_FALSE(Run(0)) << "the call's run ended with it";
        },
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Long(2).Long(3).Invoke(total, 2));
    ASSERT_EQ(VT_I4, call.result.Tag());
    EXPECT_EQ(5, call.result.Raw().lVal);

    EXPECT_EQ(1, stopsSeen) << "the host heard that the engine stopped";
    EXPECT_TRUE(stopped);
    EXPECT_FALSE(paused) << "no statement executes while the call waits";
    EXPECT_EQ(L"[lib|Total#  6] Debug.Print sum", line);
    EXPECT_EQ(1, depth);
    EXPECT_EQ(L"10&", value);
    EXPECT_EQ(2u, next);
    EXPECT_FALSE(ranOut);
    EXPECT_EQ((Texts{L"5&\r\n"}), Printed()) << "line 6 ran once, after the stop";
    EXPECT_EQ(1, Count(3));
    EXPECT_EQ(1, Count(4));
    EXPECT_TRUE(IsIdle());
}

TEST_F(HostCallDebuggingTest, AStepAskedForWhileIdleStopsTheNextHandlerCallAtItsFirstLine)
{
    IDispatch* total = Handler(L"Function Total(a As Long, b As Long) As Long");
    EXPECT_FALSE(Step()) << "nothing is active: the step waits for the next host call";
    std::wstring first, second, third;
    script = {
        [&] {
            first = CurrentLine();
            EXPECT_TRUE(Continue());
            EXPECT_TRUE(Step());
            second = CurrentLine();
        },
        [&] {
            EXPECT_TRUE(Step());
            third = CurrentLine();
        },
        [&] { Run(0); },
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Long(4).Long(5).Invoke(total, 2));
    EXPECT_EQ(9, call.result.Raw().lVal);
    EXPECT_EQ(L"[lib|Total#  3] Function Total(a As Long, b As Long) As Long", first);
    EXPECT_EQ(L"[lib|Total#  5] sum = a + b", second) << "the declaration line is not a statement";
    EXPECT_EQ(L"[lib|Total#  6] Debug.Print sum", third);
    EXPECT_EQ((Texts{L"9&\r\n"}), Printed());
    EXPECT_FALSE(ranOut);
    EXPECT_TRUE(IsIdle());

    // The step was used up: the next call runs through.
    LateCall again;
    ASSERT_EQ(S_OK, again.Long(1).Long(1).Invoke(total, 2));
    EXPECT_EQ(2, again.result.Raw().lVal);
    EXPECT_EQ(3u, next);
}

TEST_F(HostCallDebuggingTest, AHandlerMarkedStepIntoStopsAtItsFirstLineEachTime)
{
    IDispatch* twice = Handler(L"Sub Twice()");
    Variant on;
    on.SetBoolean(true);
    LateCall put;
    ASSERT_EQ(S_OK, put.Add(std::move(on)).Invoke(twice, 4, DISPATCH_PROPERTYPUT, false));
    std::vector<std::wstring> lines;
    auto stopThenRun = [&] {
        lines.push_back(CurrentLine());
        EXPECT_TRUE(Continue());
        Run(0);
    };
    script = {stopThenRun, stopThenRun};
    LateCall call;
    ASSERT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    LateCall again;
    ASSERT_EQ(S_OK, again.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ((Texts{L"[lib|Twice#  9] Sub Twice", L"[lib|Twice#  9] Sub Twice"}), lines);
    EXPECT_EQ(4u, Printed().size());
    EXPECT_FALSE(ranOut);
}

TEST_F(HostCallDebuggingTest, ADebuggingFireIntoAStoppedEngineStopsInTheCallAndLeavesTheEngineStopped)
{
    StopTheJob();
    IDispatch* fire = Fire(true);
    std::wstring line, caller;
    short depth = -1;
    script = {
        [&] {
            line = CurrentLine();
            caller = CallersLine(1);
            depth = StackDepth();
            EXPECT_TRUE(Continue());
            Run(0);
        },
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Text(L"Twice").Invoke(fire, 2));
    EXPECT_EQ(L"[lib|Twice#  9] Sub Twice", line);
    EXPECT_EQ(L"[job|Main#  3] Debug.Print \"job end\"", caller);
    EXPECT_EQ(2, depth) << "the stopped macro's frame is below the call's";
    EXPECT_EQ((Texts{L"\"first\"\r\n", L"\"second\"\r\n"}), Printed()) << "the run ended with the call";
    EXPECT_FALSE(ranOut);

    // The stopped macro is where it was, and goes on from there.
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(L"[job|Main#  3] Debug.Print \"job end\"", CurrentLine());
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(L"\"job end\"\r\n", Printed().back());
    EXPECT_TRUE(IsIdle());

    // A plain fire object runs through break points.
    ASSERT_TRUE(Toggle(L"lib", 11));
    LateCall plain;
    ASSERT_EQ(S_OK, plain.Text(L"Twice").Invoke(Fire(false), 2));
    EXPECT_EQ(L"\"second\"\r\n", Printed().back());
    EXPECT_EQ(1u, next) << "the plain call never waited";
}

TEST_F(HostCallDebuggingTest, AHandlerCallIntoAStoppedEngineIsCarriedOutWhileTheCallerWaits)
{
    StopTheJob();
    IDispatch* twice = Handler(L"Sub Twice()");
    std::wstring line;
    script = {
        [&] {
            line = CurrentLine();
            EXPECT_TRUE(Continue());
            Run(0);
        },
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(L"[lib|Twice#  9] Sub Twice", line);
    EXPECT_EQ((Texts{L"\"first\"\r\n", L"\"second\"\r\n"}), Printed());
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(L"[job|Main#  3] Debug.Print \"job end\"", CurrentLine());
    EXPECT_EQ(2, Count(3)) << "stopped in the call, and again where the macro was";
    EXPECT_EQ(1, Count(4));
}

TEST_F(HostCallDebuggingTest, AStopStatementStopsAHandlerCallAndAnErrorAfterwardsEndsIt)
{
    IDispatch* risky = Handler(L"Sub Risky()");
    std::wstring line;
    script = {
        [&] {
            line = CurrentLine();
            EXPECT_TRUE(Continue());
            Run(0);
        },
    };
    LateCall call;
    EXPECT_EQ(DISP_E_EXCEPTION, call.Invoke(risky, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(L"[lib|Risky# 14] Stop", line);
    EXPECT_EQ(1007, call.exception.wCode);
    EXPECT_EQ(L"Late failure", call.Description());
    EXPECT_EQ(1u, next) << "the error ended the wait";
    EXPECT_FALSE(ranOut);
    EXPECT_TRUE(IsIdle());
}

TEST_F(HostCallDebuggingTest, HaltAllWhileACallWaitsEndsTheCallAndThenEverything)
{
    ASSERT_TRUE(Toggle(L"lib", 11));
    IDispatch* twice = Handler(L"Sub Twice()");
    bool haltAnswer = true;
    script = {[&] { haltAnswer = HaltAll(); }};
    LateCall call;
    EXPECT_EQ(DISP_E_EXCEPTION, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(10202, call.exception.wCode);
    EXPECT_EQ(L"Basic call failed.", call.Description());
    EXPECT_FALSE(haltAnswer) << "kept for the end of the call";
    EXPECT_EQ((Texts{L"\"first\"\r\n"}), Printed());
    EXPECT_TRUE(IsIdle());
    EXPECT_FALSE(ranOut);
}

TEST_F(HostCallDebuggingTest, HaltAllFromInsideAHandlerCallIsCarriedOutWhenTheCallReturns)
{
    ASSERT_TRUE(Start(L"job"));
    IDispatch* twice = Handler(L"Sub Twice()");
    bool haltAnswer = true;
    bool asked = false;
    engine.callBack.onDebugPrint = [&](IDispatch*) {
        if (!std::exchange(asked, true))
            haltAnswer = HaltAll();
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_FALSE(haltAnswer);
    EXPECT_EQ((Texts{L"\"first\"\r\n", L"\"second\"\r\n"}), Printed()) << "the call ran to its end";
    EXPECT_TRUE(IsIdle()) << "the started macro ended when the call returned";
}

TEST_F(HostCallDebuggingTest, SettingTheStackDepthIsIgnoredWhileACallWaits)
{
    ASSERT_TRUE(Toggle(L"lib", 10));
    IDispatch* twice = Handler(L"Sub Twice()");
    short depth = -1;
    script = {
        [&] {
            engine.unit->put_StackDepth(0);
            depth = StackDepth();
            EXPECT_TRUE(Continue());
            Run(0);
        },
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(1, depth);
    EXPECT_EQ(2u, Printed().size());
}

TEST_F(HostCallDebuggingTest, AHandlerCallThatLeavesTheEngineBusyAnswersEAbort)
{
    IDispatch* twice = Handler(L"Sub Twice()");
    IDispatch* fire = Fire(false);
    HRESULT handlerOutcome = S_FALSE;
    HRESULT fireOutcome = S_FALSE;
    engine.callBack.onNotify = [&](IDispatch*, short code) {
        if (code != 9 || handlerOutcome != S_FALSE)
            return;
        // Made while the engine compiles: the procedure runs, and the engine is still busy afterwards.
        LateCall call;
        handlerOutcome = call.Invoke(twice, 1, DISPATCH_METHOD, false);
        LateCall byName;
        fireOutcome = byName.Text(L"Twice").Invoke(fire, 2);
    };
    ASSERT_TRUE(engine.Load(L"second", L"Sub Main\r\nEnd Sub\r\n")) << "the compile went on undisturbed";
    EXPECT_EQ(E_ABORT, handlerOutcome);
    EXPECT_EQ(S_OK, fireOutcome) << "a fire object has no such answer";
    EXPECT_EQ(4u, Printed().size());
    EXPECT_TRUE(engine.IsIdle());

    // Once the compile is over the handler answers S_OK again.
    LateCall call;
    EXPECT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
}

TEST_F(HostCallDebuggingTest, ADebuggingFireFromAnotherThreadDoesNotBreakIntoARunningStatement)
{
    ASSERT_TRUE(Start(L"job"));
    IDispatch* debugging = Fire(true);
    IDispatch* plain = Fire(false);
    HRESULT debuggingOutcome = S_FALSE;
    long debuggingError = 0;
    HRESULT plainOutcome = S_FALSE;
    bool called = false;
    engine.callBack.onDebugPrint = [&](IDispatch*) {
        if (std::exchange(called, true))
            return;
        // The job's Debug.Print is in progress on this thread while the other thread calls in.
        std::thread other([&] {
            LateCall first;
            debuggingOutcome = first.Text(L"Twice").Invoke(debugging, 2);
            debuggingError = first.exception.wCode;
            LateCall second;
            plainOutcome = second.Text(L"Twice").Invoke(plain, 2);
        });
        other.join();
    };
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(DISP_E_EXCEPTION, debuggingOutcome);
    EXPECT_EQ(10201, debuggingError);
    EXPECT_EQ(S_OK, plainOutcome);
    EXPECT_EQ((Texts{L"\"job\"\r\n", L"\"first\"\r\n", L"\"second\"\r\n", L"\"job end\"\r\n"}), Printed());
    EXPECT_TRUE(IsIdle());
}

TEST_F(HostCallDebuggingTest, ACallRunOnToItsEndTellsTheHostPostMacroRunBeforeTheEngineStopsAgain)
{
    StopTheJob();
    IDispatch* twice = Handler(L"Sub Twice()");
    engine.callBack.offerPostMacroRun = true;
    std::size_t printedThen = 0;
    int stopsThen = -1;
    engine.callBack.onPostMacroRun = [&](IDispatch*) {
        printedThen = Printed().size();
        stopsThen = Count(3);
    };
    // Stopped at the procedure's first line, the host runs it on without a target depth.
    script = {[&] {
        EXPECT_TRUE(Continue());
        Run(0);
    }};
    LateCall call;
    ASSERT_EQ(S_OK, call.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(1, engine.callBack.postMacroRunCalls);
    EXPECT_EQ(2u, printedThen) << "after the procedure's end";
    EXPECT_EQ(1, stopsThen) << "before the stop where the macro was";
    EXPECT_EQ(2, Count(3));
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(0, engine.callBack.badCalls);

    // A call into an idle engine ends its run with it: nothing to tell.
    HaltAll();
    ASSERT_TRUE(IsIdle());
    Variant on;
    on.SetBoolean(true);
    LateCall put;
    ASSERT_EQ(S_OK, put.Add(std::move(on)).Invoke(twice, 4, DISPATCH_PROPERTYPUT, false));
    script.push_back([&] {
        EXPECT_TRUE(Continue());
        Run(0);
    });
    LateCall again;
    ASSERT_EQ(S_OK, again.Invoke(twice, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(4u, Printed().size());
    EXPECT_EQ(1, engine.callBack.postMacroRunCalls);
    EXPECT_TRUE(IsIdle());
    EXPECT_FALSE(ranOut);
}
