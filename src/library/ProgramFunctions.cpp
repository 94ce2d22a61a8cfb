// Built-ins about the running program: Command (the text the run was started with), and the
// instructions Beep, DoEvents and Stop.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
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
    if (!interpreter || interpreter->StepCounter() != 3)
        return true;
    return interpreter->RequestAction(InterpreterHost::kActionStop, 0);
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Command, ResultKind::kString, "", "", 0, 0, &Command),
    Instruction(Token::Beep, "", "", 0, &Beep),
    Instruction(Token::DoEvents, "", "", 0, &DoEvents),
    Instruction(Token::Stop, "", "", 0, &Stop),
};

} // namespace

BuiltinGroup ProgramFunctions() { return kRecords; }

} // namespace brannoc
