// Raising run-time errors and dispatching them to On Error handlers through the activations, with
// hand-built procedures whose statements set handlers and raise.
#include "exec/Interpreter.h"

#include "exec/ErrorHandler.h"
#include "exec/ExecFakes.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::FakeHost;
using testing::TestProcedure;

// A handler in force: On Error GoTo (target: a statement index) or On Error Resume Next.
class FakeHandler final : public ErrorHandler {
public:
    explicit FakeHandler(int target) : m_target(target) {}
    int HandlerTarget() const override { return m_target; }

private:
    int m_target;
};

class ErrorDispatchTest : public ::testing::Test {
protected:
    ErrorDispatchTest() { host.interpreter = &interpreter; }

    void RunToStop()
    {
        interpreter.PrepareRun(0);
        for (int steps = 0; steps < 100000 && interpreter.RunStep(false) != 0; ++steps) {
        }
    }
    std::function<bool()> SetHandler(const ErrorHandler* handler)
    {
        return [this, handler] {
            interpreter.CurrentActivation()->SetActiveHandler(handler);
            return true;
        };
    }
    std::function<bool()> Raise(long number)
    {
        return [this, number] { return interpreter.SignalError(number); };
    }
    static std::function<bool()> Counter(int& counter)
    {
        return [&counter] {
            ++counter;
            return true;
        };
    }
    // The body of a handler: records what it sees, then resumes at the statement after the failure.
    std::function<bool()> ResumeNext(std::vector<std::pair<long, int>>& seen)
    {
        return [this, &seen] {
            Activation* activation = interpreter.CurrentActivation();
            seen.emplace_back(interpreter.Error().number, activation->ResumeIndex());
            activation->SetIndexes(activation->ResumeIndex());
            activation->SetResumeIndex(Activation::kNoResume);
            interpreter.ClearErr();
            return true;
        };
    }
    // Exit Sub: moves past the last statement.
    std::function<bool()> Exit()
    {
        return [this] {
            Activation* activation = interpreter.CurrentActivation();
            activation->SetIndexes(activation->OwnProcedure().LastStatementIndex() + 1);
            return true;
        };
    }
    void ExpectClean()
    {
        EXPECT_EQ(interpreter.ExecutionDepth(), 0u);
        EXPECT_EQ(interpreter.CallDepth(), 0);
        EXPECT_EQ(interpreter.Values().Size(), 0u);
        EXPECT_EQ(interpreter.RunLevel(), 0);
    }

    FakeHost host;
    Interpreter interpreter{host};
    InterpreterScope scope{interpreter};
};

TEST_F(ErrorDispatchTest, TheCallersHandlerTrapsAnErrorOfItsCalleeAndResumesAfterTheCall)
{
    FakeHandler toLabel(4);
    int never = 0;
    int after = 0;
    std::vector<std::pair<long, int>> seen;
    TestProcedure inner, main;
    inner.Add(Raise(10061)).Add(Counter(never));
    main.Add(SetHandler(&toLabel)).AddCall(inner, {1, 2}).Add(Counter(after)).Add(Exit()).Add(ResumeNext(seen));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(never, 0);
    EXPECT_EQ(after, 1);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0], std::make_pair(10061L, 2)) << "the resume point is the statement after the call";
    EXPECT_TRUE(host.untrappedErrors.empty());
    EXPECT_EQ(interpreter.Error().number, 0) << "resuming cleared Err";
    ExpectClean();
}

TEST_F(ErrorDispatchTest, ResumeNextHandlerGoesOnWithTheNextStatementAndKeepsErr)
{
    FakeHandler resumeNext(ErrorHandler::kResumeNext);
    int after = 0;
    long seen = 0;
    TestProcedure main;
    main.Add(SetHandler(&resumeNext)).Add(Raise(10023)).Add(Counter(after)).Add([&] {
        seen = interpreter.Error().number;
        return true;
    });
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(after, 1);
    EXPECT_EQ(seen, 10023);
    EXPECT_TRUE(host.untrappedErrors.empty());
    ExpectClean();
}

TEST_F(ErrorDispatchTest, AnErrorInsideARunningHandlerGoesToTheCaller)
{
    FakeHandler innerLabel(3);
    FakeHandler outerLabel(3);
    int never = 0;
    std::vector<std::pair<long, int>> seen;
    TestProcedure inner, main;
    inner.Add(SetHandler(&innerLabel)).Add(Raise(5)).Add(Counter(never)).Add(Raise(6)).Add(Counter(never));
    main.Add(SetHandler(&outerLabel)).AddCall(inner).Add(Exit()).Add(ResumeNext(seen));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(never, 0);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0], std::make_pair(6L, 2));
    EXPECT_TRUE(host.untrappedErrors.empty());
    ExpectClean();
}

