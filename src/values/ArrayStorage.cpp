#include "values/ArrayStorage.h"

#include "values/ComRef.h"
#include "values/Variant.h"
#include "values/ValueError.h"

#include <cstring>
#include <limits>

namespace brannoc {

namespace {

// Larger data blocks are refused before the platform computes their size in 32 bits.
constexpr unsigned long long kMaxDataBytes = 0x7FFFFFFFull;

char* ElementAt(void* first, ULONG index, ULONG size) { return static_cast<char*>(first) + std::size_t{index} * size; }


// The bounds of every dimension of an existing array, left to right as written.
void BoundsOf(SAFEARRAY* array, LONG* lower, LONG* upper)
{
    for (UINT d = 0; d < array->cDims; ++d) {
        (void)SafeArrayGetLBound(array, d + 1, &lower[d]);
        (void)SafeArrayGetUBound(array, d + 1, &upper[d]);
    }
}

// Elements per step of the last dimension: the product of the other dimensions' counts. The last
// dimension varies slowest, so each of its positions is one contiguous block of this many elements.
ULONG BlockOfLastDimension(const SAFEARRAY* array) noexcept
{
    // Safe arrays keep their bounds in reverse order: rgsabound[0] is the last dimension.
    ULONG count = 1;
    for (USHORT d = 1; d < array->cDims; ++d)
        count *= array->rgsabound[d].cElements;
    return count;
}

bool NeedsInitialization(const ElementKind& kind) noexcept
{
    return (kind.tag == VT_BSTR && kind.fixedLength > 0) || kind.tag == VT_RECORD;
}

// Bytes of one element of a kind other than records.
ULONG ElementSize(VARTYPE tag) noexcept
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
    case VT_VARIANT:
    case VT_DECIMAL: return 16;
    default: return 8;
    }
}

bool InitializeAll(SAFEARRAY* array, const ElementKind& kind)
{
    SafeArrayLock lock(array);
    return lock.IsLocked() && InitializeElements(lock.Data(), ElementCount(array), array->cbElements, kind);
}

// An array of records whose elements are still zero bits (about to be overwritten by copies).
SAFEARRAY* CreateArrayOfZeroBits(const ElementKind& kind, const LONG* lower, const LONG* upper, UINT dimensions)
{
    SAFEARRAYBOUND bounds[8];
    for (UINT d = 0; d < dimensions && d < 8; ++d) {
        bounds[d].lLbound = lower[d];
        bounds[d].cElements = static_cast<ULONG>(static_cast<long long>(upper[d]) - lower[d] + 1);
    }
    return SafeArrayCreateEx(VT_RECORD, dimensions, bounds, kind.record);
}

// Copies every element of source into copy (same shape and kind; copy's elements are Empty or zero
// bits). False when memory ran out.
bool CopyElements(SAFEARRAY* source, SAFEARRAY* copy, const ElementKind& kind)
{
    SafeArrayLock from(source);
    SafeArrayLock to(copy);
    if (!from.IsLocked() || !to.IsLocked())
        return false;
    const ULONG count = ElementCount(source);
    const ULONG size = source->cbElements;
    for (ULONG i = 0; i < count; ++i) {
        void* target = ElementAt(to.Data(), i, size);
        const void* element = ElementAt(from.Data(), i, size);
        if (kind.tag == VT_RECORD) {
            if (!kind.record || FAILED(kind.record->RecordCopy(const_cast<void*>(element), target)))
                return false;
            continue;
        }
        Variant value;
        if (!value.CopyFrom(*static_cast<const VARIANT*>(element)))
            return false;
        value.Detach(*static_cast<VARIANT*>(target));
    }
    return true;
}

} // namespace

