#include "code/Statements.h"
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

namespace {

// Entry states of statements that evaluate several expressions: the expression number in the high
// bits, the position in its code in the low ones.
constexpr int kPartShift = 20;
constexpr int kPositionMask = (1 << kPartShift) - 1;

int PartOf(int state) { return state >> kPartShift; }
int PositionOf(int state) { return state & kPositionMask; }
int MakeState(int part, int position) { return (part << kPartShift) | position; }

bool Finish(ExecEntry& entry)
{
    entry.state = ExecEntry::kFinished;
    return true;
}

void JumpTo(const RunContext& context, int address)
{
    context.activation->SetIndexes(AddressIndex(address), AddressPosition(address));
}

VARIANT& HiddenSlot(const RunContext& context, int slot)
{
    return static_cast<VARIANT*>(context.activation->Locals())[slot];
}

void SetMark(const RunContext& context, int slot)
{
    VARIANT& mark = HiddenSlot(context, slot);
    ClearSlot(mark);
    mark.vt = VT_BOOL;
    mark.boolVal = VARIANT_TRUE;
}

// Pops the condition on top of the value stack and answers its truth.
[[nodiscard]] bool PopCondition(const RunContext& context, bool& truth)
{
    ValueStack& values = context.interpreter->Values();
    const bool ok = ConditionIsTrue(values.Top(), truth);
    values.Pop();
    return ok;
}

} // namespace

void AssignStatement::ChooseDirectStore()
{
    m_directStore = DirectStore::kNone;
    const FastExpression* fast = m_fast.Compiled();
    m_typed = fast ? fast->Typed() : nullptr;
    if (!fast || m_target.type.IsArray() || !m_fastTarget.IsUsable())
        return;
    if (m_target.type.IsVariant()) {
        m_directStore = DirectStore::kVariant;
        m_variantForm = m_typed ? m_typed : &fast->AssumedFormSlot();
        m_run = &StoreIntoVariant;
        return;
    }
    if (!m_typed)
        return;
    const VARTYPE target = StorageTag(m_target.type);
    const VARTYPE value = m_typed->ResultKind();
    if (target == value)
        m_directStore = value == VT_R8 ? DirectStore::kReal : value == VT_I4 ? DirectStore::kWhole : DirectStore::kInteger;
    else if (target == VT_R8 && (value == VT_I4 || value == VT_I2))
        m_directStore = DirectStore::kWholeToReal;
    else if (target == VT_I4 && value == VT_I2)
        m_directStore = DirectStore::kWhole;
    switch (m_directStore) {
    case DirectStore::kWhole: m_run = &StoreDirect<DirectStore::kWhole>; break;
    case DirectStore::kInteger: m_run = &StoreDirect<DirectStore::kInteger>; break;
    case DirectStore::kReal: m_run = &StoreDirect<DirectStore::kReal>; break;
    case DirectStore::kWholeToReal: m_run = &StoreDirect<DirectStore::kWholeToReal>; break;
    default: break;
    }
}

template <AssignStatement::DirectStore Store>
bool AssignStatement::StoreDirect(const AssignStatement& self, const RunContext& context)
{
    const VariableRef& target = self.m_target;
    VARIANT* cell = StorageOf(context, target.scope, target.index, target.module);
    if (!cell)
        return false;
    // The value is computed aside: a form that gives up leaves the variable as it was.
    if constexpr (Store == DirectStore::kReal) {
        double value = 0;
        if (cell->vt != VT_R8 || !self.m_typed->EvaluateReal(context, value))
            return false;
        cell->dblVal = value;
    } else {
        LONG value = 0;
        if constexpr (Store == DirectStore::kWholeToReal) {
            if (cell->vt != VT_R8 || !self.m_typed->EvaluateWhole(context, value))
                return false;
            cell->dblVal = value;
        } else if constexpr (Store == DirectStore::kWhole) {
            // A Long, or an Integer widened.
            if (cell->vt != VT_I4 || !self.m_typed->EvaluateWhole(context, value))
                return false;
            cell->lVal = value;
        } else {
            if (cell->vt != self.m_typed->ResultKind() || !self.m_typed->EvaluateWhole(context, value))
                return false;
            cell->iVal = static_cast<SHORT>(value);
        }
    }
    return true;
}

