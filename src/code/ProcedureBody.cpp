#include "code/ProcedureBody.h"
#include "code/TypeOfTest.h"
#include "code/ExternalCall.h"

#include "code/BuiltinCall.h"
#include "code/ElementArguments.h"
#include "code/FastExpression.h"
#include "code/TypedExpression.h"
#include "code/ErrorStatements.h"
#include "code/RecordAccess.h"
#include "code/RegisterBuilder.h"
#include "code/MemberCall.h"
#include "code/ObservedForms.h"
#include "values/Operators.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "frontend/Symbols.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <climits>
#include <cstddef>
#include <cstring>

namespace brannoc {

namespace {

constexpr VARTYPE kReferenceTag = VT_BYREF | VT_VARIANT;
// Offset of the payload inside a VARIANT (where typed references point).
constexpr std::size_t kPayloadOffset = 8;

VARIANT* Slots(const RunContext& context) { return static_cast<VARIANT*>(context.activation->Locals()); }

VARIANT* Follow(VARIANT* storage)
{
    while (storage->vt == kReferenceTag)
        storage = storage->pvarVal;
    return storage;
}

} // namespace

// A reference to a variable as an argument: VT_BYREF | VT_VARIANT for Variant variables, else VT_BYREF
// with the declared kind pointing at the payload, so that binding can compare declared kinds.
void MakeReference(Variant& target, VARIANT* storage, TypeCode type)
{
    const VARTYPE tag = StorageTag(type);
    if (tag == VT_RECORD && (storage->vt & ~VT_BYREF) == VT_RECORD) {
        // A record is referred to the automation way: its block and type, owned by the variable.
        target.SetRecordReference(storage->pvRecord, storage->pRecInfo);
        return;
    }
    if (tag == VT_VARIANT)
        target.SetByRef(VT_VARIANT, storage);
    else
        target.SetByRef(tag, reinterpret_cast<char*>(storage) + kPayloadOffset);
}

bool PackValues(ValueStack& values, int count)
{
    SafeArray array(SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(count)));
    if (!array.Get())
        return RaiseValueError(kErrorOutOfMemory);
    const std::size_t first = values.Size() - static_cast<std::size_t>(count);
    {
        SafeArrayLock lock(array.Get());
        auto* elements = static_cast<VARIANT*>(lock.Data());
        for (int i = 0; i < count; ++i) {
            Variant copy;
            const VARIANT& value = values.At(first + static_cast<std::size_t>(i)).Raw();
            if (!copy.CopyIndirectFrom(value))
                return RaiseValueError(CopyFailure(value));
            copy.Detach(elements[i]);
        }
    }
    values.CutBack(first);
    Variant* slot = values.Push();
    if (!slot)
        return RaiseValueError(kErrorOutOfMemory);
    slot->SetArray(array.Detach(), VT_VARIANT);
    return true;
}

namespace {

// Bytes of the payload of an array element of kind tag.
std::size_t PayloadSize(VARTYPE tag)
{
    switch (tag) {
    case VT_UI1: return 1;
    case VT_I2:
    case VT_BOOL: return 2;
    case VT_I4:
    case VT_R4:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
    case VT_ERROR: return 4;
    default: return 8;
    }
}

} // namespace

VARIANT* StorageOutsideFrame(const RunContext& context, StorageScope scope, int index, const Module* module)
{
    switch (scope) {
    case StorageScope::Local:
        return Follow(&Slots(context)[index]);
    case StorageScope::Static:
        return &context.procedure->StaticAt(index);
    case StorageScope::Module: {
        ModuleInstance* instance = context.activation->Instance();
        if (instance && module)
            instance = instance->Find(*module);
        if (!instance || static_cast<std::size_t>(index) >= instance->VariableCount()) {
            (void)context.interpreter->SignalError(kErrorModuleMissing);
            return nullptr;
        }
        return &instance->Slot(static_cast<std::size_t>(index));
    }
    }
    return nullptr;
}

bool StorePlain(VARIANT& storage, VARTYPE kind, const VARIANT& value)
{
    if ((value.vt & VT_BYREF) || !OwnsNothing(value.vt))
        return false;
    VARIANT result = value;
    if (kind != VT_VARIANT && value.vt != kind) {
        if (kind == VT_I4 && value.vt == VT_I2) {
            result.vt = VT_I4;
            result.lVal = value.iVal;
        } else if (kind == VT_R8 && (value.vt == VT_I2 || value.vt == VT_I4)) {
            result.vt = VT_R8;
            result.dblVal = value.vt == VT_I2 ? value.iVal : value.lVal;
        } else if (kind == VT_I2 && value.vt == VT_I4 && value.lVal >= SHRT_MIN && value.lVal <= SHRT_MAX) {
            result.vt = VT_I2;
            result.iVal = static_cast<SHORT>(value.lVal);
        } else {
            return false;
        }
    }
    // Storage reached by reference may be a caller's Variant holding anything.
    if (!OwnsNothing(storage.vt))
        ClearSlot(storage);
    storage = result;
    return true;
}

