// Assignments: to variables, to array elements, String appends, LSet and RSet, Mid on the left.
#include "code/Statements.h"
#include "code/StatementSupport.h"
#include "automation/ObjectCreation.h"

#include "code/BuiltinCall.h"
#include "code/FieldText.h"
#include "code/MemberCall.h"
#include "code/NumericKinds.h"
#include "code/ObjectStatements.h"
#include "code/VariableTextStore.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/AlignText.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"
#include "values/StringCapacity.h"
#include "values/TextForm.h"
#include "values/ValueCell.h"
#include "frontend/Token.h"
#include "library/BuiltinTable.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace brannoc {

using namespace statement_support;

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

bool AssignStatement::StoreText(const AssignStatement& self, const RunContext& context)
{
    std::wstring_view text;
    return self.m_text.ReadInLine(context, text) && StoreTextInVariable(context, self.m_target, text);
}

bool AssignStatement::PrepareTextStore(bool mayReadVariant)
{
    if (m_directStore == DirectStore::kText)
        return true;
    if (m_directStore != DirectStore::kUntried || !m_owner || !m_fastTarget.IsUsable() || m_target.type.IsArray() ||
        !(m_target.type.IsString() || m_target.type.IsVariant()) || m_value.ops.empty())
        return false;
    // The register form takes only values that are Strings by their declaration: a Variant would give up
    // whenever it holds something else.
    const TypeCode valueType = m_value.ops.back().type;
    if (!mayReadVariant && (!valueType.IsString() || valueType.IsArray()))
        return false;
    if (!m_text.Compile(m_value.ops.data(), m_value.ops.size(), *m_owner))
        return false;
    m_directStore = DirectStore::kText;
    m_run = &StoreText;
    return true;
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
    } else if (m_directStore == DirectStore::kUntried) {
        // A String or Variant variable assigned a string read in place (s = names(i), s = t).
        if (!PrepareTextStore(true))
            m_directStore = DirectStore::kNone;
        else if (DirectFormsEnabled())
            return StoreText(*this, context) || ExecuteFrom(0);
    }
    return ExecuteFrom(0);
}

bool AssignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    if (m_target.type.IsVariant() && !ResolveLetValue(values.Top()))
        return Fail(context, entry);
    const bool stored = StoreVariableTaking(context, m_target, values.Top());
    values.Pop();
    if (!stored)
        return Fail(context, entry);
    return Finish(entry);
}

namespace {

constexpr std::size_t kWholeDigits = 12;

// The decimal digits of value, a minus sign before them for a negative number, as CStr writes a whole
// number; written at the end of digits.
std::wstring_view WholeDigits(LONG value, wchar_t (&digits)[kWholeDigits])
{
    unsigned long magnitude = value < 0 ? 0ul - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
    std::size_t start = kWholeDigits;
    do {
        digits[--start] = static_cast<wchar_t>(L'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0)
        digits[--start] = L'-';
    return std::wstring_view(digits + start, kWholeDigits - start);
}

} // namespace

bool AppendStatement::CompileParts()
{
    // The tail's code is p1 [p2 & [p3 & ...]]: a part at 0 and at every odd position, & at the others.
    const std::vector<ExprOp>& ops = m_tail.ops;
    if (ops.empty() || ops.size() % 2 == 0)
        return false;
    for (std::size_t i = 0; i < ops.size(); ++i) {
        if (i >= 2 && i % 2 == 0) {
            if (ops[i].code != ExprOpCode::kBinary || ops[i].op != OperationId::kConcatenate)
                return false;
            continue;
        }
        auto part = std::make_unique<TailPart>();
        const ExprOp& op = ops[i];
        if (op.code == ExprOpCode::kBuiltin) {
            const BuiltinCall& call = m_owner->BuiltinCallAt(op.index);
            if (IsLazyBuiltinCall(call, Token::CStr, 1) && CompileWholeForm(call.arguments[0].code, *m_owner, part->number)) {
                part->isNumber = true;
                m_parts.push_back(std::move(part));
                continue;
            }
        }
        if (!part->text.Compile(&op, 1, *m_owner))
            return false;
        m_parts.push_back(std::move(part));
    }
    return true;
}

bool AppendStatement::AppendParts(const RunContext& context, bool& answer)
{
    // The parts are copied together first: a part may read the target itself, and nothing is appended
    // unless every part could be read. A single text part is appended from where it is stored.
    constexpr std::size_t kMostJoined = 256;
    wchar_t joined[kMostJoined];
    std::wstring_view text;
    if (m_parts.size() == 1 && !m_parts[0]->isNumber) {
        if (!m_parts[0]->text.Read(context, text))
            return false;
    } else {
        std::size_t used = 0;
        for (const auto& part : m_parts) {
            std::wstring_view piece;
            wchar_t digits[kWholeDigits];
            LONG value = 0;
            if (part->isNumber) {
                if (!part->number.EvaluateWhole(context, value))
                    return false;
                piece = WholeDigits(value, digits);
            } else if (!part->text.Read(context, piece)) {
                return false;
            }
            if (piece.size() > kMostJoined - used)
                return false;
            std::copy(piece.begin(), piece.end(), joined + used);
            used += piece.size();
        }
        text = std::wstring_view(joined, used);
    }
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    bool appended = false;
    if (!storage || !AppendPartToStorage(*storage, text, appended))
        return false;
    if (appended) {
        answer = true;
    } else {
        ExecEntry entry{this, 0};
        answer = Fail(context, entry);
    }
    return true;
}

bool AppendStatement::Execute()
{
    if (m_direct == Direct::kUntried) {
        m_direct = Direct::kNone;
        if (m_owner && CompileParts())
            m_direct = Direct::kReady;
        else
            m_parts.clear();
    }
    if (m_direct == Direct::kReady && DirectFormsEnabled()) {
        bool answer = false;
        if (AppendParts(Context(), answer))
            return answer;
    }
    return ExecuteFrom(0);
}

bool AppendStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_tail, entry, answer))
        return answer;
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
        if (!ReadWholeLocal(context, m_localIndex, index))
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
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
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

