#include "host/Evaluator.h"

#include "code/ProcedureBody.h"
#include "exec/ErrorMessages.h"
#include "exec/HaltFlags.h"
#include "exec/ModuleInstance.h"
#include "frontend/CompileMessage.h"
#include "frontend/EvaluationCompiler.h"
#include "frontend/Module.h"
#include "host/EngineContext.h"

namespace brannoc {

// One evaluation in progress: its hidden Function and the module in whose scope it was compiled.
struct Evaluator::Running {
    CompiledEvaluation compiled;
    Module* module = nullptr;
};

namespace {

// Offset of the payload inside a VARIANT (where typed references point).
constexpr std::size_t kPayloadOffset = 8;

// Makes argument a by-reference value that refers to a variable's storage of its declared type, as a
// by-reference argument of the variable itself would be.
void ReferTo(Variant& argument, VARIANT* storage, TypeCode type)
{
    const VARTYPE tag = StorageTag(type);
    if (tag == VT_RECORD) {
        MakeReference(argument, storage, type);
        return;
    }
    VARIANT& reference = argument.Raw();
    reference.vt = static_cast<VARTYPE>(VT_BYREF | tag);
    reference.byref = tag == VT_VARIANT ? static_cast<void*>(storage) : reinterpret_cast<char*>(storage) + kPayloadOffset;
}

ErrorRecord Failure(long number, std::wstring description = {})
{
    ErrorRecord error;
    error.number = number;
    error.description = description.empty() ? MessageFor(number) : std::move(description);
    return error;
}

} // namespace

Evaluator::Evaluator(EngineContext& context) : m_context(context) {}

Evaluator::~Evaluator() = default;

Module& Evaluator::HiddenModule()
{
    if (!m_hidden) {
        // Evaluations outside any frame are compiled in the scope of an empty module of their own.
        m_hidden = std::make_unique<Module>("*Evaluate", std::string(), 3);
        m_hidden->SetCompiled(std::make_unique<CompiledModule>());
        m_hiddenInstance = std::make_unique<ModuleInstance>(*m_hidden);
        m_hiddenInstance->AddUse();
    }
    return *m_hidden;
}

Activation* Evaluator::FrameAt(int depth) const
{
    Activation* frame = m_context.Machine().CurrentActivation();
    for (int i = 0; frame && i < depth; ++i)
        frame = frame->Caller();
    return frame;
}

bool Evaluator::IsEvaluationCode(const ProcedureCode& code) const
{
    for (const Running* running : m_running) {
        if (running->compiled.procedure && running->compiled.procedure->code.get() == &code)
            return true;
    }
    return false;
}

std::string Evaluator::BodyLine(Kind kind, const std::string& text, const std::string& value)
{
    const std::string result(kEvaluationResultName);
    switch (kind) {
    case Kind::kValue: return result + " = " + text;
    case Kind::kObject: return "Set " + result + " = " + text;
    case Kind::kAssign: return text + " = " + value;
    case Kind::kStatement: break;
    }
    return text;
}

bool Evaluator::RunLine(const std::string& line, Activation* frame, Variant& result, ErrorRecord& error)
{
    ModuleManager& modules = m_context.Modules();
    Interpreter& machine = m_context.Machine();
    auto running = std::make_unique<Running>();
    CompiledProcedure* frameCode = nullptr;
    ModuleInstance* instance = nullptr;
    if (frame) {
        running->module = modules.ModuleOf(frame->OwnProcedure());
        for (const Running* outer : m_running) {
            if (!running->module && outer->compiled.procedure->code.get() == &frame->OwnProcedure())
                running->module = outer->module;
        }
        frameCode = dynamic_cast<CompiledProcedure*>(&frame->OwnProcedure());
        instance = frame->Instance();
    }
    if (!running->module || !instance || !frameCode) {
        frame = nullptr;
        frameCode = nullptr;
        running->module = &HiddenModule();
        instance = m_hiddenInstance.get();
    }
    // Each evaluation runs nested on the native stack; an Eval that evaluates itself again and again
    // ends with Overflow, as too deep a call chain does.
    if (m_running.size() >= kMaxNesting) {
        error = Failure(ToNumber(ErrorId::Overflow));
        return false;
    }
    static const std::vector<LocalName> kNoNames;
    const std::vector<LocalName>& names = frameCode ? frameCode->LocalNames() : kNoNames;
    if (!CompileEvaluation(*running->module, names, line, m_context.BlockedKeywords(), running->compiled)) {
        const CompileError& failure = running->compiled.error;
        error = Failure(failure.number == 0 ? ToNumber(ErrorId::FunctionTerminated) : static_cast<long>(failure.number),
                        failure.message);
        return false;
    }

    // The result slot, then a reference to each of the frame's variables.
    const auto push = [&](ValueStack& values) {
        Variant* slot = values.Push();
        if (!slot)
            return false;
        slot->Raw().vt = VT_ERROR;
        slot->Raw().scode = kResultSlotStatus;
        for (const LocalName& name : names) {
            Variant* argument = values.Push();
            if (!argument)
                return false;
            VARIANT* storage = name.ref.scope == StorageScope::Static
                                   ? &frameCode->StaticAt(name.ref.index)
                                   : static_cast<VARIANT*>(frame->Locals()) + name.ref.index;
            while (storage->vt == (VT_BYREF | VT_VARIANT))
                storage = storage->pvarVal;
            ReferTo(*argument, storage, name.ref.type);
        }
        return true;
    };
    m_running.push_back(running.get());
    const bool ran = modules.RunNested(*running->compiled.procedure->code, *instance, push, &result,
                                       Interpreter::ErrorExit::kToCaller);
    m_running.pop_back();
    if (ran)
        return true;
    error = machine.Error();
    if (error.number == 0)
        error = Failure(ToNumber(ErrorId::FunctionTerminated));
    return false;
}

bool Evaluator::EvaluateForHost(Kind kind, const std::string& text, const std::string& value, int depth,
                                Variant& result, ErrorRecord& error)
{
    Interpreter& machine = m_context.Machine();
    if (machine.IsEvaluating() || m_context.IsBusy()) {
        error = Failure(MessageNumber(CompileMessage::AlreadyEvaluatingAnExpression));
        return false;
    }
    Activation* frame = FrameAt(depth < 0 ? 0 : depth);
    // The run around the evaluation stays as it is: its error object, its stepping target and the
    // count that keeps it from stopping where it resumes.
    ErrorRecord saved = machine.Error();
    const int runDepth = machine.RunDepth();
    const int stepCounter = machine.StepCounter();
    machine.SetEvaluating(true);
    machine.PrepareRun(0);
    const bool evaluated = RunLine(BodyLine(kind, text, value), frame, result, error);
    HaltFlags::Clear(HaltFlags::kEvaluationError);
    machine.SetEvaluating(false);
    machine.PrepareRun(runDepth);
    machine.SetStepCounter(stepCounter);
    machine.RestoreErr(std::move(saved));
    return evaluated;
}

bool Evaluator::EvaluateForCode(const std::string& text, Variant& result)
{
    return RunForCode(Kind::kValue, text, result);
}

bool Evaluator::ExecuteForCode(const std::string& text)
{
    Variant ignored;
    return RunForCode(Kind::kStatement, text, ignored);
}

bool Evaluator::RunForCode(Kind kind, const std::string& text, Variant& result)
{
    Interpreter& machine = m_context.Machine();
    ErrorRecord error;
    // The code runs nested inside the calling statement, which cannot pause or end in the middle: a Stop,
    // a break point or a step target inside it is passed over, and an End raises "Invalid instruction."
    // where the caller can trap it (a stop or end performed inside would unwind the caller's frames
    // under the statement that is still running them).
    const int runDepth = machine.RunDepth();
    const int stepCounter = machine.StepCounter();
    machine.EnterPlainCall();
    machine.EnterHostCall();
    machine.PrepareRun(0);
    const bool ran = RunLine(BodyLine(kind, text, {}), machine.CurrentActivation(), result, error);
    machine.LeaveHostCall();
    machine.LeavePlainCall();
    machine.PrepareRun(runDepth);
    machine.SetStepCounter(stepCounter);
    if (ran)
        return true;
    return machine.RaiseRuntimeError(error.number, error.description, error.source, error.helpFile,
                                     error.helpContext);
}

} // namespace brannoc
