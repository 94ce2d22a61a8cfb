#include "values/Variant.h"

#include "values/ArrayStorage.h"
#include "values/ValueError.h"

namespace brannoc {

namespace {

// Releases what value owns and leaves it Empty. Arrays and records go through the engine's own
// routines: records are freed by their record type (the platform would only clear them), and arrays
// of Variants may hold records.
void ReleaseValue(VARIANT& value) noexcept
{
    const VARTYPE tag = value.vt;
    if ((tag & (VT_ARRAY | VT_BYREF)) == VT_ARRAY) {
        DestroyArray(value.parray);
    } else if (tag == VT_RECORD) {
        if (IRecordInfo* record = value.pRecInfo) {
            if (value.pvRecord)
                (void)record->RecordDestroy(value.pvRecord);
            record->Release();
        }
    } else if (tag == VT_DISPATCH || tag == VT_UNKNOWN) {
        // An object reference: what VariantClear does, without the trip through the platform.
        if (value.punkVal)
            value.punkVal->Release();
    } else {
        VariantClear(&value);
    }
    value.vt = VT_EMPTY;
}

// Copies source (not following a by-reference value) into target, which holds nothing owned. Arrays
// and records are copied by the engine's own routines. False when memory ran out.
bool CopyValue(VARIANT& target, const VARIANT& source)
{
    VariantInit(&target);
    const VARTYPE tag = source.vt;
    if ((tag & (VT_ARRAY | VT_BYREF)) == VT_ARRAY) {
        SAFEARRAY* copy = CopyArray(source.parray);
        if (!copy && source.parray)
            return false;
        target.vt = tag;
        target.parray = copy;
        return true;
    }
    if ((tag & VT_TYPEMASK) == VT_RECORD && (tag & VT_ARRAY) == 0) {
        // A by-reference record carries the record itself, not a pointer to another VARIANT.
        IRecordInfo* record = source.pRecInfo;
        void* copy = nullptr;
        if (record && source.pvRecord && FAILED(record->RecordCreateCopy(source.pvRecord, &copy)))
            return false;
        if (record)
            record->AddRef();
        target.vt = VT_RECORD;
        target.pvRecord = copy;
        target.pRecInfo = record;
        return true;
    }
    if (tag == VT_DISPATCH || tag == VT_UNKNOWN) {
        // An object reference: what VariantCopy does, without the trip through the platform.
        target = source;
        if (target.punkVal)
            target.punkVal->AddRef();
        return true;
    }
    return SUCCEEDED(VariantCopy(&target, const_cast<VARIANT*>(&source)));
}

} // namespace

// ---- Bstr ----

Bstr::Bstr(std::wstring_view text)
    : m_text(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())))
{
}

Bstr::Bstr(const wchar_t* text, UINT length) : m_text(SysAllocStringLen(text, length)) {}

// Byte for byte: a byte string of odd length keeps its last byte.
Bstr::Bstr(const Bstr& other)
    : m_text(other.m_text ? SysAllocStringByteLen(reinterpret_cast<LPCSTR>(other.m_text), SysStringByteLen(other.m_text))
                          : nullptr)
{
}

