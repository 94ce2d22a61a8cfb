// Loops: For ... Next and For Each ... Next over arrays and over objects' enumerators.
#include "code/Statements.h"
#include "code/StatementSupport.h"
#include "automation/ObjectCreation.h"

#include "code/MemberCall.h"
#include "code/NumericKinds.h"
#include "code/ObjectStatements.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"
#include "values/StringCapacity.h"
#include "values/TextForm.h"
#include "values/ValueCell.h"

#include <climits>
#include <cstring>

namespace brannoc {

using namespace statement_support;

namespace {

// Whether a number kept for a loop over a whole-number counter of kind `counter` (Byte, Integer, Long,
// Boolean) keeps its value in that kind. An end or step with a fraction, or one out of the counter's
// range (a negative step of a Byte loop, a step of 1 for a Boolean, which holds only 0 and -1), keeps its
// own kind instead: each pass then adds and compares as the operators do, and only the sum stored into
// the counter takes the counter's kind.
bool KeptInCounterKind(VARTYPE counter, const VARIANT& given)
{
    double low = 0;
    double high = 0;
    switch (counter) {
    case VT_UI1: high = 255; break;
    case VT_I2: low = SHRT_MIN; high = SHRT_MAX; break;
    case VT_I4: low = LONG_MIN; high = LONG_MAX; break;
    case VT_BOOL: low = -1; high = 0; break;
    default: return true;
    }
    const VARIANT& value = *FollowByRefChain(&given);
    double number = 0;
    switch (value.vt) {
    case VT_UI1: number = value.bVal; break;
    case VT_I2: number = value.iVal; break;
    case VT_I4: number = value.lVal; break;
    case VT_R4: number = value.fltVal; break;
    case VT_R8: number = value.dblVal; break;
    case VT_CY: number = static_cast<double>(value.cyVal.int64) / 10000.0; break;
    default: return true;
    }
    return number >= low && number <= high && number == static_cast<double>(static_cast<long long>(number));
}

// Assigns the next element of the enumerator kept in `kept` to the loop variable; false at the end of
// the enumeration or after raising an error (then error is set).
bool AssignNextEnumerated(const RunContext& context, const VariableRef& variable, const VARIANT& kept, bool& error)
{
    Variant value;
    if (!kept.punkVal || !automation::NextElement(static_cast<IEnumVARIANT*>(kept.punkVal), value))
        return false;
    if (!StoreVariable(context, variable, value)) {
        error = true;
        return false;
    }
    return true;
}

// Keeps the enumerator of the object on top of the value stack in the hidden slot (the object is
// popped). False after raising 10094 for Nothing or 10090 for an object without an enumerator.
bool StartObjectEnumeration(const RunContext& context, int arraySlot)
{
    ValueStack& values = context.interpreter->Values();
    const VARIANT& group = *FollowByRefChain(&values.Top().Raw());
    ComRef<IDispatch> object;
    if (group.vt == VT_DISPATCH)
        object = ComRef<IDispatch>::Share(group.pdispVal);
    else if (group.punkVal &&
             FAILED(group.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Out()))))
        return context.interpreter->SignalError(kErrorAutomation);
    else if (!group.punkVal)
        return context.interpreter->SignalError(kErrorObjectIsNothing);
    ComRef<IEnumVARIANT> enumerator;
    if (!automation::StartEnumeration(object.Get(), enumerator))
        return false;
    values.Pop();
    Variant kept;
    kept.Attach(HiddenSlot(context, arraySlot));
    kept.SetUnknown(enumerator.Detach(), false);
    kept.Detach(HiddenSlot(context, arraySlot));
    return true;
}

// Assigns element `position` (in storage order) of the array kept in arraySlot to the loop variable;
// false at the end of the array or after raising an error (then error is set).
bool AssignEachElement(const RunContext& context, const VariableRef& variable, int arraySlot, LONG position,
                       bool& error)
{
    error = false;
    // The kept value is the array itself, a reference to the array variable being walked, or the
    // enumerator of an object.
    VARIANT* kept = FollowByRefChain(&HiddenSlot(context, arraySlot));
    if (kept->vt == VT_UNKNOWN)
        return AssignNextEnumerated(context, variable, *kept, error);
    SAFEARRAY* array = ArrayOf(kept);
    if (!array)
        return false;
    const ULONG total = ElementCount(array);
    if (position < 0 || static_cast<ULONG>(position) >= total)
        return false;
    const VARTYPE tag = static_cast<VARTYPE>(kept->vt & VT_TYPEMASK);
    const void* element = static_cast<const char*>(array->pvData) + static_cast<std::size_t>(position) * array->cbElements;
    Variant value;
    IRecordInfo* record = tag == VT_RECORD ? ElementKindOf(array).record : nullptr;
    if (!LoadElement(element, tag, value, record) || !StoreVariable(context, variable, value)) {
        error = true;
        return false;
    }
    return true;
}

} // namespace

