// Built-ins about the running program: Command (the text the run was started with), Eval (an expression
// given as text), and the instructions Execute (statements given as text), MacroRun and MacroRunThis
// (start another macro), Beep, DoEvents and Stop.
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

// The name under which a macro given as text runs (its errors and its stack frames show it).
constexpr wchar_t kMacroTextName[] = L"MacroRunThis";

// Raises the error that a start answered, if any.
bool StartMacro(const std::wstring& name, std::wstring_view command, const std::wstring* text)
{
    Interpreter* interpreter = Interpreter::Current();
    if (!interpreter)
        return false;
    const long error = interpreter->Host().StartMacroFromCode(name, std::wstring(command), text);
    return error == 0 || interpreter->SignalError(error);
}

// Starts the named macro with an optional command text (the started macro's Command). The calling macro
// is running, so the start is queued: the started macro runs before the caller's next statement, and the
// caller goes on after it.
bool MacroRun(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring_view name;
    std::wstring_view command;
    if (!arguments.String(0, name) || (arguments.IsGiven(1) && !arguments.String(1, command)))
        return false;
    return StartMacro(std::wstring(name), command, nullptr);
}

// Starts the macro whose text is given, as MacroRun starts a named one.
bool MacroRunThis(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    const std::wstring source(text);
    return StartMacro(kMacroTextName, {}, &source);
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
    Instruction(Token::MacroRun, "$$", "MacroName Command", 0b10, &MacroRun),
    Instruction(Token::MacroRunThis, "$", "MacroCode", 0, &MacroRunThis),
    Instruction(Token::Beep, "", "", 0, &Beep),
    Instruction(Token::DoEvents, "", "", 0, &DoEvents),
    Instruction(Token::Stop, "", "", 0, &Stop),
};

} // namespace

BuiltinGroup ProgramFunctions() { return kRecords; }

} // namespace brannoc
