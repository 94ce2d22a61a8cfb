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

bool ProcedureCode::BindArguments(void* frame, Variant* arguments)
{
    const int count = ParameterCount();
    for (int i = 0; i < count; ++i) {
        if (!BindParameter(i, frame, arguments[i]))
            return false;
    }
    return true;
}

} // namespace brannoc
