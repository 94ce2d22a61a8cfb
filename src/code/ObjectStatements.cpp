#include "code/ObjectStatements.h"

#include "exec/Activation.h"
#include "exec/EventConnection.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ComRef.h"
#include "values/ValueError.h"

#include <algorithm>
#include <vector>

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
    if (stored && m_withEvents)
        TellEventLink(context, *value);
    values.Pop();
    if (!stored)
        return Fail(context, entry);
    return Finish(entry);
}

void SetStatement::TellEventLink(const RunContext& context, const VARIANT& object) const
{
    ModuleInstance* instance = context.activation->Instance();
    if (instance && m_target.module)
        instance = instance->Find(*m_target.module);
    if (!instance || m_target.scope != StorageScope::Module)
        return;
    context.interpreter->Host().WithEventsAssigned(*instance, static_cast<std::size_t>(m_target.index),
                                                   object.punkVal);
}

bool RaiseEventStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (m_count > 0) {
        if (bool answer; !ExpressionReady(context, m_arguments, entry, answer))
            return answer;
    }
    ValueStack& values = context.interpreter->Values();
    const std::size_t base = values.Size() - static_cast<std::size_t>(m_count);
    ModuleInstance* raiser = context.activation->Instance();
    // Held through the calls: a procedure may set its variable to another object, which closes the link.
    std::vector<ComRef<IUnknown>> held;
    std::vector<EventConnection*> listeners = raiser ? raiser->Listeners() : std::vector<EventConnection*>();
    for (EventConnection* listener : listeners)
        held.push_back(ComRef<IUnknown>::Share(listener->Object()));
    for (EventConnection* listener : listeners) {
        if (!raiser || std::find(raiser->Listeners().begin(), raiser->Listeners().end(), listener) ==
                           raiser->Listeners().end())
            continue;
        Variant* arguments = m_count > 0 ? &values.At(base) : nullptr;
        if (listener->Hear(m_event, arguments, m_count))
            continue;
        const ErrorRecord error = context.interpreter->Error();
        if (!HaltFlags::MustStop() && error.number != 0)
            (void)context.interpreter->RaiseRuntimeError(error.number, error.description, error.source,
                                                         error.helpFile, error.helpContext);
        return Fail(context, entry);
    }
    values.CutBack(base);
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
