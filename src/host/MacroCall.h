#pragma once
// A call that a host makes into a macro procedure from outside (fire objects, handlers, event sinks):
// the procedure runs to its end inside the call, and a failure comes back as an automation exception
// made from the engine's error record.
#include "exec/Interpreter.h"
#include "host/ArgumentMatching.h"
#include <oaidl.h>
#include <string>

namespace brannoc {

class EngineContext;
class ModuleInstance;
class Variant;
struct Procedure;

// How a host call into macros treats debugging.
enum class HostCallMode {
    // Runs to its end inside the call: break points and Stop statements do not stop it.
    kPlain,
    // A break point (or a Stop, or a step) stops the engine in the procedure; the caller waits, serving
    // the host's messages, until the host's debugger has gone on with the call to its end.
    kNormal,
    // As kNormal, stopping at the procedure's first line (a step into the call).
    kStepInto,
};

struct MacroCallTarget {
    Procedure* procedure = nullptr;
    ModuleInstance* instance = nullptr;
};

// Runs target with the matched arguments (arguments given by reference stay references, so the
// procedure's assignments reach them; the others are copied). value (when given) receives a
// Function's result with references followed. S_OK when the procedure returned; DISP_E_EXCEPTION
// with exception filled (when given) from the error the call left; E_OUTOFMEMORY when the value
// stack or a copy could not be made. Must run inside the engine's entry guard. Outside plain mode the
// call goes as the engine's state asks: into an idle engine it runs until it returns or stops; into a
// stopped engine it stops at the procedure's first line and leaves the engine stopped afterwards. With
// Interpreter::ErrorExit::kToCaller (a call that running code makes) an untrapped error ends only the
// call and stays in the interpreter's error object for the caller to raise.
HRESULT CallMacroProcedure(EngineContext& context, const MacroCallTarget& target, const MatchedArguments& arguments,
                           Variant* value, EXCEPINFO* exception, HostCallMode mode = HostCallMode::kPlain,
                           Interpreter::ErrorExit errorExit = Interpreter::ErrorExit::kReport);

// The mode of a host call that may be debugged: plain while the engine is inside a single step or
// evaluating; a step into the call when stepInto is set or a Step was asked for while the engine was not
// active (that request is then used up); else normal.
HostCallMode DebuggableCallMode(EngineContext& context, bool stepInto);

// A value as the API trace writes it: its debugging display, references followed.
std::wstring TraceValueText(const VARIANT& value);
// With the API trace on, one detail line per argument of a host call: the parameter's name, "=" and the
// value's text ("Arg" and the argument's position for one past the declared parameters).
void TraceHostCallArguments(EngineContext& context, const Procedure& procedure, const MatchedArguments& matched);

// DISP_E_EXCEPTION with exception (when given) describing error number with its message.
HRESULT ExceptionForError(long number, EXCEPINFO* exception);

// Whether the engine is halted by an unrecoverable error (calls into it answer error 10200).
bool IsHaltedForGood();

} // namespace brannoc
