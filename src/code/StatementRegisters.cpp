// The register forms of the statements that have one (RegisterCode.h): what each statement emits
// through the builder. A statement that answers false runs as its object.
#include "code/RegisterBuilder.h"
#include "code/Statements.h"

namespace brannoc {

using Operand = RegisterBuilder::Operand;

bool NoOperationStatement::EmitRegisters(RegisterBuilder&) { return true; }

bool AssignStatement::EmitRegisters(RegisterBuilder& builder)
{
    if (m_target.type.IsArray())
        return false;
    if (PrepareTextStore())
        return builder.StoreText(*this, m_target, m_value);
    Operand value;
    return builder.Value(m_value, value) && builder.Store(m_target, value);
}

bool AssignElementStatement::EmitRegisters(RegisterBuilder& builder)
{
    Operand index;
    Operand value;
    return m_count == 1 && builder.Value(m_code, index, 0, static_cast<std::size_t>(m_valueStart)) &&
           builder.Value(m_code, value, static_cast<std::size_t>(m_valueStart)) &&
           builder.StoreElement(m_target, index, value);
}

bool EvaluateStatement::EmitRegisters(RegisterBuilder& builder) { return builder.Effect(m_code); }

bool JumpStatement::EmitRegisters(RegisterBuilder& builder)
{
    return !m_intoWith && m_withRelease == 0 && builder.Jump(m_target);
}

bool ConditionalJumpStatement::EmitRegisters(RegisterBuilder& builder)
{
    Operand truth;
    return builder.Condition(m_condition, truth) && builder.JumpIf(truth, m_jumpWhen, m_target);
}

bool BranchStatement::EmitRegisters(RegisterBuilder& builder)
{
    // Case lines entered through a mark need the statement's own way in.
    if (m_elseMarked)
        return false;
    for (const std::uint8_t mark : m_marks) {
        if (mark)
            return false;
    }
    if (m_selectorSlot < 0) {
        // If and ElseIf: the first true condition enters its part, else the Else part.
        for (std::size_t i = 0; i < m_conditions.size(); ++i) {
            Operand truth;
            if (!builder.Condition(m_conditions[i], truth) || !builder.JumpIf(truth, true, m_targets[i]))
                return false;
            builder.Release(truth);
        }
        return builder.Jump(m_elseTarget);
    }
    if (m_direct == Direct::kUntried)
        PrepareDirect();
    if (m_direct == Direct::kTextCases)
        return builder.SelectText(*this, m_selector, static_cast<int>(m_conditions.size()), m_targets, m_elseTarget);
    if (m_direct != Direct::kWholeRanges)
        return false;
    Operand selector;
    if (!builder.Value(m_selector, selector))
        return false;
    std::vector<RegisterBuilder::Range> ranges;
    ranges.reserve(m_wholeRanges.size());
    for (const WholeRange& range : m_wholeRanges)
        ranges.push_back(RegisterBuilder::Range{range.low, range.high, range.part});
    return builder.SelectRanges(selector, m_selectorSlot, ranges, m_targets, m_elseTarget);
}

bool ForStatement::EmitRegisters(RegisterBuilder& builder)
{
    return builder.ForLong(m_counter, m_start, m_end, m_step.IsEmpty() ? nullptr : &m_step, m_endSlot, m_stepSlot,
                           m_exitTarget);
}

bool NextStatement::EmitRegisters(RegisterBuilder& builder)
{
    if (m_counterKind == VT_VARIANT)
        return m_localWhole && builder.NextVariant(m_counter, m_stepSlot, m_endSlot, m_loopStart);
    return m_counterKind == VT_I4 && builder.NextLong(m_counter, m_stepSlot, m_endSlot, m_loopStart);
}

bool SingleLineIfStatement::EmitRegisters(RegisterBuilder& builder)
{
    // Parts of one statement each: a part of several could give up after its first statement changed
    // something, and the statement object would then run that one again.
    Statement* thenPart = m_then ? m_then->Only() : nullptr;
    Statement* elsePart = m_else && !m_else->IsEmptyList() ? m_else->Only() : nullptr;
    if (!thenPart || (m_else && !m_else->IsEmptyList() && !elsePart))
        return false;
    Operand truth;
    if (!builder.Condition(m_condition, truth))
        return false;
    const std::size_t toElse = builder.JumpForward(&truth, false);
    builder.Release(truth);
    if (!thenPart->EmitRegisters(builder))
        return false;
    if (!elsePart) {
        builder.LandHere(toElse);
        return true;
    }
    const std::size_t toEnd = builder.JumpForward(nullptr, false);
    builder.LandHere(toElse);
    if (!elsePart->EmitRegisters(builder))
        return false;
    builder.LandHere(toEnd);
    return true;
}

} // namespace brannoc
