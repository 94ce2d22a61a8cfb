#pragma once
// One argument that a host hands to a macro procedure it calls (Call0 ... Call5, fire objects,
// handlers): the procedure binds to the host's VARIANT by reference, so what it assigns to a ByRef
// parameter reaches the host. A typed reference (VT_BYREF with a kind) binds to a copy that is written
// back, converted to that kind, afterwards.
#include "values/Variant.h"
#include <oaidl.h>

namespace brannoc {

class ValueStack;
struct Parameter;

class HostArgument {
public:
    // given may be null: a missing argument.
    explicit HostArgument(VARIANT* given);
    HostArgument(const HostArgument&) = delete;
    HostArgument& operator=(const HostArgument&) = delete;

    // False when a typed reference could not be copied.
    bool Usable() const { return !m_typedReference || m_copied; }

    // Pushes the value for parameter (null: an element of a ParamArray): a typed reference when the
    // kinds agree (binds by reference), else a reference to the VARIANT (a Variant parameter binds by
    // reference, others convert). False when the value stack is full.
    bool Push(ValueStack& values, const Parameter* parameter) const;

    // Writes what the procedure left in the copy of a typed reference back to the host's storage.
    void WriteBack() const;

private:
    VARIANT* m_target = nullptr;
    VARIANT* m_typedReference = nullptr;
    Variant m_copy;
    bool m_copied = false;
};

} // namespace brannoc
