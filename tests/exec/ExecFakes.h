#pragma once
// Hand-built executors, procedures and a recording host for driving the interpreter without a
// compiler.
#include "exec/Interpreter.h"
#include "exec/ProcedureCode.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace brannoc::testing {

// Records every call the interpreter makes and carries out the control actions the way the engine
// object does for the cases these tests use.
class FakeHost final : public InterpreterHost {
public:
    Interpreter* interpreter = nullptr;
    std::vector<int> notifications;
    std::vector<std::pair<int, long>> actions;
    std::vector<ErrorRecord> untrappedErrors;
    std::vector<ErrorRecord> evaluationErrors;
    int pumps = 0;
    std::function<void()> onPump;

    void Notify(Notification code) override { notifications.push_back(code); }

    void PerformControlAction(int action, long argument) override
    {
        actions.emplace_back(action, argument);
        switch (action) {
        case kActionEndAll:
            interpreter->UnwindAll();
            break;
        case kActionEnd:
            interpreter->UnwindEntry();
            Stop();
            break;
        case kActionStop:
            Stop();
            break;
        default:
            break;
        }
    }

    void PumpMessages() override
    {
        ++pumps;
        if (onPump)
            onPump();
    }

    void ReportUntrappedError(const ErrorRecord& error) override { untrappedErrors.push_back(error); }
    void ReportEvaluationError(const ErrorRecord& error) override { evaluationErrors.push_back(error); }

    int Count(int code) const
    {
        int count = 0;
        for (int seen : notifications)
            count += seen == code;
        return count;
    }
    int CountActions(int action) const
    {
        int count = 0;
        for (const auto& seen : actions)
            count += seen.first == action;
        return count;
    }

private:
    void Stop()
    {
        if (interpreter->RunLevel() > 0)
            interpreter->SetRunLevel(-interpreter->RunLevel());
    }
};

// A statement made of a callable; Execute answers what the callable answers.
class LambdaStatement final : public Node {
public:
    explicit LambdaStatement(std::function<bool()> body) : m_body(std::move(body)) {}
    bool Execute() override { return m_body(); }

private:
    std::function<bool()> m_body;
};

// A statement that calls a procedure inside an expression: pushes its arguments, calls, and after the
// call returns (its second step) removes the arguments again.
class CallStatement final : public Node {
public:
    CallStatement(ProcedureCode& target, std::vector<long> arguments)
        : m_target(target), m_arguments(std::move(arguments))
    {
    }

    bool Step(ExecEntry& entry) override
    {
        Interpreter& interpreter = *Interpreter::Current();
        if (entry.state == 0) {
            for (long argument : m_arguments) {
                Variant* slot = interpreter.Values().Push();
                if (!slot)
                    return interpreter.RaiseOutOfMemory();
                slot->SetLong(argument);
            }
            (void)interpreter.CallProcedure(m_target, ActivationKind::Call, nullptr);
            entry.state = 1;
            return false;
        }
        for (std::size_t i = 0; i < m_arguments.size(); ++i)
            interpreter.Values().Pop();
        entry.state = ExecEntry::kFinished;
        return true;
    }
    // Statements belong to their procedure; the execution stack must not destroy them.
    void Release() override {}

private:
    ProcedureCode& m_target;
    std::vector<long> m_arguments;
};

// A procedure whose statement vector is given by the test (null entries are empty lines). Parameters
// and locals are VARIANT slots of the frame; binding copies the argument and records its value.
class TestProcedure final : public ProcedureCode {
public:
    explicit TestProcedure(int parameters = 0, int locals = 0) : m_parameters(parameters), m_locals(locals) {}

    TestProcedure& Add(std::unique_ptr<Node> statement)
    {
        m_statements.push_back(std::move(statement));
        return *this;
    }
    TestProcedure& AddBlank()
    {
        m_statements.push_back(nullptr);
        return *this;
    }
    TestProcedure& Add(std::function<bool()> body)
    {
        return Add(std::make_unique<LambdaStatement>(std::move(body)));
    }
    TestProcedure& AddCall(ProcedureCode& target, std::vector<long> arguments = {})
    {
        return Add(std::make_unique<CallStatement>(target, std::move(arguments)));
    }

    int LastStatementIndex() const override { return static_cast<int>(m_statements.size()) - 1; }
    Node* StatementAt(int index) const override { return m_statements[index].get(); }
    bool IsEmptyStatement(int index) const override { return !m_statements[index]; }
    int ParameterCount() const override { return m_parameters; }
    std::size_t FrameSize() const override { return (m_parameters + m_locals) * sizeof(VARIANT); }

    bool InitializeLocals(void* frame) override
    {
        VARIANT* slots = static_cast<VARIANT*>(frame);
        for (int i = 0; i < m_parameters + m_locals; ++i)
            VariantInit(&slots[i]);
        return true;
    }
    bool BindParameter(int index, void* frame, Variant& argument) override
    {
        VARIANT* slots = static_cast<VARIANT*>(frame);
        bound.emplace_back(index, argument.Long());
        return SUCCEEDED(VariantCopy(&slots[index], &argument.Raw()));
    }
    void ClearLocals(void* frame) override
    {
        VARIANT* slots = static_cast<VARIANT*>(frame);
        for (int i = 0; i < m_parameters + m_locals; ++i)
            VariantClear(&slots[i]);
    }
    // Procedures are owned by the test, never by the stack.
    void Release() override {}

    // (parameter index, bound value) in binding order.
    std::vector<std::pair<int, long>> bound;

private:
    int m_parameters;
    int m_locals;
    std::vector<std::unique_ptr<Node>> m_statements;
};

} // namespace brannoc::testing
