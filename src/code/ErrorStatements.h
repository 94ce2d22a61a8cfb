#pragma once
// The error-handling statements: On Error, Resume and the statements on the Err object (Err.Raise,
// Err.Clear and assignments to its properties).
#include "code/ProcedureBody.h"
#include "exec/ErrObject.h"
#include "exec/ErrorHandler.h"

namespace brannoc {

// On Error Resume Next, On Error GoTo label, On Error GoTo 0: the statement itself becomes (or stops
// being) the handler in force in its activation.
class OnErrorStatement final : public Statement, public ErrorHandler {
public:
    enum class Mode { ResumeNext, GoToLabel, Disable };

    explicit OnErrorStatement(Mode mode) : m_mode(mode) {}
    [[nodiscard]] bool Execute() override;
    int HandlerTarget() const override { return m_mode == Mode::ResumeNext ? kResumeNext : m_target; }
    void SetTarget(int index) { m_target = index; }

private:
    Mode m_mode;
    int m_target = 0;
};

// Resume Next and Resume label: only inside a running handler (else 10071); both leave handler mode
// and clear Err.
class ResumeStatement final : public Statement {
public:
    explicit ResumeStatement(bool next) : m_next(next) {}
    [[nodiscard]] bool Execute() override;
    void SetTarget(int index) { m_target = index; }

private:
    bool m_next;
    int m_target = 0;
};

// Err.Raise (its code leaves five arguments, left-out ones as missing values), Err.Clear, and
// Err.property = value (its code leaves the value).
class ErrStatement final : public Statement {
public:
    ErrStatement(ErrMember member, Expression code) : m_member(member), m_code(std::move(code)) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    ErrMember m_member;
    Expression m_code;
};

// Pushes the value of an Err property (the code of Err and Err.property in expressions). False after
// raising.
[[nodiscard]] bool PushErrProperty(const RunContext& context, ErrMember member);

} // namespace brannoc
