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
        if (interpreter.m_exec.Size() == 2)
            interpreter.m_stepCounter = 2;
    }
    const int last = m_procedure->LastStatementIndex();
    const StatementTable& table = m_procedure->Table();
    while (m_nextIndex <= last) {
        m_currentIndex = m_nextIndex;
        const bool empty = table.empty ? table.empty[m_currentIndex] != 0 : m_procedure->IsEmptyStatement(m_currentIndex);
        if (empty) {
            ++m_nextIndex;
            continue;
        }
        // The same statement is tried again on the next step.
        if (interpreter.BreakTestStops())
            return false;
        Node* statement = table.statements ? table.statements[m_currentIndex] : m_procedure->StatementAt(m_currentIndex);
        ++m_nextIndex;
        if (!statement->Execute())
            return false;
        // A request recorded while the statement ran is carried out before the next one.
        if (HaltFlags::Any())
            return false;
        if (interpreter.YieldDue())
            return false;
    }
    entry.state = ExecEntry::kFinished;
    return !HaltFlags::Any();
}

void Activation::Print(std::string& out) const { m_procedure->Print(out); }

} // namespace brannoc
