#pragma once
// One instance of a compiled module: its module-level variables, a use count and the module it
// belongs to. Each variable is one VARIANT slot whose tag stays the declared kind (typed storage in the
// sense of the value cells); slot i belongs to the module's variable i in declaration order.
#include "values/Variant.h"

#include <cstddef>
#include <memory>

namespace brannoc {

class Module;

class ModuleInstance final {
public:
    // Sets up storage for every module-level variable of module's compiled form (Empty slots when the
    // module has not compiled). Typed variables start at their kind's zero value.
    explicit ModuleInstance(Module& module);
    ModuleInstance(const ModuleInstance&) = delete;
    ModuleInstance& operator=(const ModuleInstance&) = delete;
    ~ModuleInstance();

    Module& OwnModule() const noexcept { return *m_module; }
    std::size_t VariableCount() const noexcept { return m_count; }
    // Storage of variable index (declaration order).
    VARIANT& Slot(std::size_t index) noexcept { return m_slots[index]; }

    int UseCount() const noexcept { return m_useCount; }
    void AddUse() noexcept { ++m_useCount; }
    int ReleaseUse() noexcept { return --m_useCount; }

private:
    Module* m_module = nullptr;
    std::unique_ptr<VARIANT[]> m_slots;
    std::size_t m_count = 0;
    int m_useCount = 0;
};

// Sets storage (a cleared slot) to the zero value of a variable of type code `code` (TypeCode bits):
// 0 for numbers, False, an empty String, Nothing, Empty for Variants.
void InitializeTypedSlot(VARIANT& storage, unsigned short code);

} // namespace brannoc
