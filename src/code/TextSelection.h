#pragma once
// Select Case names(i Mod 5): a Select Case over a string whose Case lines hold string constants, its
// selector an element or field read by the register form at an index it computed with its own operations.
// The statement's object keeps its own selector for the times it runs itself.
#include "code/TextOperand.h"

namespace brannoc {

class BranchStatement;

class TextSelection final {
public:
    explicit TextSelection(const BranchStatement& statement) : m_statement(statement) {}
    TextOperand& Selector() noexcept { return m_selector; }
    // The part the selector enters (BranchStatement::PartOfText); 0 when it cannot be read (nothing
    // happened).
    [[nodiscard]] int Part(const RunContext& context) const;

private:
    const BranchStatement& m_statement;
    TextOperand m_selector;
};

} // namespace brannoc
