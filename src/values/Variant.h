#pragma once
// Owning holders for the automation value types: Bstr (a BSTR), Variant (a VARIANT) and SafeArray (a
// SAFEARRAY with a lock guard). Raw clear/free calls on these resources appear only in Variant.cpp.
#include <windows.h>
#include <oaidl.h>
#include <oleauto.h>
#include <string_view>
#include <utility>

namespace brannoc {

// The length of a BSTR in characters, read from the byte count that precedes its text as the platform's
// own SysStringLen reads it, without a call (null: 0).
inline UINT TextLength(BSTR text) noexcept
{
    return text ? reinterpret_cast<const UINT*>(text)[-1] / static_cast<UINT>(sizeof(OLECHAR)) : 0;
}

// The text of a BSTR as whole characters (null: empty). False for a byte string of odd length (ChrB(65),
// StrConv(s, vbFromUnicode) of three characters): a view of whole characters would drop its last byte,
// so such a string takes the general paths, which copy it byte for byte.
[[nodiscard]] inline bool WholeCharacters(BSTR text, std::wstring_view& view) noexcept
{
    const UINT bytes = text ? reinterpret_cast<const UINT*>(text)[-1] : 0;
    if (bytes & 1) [[unlikely]]
        return false;
    view = std::wstring_view(text, bytes / static_cast<UINT>(sizeof(OLECHAR)));
    return true;
}

// Owns one BSTR. The length is the BSTR's own length prefix, so embedded NUL characters are kept.
class Bstr final {
public:
    Bstr() = default;
    explicit Bstr(std::wstring_view text);
    Bstr(const wchar_t* text, UINT length);
    Bstr(const Bstr& other);
    Bstr(Bstr&& other) noexcept : m_text(other.m_text) { other.m_text = nullptr; }
    Bstr& operator=(const Bstr& other);
    Bstr& operator=(Bstr&& other) noexcept;
    ~Bstr();

    // Takes ownership of text (which may be null).
    void Attach(BSTR text);
    // Hands ownership of the string to the caller; the holder becomes empty.
    [[nodiscard]] BSTR Detach() noexcept;
    void Clear();

    BSTR Get() const noexcept { return m_text; }
    // Address for an out parameter: the current string is freed first.
    BSTR* Out();
    UINT Length() const noexcept { return TextLength(m_text); }
    bool IsEmpty() const noexcept { return Length() == 0; }
    std::wstring_view View() const noexcept { return {m_text ? m_text : L"", Length()}; }
    // False only when allocation failed.
    [[nodiscard]] bool Assign(std::wstring_view text);

private:
    BSTR m_text = nullptr;
};

// The run-time error a failed copy of source raises: "Out of memory." (10001) for a string, an array
// or a record, whose copies fail only when memory runs out (the engine goes on: it is an error the macro
// can trap); "ActiveX Automation error." (10090) for a value that the platform refused to copy.
long CopyFailure(const VARIANT& source) noexcept;

// Stores text in a BSTR slot that owns its string (an array element, a record field): the string the
// slot held is freed and the slot takes text's string.
void ReplaceString(BSTR& slot, Bstr&& text) noexcept;

// True for values that own nothing (numbers, dates, Booleans, error codes, Empty, Null, and every
// by-reference value): clearing one only resets the tag and copying one copies its sixteen bytes, which
// is what VariantClear and VariantCopy do for them. Tags the platform might refuse are left to it.
constexpr bool OwnsNothing(VARTYPE tag) noexcept
{
    if (tag & VT_BYREF)
        return true;
    switch (tag) {
    case VT_EMPTY: case VT_NULL: case VT_I2: case VT_I4: case VT_R4: case VT_R8: case VT_CY: case VT_DATE:
    case VT_ERROR: case VT_BOOL: case VT_DECIMAL: case VT_I1: case VT_UI1: case VT_UI2: case VT_UI4: case VT_I8:
    case VT_UI8: case VT_INT: case VT_UINT:
        return true;
    default:
        return false;
    }
}

// Owns one VARIANT: cleared on destruction, copied through VariantCopy, moved by stealing the bits.
// Values that own nothing are cleared and copied inline, without a call into the platform. Arrays and
// records are released and copied by the engine's own routines (ArrayStorage, the record type), not by
// the platform's: a record is freed by its record type and an array copy is always a dynamic array.
class Variant final {
public:
    Variant() noexcept { m_value.vt = VT_EMPTY; }
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept : m_value(other.m_value) { other.m_value.vt = VT_EMPTY; }
    Variant& operator=(const Variant& other);
    Variant& operator=(Variant&& other) noexcept
    {
        if (this != &other) {
            Clear();
            m_value = other.m_value;
            other.m_value.vt = VT_EMPTY;
        }
        return *this;
    }
    ~Variant()
    {
        if (!OwnsNothing(m_value.vt))
            ReleaseOwned();
    }

    // Adopts the contents of value (ownership moves in; value becomes Empty).
    void Attach(VARIANT& value);
    // Moves the contents out into target, which must not hold anything owned; this becomes Empty.
    void Detach(VARIANT& target) noexcept;
    // Copies source through VariantCopy. False when the platform refused (out of memory and so on).
    [[nodiscard]] bool CopyFrom(const VARIANT& source)
    {
        if (!OwnsNothing(source.vt))
            return CopyOwnedFrom(source);
        if (&source != &m_value) {
            Clear();
            m_value = source;
        }
        return true;
    }
    // Copies what a by-reference source points at (VariantCopyInd). False on failure.
    [[nodiscard]] bool CopyIndirectFrom(const VARIANT& source);