bool AssignStatement::StoreIntoVariant(const AssignStatement& self, const RunContext& context)
{
    // The typed form of the declared kinds, or the one assumed for the kinds the Variants held last: a
    // Variant that already holds the kind of its result takes only the new payload.
    const TypedExpression& form = *self.m_variantForm;
    if (form.IsReady()) {
        const VariableRef& target = self.m_target;
        VARIANT* cell = StorageOf(context, target.scope, target.index, target.module);
        if (cell && cell->vt == form.ResultKind()) {
            if (cell->vt == VT_R8) {
                double real = 0;
                if (form.EvaluateReal(context, real)) {
                    cell->dblVal = real;
                    return true;
                }
            } else {
                LONG whole = 0;
                if (form.EvaluateWhole(context, whole)) {
                    if (cell->vt == VT_I4)
                        cell->lVal = whole;
                    else
                        cell->iVal = static_cast<SHORT>(whole);
                    return true;
                }
            }
        }
    }
    return StoreIntoVariantOther(self, context);
}

bool AssignStatement::StoreIntoVariantOther(const AssignStatement& self, const RunContext& context)
{
    // Another kind: the form's value through a VARIANT; when the form gives up, the fast expression
    // assumes the kinds the Variants hold now or works on VARIANTs.
    const FastExpression& fast = *self.m_fast.Compiled();
    const TypedExpression* form = self.m_variantForm->IsReady() ? self.m_variantForm : nullptr;
    VARIANT value;
    if (!(form && form->Evaluate(context, value)) && !fast.Evaluate(context, value))
        return false;
    return self.m_fastTarget.Store(context, value);
}

bool AssignStatement::Execute()
{
    if (m_run && DirectFormsEnabled()) {
        const RunContext context = Context();
        return m_run(*this, context) || ExecuteFrom(0);
    }
    return ExecuteOther();
}

bool AssignStatement::ExecuteOther()
{
    const RunContext context = Context();
    if (const FastExpression* fast = m_fast.Get(m_value, context.procedure)) {
        if (m_directStore == DirectStore::kUntried) {
            ChooseDirectStore();
            if (m_run)
                return m_run(*this, context) || ExecuteFrom(0);
        }
        VARIANT value;
        if (fast->Evaluate(context, value) && m_fastTarget.Store(context, value))
            return true;
    }
    return ExecuteFrom(0);
}

bool AssignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_value, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    if (m_target.type.IsVariant() && !ResolveLetValue(values.Top()))
        return Fail(context, entry);
    const bool stored = StoreVariableTaking(context, m_target, values.Top());
    values.Pop();
    if (!stored)
        return Fail(context, entry);
    return Finish(entry);
}

bool AppendStatement::Execute()
{
    if (m_direct == Direct::kUntried) {
        m_direct = Direct::kNone;
        if (m_owner && m_tail.ops.size() == 1 && m_tail.ops[0].code == ExprOpCode::kBuiltin &&
            m_slice.Compile(m_tail.ops[0].index, *m_owner))
            m_direct = Direct::kReady;
    }
    if (m_direct == Direct::kReady && DirectFormsEnabled()) {
        const RunContext context = Context();
        std::wstring_view part;
        VARIANT* storage = nullptr;
        bool appended = false;
        if (m_slice.Evaluate(context, part) &&
            (storage = StorageOf(context, m_target.scope, m_target.index, m_target.module)) != nullptr &&
            AppendPartToStorage(*storage, part, appended)) {
            if (appended)
                return true;
            ExecEntry entry{this, 0};
            return Fail(context, entry);
        }
    }
    return ExecuteFrom(0);
}

bool AppendStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_tail, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage || !AppendToStorage(*storage, values.Top()))
        return Fail(context, entry);
    values.Pop();
    return Finish(entry);
}

