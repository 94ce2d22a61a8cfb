#include "exec/Interpreter.h"

#include "exec/CallEndMarker.h"
#include "exec/ExecFakes.h"
#include "values/ValueError.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::FakeHost;
using testing::TestProcedure;

class InterpreterTest : public ::testing::Test {
protected:
    InterpreterTest() { host.interpreter = &interpreter; }

    // Drives the run the way the host's scheduler does; answers the number of steps taken.
    int RunToStop(int limit = 1000000)
    {
        interpreter.PrepareRun(0);
        int steps = 0;
        while (steps < limit && interpreter.RunStep(false) != 0)
            ++steps;
        return steps;
    }

    // Statement that counts its executions in counter.
    static std::function<bool()> Counter(int& counter)
    {
        return [&counter] {
            ++counter;
            return true;
        };
    }

    void ExpectIdleAndClean()
    {
        EXPECT_EQ(interpreter.ExecutionDepth(), 0u);
        EXPECT_EQ(interpreter.PendingDepth(), 0u);
        EXPECT_EQ(interpreter.CallDepth(), 0);
        EXPECT_EQ(interpreter.RunLevel(), 0);
        EXPECT_EQ(interpreter.Values().Size(), 0u);
        EXPECT_EQ(interpreter.CurrentActivation(), nullptr);
        EXPECT_EQ(interpreter.EntryActivations(), nullptr);
    }

    FakeHost host;
    Interpreter interpreter{host};
    InterpreterScope scope{interpreter};
};

TEST_F(InterpreterTest, NestedRunEndsWithEmptyStacksAndOneStartAndEnd)
{
    int counted = 0;
    TestProcedure inner, middle, main;
    inner.Add(Counter(counted)).AddBlank().Add(Counter(counted));
    middle.Add(Counter(counted)).AddCall(inner).AddBlank().Add(Counter(counted));
    main.AddBlank().Add(Counter(counted)).AddCall(middle).Add(Counter(counted));

    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    EXPECT_EQ(counted, 0) << "starting runs no statement";
    EXPECT_EQ(interpreter.ExecutionDepth(), 2u) << "the activation above its call-end marker";
    EXPECT_EQ(interpreter.CallDepth(), 1);
    EXPECT_EQ(interpreter.RunLevel(), 1);

    RunToStop();

    EXPECT_EQ(counted, 6);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunStarted), 1);
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
    EXPECT_EQ(host.notifications.front(), InterpreterHost::kNotifyRunStarted);
    EXPECT_EQ(host.notifications.back(), InterpreterHost::kNotifyRunEnded);
    EXPECT_TRUE(host.untrappedErrors.empty());
}

TEST_F(InterpreterTest, ExecutionEntriesAreReusedWithoutGrowingInSteadyState)
{
    int counted = 0;
    TestProcedure leaf, main;
    leaf.Add(Counter(counted));
    for (int i = 0; i < 200; ++i)
        main.AddCall(leaf);
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    EXPECT_EQ(counted, 200);
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, SingleStepsAdvanceOneStatementEach)
{
    int counted = 0;
    TestProcedure main;
    main.Add(Counter(counted)).AddBlank().Add(Counter(counted)).Add(Counter(counted));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));

    // The first step stops before the first statement; every further one runs exactly one.
    for (int round = 0; round < 3; ++round) {
        interpreter.PrepareRun(9999);
        while (interpreter.RunStep(true) != 0) {
        }
        EXPECT_EQ(counted, round) << "after step " << round;
        EXPECT_EQ(host.CountActions(InterpreterHost::kActionQuery), round + 1) << "after step " << round;
        EXPECT_EQ(interpreter.RunLevel(), 1) << "a finished step leaves the run active";
        EXPECT_EQ(interpreter.StepCounter(), 0);
    }
    // The step over the last statement runs off the end of the macro, which ends the run.
    interpreter.PrepareRun(9999);
    while (interpreter.RunStep(true) != 0) {
    }
    EXPECT_EQ(counted, 3);
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionQuery), 3);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
}