namespace {

// A String value given to a String or Variant variable: the string moves into the storage and the old
// contents move into value, which the caller discards.
bool StoreStringTaking(VARIANT& storage, VARTYPE kind, Variant& value)
{
    if (value.Tag() != VT_BSTR || (kind != VT_BSTR && kind != VT_VARIANT))
        return false;
    VARIANT previous = storage;
    storage = value.Raw();
    value.Raw() = previous;
    return true;
}

VARIANT* StorageForStore(const RunContext& context, const VariableRef& target)
{
    return StorageOf(context, target.scope, target.index, target.module);
}

} // namespace

bool StoreVariable(const RunContext& context, const VariableRef& target, const Variant& value)
{
    VARIANT* storage = StorageForStore(context, target);
    if (!storage)
        return false;
    return StoreTyped(*storage, target.type, value);
}

bool StoreTyped(VARIANT& storage, TypeCode type, const Variant& value)
{
    if (type.IsFixedString() && !type.IsArray())
        return FixedStringCell(static_cast<UINT>(type.FixedLength())).Store(storage, value);
    const VARTYPE kind = StorageTag(type);
    return StorePlain(storage, kind, value.Raw()) || StorageCell(kind).Store(storage, value);
}

bool StoreVariableTaking(const RunContext& context, const VariableRef& target, Variant& value)
{
    VARIANT* storage = StorageForStore(context, target);
    if (!storage)
        return false;
    if (target.type.IsFixedString() && !target.type.IsArray())
        return FixedStringCell(static_cast<UINT>(target.type.FixedLength())).Store(*storage, value);
    const VARTYPE kind = StorageTag(target.type);
    return StorePlain(*storage, kind, value.Raw()) || StoreStringTaking(*storage, kind, value) ||
           StorageCell(kind).Store(*storage, value);
}

bool ResolveLetValue(Variant& value)
{
    if ((FollowByRefChain(&value.Raw())->vt & ~VT_BYREF) != VT_DISPATCH)
        return true;
    return Resolve(value);
}

bool ConditionIsTrue(Variant& value, bool& result)
{
    if (value.Tag() == VT_BOOL) {
        result = value.Boolean() != VARIANT_FALSE;
        return true;
    }
    if (value.Tag() == VT_NULL) {
        result = false;
        return true;
    }
    if (!ChangeType(value, VT_BOOL))
        return false;
    result = value.Boolean() != VARIANT_FALSE;
    return true;
}

namespace {

// An operand about to be pushed whose binary operator comes next: when the left operand (on top of the
// stack) and this one take a numeric cell's fast path, top = top op operand is computed in place and
// the operator is skipped. False (nothing changed) when the next op is no binary operator or the fast
// path declines; the operand is then pushed as usual.
inline bool ApplyToTop(const Expression& expression, int& pc, ValueStack& values, const VARIANT& operand)
{
    if (static_cast<std::size_t>(pc) >= expression.ops.size())
        return false;
    const ExprOp& next = expression.ops[static_cast<std::size_t>(pc)];
    if (next.code != ExprOpCode::kBinary || values.IsEmpty() || !TryFastBinary(next.op, values.Top().Raw(), operand))
        return false;
    ++pc;
    return true;
}

} // namespace

namespace {

// Replaces the value below the top `count` indexes (a function's result) by its element at them.
[[nodiscard]] bool ReplaceByElement(const RunContext& context, int count)
{
    ValueStack& values = context.interpreter->Values();
    const std::size_t below = values.Size() - static_cast<std::size_t>(count) - 1;
    VARIANT* storage = &values.At(below).Raw();
    VARTYPE tag = VT_EMPTY;
    void* element = ElementOf(context, storage, count, tag);
    if (!element)
        return false;
    // The element is copied out before the array that holds it goes.
    Variant value;
    IRecordInfo* record = tag == VT_RECORD ? ElementKindOf(ArrayOf(storage)).record : nullptr;
    if (!LoadElement(element, tag, value, record))
        return false;
    values.CutBack(below + 1);
    values.Top() = std::move(value);
    return true;
}

} // namespace

