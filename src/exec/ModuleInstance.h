#pragma once
// One instance of a compiled module: its module-level variables, a use count and the module it
// belongs to. Each variable is one VARIANT slot whose tag stays the declared kind (typed storage in the
// sense of the value cells); slot i belongs to the module's variable i in declaration order.
#include "values/ArrayStorage.h"
#include "values/Variant.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace brannoc {

class Module;
class EventConnection;

class ModuleInstance final {
public:
    // Sets up storage for every module-level variable of module's compiled form (Empty slots when the
    // module has not compiled). Typed variables start at their kind's zero value.
    explicit ModuleInstance(Module& module);
    ModuleInstance(const ModuleInstance&) = delete;
    ModuleInstance& operator=(const ModuleInstance&) = delete;
    ~ModuleInstance();

    Module& OwnModule() const noexcept { return *m_module; }
    // The first module-level variable whose storage could not be made (a fixed array too large for the
    // memory left, a record that could not be allocated), or -1 when all of it exists; the error number
    // that names what failed (10021 for an array, 10001 otherwise).
    int FailedVariable() const noexcept { return m_failedVariable; }
    long StorageError() const noexcept { return m_storageError; }
    std::size_t VariableCount() const noexcept { return m_count; }
    // Storage of variable index (declaration order).
    VARIANT& Slot(std::size_t index) noexcept { return m_slots[index]; }

    // Instances of other modules whose public procedures and variables this module's code reaches (the
    // default instances of the modules it uses). Find answers this instance for its own module, a linked
    // instance, or else the oldest live instance of that module (a module's default instance is made
    // before any other).
    void Link(ModuleInstance& other);
    ModuleInstance* Find(const Module& module) noexcept;

    // Uses: one per activation that runs in the instance (and holds by the engine object).
    int UseCount() const noexcept { return m_useCount; }
    void AddUse() noexcept { ++m_useCount; }
    int ReleaseUse() noexcept { return --m_useCount; }
    // Ends one use of an activation; an abandoned heap instance goes with its last use.
    void EndUse() noexcept
    {
        if (ReleaseUse() == 0 && m_abandoned)
            delete this;
    }
    // The owner of a heap instance gives it up: it goes now, or with the last use of the activations
    // that still run in it.
    void Abandon() noexcept
    {
        m_abandoned = true;
        if (m_useCount <= 0)
            delete this;
    }

    // The object value that stands for a class instance (Me), not held; null for default instances.
    IDispatch* Object() const noexcept { return m_object; }
    void SetObject(IDispatch* object) noexcept { m_object = object; }

    // The host's object attached to an instance of a form module (its controls and properties), held;
    // null for other instances.
    IDispatch* HostObject() const noexcept { return m_hostObject.Tag() == VT_DISPATCH ? m_hostObject.Object() : nullptr; }
    void AttachHostObject(IDispatch* object) { m_hostObject.SetObject(object, true); }

    // The number of a class instance among the instances its engine has made (from 1); 0 for default
    // instances. Hosts name an instance by it ("*NewInstance" and the number in hexadecimal).
    unsigned Number() const noexcept { return m_number; }
    void SetNumber(unsigned number) noexcept { m_number = number; }
    // The live instance of a module that source compiled with that number, or null.
    static ModuleInstance* FindNumbered(const void* source, unsigned number) noexcept;

    // WithEvents variables: the link of a variable (null before its first assignment); AddConnection
    // gives the instance the link's one hold. CloseConnections closes them newest first (also when the
    // instance goes).
    EventConnection* Connection(std::size_t variable) const noexcept;
    void AddConnection(std::size_t variable, EventConnection* connection);
    void CloseConnections() noexcept;
    // Links of other instances that hear this class instance's events (not held).
    const std::vector<EventConnection*>& Listeners() const noexcept { return m_listeners; }
    void AddListener(EventConnection* listener) { m_listeners.push_back(listener); }
    void RemoveListener(EventConnection* listener) noexcept;

    // Set once the terminate procedure has run (or was found unneeded), so that it runs only once.
    bool IsTerminated() const noexcept { return m_terminated; }
    void MarkTerminated() noexcept { m_terminated = true; }

private:
    void NoteStorageFailure(std::size_t variable, long number) noexcept;

    Module* m_module = nullptr;
    std::unique_ptr<VARIANT[]> m_slots;
    std::size_t m_count = 0;
    int m_useCount = 0;
    IDispatch* m_object = nullptr;
    Variant m_hostObject;
    unsigned m_number = 0;
    bool m_abandoned = false;
    bool m_terminated = false;
    int m_failedVariable = -1;
    long m_storageError = 0;
    std::vector<ModuleInstance*> m_linked;
    std::vector<std::pair<std::size_t, EventConnection*>> m_connections;
    std::vector<EventConnection*> m_listeners;
    // Every live instance, oldest first (all engine code runs under the engine lock).
    static inline std::vector<ModuleInstance*> s_live;
};

// Sets storage (a cleared slot) to the zero value of a variable of type code `code` (TypeCode bits):
// 0 for numbers, False, an empty String, Nothing, Empty for Variants, and for arrays an array of the
// element kind without a descriptor (VT_ARRAY | kind, null parray: not dimensioned).
void InitializeTypedSlot(VARIANT& storage, unsigned short code);

// Sets storage (a cleared slot) to a new record of type record, each field at its zero value. False
// when it could not be made.
[[nodiscard]] bool InitializeRecordSlot(VARIANT& storage, IRecordInfo* record);

// The element kind of an array variable of type code `code`: VT_VARIANT, VT_BSTR, VT_DISPATCH, a
// numeric kind, or VT_RECORD for arrays of records.
VARTYPE ArrayElementTag(unsigned short code);
// The same with the length of fixed-length String elements and the record type of record elements.
ElementKind ArrayElementKind(unsigned short code, IRecordInfo* record);

// Sets storage (a cleared slot) to an array with dimensions (lower, upper) pairs, each element at its
// zero value; `fixed` marks a declared fixed-size array. A slot without dimensions, or whose array could
// not be made, is an array without a descriptor (not dimensioned). False when the array could not be made.
[[nodiscard]] bool InitializeArraySlot(VARIANT& storage, unsigned short code, const long* lower, const long* upper,
                                       std::size_t dimensions, IRecordInfo* record = nullptr, bool fixed = true);

} // namespace brannoc