TEST_F(InterpreterTest, PendingStopIsCarriedOutBeforeTheNextStatement)
{
    int before = 0, after = 0;
    TestProcedure main;
    main.Add(Counter(before))
        .Add([this] { return interpreter.RequestAction(InterpreterHost::kActionStop, 0); })
        .Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));

    RunToStop();
    EXPECT_EQ(before, 1);
    EXPECT_EQ(after, 0);
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyActionPending), 1);
    ASSERT_EQ(host.actions.size(), 1u);
    EXPECT_EQ(host.actions[0], std::make_pair(5, 0L));
    EXPECT_LT(interpreter.RunLevel(), 0) << "stopped, can be continued";
    EXPECT_EQ(interpreter.PendingAction(), InterpreterHost::kNoAction);

    interpreter.SetRunLevel(1);
    RunToStop();
    EXPECT_EQ(after, 1);
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, EndStatementEndsTheCurrentMacro)
{
    int outerCount = 0, innerAfterEnd = 0, callerAfterEnd = 0;
    TestProcedure inner, second, first;
    inner.Add([this] {
        (void)interpreter.RequestAction(InterpreterHost::kActionEnd, 0);
        return false;
    });
    inner.Add(Counter(innerAfterEnd));
    second.AddCall(inner).Add(Counter(callerAfterEnd));
    first.Add(Counter(outerCount));

    // Two macros on the stack: the newer one ends, the older one stays.
    ASSERT_TRUE(interpreter.StartEntry(first, nullptr));
    ASSERT_TRUE(interpreter.StartEntry(second, nullptr));
    EXPECT_EQ(interpreter.CallDepth(), 2);
    RunToStop();

    EXPECT_EQ(innerAfterEnd, 0);
    EXPECT_EQ(callerAfterEnd, 0);
    EXPECT_EQ(outerCount, 0);
    EXPECT_EQ(interpreter.CallDepth(), 1);
    EXPECT_EQ(interpreter.ExecutionDepth(), 2u);
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionEnd), 1);

    interpreter.SetRunLevel(1);
    RunToStop();
    EXPECT_EQ(outerCount, 1);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
}

TEST_F(InterpreterTest, EndStatementInTheOnlyMacroEndsTheRun)
{
    int after = 0;
    TestProcedure inner, main;
    inner.Add([this] {
        (void)interpreter.RequestAction(InterpreterHost::kActionEnd, 0);
        return false;
    });
    main.AddCall(inner, {1, 2}).Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    EXPECT_EQ(after, 0);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunStarted), 1);
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
}

TEST_F(InterpreterTest, EndAllUnwindsEveryMacro)
{
    int outerCount = 0, after = 0;
    TestProcedure inner, second, first;
    inner.Add([this] {
        (void)interpreter.RequestAction(InterpreterHost::kActionEndAll, 0);
        return false;
    });
    inner.Add(Counter(after));
    second.AddCall(inner, {7}).Add(Counter(after));
    first.Add(Counter(outerCount));
    ASSERT_TRUE(interpreter.StartEntry(first, nullptr));
    ASSERT_TRUE(interpreter.StartEntry(second, nullptr));
    RunToStop();

    EXPECT_EQ(after, 0);
    EXPECT_EQ(outerCount, 0);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionEndAll), 1);
}

TEST_F(InterpreterTest, EndAllRequestWinsOverAnEarlierPendingAction)
{
    TestProcedure main;
    main.Add([this] {
        EXPECT_TRUE(interpreter.RequestAction(InterpreterHost::kActionStop, 0));
        EXPECT_TRUE(interpreter.RequestAction(InterpreterHost::kActionEnd, 0));
        EXPECT_EQ(interpreter.PendingAction(), InterpreterHost::kActionStop) << "the first request stands";
        EXPECT_TRUE(interpreter.RequestAction(InterpreterHost::kActionEndAll, 0));
        EXPECT_EQ(interpreter.PendingAction(), InterpreterHost::kActionEndAll);
        return false;
    });
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyActionPending), 2);
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, RequestsOtherThanStopAndQueryAreRefusedDuringAHostCall)
{
    const struct {
        int action;
        bool accepted;
    } rows[] = {{0, false}, {1, false}, {2, false}, {3, false}, {4, false}, {5, true}, {6, false}, {7, true}};
    for (const auto& row : rows) {
        interpreter.EnterHostCall();
        const bool accepted = interpreter.RequestAction(row.action, 0);
        interpreter.LeaveHostCall();
        EXPECT_EQ(accepted, row.accepted) << "action " << row.action;
        EXPECT_EQ(interpreter.Error().number, row.accepted ? 0 : ToNumber(ErrorId::InvalidInstruction))
            << "action " << row.action;
        HaltFlags::Clear(0xFF);
        interpreter.ClearErr();
    }
}

