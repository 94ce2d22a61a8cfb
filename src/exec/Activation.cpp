#include "exec/Activation.h"

#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"

namespace brannoc {

void Activation::Release()
{
    Interpreter& interpreter = *m_interpreter;
    End();
    interpreter.FreeActivation(*this);
}

void Activation::End()
{
    Interpreter& interpreter = *m_interpreter;
    if (m_kind == ActivationKind::Entry)
        interpreter.UnlinkEntry(*this);
    interpreter.m_values.CutBack(m_valueStackBase);
    if (m_locals) {
        if (m_procedure->Layout().image)
            EndFrame(interpreter);
        else
            m_procedure->ClearLocals(m_locals);
        m_locals = nullptr;
    }
    if (m_popArguments) {
        const auto count = static_cast<std::size_t>(m_procedure->ParameterCount());
        interpreter.m_values.CutBack(m_valueStackBase >= count ? m_valueStackBase - count : 0);
    }
    SetAuxiliary(nullptr);
    if (interpreter.m_current == this)
        interpreter.m_current = m_caller;
    // Last: an abandoned instance whose last use this was goes now.
    if (ModuleInstance* instance = m_instance) {
        m_instance = nullptr;
        instance->EndUse();
    }
}

void Activation::EndFrame(Interpreter& interpreter)
{
    const FrameLayout& layout = m_procedure->Layout();
    auto* slots = static_cast<VARIANT*>(m_locals);
    if (layout.resultSlot >= 0 && m_resultTarget) {
        // A call of the register form: the result moves into the caller's cell, which owns nothing.
        *m_resultTarget = slots[layout.resultSlot];
        slots[layout.resultSlot].vt = VT_EMPTY;
    } else if (layout.resultSlot >= 0) {
        // The caller pushed the result slot below the arguments; the stack is back at that height. The
        // placeholder owns nothing: the result moves over it.
        ValueStack& values = interpreter.m_values;
        const auto below = static_cast<std::size_t>(layout.parameterCount) + 1;
        if (values.Size() >= below) {
            VARIANT& target = values.At(values.Size() - below).Raw();
            if (target.vt == VT_ERROR && target.scode == kResultSlotStatus) {
                target = slots[layout.resultSlot];
                slots[layout.resultSlot].vt = VT_EMPTY;
            }
        }
    }
    // References and values that own nothing need no release; the frame's memory is reused as it is.
    for (int i = 0; i < layout.ownerCount; ++i) {
        VARIANT& slot = slots[layout.ownerSlots[i]];
        if (!OwnsNothing(slot.vt)) {
            Variant owner;
            owner.Attach(slot);
        }
    }
}

void Activation::SetAuxiliary(Node* object) noexcept
{
    if (m_auxiliary && m_auxiliary != object)
        delete m_auxiliary;
    m_auxiliary = object;
}

bool Activation::Step(ExecEntry& entry)
{
    Interpreter& interpreter = *m_interpreter;
    if (entry.state == 0) {
        entry.state = 1;
        return false;
    }
    if (m_kind == ActivationKind::Entry && entry.state == 1) {
        entry.state = 2;
        // Only this activation and its call-end marker: the run is at its very start.
        if (interpreter.m_exec.Size() == 2) {
            interpreter.m_stepCounter = 2;
            interpreter.CheckNextStatement();
        }
    }
    const StatementTable& table = m_procedure->Table();
    if (table.runner)
        return table.runner(*this, entry, table.runnerData);
    return RunStatements(entry);
}

bool Activation::RunStatements(ExecEntry& entry)
{
    Interpreter& interpreter = *m_interpreter;
    const StatementTable& table = m_procedure->Table();
    if (!table.statements)
        return StepThroughProcedure(entry);
    Node* const* statements = table.statements;
    const std::uint8_t* empty = table.empty;
    const int last = table.last;
    int next = m_nextIndex;
    while (next <= last) {
        m_currentIndex = next;
        if (empty[next]) {
            m_nextIndex = ++next;
            continue;
        }
        // A statement that must not run now is tried again on a later step.
        if (interpreter.StatementCheckStops())
            return false;
        m_nextIndex = next + 1;
        if (!statements[next]->Execute())
            return false;
        // A request recorded while the statement ran is carried out before the next one.
        if (HaltFlags::Any())
            return false;
        // The statement may have moved the execution point.
        next = m_nextIndex;
    }
    entry.state = ExecEntry::kFinished;
    return !HaltFlags::Any();
}

bool Activation::StepThroughProcedure(ExecEntry& entry)
{
    Interpreter& interpreter = *m_interpreter;
    const int last = m_procedure->LastStatementIndex();
    while (m_nextIndex <= last) {
        m_currentIndex = m_nextIndex;
        if (m_procedure->IsEmptyStatement(m_currentIndex)) {
            ++m_nextIndex;
            continue;
        }
        if (interpreter.StatementCheckStops())
            return false;
        Node* statement = m_procedure->StatementAt(m_currentIndex);
        ++m_nextIndex;
        if (!statement->Execute())
            return false;
        if (HaltFlags::Any())
            return false;
    }
    entry.state = ExecEntry::kFinished;
    return !HaltFlags::Any();
}

void Activation::Print(std::string& out) const { m_procedure->Print(out); }

} // namespace brannoc