bool ForEachStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_group, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    const VARTYPE groupTag = FollowByRefChain(&values.Top().Raw())->vt;
    if (groupTag == VT_DISPATCH || groupTag == VT_UNKNOWN) {
        // An object: its elements come from its enumerator.
        if (!StartObjectEnumeration(context, m_arraySlot))
            return Fail(context, entry);
        bool error = false;
        if (!AssignEachElement(context, m_element, m_arraySlot, 0, error)) {
            if (error)
                return Fail(context, entry);
            ClearSlot(HiddenSlot(context, m_arraySlot));
            JumpTo(context, m_exitTarget);
        }
        return Finish(entry);
    }
    if (!ArrayOf(&values.Top().Raw())) {
        // Not an array, or an array that is not dimensioned.
        const bool array = (FollowByRefChain(&values.Top().Raw())->vt & VT_ARRAY) != 0;
        (void)context.interpreter->SignalError(array ? kErrorArrayNotDimensioned : kErrorTypeMismatch);
        return Fail(context, entry);
    }
    Variant kept;
    kept.Attach(HiddenSlot(context, m_arraySlot));
    kept = std::move(values.Top());
    kept.Detach(HiddenSlot(context, m_arraySlot));
    values.Pop();
    VARIANT& position = HiddenSlot(context, m_positionSlot);
    ClearSlot(position);
    position.vt = VT_I4;
    position.lVal = 0;
    bool error = false;
    if (!AssignEachElement(context, m_element, m_arraySlot, 0, error)) {
        if (error)
            return Fail(context, entry);
        JumpTo(context, m_exitTarget);
    }
    return Finish(entry);
}

bool NextEachStatement::Execute()
{
    const RunContext context = Context();
    VARIANT& position = HiddenSlot(context, m_positionSlot);
    ++position.lVal;
    bool error = false;
    if (AssignEachElement(context, m_element, m_arraySlot, position.lVal, error)) {
        JumpTo(context, m_loopStart);
        return true;
    }
    if (error) {
        ExecEntry entry{this, 0};
        return Fail(context, entry);
    }
    // The loop is over: the kept array goes.
    ClearSlot(HiddenSlot(context, m_arraySlot));
    return true;
}

bool ForStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    ValueStack& values = context.interpreter->Values();
    // Stage 0 runs the start (assigned to the counter at once), stage 1 the end, stage 2 the step.
    int part = PartOf(entry.state);
    int pc = PositionOf(entry.state);
    if (part == 0) {
        switch (RunExpression(context, m_start, pc)) {
        case EvalStatus::kYield: entry.state = MakeState(0, pc); return false;
        case EvalStatus::kFailed: return Fail(context, entry);
        case EvalStatus::kDone: break;
        }
        const bool stored = StoreVariable(context, m_counter, values.Top());
        values.Pop();
        if (!stored)
            return Fail(context, entry);
        VARIANT& endSlot = HiddenSlot(context, m_endSlot);
        VARIANT& stepSlot = HiddenSlot(context, m_stepSlot);
        ClearSlot(endSlot);
        ClearSlot(stepSlot);
        stepSlot.vt = VT_I2;
        stepSlot.iVal = 1;
        part = 1;
        pc = 0;
    }
    if (part == 1) {
        switch (RunExpression(context, m_end, pc)) {
        case EvalStatus::kYield: entry.state = MakeState(1, pc); return false;
        case EvalStatus::kFailed: return Fail(context, entry);
        case EvalStatus::kDone: break;
        }
        if (!KeepBound(context, m_endSlot))
            return Fail(context, entry);
        part = 2;
        pc = 0;
    }
    if (!m_step.IsEmpty()) {
        switch (RunExpression(context, m_step, pc)) {
        case EvalStatus::kYield: entry.state = MakeState(2, pc); return false;
        case EvalStatus::kFailed: return Fail(context, entry);
        case EvalStatus::kDone: break;
        }
        if (!KeepBound(context, m_stepSlot))
            return Fail(context, entry);
    } else {
        // Without Step the step is 1, in the counter's kind where that kind holds 1, so that each pass
        // adds like kinds.
        Variant* one = values.Push();
        if (!one)
            return (void)context.interpreter->RaiseOutOfMemory(), Fail(context, entry);
        one->SetInteger(1);
        if (!KeepBound(context, m_stepSlot))
            return Fail(context, entry);
    }
    return TestFirst(context, entry);
}

