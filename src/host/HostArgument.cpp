#include "host/HostArgument.h"

#include "code/ProcedureBody.h"
#include "exec/ValueStack.h"
#include "frontend/Symbols.h"
#include "values/Conversion.h"

#include <cstring>

namespace brannoc {
namespace {

// Offset of the payload inside a VARIANT (where typed references point).
constexpr std::size_t kPayloadOffset = 8;

// The size of a value of a kind that owns nothing, or 0 for kinds that are not written back that way.
std::size_t PlainSize(VARTYPE kind)
{
    switch (kind) {
    case VT_I1: case VT_UI1: return 1;
    case VT_I2: case VT_UI2: case VT_BOOL: return 2;
    case VT_I4: case VT_UI4: case VT_INT: case VT_UINT: case VT_R4: case VT_ERROR: return 4;
    case VT_R8: case VT_DATE: case VT_CY: case VT_I8: case VT_UI8: return 8;
    default: return 0;
    }
}

// Stores value through a typed reference that the host gave (VT_BYREF with a kind): converted to that
// kind; a value that cannot be converted leaves the host's storage as it was.
void WriteThroughTypedReference(const VARIANT& reference, const VARIANT& value)
{
    const VARTYPE kind = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
    VARIANT converted;
    VariantInit(&converted);
    if (!reference.byref || FAILED(VariantChangeType(&converted, const_cast<VARIANT*>(&value), 0, kind)))
        return;
    if (const std::size_t size = PlainSize(kind)) {
        std::memcpy(reference.byref, &converted.lVal, size);
        return;
    }
    switch (kind) {
    case VT_BSTR:
        SysFreeString(*reference.pbstrVal);
        *reference.pbstrVal = converted.bstrVal;
        return;
    case VT_DISPATCH:
    case VT_UNKNOWN:
        if (*reference.ppunkVal)
            (*reference.ppunkVal)->Release();
        *reference.ppunkVal = converted.punkVal;
        return;
    default:
        VariantClear(&converted);
        return;
    }
}

} // namespace

HostArgument::HostArgument(VARIANT* given)
{
    VARIANT* target = given;
    while (target && target->vt == (VT_BYREF | VT_VARIANT) && target->pvarVal)
        target = target->pvarVal;
    if (target && (target->vt & VT_BYREF)) {
        m_typedReference = target;
        m_copied = m_copy.CopyIndirectFrom(*target);
        target = &m_copy.Raw();
    }
    m_target = target;
}

bool HostArgument::Push(ValueStack& values, const Parameter* parameter) const
{
    Variant* slot = values.Push();
    if (!slot)
        return false;
    if (!m_target) {
        slot->SetError(kMissingArgumentStatus);
        return true;
    }
    const VARTYPE tag = parameter ? StorageTag(parameter->type.code) : static_cast<VARTYPE>(VT_VARIANT);
    if (tag != VT_VARIANT && tag != VT_RECORD && m_target->vt == tag)
        slot->SetByRef(tag, reinterpret_cast<char*>(m_target) + kPayloadOffset);
    else
        slot->SetByRef(VT_VARIANT, m_target);
    return true;
}

void HostArgument::WriteBack() const
{
    if (m_typedReference && m_copied)
        WriteThroughTypedReference(*m_typedReference, m_copy.Raw());
}

} // namespace brannoc
