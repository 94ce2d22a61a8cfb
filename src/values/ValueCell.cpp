#include "values/ValueCell.h"

#include "values/Conversion.h"
#include "values/Operators.h"
#include "values/RecordType.h"
#include "values/TaskMemory.h"
#include "values/TextForm.h"
#include "values/ValueError.h"

#include <climits>
#include <cstring>
#include <cmath>
#include <cfloat>

namespace brannoc {

// ---- Generic behaviour shared by every cell ----

bool ValueCell::Load(const VARIANT& storage, Variant& target) const
{
    return target.CopyIndirectFrom(storage) || RaiseValueError(CopyFailure(storage));
}

bool ValueCell::Store(VARIANT& storage, const Variant& value) const
{
    Variant converted(value);
    if (!ChangeType(converted, Kind()))
        return false;
    Variant slot;
    slot.Attach(storage);
    slot = std::move(converted);
    slot.Detach(storage);
    return true;
}

bool ValueCell::Convert(Variant& value, VARTYPE tag) const { return ChangeType(value, tag); }

bool ValueCell::Binary(OperationId op, Variant& left, const Variant& right) const
{
    return BinaryOperation(op, left, right);
}

bool ValueCell::Unary(OperationId op, Variant& value) const { return UnaryOperation(op, value); }

bool ValueCell::WritePrint(std::wstring& out, const Variant& value) const { return brannoc::WritePrint(out, value); }
bool ValueCell::WriteWrite(std::wstring& out, const Variant& value) const { return brannoc::WriteWrite(out, value); }
bool ValueCell::WriteDebug(std::wstring& out, const Variant& value) const { return brannoc::WriteDebug(out, value); }

namespace {
bool IsWholeNumber(VARTYPE tag) { return tag == VT_I2 || tag == VT_I4; }
} // namespace

bool WholeNumberCell::Binary(OperationId op, Variant& left, const Variant& right) const
{
    return (IsWholeNumber(left.Tag()) && TryBinary(op, left.Raw(), right.Raw())) || BinaryOperation(op, left, right);
}

bool WholeNumberCell::Unary(OperationId op, Variant& value) const
{
    return (IsWholeNumber(value.Tag()) && TryUnary(op, value.Raw())) || UnaryOperation(op, value);
}

bool DoubleCell::Binary(OperationId op, Variant& left, const Variant& right) const
{
    return (left.Tag() == VT_R8 && TryBinary(op, left.Raw(), right.Raw())) || BinaryOperation(op, left, right);
}

bool DoubleCell::Unary(OperationId op, Variant& value) const
{
    return (value.Tag() == VT_R8 && TryUnary(op, value.Raw())) || UnaryOperation(op, value);
}

namespace {

// Kinds whose operations all take the generic routines: only the tag differs.
template <VARTYPE kTag>
class GenericCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return kTag; }
};
using SingleCell = GenericCell<VT_R4>;
using CurrencyCell = GenericCell<VT_CY>;
using DateCell = GenericCell<VT_DATE>;
using BooleanCell = GenericCell<VT_BOOL>;
using ByteCell = GenericCell<VT_UI1>;
using DecimalCell = GenericCell<VT_DECIMAL>;

class StringCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return VT_BSTR; }
    bool Binary(OperationId op, Variant& left, const Variant& right) const override
    {
        if (left.Tag() == VT_BSTR && right.Tag() == VT_BSTR && IsComparison(op)) {
            StoreStringComparison(op, left, right);
            return true;
        }
        return BinaryOperation(op, left, right);
    }

private:
    static void StoreStringComparison(OperationId op, Variant& left, const Variant& right)
    {
        left.SetBoolean(OrderHolds(op, left.StringView().compare(right.StringView())));
    }
};

class VariantCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return VT_VARIANT; }
    // A Variant keeps whatever kind the resolved value has.
    bool Store(VARIANT& storage, const Variant& value) const override
    {
        Variant copy(value);
        if (copy.Tag() != value.Tag())
            return RaiseValueError(kErrorOutOfMemory);
        if (copy.BaseTag() != VT_DISPATCH && !Resolve(copy))
            return false;
        if (copy.IsByRef() && !copy.CopyIndirectFrom(copy.Raw()))
            return RaiseValueError(CopyFailure(copy.Raw()));
        Variant slot;
        slot.Attach(storage);
        slot = std::move(copy);
        slot.Detach(storage);
        return true;
    }
    bool Convert(Variant& value, VARTYPE tag) const override { return tag == VT_VARIANT || ChangeType(value, tag); }
};

class ObjectCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return VT_DISPATCH; }
};

