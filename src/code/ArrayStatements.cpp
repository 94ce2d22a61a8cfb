#include "code/ArrayStatements.h"

#include "code/RecordAccess.h"
#include "exec/ErrorMessages.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"


namespace brannoc {

namespace {

bool Raise(const RunContext& context, ErrorId id) { return context.interpreter->SignalError(id); }

// The kind of the elements an array variable of type arrayType holds.
ElementKind KindFor(TypeCode arrayType, IRecordInfo* record)
{
    const TypeCode array = arrayType.IsArray() ? arrayType : TypeCode(TypeCode::kVariant).WithRank(1);
    return ArrayElementKind(array.Code(), record);
}

// Releases the array a variable's storage holds. A variable declared as an array stays an array of
// elementTag without a descriptor (not dimensioned); a Variant becomes Empty.
void ReleaseArray(VARIANT& target, TypeCode declared, VARTYPE elementTag)
{
    ClearSlot(target);
    if (declared.IsArray()) {
        target.vt = static_cast<VARTYPE>(VT_ARRAY | elementTag);
        target.parray = nullptr;
    }
}

// True when a reference on the value stack (With on an element, an element passed by reference) points
// into the array: until it goes, the array is as fixed as a declared one.
bool IsHeldByReference(const RunContext& context, const SAFEARRAY* array)
{
    Interpreter& interpreter = *context.interpreter;
    return array && interpreter.References().IsReferenced(interpreter.Values(), array);
}

} // namespace

bool ReDimStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_bounds, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    const std::size_t first = values.Size() - static_cast<std::size_t>(2 * m_dimensions);
    LONG lower[8] = {};
    LONG upper[8] = {};
    for (int d = 0; d < m_dimensions; ++d) {
        for (int part = 0; part < 2; ++part) {
            Variant& bound = values.At(first + static_cast<std::size_t>(2 * d + part));
            if (bound.Tag() != VT_I4 && !ChangeType(bound, VT_I4))
                return Fail(context, entry);
            (part == 0 ? lower : upper)[d] = bound.Long();
        }
    }
    values.CutBack(first);
    VARIANT* target = nullptr;
    SAFEARRAY** held = nullptr;
    if (m_path >= 0) {
        if (!FindPathArray(context, context.procedure->RecordPathAt(m_path), held))
            return Fail(context, entry);
    } else {
        VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
        if (!storage)
            return Fail(context, entry);
        target = FollowByRefChain(storage);
    }
    SAFEARRAY* existing = held ? *held : ArrayOf(target);
    if (existing && (IsFixedArray(existing) || IsHeldByReference(context, existing)))
        return Raise(context, ErrorId::ExpectingDynamicArray), Fail(context, entry);
    const bool done = m_preserve && existing ? Preserve(existing, lower, upper) : Make(target, held, lower, upper);
    return done ? (entry.state = ExecEntry::kFinished, true) : Fail(context, entry);
}

bool ReDimStatement::Preserve(SAFEARRAY* existing, const LONG* lower, const LONG* upper) const
{
    const RunContext context = Context();
    if (static_cast<int>(SafeArrayGetDim(existing)) != m_dimensions)
        return Raise(context, ErrorId::ArrayLowerBoundAboveUpper);
    const int last = m_dimensions - 1;
    for (int d = last; d >= 0; --d) {
        if (lower[d] > upper[d])
            return Raise(context, ErrorId::ArrayLowerBoundAboveUpper);
        LONG oldLower = 0;
        LONG oldUpper = 0;
        (void)SafeArrayGetLBound(existing, static_cast<UINT>(d + 1), &oldLower);
        (void)SafeArrayGetUBound(existing, static_cast<UINT>(d + 1), &oldUpper);
        // Only the last dimension may change, and only its upper bound (checked below).
        if (d != last && (oldLower != lower[d] || oldUpper != upper[d]))
            return Raise(context, ErrorId::ArrayLowerBoundAboveUpper);
    }
    LONG lastLower = 0;
    (void)SafeArrayGetLBound(existing, static_cast<UINT>(m_dimensions), &lastLower);
    if (lastLower != lower[last])
        return Raise(context, ErrorId::ArrayIndexOutOfRange);
    ElementKind kind = ElementKindOf(existing);
    const ElementKind declared = KindFor(m_arrayType, m_record);
    if (declared.tag == kind.tag)
        kind.fixedLength = declared.fixedLength;
    if (!ResizeLastDimension(existing, kind, lower[last], upper[last]))
        return Raise(context, ErrorId::CantAllocateLargeArray);
    return true;
}

