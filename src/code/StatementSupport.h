#pragma once
// Small helpers that the statement classes share: the entry states of statements that evaluate several
// expressions, jumps, hidden slots of the frame and conditions.
#include "code/ProcedureBody.h"
#include "exec/Activation.h"
#include "exec/Interpreter.h"

namespace brannoc::statement_support {

// Entry states of statements that evaluate several expressions: the expression number in the high
// bits, the position in its code in the low ones.
constexpr int kPartShift = 20;
constexpr int kPositionMask = (1 << kPartShift) - 1;

inline int PartOf(int state) { return state >> kPartShift; }
inline int PositionOf(int state) { return state & kPositionMask; }
inline int MakeState(int part, int position) { return (part << kPartShift) | position; }

inline bool Finish(ExecEntry& entry)
{
    entry.state = ExecEntry::kFinished;
    return true;
}

inline void JumpTo(const RunContext& context, int address)
{
    context.activation->SetIndexes(AddressIndex(address), AddressPosition(address));
}

inline VARIANT& HiddenSlot(const RunContext& context, int slot)
{
    return static_cast<VARIANT*>(context.activation->Locals())[slot];
}

inline void SetMark(const RunContext& context, int slot)
{
    VARIANT& mark = HiddenSlot(context, slot);
    ClearSlot(mark);
    mark.vt = VT_BOOL;
    mark.boolVal = VARIANT_TRUE;
}

// Pops the condition on top of the value stack and answers its truth.
[[nodiscard]] inline bool PopCondition(const RunContext& context, bool& truth)
{
    ValueStack& values = context.interpreter->Values();
    const bool ok = ConditionIsTrue(values.Top(), truth);
    values.Pop();
    return ok;
}


} // namespace brannoc::statement_support
