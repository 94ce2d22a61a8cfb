// A handler's Start and StartPA: the bound Sub begins as a run of its own instead of being called. Its
// arguments are resolved to plain values first, since the run may go on after the host's call returns.
#include "host/Handler.h"

#include "code/ProcedureBody.h"
#include "exec/ErrorMessages.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/MemoryReserve.h"
#include "values/Conversion.h"
#include "values/Variant.h"

#include <new>

namespace brannoc {
namespace {

// Pushes one plain value per argument (a missing one as the missing-argument value), and a ParamArray's
// arguments as one array. False when a value could not be made.
bool PushPlainArguments(ValueStack& values, const Procedure& procedure, const MatchedArguments& matched)
{
    auto push = [&](VARIANT* argument) {
        Variant* slot = values.Push();
        if (!slot)
            return false;
        if (!argument) {
            slot->SetError(kMissingArgumentStatus);
            return true;
        }
        return slot->CopyIndirectFrom(*argument);
    };
    for (VARIANT* argument : matched.fixed) {
        if (!push(argument))
            return false;
    }
    if (procedure.parameters.empty() || !procedure.parameters.back().paramArray)
        return true;
    for (VARIANT* argument : matched.rest) {
        if (!push(argument))
            return false;
    }
    return PackValues(values, static_cast<int>(matched.rest.size()));
}

} // namespace

HRESULT Handler::StartWith(const GivenArguments& given, EXCEPINFO* exception, UINT* argumentError)
{
    // Held for the call: the procedure may drop the host's last reference.
    AddRef();
    HRESULT outcome = E_OUTOFMEMORY;
    try {
        EngineContext& context = m_engine.Context();
        EntryGuard guard(context);
        Interpreter& machine = context.Machine();
        MacroCallTarget target;
        if (!Bind(target)) {
            outcome = DISP_E_UNKNOWNNAME;
        } else if (HasResult(*target.procedure)) {
            outcome = E_INVALIDARG;
        } else {
            context.EnterHostCall();
            context.Trace(TraceKind::Entry, L"*Start(\"" + TracedProcName() + L"\")");
            if (IsHaltedForGood()) {
                outcome = ExceptionForError(ToNumber(ErrorId::HaltedForGood), exception);
            } else if (machine.ExecutionMarker() < 0) {
                outcome = ExceptionForError(ToNumber(ErrorId::BusyForService), exception);
            } else {
                const RunState state = context.Control(EngineContext::kActionQuietQuery, 0);
                MatchedArguments matched;
                outcome = MatchArguments(*target.procedure, given, matched, argumentError);
                if (SUCCEEDED(outcome))
                    TraceHostCallArguments(context, *target.procedure, matched);
                if (SUCCEEDED(outcome)) {
                    const std::size_t height = machine.Values().Size();
                    if (!PushPlainArguments(machine.Values(), *target.procedure, matched)) {
                        machine.Values().CutBack(height);
                        outcome = E_OUTOFMEMORY;
                    } else if (!machine.StartEntry(*target.procedure->code, target.instance, true)) {
                        outcome = ExceptionForError(machine.Error().number, exception);
                    } else {
                        outcome = S_OK;
                        RunStarted(state);
                    }
                }
            }
            context.Trace(TraceKind::Exit, L"");
            context.LeaveHostCall();
            if (SUCCEEDED(outcome) && context.Control(EngineContext::kActionQuietQuery, 0) == RunState::Busy)
                outcome = E_ABORT;
        }
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
    }
    Release();
    return outcome;
}

// What follows the push depends on the state the engine was in: an idle engine runs the procedure to
// its end (or a breakpoint) now; a stopped one stops again at its first line; a busy one runs it here;
// an active run reaches it when it goes on.
void Handler::RunStarted(RunState state)
{
    EngineContext& context = m_engine.Context();
    switch (state) {
    case RunState::Idle:
        (void)context.Control(EngineContext::kActionResume, 0);
        (void)context.Control(EngineContext::kActionRun, EngineContext::kStartDepth);
        break;
    case RunState::Stopped:
        (void)context.Control(EngineContext::kActionResume, 0);
        (void)context.Control(EngineContext::kActionRun, EngineContext::kStepDepth);
        (void)context.Control(EngineContext::kActionStop, 0);
        break;
    case RunState::Busy:
        (void)context.Control(EngineContext::kActionResume, 0);
        (void)context.Control(EngineContext::kActionRun, context.Machine().CallDepth());
        (void)context.Control(EngineContext::kActionStop, 0);
        break;
    case RunState::Active:
        break;
    }
}

} // namespace brannoc
