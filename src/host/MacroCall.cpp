#include "host/MacroCall.h"

#include "code/ProcedureBody.h"
#include "exec/ErrorMessages.h"
#include "exec/HaltFlags.h"
#include "exec/ProcedureCode.h"
#include "frontend/Symbols.h"
#include "host/CodeUnit.h"
#include "host/EngineContext.h"
#include "host/HostCallBack.h"
#include "host/AnsiText.h"
#include "host/HostArgument.h"
#include "values/TextForm.h"
#include "values/Variant.h"

#include <deque>
#include <memory>
#include <vector>

namespace brannoc {
namespace {

BSTR NewBstr(const std::wstring& text) { return text.empty() ? nullptr : SysAllocStringLen(text.data(), static_cast<UINT>(text.size())); }

void FillException(EXCEPINFO& exception, long number, const std::wstring& description, const std::wstring& source,
                   const std::wstring& helpFile, long helpContext)
{
    exception = EXCEPINFO{};
    if (number >= 0 && number <= 65535)
        exception.wCode = static_cast<WORD>(number);
    else
        exception.scode = static_cast<SCODE>(number);
    exception.bstrDescription = NewBstr(description);
    exception.bstrSource = NewBstr(source);
    exception.bstrHelpFile = NewBstr(helpFile);
    exception.dwHelpContext = static_cast<DWORD>(helpContext);
}

// The arguments as the procedure binds them: by-reference ones to the host's storage, the others to
// copies kept here for the length of the call.
class BoundArguments {
public:
    bool Bind(const std::vector<VARIANT*>& given)
    {
        for (VARIANT* argument : given) {
            VARIANT* bound = argument;
            if (argument && !(argument->vt & VT_BYREF)) {
                m_copies.emplace_back();
                if (!m_copies.back().CopyFrom(*argument))
                    return false;
                bound = &m_copies.back().Raw();
            }
            m_held.push_back(std::make_unique<HostArgument>(bound));
            if (!m_held.back()->Usable())
                return false;
        }
        return true;
    }
    const HostArgument& operator[](std::size_t index) const { return *m_held[index]; }
    std::size_t Size() const { return m_held.size(); }
    void WriteBack() const
    {
        for (const auto& argument : m_held)
            argument->WriteBack();
    }

private:
    std::deque<Variant> m_copies;
    std::vector<std::unique_ptr<HostArgument>> m_held;
};

// A halt that the host asked for while calls into macros were in progress.
void CarryOutDeferredHalt(EngineContext& context)
{
    switch (context.TakeDeferredHalt()) {
    case 1:
        (void)context.Control(EngineContext::kActionHalt, 0);
        break;
    case 2:
    case 3:
        (void)context.Control(EngineContext::kActionEndAll, 0);
        break;
    default:
        break;
    }
}

// The run stopped inside a debuggable call: unless an error or a halt ended it, the engine reports
// stopped and the caller waits while the host looks at the call and goes on with it. ranOn tells
// whether the host then ran the call to its end as a run without a target depth.
void WaitWhileStopped(EngineContext& context, std::size_t mark, unsigned long errorsBefore, bool& ranOn)
{
    const auto noNewError = [&] { return context.UntrappedErrorCount() == errorsBefore; };
    if (!noNewError() || context.HaltDeferred())
        return;
    Interpreter& machine = context.Machine();
    // No statement executes while the call waits: the host's Run and Step are served.
    machine.SetExecutionMarker(0);
    if (machine.RunLevel() > 0)
        (void)context.Control(EngineContext::kActionStop, 0);
    context.WaitForHostCall(mark, noNewError);
    ranOn = machine.RunLevel() > 0 && machine.RunDepth() == 0;
}

// Runs a nested call as the mode asks; plain calls keep the run around them from stopping in them.
bool RunInMode(EngineContext& context, const MacroCallTarget& target, const ModuleManager::NestedArguments& push,
               Variant& returned, HostCallMode mode, Interpreter::ErrorExit errorExit, unsigned long errorsBefore)
{
    Interpreter& machine = context.Machine();
    ModuleManager& modules = context.Modules();
    if (mode == HostCallMode::kPlain) {
        const int runDepth = machine.RunDepth();
        const int stepCounter = machine.StepCounter();
        machine.EnterPlainCall();
        machine.PrepareRun(0);
        const bool finished = modules.RunNested(*target.procedure->code, *target.instance, push, &returned, errorExit);
        machine.LeavePlainCall();
        machine.PrepareRun(runDepth);
        machine.SetStepCounter(stepCounter);
        return finished;
    }
    const bool statementExecuting = machine.ExecutionMarker() != 0;
    const RunState state = context.Control(EngineContext::kActionQuietQuery, 0);
    const RunState used = mode == HostCallMode::kStepInto ? RunState::Stopped : state;
    const int level = machine.RunLevel() < 0 ? -machine.RunLevel() : machine.RunLevel();
    Interpreter::DebuggedCall debugged;
    debugged.lineTracing = level != 0 && level % 2 == 0;
    debugged.runDepth = used == RunState::Stopped ? EngineContext::kStepDepth : 0;
    bool ranOn = false;
    debugged.whileStopped = [&](std::size_t mark) { WaitWhileStopped(context, mark, errorsBefore, ranOn); };
    const bool finished = modules.RunNested(*target.procedure->code, *target.instance, push, &returned,
                                            errorExit, &debugged);
    // A call made into a stopped engine (or a busy one) leaves it stopped where it was. When the call
    // ended as a run without a target depth (the host ran it on, or it never stopped), the host hears
    // of it before that stop.
    if (used == RunState::Busy || (used == RunState::Stopped && !statementExecuting)) {
        if (finished && (ranOn || (machine.RunLevel() > 0 && machine.RunDepth() == 0)))
            (void)HostCallBack::PostMacroRun(context.CallBack(), context.Owner().AsDispatch());
        if (machine.RunLevel() < 0)
            machine.SetRunLevel(-machine.RunLevel());
        (void)context.Control(EngineContext::kActionStop, 0);
    }
    return finished;
}

} // namespace

HostCallMode DebuggableCallMode(EngineContext& context, bool stepInto)
{
    Interpreter& machine = context.Machine();
    if (machine.ExecutionMarker() < -1 || machine.IsEvaluating())
        return HostCallMode::kPlain;
    const bool stepAsked = context.TakeStepIntoHostCall();
    return stepInto || stepAsked ? HostCallMode::kStepInto : HostCallMode::kNormal;
}

HRESULT ExceptionForError(long number, EXCEPINFO* exception)
{
    if (exception)
        FillException(*exception, number, MessageFor(number), {}, {}, 0);
    return DISP_E_EXCEPTION;
}

bool IsHaltedForGood() { return HaltFlags::Has(HaltFlags::kOutOfMemory); }

HRESULT CallMacroProcedure(EngineContext& context, const MacroCallTarget& target, const MatchedArguments& arguments,
                           Variant* value, EXCEPINFO* exception, HostCallMode mode, Interpreter::ErrorExit errorExit)
{
    const Procedure& procedure = *target.procedure;
    BoundArguments fixed;
    BoundArguments rest;
    if (!fixed.Bind(arguments.fixed) || !rest.Bind(arguments.rest))
        return E_OUTOFMEMORY;
    const auto& parameters = procedure.parameters;
    auto push = [&](ValueStack& values) {
        Variant* result = values.Push();
        if (!result)
            return false;
        result->SetError(kResultSlotStatus);
        for (std::size_t i = 0; i < fixed.Size(); ++i) {
            if (!fixed[i].Push(values, &parameters[i]))
                return false;
        }
        if (parameters.empty() || !parameters.back().paramArray)
            return true;
        for (std::size_t i = 0; i < rest.Size(); ++i) {
            if (!rest[i].Push(values, nullptr))
                return false;
        }
        return PackValues(values, static_cast<int>(rest.Size()));
    };
    Interpreter& machine = context.Machine();
    const unsigned long errorsBefore = context.UntrappedErrorCount();
    // A call into an idle engine leaves it idle again, also when an error stopped the call.
    const bool wasIdle =
        machine.ExecutionMarker() == 0 && context.Control(EngineContext::kActionQuietQuery, 0) == RunState::Idle;
    Variant returned;
    context.EnterHostCall();
    const bool finished = RunInMode(context, target, push, returned, mode, errorExit, errorsBefore);
    context.LeaveHostCall();
    if (wasIdle) {
        // The stop that an untrapped error requested has nothing left to stop.
        if (context.Control(EngineContext::kActionQuietQuery, 0) != RunState::Idle)
            (void)context.Control(EngineContext::kActionEndAll, 0);
        else
            machine.UnwindAll();
    }
    if (context.HostCallDepth() == 0)
        CarryOutDeferredHalt(context);
    fixed.WriteBack();
    rest.WriteBack();
    if (finished && context.UntrappedErrorCount() == errorsBefore) {
        if (value && !value->CopyIndirectFrom(returned.Raw()))
            return E_OUTOFMEMORY;
        return S_OK;
    }
    if (context.UntrappedErrorCount() == errorsBefore)
        return ExceptionForError(ToNumber(ErrorId::HostCallFailed), exception);
    if (exception) {
        const ErrorLocation& error = context.ErrorReport();
        FillException(*exception, error.number, error.description, error.source, error.helpFile, error.helpContext);
    }
    return DISP_E_EXCEPTION;
}

std::wstring TraceValueText(const VARIANT& value)
{
    std::wstring text;
    Variant copy;
    if (!copy.CopyIndirectFrom(value) || !WriteDebug(text, copy))
        text.clear();
    return text;
}

void TraceHostCallArguments(EngineContext& context, const Procedure& procedure, const MatchedArguments& matched)
{
    if (!context.ApiTraceOn())
        return;
    std::size_t position = 0;
    for (const VARIANT* argument : matched.fixed) {
        const std::wstring name = position < procedure.parameters.size()
                                      ? WideFromAnsi(procedure.parameters[position].name)
                                      : L"Arg" + std::to_wstring(position + 1);
        ++position;
        if (argument)
            context.Trace(TraceKind::Detail, name + L"=" + TraceValueText(*argument));
    }
    for (const VARIANT* argument : matched.rest) {
        ++position;
        if (argument)
            context.Trace(TraceKind::Detail, L"Arg" + std::to_wstring(position) + L"=" + TraceValueText(*argument));
    }
}

} // namespace brannoc