void AssignElementStatement::PrepareDirect()
{
    m_direct = Direct::kNone;
    if (m_count != 1 || !m_target.type.IsArray() || !m_target.type.Scalar().IsNumeric() || !m_owner)
        return;
    const VARTYPE kind = static_cast<VARTYPE>(m_target.type.Scalar().ValueTag());
    if (kind != VT_I2 && kind != VT_I4 && kind != VT_BOOL && kind != VT_R8)
        return;
    Expression index;
    index.ops.assign(m_code.ops.begin(), m_code.ops.begin() + m_valueStart);
    Expression value;
    value.ops.assign(m_code.ops.begin() + m_valueStart, m_code.ops.end());
    if (!m_index.Compile(index, *m_owner) || !m_value.Compile(value, *m_owner))
        return;
    const VARTYPE indexKind = m_index.ResultKind();
    const VARTYPE valueKind = m_value.ResultKind();
    // The value must go into the element as it is, or as a whole number widened.
    const bool fits = valueKind == kind || (kind == VT_I4 && valueKind == VT_I2) ||
                      (kind == VT_R8 && (valueKind == VT_I2 || valueKind == VT_I4));
    if ((indexKind != VT_I2 && indexKind != VT_I4) || !fits)
        return;
    m_elementKind = kind;
    // An index that is a local whole variable is read in place.
    if (index.ops.size() == 1 && index.ops[0].code == ExprOpCode::kLoad && index.ops[0].scope == StorageScope::Local &&
        !index.ops[0].type.IsVariant())
        m_localIndex = index.ops[0].index;
    m_direct = Direct::kReady;
}

bool AssignElementStatement::StoreDirect(const RunContext& context) const
{
    LONG index = 0;
    if (m_localIndex >= 0) {
        const VARIANT* cell = FollowByRefChain(static_cast<VARIANT*>(context.activation->Locals()) + m_localIndex);
        if (cell->vt == VT_I4)
            index = cell->lVal;
        else if (cell->vt == VT_I2)
            index = cell->iVal;
        else
            return false;
    } else if (!m_index.EvaluateWhole(context, index)) {
        return false;
    }
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return false;
    char* element = ElementOfVector(storage, m_elementKind, index);
    if (!element)
        return false;
    if (m_elementKind == VT_R8) {
        double value = 0;
        if (m_value.ResultKind() == VT_R8) {
            if (!m_value.EvaluateReal(context, value))
                return false;
        } else {
            LONG whole = 0;
            if (!m_value.EvaluateWhole(context, whole))
                return false;
            value = whole;
        }
        *reinterpret_cast<double*>(element) = value;
        return true;
    }
    LONG value = 0;
    if (!m_value.EvaluateWhole(context, value))
        return false;
    if (m_elementKind == VT_I4)
        *reinterpret_cast<LONG*>(element) = value;
    else
        *reinterpret_cast<SHORT*>(element) = static_cast<SHORT>(value);
    return true;
}

bool AssignElementStatement::Execute()
{
    if (m_direct == Direct::kUntried)
        PrepareDirect();
    if (m_direct == Direct::kReady && DirectFormsEnabled() && StoreDirect(Context()))
        return true;
    return ExecuteFrom(0);
}

bool AssignElementStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_code, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    // The value is on top; the element's indexes are below it.
    Variant value(std::move(values.Top()));
    values.Pop();
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (storage && HoldsObject(*storage)) {
        // A Variant that holds an object: its default member is assigned.
        if (!AccessDefaultMember(context, *storage, m_count, &value))
            return Fail(context, entry);
        return Finish(entry);
    }
    if (m_letsValue && m_target.type.Scalar().IsVariant() && !ResolveLetValue(value))
        return Fail(context, entry);
    VARTYPE tag = VT_EMPTY;
    void* element = storage ? ElementOf(context, storage, m_count, tag) : nullptr;
    if (!element || !StoreTypedElement(element, tag, m_target.type, value))
        return Fail(context, entry);
    values.CutBack(values.Size() - static_cast<std::size_t>(m_count));
    return Finish(entry);
}

