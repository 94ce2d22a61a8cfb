#include "code/RecordAccess.h"

#include "code/FastExpression.h"
#include "code/MemberCall.h"
#include "code/ProcedureBody.h"
#include "code/RegisterBuilder.h"

#include "exec/Activation.h"
#include "exec/ErrorMessages.h"
#include "exec/Interpreter.h"
#include "values/AlignText.h"
#include "values/ArrayStorage.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <cstring>

namespace brannoc {

namespace {

// Where a path has got to.
struct Place {
    enum class Kind { Record, Array, Field, Element };
    Kind kind = Kind::Record;
    void* address = nullptr;              // Record: the record; Field: the record holding the field;
                                          // Element: the element
    RecordType* record = nullptr;         // Record: its type
    SAFEARRAY** array = nullptr;          // Array: where the array reference is kept
    ElementKind elements;                 // Array and Element: the element kind
    const RecordField* field = nullptr;   // Field (and an array held by a field)
    // The arrays whose storage the place lies in, outermost first (the first kMaxArrays of them).
    static constexpr int kMaxArrays = 8;
    SAFEARRAY* arrays[kMaxArrays] = {};
    int arrayCount = 0;
};

bool Raise(const RunContext& context, long number) { return context.interpreter->SignalError(number); }

// The place a variable (or the record of a With block) gives: its record, or its array.
bool StartAt(const RunContext& context, const RecordPath& path, Place& place)
{
    VARIANT* storage = nullptr;
    if (path.withLevel >= 0) {
        const Activation& activation = *context.activation;
        if (activation.WithDepth() <= path.withLevel)
            return Raise(context, ToNumber(ErrorId::TypeMismatch));
        storage = &context.interpreter->Values().At(activation.ValueStackBase() +
                                                    static_cast<std::size_t>(path.withLevel)).Raw();
    } else {
        storage = StorageOf(context, path.root.scope, path.root.index, path.root.module);
    }
    if (!storage)
        return false;
    VARIANT* value = FollowByRefChain(storage);
    if ((value->vt & ~VT_BYREF) == VT_RECORD && value->pvRecord) {
        place.kind = Place::Kind::Record;
        place.address = value->pvRecord;
        place.record = AsRecordType(value->pRecInfo);
        return place.record || Raise(context, ToNumber(ErrorId::TypeMismatch));
    }
    if (value->vt & VT_ARRAY) {
        place.kind = Place::Kind::Array;
        place.array = (value->vt & VT_BYREF) ? value->pparray : &value->parray;
        place.elements = ElementKindOf(*place.array);
        return true;
    }
    return Raise(context, ToNumber(ErrorId::TypeMismatch));
}

// Follows one index step: the element at the indexes beginning at stack position first.
bool Index(const RunContext& context, int count, std::size_t first, Place& place)
{
    SAFEARRAY* array = place.kind == Place::Kind::Array ? *place.array : nullptr;
    if (!array)
        return Raise(context, ToNumber(ErrorId::ArrayNotDimensioned));
    if (static_cast<int>(array->cDims) != count)
        return Raise(context, ToNumber(ErrorId::ArrayIndexCount));
    ValueStack& values = context.interpreter->Values();
    LONG indexes[8] = {};
    for (int i = 0; i < count && i < 8; ++i) {
        Variant& index = values.At(first + static_cast<std::size_t>(i));
        if (index.Tag() == VT_I2) {
            indexes[i] = index.Integer();
            continue;
        }
        if (index.Tag() != VT_I4 && !ChangeType(index, VT_I4))
            return false;
        indexes[i] = index.Long();
    }
    void* element = ElementAddress(array, indexes);
    if (!element)
        return Raise(context, ToNumber(ErrorId::ArrayIndexOutOfRange));
    if (place.arrayCount < Place::kMaxArrays)
        place.arrays[place.arrayCount++] = array;
    if (place.elements.tag == VT_RECORD) {
        place.kind = Place::Kind::Record;
        place.address = element;
        place.record = AsRecordType(place.elements.record);
        return place.record || Raise(context, ToNumber(ErrorId::TypeMismatch));
    }
    place.kind = Place::Kind::Element;
    place.address = element;
    return true;
}

// Follows one field step inside the record the place stands at.
void Field(const RecordField& field, Place& place)
{
    char* at = static_cast<char*>(place.address) + field.offset;
    place.field = &field;
    switch (field.kind) {
    case FieldKind::Record:
        place.kind = Place::Kind::Record;
        place.address = at;
        place.record = field.record.Get();
        return;
    case FieldKind::Array:
        place.kind = Place::Kind::Array;
        place.array = reinterpret_cast<SAFEARRAY**>(at);
        place.elements = RecordType::ElementKindOf(field);
        return;
    default:
        place.kind = Place::Kind::Field;
        return;
    }
}

// Walks the whole path; the indexes are the path's count entries below the top `above` entries.
bool Walk(const RunContext& context, const RecordPath& path, std::size_t above, Place& place)
{
    if (!StartAt(context, path, place))
        return false;
    std::size_t next = context.interpreter->Values().Size() - above - static_cast<std::size_t>(path.indexCount);
    for (const PathStep& step : path.steps) {
        if (step.kind == PathStep::Kind::Index) {
            if (!Index(context, step.count, next, place))
                return false;
            next += static_cast<std::size_t>(step.count);
        } else {
            Field(*step.field, place);
        }
    }
    return true;
}

// Takes the path's indexes off the top of the value stack and pushes the entry that stands for the place:
// that entry, or null after raising out of memory.
Variant* ReplaceIndexes(const RunContext& context, const RecordPath& path)
{
    ValueStack& values = context.interpreter->Values();
    values.CutBack(values.Size() - static_cast<std::size_t>(path.indexCount));
    Variant* slot = values.Push();
    if (!slot)
        (void)context.interpreter->RaiseOutOfMemory();
    return slot;
}

bool LoadPlace(const Place& place, Variant& value)
{
    switch (place.kind) {
    case Place::Kind::Record: {
        void* copy = nullptr;
        if (FAILED(place.record->RecordCreateCopy(place.address, &copy)))
            return RaiseValueError(kErrorOutOfMemory);
        place.record->AddRef();
        value.SetRecord(copy, place.record);
        return true;
    }
    case Place::Kind::Field:
        return RecordType::LoadField(*place.field, place.address, value);
    case Place::Kind::Element:
        return LoadElement(place.address, place.elements.tag, value, place.elements.record);
    case Place::Kind::Array:
        return CopyArrayInto(*place.array, place.elements.tag, value) || RaiseValueError(kErrorOutOfMemory);
    }
    return false;
}

bool StorePlace(const Place& place, const Variant& value, UINT elementLength)
{
    switch (place.kind) {
    case Place::Kind::Record: {
        // The record is assigned in place, as a record variable is.
        VARIANT view;
        VariantInit(&view);
        view.vt = VT_BYREF | VT_RECORD;
        view.pvRecord = place.address;
        view.pRecInfo = place.record;
        return StorageCell(VT_RECORD).Store(view, value);
    }
    case Place::Kind::Field:
        return RecordType::StoreField(*place.field, place.address, value);
    case Place::Kind::Element: {
        if (place.elements.tag == VT_BSTR && elementLength > 0) {
            VARIANT slot;
            VariantInit(&slot);
            slot.vt = VT_BSTR;
            slot.bstrVal = *static_cast<BSTR*>(place.address);
            if (!FixedStringCell(elementLength).Store(slot, value))
                return false;
            *static_cast<BSTR*>(place.address) = slot.bstrVal;
            return true;
        }
        return StoreElement(place.address, place.elements.tag, value);
    }
    case Place::Kind::Array:
        // Only an array held by a record field is reached this way.
        return place.field && RecordType::StoreField(*place.field,
                                                     reinterpret_cast<char*>(place.array) - place.field->offset, value);
    }
    return false;
}

} // namespace

bool LoadRecordPath(const RunContext& context, const RecordPath& path)
{
    Place place;
    if (!Walk(context, path, 0, place))
        return false;
    Variant value;
    if (!LoadPlace(place, value))
        return false;
    Variant* slot = ReplaceIndexes(context, path);
    if (!slot)
        return false;
    *slot = std::move(value);
    return true;
}

namespace {

VARIANT& FrameSlot(const RunContext& context, int index)
{
    return static_cast<VARIANT*>(context.activation->Locals())[index];
}

// The record a path starts at (its root variable's or its With block's), or null when it starts at an
// array of records (or, after raising, at nothing a path can start at).
const void* RootRecord(const RunContext& context, const RecordPath& path)
{
    Place root;
    return StartAt(context, path, root) && root.kind == Place::Kind::Record ? root.address : nullptr;
}

// The place a path ended at, from where it lives (as PushPathArgument kept it) and the path's last steps.
bool PlaceAt(const RecordPath& path, void* where, Place& place)
{
    if (path.steps.empty())
        return false;
    const PathStep& last = path.steps.back();
    if (last.kind == PathStep::Kind::Field) {
        place.field = last.field;
        if (last.field->kind == FieldKind::Array) {
            place.kind = Place::Kind::Array;
            place.array = static_cast<SAFEARRAY**>(where);
            place.elements = RecordType::ElementKindOf(*last.field);
        } else {
            place.kind = Place::Kind::Field;
            place.address = where;
        }
        return true;
    }
    // An element of an array held by a field (an array of records gives a record, passed by reference).
    if (path.steps.size() < 2 || path.steps[path.steps.size() - 2].kind != PathStep::Kind::Field)
        return false;
    place.kind = Place::Kind::Element;
    place.address = where;
    place.elements = RecordType::ElementKindOf(*path.steps[path.steps.size() - 2].field);
    return true;
}

// A fixed array held by a record keeps its storage: the copy's elements go back into it when the call
// left the copy's shape as it was (a copy re-dimensioned by the callee cannot go back: 10618).
bool StoreFixedArray(SAFEARRAY* target, const VARIANT& copy)
{
    SAFEARRAY* source = (copy.vt & VT_ARRAY) && !(copy.vt & VT_BYREF) ? copy.parray : nullptr;
    bool same = source && target && source->cDims == target->cDims;
    for (USHORT i = 0; same && i < source->cDims; ++i) {
        same = source->rgsabound[i].cElements == target->rgsabound[i].cElements &&
               source->rgsabound[i].lLbound == target->rgsabound[i].lLbound;
    }
    if (!same)
        return RaiseValueError(ToNumber(ErrorId::ExpectingDynamicArray));
    return SUCCEEDED(SafeArrayCopyData(source, target)) || RaiseValueError(kErrorOutOfMemory);
}

} // namespace

bool PushPathArgument(const RunContext& context, const ExprOp& op)
{
    const RecordPath& path = context.procedure->RecordPathAt(op.index);
    VARIANT& copy = FrameSlot(context, op.variable);
    VARIANT& where = FrameSlot(context, op.variable + 1);
    ClearSlot(where);
    Place place;
    if (!Walk(context, path, 0, place))
        return false;
    const void* root = RootRecord(context, path);
    Variant value;
    if (!LoadPlace(place, value) || !StoreTyped(copy, op.type, value))
        return false;
    ValueStack& values = context.interpreter->Values();
    Variant* slot = ReplaceIndexes(context, path);
    if (!slot)
        return false;
    MakeReference(*slot, &copy, op.type);
    // The slot refers to the place (it owns nothing) and remembers the record the path started at, so
    // that nothing is written into a record that the call replaced.
    where.vt = VT_BYREF | VT_RECORD;
    where.pvRecord = place.kind == Place::Kind::Array ? static_cast<void*>(place.array) : place.address;
    where.pRecInfo = static_cast<IRecordInfo*>(const_cast<void*>(root));
    if (place.arrayCount > 0)
        context.interpreter->References().Note(values, values.Size() - 1, slot->Raw().byref, place.arrays,
                                               place.arrayCount);
    return true;
}

bool WriteBackPathArgument(const RunContext& context, const ExprOp& op)
{
    VARIANT& copy = FrameSlot(context, op.variable);
    VARIANT& where = FrameSlot(context, op.variable + 1);
    if (where.vt != (VT_BYREF | VT_RECORD))
        return true;
    const RecordPath& path = context.procedure->RecordPathAt(op.index);
    void* address = where.pvRecord;
    const void* root = where.pRecInfo;
    where.vt = VT_EMPTY;
    Place place;
    bool stored = true;
    if (RootRecord(context, path) == root && PlaceAt(path, address, place)) {
        if (place.kind == Place::Kind::Array && !place.field->bounds.empty()) {
            stored = StoreFixedArray(*place.array, copy);
        } else {
            Variant value;
            value.Attach(copy);
            stored = StorePlace(place, value, path.elementLength);
            value.Detach(copy);
        }
    }
    ClearSlot(copy);
    return stored;
}

bool FindPathArray(const RunContext& context, const RecordPath& path, SAFEARRAY**& location)
{
    Place place;
    if (!Walk(context, path, 0, place))
        return false;
    if (place.kind != Place::Kind::Array || !place.field)
        return Raise(context, ToNumber(ErrorId::TypeMismatch));
    ValueStack& values = context.interpreter->Values();
    values.CutBack(values.Size() - static_cast<std::size_t>(path.indexCount));
    location = place.array;
    return true;
}

bool PushRecordReference(const RunContext& context, const RecordPath& path)
{
    Place place;
    if (!Walk(context, path, 0, place))
        return false;
    if (place.kind != Place::Kind::Record)
        return Raise(context, ToNumber(ErrorId::TypeMismatch));
    ValueStack& values = context.interpreter->Values();
    Variant* slot = ReplaceIndexes(context, path);
    if (!slot)
        return false;
    slot->SetRecordReference(place.address, place.record);
    // A reference into arrays keeps them from being re-dimensioned or replaced while it lives.
    if (place.arrayCount > 0)
        context.interpreter->References().Note(values, values.Size() - 1, place.address, place.arrays, place.arrayCount);
    return true;
}

bool ReplaceByRecordSize(const RunContext& context)
{
    Variant& top = context.interpreter->Values().Top();
    const VARIANT& value = *FollowByRefChain(&top.Raw());
    ULONG size = 0;
    if ((value.vt & ~VT_BYREF) != VT_RECORD || !value.pRecInfo || FAILED(value.pRecInfo->GetSize(&size)))
        return Raise(context, ToNumber(ErrorId::TypeMismatch));
    top.SetLong(static_cast<LONG>(size));
    return true;
}

bool RecordCopyStatement::Execute()
{
    const RunContext context = Context();
    VARIANT* target = StorageOf(context, m_target.scope, m_target.index, m_target.module);
    VARIANT* source = StorageOf(context, m_source.scope, m_source.index, m_source.module);
    if (!target || !source)
        return false;
    target = FollowByRefChain(target);
    source = FollowByRefChain(source);
    if ((target->vt & ~VT_BYREF) != VT_RECORD || (source->vt & ~VT_BYREF) != VT_RECORD || !target->pvRecord ||
        !source->pvRecord)
        return Raise(context, ToNumber(ErrorId::TypeMismatch));
    // The same record on both sides copies onto itself.
    std::memmove(target->pvRecord, source->pvRecord, m_size);
    return true;
}

bool AssignPathStatement::DirectTextReady()
{
    if (m_direct == Direct::kUntried)
        m_direct = m_owner && m_text.Compile(m_code, m_path, *m_owner) ? Direct::kText : Direct::kNone;
    return m_direct == Direct::kText;
}

bool AssignPathStatement::Execute()
{
    if (DirectTextReady() && DirectFormsEnabled() && m_text.Run(Context()))
        return true;
    return ExecuteFrom(0);
}

bool AssignPathStatement::EmitRegisters(RegisterBuilder& builder)
{
    return DirectTextReady() && builder.StoreFieldText(*this, m_code, m_path);
}

bool AssignPathElementStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    const RecordPath& path = context.procedure->RecordPathAt(m_path);
    // The value is on top, the element's indexes below it, the path's indexes below those.
    Variant value(std::move(values.Top()));
    values.Pop();
    Place place;
    if (!Walk(context, path, static_cast<std::size_t>(m_count), place))
        return Fail(context, entry);
    if (place.kind != Place::Kind::Field || !place.field) {
        (void)context.interpreter->SignalError(kErrorTypeMismatch);
        return Fail(context, entry);
    }
    auto* storage = reinterpret_cast<VARIANT*>(static_cast<char*>(place.address) + place.field->offset);
    if (HoldsObject(*storage)) {
        if (!AccessDefaultMember(context, *storage, m_count, &value))
            return Fail(context, entry);
    } else {
        if (m_letsValue && !ResolveLetValue(value))
            return Fail(context, entry);
        VARTYPE tag = VT_EMPTY;
        void* element = ElementOf(context, storage, m_count, tag);
        if (!element || !StoreTypedElement(element, tag, TypeCode(TypeCode::kVariant), value))
            return Fail(context, entry);
    }
    values.CutBack(values.Size() - static_cast<std::size_t>(m_count) - static_cast<std::size_t>(path.indexCount));
    entry.state = ExecEntry::kFinished;
    return true;
}

