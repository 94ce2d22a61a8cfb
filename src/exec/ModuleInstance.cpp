#include "exec/ModuleInstance.h"

#include "exec/ErrorMessages.h"
#include "exec/EventConnection.h"
#include "frontend/Module.h"

#include <algorithm>

namespace brannoc {

void InitializeTypedSlot(VARIANT& storage, unsigned short code)
{
    VariantInit(&storage);
    const TypeCode type(code);
    if (type.IsArray()) {
        // A dynamic array that is not dimensioned: an array of its element kind without a descriptor.
        storage.vt = static_cast<VARTYPE>(VT_ARRAY | ArrayElementTag(code));
        storage.parray = nullptr;
        return;
    }
    if (type.IsUserType())
        return;
    if (type.IsString() || type.IsFixedString()) {
        // A null BSTR is the empty string; it costs no allocation. A fixed-length string always holds
        // its length in characters, blanks to begin with.
        storage.vt = VT_BSTR;
        storage.bstrVal = nullptr;
        if (type.IsFixedString()) {
            const UINT length = static_cast<UINT>(type.FixedLength());
            storage.bstrVal = SysAllocStringLen(nullptr, length);
            if (!storage.bstrVal)
                return;
            for (UINT i = 0; i < length; ++i)
                storage.bstrVal[i] = L' ';
        }
        return;
    }
    if (type.IsObject()) {
        storage.vt = VT_DISPATCH;
        storage.pdispVal = nullptr;
        return;
    }
    if (type.IsNumeric()) {
        storage.vt = type.ValueTag();
        if (storage.vt == VT_DECIMAL) {
            storage.decVal = DECIMAL{};
            storage.vt = VT_DECIMAL;
        }
    }
}

bool InitializeRecordSlot(VARIANT& storage, IRecordInfo* record)
{
    VariantInit(&storage);
    if (!record)
        return false;
    void* block = record->RecordCreate();
    if (!block)
        return false;
    record->AddRef();
    storage.vt = VT_RECORD;
    storage.pvRecord = block;
    storage.pRecInfo = record;
    return true;
}

VARTYPE ArrayElementTag(unsigned short code)
{
    const TypeCode element = TypeCode(code).Scalar();
    if (element.IsUserType())
        return VT_RECORD;
    if (element.IsFixedString())
        return VT_BSTR;
    return static_cast<VARTYPE>(element.ValueTag());
}

ElementKind ArrayElementKind(unsigned short code, IRecordInfo* record)
{
    ElementKind kind;
    kind.tag = ArrayElementTag(code);
    const TypeCode element = TypeCode(code).Scalar();
    if (element.IsFixedString())
        kind.fixedLength = static_cast<UINT>(element.FixedLength());
    if (kind.tag == VT_RECORD)
        kind.record = record;
    return kind;
}

bool InitializeArraySlot(VARIANT& storage, unsigned short code, const long* lower, const long* upper,
                         std::size_t dimensions, IRecordInfo* record, bool fixed)
{
    const ElementKind kind = ArrayElementKind(code, record);
    VariantInit(&storage);
    storage.vt = static_cast<VARTYPE>(VT_ARRAY | kind.tag);
    storage.parray = nullptr;
    if (dimensions == 0)
        return true;
    if (kind.tag == VT_RECORD && !kind.record)
        return false;
    LONG low[8];
    LONG high[8];
    for (std::size_t i = 0; i < dimensions && i < 8; ++i) {
        low[i] = lower[i];
        high[i] = upper[i];
    }
    SAFEARRAY* array = CreateArray(kind, low, high, static_cast<UINT>(dimensions), fixed);
    if (!array)
        return false;
    storage.parray = array;
    return true;
}

ModuleInstance::ModuleInstance(Module& module) : m_module(&module)
{
    const CompiledModule* compiled = module.Compiled();
    m_count = compiled ? compiled->variables.size() : 0;
    m_slots = std::make_unique<VARIANT[]>(m_count > 0 ? m_count : 1);
    for (std::size_t i = 0; i < m_count; ++i) {
        const Variable& variable = *compiled->variables[i];
        IRecordInfo* record = variable.type.userType ? variable.type.userType->record.Get() : nullptr;
        if (!variable.type.code.IsArray()) {
            if (variable.type.code.IsUserType()) {
                if (!InitializeRecordSlot(m_slots[i], record))
                    NoteStorageFailure(i, ToNumber(ErrorId::OutOfMemory));
                continue;
            }
            InitializeTypedSlot(m_slots[i], variable.type.code.Code());
            continue;
        }
        long lower[8] = {};
        long upper[8] = {};
        const std::size_t dimensions = variable.bounds.size() < 8 ? variable.bounds.size() : 8;
        for (std::size_t d = 0; d < dimensions; ++d) {
            lower[d] = variable.bounds[d].lower;
            upper[d] = variable.bounds[d].upper;
        }
        if (!InitializeArraySlot(m_slots[i], variable.type.code.Code(), lower, upper, dimensions, record))
            NoteStorageFailure(i, ToNumber(ErrorId::CantAllocateLargeArray));
    }
    s_live.push_back(this);
}

void ModuleInstance::NoteStorageFailure(std::size_t variable, long number) noexcept
{
    if (m_failedVariable >= 0)
        return;
    m_failedVariable = static_cast<int>(variable);
    m_storageError = number;
}

void ModuleInstance::Link(ModuleInstance& other)
{
    if (&other == this)
        return;
    for (ModuleInstance*& linked : m_linked) {
        if (&linked->OwnModule() == &other.OwnModule()) {
            linked = &other;
            return;
        }
    }
    m_linked.push_back(&other);
}

ModuleInstance* ModuleInstance::Find(const Module& module) noexcept
{
    if (m_module == &module)
        return this;
    for (ModuleInstance* linked : m_linked) {
        if (&linked->OwnModule() == &module)
            return linked;
    }
    for (ModuleInstance* live : s_live) {
        if (&live->OwnModule() == &module)
            return live;
    }
    return nullptr;
}

ModuleInstance* ModuleInstance::FindNumbered(const void* source, unsigned number) noexcept
{
    for (ModuleInstance* live : s_live) {
        if (number != 0 && live->m_number == number && live->m_module->Source() == source && !live->m_terminated)
            return live;
    }
    return nullptr;
}

EventConnection* ModuleInstance::Connection(std::size_t variable) const noexcept
{
    for (const auto& [index, connection] : m_connections) {
        if (index == variable)
            return connection;
    }
    return nullptr;
}

void ModuleInstance::AddConnection(std::size_t variable, EventConnection* connection)
{
    m_connections.emplace_back(variable, connection);
}

void ModuleInstance::CloseConnections() noexcept
{
    while (!m_connections.empty()) {
        EventConnection* connection = m_connections.back().second;
        m_connections.pop_back();
        connection->Close();
    }
}

void ModuleInstance::RemoveListener(EventConnection* listener) noexcept { std::erase(m_listeners, listener); }

ModuleInstance::~ModuleInstance()
{
    CloseConnections();
    // Links still listening let go of this instance.
    while (!m_listeners.empty()) {
        EventConnection* listener = m_listeners.back();
        m_listeners.pop_back();
        listener->SourceEnded(*this);
    }
    std::erase(s_live, this);
    // No instance keeps a link to this one.
    for (ModuleInstance* live : s_live)
        std::erase(live->m_linked, this);
    for (std::size_t i = 0; i < m_count; ++i) {
        Variant owner;
        owner.Attach(m_slots[i]);
    }
}

} // namespace brannoc