bool ForStatement::KeepBound(const RunContext& context, int slot)
{
    ValueStack& values = context.interpreter->Values();
    // The end and step keep the counter's kind where that keeps their values, so that each pass adds and
    // compares like kinds.
    const auto counterKind = static_cast<VARTYPE>(m_counter.type.ValueTag());
    const ValueCell& cell = StorageCell(counterKind);
    VARIANT& kept = HiddenSlot(context, slot);
    ClearSlot(kept);
    const bool stored = KeptInCounterKind(counterKind, values.Top().Raw())
                            ? cell.Store(kept, values.Top())
                            : SUCCEEDED(VariantCopyInd(&kept, &values.Top().Raw()));
    values.Pop();
    // An Empty step adds nothing, like a step of 0 (an Empty step slot marks a loop that never started).
    if (stored && slot == m_stepSlot && kept.vt == VT_EMPTY) {
        kept.vt = VT_I2;
        kept.iVal = 0;
    }
    return stored;
}

bool ForStatement::TestFirst(const RunContext& context, ExecEntry& entry)
{
    ValueStack& values = context.interpreter->Values();
    VARIANT& endSlot = HiddenSlot(context, m_endSlot);
    VARIANT& stepSlot = HiddenSlot(context, m_stepSlot);
    Variant* counter = values.Push();
    Variant* limit = counter ? values.Push() : nullptr;
    if (!limit)
        return (void)context.interpreter->RaiseOutOfMemory(), Fail(context, entry);
    counter = &values.At(values.Size() - 2);
    VARIANT* storage = StorageOf(context, m_counter.scope, m_counter.index, m_counter.module);
    Variant zero;
    zero.SetInteger(0);
    Variant negative;
    if (!storage || !counter->CopyIndirectFrom(*storage) || !limit->CopyFrom(endSlot) ||
        !negative.CopyFrom(stepSlot) || !ApplyBinary(OperationId::kLess, negative, zero))
        return Fail(context, entry);
    bool stepIsNegative = false;
    if (!ConditionIsTrue(negative, stepIsNegative) ||
        !ApplyBinary(stepIsNegative ? OperationId::kLess : OperationId::kGreater, *counter, *limit))
        return Fail(context, entry);
    values.Pop();
    bool past = false;
    if (!PopCondition(context, past))
        return Fail(context, entry);
    if (past)
        JumpTo(context, m_exitTarget);
    return Finish(entry);
}

namespace {

// counter = counter + step and the test against end, for counters, steps and ends that the numeric cells'
// fast paths take (Integer, Long, Double): answers whether it was done and, if so, whether the loop goes
// on. Declined (nothing changed) in every other case, which the general Next handles.
bool AdvanceCounterFast(VARIANT& counter, VARTYPE declared, const VARIANT& step, const VARIANT& end, bool& goOn)
{
    // The common case first: whole-number counter, step and end (Integer or Long, declared or held by
    // Variants). The sum is a Long when either addend is one, else an Integer that must stay in range.
    if (LONG from = 0, by = 0, to = 0; WholeOf(counter, from) && WholeOf(step, by) && WholeOf(end, to)) {
        const bool isLong = counter.vt == VT_I4 || step.vt == VT_I4;
        const VARTYPE kind = isLong ? VT_I4 : VT_I2;
        LONG next = 0;
        if ((declared != VT_VARIANT && declared != kind) || __builtin_add_overflow(from, by, &next) ||
            (!isLong && (next < SHRT_MIN || next > SHRT_MAX)))
            return false;
        counter.vt = kind;
        if (isLong)
            counter.lVal = next;
        else
            counter.iVal = static_cast<SHORT>(next);
        goOn = by < 0 ? next >= to : next <= to;
        return true;
    }
    VARIANT sum = counter;
    if (!TryFastBinary(OperationId::kAdd, sum, step) || (declared != VT_VARIANT && sum.vt != declared))
        return false;
    bool negative = false;
    switch (step.vt) {
    case VT_I2: negative = step.iVal < 0; break;
    case VT_I4: negative = step.lVal < 0; break;
    case VT_R8: negative = step.dblVal < 0; break;
    default: return false;
    }
    VARIANT past = sum;
    if (!TryFastBinary(negative ? OperationId::kLess : OperationId::kGreater, past, end))
        return false;
    // The counter held a number (the sum was taken), so overwriting it releases nothing.
    counter = sum;
    goOn = past.boolVal == VARIANT_FALSE;
    return true;
}

} // namespace