bool AssignPathStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    const RecordPath& path = context.procedure->RecordPathAt(m_path);
    Place place;
    ValueStack& values = context.interpreter->Values();
    if (m_resolvesDefault && !ResolveLetValue(values.Top()))
        return Fail(context, entry);
    if (!Walk(context, path, 1, place) || !StorePlace(place, values.Top(), path.elementLength))
        return Fail(context, entry);
    values.CutBack(values.Size() - 1 - static_cast<std::size_t>(path.indexCount));
    entry.state = ExecEntry::kFinished;
    return true;
}

bool AlignPathStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    const RecordPath& path = context.procedure->RecordPathAt(m_path);
    ValueStack& values = context.interpreter->Values();
    // The text is on top, the path's indexes below it. The destination is read after the text's
    // conversion, then written back with its own length.
    Variant& text = values.Top();
    if (text.Tag() != VT_BSTR && !ChangeType(text, VT_BSTR))
        return Fail(context, entry);
    Place place;
    Variant aligned;
    if (!Walk(context, path, 1, place) || !LoadPlace(place, aligned))
        return Fail(context, entry);
    if (aligned.Tag() != VT_BSTR) {
        // A record held by a Variant field is not aligned; any other value is not a string.
        (void)Raise(context, aligned.Tag() == VT_RECORD ? kErrorNotImplemented : kErrorTypeMismatch);
        return Fail(context, entry);
    }
    AlignText(aligned.String(), text.StringView(), m_right);
    if (!StorePlace(place, aligned, path.elementLength))
        return Fail(context, entry);
    values.CutBack(values.Size() - 1 - static_cast<std::size_t>(path.indexCount));
    entry.state = ExecEntry::kFinished;
    return true;
}

} // namespace brannoc