namespace {

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
        return context.interpreter->SignalError(10090);
    else if (!group.punkVal)
        return context.interpreter->SignalError(10094);
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
    int pc = entry.state;
    switch (RunExpression(context, m_group, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
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
        // Not an array (10080), or an array that is not dimensioned (10022).
        const bool array = (FollowByRefChain(&values.Top().Raw())->vt & VT_ARRAY) != 0;
        (void)context.interpreter->SignalError(array ? 10022 : 10080);
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

bool AlignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_value, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    // A record reaches here only inside a Variant (record variables are copied by their own
    // statement); aligning it is not supported, whatever the source is.
    if (target->vt == VT_RECORD) {
        (void)context.interpreter->SignalError(10902);
        return Fail(context, entry);
    }
    Variant& source = values.Top();
    if (source.Tag() != VT_BSTR && !ChangeType(source, VT_BSTR))
        return Fail(context, entry);
    if (target->vt != VT_BSTR) {
        (void)context.interpreter->SignalError(10080);
        return Fail(context, entry);
    }
    // The destination's characters are rewritten in place: its length never changes.
    const UINT length = target->bstrVal ? SysStringLen(target->bstrVal) : 0;
    const std::wstring_view text = source.StringView();
    const UINT copied = static_cast<UINT>(text.size() < length ? text.size() : length);
    const UINT start = m_right ? length - copied : 0;
    for (UINT i = 0; i < length; ++i)
        target->bstrVal[i] = L' ';
    for (UINT i = 0; i < copied; ++i)
        target->bstrVal[start + i] = text[i];
    values.Pop();
    return Finish(entry);
}

bool MidStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_code, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    const std::size_t first = values.Size() - (m_hasLength ? 3 : 2);
    Variant& start = values.At(first);
    Variant& value = values.Top();
    if ((start.Tag() != VT_I4 && !ChangeType(start, VT_I4)) || (value.Tag() != VT_BSTR && !ChangeType(value, VT_BSTR)))
        return Fail(context, entry);
    LONG count = static_cast<LONG>(value.StringView().size());
    if (m_hasLength) {
        Variant& length = values.At(first + 1);
        if (length.Tag() != VT_I4 && !ChangeType(length, VT_I4))
            return Fail(context, entry);
        if (length.Long() < count)
            count = length.Long() < 0 ? 0 : length.Long();
    }
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    if (target->vt != VT_BSTR) {
        (void)context.interpreter->SignalError(10080);
        return Fail(context, entry);
    }
    const LONG size = target->bstrVal ? static_cast<LONG>(SysStringLen(target->bstrVal)) : 0;
    const LONG position = start.Long();
    if (position < 1 || position > size) {
        (void)context.interpreter->SignalError(position < 1 ? 10619 : 10620);
        return Fail(context, entry);
    }
    if (count > size - position + 1)
        count = size - position + 1;
    const std::wstring_view text = value.StringView();
    for (LONG i = 0; i < count; ++i)
        target->bstrVal[position - 1 + i] = text[static_cast<std::size_t>(i)];
    values.CutBack(first);
    return Finish(entry);
}

bool EvaluateStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_code, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    context.interpreter->Values().CutBack(context.activation->StatementBase());
    return Finish(entry);
}

bool DebugPrintStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_items, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    // One buffer for every Debug.Print: output text is built without a fresh allocation each time.
    static std::wstring s_text;
    s_text.clear();
    const std::size_t first = values.Size() - static_cast<std::size_t>(m_count);
    for (std::size_t i = first; i < values.Size(); ++i) {
        if (!WriteDebug(s_text, values.At(i)))
            return Fail(context, entry);
    }
    values.CutBack(first);
    if (m_newLine)
        s_text += L"\r\n";
    context.interpreter->Host().DebugPrint(s_text);
    return Finish(entry);
}

bool JumpStatement::Execute()
{
    const RunContext context = Context();
    if (m_intoWith)
        return context.interpreter->SignalError(10035);
    if (m_withRelease > 0)
        LeaveWithBlocks(context, m_withRelease);
    JumpTo(context, m_target);
    return true;
}

bool ExitProcedureStatement::Execute()
{
    Interpreter* interpreter = Interpreter::Current();
    Activation* activation = interpreter->CurrentActivation();
    activation->SetIndexes(m_exitIndex);
    activation->SetResumeIndex(Activation::kNoResume);
    interpreter->ClearErr();
    return true;
}

bool ConditionalJumpStatement::Execute()
{
    const RunContext context = Context();
    bool truth = false;
    if (m_typed && DirectFormsEnabled()) {
        if (!m_typed->EvaluateCondition(context, truth))
            return ExecuteFrom(0);
        if (truth == m_jumpWhen)
            JumpTo(context, m_target);
        return true;
    }
    return ExecuteOther(context);
}

bool ConditionalJumpStatement::ExecuteOther(const RunContext& context)
{
    bool truth = false;
    const FastExpression* fast = m_fast.Get(m_condition, context.procedure);
    if (const FastExpression* compiled = m_fast.Compiled())
        m_typed = compiled->Typed();
    if (fast && fast->EvaluateCondition(context, truth)) {
        if (truth == m_jumpWhen)
            JumpTo(context, m_target);
        return true;
    }
    return ExecuteFrom(0);
}

bool ConditionalJumpStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_condition, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    bool truth = false;
    if (!PopCondition(context, truth))
        return Fail(context, entry);
    if (truth == m_jumpWhen)
        JumpTo(context, m_target);
    return Finish(entry);
}

