#pragma once
// One procedure call in progress. It is itself the executor on the execution stack: its Step runs the
// procedure's statements one after another until one of them yields, and its Release ends the call.
#include "code/Node.h"
#include "exec/ErrorHandler.h"
#include "exec/ProcedureCode.h"
#include "values/Variant.h"

#include <cstddef>
#include <utility>

namespace brannoc {

class Interpreter;
class ProcedureCode;
class ModuleInstance;

// Variant A is the entry procedure that a module start schedules; it links itself into the engine's
// list of entry activations. Every other call is variant B.
enum class ActivationKind { Entry, Call };

class Activation final : public Node {
public:
    static constexpr int kNoResume = -1;

    void Release() override;
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    void Print(std::string& out) const override;

    ActivationKind Kind() const noexcept { return m_kind; }
    ProcedureCode& OwnProcedure() const noexcept { return *m_procedure; }
    Activation* Caller() const noexcept { return m_caller; }
    ModuleInstance* Instance() const noexcept { return m_instance; }

    // A begun call's first step when it runs in line (its entry already past its first state): the
    // statement loop from the first statement, without Step's checks for scheduled and entry activations.
    [[nodiscard]] bool RunFromStart(ExecEntry& entry)
    {
        const StatementTable& table = m_procedure->Table();
        return table.runner ? table.runner(*this, entry, table.runnerData) : RunStatements(entry);
    }
    // The statement loop: runs the statements from the next index until one yields or the procedure
    // ends (Step's work from state 1 on).
    [[nodiscard]] bool RunStatements(ExecEntry& entry);

    int CurrentIndex() const noexcept { return m_currentIndex; }
    // A statement loop enters statement index: it is current, the one after it next.
    void EnterStatement(int index) noexcept
    {
        m_currentIndex = index;
        m_nextIndex = index + 1;
    }
    // A statement loop stops before statement index, which runs when the loop goes on.
    void HoldAt(int index) noexcept { m_currentIndex = m_nextIndex = index; }
    int NextIndex() const noexcept { return m_nextIndex; }
    // Moves the execution point: the statement at index runs next, from its start.
    void SetIndexes(int index) noexcept
    {
        m_currentIndex = m_nextIndex = index;
        m_entryPosition = 0;
        m_resumeOperation = -1;
    }
    // Moves the execution point into a line of several statements: its statement at position runs next.
    void SetIndexes(int index, int position) noexcept
    {
        m_currentIndex = m_nextIndex = index;
        m_entryPosition = position;
        m_resumeOperation = -1;
    }
    // A statement loop of the procedure's own that stopped inside a statement (a call that did not end
    // at once) continues at its operation `operation`; moving the execution point cancels it.
    void SetResumeOperation(int operation) noexcept { m_resumeOperation = operation; }
    int TakeResumeOperation() noexcept { return std::exchange(m_resumeOperation, -1); }
    // Where a Function's result goes when the call ends, instead of the placeholder on the value stack
    // (a call of the register form); null for the placeholder.
    void SetResultTarget(VARIANT* target) noexcept { m_resultTarget = target; }
    // The position a line of several statements starts at, which is 0 again once taken.
    int TakeEntryPosition() noexcept { return std::exchange(m_entryPosition, 0); }