EvalStatus RunExpression(const RunContext& context, const Expression& expression, int& pc)
{
    ValueStack& values = context.interpreter->Values();
    const int count = static_cast<int>(expression.ops.size());
    while (pc < count) {
        const ExprOp& op = expression.ops[static_cast<std::size_t>(pc)];
        ++pc;
        switch (op.code) {
        case ExprOpCode::kConstant: {
            const VARIANT& constant = context.procedure->ConstantAt(op.index).Raw();
            if (ApplyToTop(expression, pc, values, constant))
                break;
            Variant* slot = values.Push();
            if (!slot || !slot->CopyFrom(constant))
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            break;
        }
        case ExprOpCode::kLoad: {
            VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (!storage)
                return EvalStatus::kFailed;
            if (ApplyToTop(expression, pc, values, *storage))
                break;
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            if (!slot->CopyIndirectFrom(*storage))
                return (void)context.interpreter->SignalError(CopyFailure(*storage)), EvalStatus::kFailed;
            break;
        }
        case ExprOpCode::kLoadRef: {
            VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (!storage)
                return EvalStatus::kFailed;
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            if (VARTYPE tag = StorageTag(op.type); tag != VT_RECORD) {
                // A by-reference parameter may stand for a caller's Variant, which holds any kind: what
                // it holds now is referred to as a Variant, never as the parameter's declared kind.
                if (storage->vt != tag)
                    tag = VT_VARIANT;
                // The fresh slot is Empty: the reference is written in place.
                VARIANT& reference = slot->Raw();
                reference.vt = static_cast<VARTYPE>(VT_BYREF | tag);
                reference.byref = tag == VT_VARIANT ? static_cast<void*>(storage)
                                                    : reinterpret_cast<char*>(storage) + kPayloadOffset;
                break;
            }
            MakeReference(*slot, storage, op.type);
            break;
        }
        case ExprOpCode::kBinary: {
            const std::size_t size = values.Size();
            if (op.op == OperationId::kIs) {
                // Object identity compares the references themselves, never their default values.
                const VARIANT* left = FollowByRefChain(&values.At(size - 2).Raw());
                const VARIANT* right = FollowByRefChain(&values.At(size - 1).Raw());
                const bool objects = (left->vt == VT_DISPATCH || left->vt == VT_UNKNOWN) &&
                                     (right->vt == VT_DISPATCH || right->vt == VT_UNKNOWN);
                if (!objects)
                    return (void)context.interpreter->SignalError(kErrorTypeMismatch), EvalStatus::kFailed;
                const bool same = left->punkVal == right->punkVal;
                values.At(size - 2).SetBoolean(same);
                values.Pop();
                break;
            }
            Variant& left = values.At(size - 2);
            Variant& right = values.At(size - 1);
            if (!TryFastBinary(op.op, left.Raw(), right.Raw())) {
                // A Variant against a value of a fixed kind: the Variant's value takes the other's kind
                // first (the text 5 equals the number 5).
                if (op.count != 0 &&
                    !AlignStaticKinds(op.op, left, op.count == kAlignLeft ? StaticKind::kVariant : StaticKind::kFixed,
                                      right, op.count == kAlignRight ? StaticKind::kVariant : StaticKind::kFixed))
                    return EvalStatus::kFailed;
                if (!CellFor(left.Tag()).Binary(op.op, left, right))
                    return EvalStatus::kFailed;
            }
            values.Pop();
            break;
        }
        case ExprOpCode::kUnary:
            if (!ApplyUnary(op.op, values.Top()))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kMissing: {
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            // A fresh slot is Empty: the tag and status are written in place.
            slot->Raw().vt = VT_ERROR;
            slot->Raw().scode = kMissingArgumentStatus;
            break;
        }
        case ExprOpCode::kEmpty: {
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            slot->Raw().vt = VT_ERROR;
            slot->Raw().scode = kResultSlotStatus;
            break;
        }
        case ExprOpCode::kCall: {
            Procedure* callee = context.procedure->CalleeAt(op.index);
            if (callee->kind == ProcedureKind::External) {
                if (!CallExternal(context, *callee, op.count))
                    return EvalStatus::kFailed;
                break;
            }
            if (!callee->code)
                return (void)context.interpreter->SignalError(kErrorSubOrFunctionMissing), EvalStatus::kFailed;
            ModuleInstance* instance = context.activation->Instance();
            if (const Module* module = context.procedure->CalleeModuleAt(op.index); module && instance)
                instance = instance->Find(*module);
            const Interpreter::CallOutcome outcome = context.interpreter->CallFromCode(*callee->code, instance);
            if (outcome == Interpreter::CallOutcome::kEnded)
                break;
            return outcome == Interpreter::CallOutcome::kWaiting ? EvalStatus::kYield : EvalStatus::kFailed;
        }
        case ExprOpCode::kNew:
        case ExprOpCode::kDefaultObject: {
            Variant made;
            InterpreterHost& host = context.interpreter->Host();
            if (!(op.code == ExprOpCode::kNew ? host.NewInstance(*op.module, made) : host.DefaultObject(*op.module, made))) {
                if (!HaltFlags::MustStop())
                    (void)context.interpreter->SignalError(kErrorCannotCreateObject);
                return EvalStatus::kFailed;
            }
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            *slot = std::move(made);
            break;
        }
        case ExprOpCode::kLoadNew:
            if (!LoadAutoNew(context, op))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kMe:
            if (!PushMe(context))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kWithObject:
            if (!PushWithObject(context, op.index))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kMemberCall: {
            const EvalStatus status = RunMemberCall(context, op);
            if (status != EvalStatus::kDone)
                return status;
            break;
        }
        case ExprOpCode::kMemberEnd:
            EndMemberCall(context);
            break;
        case ExprOpCode::kRecordSize:
            if (!ReplaceByRecordSize(context))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kTypeOf:
            if (!ReplaceByTypeTest(context, op.classModule))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kLetValue:
            if (!ResolveLetValue(values.Top()))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kRefPath:
            if (!PushRecordReference(context, context.procedure->RecordPathAt(op.index)))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kLoadPath:
            if (!LoadRecordPath(context, context.procedure->RecordPathAt(op.index)))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kErrProperty:
            if (!PushErrProperty(context, static_cast<ErrMember>(op.index)))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kErrObject: {
            Variant object;
            if (!context.interpreter->Host().ErrObject(object))
                return (void)context.interpreter->SignalError(kErrorCannotCreateObject), EvalStatus::kFailed;
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            *slot = std::move(object);
            break;
        }
        case ExprOpCode::kBuiltin:
            if (!RunBuiltinCall(context, context.procedure->BuiltinCallAt(op.index), pc))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kJump:
            pc += op.count;
            break;
        case ExprOpCode::kNullExit:
            if (FollowByRefChain(&values.Top().Raw())->vt == VT_NULL) {
                values.CutBack(values.Size() - static_cast<std::size_t>(op.count));
                if (op.variable != 0)
                    return (void)RaiseValueError(kErrorNullUse), EvalStatus::kFailed;
                Variant* result = values.Push();
                if (!result)
                    return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
                result->SetNull();
                pc += op.index;
            }
            break;
        case ExprOpCode::kPop:
            values.CutBack(values.Size() - static_cast<std::size_t>(op.count));
            break;
        case ExprOpCode::kPack:
            if (!PackValues(values, op.count))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kElement: {
            VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (storage && HoldsObject(*storage)) {
                // A Variant that holds an object: its default member takes the indexes.
                if (!AccessDefaultMember(context, *storage, op.count, nullptr))
                    return EvalStatus::kFailed;
                break;
            }
            VARTYPE tag = VT_EMPTY;
            void* element = storage ? ElementOf(context, storage, op.count, tag) : nullptr;
            if (!element)
                return EvalStatus::kFailed;
            Variant value;
            IRecordInfo* record = tag == VT_RECORD ? ElementKindOf(ArrayOf(storage)).record : nullptr;
            if (!LoadElement(element, tag, value, record))
                return EvalStatus::kFailed;
            values.CutBack(values.Size() - static_cast<std::size_t>(op.count));
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            *slot = std::move(value);
            break;
        }
        case ExprOpCode::kIndexValue:
            if (!ReplaceByElement(context, op.count))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kElementArgument:
            if (!PushElementArgument(context, op))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kElementWriteBack:
            if (!WriteBackElementArgument(context, op))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kPathArgument:
            if (!PushPathArgument(context, op))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kPathWriteBack:
            if (!WriteBackPathArgument(context, op))
                return EvalStatus::kFailed;
            break;
        case ExprOpCode::kTypedValue: {
            VARIANT value;
            if (!DirectFormsEnabled() || !context.procedure->TypedFormAt(op.index).Evaluate(context, value))
                break;
            Variant* slot = values.Push();
            if (!slot)
                return (void)context.interpreter->RaiseOutOfMemory(), EvalStatus::kFailed;
            // The fresh slot is Empty and the value owns nothing.
            slot->Raw() = value;
            pc += op.count;
            break;
        }
        }
    }
    return HaltFlags::MustStop() ? EvalStatus::kFailed : EvalStatus::kDone;
}

