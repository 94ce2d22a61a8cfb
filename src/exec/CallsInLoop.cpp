// Calls that the register form's statement loop runs itself, on its own native frame: the quick way in
// (an activation from the free list, its kept frame filled from the procedure's image) and the way out.
#include "exec/Interpreter.h"
#include "exec/CallEndMarker.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"

namespace brannoc {

Activation* Interpreter::TryEnterFramedCall(ProcedureCode& procedure, ModuleInstance* instance)
{
    Activation* activation = m_freeActivations;
    const FrameLayout& layout = procedure.Layout();
    const std::size_t frameSize = static_cast<std::size_t>(layout.slotCount) * sizeof(VARIANT);
    if (!activation || frameSize == 0 || activation->m_frameCapacity < frameSize || !layout.image ||
        !MayEnterCallInLoop() || m_exec.Capacity() - m_exec.Size() < 2)
        return nullptr;
    // A free activation that keeps a frame block counts as idle until it is used again.
    m_freeActivations = activation->m_nextFree;
    m_idleFrameBytes -= activation->m_frameCapacity;
    activation->ResetForCall();
    SetUpActivation(*activation, procedure, ActivationKind::Call, instance, false);
    activation->m_locals = activation->m_frameBlock;
    activation->m_localSize = frameSize;
    CopyFrameImage(static_cast<VARIANT*>(activation->m_locals), layout.image, layout.parameterCount,
                   layout.initializedCount);
    PushCallInLoop(*activation);
    return activation;
}

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

__attribute__((flatten)) void Interpreter::LeaveCallInLoop(Activation& callee)
{
    m_exec.Drop(2);
    // Activation::Release's work for a call that BeginFramedCall began (variant B, its arguments in its
    // frame), without the calls that such a call does not need.
    m_values.CutBack(callee.m_valueStackBase);
    if (callee.m_locals) {
        const FrameLayout& layout = callee.m_procedure->Layout();
        if (!layout.image) {
            callee.m_procedure->ClearLocals(callee.m_locals);
        } else if (layout.ownerCount == 0 && (layout.resultSlot < 0 || callee.m_resultTarget)) {
            // Nothing in the frame owns anything: only a Function's result moves to the caller's cell.
            if (layout.resultSlot >= 0)
                *callee.m_resultTarget = static_cast<VARIANT*>(callee.m_locals)[layout.resultSlot];
        } else {
            callee.EndFrame(*this);
        }
        callee.m_locals = nullptr;
    }
    if (callee.m_auxiliary)
        callee.SetAuxiliary(nullptr);
    if (m_current == &callee)
        m_current = callee.m_caller;
    if (ModuleInstance* instance = callee.m_instance) {
        callee.m_instance = nullptr;
        instance->EndUse();
    }
    FreeActivation(callee);
    // EndCall's work: the caller's loop still stands on the execution stack, so the run goes on.
    --m_callDepth;
}

} // namespace brannoc