    void Clear()
    {
        if (OwnsNothing(m_value.vt))
            m_value.vt = VT_EMPTY;
        else
            ReleaseOwned();
    }
    VARIANT& Raw() noexcept { return m_value; }
    const VARIANT& Raw() const noexcept { return m_value; }
    VARTYPE Tag() const noexcept { return m_value.vt; }
    VARTYPE BaseTag() const noexcept { return m_value.vt & VT_TYPEMASK; }
    bool IsByRef() const noexcept { return (m_value.vt & VT_BYREF) != 0; }
    bool IsArray() const noexcept { return (m_value.vt & VT_ARRAY) != 0; }

    void SetEmpty() { Clear(); }
    void SetNull();
    void SetInteger(SHORT value);
    void SetLong(LONG value);
    void SetSingle(FLOAT value);
    void SetDouble(DOUBLE value);
    void SetCurrency(CY value);
    void SetCurrencyUnits(LONGLONG tenThousandths);
    void SetDate(DATE value);
    void SetBoolean(bool value);
    void SetBooleanBits(VARIANT_BOOL value);
    void SetError(SCODE status);
    void SetByte(BYTE value);
    void SetDecimal(const DECIMAL& value);
    // Adopts text (which may be null: the empty string).
    void SetString(BSTR text);
    void SetString(Bstr&& text) { SetString(text.Detach()); }
    // Copies text; false when allocation failed (the value is then an empty String).
    [[nodiscard]] bool SetString(std::wstring_view text);
    // Adds a reference when addRef is true, otherwise adopts the caller's reference.
    void SetObject(IDispatch* object, bool addRef = true);
    void SetUnknown(IUnknown* object, bool addRef = true);
    // Adopts array; elementTag is its element kind (without the array flag).
    void SetArray(SAFEARRAY* array, VARTYPE elementTag);
    // Adopts a record block made by info (RecordCreate or RecordCreateCopy) and one reference on info.
    void SetRecord(void* record, IRecordInfo* info);
    // Makes this a by-reference record (VT_BYREF | VT_RECORD): the record block and type of a record
    // owned elsewhere.
    void SetRecordReference(void* record, IRecordInfo* info);
    // Makes this a by-reference value of tag kind pointing at storage it does not own.
    void SetByRef(VARTYPE tag, void* storage);

    // Accessors of the payload; valid only for the matching tag.
    SHORT Integer() const noexcept { return m_value.iVal; }
    LONG Long() const noexcept { return m_value.lVal; }
    FLOAT Single() const noexcept { return m_value.fltVal; }
    DOUBLE Double() const noexcept { return m_value.dblVal; }
    CY Currency() const noexcept { return m_value.cyVal; }
    DATE Date() const noexcept { return m_value.date; }
    VARIANT_BOOL Boolean() const noexcept { return m_value.boolVal; }
    SCODE Error() const noexcept { return m_value.scode; }
    BYTE Byte() const noexcept { return m_value.bVal; }
    const DECIMAL& Decimal() const noexcept { return m_value.decVal; }
    BSTR String() const noexcept { return m_value.bstrVal; }
    std::wstring_view StringView() const noexcept
    {
        return {m_value.bstrVal ? m_value.bstrVal : L"", TextLength(m_value.bstrVal)};
    }
    IDispatch* Object() const noexcept { return m_value.pdispVal; }
    SAFEARRAY* Array() const noexcept { return m_value.parray; }

private:
    // The platform paths: VariantClear of a value that owns something, VariantCopy of one.
    void ReleaseOwned() noexcept;
    [[nodiscard]] bool CopyOwnedFrom(const VARIANT& source);

    VARIANT m_value;
};

static_assert(sizeof(Variant) == 16, "Variant must keep the VARIANT layout");

// Follows a chain of by-reference Variants (tag VT_BYREF | VT_VARIANT) to the last VARIANT, which is
// either a plain value or a by-reference value of a fixed kind. Never returns null for a non-null input.
inline const VARIANT* FollowByRefChain(const VARIANT* value) noexcept
{
    while (value && value->vt == (VT_BYREF | VT_VARIANT) && value->pvarVal)
        value = value->pvarVal;
    return value;
}
inline VARIANT* FollowByRefChain(VARIANT* value) noexcept
{
    return const_cast<VARIANT*>(FollowByRefChain(static_cast<const VARIANT*>(value)));
}

// Owns one SAFEARRAY (released with DestroyArray).
class SafeArray final {
public:
    SafeArray() = default;
    explicit SafeArray(SAFEARRAY* array) noexcept : m_array(array) {}
    SafeArray(const SafeArray&) = delete;
    SafeArray& operator=(const SafeArray&) = delete;
    SafeArray(SafeArray&& other) noexcept : m_array(std::exchange(other.m_array, nullptr)) {}
    SafeArray& operator=(SafeArray&& other) noexcept;
    ~SafeArray();

    void Attach(SAFEARRAY* array);
    [[nodiscard]] SAFEARRAY* Detach() noexcept { return std::exchange(m_array, nullptr); }
    void Clear();
    SAFEARRAY* Get() const noexcept { return m_array; }
    // A deep copy of source (CopyArray); false on failure.
    [[nodiscard]] bool CopyFrom(SAFEARRAY* source);

private:
    SAFEARRAY* m_array = nullptr;
};

// Keeps a safe array locked (its data pointer valid) for the guard's lifetime.
class SafeArrayLock final {
public:
    explicit SafeArrayLock(SAFEARRAY* array) noexcept;
    SafeArrayLock(const SafeArrayLock&) = delete;
    SafeArrayLock& operator=(const SafeArrayLock&) = delete;
    ~SafeArrayLock();
    bool IsLocked() const noexcept { return m_locked; }
    void* Data() const noexcept { return m_locked ? m_array->pvData : nullptr; }

private:
    SAFEARRAY* m_array = nullptr;
    bool m_locked = false;
};

} // namespace brannoc