SAFEARRAY* ArrayOf(VARIANT* storage)
{
    VARIANT* value = FollowByRefChain(storage);
    if ((value->vt & VT_ARRAY) == 0)
        return nullptr;
    return (value->vt & VT_BYREF) != 0 ? (value->pparray ? *value->pparray : nullptr) : value->parray;
}

void* ElementOf(const RunContext& context, VARIANT* storage, int count, VARTYPE& tag)
{
    VARIANT* value = FollowByRefChain(storage);
    if ((value->vt & VT_ARRAY) == 0) {
        (void)context.interpreter->SignalError(kErrorTypeMismatch);
        return nullptr;
    }
    SAFEARRAY* array = ArrayOf(value);
    if (!array) {
        (void)context.interpreter->SignalError(kErrorArrayNotDimensioned);
        return nullptr;
    }
    if (static_cast<int>(SafeArrayGetDim(array)) != count) {
        (void)context.interpreter->SignalError(kErrorArrayIndexCount);
        return nullptr;
    }
    ValueStack& values = context.interpreter->Values();
    LONG indexes[8] = {};
    const std::size_t first = values.Size() - static_cast<std::size_t>(count);
    for (int i = 0; i < count && i < 8; ++i) {
        Variant& index = values.At(first + static_cast<std::size_t>(i));
        if (index.Tag() == VT_I2) {
            indexes[i] = index.Integer();
            continue;
        }
        if (index.Tag() != VT_I4 && !ChangeType(index, VT_I4))
            return nullptr;
        indexes[i] = index.Long();
    }
    void* element = ElementAddress(array, indexes);
    if (!element) {
        (void)context.interpreter->SignalError(kErrorArrayIndexOutOfRange);
        return nullptr;
    }
    tag = static_cast<VARTYPE>(value->vt & VT_TYPEMASK);
    return element;
}

namespace {

// Kinds whose elements are plain bits: loading and storing copies the payload.
bool IsPlainKind(VARTYPE tag)
{
    switch (tag) {
    case VT_UI1:
    case VT_I2:
    case VT_BOOL:
    case VT_I4:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
        return true;
    default:
        return false;
    }
}

} // namespace