TEST_F(ErrorDispatchTest, WithoutAHandlerTheErrorIsReportedAndTheRunStops)
{
    int never = 0;
    TestProcedure inner, main;
    inner.Add(Raise(10061));
    main.AddCall(inner).Add(Counter(never));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(never, 0);
    ASSERT_EQ(host.untrappedErrors.size(), 1u);
    EXPECT_EQ(host.untrappedErrors[0].number, 10061);
    EXPECT_EQ(host.CountActions(InterpreterHost::kActionStop), 1);
    EXPECT_EQ(interpreter.CurrentActivation()->Caller()->Caller(), nullptr)
        << "the stopped run keeps the failing activation current";
    interpreter.UnwindAll();
}

TEST_F(ErrorDispatchTest, AHostCallBoundaryEndsTheSearch)
{
    FakeHandler outerLabel(3);
    int handled = 0;
    TestProcedure called, main;
    called.Add(Raise(10080));
    main.Add(SetHandler(&outerLabel)).Add([&] {
        (void)interpreter.RunHostCall(called, nullptr);
        return true;
    });
    main.Add(Exit()).Add(Counter(handled));
    ASSERT_TRUE(interpreter.StartEntry(main, nullptr));
    RunToStop();

    EXPECT_EQ(handled, 0) << "the handler outside the host call never ran";
    ASSERT_EQ(host.untrappedErrors.size(), 1u);
    EXPECT_EQ(host.untrappedErrors[0].number, 10080);
    interpreter.UnwindAll();
}

TEST_F(ErrorDispatchTest, RaisingFillsTheErrorObject)
{
    const struct {
        long number;
        const wchar_t* description;
        const wchar_t* expected;
    } rows[] = {
        {1000, L"", L"Application specific error."},
        {10023, L"", L"Array index out of range."},
        {10023, L"Own text.", L"Own text."},
        {65535, L"", L"Application specific error."},
        {65536, L"", L"Exception 10000"},
        {static_cast<long>(0x80020009UL), L"", L"Exception 80020009"},
        {-1, L"", L"Exception FFFFFFFF"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter.RaiseRuntimeError(row.number, row.description, L"source", L"", 7));
        EXPECT_EQ(interpreter.Error().number, row.number);
        EXPECT_EQ(interpreter.Error().description, row.expected) << row.number;
        EXPECT_EQ(interpreter.Error().source, L"source");
        EXPECT_EQ(interpreter.Error().helpFile, LanguageHelpFile()) << "no help file of its own";
        EXPECT_EQ(interpreter.Error().helpContext, 7);
        EXPECT_EQ(HaltFlags::Value(), HaltFlags::kError);
        HaltFlags::Clear(0xFF);
    }
    EXPECT_FALSE(interpreter.RaiseRuntimeError(1, L"", L"", L"own.hlp", 0));
    EXPECT_EQ(interpreter.Error().helpFile, L"own.hlp");
    HaltFlags::Clear(0xFF);
    EXPECT_FALSE(interpreter.RaiseRuntimeError(0, L"", L"", L"", 0));
    EXPECT_EQ(interpreter.Error().number, 0);
    EXPECT_EQ(interpreter.Error().description, L"");
    EXPECT_EQ(HaltFlags::Value(), 0) << "number 0 raises nothing";
}

TEST_F(ErrorDispatchTest, AMessageWithAnArgumentReadsTextBlankAndTheQuotedArgument)
{
    EXPECT_FALSE(interpreter.SignalError(10018, L"Missing"));
    EXPECT_EQ(interpreter.Error().description, L"Sub/Function does not exist. 'Missing'");
    HaltFlags::Clear(0xFF);
    // A text that already ends with a blank gets no second one.
    EXPECT_FALSE(interpreter.SignalError(10586, L"Then"));
    EXPECT_EQ(interpreter.Error().description, L"Expecting 'Then'");
    HaltFlags::Clear(0xFF);
    interpreter.ClearErr();
    EXPECT_EQ(interpreter.Error().helpFile, L"");
}

} // namespace
} // namespace brannoc
