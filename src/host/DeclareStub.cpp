// KZ_CallProcError: the target the language's Declare statements are bound to while calls into other
// libraries are not available; it raises "Declare is not implemented." in the running macro.
#include "brannoc.h"
#include "exec/Interpreter.h"

extern "C" LONG __stdcall KZ_CallProcError(void)
{
    brannoc::Interpreter::RaiseOnCurrent(10160);
    return 0;
}
