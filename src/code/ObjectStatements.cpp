#include "code/ObjectStatements.h"

#include "exec/Activation.h"
#include "exec/Interpreter.h"
#include "values/ValueError.h"

namespace brannoc {
namespace {

bool Finish(ExecEntry& entry)
{
    entry.state = ExecEntry::kFinished;
    return true;
}

} // namespace

bool SetStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    const VARIANT* value = FollowByRefChain(&values.Top().Raw());
    if (value->vt != VT_DISPATCH && value->vt != VT_UNKNOWN) {
        (void)context.interpreter->SignalError(kErrorTypeMismatch);
        return Fail(context, entry);
    }
    const bool stored = StoreVariable(context, m_target, values.Top());
    values.Pop();
    if (!stored)
        return Fail(context, entry);
    return Finish(entry);
}

bool WithStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    // The value stays where the statement left it: right above the With objects already kept.
    context.activation->SetWithDepth(context.activation->WithDepth() + 1);
    return Finish(entry);
}

bool EndWithStatement::Execute()
{
    const RunContext context = Context();
    if (context.activation->WithDepth() < 1)
        return context.interpreter->SignalError(kErrorWrongWith);
    LeaveWithBlocks(context, 1);
    return true;
}

void LeaveWithBlocks(const RunContext& context, int count)
{
    Activation& activation = *context.activation;
    const int depth = activation.WithDepth() - count;
    activation.SetWithDepth(depth < 0 ? 0 : depth);
    context.interpreter->Values().CutBack(activation.StatementBase());
}

} // namespace brannoc