bool LoadElement(const void* element, VARTYPE tag, Variant& target, IRecordInfo* record)
{
    if (tag == VT_RECORD) {
        void* copy = nullptr;
        if (!record || FAILED(record->RecordCreateCopy(const_cast<void*>(element), &copy)))
            return RaiseValueError(kErrorOutOfMemory);
        record->AddRef();
        target.SetRecord(copy, record);
        return true;
    }
    if (IsPlainKind(tag)) {
        target.Clear();
        VARIANT& raw = target.Raw();
        std::memcpy(reinterpret_cast<char*>(&raw) + kPayloadOffset, element, PayloadSize(tag));
        raw.vt = tag;
        return true;
    }
    if (tag == VT_VARIANT) {
        const VARIANT& value = *static_cast<const VARIANT*>(element);
        return target.CopyIndirectFrom(value) || RaiseValueError(CopyFailure(value));
    }
    VARIANT view;
    VariantInit(&view);
    if (tag == VT_DECIMAL)
        view.decVal = *static_cast<const DECIMAL*>(element);
    else
        std::memcpy(reinterpret_cast<char*>(&view) + kPayloadOffset, element, PayloadSize(tag));
    view.vt = tag;
    return target.CopyFrom(view) || RaiseValueError(kErrorOutOfMemory);
}

bool StoreElement(void* element, VARTYPE tag, const Variant& value)
{
    if (value.Tag() == tag && IsPlainKind(tag)) {
        std::memcpy(element, reinterpret_cast<const char*>(&value.Raw()) + kPayloadOffset, PayloadSize(tag));
        return true;
    }
    if (tag == VT_VARIANT)
        return StorageCell(VT_VARIANT).Store(*static_cast<VARIANT*>(element), value);
    // Typed storage: a VARIANT of the element's kind around the element's payload.
    VARIANT slot;
    VariantInit(&slot);
    if (tag == VT_DECIMAL)
        slot.decVal = *static_cast<DECIMAL*>(element);
    else
        std::memcpy(reinterpret_cast<char*>(&slot) + kPayloadOffset, element, PayloadSize(tag));
    slot.vt = tag;
    if (!StorageCell(tag).Store(slot, value))
        return false;
    if (tag == VT_DECIMAL) {
        slot.vt = 0;
        *static_cast<DECIMAL*>(element) = slot.decVal;
    } else {
        std::memcpy(element, reinterpret_cast<char*>(&slot) + kPayloadOffset, PayloadSize(tag));
    }
    return true;
}

bool StoreTypedElement(void* element, VARTYPE tag, TypeCode arrayType, const Variant& value)
{
    const TypeCode scalar = arrayType.Scalar();
    if (tag != VT_BSTR || !scalar.IsFixedString())
        return StoreElement(element, tag, value);
    VARIANT slot;
    VariantInit(&slot);
    slot.vt = VT_BSTR;
    slot.bstrVal = *static_cast<BSTR*>(element);
    if (!FixedStringCell(static_cast<UINT>(scalar.FixedLength())).Store(slot, value))
        return false;
    *static_cast<BSTR*>(element) = slot.bstrVal;
    return true;
}

void ClearSlot(VARIANT& slot)
{
    Variant owner;
    owner.Attach(slot);
}

bool Statement::ExecuteFrom(std::int32_t state)
{
    ExecEntry entry{this, state};
    return FinishOrWait(entry, Step(entry));
}

bool Statement::FinishOrWait(ExecEntry& entry, bool done)
{
    if (done)
        return true;
    if (Interpreter* interpreter = Interpreter::Current())
        (void)interpreter->PushPending(entry);
    return false;
}

bool Statement::Fail(const RunContext& context, ExecEntry& entry)
{
    context.interpreter->Values().CutBack(context.activation->StatementBase());
    entry.state = ExecEntry::kFinished;
    return true;
}

bool Statement::ExpressionReady(const RunContext& context, const Expression& code, ExecEntry& entry, bool& answer)
{
    int pc = entry.state;
    switch (RunExpression(context, code, pc)) {
    case EvalStatus::kYield:
        entry.state = pc;
        answer = false;
        return false;
    case EvalStatus::kFailed: answer = Fail(context, entry); return false;
    case EvalStatus::kDone: break;
    }
    return true;
}

Statement& EmptyStatement()
{
    static class : public Statement {
    public:
        bool IsEmpty() const override { return true; }
    } s_empty;
    return s_empty;
}

CompiledProcedure::CompiledProcedure(Procedure& procedure) : m_procedure(&procedure) {}

CompiledProcedure::~CompiledProcedure()
{
    for (VARIANT& value : m_statics)
        ClearSlot(value);
}

void CompiledProcedure::Print(std::string& out) const { out += m_procedure->name; }

bool CompiledProcedure::IsEmptyStatement(int index) const { return m_emptyFlags[static_cast<std::size_t>(index)] != 0; }

int CompiledProcedure::FirstLine() const { return m_procedure->firstLine; }

