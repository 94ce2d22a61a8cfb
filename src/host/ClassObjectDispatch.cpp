// Calls by name on class module instances from outside the language (hosts, other automation clients,
// and the platform's conversions that ask an object for its default value): each call is a nested run
// of the member procedure, or a read or assignment of a public module-level variable.
#include "host/ClassObject.h"

#include "code/MemberCall.h"
#include "exec/ModuleInstance.h"
#include "frontend/CharClasses.h"
#include "frontend/Module.h"
#include "host/AnsiText.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include "host/ModuleManager.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

namespace brannoc {
namespace {

// The calls passed on to a form's host object carry the United States locale, as every call the
// engine makes on an object does.
constexpr LCID kLocale = 0x409;

// Public procedures are numbered from 1 in declaration order, public variables from kVariableBase; the
// default member answers DISPID_VALUE as well.
constexpr DISPID kVariableBase = 0x10000;

const CompiledModule& CompiledOf(const ModuleInstance& instance) { return *instance.OwnModule().Compiled(); }

bool IsPublic(const Procedure& procedure)
{
    return procedure.visibility != Visibility::Private && procedure.kind != ProcedureKind::External;
}

bool IsPublic(const Variable& variable)
{
    return variable.visibility == Visibility::Public || variable.visibility == Visibility::Friend;
}

DISPID IdOf(const CompiledModule& compiled, const std::string& name)
{
    for (std::size_t i = 0; i < compiled.procedures.size(); ++i) {
        if (IsPublic(*compiled.procedures[i]) && SameName(compiled.procedures[i]->name, name))
            return static_cast<DISPID>(i + 1);
    }
    for (std::size_t i = 0; i < compiled.variables.size(); ++i) {
        if (IsPublic(*compiled.variables[i]) && SameName(compiled.variables[i]->name, name))
            return kVariableBase + static_cast<DISPID>(i);
    }
    return DISPID_UNKNOWN;
}

// The name a member identifier stands for; false for identifiers this object never handed out.
bool NameOf(const CompiledModule& compiled, DISPID id, std::string& name)
{
    if (id == DISPID_VALUE) {
        for (const auto& procedure : compiled.procedures) {
            if (procedure->isDefaultMember) {
                name = procedure->name;
                return true;
            }
        }
        return false;
    }
    if (id >= 1 && static_cast<std::size_t>(id) <= compiled.procedures.size()) {
        name = compiled.procedures[static_cast<std::size_t>(id - 1)]->name;
        return true;
    }
    if (id >= kVariableBase && static_cast<std::size_t>(id - kVariableBase) < compiled.variables.size()) {
        name = compiled.variables[static_cast<std::size_t>(id - kVariableBase)]->name;
        return true;
    }
    return false;
}

MemberAccess AccessOf(WORD flags)
{
    if (flags & DISPATCH_PROPERTYPUTREF)
        return MemberAccess::Set;
    if (flags & DISPATCH_PROPERTYPUT)
        return MemberAccess::Let;
    if (flags & DISPATCH_PROPERTYGET)
        return MemberAccess::Get;
    return MemberAccess::Call;
}

// The value a Let (a property put, not a put by reference) assigns: an object stands for its default
// member's value. False, without raising, when that value cannot be had.
bool LetValueOf(Variant& value)
{
    if ((FollowByRefChain(&value.Raw())->vt & ~VT_BYREF) != VT_DISPATCH)
        return true;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool resolved = Resolve(value);
    (void)SetRaiseHandler(previous);
    return resolved;
}

// A public variable read or assigned; conversion failures answer a mismatch without raising.
HRESULT AccessVariable(ModuleInstance& instance, int index, MemberAccess access, DISPPARAMS& parameters,
                       VARIANT* result)
{
    VARIANT& storage = instance.Slot(static_cast<std::size_t>(index));
    if (access == MemberAccess::Call)
        return DISP_E_MEMBERNOTFOUND;
    if (access == MemberAccess::Get) {
        if (parameters.cArgs != 0)
            return DISP_E_BADPARAMCOUNT;
        return result ? VariantCopyInd(result, &storage) : S_OK;
    }
    if (parameters.cArgs != 1)
        return DISP_E_BADPARAMCOUNT;
    Variant value;
    if (!value.CopyIndirectFrom(parameters.rgvarg[0]))
        return E_OUTOFMEMORY;
    if (access == MemberAccess::Set && value.Tag() != VT_DISPATCH && value.Tag() != VT_UNKNOWN)
        return DISP_E_TYPEMISMATCH;
    if (access == MemberAccess::Let && !LetValueOf(value))
        return DISP_E_TYPEMISMATCH;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool stored = StoreTyped(storage, CompiledOf(instance).variables[static_cast<std::size_t>(index)]->type.code, value);
    (void)SetRaiseHandler(previous);
    return stored ? S_OK : DISP_E_TYPEMISMATCH;
}

// The arguments of a call in the procedure's parameter order (null: left out), and a ParamArray's items.
struct Arranged {
    std::vector<const VARIANT*> byParameter;
    std::vector<const VARIANT*> extra;
};

HRESULT Arrange(const Procedure& procedure, MemberAccess access, const DISPPARAMS& parameters, Arranged& arranged)
{
    const auto& declared = procedure.parameters;
    const std::size_t total = declared.size();
    const bool assignment = access == MemberAccess::Let || access == MemberAccess::Set;
    const bool hasParamArray = total > 0 && declared.back().paramArray && !assignment;
    if (assignment && total == 0)
        return DISP_E_BADPARAMCOUNT;
    const std::size_t fixed = hasParamArray || assignment ? total - 1 : total;
    arranged.byParameter.assign(total, nullptr);
    const UINT named = parameters.cNamedArgs;
    for (UINT j = 0; j < named; ++j) {
        const DISPID id = parameters.rgdispidNamedArgs[j];
        const std::size_t index = id == DISPID_PROPERTYPUT && assignment ? total - 1 : static_cast<std::size_t>(id);
        if (id < 0 && id != DISPID_PROPERTYPUT)
            return DISP_E_PARAMNOTFOUND;
        if (index >= (assignment ? total : fixed))
            return DISP_E_PARAMNOTFOUND;
        arranged.byParameter[index] = &parameters.rgvarg[j];
    }
    const UINT positional = parameters.cArgs - named;
    for (UINT i = 0; i < positional; ++i) {
        const VARIANT* argument = &parameters.rgvarg[parameters.cArgs - 1 - i];
        if (i < fixed)
            arranged.byParameter[i] = argument;
        else if (hasParamArray)
            arranged.extra.push_back(argument);
        else
            return DISP_E_BADPARAMCOUNT;
    }
    for (std::size_t i = 0; i < (assignment ? total : fixed); ++i) {
        if (!arranged.byParameter[i] && !declared[i].optional)
            return DISP_E_PARAMNOTOPTIONAL;
    }
    return S_OK;
}

// The arguments as the procedure's activation binds them: a result slot, then one value per parameter
// (by-reference arguments stay references).
bool PushArguments(ValueStack& values, const Procedure& procedure, const Arranged& arranged)
{
    auto push = [&](const VARIANT* source) {
        Variant* slot = values.Push();
        if (!slot)
            return RaiseValueError(kErrorOutOfMemory);
        if (!source) {
            slot->SetError(kMissingArgumentStatus);
            return true;
        }
        return slot->CopyFrom(*source) || RaiseValueError(kErrorOutOfMemory);
    };
    Variant* result = values.Push();
    if (!result)
        return RaiseValueError(kErrorOutOfMemory);
    result->SetError(kResultSlotStatus);
    const std::size_t total = procedure.parameters.size();
    for (std::size_t i = 0; i < total; ++i) {
        if (procedure.parameters[i].paramArray) {
            for (const VARIANT* item : arranged.extra) {
                if (!push(item))
                    return false;
            }
            if (!PackValues(values, static_cast<int>(arranged.extra.size())))
                return false;
            continue;
        }
        if (!push(arranged.byParameter[i]))
            return false;
    }
    return true;
}

// Fills an exception record with the error that ended the nested run: the one it passed back to the
// running code that made the call, else the one it reported.
void Describe(EngineContext& context, EXCEPINFO* exception)
{
    if (!exception)
        return;
    *exception = EXCEPINFO{};
    const ErrorRecord& passed = context.Machine().Error();
    const bool wasPassed = passed.number != 0;
    const long number = wasPassed ? passed.number : context.ErrorReport().number;
    const std::wstring& description = wasPassed ? passed.description : context.ErrorReport().description;
    exception->wCode = static_cast<WORD>(number > 0 && number < 0x10000 ? number : kErrorAutomation);
    exception->bstrDescription = SysAllocString(description.c_str());
    exception->bstrSource = SysAllocString(context.Caption().c_str());
}

} // namespace

DISPID ClassObject::HostMemberId(LPOLESTR name)
{
    IDispatch* host = m_instance ? m_instance->HostObject() : nullptr;
    DISPID hostId = DISPID_UNKNOWN;
    if (!host || FAILED(host->GetIDsOfNames(IID_NULL, &name, 1, kLocale, &hostId)))
        return DISPID_UNKNOWN;
    for (std::size_t i = 0; i < m_hostIds.size(); ++i) {
        if (m_hostIds[i] == hostId)
            return kHostMemberBase + static_cast<DISPID>(i);
    }
    m_hostIds.push_back(hostId);
    return kHostMemberBase + static_cast<DISPID>(m_hostIds.size() - 1);
}

HRESULT ClassObject::InvokeHostMember(DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                      EXCEPINFO* exception, UINT* argumentError)
{
    IDispatch* host = m_instance->HostObject();
    if (!host)
        return DISP_E_MEMBERNOTFOUND;
    ComRef<IDispatch> held = ComRef<IDispatch>::Share(host);
    const DISPID hostId = m_hostIds[static_cast<std::size_t>(id - kHostMemberBase)];
    // The host's object is outside the engine: the lock is given up for the call.
    const int depth = EngineLock::Suspend();
    const HRESULT status =
        held->Invoke(hostId, IID_NULL, kLocale, flags, parameters, result, exception, argumentError);
    EngineLock::Resume(depth);
    return status;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!names || !ids || count == 0)
        return E_INVALIDARG;
    EntryGuard guard(m_manager.Context());
    const CompiledModule& compiled = CompiledOf(*m_instance);
    const std::string member = AnsiFromWide(names[0]);
    ids[0] = IdOf(compiled, member);
    if (ids[0] == DISPID_UNKNOWN && count == 1)
        ids[0] = HostMemberId(names[0]);
    HRESULT status = ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    // Named arguments: the positions of the parameters of the first procedure of that name.
    const Procedure* procedure = nullptr;
    if (ids[0] >= 1 && static_cast<std::size_t>(ids[0]) <= compiled.procedures.size())
        procedure = compiled.procedures[static_cast<std::size_t>(ids[0] - 1)].get();
    for (UINT i = 1; i < count; ++i) {
        ids[i] = DISPID_UNKNOWN;
        const std::string name = AnsiFromWide(names[i]);
        for (std::size_t p = 0; procedure && p < procedure->parameters.size(); ++p) {
            if (SameName(procedure->parameters[p].name, name))
                ids[i] = static_cast<DISPID>(p);
        }
        if (ids[i] == DISPID_UNKNOWN)
            status = DISP_E_UNKNOWNNAME;
    }
    return status;
}