TEST_F(InterpreterTest, RunawayRecursionStopsWithOverflowAtTheDepthLimit)
{
    int entered = 0;
    TestProcedure recursive;
    recursive.Add(Counter(entered)).AddCall(recursive);
    ASSERT_TRUE(interpreter.StartEntry(recursive, nullptr));
    RunToStop(10000000);

    EXPECT_EQ(interpreter.CallDepth(), Interpreter::kMaxCallDepth);
    EXPECT_EQ(entered, Interpreter::kMaxCallDepth - 1) << "the last activation never ran a statement";
    ASSERT_EQ(host.untrappedErrors.size(), 1u);
    EXPECT_EQ(host.untrappedErrors[0].number, 10062);
    EXPECT_EQ(host.untrappedErrors[0].description, L"Overflow.");
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionStop), 1);
    EXPECT_LT(interpreter.RunLevel(), 0);

    interpreter.UnwindAll();
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
}

TEST_F(InterpreterTest, UntrappedErrorStopsTheRunBeforeTheNextStatement)
{
    int after = 0;
    TestProcedure inner, main;
    inner.Add([this] { return interpreter.SignalError(10023, L"x(3)"); }).Add(Counter(after));
    main.AddCall(inner).Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(after, 0);
    ASSERT_EQ(host.untrappedErrors.size(), 1u);
    EXPECT_EQ(host.untrappedErrors[0].number, 10023);
    EXPECT_EQ(host.untrappedErrors[0].description, L"Array index out of range. 'x(3)'");
    EXPECT_EQ(host.actions, (std::vector<std::pair<int, long>>{{5, 0}}));
    EXPECT_LT(interpreter.RunLevel(), 0);
    EXPECT_EQ(interpreter.CallDepth(), 2) << "the stopped run keeps its frames";
    // The procedures go before the fixture: drop the frames that refer to them.
    interpreter.UnwindAll();
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, FirstErrorStandsAndEvaluationErrorsUseTheirOwnBit)
{
    EXPECT_FALSE(interpreter.SignalError(10061));
    EXPECT_FALSE(interpreter.SignalError(10062));
    EXPECT_EQ(interpreter.Error().number, 10061);
    EXPECT_EQ(interpreter.Error().description, L"Divide by zero.");
    EXPECT_EQ(HaltFlags::Value(), HaltFlags::kError);
    HaltFlags::Clear(0xFF);

    interpreter.SetEvaluating(true);
    EXPECT_FALSE(interpreter.SignalError(1000));
    interpreter.SetEvaluating(false);
    EXPECT_EQ(interpreter.Error().number, 1000);
    EXPECT_EQ(interpreter.Error().description, L"Application specific error.");
    EXPECT_EQ(HaltFlags::Value(), HaltFlags::kEvaluationError);
    HaltFlags::Clear(0xFF);
}

TEST_F(InterpreterTest, ValueLayerErrorsReachTheCurrentInterpreter)
{
    EXPECT_FALSE(RaiseValueError(kErrorTypeMismatch));
    EXPECT_EQ(interpreter.Error().number, 10080);
    EXPECT_EQ(interpreter.Error().description, L"Type mismatch.");
    EXPECT_TRUE(HaltFlags::Has(HaltFlags::kError));
    HaltFlags::Clear(0xFF);
}