void* ElementAddress(SAFEARRAY* array, const LONG* indexes) noexcept
{
    // Safe arrays keep their bounds in reverse order: dimension d (as written) is rgsabound[cDims-1-d].
    // The first dimension varies fastest.
    const USHORT dimensions = array->cDims;
    ULONG offset = 0;
    ULONG stride = 1;
    for (USHORT d = 0; d < dimensions; ++d) {
        const SAFEARRAYBOUND& bound = array->rgsabound[dimensions - 1 - d];
        const ULONG position = static_cast<ULONG>(indexes[d] - bound.lLbound);
        if (indexes[d] < bound.lLbound || position >= bound.cElements)
            return nullptr;
        offset += position * stride;
        stride *= bound.cElements;
    }
    return static_cast<char*>(array->pvData) + std::size_t{offset} * array->cbElements;
}

ULONG ElementCount(const SAFEARRAY* array) noexcept
{
    if (!array || array->cDims == 0)
        return 0;
    ULONG count = 1;
    for (USHORT d = 0; d < array->cDims; ++d)
        count *= array->rgsabound[d].cElements;
    return count;
}

bool IsFixedArray(const SAFEARRAY* array) noexcept
{
    return array && (array->fFeatures & FADF_FIXEDSIZE) != 0;
}

ElementKind ElementKindOf(SAFEARRAY* array) noexcept
{
    ElementKind kind;
    kind.tag = VT_EMPTY;
    if (!array)
        return kind;
    // The ownership marks decide first: they are present on every array, with or without a recorded
    // element type.
    const USHORT features = array->fFeatures;
    if (features & FADF_RECORD) {
        kind.tag = VT_RECORD;
        // The array keeps its own reference for as long as it lives: the kind borrows it.
        ComRef<IRecordInfo> record;
        if (SUCCEEDED(SafeArrayGetRecordInfo(array, record.Out())) && record)
            kind.record = record.Get();
    } else if (features & FADF_VARIANT) {
        kind.tag = VT_VARIANT;
    } else if (features & FADF_BSTR) {
        kind.tag = VT_BSTR;
    } else if (features & FADF_DISPATCH) {
        kind.tag = VT_DISPATCH;
    } else if (features & FADF_UNKNOWN) {
        kind.tag = VT_UNKNOWN;
    } else if (FAILED(SafeArrayGetVartype(array, &kind.tag))) {
        kind.tag = VT_EMPTY;
    }
    return kind;
}

bool InitializeElements(void* first, ULONG count, ULONG size, const ElementKind& kind)
{
    if (kind.tag == VT_BSTR && kind.fixedLength > 0) {
        for (ULONG i = 0; i < count; ++i) {
            Bstr blanks(nullptr, kind.fixedLength);
            if (!blanks.Get())
                return false;
            for (UINT c = 0; c < kind.fixedLength; ++c)
                blanks.Get()[c] = L' ';
            *reinterpret_cast<BSTR*>(ElementAt(first, i, size)) = blanks.Detach();
        }
    } else if (kind.tag == VT_RECORD && kind.record) {
        for (ULONG i = 0; i < count; ++i) {
            if (FAILED(kind.record->RecordInit(ElementAt(first, i, size))))
                return false;
        }
    }
    return true;
}

void ReleaseElements(void* first, ULONG count, ULONG size, const ElementKind& kind) noexcept
{
    switch (kind.tag) {
    case VT_BSTR:
        for (ULONG i = 0; i < count; ++i) {
            Bstr owner;
            owner.Attach(*reinterpret_cast<BSTR*>(ElementAt(first, i, size)));
        }
        break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
        for (ULONG i = 0; i < count; ++i) {
            Variant owner;
            owner.SetUnknown(*reinterpret_cast<IUnknown**>(ElementAt(first, i, size)), false);
        }
        break;
    case VT_VARIANT:
        for (ULONG i = 0; i < count; ++i) {
            Variant owner;
            owner.Attach(*reinterpret_cast<VARIANT*>(ElementAt(first, i, size)));
        }
        break;
    case VT_RECORD:
        if (kind.record) {
            for (ULONG i = 0; i < count; ++i)
                (void)kind.record->RecordClear(ElementAt(first, i, size));
        }
        break;
    default:
        break;
    }
    std::memset(first, 0, std::size_t{count} * size);
}