BSTR* AlignStatement::Destination(const RunContext& context)
{
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return nullptr;
    VARIANT* target = FollowByRefChain(storage);
    if (m_indexCount > 0) {
        // The element's indexes are on top of the value stack.
        VARTYPE tag = VT_EMPTY;
        void* element = ElementOf(context, storage, m_indexCount, tag);
        if (!element)
            return nullptr;
        if (tag == VT_BSTR)
            return static_cast<BSTR*>(element);
        if (tag != VT_VARIANT) {
            (void)context.interpreter->SignalError(kErrorTypeMismatch);
            return nullptr;
        }
        target = FollowByRefChain(static_cast<VARIANT*>(element));
    }
    // A record reaches here only inside a Variant (record variables are copied by their own
    // statement); aligning it is not supported, whatever the source is.
    if (target->vt == VT_RECORD) {
        (void)context.interpreter->SignalError(kErrorNotImplemented);
        return nullptr;
    }
    if (target->vt != VT_BSTR) {
        (void)context.interpreter->SignalError(kErrorTypeMismatch);
        return nullptr;
    }
    return &target->bstrVal;
}

bool AlignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    // A record held by a Variant is refused before the text is converted; the destination is looked up
    // after the conversion, which may run code that changes the variable.
    if (VARIANT* storage = m_indexCount == 0 ? StorageOf(context, m_target.scope, m_target.index, m_target.module) : nullptr;
        storage && FollowByRefChain(storage)->vt == VT_RECORD) {
        (void)context.interpreter->SignalError(kErrorNotImplemented);
        return Fail(context, entry);
    }
    // The text is on top, the element's indexes (if any) below it.
    Variant source(std::move(values.Top()));
    values.Pop();
    if (source.Tag() != VT_BSTR && !ChangeType(source, VT_BSTR))
        return Fail(context, entry);
    BSTR* destination = Destination(context);
    if (!destination)
        return Fail(context, entry);
    AlignText(*destination, source.StringView(), m_right);
    values.CutBack(values.Size() - static_cast<std::size_t>(m_indexCount));
    return Finish(entry);
}

bool MidStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
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
        (void)context.interpreter->SignalError(kErrorTypeMismatch);
        return Fail(context, entry);
    }
    const LONG size = static_cast<LONG>(TextLength(target->bstrVal));
    const LONG position = start.Long();
    if (position < 1 || position > size) {
        (void)context.interpreter->SignalError(position < 1 ? kErrorStringIndex : kErrorInvalidArgument);
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

} // namespace brannoc