TEST_F(InterpreterTest, ScopesKeepEachEnginesHaltByte)
{
    FakeHost otherHost;
    Interpreter other(otherHost);
    otherHost.interpreter = &other;
    {
        InterpreterScope inner(other);
        EXPECT_EQ(Interpreter::Current(), &other);
        EXPECT_FALSE(RaiseValueError(kErrorDivideByZero));
        EXPECT_EQ(other.Error().number, 10061);
    }
    EXPECT_EQ(Interpreter::Current(), &interpreter);
    EXPECT_EQ(HaltFlags::Value(), 0) << "the other engine's error stays with it";
    EXPECT_EQ(interpreter.Error().number, 0);
    {
        InterpreterScope inner(other);
        EXPECT_EQ(HaltFlags::Value(), HaltFlags::kError);
        HaltFlags::Clear(0xFF);
    }
}

TEST_F(InterpreterTest, ArgumentsBindFromTheValueStackInDeclarationOrder)
{
    TestProcedure callee(3, 2), main;
    main.AddCall(callee, {10, 20, 30});
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(callee.bound, (std::vector<std::pair<int, long>>{{0, 10}, {1, 20}, {2, 30}}));
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, ActivationRecordsItsPlaceOnTheValueStack)
{
    std::size_t seenBase = 0;
    void* seenLocals = nullptr;
    std::size_t seenLocalSize = 0;
    Activation* seenCaller = nullptr;
    Activation* mainActivation = nullptr;
    TestProcedure callee(2, 1), main;
    callee.Add([&] {
        Activation* current = interpreter.CurrentActivation();
        seenBase = current->ValueStackBase();
        seenLocals = current->Locals();
        seenLocalSize = current->LocalSize();
        seenCaller = current->Caller();
        // Values pushed inside the callee are dropped when it ends.
        (void)interpreter.Values().Push();
        return true;
    });
    main.Add([&] {
        mainActivation = interpreter.CurrentActivation();
        return true;
    });
    main.AddCall(callee, {1, 2});
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(seenBase, 2u) << "the base is taken after the arguments were pushed";
    EXPECT_NE(seenLocals, nullptr);
    EXPECT_EQ(seenLocalSize, 3 * sizeof(VARIANT));
    EXPECT_EQ(seenCaller, mainActivation);
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, MissingArgumentsRaiseWrongNumberOfParameters)
{
    TestProcedure callee(2), main;
    int after = 0;
    main.AddCall(callee, {1}).Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    ASSERT_EQ(host.untrappedErrors.size(), 1u);
    EXPECT_EQ(host.untrappedErrors[0].number, 10019);
    EXPECT_EQ(after, 0);
    EXPECT_EQ(interpreter.CallDepth(), 1) << "the failed call left no activation behind";
    interpreter.UnwindAll();
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, HostCallRunsTheProcedureAndLeavesTheStackAsItWas)
{
    int counted = 0;
    TestProcedure inner, called;
    inner.Add(Counter(counted));
    called.Add(Counter(counted)).AddCall(inner, {4}).Add(Counter(counted));
    ASSERT_TRUE(interpreter.RunHostCall(called, nullptr));
    EXPECT_EQ(counted, 3);
    ExpectIdleAndClean();
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunStarted), 1);
    EXPECT_EQ(host.Count(InterpreterHost::kNotifyRunEnded), 1);
}

TEST_F(InterpreterTest, SetNextStatementMovesTheExecutionPoint)
{
    int skipped = 0, reached = 0;
    TestProcedure main;
    main.Add([this] {
        interpreter.SetNextStatement(2);
        return true;
    });
    main.Add(Counter(skipped)).Add(Counter(reached));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    EXPECT_EQ(skipped, 0);
    EXPECT_EQ(reached, 1);
}

TEST_F(InterpreterTest, ScheduledExecutorThatFinishesAtOnceNeverTouchesTheStacks)
{
    struct Once final : Node {
        int* released;
        explicit Once(int* r) : released(r) {}
        void Release() override { ++*released; }
    };
    int released = 0;
    Once once(&released);
    EXPECT_TRUE(interpreter.Schedule(once));
    EXPECT_EQ(released, 1);
    EXPECT_EQ(interpreter.PendingDepth(), 0u);
    EXPECT_EQ(interpreter.ExecutionDepth(), 0u);
}

