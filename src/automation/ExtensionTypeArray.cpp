#include "automation/ExtensionTypeArray.h"

#include "values/ArrayStorage.h"
#include "values/Variant.h"

namespace brannoc::automation {

std::wstring JoinedTypeNames(const std::vector<ExtensionTypeEntry>& types)
{
    std::wstring names;
    for (const ExtensionTypeEntry& entry : types) {
        names += entry.name;
        names += L'\0';
    }
    return names;
}

bool StoreTypeArray(const std::vector<ExtensionTypeEntry>& types, VARIANT* target)
{
    VariantClear(target);
    target->vt = VT_ARRAY | VT_VARIANT;
    target->parray = nullptr;
    if (types.empty())
        return true;
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(types.size()), 0}, {2, 0}};
    SafeArray array(SafeArrayCreate(VT_VARIANT, 2, bounds));
    if (!array.Get()) {
        target->vt = VT_EMPTY;
        return false;
    }
    {
        SafeArrayLock lock(array.Get());
        if (!lock.IsLocked()) {
            target->vt = VT_EMPTY;
            return false;
        }
        for (std::size_t row = 0; row < types.size(); ++row) {
            const LONG typeCell[2] = {static_cast<LONG>(row), 0};
            const LONG objectCell[2] = {static_cast<LONG>(row), 1};
            auto* type = static_cast<VARIANT*>(ElementAddress(array.Get(), typeCell));
            auto* object = static_cast<VARIANT*>(ElementAddress(array.Get(), objectCell));
            type->vt = VT_UNKNOWN;
            type->punkVal = types[row].type.Get();
            if (type->punkVal)
                type->punkVal->AddRef();
            if (IDispatch* owner = types[row].object.Get()) {
                object->vt = VT_DISPATCH;
                object->pdispVal = owner;
                owner->AddRef();
            }
        }
    }
    target->parray = array.Detach();
    return true;
}

} // namespace brannoc::automation
