#pragma once
// Statements about object references: Set, and the With block that keeps its object on the value stack.
#include "code/Statements.h"

#include <string>

namespace brannoc {

// Set variable = value: the value must be an object reference (Nothing included). A WithEvents
// variable tells the engine, which moves the variable's event link to the new object.
class SetStatement final : public Statement {
public:
    SetStatement(Expression value, VariableRef target, bool withEvents = false)
        : m_value(std::move(value)), m_target(target), m_withEvents(withEvents)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    int WithDepthChange() const override { return 1; }

private:
    void TellEventLink(const RunContext& context, const VARIANT& object) const;

    Expression m_value;
    VariableRef m_target;
    bool m_withEvents = false;
};

// RaiseEvent name[(arguments)]: every WithEvents variable that holds the running class instance has
// its procedure for the event called with the arguments (variables by reference). An error of such a
// procedure is raised again here.
class RaiseEventStatement final : public Statement {
public:
    RaiseEventStatement(std::string event, Expression arguments, int count)
        : m_event(std::move(event)), m_arguments(std::move(arguments)), m_count(count)
    {
    }
    [[nodiscard]] bool Step(ExecEntry& entry) override;

private:
    std::string m_event;
    Expression m_arguments;
    int m_count = 0;
};

// With object: the object is evaluated once and stays on the value stack, above the activation's
// base, until its End With; the activation's With depth counts it.
class WithStatement final : public Statement {
public:
    explicit WithStatement(Expression value) : m_value(std::move(value)) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    int WithDepthChange() const override { return 1; }

private:
    Expression m_value;
};

// End With: drops the innermost With object.
class EndWithStatement final : public Statement {
public:
    [[nodiscard]] bool Execute() override;
    int WithDepthChange() const override { return -1; }
};

// Drops the innermost `count` With objects of the current activation (a jump out of With blocks).
void LeaveWithBlocks(const RunContext& context, int count);

} // namespace brannoc
