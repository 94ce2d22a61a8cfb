#include "values/RecordType.h"

#include "values/ComRef.h"
#include "values/Conversion.h"
#include "values/TaskMemory.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <cctype>
#include <cstring>
#include <new>

namespace brannoc {

namespace {

// Answered by QueryInterface so that the engine recognises its own record types.
constexpr GUID kRecordTypeId = {0x6f1c2b7e, 0x51a4, 0x4d0e, {0x9b, 0x3a, 0x2c, 0x5e, 0x71, 0x0d, 0x8a, 0x44}};

ULONG RoundUp(ULONG value, ULONG alignment) { return (value + alignment - 1) / alignment * alignment; }

ULONG PlainSize(VARTYPE tag)
{
    switch (tag) {
    case VT_UI1: return 1;
    case VT_I2:
    case VT_BOOL: return 2;
    case VT_I4:
    case VT_R4:
    case VT_ERROR: return 4;
    case VT_DECIMAL: return 16;
    default: return 8;
    }
}

// Bytes and alignment of a field (see the layout rule in the header).
void Measure(const RecordField& field, ULONG& size, ULONG& alignment)
{
    switch (field.kind) {
    case FieldKind::Plain:
        size = PlainSize(field.tag);
        alignment = size < 4 ? size : 4;
        return;
    case FieldKind::FixedString:
        size = 2 * field.length;
        alignment = 2;
        return;
    case FieldKind::Variant:
        size = sizeof(VARIANT);
        alignment = 4;
        return;
    case FieldKind::Record:
        size = field.record ? field.record->Size() : 0;
        alignment = field.record ? field.record->Alignment() : 1;
        return;
    default:
        // String, Object and Array: one reference.
        size = 4;
        alignment = 4;
        return;
    }
}

char* At(void* record, const RecordField& field) { return static_cast<char*>(record) + field.offset; }
const char* At(const void* record, const RecordField& field)
{
    return static_cast<const char*>(record) + field.offset;
}

bool SameText(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

// Starts the fields of a record that are not zero bits at their zero value.
bool InitializeFields(const std::vector<RecordField>& fields, void* record)
{
    for (const RecordField& field : fields) {
        switch (field.kind) {
        case FieldKind::FixedString: {
            auto* characters = reinterpret_cast<wchar_t*>(At(record, field));
            for (UINT i = 0; i < field.length; ++i)
                characters[i] = L' ';
            break;
        }
        case FieldKind::Record:
            if (field.record && FAILED(field.record->RecordInit(At(record, field))))
                return false;
            break;
        case FieldKind::Array: {
            if (field.bounds.empty())
                break;
            LONG lower[8];
            LONG upper[8];
            const UINT dimensions = static_cast<UINT>(field.bounds.size() < 8 ? field.bounds.size() : 8);
            for (UINT d = 0; d < dimensions; ++d) {
                lower[d] = field.bounds[d].first;
                upper[d] = field.bounds[d].second;
            }
            SAFEARRAY* array = CreateArray(RecordType::ElementKindOf(field), lower, upper, dimensions, true);
            if (!array)
                return false;
            *reinterpret_cast<SAFEARRAY**>(At(record, field)) = array;
            break;
        }
        default:
            break;
        }
    }
    return true;
}

bool CopyField(const RecordField& field, const void* source, void* target)
{
    switch (field.kind) {
    case FieldKind::Plain:
    case FieldKind::FixedString:
        std::memcpy(At(target, field), At(source, field), field.size);
        return true;
    case FieldKind::String: {
        const BSTR text = *reinterpret_cast<const BSTR*>(At(source, field));
        if (!text)
            return true;
        Bstr copy(text, SysStringLen(text));
        if (!copy.Get())
            return false;
        *reinterpret_cast<BSTR*>(At(target, field)) = copy.Detach();
        return true;
    }
    case FieldKind::Variant: {
        Variant copy;
        if (!copy.CopyFrom(*reinterpret_cast<const VARIANT*>(At(source, field))))
            return false;
        copy.Detach(*reinterpret_cast<VARIANT*>(At(target, field)));
        return true;
    }
    case FieldKind::Object: {
        IUnknown* object = *reinterpret_cast<IUnknown* const*>(At(source, field));
        if (object)
            object->AddRef();
        *reinterpret_cast<IUnknown**>(At(target, field)) = object;
        return true;
    }
    case FieldKind::Record:
        return !field.record ||
               SUCCEEDED(field.record->RecordCopy(const_cast<char*>(At(source, field)), At(target, field)));
    case FieldKind::Array: {
        SAFEARRAY* array = *reinterpret_cast<SAFEARRAY* const*>(At(source, field));
        if (!array)
            return true;
        SAFEARRAY* copy = CopyArray(array);
        if (!copy)
            return false;
        // A fixed array of a record stays fixed in the record's copy.
        if (!field.bounds.empty())
            copy->fFeatures |= FADF_FIXEDSIZE;
        *reinterpret_cast<SAFEARRAY**>(At(target, field)) = copy;
        return true;
    }
    }
    return true;
}

// A VARIANT of the field's kind around the field's current payload (numbers, strings, objects).
VARIANT ViewOf(const RecordField& field, const void* record)
{
    VARIANT view;
    VariantInit(&view);
    view.vt = field.kind == FieldKind::Plain ? field.tag : field.kind == FieldKind::String ? VT_BSTR : VT_DISPATCH;
    if (field.kind == FieldKind::Plain && field.tag == VT_DECIMAL) {
        view.decVal = *reinterpret_cast<const DECIMAL*>(At(record, field));
        view.vt = VT_DECIMAL;
    } else {
        std::memcpy(reinterpret_cast<char*>(&view) + 8, At(record, field), field.size);
    }
    return view;
}

void PutBack(const RecordField& field, void* record, VARIANT& view)
{
    if (field.kind == FieldKind::Plain && field.tag == VT_DECIMAL) {
        view.vt = 0;
        *reinterpret_cast<DECIMAL*>(At(record, field)) = view.decVal;
        return;
    }
    std::memcpy(At(record, field), reinterpret_cast<const char*>(&view) + 8, field.size);
}

// The record a value holds (Variant references followed): its block and type, or false.
bool RecordIn(const Variant& value, void*& block, IRecordInfo*& info)
{
    const VARIANT& raw = *FollowByRefChain(&value.Raw());
    if ((raw.vt & ~VT_BYREF) != VT_RECORD)
        return false;
    block = raw.pvRecord;
    info = raw.pRecInfo;
    return block && info;
}

} // namespace

// ---- Reference holder ----

RecordTypeRef::RecordTypeRef(const RecordTypeRef& other) noexcept : m_type(other.m_type)
{
    if (m_type)
        m_type->AddRef();
}

RecordTypeRef::~RecordTypeRef()
{
    if (m_type)
        m_type->Release();
}

// ---- Building ----

RecordType* RecordType::Create(std::string name)
{
    return new (std::nothrow) RecordType(std::move(name));
}

bool RecordType::AddField(RecordField field)
{
    ULONG size = 0;
    ULONG alignment = 1;
    Measure(field, size, alignment);
    const unsigned long long offset = RoundUp(m_end, alignment);
    if (offset + size > kMaxRecordSize)
        return false;
    field.offset = static_cast<ULONG>(offset);
    field.size = size;
    m_end = static_cast<ULONG>(offset + size);
    if (alignment > m_alignment)
        m_alignment = alignment;
    m_size = RoundUp(m_end, m_alignment);
    m_fields.push_back(std::move(field));
    return m_size <= kMaxRecordSize;
}

const RecordField* RecordType::FindField(std::string_view name) const noexcept
{
    for (const RecordField& field : m_fields) {
        if (SameText(field.name, name))
            return &field;
    }
    return nullptr;
}

const RecordField* RecordType::FieldNamed(LPCOLESTR name) const
{
    if (!name)
        return nullptr;
    std::string narrow;
    for (const wchar_t* p = name; *p; ++p) {
        if (*p > 0x7F)
            return nullptr;
        narrow += static_cast<char>(*p);
    }
    return FindField(narrow);
}

ElementKind RecordType::ElementKindOf(const RecordField& field) noexcept
{
    ElementKind kind;
    kind.tag = field.elementTag;
    kind.fixedLength = field.elementLength;
    kind.record = field.elementTag == VT_RECORD ? field.record.Get() : nullptr;
    return kind;
}

// ---- Fields as values ----

bool RecordType::LoadField(const RecordField& field, const void* record, Variant& value)
{
    switch (field.kind) {
    case FieldKind::Plain:
    case FieldKind::String:
    case FieldKind::Object: {
        const VARIANT view = ViewOf(field, record);
        return value.CopyFrom(view) || RaiseValueError(kErrorOutOfMemory);
    }
    case FieldKind::FixedString:
        return value.SetString(std::wstring_view(reinterpret_cast<const wchar_t*>(At(record, field)), field.length)) ||
               RaiseValueError(kErrorOutOfMemory);
    case FieldKind::Variant:
        return value.CopyIndirectFrom(*reinterpret_cast<const VARIANT*>(At(record, field))) ||
               RaiseValueError(kErrorOutOfMemory);
    case FieldKind::Record: {
        void* copy = nullptr;
        if (!field.record || FAILED(field.record->RecordCreateCopy(const_cast<char*>(At(record, field)), &copy)))
            return RaiseValueError(kErrorOutOfMemory);
        field.record->AddRef();
        value.SetRecord(copy, field.record.Get());
        return true;
    }
    case FieldKind::Array:
        return CopyArrayInto(*reinterpret_cast<SAFEARRAY* const*>(At(record, field)), field.elementTag, value) ||
               RaiseValueError(kErrorOutOfMemory);
    }
    return false;
}

bool RecordType::StoreField(const RecordField& field, void* record, const Variant& value)
{
    switch (field.kind) {
    case FieldKind::Plain:
    case FieldKind::String:
    case FieldKind::Object: {
        VARIANT view = ViewOf(field, record);
        if (!StorageCell(view.vt).Store(view, value))
            return false;
        PutBack(field, record, view);
        return true;
    }
    case FieldKind::FixedString: {
        Variant text(value);
        if (text.Tag() != VT_BSTR && !ChangeType(text, VT_BSTR))
            return false;
        const std::wstring_view given = text.StringView();
        auto* characters = reinterpret_cast<wchar_t*>(At(record, field));
        for (UINT i = 0; i < field.length; ++i)
            characters[i] = i < given.size() ? given[i] : L' ';
        return true;
    }
    case FieldKind::Variant:
        return StorageCell(VT_VARIANT).Store(*reinterpret_cast<VARIANT*>(At(record, field)), value);
    case FieldKind::Record: {
        void* block = nullptr;
        IRecordInfo* info = nullptr;
        if (!field.record || !RecordIn(value, block, info) ||
            (info != field.record.Get() && !field.record->IsMatchingType(info)))
            return RaiseValueError(kErrorTypeMismatch);
        void* target = At(record, field);
        if (block == target)
            return true;
        if (FAILED(field.record->RecordCopy(block, target))) {
            (void)field.record->RecordInit(target);
            return RaiseValueError(kErrorOutOfMemory);
        }
        return true;
    }
    case FieldKind::Array: {
        if (!field.bounds.empty())
            return RaiseValueError(kErrorExpectingDynamicArray);
        Variant given(value);
        SAFEARRAY* array = nullptr;
        if (const long error = TakeArrayFor(ElementKindOf(field), given, array); error != 0)
            return RaiseValueError(error);
        auto& slot = *reinterpret_cast<SAFEARRAY**>(At(record, field));
        DestroyArray(slot);
        slot = array;
        return true;
    }
    }
    return false;
}

// ---- IUnknown ----

HRESULT __stdcall RecordType::QueryInterface(REFIID id, void** object)
{
    if (!object)
        return E_POINTER;
    if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IRecordInfo) || IsEqualIID(id, kRecordTypeId)) {
        *object = static_cast<IRecordInfo*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG __stdcall RecordType::AddRef() { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }

ULONG __stdcall RecordType::Release()
{
    const LONG left = InterlockedDecrement(&m_references);
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

// ---- IRecordInfo ----

HRESULT __stdcall RecordType::RecordInit(PVOID record)
{
    if (!record)
        return E_INVALIDARG;
    std::memset(record, 0, m_size);
    if (!InitializeFields(m_fields, record)) {
        (void)RecordClear(record);
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

HRESULT __stdcall RecordType::RecordClear(PVOID record)
{
    if (!record)
        return E_INVALIDARG;
    for (const RecordField& field : m_fields) {
        char* place = At(record, field);
        switch (field.kind) {
        case FieldKind::String: {
            Bstr owner;
            owner.Attach(*reinterpret_cast<BSTR*>(place));
            break;
        }
        case FieldKind::Variant: {
            Variant owner;
            owner.Attach(*reinterpret_cast<VARIANT*>(place));
            break;
        }
        case FieldKind::Object: {
            Variant owner;
            owner.SetUnknown(*reinterpret_cast<IUnknown**>(place), false);
            break;
        }
        case FieldKind::Record:
            if (field.record)
                (void)field.record->RecordClear(place);
            break;
        case FieldKind::Array:
            DestroyArray(*reinterpret_cast<SAFEARRAY**>(place));
            break;
        default:
            break;
        }
    }
    // A cleared record holds nothing, so clearing it again is harmless.
    std::memset(record, 0, m_size);
    return S_OK;
}

HRESULT __stdcall RecordType::RecordCopy(PVOID source, PVOID target)
{
    if (!source || !target)
        return E_INVALIDARG;
    if (source == target)
        return S_OK;
    // The target is raw memory: what it held (if anything) is the caller's to release first.
    std::memset(target, 0, m_size);
    for (const RecordField& field : m_fields) {
        if (!CopyField(field, source, target)) {
            (void)RecordClear(target);
            return E_OUTOFMEMORY;
        }
    }
    return S_OK;
}

HRESULT __stdcall RecordType::GetGuid(GUID* guid)
{
    if (!guid)
        return E_POINTER;
    *guid = GUID_NULL;
    return S_OK;
}

HRESULT __stdcall RecordType::GetName(BSTR* name)
{
    if (!name)
        return E_POINTER;
    const int length = MultiByteToWideChar(CP_ACP, 0, m_name.data(), static_cast<int>(m_name.size()), nullptr, 0);
    Bstr text(nullptr, static_cast<UINT>(length));
    if (!text.Get())
        return E_OUTOFMEMORY;
    MultiByteToWideChar(CP_ACP, 0, m_name.data(), static_cast<int>(m_name.size()), text.Get(), length);
    *name = text.Detach();
    return S_OK;
}

HRESULT __stdcall RecordType::GetSize(ULONG* size)
{
    if (!size)
        return E_POINTER;
    *size = m_size;
    return S_OK;
}

HRESULT __stdcall RecordType::GetTypeInfo(ITypeInfo** info)
{
    // Records of the language are described by this object, not by type information.
    if (info)
        *info = nullptr;
    return E_NOTIMPL;
}

HRESULT __stdcall RecordType::GetField(PVOID record, LPCOLESTR name, VARIANT* value)
{
    const RecordField* field = FieldNamed(name);
    if (!record || !value || !field)
        return E_INVALIDARG;
    // No raise handler is asked: the answer is the status.
    const RaiseFn previous = SetRaiseHandler(nullptr);
    Variant loaded;
    const bool ok = LoadField(*field, record, loaded);
    (void)SetRaiseHandler(previous);
    if (!ok)
        return E_OUTOFMEMORY;
    VariantInit(value);
    loaded.Detach(*value);
    return S_OK;
}

HRESULT __stdcall RecordType::GetFieldNoCopy(PVOID record, LPCOLESTR name, VARIANT* value, PVOID* data)
{
    const RecordField* field = FieldNamed(name);
    if (!record || !value || !data || !field)
        return E_INVALIDARG;
    char* place = At(record, *field);
    VariantInit(value);
    switch (field->kind) {
    case FieldKind::Plain: value->vt = static_cast<VARTYPE>(VT_BYREF | field->tag); break;
    case FieldKind::String: value->vt = VT_BYREF | VT_BSTR; break;
    case FieldKind::Variant: value->vt = VT_BYREF | VT_VARIANT; break;
    case FieldKind::Object: value->vt = VT_BYREF | VT_DISPATCH; break;
    case FieldKind::Array: value->vt = static_cast<VARTYPE>(VT_BYREF | VT_ARRAY | field->elementTag); break;
    case FieldKind::Record:
        value->vt = VT_BYREF | VT_RECORD;
        value->pvRecord = place;
        value->pRecInfo = field->record.Get();
        *data = place;
        return S_OK;
    default:
        // Fixed-length strings have no VARIANT form that points at them.
        return DISP_E_TYPEMISMATCH;
    }
    value->byref = place;
    *data = place;
    return S_OK;
}

HRESULT __stdcall RecordType::PutField(ULONG flags, PVOID record, LPCOLESTR name, VARIANT* value)
{
    const RecordField* field = FieldNamed(name);
    if (!record || !value || !field)
        return E_INVALIDARG;
    (void)flags;
    Variant given;
    if (!given.CopyIndirectFrom(*value))
        return E_OUTOFMEMORY;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool ok = StoreField(*field, record, given);
    (void)SetRaiseHandler(previous);
    return ok ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT __stdcall RecordType::PutFieldNoCopy(ULONG flags, PVOID record, LPCOLESTR name, VARIANT* value)
{
    return PutField(flags, record, name, value);
}

HRESULT __stdcall RecordType::GetFieldNames(ULONG* count, BSTR* names)
{
    if (!count)
        return E_INVALIDARG;
    if (!names) {
        *count = static_cast<ULONG>(m_fields.size());
        return S_OK;
    }
    const ULONG given = *count < m_fields.size() ? *count : static_cast<ULONG>(m_fields.size());
    for (ULONG i = 0; i < given; ++i) {
        const std::string& name = m_fields[i].name;
        Bstr text(nullptr, static_cast<UINT>(name.size()));
        if (!text.Get())
            return E_OUTOFMEMORY;
        for (std::size_t c = 0; c < name.size(); ++c)
            text.Get()[c] = static_cast<unsigned char>(name[c]);
        names[i] = text.Detach();
    }
    *count = given;
    return S_OK;
}

BOOL __stdcall RecordType::IsMatchingType(IRecordInfo* other)
{
    // Each Type statement makes one record type; records match only records of the same one.
    return other == static_cast<IRecordInfo*>(this) ? TRUE : FALSE;
}

PVOID __stdcall RecordType::RecordCreate()
{
    TaskMemory record = TaskMemory::Allocate(m_size);
    if (!record || FAILED(RecordInit(record.Get())))
        return nullptr;
    return record.Detach();
}

HRESULT __stdcall RecordType::RecordCreateCopy(PVOID source, PVOID* target)
{
    if (!source || !target)
        return E_INVALIDARG;
    *target = nullptr;
    TaskMemory record = TaskMemory::Allocate(m_size);
    if (!record || FAILED(RecordCopy(source, record.Get())))
        return E_OUTOFMEMORY;
    *target = record.Detach();
    return S_OK;
}

HRESULT __stdcall RecordType::RecordDestroy(PVOID record)
{
    if (!record)
        return S_OK;
    // The block that RecordCreate or RecordCreateCopy handed out comes back here to be freed.
    (void)RecordClear(record);
    CoTaskMemFree(record);
    return S_OK;
}

bool RecordSizeOf(const Variant& value, ULONG& size) noexcept
{
    const VARIANT& raw = *FollowByRefChain(&value.Raw());
    return (raw.vt & ~VT_BYREF) == VT_RECORD && raw.pRecInfo && SUCCEEDED(raw.pRecInfo->GetSize(&size));
}

RecordType* AsRecordType(IRecordInfo* info) noexcept
{
    if (!info)
        return nullptr;
    // The answer is borrowed: info keeps the type alive, so the query's own reference goes at once.
    ComRef<IRecordInfo> found;
    if (FAILED(info->QueryInterface(kRecordTypeId, reinterpret_cast<void**>(found.Out()))) || !found)
        return nullptr;
    return static_cast<RecordType*>(found.Get());
}

} // namespace brannoc