Bstr& Bstr::operator=(const Bstr& other)
{
    if (this != &other) {
        Bstr copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Bstr& Bstr::operator=(Bstr&& other) noexcept
{
    if (this != &other) {
        SysFreeString(m_text);
        m_text = std::exchange(other.m_text, nullptr);
    }
    return *this;
}

Bstr::~Bstr() { SysFreeString(m_text); }

void Bstr::Attach(BSTR text)
{
    if (text != m_text)
        SysFreeString(m_text);
    m_text = text;
}

BSTR Bstr::Detach() noexcept { return std::exchange(m_text, nullptr); }

void Bstr::Clear()
{
    SysFreeString(m_text);
    m_text = nullptr;
}

long CopyFailure(const VARIANT& source) noexcept
{
    const VARTYPE tag = FollowByRefChain(&source)->vt;
    const VARTYPE kind = tag & VT_TYPEMASK;
    return (tag & VT_ARRAY) || kind == VT_BSTR || kind == VT_RECORD ? kErrorOutOfMemory : kErrorAutomation;
}

void ReplaceString(BSTR& slot, Bstr&& text) noexcept
{
    SysFreeString(std::exchange(slot, text.Detach()));
}

BSTR* Bstr::Out()
{
    Clear();
    return &m_text;
}

bool Bstr::Assign(std::wstring_view text)
{
    BSTR fresh = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!fresh)
        return false;
    Attach(fresh);
    return true;
}

// ---- Variant ----

Variant::Variant(const Variant& other)
{
    VariantInit(&m_value);
    // A failed copy leaves this value Empty; callers that must know use CopyFrom.
    (void)CopyFrom(other.m_value);
}

Variant& Variant::operator=(const Variant& other)
{
    if (this != &other)
        (void)CopyFrom(other.m_value);
    return *this;
}

void Variant::ReleaseOwned() noexcept
{
    ReleaseValue(m_value);
}

void Variant::Attach(VARIANT& value)
{
    if (&value == &m_value)
        return;
    Clear();
    m_value = value;
    value.vt = VT_EMPTY;
}

void Variant::Detach(VARIANT& target) noexcept
{
    target = m_value;
    m_value.vt = VT_EMPTY;
}

namespace {

// The value that a by-reference value of a number, date, Boolean or error kind points at, read without
// the platform; false for every other kind.
bool CopyPlainReferent(const VARIANT& reference, VARIANT& out) noexcept
{
    if ((reference.vt & (VT_BYREF | VT_ARRAY)) != VT_BYREF || !reference.byref)
        return false;
    const VARTYPE kind = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
    out.vt = kind;
    switch (kind) {
    case VT_I2: out.iVal = *reference.piVal; return true;
    case VT_I4: out.lVal = *reference.plVal; return true;
    case VT_R4: out.fltVal = *reference.pfltVal; return true;
    case VT_R8: out.dblVal = *reference.pdblVal; return true;
    case VT_CY: out.cyVal = *reference.pcyVal; return true;
    case VT_DATE: out.date = *reference.pdate; return true;
    case VT_BOOL: out.boolVal = *reference.pboolVal; return true;
    case VT_ERROR: out.scode = *reference.pscode; return true;
    case VT_UI1: out.bVal = *reference.pbVal; return true;
    default: return false;
    }
}

} // namespace

bool Variant::CopyOwnedFrom(const VARIANT& source)
{
    if (&source == &m_value)
        return true;
    VARIANT fresh;
    if (!CopyValue(fresh, source))
        return false;
    Clear();
    m_value = fresh;
    return true;
}

bool Variant::CopyIndirectFrom(const VARIANT& source)
{
    const VARIANT* end = FollowByRefChain(&source);
    if (!(end->vt & VT_BYREF) && OwnsNothing(end->vt)) {
        if (end != &m_value) {
            Clear();
            m_value = *end;
        }
        return true;
    }
    if (end->vt == VT_DISPATCH || end->vt == VT_UNKNOWN) {
        // An object reference (the object of a member call): one more reference, taken before the
        // previous contents go.
        if (end != &m_value) {
            VARIANT copy = *end;
            if (copy.punkVal)
                copy.punkVal->AddRef();
            Clear();
            m_value = copy;
        }
        return true;
    }
    if (VARIANT plain; CopyPlainReferent(*end, plain)) {
        Clear();
        m_value = plain;
        return true;
    }
    VARIANT fresh;
    VariantInit(&fresh);
    const VARTYPE tag = end->vt;
    if (tag == (VT_BYREF | VT_RECORD)) {
        if (!CopyValue(fresh, *end))
            return false;
    } else if ((tag & VT_BYREF) && (tag & VT_ARRAY)) {
        SAFEARRAY* copy = CopyArray(end->pparray ? *end->pparray : nullptr);
        if (!copy && end->pparray && *end->pparray)
            return false;
        fresh.vt = static_cast<VARTYPE>(tag & ~VT_BYREF);
        fresh.parray = copy;
    } else if (tag & VT_BYREF) {
        if (FAILED(VariantCopyInd(&fresh, const_cast<VARIANT*>(end))))
            return false;
    } else if (!CopyValue(fresh, *end)) {
        return false;
    }
    Clear();
    m_value = fresh;
    return true;
}

void Variant::SetNull()
{
    Clear();
    m_value.vt = VT_NULL;
}

void Variant::SetInteger(SHORT value)
{
    Clear();
    m_value.vt = VT_I2;
    m_value.iVal = value;
}

void Variant::SetLong(LONG value)
{
    Clear();
    m_value.vt = VT_I4;
    m_value.lVal = value;
}

void Variant::SetSingle(FLOAT value)
{
    Clear();
    m_value.vt = VT_R4;
    m_value.fltVal = value;
}

void Variant::SetDouble(DOUBLE value)
{
    Clear();
    m_value.vt = VT_R8;
    m_value.dblVal = value;
}

void Variant::SetCurrency(CY value)
{
    Clear();
    m_value.vt = VT_CY;
    m_value.cyVal = value;
}

void Variant::SetCurrencyUnits(LONGLONG tenThousandths)
{
    CY value;
    value.int64 = tenThousandths;
    SetCurrency(value);
}

void Variant::SetDate(DATE value)
{
    Clear();
    m_value.vt = VT_DATE;
    m_value.date = value;
}

void Variant::SetBoolean(bool value) { SetBooleanBits(value ? VARIANT_TRUE : VARIANT_FALSE); }

void Variant::SetBooleanBits(VARIANT_BOOL value)
{
    Clear();
    m_value.vt = VT_BOOL;
    m_value.boolVal = value;
}

void Variant::SetError(SCODE status)
{
    Clear();
    m_value.vt = VT_ERROR;
    m_value.scode = status;
}

void Variant::SetByte(BYTE value)
{
    Clear();
    m_value.vt = VT_UI1;
    m_value.bVal = value;
}

void Variant::SetDecimal(const DECIMAL& value)
{
    Clear();
    // The DECIMAL overlays the whole VARIANT, its reserved word taking the place of the tag.
    m_value.decVal = value;
    m_value.vt = VT_DECIMAL;
}

void Variant::SetString(BSTR text)
{
    Clear();
    m_value.vt = VT_BSTR;
    m_value.bstrVal = text;
}

bool Variant::SetString(std::wstring_view text)
{
    BSTR fresh = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    SetString(fresh);
    return fresh != nullptr || text.empty();
}

void Variant::SetObject(IDispatch* object, bool addRef)
{
    if (object && addRef)
        object->AddRef();
    Clear();
    m_value.vt = VT_DISPATCH;
    m_value.pdispVal = object;
}

void Variant::SetUnknown(IUnknown* object, bool addRef)
{
    if (object && addRef)
        object->AddRef();
    Clear();
    m_value.vt = VT_UNKNOWN;
    m_value.punkVal = object;
}

void Variant::SetArray(SAFEARRAY* array, VARTYPE elementTag)
{
    Clear();
    m_value.vt = static_cast<VARTYPE>(VT_ARRAY | elementTag);
    m_value.parray = array;
}

void Variant::SetRecord(void* record, IRecordInfo* info)
{
    Clear();
    m_value.vt = VT_RECORD;
    m_value.pvRecord = record;
    m_value.pRecInfo = info;
}

void Variant::SetRecordReference(void* record, IRecordInfo* info)
{
    Clear();
    m_value.vt = VT_BYREF | VT_RECORD;
    m_value.pvRecord = record;
    m_value.pRecInfo = info;
}

void Variant::SetByRef(VARTYPE tag, void* storage)
{
    Clear();
    m_value.vt = static_cast<VARTYPE>(VT_BYREF | tag);
    m_value.byref = storage;
}

// ---- SafeArray ----

SafeArray& SafeArray::operator=(SafeArray&& other) noexcept
{
    if (this != &other) {
        Clear();
        m_array = std::exchange(other.m_array, nullptr);
    }
    return *this;
}

SafeArray::~SafeArray() { Clear(); }

void SafeArray::Attach(SAFEARRAY* array)
{
    if (array != m_array)
        Clear();
    m_array = array;
}

void SafeArray::Clear()
{
    DestroyArray(m_array);
    m_array = nullptr;
}

bool SafeArray::CopyFrom(SAFEARRAY* source)
{
    SAFEARRAY* copy = CopyArray(source);
    if (!copy && source)
        return false;
    Attach(copy);
    return true;
}

SafeArrayLock::SafeArrayLock(SAFEARRAY* array) noexcept
    : m_array(array), m_locked(array && SUCCEEDED(::SafeArrayLock(array)))
{
}

SafeArrayLock::~SafeArrayLock()
{
    if (m_locked)
        SafeArrayUnlock(m_array);
}

} // namespace brannoc
