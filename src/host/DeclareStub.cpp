// KZ_CallProcError: the target the language's Declare statements are bound to while calls into other
// libraries are not available; it raises "Declare is not implemented." in the running macro.
#include "brannoc.h"
#include "exec/Interpreter.h"
#include "host/EngineLock.h"

extern "C" LONG __stdcall KZ_CallProcError(void)
{
    // Called from outside the engine (a Declare call or a host callback gave it up): the running macro
    // is this thread's again only once the engine is held.
    brannoc::EngineLockScope lock;
    brannoc::Interpreter::RaiseOnCurrent(brannoc::kErrorDeclareNotImplemented);
    return 0;
}
