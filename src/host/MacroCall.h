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

struct MacroCallTarget {
    Procedure* procedure = nullptr;
    ModuleInstance* instance = nullptr;
};

// Runs target with the matched arguments (arguments given by reference stay references, so the
// procedure's assignments reach them; the others are copied). value (when given) receives a
// Function's result with references followed. S_OK when the procedure returned; DISP_E_EXCEPTION
// with exception filled (when given) from the error the call left; E_OUTOFMEMORY when the value
// stack or a copy could not be made. Must run inside the engine's entry guard. With
// Interpreter::ErrorExit::kToCaller (a call that running code makes) an untrapped error ends only the
// call and stays in the interpreter's error object for the caller to raise.
HRESULT CallMacroProcedure(EngineContext& context, const MacroCallTarget& target, const MatchedArguments& arguments,
                           Variant* value, EXCEPINFO* exception,
                           Interpreter::ErrorExit errorExit = Interpreter::ErrorExit::kReport);

// DISP_E_EXCEPTION with exception (when given) describing error number with its message.
HRESULT ExceptionForError(long number, EXCEPINFO* exception);

// Whether the engine is halted by an unrecoverable error (calls into it answer error 10200).
bool IsHaltedForGood();

} // namespace brannoc
