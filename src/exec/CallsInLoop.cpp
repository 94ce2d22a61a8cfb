// Calls that the register form's statement loop runs itself: whether one that ended may go back into its
// caller's loop.
#include "exec/Interpreter.h"
#include "exec/CallEndMarker.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"

namespace brannoc {

bool Interpreter::MayReturnIntoCaller(const Activation& callee, const ExecEntry& entry,
                                      StatementRunner runner) const noexcept
{
    const Activation* caller = callee.m_caller;
    // A call from the host (or one whose errors go back to a host call) ends where the host sees it.
    if (&entry != m_steppedEntry || callee.m_kind != ActivationKind::Call || callee.m_popArguments || !caller ||
        callee.m_hostCallBoundary || callee.m_passesErrorsOut ||
        caller->m_resumeOperation < 0 || caller->m_procedure->Table().runner != runner || HaltFlags::Any() ||
        m_stepCounter < 1 || m_runLevel < 1)
        return false;
    // The stack's top: the caller, the callee's call-end marker, the callee; the caller inside this run.
    const std::size_t size = m_exec.Size();
    return size >= 3 && size - 3 >= m_runFloor && m_exec.At(size - 1).executor == &callee &&
           m_exec.At(size - 2).executor == &CallEndMarker::Instance() && m_exec.At(size - 3).executor == caller &&
           m_exec.At(size - 3).state != ExecEntry::kFinished;
}

} // namespace brannoc
