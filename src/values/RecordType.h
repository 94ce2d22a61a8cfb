#pragma once
// The run-time type of records of one user-defined type: an IRecordInfo that lays the fields out,
// starts, clears, copies, creates and destroys records, and reads and writes fields by name.
//
// Layout: fields in declaration order, each at the next multiple of its alignment; the record's size is
// rounded up to the largest alignment of its fields. Alignments are those of the 32-bit platform's
// natural alignment with a limit of 4 (4-byte packing): Byte 1; Integer, Boolean and fixed-length
// strings (their UTF-16 characters, inline) 2; everything else 4 (Long, Single, Double, Currency, Date,
// Decimal, String and object references, Variants of 16 bytes, arrays as one safe-array reference); a
// nested record takes its own alignment. Len reports this size.
#include "values/ArrayStorage.h"
#include "values/Variant.h"

#include <windows.h>
#include <oaidl.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brannoc {

class RecordType;

// Holds one reference on a record type.
class RecordTypeRef final {
public:
    RecordTypeRef() = default;
    // Adopts the reference the caller holds.
    explicit RecordTypeRef(RecordType* type) noexcept : m_type(type) {}
    RecordTypeRef(const RecordTypeRef& other) noexcept;
    RecordTypeRef(RecordTypeRef&& other) noexcept : m_type(std::exchange(other.m_type, nullptr)) {}
    RecordTypeRef& operator=(RecordTypeRef other) noexcept
    {
        std::swap(m_type, other.m_type);
        return *this;
    }
    ~RecordTypeRef();

    RecordType* Get() const noexcept { return m_type; }
    RecordType* operator->() const noexcept { return m_type; }
    RecordType& operator*() const noexcept { return *m_type; }
    explicit operator bool() const noexcept { return m_type != nullptr; }

private:
    RecordType* m_type = nullptr;
};

enum class FieldKind : unsigned char {
    Plain,        // numbers, dates, Booleans: their bits (tag says which)
    String,       // a String reference
    FixedString,  // `length` UTF-16 characters in the record
    Variant,      // a 16-byte VARIANT
    Object,       // an object reference
    Record,       // a nested record of `record`
    Array,        // one safe-array reference; `bounds` for a fixed array, elements of `element`
};

struct RecordField {
    std::string name;
    FieldKind kind = FieldKind::Plain;
    VARTYPE tag = VT_I4;              // Plain: the kind; Object: VT_DISPATCH
    UINT length = 0;                  // FixedString: characters
    RecordTypeRef record;             // Record: the nested type; Array: the element record type
    VARTYPE elementTag = VT_EMPTY;    // Array: the element kind
    UINT elementLength = 0;           // Array: characters of fixed-length String elements
    std::vector<std::pair<LONG, LONG>> bounds;  // Array: lower and upper of each dimension when fixed
    ULONG offset = 0;
    ULONG size = 0;
};

// Records may not grow beyond this many bytes.
constexpr ULONG kMaxRecordSize = 16777216;

class RecordType final : public IRecordInfo {
public:
    // A type without fields, holding one reference for the caller; null when out of memory.
    static RecordType* Create(std::string name);

    // Appends a field at the next offset of its alignment (offset and size are computed). False when
    // the record would grow beyond kMaxRecordSize.
    [[nodiscard]] bool AddField(RecordField field);

    const std::string& Name() const noexcept { return m_name; }
    ULONG Size() const noexcept { return m_size; }
    ULONG Alignment() const noexcept { return m_alignment; }
    std::size_t FieldCount() const noexcept { return m_fields.size(); }
    const RecordField& FieldAt(std::size_t index) const { return m_fields[index]; }
    // The field of that name (compared without regard to case), or null.
    const RecordField* FindField(std::string_view name) const noexcept;

    // The element kind of an array field.
    static ElementKind ElementKindOf(const RecordField& field) noexcept;
    // Copies the value of a field of record into value / stores value (converted) into the field. False
    // after raising the value layer's error (10080 for a mismatch, 10001 out of memory).
    [[nodiscard]] static bool LoadField(const RecordField& field, const void* record, Variant& value);
    [[nodiscard]] static bool StoreField(const RecordField& field, void* record, const Variant& value);

    // IUnknown
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override;
    ULONG __stdcall AddRef() override;
    ULONG __stdcall Release() override;
    // IRecordInfo
    HRESULT __stdcall RecordInit(PVOID record) override;
    HRESULT __stdcall RecordClear(PVOID record) override;
    HRESULT __stdcall RecordCopy(PVOID source, PVOID target) override;
    HRESULT __stdcall GetGuid(GUID* guid) override;
    HRESULT __stdcall GetName(BSTR* name) override;
    HRESULT __stdcall GetSize(ULONG* size) override;
    HRESULT __stdcall GetTypeInfo(ITypeInfo** info) override;
    HRESULT __stdcall GetField(PVOID record, LPCOLESTR name, VARIANT* value) override;
    HRESULT __stdcall GetFieldNoCopy(PVOID record, LPCOLESTR name, VARIANT* value, PVOID* data) override;
    HRESULT __stdcall PutField(ULONG flags, PVOID record, LPCOLESTR name, VARIANT* value) override;
    HRESULT __stdcall PutFieldNoCopy(ULONG flags, PVOID record, LPCOLESTR name, VARIANT* value) override;
    HRESULT __stdcall GetFieldNames(ULONG* count, BSTR* names) override;
    BOOL __stdcall IsMatchingType(IRecordInfo* other) override;
    PVOID __stdcall RecordCreate() override;
    HRESULT __stdcall RecordCreateCopy(PVOID source, PVOID* target) override;
    HRESULT __stdcall RecordDestroy(PVOID record) override;

private:
    explicit RecordType(std::string name) : m_name(std::move(name)) {}
    ~RecordType() = default;
    const RecordField* FieldNamed(LPCOLESTR name) const;

    LONG m_references = 1;
    std::string m_name;
    std::vector<RecordField> m_fields;
    // End of the last field; the size is this rounded up to the alignment.
    ULONG m_end = 0;
    ULONG m_size = 0;
    ULONG m_alignment = 1;
};

// The size in bytes of the record a value holds (Variant references followed); false when it holds none.
bool RecordSizeOf(const Variant& value, ULONG& size) noexcept;

// The record type behind an IRecordInfo of this engine, or null for a foreign one.
RecordType* AsRecordType(IRecordInfo* info) noexcept;

} // namespace brannoc
