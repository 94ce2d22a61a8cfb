#include "exec/ProcedureCode.h"

#include "exec/Interpreter.h"

namespace brannoc {

bool ProcedureCode::Execute()
{
    Interpreter* interpreter = Interpreter::Current();
    if (interpreter)
        (void)interpreter->CallProcedure(*this, ActivationKind::Call, nullptr);
    return false;
}

} // namespace brannoc