bool ReDimStatement::Make(VARIANT* target, SAFEARRAY** held, const LONG* lower, const LONG* upper) const
{
    const RunContext context = Context();
    const ElementKind kind = KindFor(m_arrayType, m_record);
    // Without Preserve the old array goes first, whatever follows.
    if (held) {
        DestroyArray(*held);
        *held = nullptr;
    } else {
        ReleaseArray(*target, m_target.type, kind.tag);
    }
    for (int d = m_dimensions - 1; d >= 0; --d) {
        if (lower[d] > upper[d])
            return Raise(context, ErrorId::ArrayLowerBoundAboveUpper);
    }
    SAFEARRAY* array = CreateArray(kind, lower, upper, static_cast<UINT>(m_dimensions), false);
    if (!array)
        return Raise(context, ErrorId::CantAllocateLargeArray);
    if (held) {
        *held = array;
        return true;
    }
    target->vt = static_cast<VARTYPE>(VT_ARRAY | kind.tag);
    target->parray = array;
    return true;
}

bool EraseStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (m_path < 0) {
        VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
        if (!storage || !Erase(context, FollowByRefChain(storage), nullptr))
            return Fail(context, entry);
        entry.state = ExecEntry::kFinished;
        return true;
    }
    if (bool answer; !ExpressionReady(context, m_indexes, entry, answer))
        return answer;
    SAFEARRAY** held = nullptr;
    if (!FindPathArray(context, context.procedure->RecordPathAt(m_path), held) || !Erase(context, nullptr, held))
        return Fail(context, entry);
    entry.state = ExecEntry::kFinished;
    return true;
}

bool EraseStatement::Erase(const RunContext& context, VARIANT* target, SAFEARRAY** held) const
{
    SAFEARRAY* array = held ? *held : ArrayOf(target);
    if (!array) {
        // Nothing to release: an array that is not dimensioned, or an Empty Variant.
        if (target && target->vt != VT_EMPTY && (target->vt & VT_ARRAY) == 0)
            return Raise(context, ErrorId::TypeMismatch);
        return true;
    }
    ElementKind kind = ElementKindOf(array);
    if (kind.tag == VT_RECORD)
        return Raise(context, ErrorId::NotImplemented);
    if (!IsFixedArray(array)) {
        if (IsHeldByReference(context, array))
            return Raise(context, ErrorId::ExpectingDynamicArray);
        if (held) {
            DestroyArray(*held);
            *held = nullptr;
        } else {
            ReleaseArray(*target, m_target.type, static_cast<VARTYPE>(target->vt & VT_TYPEMASK));
        }
        return true;
    }
    if (m_target.type.IsArray() && m_target.type.Scalar().IsFixedString())
        kind.fixedLength = static_cast<UINT>(m_target.type.Scalar().FixedLength());
    return ResetArray(array, kind) || Raise(context, ErrorId::OutOfMemory);
}

bool ArrayAssignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_value, entry, answer))
        return answer;
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    if (IsFixedArray(ArrayOf(target)) || IsHeldByReference(context, ArrayOf(target)))
        return Raise(context, ErrorId::ExpectingDynamicArray), Fail(context, entry);
    const ElementKind kind = KindFor(m_target.type, m_record);
    SAFEARRAY* array = nullptr;
    if (const long error = TakeArrayFor(kind, context.interpreter->Values().Top(), array); error != 0)
        return (void)context.interpreter->SignalError(error), Fail(context, entry);
    Variant result;
    result.SetArray(array, kind.tag);
    ClearSlot(*target);
    result.Detach(*target);
    context.interpreter->Values().Pop();
    entry.state = ExecEntry::kFinished;
    return true;
}

} // namespace brannoc
