#pragma once
// Statements about object references: Set, and the With block that keeps its object on the value stack.
#include "code/Statements.h"

namespace brannoc {

// Set variable = value: the value must be an object reference (Nothing included).
class SetStatement final : public Statement {
public:
    SetStatement(Expression value, VariableRef target) : m_value(std::move(value)), m_target(target) {}
    [[nodiscard]] bool Step(ExecEntry& entry) override;
    int WithDepthChange() const override { return 1; }

private:
    Expression m_value;
    VariableRef m_target;
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
