#pragma once
// Calls that the register form's statement loop runs itself, on its own native frame: the quick way in
// (an activation from the free list, its kept frame filled from the procedure's image) and the way out.
// Defined here, in line, for that loop, which is their only user.
#include "exec/Activation.h"
#include "exec/CallEndMarker.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"

namespace brannoc {

[[gnu::always_inline]] inline Activation* Interpreter::TryEnterFramedCall(ProcedureCode& procedure, ModuleInstance* instance)
{
    Activation* activation = m_freeActivations;
    const FrameLayout& layout = procedure.Layout();
    // The halt byte is not tested here: a request or error recorded before the call stops the callee at
    // its first statement's marker, before anything of it runs, where a call begun the scheduled way
    // would wait on the execution stack.
    if (!activation || activation->m_frameCapacity < layout.quickFrameBytes || m_callDepth >= kMaxCallDepth ||
        m_stepCounter < 1 || m_runLevel < 1 || m_exec.Capacity() - m_exec.Size() < 2)
        return nullptr;
    m_freeActivations = activation->m_nextFree;
    activation->ResetForCall();
    SetUpActivation(*activation, procedure, ActivationKind::Call, instance, false);
    activation->m_locals = activation->m_frameBlock;
    activation->m_localSize = layout.quickFrameBytes;
    CopyFrameImage(static_cast<VARIANT*>(activation->m_locals), layout.image, layout.parameterCount,
                   layout.initializedCount);
    PushCallInLoop(*activation);
    return activation;
}

[[gnu::always_inline]] inline void Interpreter::LeaveCallInLoop(Activation& callee)
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
