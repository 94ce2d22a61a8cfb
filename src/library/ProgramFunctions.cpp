// Built-ins about the running program: Command (the text the run was started with), Eval (an expression
// given as text), and the instructions Execute (statements given as text), Beep, DoEvents and Stop.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
#include "exec/HaltFlags.h"
#include "exec/InterpreterHost.h"
#include "library/BuiltinArguments.h"

#include <windows.h>

namespace brannoc {

namespace {

bool Command(BuiltinArguments&, BuiltinResult& result)
{
    Interpreter* interpreter = Interpreter::Current();
    return result.SetString(interpreter ? interpreter->Host().CommandText() : std::wstring());
}

// The value of an expression given as text, evaluated in the scope of the running procedure: its
// variables, its module's and the built-ins. A text that is no expression raises its compile error.
bool Eval(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    Interpreter* interpreter = Interpreter::Current();
    Variant value;
    if (!interpreter)
        return false;
    if (!interpreter->Host().EvaluateText(std::wstring(text), value))
        return HaltFlags::MustStop() ? false : interpreter->SignalError(ErrorId::NotImplemented);
    result.SetVariant(std::move(value));
    return true;
}

// Runs the statements of one line given as text, in the scope of the running procedure (its variables are
// read and assigned in place). A text that does not compile raises its compile error.
bool Execute(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    Interpreter* interpreter = Interpreter::Current();
    if (!interpreter)
        return false;
    if (!interpreter->Host().ExecuteText(std::wstring(text)))
        return HaltFlags::MustStop() ? false : interpreter->SignalError(ErrorId::NotImplemented);
    return true;
}

// Plays the system's default sound.
bool Beep(BuiltinArguments&, BuiltinResult&)
{
    MessageBeep(0);
    return true;
}

// Lets the execution thread process its pending messages once.
bool DoEvents(BuiltinArguments&, BuiltinResult&)
{
    if (Interpreter* interpreter = Interpreter::Current())
        interpreter->Host().PumpMessages();
    return true;
}

// Stops the run so that the host can continue it (a host without a debugger ends it there). The step
// counter is below 3 when the run has just resumed at this statement: continuing from a Stop does not
// stop again at once.
bool Stop(BuiltinArguments&, BuiltinResult&)
{
    Interpreter* interpreter = Interpreter::Current();
    if (!interpreter || interpreter->StepCounter() != 3 || !interpreter->DebugStopsAllowed())
        return true;
    return interpreter->RequestAction(InterpreterHost::kActionStop, 0);
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Command, ResultKind::kString, "", "", 0, 0, &Command),
    Function(Token::Eval, ResultKind::kVariant, "$", "Expr", 0, 0, &Eval),
    Instruction(Token::Execute, "$", "Text", 0, &Execute),
    Instruction(Token::Beep, "", "", 0, &Beep),
    Instruction(Token::DoEvents, "", "", 0, &DoEvents),
    Instruction(Token::Stop, "", "", 0, &Stop),
};

} // namespace

BuiltinGroup ProgramFunctions() { return kRecords; }

} // namespace brannoc
