#include "code/ErrorStatements.h"

#include "exec/Activation.h"
#include "exec/Interpreter.h"

namespace brannoc {

namespace {

constexpr int kRaiseArguments = 5;

} // namespace

bool OnErrorStatement::Execute()
{
    Activation* activation = Interpreter::Current()->CurrentActivation();
    activation->SetActiveHandler(m_mode == Mode::Disable ? nullptr : this);
    return true;
}

bool ResumeStatement::Execute()
{
    Interpreter* interpreter = Interpreter::Current();
    Activation* activation = interpreter->CurrentActivation();
    if (!activation->IsRunningHandler()) {
        (void)interpreter->SignalError(ErrorId::ResumeOutsideHandler);
        return true;
    }
    if (m_next) {
        activation->SetIndexes(activation->ResumeIndex(), activation->ResumePosition());
    } else {
        // Moving to a label leaves every With block of the procedure.
        interpreter->Values().CutBack(activation->ValueStackBase());
        activation->SetWithDepth(0);
        activation->SetIndexes(m_target);
    }
    activation->SetResumeIndex(Activation::kNoResume);
    interpreter->ClearErr();
    return true;
}

bool ErrStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    Interpreter& interpreter = *context.interpreter;
    ValueStack& values = interpreter.Values();
    bool done = true;
    switch (m_member) {
    case ErrMember::Clear:
        interpreter.ClearErr();
        break;
    case ErrMember::Raise:
        done = RaiseFromErr(interpreter, &values.At(values.Size() - kRaiseArguments));
        break;
    default:
        done = WriteErrProperty(interpreter, m_member, values.Top());
        break;
    }
    if (!done)
        return Fail(context, entry);
    values.CutBack(context.activation->StatementBase());
    entry.state = ExecEntry::kFinished;
    return true;
}

bool PushErrProperty(const RunContext& context, ErrMember member)
{
    Variant* slot = context.interpreter->Values().Push();
    if (!slot)
        return context.interpreter->RaiseOutOfMemory();
    return ReadErrProperty(context.interpreter->Error(), member, *slot);
}

} // namespace brannoc