inline void BranchStatement::Enter(const RunContext& context, int part)
{
    if (part <= static_cast<int>(m_conditions.size())) {
        if (m_marks[static_cast<std::size_t>(part - 1)])
            SetMark(context, m_markSlot);
        JumpTo(context, m_targets[static_cast<std::size_t>(part - 1)]);
        return;
    }
    if (m_elseMarked)
        SetMark(context, m_markSlot);
    JumpTo(context, m_elseTarget);
}

namespace {

template <typename T>
bool Compares(OperationId op, T a, T b)
{
    switch (op) {
    case OperationId::kEqual: return a == b;
    case OperationId::kNotEqual: return a != b;
    case OperationId::kLess: return a < b;
    case OperationId::kLessEqual: return a <= b;
    case OperationId::kGreater: return a > b;
    default: return a >= b;
    }
}

// A numeric constant a Case item can test against without the operators: Integer, Long or Double.
bool CaseConstant(const ExprOp& op, const CompiledProcedure& procedure, VARIANT& value)
{
    if (op.code != ExprOpCode::kConstant)
        return false;
    value = procedure.ConstantAt(op.index).Raw();
    return value.vt == VT_I2 || value.vt == VT_I4 || value.vt == VT_R8;
}

LONG WholeConstant(const VARIANT& value) { return value.vt == VT_I4 ? value.lVal : value.iVal; }
double RealConstant(const VARIANT& value) { return value.vt == VT_R8 ? value.dblVal : WholeConstant(value); }

} // namespace

bool BranchStatement::ReadCaseTests(const Expression& condition, const CompiledProcedure& procedure)
{
    const std::vector<ExprOp>& ops = condition.ops;
    const std::size_t first = m_caseTests.size();
    const auto isSelector = [&](std::size_t at) {
        return at < ops.size() && ops[at].code == ExprOpCode::kLoad && ops[at].scope == StorageScope::Local &&
               ops[at].index == m_selectorSlot;
    };
    const auto isBinary = [&](std::size_t at, OperationId op) {
        return at < ops.size() && ops[at].code == ExprOpCode::kBinary && ops[at].op == op;
    };
    std::size_t at = 0;
    int items = 0;
    while (at < ops.size()) {
        // selector, constant, comparison: a value or an Is item; then, for a range, >= and the upper half.
        VARIANT low;
        if (!isSelector(at) || at + 2 >= ops.size() || !CaseConstant(ops[at + 1], procedure, low) ||
            ops[at + 2].code != ExprOpCode::kBinary || !IsComparison(ops[at + 2].op)) {
            m_caseTests.resize(first);
            return false;
        }
        CaseTest test;
        test.op = ops[at + 2].op;
        test.low = WholeConstant(low);
        test.lowReal = RealConstant(low);
        test.whole = low.vt != VT_R8;
        at += 3;
        VARIANT high;
        if (test.op == OperationId::kGreaterEqual && isSelector(at) && at + 3 < ops.size() &&
            CaseConstant(ops[at + 1], procedure, high) && isBinary(at + 2, OperationId::kLessEqual) &&
            isBinary(at + 3, OperationId::kAnd)) {
            test.range = true;
            test.high = WholeConstant(high);
            test.highReal = RealConstant(high);
            test.whole = test.whole && high.vt != VT_R8;
            at += 4;
        }
        if (++items > 1) {
            if (!isBinary(at, OperationId::kOr)) {
                m_caseTests.resize(first);
                return false;
            }
            ++at;
        }
        m_caseTests.push_back(test);
    }
    return items > 0 && m_caseTests.size() <= 0xFFFF;
}

bool BranchStatement::MatchesCase(const DirectBranch& branch, bool isWhole, LONG whole, double real) const
{
    const CaseTest* test = m_caseTests.data() + branch.firstTest;
    const CaseTest* end = test + branch.testCount;
    for (; test != end; ++test) {
        bool holds = false;
        if (isWhole && test->whole) {
            holds = test->range ? test->low <= whole && whole <= test->high : Compares(test->op, whole, test->low);
        } else {
            const double value = isWhole ? static_cast<double>(whole) : real;
            holds = test->range ? test->lowReal <= value && value <= test->highReal
                                : Compares(test->op, value, test->lowReal);
        }
        if (holds)
            return true;
    }
    return false;
}