SAFEARRAY* CreateArray(const ElementKind& kind, const LONG* lower, const LONG* upper, UINT dimensions, bool fixed)
{
    ULONG size = ElementSize(kind.tag);
    if (kind.tag == VT_RECORD && (!kind.record || FAILED(kind.record->GetSize(&size))))
        return nullptr;
    SAFEARRAYBOUND bounds[8];
    unsigned long long bytes = size;
    for (UINT d = 0; d < dimensions && d < 8; ++d) {
        // The full range of bounds holds 2^32 elements, one more than a dimension can count.
        const unsigned long long count =
            static_cast<unsigned long long>(static_cast<long long>(upper[d]) - lower[d] + 1);
        if (count > std::numeric_limits<ULONG>::max())
            return nullptr;
        bounds[d].lLbound = lower[d];
        bounds[d].cElements = static_cast<ULONG>(count);
        bytes *= count;
        if (bytes > kMaxDataBytes)
            return nullptr;
    }
    SAFEARRAY* array = kind.tag == VT_RECORD ? SafeArrayCreateEx(VT_RECORD, dimensions, bounds, kind.record)
                                             : SafeArrayCreate(kind.tag, dimensions, bounds);
    if (!array)
        return nullptr;
    if (NeedsInitialization(kind) && !InitializeAll(array, kind)) {
        // What was made so far is released with the array.
        DestroyArray(array);
        return nullptr;
    }
    if (fixed)
        array->fFeatures |= FADF_FIXEDSIZE;
    return array;
}

bool ResizeLastDimension(SAFEARRAY* array, const ElementKind& kind, LONG lower, LONG upper)
{
    const ULONG block = BlockOfLastDimension(array);
    const ULONG oldCount = ElementCount(array);
    const unsigned long long lastCount = static_cast<unsigned long long>(static_cast<long long>(upper) - lower + 1);
    if (lastCount > std::numeric_limits<ULONG>::max() ||
        static_cast<unsigned long long>(block) * lastCount * array->cbElements > kMaxDataBytes)
        return false;
    const ULONG newLast = static_cast<ULONG>(lastCount);
    const ULONG newCount = block * newLast;
    if (newCount < oldCount) {
        SafeArrayLock lock(array);
        if (!lock.IsLocked())
            return false;
        ReleaseElements(ElementAt(lock.Data(), newCount, array->cbElements), oldCount - newCount, array->cbElements,
                        kind);
    }
    // The platform moves the bytes; it must not touch records itself (Wine releases the wrong ones),
    // so the record mark is off while it works.
    const USHORT recordMark = array->fFeatures & FADF_RECORD;
    array->fFeatures &= static_cast<USHORT>(~FADF_RECORD);
    SAFEARRAYBOUND bound{newLast, lower};
    const HRESULT status = SafeArrayRedim(array, &bound);
    array->fFeatures |= recordMark;
    if (FAILED(status))
        return false;
    if (newCount > oldCount && NeedsInitialization(kind)) {
        SafeArrayLock lock(array);
        if (!lock.IsLocked())
            return false;
        return InitializeElements(ElementAt(lock.Data(), oldCount, array->cbElements), newCount - oldCount,
                                  array->cbElements, kind);
    }
    return true;
}

bool ResetArray(SAFEARRAY* array, const ElementKind& kind)
{
    SafeArrayLock lock(array);
    if (!lock.IsLocked())
        return false;
    const ULONG count = ElementCount(array);
    ReleaseElements(lock.Data(), count, array->cbElements, kind);
    return InitializeElements(lock.Data(), count, array->cbElements, kind);
}

