#include "library/RecordTransfer.h"

#include "host/AnsiText.h"
#include "library/StreamTable.h"
#include "values/ArrayStorage.h"
#include "values/RecordType.h"
#include "values/ValueError.h"
#include "values/Variant.h"

#include <cstring>
#include <string>
#include <vector>

namespace brannoc {

namespace {

// The payload size of a fixed-size kind; 0 for kinds without one.
std::size_t PayloadSize(VARTYPE tag)
{
    switch (tag) {
    case VT_UI1: return 1;
    case VT_I2: case VT_BOOL: return 2;
    case VT_I4: case VT_R4: case VT_ERROR: return 4;
    case VT_R8: case VT_CY: case VT_DATE: return 8;
    case VT_DECIMAL: return 16;
    default: return 0;
    }
}

// The payload bytes of a fixed-size value (its bits within the VARIANT, Decimal as the whole 16 bytes).
const void* PayloadOf(const VARIANT& value)
{
    if (value.vt == VT_DECIMAL)
        return &value.decVal;
    return &value.bVal;
}

// Bytes of one transfer in the making.
class Writer final {
public:
    explicit Writer(bool random) : m_random(random) {}
    void Bytes(const void* data, std::size_t count) { m_bytes.append(static_cast<const char*>(data), count); }
    void Short(short value) { Bytes(&value, 2); }
    void Long(long value) { Bytes(&value, 4); }
    [[nodiscard]] bool CountedString(BSTR text)
    {
        const std::string bytes = AnsiFromWide(std::wstring_view(text ? text : L"", text ? SysStringLen(text) : 0));
        if (bytes.size() > 32767)
            return RaiseValueError(kErrorFileOperation);
        Short(static_cast<short>(bytes.size()));
        m_bytes += bytes;
        return true;
    }
    void FixedString(const wchar_t* text, std::size_t length, std::size_t width)
    {
        std::string bytes = AnsiFromWide(std::wstring_view(text ? text : L"", length));
        bytes.resize(width, ' ');
        m_bytes += bytes;
    }
    bool Random() const { return m_random; }
    const std::string& Result() const { return m_bytes; }

private:
    bool m_random;
    std::string m_bytes;
};

// Reads one transfer; in a Random stream no more than the record's length.
class Reader final {
public:
    Reader(FileStream& stream, bool random) : m_stream(stream), m_random(random), m_budget(stream.RecordLength()) {}
    [[nodiscard]] bool Bytes(void* target, std::size_t count)
    {
        if (m_random) {
            if (static_cast<long>(count) > m_budget)
                return RaiseValueError(kErrorRecordLengthExceeded);
            m_budget -= static_cast<long>(count);
        }
        const long got = m_stream.ReadBytes(static_cast<char*>(target), count);
        if (got < 0)
            return RaiseValueError(kErrorInputMismatch);
        // The file ends before the field does, in Random and Binary streams alike.
        if (static_cast<std::size_t>(got) < count)
            return RaiseValueError(kErrorReadPastEnd);
        return true;
    }
    [[nodiscard]] bool Short(short& value) { return Bytes(&value, 2); }
    [[nodiscard]] bool Long(long& value) { return Bytes(&value, 4); }
    [[nodiscard]] bool Text(std::size_t count, Bstr& text)
    {
        std::string bytes(count, '\0');
        if (count && !Bytes(bytes.data(), count))
            return false;
        return text.Assign(WideFromAnsi(bytes)) || RaiseValueError(kErrorOutOfMemory);
    }
    [[nodiscard]] bool CountedString(Bstr& text)
    {
        short count = 0;
        if (!Short(count))
            return false;
        if (count < 0)
            return RaiseValueError(kErrorFileOperation);
        return Text(static_cast<std::size_t>(count), text);
    }
    bool Random() const { return m_random; }

private:
    FileStream& m_stream;
    bool m_random;
    long m_budget;
};

bool PutVariant(Writer& out, const VARIANT& value);
bool GetVariant(Reader& in, VARIANT& value);
bool PutRecord(Writer& out, const void* record, const RecordType& type);
bool GetRecord(Reader& in, void* record, const RecordType& type);

// An array's elements (and, for a dynamic or nested array, its dimension header first).
bool PutArray(Writer& out, SAFEARRAY* array, bool header, UINT fixedLength)
{
    if (header) {
        const UINT dimensions = array ? SafeArrayGetDim(array) : 0;
        out.Short(static_cast<short>(dimensions));
        // The descriptor keeps its dimensions right to left; the file has them as written.
        for (UINT i = dimensions; i-- > 0;) {
            out.Long(static_cast<long>(array->rgsabound[i].cElements));
            out.Long(array->rgsabound[i].lLbound);
        }
    }
    if (!array || !array->pvData)
        return true;
    const ElementKind kind = ElementKindOf(array);
    const ULONG count = ElementCount(array);
    const char* data = static_cast<const char*>(array->pvData);
    if (const std::size_t size = PayloadSize(kind.tag); size != 0 && kind.tag != VT_DECIMAL) {
        out.Bytes(data, size * count);
        return true;
    }
    for (ULONG i = 0; i < count; ++i) {
        const char* element = data + static_cast<std::size_t>(i) * array->cbElements;
        switch (kind.tag) {
        case VT_DECIMAL: out.Bytes(element, 16); break;
        case VT_BSTR: {
            const BSTR text = *reinterpret_cast<const BSTR*>(element);
            if (fixedLength)
                out.FixedString(text, text ? SysStringLen(text) : 0, fixedLength);
            else if (!out.CountedString(text))
                return false;
            break;
        }
        case VT_VARIANT:
            if (!PutVariant(out, *reinterpret_cast<const VARIANT*>(element)))
                return false;
            break;
        case VT_RECORD:
            if (!PutRecord(out, element, *static_cast<RecordType*>(kind.record)))
                return false;
            break;
        default: return RaiseValueError(kErrorTypeMismatch);
        }
    }
    return true;
}

bool GetArray(Reader& in, SAFEARRAY*& array, bool header, const ElementKind& declared)
{
    if (header) {
        short dimensions = 0;
        if (!in.Short(dimensions))
            return false;
        if (dimensions < 0 || dimensions > 6)
            return RaiseValueError(kErrorInputMismatch);
        std::vector<LONG> lower(static_cast<std::size_t>(dimensions)), upper(static_cast<std::size_t>(dimensions));
        for (short i = 0; i < dimensions; ++i) {
            long count = 0, low = 0;
            if (!in.Long(count) || !in.Long(low))
                return false;
            if (count < 0)
                return RaiseValueError(kErrorInputMismatch);
            lower[static_cast<std::size_t>(i)] = low;
            upper[static_cast<std::size_t>(i)] = low + count - 1;
        }
        // Reading re-dimensions the array to the bounds in the file.
        if (array && !IsFixedArray(array)) {
            DestroyArray(array);
            array = nullptr;
        }
        if (!array && dimensions > 0) {
            array = CreateArray(declared, lower.data(), upper.data(), static_cast<UINT>(dimensions), false);
            if (!array)
                return RaiseValueError(kErrorOutOfMemory);
        }
    }
    if (!array || !array->pvData)
        return true;
    const ElementKind kind = ElementKindOf(array);
    const ULONG count = ElementCount(array);
    char* data = static_cast<char*>(array->pvData);
    if (const std::size_t size = PayloadSize(kind.tag); size != 0)
        return in.Bytes(data, size * count);
    for (ULONG i = 0; i < count; ++i) {
        char* element = data + static_cast<std::size_t>(i) * array->cbElements;
        switch (kind.tag) {
        case VT_BSTR: {
            Bstr text;
            if (!(declared.fixedLength ? in.Text(declared.fixedLength, text) : in.CountedString(text)))
                return false;
            ReplaceString(*reinterpret_cast<BSTR*>(element), std::move(text));
            break;
        }
        case VT_VARIANT:
            if (!GetVariant(in, *reinterpret_cast<VARIANT*>(element)))
                return false;
            break;
        case VT_RECORD:
            if (!GetRecord(in, element, *static_cast<RecordType*>(kind.record)))
                return false;
            break;
        default: return RaiseValueError(kErrorTypeMismatch);
        }
    }
    return true;
}

bool PutVariant(Writer& out, const VARIANT& raw)
{
    const VARIANT& value = *FollowByRefChain(&raw);
    const VARTYPE tag = value.vt & static_cast<VARTYPE>(~VT_BYREF);
    if (tag == VT_RECORD)
        return RaiseValueError(kErrorNotImplemented);
    if ((tag & VT_ARRAY) != 0) {
        out.Short(static_cast<short>(tag));
        SAFEARRAY* array = (value.vt & VT_BYREF) ? *value.pparray : value.parray;
        return PutArray(out, array, true, 0);
    }
    if (value.vt & VT_BYREF) {
        Variant copy;
        if (!copy.CopyIndirectFrom(value))
            return RaiseValueError(kErrorTypeMismatch);
        return PutVariant(out, copy.Raw());
    }
    switch (tag) {
    case VT_EMPTY:
    case VT_NULL: out.Short(static_cast<short>(tag)); return true;
    case VT_BSTR: out.Short(VT_BSTR); return out.CountedString(value.bstrVal);
    default: break;
    }
    const std::size_t size = PayloadSize(tag);
    if (size == 0)
        return RaiseValueError(kErrorTypeMismatch);
    out.Short(static_cast<short>(tag));
    out.Bytes(PayloadOf(value), size);
    return true;
}

bool GetVariant(Reader& in, VARIANT& value)
{
    short tag = 0;
    if (!in.Short(tag))
        return false;
    Variant result;
    const VARTYPE kind = static_cast<VARTYPE>(tag);
    if ((kind & VT_ARRAY) != 0) {
        ElementKind element;
        element.tag = kind & VT_TYPEMASK;
        if (PayloadSize(element.tag) == 0 && element.tag != VT_BSTR && element.tag != VT_VARIANT)
            return RaiseValueError(kErrorTypeMismatch);
        SAFEARRAY* read = nullptr;
        const bool complete = GetArray(in, read, true, element);
        SafeArray array(read);
        if (!complete)
            return false;
        result.SetArray(array.Detach(), element.tag);
    } else if (kind == VT_EMPTY) {
    } else if (kind == VT_NULL) {
        result.SetNull();
    } else if (kind == VT_BSTR) {
        Bstr text;
        if (!in.CountedString(text))
            return false;
        result.SetString(std::move(text));
    } else {
        const std::size_t size = PayloadSize(kind);
        if (size == 0)
            return RaiseValueError(kErrorTypeMismatch);
        VARIANT& raw = result.Raw();
        if (!in.Bytes(kind == VT_DECIMAL ? static_cast<void*>(&raw.decVal) : static_cast<void*>(&raw.bVal), size))
            return false;
        raw.vt = kind;
    }
    // The value read replaces the old one, which goes through the engine's own release (records and
    // arrays of records included).
    Variant old;
    old.Attach(value);
    result.Detach(value);
    return true;
}

bool PutRecord(Writer& out, const void* record, const RecordType& type)
{
    const char* base = static_cast<const char*>(record);
    for (std::size_t i = 0; i < type.FieldCount(); ++i) {
        const RecordField& field = type.FieldAt(i);
        const char* at = base + field.offset;
        switch (field.kind) {
        case FieldKind::Plain: out.Bytes(at, PayloadSize(field.tag)); break;
        case FieldKind::String:
            if (!out.CountedString(*reinterpret_cast<const BSTR*>(at)))
                return false;
            break;
        case FieldKind::FixedString:
            out.FixedString(reinterpret_cast<const wchar_t*>(at), field.length, field.length);
            break;
        case FieldKind::Variant:
            if (!PutVariant(out, *reinterpret_cast<const VARIANT*>(at)))
                return false;
            break;
        case FieldKind::Record:
            if (!PutRecord(out, at, *field.record))
                return false;
            break;
        case FieldKind::Array:
            if (!PutArray(out, *reinterpret_cast<SAFEARRAY* const*>(at), field.bounds.empty(), field.elementLength))
                return false;
            break;
        case FieldKind::Object: return RaiseValueError(kErrorTypeMismatch);
        }
    }
    return true;
}

bool GetRecord(Reader& in, void* record, const RecordType& type)
{
    char* base = static_cast<char*>(record);
    for (std::size_t i = 0; i < type.FieldCount(); ++i) {
        const RecordField& field = type.FieldAt(i);
        char* at = base + field.offset;
        switch (field.kind) {
        case FieldKind::Plain:
            if (!in.Bytes(at, PayloadSize(field.tag)))
                return false;
            break;
        case FieldKind::String: {
            Bstr text;
            if (!in.CountedString(text))
                return false;
            ReplaceString(*reinterpret_cast<BSTR*>(at), std::move(text));
            break;
        }
        case FieldKind::FixedString: {
            Bstr text;
            if (!in.Text(field.length, text))
                return false;
            std::wstring padded(text.View());
            padded.resize(field.length, L' ');
            std::memcpy(at, padded.data(), field.length * sizeof(wchar_t));
            break;
        }
        case FieldKind::Variant:
            if (!GetVariant(in, *reinterpret_cast<VARIANT*>(at)))
                return false;
            break;
        case FieldKind::Record:
            if (!GetRecord(in, at, *field.record))
                return false;
            break;
        case FieldKind::Array: {
            ElementKind kind = RecordType::ElementKindOf(field);
            if (!GetArray(in, *reinterpret_cast<SAFEARRAY**>(at), field.bounds.empty(), kind))
                return false;
            break;
        }
        case FieldKind::Object: return RaiseValueError(kErrorTypeMismatch);
        }
    }
    return true;
}

// Arrays held by a variable: the array and the element kind it was declared with.
SAFEARRAY** ArraySlot(VARIANT& storage)
{
    VARIANT* holder = FollowByRefChain(&storage);
    if ((holder->vt & VT_ARRAY) == 0)
        return nullptr;
    return (holder->vt & VT_BYREF) ? holder->pparray : &holder->parray;
}

} // namespace

bool PutVariable(FileStream& stream, const VARIANT& storage, TypeCode type)
{
    const bool random = stream.Mode() == StreamMode::kRandom;
    Writer out(random);
    const VARIANT& value = *FollowByRefChain(&storage);
    bool made = true;
    if (type.IsArray()) {
        SAFEARRAY** slot = ArraySlot(const_cast<VARIANT&>(storage));
        SAFEARRAY* array = slot ? *slot : nullptr;
        const bool header = random && !(array && IsFixedArray(array));
        made = PutArray(out, array, header, type.Scalar().IsFixedString() ? static_cast<UINT>(type.Scalar().FixedLength()) : 0);
    } else if (type.IsUserType()) {
        if ((value.vt & VT_TYPEMASK) != VT_RECORD || !value.pvRecord)
            return RaiseValueError(kErrorTypeMismatch);
        made = PutRecord(out, value.pvRecord, *static_cast<RecordType*>(value.pRecInfo));
    } else if (type.IsVariant()) {
        made = PutVariant(out, value);
    } else if (type.IsFixedString()) {
        const BSTR text = value.vt == VT_BSTR ? value.bstrVal : nullptr;
        out.FixedString(text, text ? SysStringLen(text) : 0, static_cast<std::size_t>(type.FixedLength()));
    } else if (type.IsString()) {
        const BSTR text = value.vt == VT_BSTR ? value.bstrVal : nullptr;
        if (random) {
            made = out.CountedString(text);
        } else {
            const std::string bytes = AnsiFromWide(std::wstring_view(text ? text : L"", text ? SysStringLen(text) : 0));
            out.Bytes(bytes.data(), bytes.size());
        }
    } else {
        const std::size_t size = PayloadSize(value.vt);
        if (size == 0)
            return RaiseValueError(kErrorTypeMismatch);
        out.Bytes(PayloadOf(value), size);
    }
    if (!made)
        return false;
    if (random && static_cast<long>(out.Result().size()) > stream.RecordLength())
        return RaiseValueError(kErrorRecordLengthExceeded);
    return stream.WriteBytes(out.Result().data(), out.Result().size()) || RaiseValueError(kErrorFileOperation);
}

bool GetVariable(FileStream& stream, VARIANT& storage, TypeCode type)
{
    const bool random = stream.Mode() == StreamMode::kRandom;
    Reader in(stream, random);
    VARIANT& value = *FollowByRefChain(&storage);
    if (type.IsArray()) {
        SAFEARRAY** slot = ArraySlot(storage);
        if (!slot)
            return RaiseValueError(kErrorTypeMismatch);
        const bool header = random && !(*slot && IsFixedArray(*slot));
        ElementKind kind = *slot ? ElementKindOf(*slot) : ElementKind{static_cast<VARTYPE>(value.vt & VT_TYPEMASK)};
        if (type.Scalar().IsFixedString())
            kind.fixedLength = static_cast<UINT>(type.Scalar().FixedLength());
        return GetArray(in, *slot, header, kind);
    }
    if (type.IsUserType()) {
        if ((value.vt & VT_TYPEMASK) != VT_RECORD || !value.pvRecord)
            return RaiseValueError(kErrorTypeMismatch);
        return GetRecord(in, value.pvRecord, *static_cast<RecordType*>(value.pRecInfo));
    }
    if (type.IsVariant())
        return GetVariant(in, value);
    if (type.IsFixedString() || type.IsString()) {
        Bstr text;
        bool read;
        if (type.IsFixedString())
            read = in.Text(static_cast<std::size_t>(type.FixedLength()), text);
        else if (random)
            read = in.CountedString(text);
        else
            // Binary: as many characters as the variable holds now.
            read = in.Text(value.vt == VT_BSTR && value.bstrVal ? SysStringLen(value.bstrVal) : 0, text);
        if (!read)
            return false;
        if (value.vt != VT_BSTR) {
            value.vt = VT_BSTR;
            value.bstrVal = nullptr;
        }
        ReplaceString(value.bstrVal, std::move(text));
        return true;
    }
    const std::size_t size = PayloadSize(value.vt);
    if (size == 0)
        return RaiseValueError(kErrorTypeMismatch);
    // Read into a copy first: a failed read leaves the variable as it was.
    const VARTYPE tag = value.vt;
    VARIANT copy = value;
    if (!in.Bytes(tag == VT_DECIMAL ? static_cast<void*>(&copy.decVal) : static_cast<void*>(&copy.bVal), size))
        return false;
    copy.vt = tag;
    value = copy;
    return true;
}

} // namespace brannoc