void BranchStatement::PrepareDirect()
{
    m_direct = Direct::kNone;
    if (!m_owner)
        return;
    const FastExpression* selector = nullptr;
    if (m_selectorSlot >= 0) {
        (void)m_fastSelector.Get(m_selector, m_owner);
        selector = m_fastSelector.Compiled();
        if (!selector)
            return;
    }
    m_directBranches.assign(m_conditions.size(), DirectBranch{});
    for (std::size_t i = 0; i < m_conditions.size(); ++i) {
        DirectBranch& branch = m_directBranches[i];
        const std::size_t first = m_caseTests.size();
        if (selector && ReadCaseTests(m_conditions[i], *m_owner)) {
            branch.firstTest = static_cast<std::uint16_t>(first);
            branch.testCount = static_cast<std::uint16_t>(m_caseTests.size() - first);
            continue;
        }
        (void)m_fastConditions[i].Get(m_conditions[i], m_owner);
        if (const FastExpression* fast = m_fastConditions[i].Compiled())
            branch.condition = fast->Typed();
    }
    bool typed = m_selectorSlot < 0;
    for (const DirectBranch& branch : m_directBranches)
        typed = typed && branch.condition != nullptr;
    m_direct = typed ? Direct::kConditions : PrepareWholeRanges() ? Direct::kWholeRanges : Direct::kReady;
}

bool BranchStatement::PrepareWholeRanges()
{
    const FastExpression* selector = m_fastSelector.Compiled();
    const TypedExpression* typed = selector ? selector->Typed() : nullptr;
    if (!typed || (typed->ResultKind() != VT_I2 && typed->ResultKind() != VT_I4))
        return false;
    std::vector<WholeRange> ranges;
    for (std::size_t i = 0; i < m_directBranches.size(); ++i) {
        const DirectBranch& branch = m_directBranches[i];
        if (branch.testCount == 0)
            return false;
        const int part = static_cast<int>(i) + 1;
        for (std::size_t t = branch.firstTest; t < std::size_t{branch.firstTest} + branch.testCount; ++t) {
            const CaseTest& test = m_caseTests[t];
            if (!test.whole)
                return false;
            const LONG c = test.low;
            // Before and after c, or nothing when c is the first or last whole number.
            const WholeRange before{LONG_MIN, c == LONG_MIN ? LONG_MIN : c - 1, c == LONG_MIN ? 0 : part};
            const WholeRange after{c == LONG_MAX ? LONG_MAX : c + 1, LONG_MAX, c == LONG_MAX ? 0 : part};
            if (test.range) {
                ranges.push_back({test.low, test.high, part});
                continue;
            }
            switch (test.op) {
            case OperationId::kEqual: ranges.push_back({c, c, part}); break;
            case OperationId::kLess: if (before.part) ranges.push_back(before); break;
            case OperationId::kLessEqual: ranges.push_back({LONG_MIN, c, part}); break;
            case OperationId::kGreater: if (after.part) ranges.push_back(after); break;
            case OperationId::kGreaterEqual: ranges.push_back({c, LONG_MAX, part}); break;
            default: // kNotEqual
                if (before.part)
                    ranges.push_back(before);
                if (after.part)
                    ranges.push_back(after);
                break;
            }
        }
    }
    m_wholeRanges = std::move(ranges);
    m_wholeSelector = typed;
    return true;
}

bool BranchStatement::ExecuteWholeRanges(const RunContext& context)
{
    LONG selector = 0;
    if (!m_wholeSelector->EvaluateWhole(context, selector))
        return ExecuteFrom(0);
    // Kept in its slot as the general code keeps it.
    VARIANT& kept = HiddenSlot(context, m_selectorSlot);
    if (!OwnsNothing(kept.vt))
        ClearSlot(kept);
    kept.vt = m_wholeSelector->ResultKind();
    if (kept.vt == VT_I4)
        kept.lVal = selector;
    else
        kept.iVal = static_cast<SHORT>(selector);
    int part = static_cast<int>(m_directBranches.size()) + 1;
    for (const WholeRange& range : m_wholeRanges) {
        if (range.low <= selector && selector <= range.high) {
            part = range.part;
            break;
        }
    }
    Enter(context, part);
    return true;
}

template <typename Test>
bool BranchStatement::TakeFirstTrue(const RunContext& context, Test test)
{
    const int count = static_cast<int>(m_directBranches.size());
    for (int part = 1; part <= count; ++part) {
        bool truth = false;
        if (!test(static_cast<std::size_t>(part - 1), truth))
            return ExecuteFrom(MakeState(part, 0));
        if (truth) {
            Enter(context, part);
            return true;
        }
    }
    Enter(context, count + 1);
    return true;
}