SAFEARRAY* CopyArray(SAFEARRAY* source)
{
    if (!source)
        return nullptr;
    const ElementKind kind = ElementKindOf(source);
    SAFEARRAY* copy = nullptr;
    if (kind.tag == VT_VARIANT || kind.tag == VT_RECORD) {
        // Element by element through the engine's own copies.
        LONG lower[8] = {};
        LONG upper[8] = {};
        BoundsOf(source, lower, upper);
        ElementKind plain = kind;
        plain.fixedLength = 0;
        copy = kind.tag == VT_RECORD ? CreateArrayOfZeroBits(kind, lower, upper, source->cDims)
                                     : CreateArray(plain, lower, upper, source->cDims, false);
        if (!copy || !CopyElements(source, copy, kind)) {
            DestroyArray(copy);
            return nullptr;
        }
        return copy;
    }
    if (FAILED(SafeArrayCopy(source, &copy)))
        return nullptr;
    copy->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
    return copy;
}

bool CopyArrayInto(SAFEARRAY* array, VARTYPE elementTag, Variant& value)
{
    SAFEARRAY* copy = CopyArray(array);
    if (!copy && array)
        return false;
    value.SetArray(copy, elementTag);
    return true;
}

long TakeArrayFor(const ElementKind& kind, Variant& value, SAFEARRAY*& result)
{
    result = nullptr;
    const VARIANT& source = *FollowByRefChain(&value.Raw());
    if ((source.vt & VT_TYPEMASK) == VT_BSTR && !(source.vt & VT_ARRAY) && kind.tag == VT_UI1) {
        const BSTR text = (source.vt & VT_BYREF) ? *source.pbstrVal : source.bstrVal;
        const UINT bytes = text ? SysStringByteLen(text) : 0;
        const LONG lower = 0;
        const LONG upper = static_cast<LONG>(bytes) - 1;
        result = CreateArray(kind, &lower, &upper, 1, false);
        if (!result)
            return kErrorCantAllocateLargeArray;
        if (bytes > 0) {
            SafeArrayLock lock(result);
            std::memcpy(lock.Data(), text, bytes);
        }
        return 0;
    }
    if ((source.vt & VT_ARRAY) == 0)
        return kErrorTypeMismatch;
    SAFEARRAY* array = (source.vt & VT_BYREF) ? (source.pparray ? *source.pparray : nullptr) : source.parray;
    if (!array) {
        // An array that is not dimensioned gives one. Without a descriptor the record type of records
        // is not known, so only the element kind is compared.
        return (source.vt & VT_TYPEMASK) == kind.tag ? 0 : kErrorTypeMismatch;
    }
    const ElementKind given = ElementKindOf(array);
    const bool sameRecords = kind.tag != VT_RECORD || given.record == kind.record ||
                             (given.record && kind.record && kind.record->IsMatchingType(given.record));
    if (given.tag != kind.tag || !sameRecords)
        return kErrorTypeMismatch;
    if (&source == &value.Raw() && !value.IsByRef()) {
        // The value owns the array (a copy made for the assignment): it moves over.
        VARIANT taken;
        value.Detach(taken);
        result = taken.parray;
        result->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
        return 0;
    }
    result = CopyArray(array);
    return result ? 0 : kErrorCantAllocateLargeArray;
}

void DestroyArray(SAFEARRAY* array) noexcept
{
    if (!array)
        return;
    const ElementKind kind = ElementKindOf(array);
    if (kind.tag == VT_VARIANT || kind.tag == VT_RECORD) {
        // Variants may hold records, which the platform would not free; records are cleared by the
        // engine's own record type (clearing twice is harmless: a cleared record holds nothing).
        SafeArrayLock lock(array);
        if (lock.IsLocked())
            ReleaseElements(lock.Data(), ElementCount(array), array->cbElements, kind);
    }
    (void)SafeArrayDestroy(array);
}

} // namespace brannoc
