#include "code/BuiltinCall.h"

#include "code/FastExpression.h"
#include "code/TypedExpression.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "library/BuiltinArguments.h"
#include "library/BuiltinTable.h"
#include "values/ValueError.h"

#include <new>
#include <vector>

namespace brannoc {

bool IsLazyBuiltinCall(const BuiltinCall& call, Token keyword, std::size_t count)
{
    if (!call.record || call.record->keyword != keyword || call.arguments.size() != count || call.stackedCount != 0 ||
        call.deferredLength != 0)
        return false;
    for (const BuiltinArgumentCode& argument : call.arguments) {
        if (argument.mode != BuiltinArgumentCode::Mode::kLazy)
            return false;
    }
    return true;
}

namespace {

using State = BuiltinArguments::State;

// Arguments of a running call: lazy ones run their code on the value stack when asked for.
class RuntimeArguments final : public BuiltinArguments {
public:
    RuntimeArguments(const RunContext& context, const BuiltinCall& call, Variant* values, State* states, int count)
        : BuiltinArguments(*call.record, values, states, count), m_context(context), m_call(call)
    {
    }

protected:
    bool EvaluateInto(int index, Variant& target) override
    {
        const Expression& code = m_call.arguments[static_cast<std::size_t>(index)].code;
        if (code.ops.size() == 1 && code.ops[0].code == ExprOpCode::kConstant) {
            // A constant is read where it is: the implementation copies what it changes.
            target.SetByRef(VT_VARIANT, const_cast<VARIANT*>(&m_context.procedure->ConstantAt(code.ops[0].index).Raw()));
            return true;
        }
        if (code.ops[0].code == ExprOpCode::kTypedValue && DirectFormsEnabled()) {
            // A numeric argument's typed form computes it without the value stack.
            VARIANT value;
            if (m_context.procedure->TypedFormAt(code.ops[0].index).Evaluate(m_context, value)) {
                target.Clear();
                target.Raw() = value;
                return true;
            }
        }
        ValueStack& values = m_context.interpreter->Values();
        const std::size_t height = values.Size();
        int pc = 0;
        const EvalStatus status = RunExpression(m_context, code, pc);
        if (status != EvalStatus::kDone || values.Size() != height + 1) {
            values.CutBack(height);
            // Lazy code never calls procedures; a yield here would be a compiler fault.
            return status == EvalStatus::kFailed || RaiseValueError(kErrorInvalidArgument);
        }
        target = std::move(values.Top());
        values.Pop();
        return true;
    }

private:
    const RunContext& m_context;
    const BuiltinCall& m_call;
};

// The values and states of a call's arguments: on the machine stack for the usual calls (only as many
// values as there are arguments are made), on the heap for calls with many arguments.
class ArgumentStorage final {
public:
    explicit ArgumentStorage(int count) : m_count(count)
    {
        if (count > kInline) {
            m_more.resize(static_cast<std::size_t>(count));
            m_moreStates.resize(static_cast<std::size_t>(count));
            m_values = m_more.data();
            m_states = m_moreStates.data();
            return;
        }
        m_values = reinterpret_cast<Variant*>(m_inline);
        m_states = m_inlineStates;
        for (int i = 0; i < count; ++i)
            new (&m_values[i]) Variant();
    }
    ArgumentStorage(const ArgumentStorage&) = delete;
    ArgumentStorage& operator=(const ArgumentStorage&) = delete;
    ~ArgumentStorage()
    {
        if (m_count <= kInline) {
            for (int i = 0; i < m_count; ++i)
                m_values[i].~Variant();
        }
    }
    Variant* Values() const { return m_values; }
    State* States() const { return m_states; }

private:
    static constexpr int kInline = 10;
    int m_count;
    Variant* m_values = nullptr;
    State* m_states = nullptr;
    alignas(Variant) unsigned char m_inline[kInline * sizeof(Variant)];
    State m_inlineStates[kInline];
    std::vector<Variant> m_more;
    std::vector<State> m_moreStates;
};

} // namespace

bool RunBuiltinCall(const RunContext& context, const BuiltinCall& call, int& pc)
{
    const BuiltinRecord& record = *call.record;
    ValueStack& values = context.interpreter->Values();
    const int count = static_cast<int>(call.arguments.size());
    ArgumentStorage storage(count);
    Variant* argumentValues = storage.Values();
    State* states = storage.States();
    const std::size_t base = values.Size() - static_cast<std::size_t>(call.stackedCount);
    for (int i = 0; i < count; ++i) {
        const BuiltinArgumentCode& argument = call.arguments[static_cast<std::size_t>(i)];
        switch (argument.mode) {
        case BuiltinArgumentCode::Mode::kMissing: states[i] = State::kMissing; break;
        case BuiltinArgumentCode::Mode::kLazy: states[i] = State::kPending; break;
        case BuiltinArgumentCode::Mode::kDeferred: states[i] = State::kDeferred; break;
        case BuiltinArgumentCode::Mode::kStacked:
            argumentValues[i] = std::move(values.At(base + static_cast<std::size_t>(argument.position)));
            states[i] = State::kReady;
            break;
        }
    }
    values.CutBack(base);

    RuntimeArguments arguments(context, call, argumentValues, states, count);
    Variant result;
    int chosen = -1;
    if (!InvokeBuiltin(record, arguments, result, chosen)) {
        // An implementation fails only after raising, or when a stop of the macro abandoned it (a dialog
        // that was up); make sure the statement never ends silently otherwise. The call has no result, so
        // the expression must not go on.
        if (!HaltFlags::MustStop() && !HaltFlags::Has(HaltFlags::kAction))
            (void)RaiseValueError(kErrorInvalidArgument);
        return false;
    }
    if (chosen >= 0) {
        pc += call.arguments[static_cast<std::size_t>(chosen)].position;
        return true;
    }
    pc += call.deferredLength;
    if (record.IsInstruction())
        return true;
    if (call.stringResult && result.Tag() == VT_NULL)
        return RaiseValueError(kErrorNullUse);
    Variant* slot = values.Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    *slot = std::move(result);
    return true;
}

bool CodeMayYield(const Expression& code)
{
    for (const ExprOp& op : code.ops) {
        if (op.code == ExprOpCode::kCall || op.code == ExprOpCode::kMemberCall)
            return true;
    }
    return false;
}

} // namespace brannoc