TEST_F(InterpreterTest, ExecutorThatNeedsMoreStepsResumesFromThePendingStack)
{
    // Finishes on its third step; the default Execute pushes it after the first.
    struct ThreeSteps final : Node {
        std::vector<int>* seen;
        explicit ThreeSteps(std::vector<int>* s) : seen(s) {}
        bool Step(ExecEntry& entry) override
        {
            seen->push_back(entry.state);
            entry.state += 1;
            return entry.state == 3;
        }
        void Release() override { seen->push_back(-100); }
    };
    std::vector<int> seen;
    int after = 0;
    TestProcedure main;
    main.Add(std::make_unique<ThreeSteps>(&seen)).Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, -100}));
    EXPECT_EQ(after, 1);
    ExpectIdleAndClean();
}

TEST_F(InterpreterTest, EvaluationErrorIsReportedAsTheEvaluationsAndStopsTheRun)
{
    int after = 0;
    TestProcedure main;
    main.Add([this] {
        interpreter.SetEvaluating(true);
        return interpreter.SignalError(10080);
    });
    main.Add(Counter(after));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();
    interpreter.SetEvaluating(false);

    EXPECT_EQ(after, 0);
    EXPECT_TRUE(host.untrappedErrors.empty());
    ASSERT_EQ(host.evaluationErrors.size(), 1u);
    EXPECT_EQ(host.evaluationErrors[0].number, 10080);
    EXPECT_EQ(host.evaluationErrors[0].description, L"Type mismatch.");
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionStop), 1);
    EXPECT_TRUE(HaltFlags::Has(HaltFlags::kEvaluationError)) << "cleared only when the evaluation ends";
    HaltFlags::Clear(0xFF);
    interpreter.UnwindAll();
    ExpectIdleAndClean();
}

// ---- Yielding ----

DWORD s_fakeTick = 0;
int s_tickReads = 0;

DWORD WINAPI FakeTick()
{
    ++s_tickReads;
    return s_fakeTick;
}

class YieldTest : public InterpreterTest {
protected:
    YieldTest()
    {
        s_fakeTick = 5000;
        s_tickReads = 0;
        interpreter.SetTickSource(&FakeTick);
        host.onPump = [this] { pumpTicks.push_back(s_fakeTick); };
    }

    // One statement that repeats itself iterations times, each time 10 ms of the fake clock.
    void RunLongLoop(int iterations)
    {
        TestProcedure main;
        int done = 0;
        main.Add([this, iterations, &done] {
            s_fakeTick += 10;
            if (++done < iterations)
                interpreter.SetNextStatement(interpreter.CurrentActivation()->CurrentIndex());
            return true;
        });
        ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
        RunToStop();
        EXPECT_EQ(done, iterations);
        ExpectIdleAndClean();
    }

    std::vector<DWORD> pumpTicks;
};

TEST_F(YieldTest, LongRunYieldsAtLeastEveryTimeSlice)
{
    interpreter.SetYielding(true);
    const DWORD start = s_fakeTick;
    RunLongLoop(1000);
    ASSERT_GE(pumpTicks.size(), 90u);
    DWORD previous = start;
    for (DWORD tick : pumpTicks) {
        EXPECT_LE(tick - previous, Interpreter::kTimeSliceMs + 10) << "pump at " << tick;
        previous = tick;
    }
}

TEST_F(YieldTest, NoYieldAndNoTickReadWhenYieldingIsOff)
{
    interpreter.SetYielding(false);
    RunLongLoop(1000);
    EXPECT_EQ(host.pumps, 0);
    EXPECT_EQ(s_tickReads, 0);
}

TEST_F(YieldTest, TimeSliceTestWrapsWithTheTickCounter)
{
    interpreter.SetYielding(true);
    s_fakeTick = 0xFFFFFFF0u;
    EXPECT_TRUE(interpreter.YieldDue());
    s_fakeTick = 0x00000010u;
    EXPECT_FALSE(interpreter.YieldDue()) << "32 ms across the wrap";
    s_fakeTick = 0x00000060u;
    EXPECT_TRUE(interpreter.YieldDue());
}

} // namespace
} // namespace brannoc