HRESULT STDMETHODCALLTYPE ClassObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                              VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    static DISPPARAMS s_none{nullptr, nullptr, 0, 0};
    DISPPARAMS& given = parameters ? *parameters : s_none;
    if (argumentError)
        *argumentError = 0;
    if (!m_instance)
        return E_UNEXPECTED;
    EntryGuard guard(m_manager.Context());
    // The object stays alive for the call even if the member drops the caller's references.
    AddRef();
    struct Hold {
        ClassObject* object;
        ~Hold() { object->Release(); }
    } hold{this};
    if (id >= kHostMemberBase && static_cast<std::size_t>(id - kHostMemberBase) < m_hostIds.size())
        return InvokeHostMember(id, flags, &given, result, exception, argumentError);
    const CompiledModule& compiled = CompiledOf(*m_instance);
    std::string name;
    if (!NameOf(compiled, id, name))
        return DISP_E_MEMBERNOTFOUND;
    const MemberAccess access = AccessOf(flags);
    Procedure* procedure = nullptr;
    int variable = -1;
    if (!FindClassMember(m_instance->OwnModule(), name, access, procedure, variable) &&
        !(access == MemberAccess::Get && (flags & DISPATCH_METHOD) &&
          FindClassMember(m_instance->OwnModule(), name, MemberAccess::Call, procedure, variable)))
        return DISP_E_MEMBERNOTFOUND;
    if (variable >= 0)
        return AccessVariable(*m_instance, variable, access, given, result);
    if (!procedure || !procedure->code)
        return DISP_E_MEMBERNOTFOUND;
    Arranged arranged;
    if (const HRESULT status = Arrange(*procedure, access, given, arranged); FAILED(status))
        return status;
    // A Property Let gets an object's default value as its value.
    Variant letValue;
    if (access == MemberAccess::Let && !procedure->parameters.empty()) {
        const VARIANT*& assigned = arranged.byParameter.back();
        if (assigned) {
            if (!letValue.CopyIndirectFrom(*assigned))
                return E_OUTOFMEMORY;
            if (!LetValueOf(letValue))
                return DISP_E_TYPEMISMATCH;
            assigned = &letValue.Raw();
        }
    }
    Variant value;
    // Called by running code, the member hands an error it does not trap back to that code.
    const Interpreter::ErrorExit errorExit = m_manager.Context().Machine().ExecutionMarker() < 0
                                                 ? Interpreter::ErrorExit::kToCaller
                                                 : Interpreter::ErrorExit::kReport;
    const bool finished = m_manager.RunNested(
        *procedure->code, *m_instance,
        [&](ValueStack& values) { return PushArguments(values, *procedure, arranged); }, &value, errorExit);
    if (!finished) {
        Describe(m_manager.Context(), exception);
        return DISP_E_EXCEPTION;
    }
    if (result) {
        VariantInit(result);
        if (!(value.Tag() == VT_ERROR && value.Error() == kResultSlotStatus))
            value.Detach(*result);
    }
    return S_OK;
}

} // namespace brannoc