Node* CompiledProcedure::ReplaceStatement(int index, Node* statement)
{
    Node*& entry = m_statements[static_cast<std::size_t>(index)];
    Node* previous = entry;
    entry = statement;
    // The register form enters the statement through its marker: while a replacement stands there the
    // marker runs the entry's object, and it enters the statement's own form again once it is back.
    if (m_registers) {
        const auto at = static_cast<std::size_t>(index);
        if (at < m_registers->entries.size()) {
            RegisterOp& marker = m_registers->ops[static_cast<std::size_t>(m_registers->entries[at])];
            if (marker.code == RegisterCode::kStatement || marker.code == RegisterCode::kStatementJump ||
                marker.code == RegisterCode::kStatementPair || marker.code == RegisterCode::kStatementEnd ||
                marker.code == RegisterCode::kReplaced) {
                const RegisterCode plain = marker.c == kPairedMarker   ? RegisterCode::kStatementPair
                                           : marker.c == kEndingMarker ? RegisterCode::kStatementEnd
                                                                       : RegisterCode::kStatement;
                marker.code = statement == m_statementObjects[at] ? plain : RegisterCode::kReplaced;
                MatchMarkerToEntry(*m_registers, index);
            }
        }
    }
    return previous;
}

int CompiledProcedure::WithDepthChangeAt(int index) const
{
    return m_statementObjects[static_cast<std::size_t>(index)]->WithDepthChange();
}

void CompiledProcedure::PublishTable() noexcept
{
    StatementTable table{m_statements.data(), m_emptyFlags.data(), static_cast<int>(m_statements.size()) - 1};
    if (m_registers) {
        table.runner = &RunRegisterProgram;
        table.runnerData = m_registers.get();
    }
    SetTable(table);
}

void CompiledProcedure::BuildRegisters()
{
    m_registersTried = true;
    // Built from the published table (no runner yet) with the slots as they are.
    PublishTable();
    auto program = std::make_unique<RegisterProgram>();
    RegisterBuilder builder(*this, *program);
    builder.Build();
    if (program->registerStatements == 0)
        return;
    m_registerTemporaries = program->temporaryCount;
    // Temporaries hold plain numbers: as Double slots they are never released.
    for (int i = 0; i < m_registerTemporaries; ++i) {
        m_slotTypes.emplace_back(TypeCode::kDouble);
        m_slotBounds.emplace_back();
        m_slotRecords.emplace_back(nullptr);
    }
    m_registers = std::move(program);
    PublishTable();
}

void CompiledProcedure::PrepareInitialSlots()
{
    if (!m_registersTried && !m_statements.empty())
        BuildRegisters();
    m_prepared = true;
    m_initialSlots.assign(m_slotTypes.size(), VARIANT{});
    m_perCallSlots.assign(m_slotTypes.size(), 0);
    m_plainFrame = true;
    m_ownerSlots.clear();
    for (std::size_t i = 0; i < m_slotTypes.size(); ++i) {
        if (!m_slotTypes[i].IsNumeric() || m_slotTypes[i].IsArray())
            m_ownerSlots.push_back(static_cast<int>(i));
    }
    for (std::size_t i = m_parameters.size(); i < m_slotTypes.size(); ++i) {
        VARIANT& slot = m_initialSlots[i];
        // Records are made for each call.
        const bool record = m_slotTypes[i].IsUserType() && !m_slotTypes[i].IsArray();
        if (m_slotBounds[i].empty() && !record) {
            InitializeTypedSlot(slot, m_slotTypes[i].Code());
            // A fresh value that holds a string, object or record of its own cannot be shared.
            if (OwnsNothing(slot.vt) || slot.byref == nullptr)
                continue;
            ClearSlot(slot);
        }
        slot.vt = VT_EMPTY;
        m_perCallSlots[i] = 1;
        m_plainFrame = false;
    }
    if (!m_plainFrame) {
        SetLayout(FrameLayout{});
        return;
    }
    m_bindings.clear();
    for (const ParameterInfo& parameter : m_parameters)
        m_bindings.push_back(ParameterBinding{parameter.storageTag, parameter.byVal});
    FrameLayout layout;
    layout.image = m_initialSlots.data();
    layout.bindings = m_bindings.data();
    layout.ownerSlots = m_ownerSlots.data();
    layout.ownerCount = static_cast<int>(m_ownerSlots.size());
    layout.slotCount = static_cast<int>(m_slotTypes.size());
    layout.initializedCount = layout.slotCount - (m_registers ? m_registerTemporaries : 0);
    layout.parameterCount = static_cast<int>(m_parameters.size());
    layout.resultSlot = m_resultSlot;
    SetLayout(layout);
}