    int ResumeIndex() const noexcept { return m_resumeIndex; }
    // Within a line of several statements, the position Resume Next continues at (0: the line's start).
    int ResumePosition() const noexcept { return m_resumePosition; }
    void SetResumeIndex(int index, int position = 0) noexcept
    {
        m_resumeIndex = index;
        m_resumePosition = position;
    }
    // A line of several statements publishes, before each of them, the position of the statement after
    // it (0 after its last one), so that Resume Next continues there when the statement fails.
    void SetPositionAfter(int index, int position) noexcept
    {
        m_positionLine = index;
        m_positionAfter = position;
    }
    // The position within the current line after the statement that is running or failed; 0 when the
    // line holds one statement, or the failing one was its last.
    int PositionAfterCurrent() const noexcept { return m_positionLine == m_currentIndex ? m_positionAfter : 0; }
    std::size_t ValueStackBase() const noexcept { return m_valueStackBase; }
    int WithDepth() const noexcept { return m_withDepth; }
    void SetWithDepth(int depth) noexcept { m_withDepth = depth; }
    // Where each statement starts and ends on the value stack: above the base, the With objects.
    std::size_t StatementBase() const noexcept { return m_valueStackBase + static_cast<std::size_t>(m_withDepth); }
    bool IsHostCallBoundary() const noexcept { return m_hostCallBoundary; }
    void SetHostCallBoundary(bool on) noexcept { m_hostCallBoundary = on; }
    // A host call made by running code (an object's member reached through its dispatch interface):
    // an error that no handler inside the call traps ends the call and goes back to that code.
    bool PassesErrorsOut() const noexcept { return m_passesErrorsOut; }
    void SetPassesErrorsOut(bool on) noexcept { m_passesErrorsOut = on; }
    // The On Error statement in force, or null.
    const ErrorHandler* ActiveHandler() const noexcept { return m_activeHandler; }
    void SetActiveHandler(const ErrorHandler* handler) noexcept { m_activeHandler = handler; }
    // True while an error handler of this activation runs (between the trap and Resume or the exit).
    bool IsRunningHandler() const noexcept { return m_resumeIndex != kNoResume; }
    // One owned object, destroyed with the activation (replacing it destroys the previous one).
    void SetAuxiliary(Node* object) noexcept;

    void* Locals() const noexcept { return m_locals; }
    std::size_t LocalSize() const noexcept { return m_localSize; }

    // Next older entry activation in the engine's list (variant A only).
    Activation* NextEntry() const noexcept { return m_nextEntry; }

private:
    friend class Interpreter;
    Activation() = default;

    // Everything of a previous call that setting up a new one does not set anew.
    void ResetForCall() noexcept
    {
        m_nextFree = nullptr;
        m_currentIndex = 0;
        m_nextIndex = 0;
        m_entryPosition = 0;
        m_resumeOperation = -1;
        m_resultTarget = nullptr;
        m_resumeIndex = kNoResume;
        m_resumePosition = 0;
        m_positionLine = -1;
        m_positionAfter = 0;
        m_withDepth = 0;
        m_hostCallBoundary = false;
        m_passesErrorsOut = false;
        m_activeHandler = nullptr;
        m_localSize = 0;
        m_nextEntry = nullptr;
    }
    // Ends the call: cuts the value stack back, frees the locals, makes the caller current.
    void End();
    // Ends a frame laid out for the quick call path: a Function's result moves to the register form's
    // result target, or else over its placeholder on the value stack, and what the locals own is released.
    void EndFrame(Interpreter& interpreter);
    // The statement loop for procedures that give their statements only through virtual calls.
    [[nodiscard]] bool StepThroughProcedure(ExecEntry& entry);

    Interpreter* m_interpreter = nullptr;
    ProcedureCode* m_procedure = nullptr;
    Activation* m_caller = nullptr;
    ModuleInstance* m_instance = nullptr;
    ActivationKind m_kind = ActivationKind::Call;
    int m_currentIndex = 0;
    int m_nextIndex = 0;
    int m_entryPosition = 0;
    int m_resumeOperation = -1;
    VARIANT* m_resultTarget = nullptr;
    int m_resumeIndex = kNoResume;
    int m_resumePosition = 0;
    int m_positionLine = -1;
    int m_positionAfter = 0;
    std::size_t m_valueStackBase = 0;
    int m_withDepth = 0;
    bool m_popArguments = false;
    bool m_hostCallBoundary = false;
    bool m_passesErrorsOut = false;
    const ErrorHandler* m_activeHandler = nullptr;
    Node* m_auxiliary = nullptr;
    void* m_locals = nullptr;
    std::size_t m_localSize = 0;
    // The frame storage, kept while the activation waits on the interpreter's free list (m_locals points
    // at it during a call that has a frame).
    void* m_frameBlock = nullptr;
    std::size_t m_frameCapacity = 0;
    Activation* m_nextEntry = nullptr;
    // Link in the interpreter's free list while the object is not in use.
    Activation* m_nextFree = nullptr;
};

} // namespace brannoc
