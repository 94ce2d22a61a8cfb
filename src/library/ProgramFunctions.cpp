// Built-ins about the running program: Command (the text the run was started with), and the
// instructions Beep and DoEvents.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
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

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Command, ResultKind::kString, "", "", 0, 0, &Command),
    Instruction(Token::Beep, "", "", 0, &Beep),
    Instruction(Token::DoEvents, "", "", 0, &DoEvents),
};

} // namespace

BuiltinGroup ProgramFunctions() { return kRecords; }

} // namespace brannoc