// Frames are small: a loop of slot copies costs less than a call of the library's memcpy.
__attribute__((optimize("no-tree-loop-distribute-patterns"))) bool CompiledProcedure::InitializeLocals(void* frame)
{
    auto* slots = static_cast<VARIANT*>(frame);
    const std::size_t total = m_slotTypes.size();
    if (m_initialSlots.size() != total)
        PrepareInitialSlots();
    // Parameters are Empty until bound (a binding that fails leaves the rest so).
    const std::size_t first = m_parameters.size();
    for (std::size_t i = 0; i < first; ++i)
        slots[i].vt = VT_EMPTY;
    // The slots that own nothing when fresh (numbers, empty strings, Nothing, Empty) are copied whole.
    const VARIANT* initial = m_initialSlots.data();
    for (std::size_t i = first; i < total; ++i)
        slots[i] = initial[i];
    if (m_plainFrame)
        return true;
    for (std::size_t i = m_parameters.size(); i < m_slotTypes.size(); ++i) {
        if (!m_perCallSlots[i])
            continue;
        const auto& bounds = m_slotBounds[i];
        RecordType* record = m_slotRecords[i].Get();
        if (bounds.empty()) {
            if (!m_slotTypes[i].IsUserType() || m_slotTypes[i].IsArray()) {
                InitializeTypedSlot(slots[i], m_slotTypes[i].Code());
                continue;
            }
            if (!InitializeRecordSlot(slots[i], record))
                return Interpreter::Current() ? Interpreter::Current()->RaiseOutOfMemory() : false;
            continue;
        }
        long lower[8] = {};
        long upper[8] = {};
        for (std::size_t d = 0; d < bounds.size() && d < 8; ++d) {
            lower[d] = bounds[d].first;
            upper[d] = bounds[d].second;
        }
        if (!InitializeArraySlot(slots[i], m_slotTypes[i].Code(), lower, upper, bounds.size(), record))
            return Interpreter::Current() ? Interpreter::Current()->SignalError(kErrorCantAllocateLargeArray) : false;
    }
    return true;
}

namespace {

// Binds a record parameter: to the caller's record itself when passed by reference, else to a copy.
// The argument must be a record of the parameter's type (10080).
bool BindRecord(const ParameterInfo& parameter, VARIANT& slot, Variant& argument)
{
    VariantInit(&slot);
    const VARIANT& source = *FollowByRefChain(&argument.Raw());
    IRecordInfo* type = parameter.record.Get();
    if ((source.vt & ~VT_BYREF) != VT_RECORD || !source.pvRecord || !source.pRecInfo || !type ||
        (source.pRecInfo != type && !type->IsMatchingType(source.pRecInfo)))
        return RaiseValueError(kErrorTypeMismatch);
    if (!parameter.byVal && argument.Tag() == (VT_BYREF | VT_RECORD)) {
        slot = argument.Raw();
        return true;
    }
    Variant copy;
    if (!copy.CopyIndirectFrom(source))
        return RaiseValueError(kErrorOutOfMemory);
    copy.Detach(slot);
    return true;
}

} // namespace

namespace {

// The bindings that need no conversion (see the quick call path's BindDirectly).
inline bool BindDirectly(const ParameterInfo& parameter, VARIANT& slot, const VARIANT& given)
{
    return brannoc::BindDirectly(ParameterBinding{parameter.storageTag, parameter.byVal}, slot, given);
}

} // namespace

bool CompiledProcedure::BindArguments(void* frame, Variant* arguments)
{
    auto* slots = static_cast<VARIANT*>(frame);
    const std::size_t count = m_parameters.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (!BindDirectly(m_parameters[i], slots[i], arguments[i].Raw()) &&
            !BindParameter(static_cast<int>(i), frame, arguments[i]))
            return false;
    }
    return true;
}

bool CompiledProcedure::BindParameter(int index, void* frame, Variant& argument)
{
    const ParameterInfo& parameter = m_parameters[static_cast<std::size_t>(index)];
    VARIANT& slot = static_cast<VARIANT*>(frame)[index];
    if (BindDirectly(parameter, slot, argument.Raw()))
        return true;
    if (parameter.type.IsUserType() && !parameter.type.IsArray())
        return BindRecord(parameter, slot, argument);
    const VARTYPE tag = parameter.storageTag;
    if (argument.Tag() == VT_ERROR && argument.Raw().scode == kMissingArgumentStatus) {
        InitializeTypedSlot(slot, parameter.type.Code());
        if (parameter.hasDefault)
            return StorageCell(tag).Store(slot, parameter.defaultValue);
        if (tag == VT_VARIANT) {
            slot.vt = VT_ERROR;
            slot.scode = kMissingArgumentStatus;
        }
        return true;
    }
    if (!parameter.byVal && argument.IsByRef()) {
        const VARTYPE argumentTag = argument.BaseTag();
        VARIANT* target = argumentTag == VT_VARIANT
                              ? argument.Raw().pvarVal
                              : reinterpret_cast<VARIANT*>(static_cast<char*>(argument.Raw().byref) - kPayloadOffset);
        // A caller's Variant counts as the parameter's own kind: the parameter is that cell, whatever it
        // holds (every access through a reference checks the kind the cell holds at that moment).
        if (argumentTag == tag || (argumentTag == VT_VARIANT && !parameter.type.IsArray())) {
            slot.vt = kReferenceTag;
            slot.pvarVal = target;
            return true;
        }
    }
    InitializeTypedSlot(slot, parameter.type.Code());
    if (StorePlain(slot, tag, argument.Raw()))
        return true;
    Variant value;
    if (!value.CopyIndirectFrom(argument.Raw()))
        return RaiseValueError(CopyFailure(argument.Raw()));
    return StorageCell(tag).Store(slot, value);
}

