#include "host/HostSubCall.h"

#include "code/ProcedureBody.h"
#include "exec/ErrorMessages.h"
#include "exec/ProcedureCode.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/EngineContext.h"
#include "values/Conversion.h"
#include "values/Variant.h"

#include <cstring>
#include <vector>

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

// One argument as the Sub binds it: a reference to the host's VARIANT (or, for a typed reference the
// host gave, to a copy that is written back afterwards).
class HostArgument {
public:
    explicit HostArgument(VARIANT* given)
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
    HostArgument(const HostArgument&) = delete;
    HostArgument& operator=(const HostArgument&) = delete;

    bool Usable() const { return !m_typedReference || m_copied; }

    // The value pushed for a parameter: a typed reference when the kinds agree (binds by reference),
    // else a reference to the VARIANT (a Variant parameter binds by reference, others convert).
    bool Push(ValueStack& values, const Parameter* parameter) const
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

    void WriteBack() const
    {
        if (m_typedReference && m_copied)
            WriteThroughTypedReference(*m_typedReference, m_copy.Raw());
    }

private:
    VARIANT* m_target = nullptr;
    VARIANT* m_typedReference = nullptr;
    Variant m_copy;
    bool m_copied = false;
};

void ReportHostCallError(EngineContext& context, long number, const std::string& name)
{
    ErrorLocation& error = context.ErrorReport();
    error.Clear();
    error.number = number;
    error.description = WithArgument(MessageFor(number), WideFromAnsi(name));
    error.macroName = WideFromAnsi(context.Modules().RunningName());
    context.TraceErrorFields();
    context.SendNotification(EngineContext::kNotifyError);
}

} // namespace

bool CallSubForHost(EngineContext& context, const std::string& name, VARIANT* const* arguments, int count)
{
    Interpreter& machine = context.Machine();
    if (machine.ExecutionMarker() != 0 || context.IsBusy())
        return false;
    Procedure* procedure = nullptr;
    ModuleInstance* instance = nullptr;
    if (!context.Modules().FindHostSub(name, procedure, instance)) {
        ReportHostCallError(context, 10018, name);
        return false;
    }
    const auto& parameters = procedure->parameters;
    const bool paramArray = !parameters.empty() && parameters.back().paramArray;
    const std::size_t fixed = paramArray ? parameters.size() - 1 : parameters.size();
    if (!paramArray && static_cast<std::size_t>(count) > fixed) {
        ReportHostCallError(context, 10019, name);
        return false;
    }
    for (std::size_t i = static_cast<std::size_t>(count); i < fixed; ++i) {
        if (!parameters[i].optional) {
            ReportHostCallError(context, 10019, name);
            return false;
        }
    }
    std::vector<std::unique_ptr<HostArgument>> held;
    for (int i = 0; i < count; ++i) {
        held.push_back(std::make_unique<HostArgument>(arguments[i]));
        if (!held.back()->Usable())
            return false;
    }
    auto push = [&](ValueStack& values) {
        Variant* result = values.Push();
        if (!result)
            return false;
        result->SetError(kResultSlotStatus);
        for (std::size_t i = 0; i < fixed; ++i) {
            const bool given = i < held.size();
            if (given ? !held[i]->Push(values, &parameters[i]) : !HostArgument(nullptr).Push(values, &parameters[i]))
                return false;
        }
        if (!paramArray)
            return true;
        for (std::size_t i = fixed; i < held.size(); ++i) {
            if (!held[i]->Push(values, nullptr))
                return false;
        }
        return PackValues(values, static_cast<int>(held.size() > fixed ? held.size() - fixed : 0));
    };
    const unsigned long errorsBefore = context.UntrappedErrorCount();
    const bool finished = context.Modules().RunNested(*procedure->code, *instance, push);
    for (const auto& argument : held)
        argument->WriteBack();
    return finished && context.UntrappedErrorCount() == errorsBefore;
}

} // namespace brannoc
