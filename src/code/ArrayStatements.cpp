#include "code/ArrayStatements.h"

#include "exec/ErrorMessages.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"

#include <cstring>

namespace brannoc {

namespace {

bool Raise(const RunContext& context, ErrorId id) { return context.interpreter->SignalError(id); }

// The kind of the elements an array variable of type arrayType holds.
ElementKind KindFor(TypeCode arrayType, IRecordInfo* record)
{
    const TypeCode array = arrayType.IsArray() ? arrayType : TypeCode(TypeCode::kVariant).WithRank(1);
    return ArrayElementKind(array.Code(), record);
}

// Records of two record types match when their types do.
bool SameRecordType(IRecordInfo* a, IRecordInfo* b)
{
    return a == b || (a && b && a->IsMatchingType(b));
}

} // namespace

bool ReDimStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_bounds, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
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
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    SAFEARRAY* existing = ArrayOf(target);
    if (existing && IsFixedArray(existing))
        return Raise(context, ErrorId::ExpectingDynamicArray), Fail(context, entry);
    const bool done = m_preserve && existing ? Preserve(existing, lower, upper) : Make(*target, lower, upper);
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

bool ReDimStatement::Make(VARIANT& target, const LONG* lower, const LONG* upper) const
{
    const RunContext context = Context();
    // Without Preserve the old array goes first, whatever follows.
    ClearSlot(target);
    for (int d = m_dimensions - 1; d >= 0; --d) {
        if (lower[d] > upper[d])
            return Raise(context, ErrorId::ArrayLowerBoundAboveUpper);
    }
    const ElementKind kind = KindFor(m_arrayType, m_record);
    SAFEARRAY* array = CreateArray(kind, lower, upper, static_cast<UINT>(m_dimensions), false);
    if (!array)
        return Raise(context, ErrorId::CantAllocateLargeArray);
    target.vt = static_cast<VARTYPE>(VT_ARRAY | kind.tag);
    target.parray = array;
    return true;
}

bool EraseStatement::Execute()
{
    const RunContext context = Context();
    ExecEntry entry{this, 0};
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    SAFEARRAY* array = ArrayOf(target);
    if (!array) {
        if (target->vt != VT_EMPTY)
            return Raise(context, ErrorId::TypeMismatch), Fail(context, entry);
        return true;
    }
    ElementKind kind = ElementKindOf(array);
    if (kind.tag == VT_RECORD)
        return Raise(context, ErrorId::NotImplemented), Fail(context, entry);
    if (!IsFixedArray(array)) {
        ClearSlot(*target);
        return true;
    }
    if (m_target.type.IsArray() && m_target.type.Scalar().IsFixedString())
        kind.fixedLength = static_cast<UINT>(m_target.type.Scalar().FixedLength());
    if (!ResetArray(array, kind))
        return Raise(context, ErrorId::OutOfMemory), Fail(context, entry);
    return true;
}

bool ArrayAssignStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    int pc = entry.state;
    switch (RunExpression(context, m_value, pc)) {
    case EvalStatus::kYield: entry.state = pc; return false;
    case EvalStatus::kFailed: return Fail(context, entry);
    case EvalStatus::kDone: break;
    }
    VARIANT* storage = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    if (!storage)
        return Fail(context, entry);
    VARIANT* target = FollowByRefChain(storage);
    if (IsFixedArray(ArrayOf(target)))
        return Raise(context, ErrorId::ExpectingDynamicArray), Fail(context, entry);
    const ElementKind kind = KindFor(m_target.type, m_record);
    Variant& value = context.interpreter->Values().Top();
    const VARIANT& source = *FollowByRefChain(&value.Raw());
    Variant result;
    if ((source.vt & VT_TYPEMASK) == VT_BSTR && !(source.vt & VT_ARRAY) && kind.tag == VT_UI1) {
        // A String given to a Byte array: its bytes, from index 0.
        const BSTR text = (source.vt & VT_BYREF) ? *source.pbstrVal : source.bstrVal;
        const UINT bytes = text ? SysStringByteLen(text) : 0;
        const LONG lower = 0;
        const LONG upper = static_cast<LONG>(bytes) - 1;
        SAFEARRAY* array = CreateArray(kind, &lower, &upper, 1, false);
        if (!array)
            return Raise(context, ErrorId::CantAllocateLargeArray), Fail(context, entry);
        result.SetArray(array, VT_UI1);
        if (bytes > 0) {
            SafeArrayLock lock(array);
            std::memcpy(lock.Data(), text, bytes);
        }
    } else {
        SAFEARRAY* array = ArrayOf(const_cast<VARIANT*>(&source));
        const ElementKind given = ElementKindOf(array);
        if (!array || given.tag != kind.tag || (kind.tag == VT_RECORD && !SameRecordType(given.record, kind.record)))
            return Raise(context, ErrorId::TypeMismatch), Fail(context, entry);
        // The value on the stack is the engine's own copy unless it refers to storage elsewhere.
        if (!value.IsByRef())
            result = std::move(value);
        else if (!result.CopyIndirectFrom(value.Raw()))
            return Raise(context, ErrorId::OutOfMemory), Fail(context, entry);
    }
    ClearSlot(*target);
    result.Detach(*target);
    context.interpreter->Values().Pop();
    entry.state = ExecEntry::kFinished;
    return true;
}

} // namespace brannoc