bool BranchStatement::ExecuteDirect(const RunContext& context)
{
    // The selector of Select Case is kept in its slot (the general code of a later condition reads it
    // there), and read as a number when it is one.
    bool numeric = false;
    bool isWhole = false;
    LONG whole = 0;
    double real = 0;
    if (m_selectorSlot >= 0) {
        VARIANT value;
        if (!m_fastSelector.Compiled()->Evaluate(context, value))
            return ExecuteFrom(0);
        VARIANT& kept = HiddenSlot(context, m_selectorSlot);
        if (!OwnsNothing(kept.vt))
            ClearSlot(kept);
        kept = value;
        switch (value.vt) {
        case VT_I2: numeric = isWhole = true; whole = value.iVal; break;
        case VT_I4: numeric = isWhole = true; whole = value.lVal; break;
        case VT_R8: numeric = true; real = value.dblVal; break;
        default: break;
        }
    }
    return TakeFirstTrue(context, [&](std::size_t index, bool& truth) {
        const DirectBranch& branch = m_directBranches[index];
        if (branch.testCount != 0 && numeric) {
            truth = MatchesCase(branch, isWhole, whole, real);
            return true;
        }
        if (branch.condition)
            return branch.condition->EvaluateCondition(context, truth);
        const FastExpression* fast = m_fastConditions[index].Get(m_conditions[index], context.procedure);
        return fast && fast->EvaluateCondition(context, truth);
    });
}

bool BranchStatement::ExecuteConditions(const RunContext& context)
{
    const DirectBranch* branches = m_directBranches.data();
    return TakeFirstTrue(context, [branches, &context](std::size_t index, bool& truth) {
        return branches[index].condition->EvaluateCondition(context, truth);
    });
}

bool BranchStatement::Execute()
{
    if (m_direct == Direct::kUntried)
        PrepareDirect();
    if (DirectFormsEnabled()) {
        switch (m_direct) {
        case Direct::kConditions: return ExecuteConditions(Context());
        case Direct::kWholeRanges: return ExecuteWholeRanges(Context());
        case Direct::kReady: return ExecuteDirect(Context());
        default: break;
        }
    }
    // Without a direct form (or with the direct forms off) the general code runs from the start.
    return ExecuteFrom(0);
}

bool BranchStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    // Part 0 is the selector of Select Case; part i + 1 the condition of branch i.
    int part = PartOf(entry.state);
    int pc = PositionOf(entry.state);
    if (part == 0) {
        if (m_selectorSlot >= 0) {
            switch (RunExpression(context, m_selector, pc)) {
            case EvalStatus::kYield: entry.state = MakeState(0, pc); return false;
            case EvalStatus::kFailed: return Fail(context, entry);
            case EvalStatus::kDone: break;
            }
            ValueStack& values = context.interpreter->Values();
            Variant kept;
            kept.Attach(HiddenSlot(context, m_selectorSlot));
            kept = std::move(values.Top());
            kept.Detach(HiddenSlot(context, m_selectorSlot));
            values.Pop();
        }
        part = 1;
        pc = 0;
    }
    for (; part <= static_cast<int>(m_conditions.size()); ++part, pc = 0) {
        switch (RunExpression(context, m_conditions[static_cast<std::size_t>(part - 1)], pc)) {
        case EvalStatus::kYield: entry.state = MakeState(part, pc); return false;
        case EvalStatus::kFailed: return Fail(context, entry);
        case EvalStatus::kDone: break;
        }
        bool truth = false;
        if (!PopCondition(context, truth))
            return Fail(context, entry);
        if (truth) {
            Enter(context, part);
            return Finish(entry);
        }
    }
    Enter(context, static_cast<int>(m_conditions.size()) + 1);
    return Finish(entry);
}