void CompiledProcedure::ClearLocals(void* frame)
{
    auto* slots = static_cast<VARIANT*>(frame);
    if (m_resultSlot >= 0) {
        // The caller pushed the result slot below the arguments; the stack is back at that height.
        Interpreter* interpreter = Interpreter::Current();
        const std::size_t below = m_parameters.size() + 1;
        if (interpreter && interpreter->Values().Size() >= below) {
            VARIANT& target = interpreter->Values().At(interpreter->Values().Size() - below).Raw();
            if (target.vt == VT_ERROR && target.scode == kResultSlotStatus) {
                // The placeholder owns nothing: the result moves over it.
                target = slots[m_resultSlot];
                slots[m_resultSlot].vt = VT_EMPTY;
            }
        }
    }
    // References and values that own nothing need no release; the frame's memory is reused as it is.
    if (m_initialSlots.size() != m_slotTypes.size()) {
        // Not prepared yet (no call set the frame up): every slot is looked at.
        for (std::size_t i = 0; i < m_slotTypes.size(); ++i) {
            if (!OwnsNothing(slots[i].vt))
                ClearSlot(slots[i]);
        }
        return;
    }
    for (const int i : m_ownerSlots) {
        if (!OwnsNothing(slots[i].vt))
            ClearSlot(slots[i]);
    }
}

int CompiledProcedure::AddSlot(TypeCode type, RecordType* record)
{
    // The image is made again for the new frame before the next call; a register form made for the
    // old frame has temporaries where the new slot goes, so it is dropped.
    SetLayout(FrameLayout{});
    m_prepared = false;
    if (m_registers) {
        m_slotTypes.resize(m_slotTypes.size() - static_cast<std::size_t>(m_registerTemporaries));
        m_slotBounds.resize(m_slotTypes.size());
        m_slotRecords.resize(m_slotTypes.size());
        m_registers.reset();
        m_registerTemporaries = 0;
        PublishTable();
    }
    m_slotTypes.push_back(type);
    m_slotBounds.emplace_back();
    if (record)
        record->AddRef();
    m_slotRecords.emplace_back(record);
    return static_cast<int>(m_slotTypes.size()) - 1;
}

int CompiledProcedure::AddArraySlot(TypeCode type, std::vector<std::pair<long, long>> bounds, RecordType* record)
{
    const int slot = AddSlot(type, record);
    m_slotBounds.back() = std::move(bounds);
    return slot;
}

bool CompiledProcedure::AddStaticArray(TypeCode type, const std::vector<std::pair<long, long>>& bounds, int& index,
                                       RecordType* record)
{
    long lower[8] = {};
    long upper[8] = {};
    for (std::size_t d = 0; d < bounds.size() && d < 8; ++d) {
        lower[d] = bounds[d].first;
        upper[d] = bounds[d].second;
    }
    VARIANT value;
    if (!InitializeArraySlot(value, type.Code(), lower, upper, bounds.size(), record))
        return false;
    m_statics.push_back(value);
    index = static_cast<int>(m_statics.size()) - 1;
    return true;
}

bool CompiledProcedure::AddStatic(TypeCode type, RecordType* record, int& index)
{
    VARIANT value;
    if (type.IsUserType() && !type.IsArray()) {
        if (!InitializeRecordSlot(value, record))
            return false;
    } else {
        InitializeTypedSlot(value, type.Code());
    }
    m_statics.push_back(value);
    index = static_cast<int>(m_statics.size()) - 1;
    return true;
}

int CompiledProcedure::AddRecordPath(std::unique_ptr<RecordPath> path)
{
    m_recordPaths.push_back(std::move(path));
    return static_cast<int>(m_recordPaths.size()) - 1;
}

int CompiledProcedure::AddConstant(Variant value)
{
    m_constants.push_back(std::move(value));
    return static_cast<int>(m_constants.size()) - 1;
}

Variant CompiledProcedure::TakeNewestConstant()
{
    Variant value = std::move(m_constants.back());
    m_constants.pop_back();
    return value;
}

int CompiledProcedure::AddTypedForm(std::unique_ptr<TypedExpression> form)
{
    m_typedForms.push_back(std::move(form));
    return static_cast<int>(m_typedForms.size()) - 1;
}

int CompiledProcedure::AddBuiltinCall(std::unique_ptr<BuiltinCall> call)
{
    m_builtinCalls.push_back(std::move(call));
    return static_cast<int>(m_builtinCalls.size()) - 1;
}

int CompiledProcedure::AddMemberSite(MemberSite site)
{
    m_memberSites.push_back(std::move(site));
    return static_cast<int>(m_memberSites.size()) - 1;
}

int CompiledProcedure::AddCallee(Procedure* procedure, const Module* module)
{
    for (std::size_t i = 0; i < m_callees.size(); ++i) {
        if (m_callees[i] == procedure)
            return static_cast<int>(i);
    }
    m_callees.push_back(procedure);
    m_calleeModules.push_back(module);
    return static_cast<int>(m_callees.size()) - 1;
}

Statement* CompiledProcedure::Append(std::unique_ptr<Statement> statement)
{
    Statement* raw = statement.get();
    raw->SetOwner(this);
    m_owned.push_back(std::move(statement));
    m_statements.push_back(raw);
    m_statementObjects.push_back(raw);
    m_emptyFlags.push_back(raw->IsEmpty());
    PublishTable();
    return raw;
}

} // namespace brannoc