bool NextStatement::Execute()
{
    // The common loop in line: a local Long counter (declared, or held by a Variant) with a whole step
    // and end (a declared counter's are of its kind).
    if (m_localWhole && DirectFormsEnabled()) {
        Activation* activation = Interpreter::Current()->CurrentActivation();
        VARIANT* locals = static_cast<VARIANT*>(activation->Locals());
        VARIANT& counter = locals[m_counter.index];
        const VARIANT& step = locals[m_stepSlot];
        const VARIANT& end = locals[m_endSlot];
        // A Variant counter's step and end may be Integers: a Long plus an Integer is a Long.
        const auto whole = [](const VARIANT& value, LONG& out) {
            out = value.vt == VT_I4 ? value.lVal : value.iVal;
            return value.vt == VT_I4 || value.vt == VT_I2;
        };
        LONG by = 0;
        LONG to = 0;
        LONG next = 0;
        if (counter.vt == VT_I4 && whole(step, by) && whole(end, to) &&
            !__builtin_add_overflow(counter.lVal, by, &next)) {
            counter.lVal = next;
            if (by < 0 ? next >= to : next <= to)
                activation->SetIndexes(AddressIndex(m_loopStart), AddressPosition(m_loopStart));
            return true;
        }
    }
    return ExecuteOther();
}

bool NextStatement::ExecuteOther()
{
    const RunContext context = Context();
    // A loop entered by GoTo past its For has no step: it ends here.
    if (HiddenSlot(context, m_stepSlot).vt == VT_EMPTY)
        return true;
    VARIANT* storage = StorageOf(context, m_counter.scope, m_counter.index, m_counter.module);
    if (storage && DirectFormsEnabled()) {
        bool goOn = false;
        if (AdvanceCounterFast(*storage, m_counterKind, HiddenSlot(context, m_stepSlot), HiddenSlot(context, m_endSlot),
                               goOn)) {
            if (goOn)
                JumpTo(context, m_loopStart);
            return true;
        }
    }
    return Advance(context, storage);
}

bool NextStatement::Advance(const RunContext& context, VARIANT* storage)
{
    ExecEntry entry{this, 0};
    if (!storage)
        return Fail(context, entry);
    ValueStack& values = context.interpreter->Values();
    VARIANT& endSlot = HiddenSlot(context, m_endSlot);
    VARIANT& stepSlot = HiddenSlot(context, m_stepSlot);
    Variant* counter = values.Push();
    if (!counter)
        return context.interpreter->RaiseOutOfMemory();
    Variant* operand = values.Push();
    if (!operand)
        return context.interpreter->RaiseOutOfMemory();
    counter = &values.At(values.Size() - 2);
    if (!counter->CopyIndirectFrom(*storage) || !operand->CopyFrom(stepSlot) ||
        !ApplyBinary(OperationId::kAdd, *counter, *operand) || !StoreVariable(context, m_counter, *counter))
        return Fail(context, entry);
    // Sign of the step: compare it with zero in place.
    bool stepIsNegative = false;
    Variant zero;
    zero.SetInteger(0);
    if (!ApplyBinary(OperationId::kLess, *operand, zero) || !ConditionIsTrue(*operand, stepIsNegative))
        return Fail(context, entry);
    operand->Clear();
    if (!operand->CopyFrom(endSlot) || !counter->CopyIndirectFrom(*storage) ||
        !ApplyBinary(stepIsNegative ? OperationId::kLess : OperationId::kGreater, *counter, *operand))
        return Fail(context, entry);
    values.Pop();
    bool past = false;
    if (!PopCondition(context, past))
        return Fail(context, entry);
    if (!past)
        JumpTo(context, m_loopStart);
    return true;
}

} // namespace brannoc