bool CaseLineStatement::Step(ExecEntry& entry)
{
    if (entry.state > 0)
        return m_body->RunFrom(entry, entry.state - 1, 1);
    const RunContext context = Context();
    VARIANT& mark = HiddenSlot(context, m_markSlot);
    const bool entering = mark.vt == VT_BOOL && mark.boolVal != VARIANT_FALSE;
    mark.boolVal = VARIANT_FALSE;
    if (!entering) {
        JumpTo(context, m_target);
        return Finish(entry);
    }
    return m_body->RunFrom(entry, 0, 1);
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
        // Without Step the step is 1 in the counter's kind, so that each pass adds like kinds.
        Variant one;
        one.SetInteger(1);
        if (!StorageCell(static_cast<VARTYPE>(m_counter.type.ValueTag())).Store(HiddenSlot(context, m_stepSlot), one))
            return Fail(context, entry);
    }
    return TestFirst(context, entry);
}

bool ForStatement::KeepBound(const RunContext& context, int slot)
{
    ValueStack& values = context.interpreter->Values();
    // The end and step keep the counter's kind, so that each pass adds and compares like kinds.
    const ValueCell& cell = StorageCell(static_cast<VARTYPE>(m_counter.type.ValueTag()));
    VARIANT& kept = HiddenSlot(context, slot);
    ClearSlot(kept);
    const bool stored = cell.Store(kept, values.Top());
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

bool KeepValueStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_value, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    ValueStack& values = context.interpreter->Values();
    Variant kept;
    kept.Attach(HiddenSlot(context, m_slot));
    kept = std::move(values.Top());
    kept.Detach(HiddenSlot(context, m_slot));
    values.Pop();
    return Finish(entry);
}

bool StatementList::Step(ExecEntry& entry)
{
    int start = entry.state;
    if (m_lineLevel && start == 0)
        start = Interpreter::Current()->CurrentActivation()->TakeEntryPosition();
    return RunFrom(entry, start, 0);
}

bool StatementList::RunFrom(ExecEntry& entry, int start, int stateBase)
{
    Activation* activation = Interpreter::Current()->CurrentActivation();
    const int current = activation->CurrentIndex();
    const int next = activation->NextIndex();
    const int count = static_cast<int>(m_statements.size());
    for (int i = start; i < count; ++i) {
        if (m_lineLevel)
            activation->SetPositionAfter(current, i + 1 < count ? i + 1 : 0);
        if (!m_statements[static_cast<std::size_t>(i)]->Execute()) {
            if (HaltFlags::MustStop())
                return Finish(entry);
            // The statement scheduled work; this list resumes after it.
            entry.state = stateBase + i + 1;
            return false;
        }
        // A jump (GoTo, Exit, a loop inside the line) or a pending error or action ends the list; a
        // jump always changes the current or the next index.
        if (activation->NextIndex() != next || activation->CurrentIndex() != current || HaltFlags::Any())
            break;
    }
    return Finish(entry);
}

bool SingleLineIfStatement::RunPart(ExecEntry& entry, bool truth)
{
    if (truth)
        return m_then->RunFrom(entry, 0, MakeState(1, 0));
    if (m_else)
        return m_else->RunFrom(entry, 0, MakeState(2, 0));
    return Finish(entry);
}

bool SingleLineIfStatement::Execute()
{
    const RunContext context = Context();
    bool truth = false;
    if (const FastExpression* fast = m_fast.Get(m_condition, context.procedure);
        fast && fast->EvaluateCondition(context, truth)) {
        ExecEntry entry{this, 0};
        return FinishOrWait(entry, RunPart(entry, truth));
    }
    if (m_direct == Direct::kUntried)
        m_direct = m_owner && !m_fast.Compiled() && m_slice.Compile(m_condition, *m_owner) ? Direct::kReady : Direct::kNone;
    if (m_direct == Direct::kReady && DirectFormsEnabled() && m_slice.EvaluateCondition(context, truth)) {
        ExecEntry entry{this, 0};
        return FinishOrWait(entry, RunPart(entry, truth));
    }
    return ExecuteFrom(0);
}

bool SingleLineIfStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    // Part 0: the condition; part 1: the Then list from a position; part 2: the Else list.
    const int part = PartOf(entry.state);
    if (part == 1)
        return m_then->RunFrom(entry, PositionOf(entry.state), MakeState(1, 0));
    if (part == 2)
        return m_else->RunFrom(entry, PositionOf(entry.state), MakeState(2, 0));
    int pc = PositionOf(entry.state);
    switch (RunExpression(context, m_condition, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    bool truth = false;
    if (!PopCondition(context, truth))
        return Fail(context, entry);
    return RunPart(entry, truth);
}

bool EndStatement::Execute()
{
    (void)Interpreter::Current()->RequestAction(m_action, 0);
    return true;
}

} // namespace brannoc
