#include "exec/ModuleInstance.h"

#include "frontend/Module.h"

#include <algorithm>

namespace brannoc {

void InitializeTypedSlot(VARIANT& storage, unsigned short code)
{
    VariantInit(&storage);
    const TypeCode type(code);
    if (type.IsArray() || type.IsUserType())
        return;
    if (type.IsString() || type.IsFixedString()) {
        // A null BSTR is the empty string; it costs no allocation.
        storage.vt = VT_BSTR;
        storage.bstrVal = nullptr;
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

ModuleInstance::ModuleInstance(Module& module) : m_module(&module)
{
    const CompiledModule* compiled = module.Compiled();
    m_count = compiled ? compiled->variables.size() : 0;
    m_slots = std::make_unique<VARIANT[]>(m_count > 0 ? m_count : 1);
    for (std::size_t i = 0; i < m_count; ++i)
        InitializeTypedSlot(m_slots[i], compiled->variables[i]->type.code.Code());
    s_live.push_back(this);
}

void ModuleInstance::Link(ModuleInstance& other)
{
    if (&other == this || Find(other.OwnModule()) != nullptr)
        return;
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

ModuleInstance::~ModuleInstance()
{
    std::erase(s_live, this);
    for (std::size_t i = 0; i < m_count; ++i)
        VariantClear(&m_slots[i]);
}

} // namespace brannoc