// Records of user-defined types: copied whole; used in no operator. A record variable (or a
// by-reference record parameter) is assigned in place, so that references to its record stay valid; an
// Empty slot (a parameter being bound to a copy) takes a copy.
class RecordCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return VT_RECORD; }
    bool Store(VARIANT& storage, const Variant& value) const override
    {
        const VARIANT& source = *FollowByRefChain(&value.Raw());
        if ((source.vt & ~VT_BYREF) != VT_RECORD || !source.pvRecord || !source.pRecInfo)
            return RaiseValueError(kErrorTypeMismatch);
        if ((storage.vt & ~VT_BYREF) != VT_RECORD || !storage.pvRecord || !storage.pRecInfo) {
            Variant copy;
            if (!copy.CopyIndirectFrom(source))
                return RaiseValueError(kErrorOutOfMemory);
            Variant slot;
            slot.Attach(storage);
            slot = std::move(copy);
            slot.Detach(storage);
            return true;
        }
        IRecordInfo* type = storage.pRecInfo;
        if (source.pRecInfo != type && !type->IsMatchingType(source.pRecInfo))
            return RaiseValueError(kErrorTypeMismatch);
        if (source.pvRecord == storage.pvRecord)
            return true;
        if (!AsRecordType(type)) {
            // A record type of another component: copied in place by its own routines.
            (void)type->RecordClear(storage.pvRecord);
            return SUCCEEDED(type->RecordCopy(source.pvRecord, storage.pvRecord)) ||
                   RaiseValueError(kErrorOutOfMemory);
        }
        // The copy is made first: the source may live in something the old record owns.
        TaskMemory copy;
        ULONG size = 0;
        if (FAILED(type->RecordCreateCopy(source.pvRecord, copy.Out())) || FAILED(type->GetSize(&size)))
            return RaiseValueError(kErrorOutOfMemory);
        (void)type->RecordClear(storage.pvRecord);
        // The copy's contents now belong to the variable; only its block goes.
        std::memcpy(storage.pvRecord, copy.Get(), size);
        return true;
    }
    bool Convert(Variant& value, VARTYPE tag) const override
    {
        return tag == VT_RECORD || ChangeType(value, tag);
    }
    bool Binary(OperationId, Variant&, const Variant&) const override { return RaiseValueError(kErrorTypeMismatch); }
    bool Unary(OperationId, Variant&) const override { return RaiseValueError(kErrorTypeMismatch); }
};

// Arrays of one element kind: assignment copies an array of the same element kind.
class ArrayOfCell final : public ValueCell {
public:
    explicit ArrayOfCell(VARTYPE elementTag) : m_elementTag(elementTag) {}
    VARTYPE Kind() const override { return static_cast<VARTYPE>(VT_ARRAY | m_elementTag); }
    bool Store(VARIANT& storage, const Variant& value) const override
    {
        const VARIANT& source = *FollowByRefChain(&value.Raw());
        if (!(source.vt & VT_ARRAY) || (source.vt & VT_TYPEMASK) != m_elementTag)
            return RaiseValueError(kErrorTypeMismatch);
        Variant copy;
        if (!copy.CopyIndirectFrom(source))
            return RaiseValueError(CopyFailure(source));
        Variant slot;
        slot.Attach(storage);
        slot = std::move(copy);
        slot.Detach(storage);
        return true;
    }
    bool Convert(Variant&, VARTYPE tag) const override
    {
        return tag == Kind() || RaiseValueError(kErrorTypeMismatch);
    }
    bool Binary(OperationId, Variant&, const Variant&) const override { return RaiseValueError(kErrorTypeMismatch); }
    bool Unary(OperationId, Variant&) const override { return RaiseValueError(kErrorTypeMismatch); }

private:
    VARTYPE m_elementTag;
};

const IntegerCell s_integerCell;
const LongCell s_longCell;
const SingleCell s_singleCell;
const DoubleCell s_doubleCell;
const CurrencyCell s_currencyCell;
const DateCell s_dateCell;
const StringCell s_stringCell;
const ObjectCell s_objectCell;
const BooleanCell s_booleanCell;
const VariantCell s_variantCell;
const DecimalCell s_decimalCell;
const ByteCell s_byteCell;
const RecordCell s_recordCell;

} // namespace

bool FixedStringCell::Store(VARIANT& storage, const Variant& value) const
{
    Variant converted(value);
    if (!ChangeType(converted, VT_BSTR))
        return false;
    // Fixed-length text is cut to its length or padded with spaces.
    std::wstring text(converted.StringView().substr(0, m_length));
    text.resize(m_length, L' ');
    if (!converted.SetString(std::wstring_view(text)))
        return RaiseValueError(kErrorOutOfMemory);
    Variant slot;
    slot.Attach(storage);
    slot = std::move(converted);
    slot.Detach(storage);
    return true;
}

const ValueCell& CellFor(VARTYPE tag)
{
    if (tag & (VT_ARRAY | VT_BYREF))
        return s_variantCell;
    switch (tag) {
    case VT_I2: return s_integerCell;
    case VT_I4: return s_longCell;
    case VT_R4: return s_singleCell;
    case VT_R8: return s_doubleCell;
    case VT_CY: return s_currencyCell;
    case VT_DATE: return s_dateCell;
    case VT_BSTR: return s_stringCell;
    case VT_DISPATCH: return s_objectCell;
    case VT_BOOL: return s_booleanCell;
    case VT_DECIMAL: return s_decimalCell;
    case VT_UI1: return s_byteCell;
    case VT_RECORD: return s_recordCell;
    default: return s_variantCell;
    }
}

const ValueCell& StorageCell(VARTYPE tag)
{
    if (tag & VT_ARRAY)
        return ArrayCell(tag & VT_TYPEMASK);
    return CellFor(tag);
}

const ValueCell& ArrayCell(VARTYPE elementTag)
{
    static const ArrayOfCell s_arrays[] = {
        ArrayOfCell(VT_I2),  ArrayOfCell(VT_I4),   ArrayOfCell(VT_R4),      ArrayOfCell(VT_R8),
        ArrayOfCell(VT_CY),  ArrayOfCell(VT_DATE), ArrayOfCell(VT_BSTR),    ArrayOfCell(VT_DISPATCH),
        ArrayOfCell(VT_ERROR), ArrayOfCell(VT_BOOL), ArrayOfCell(VT_VARIANT), ArrayOfCell(VT_UNKNOWN),
        ArrayOfCell(VT_DECIMAL), ArrayOfCell(VT_UI1), ArrayOfCell(VT_RECORD),
    };
    for (const ArrayOfCell& cell : s_arrays)
        if (cell.Kind() == (VT_ARRAY | elementTag))
            return cell;
    return s_arrays[10]; // Variant elements
}

} // namespace brannoc
