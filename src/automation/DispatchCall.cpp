#include "automation/DispatchCall.h"

#include "automation/OutsideCall.h"

#include "exec/Interpreter.h"
#include "host/EntryGuard.h"
#include "values/ComRef.h"
#include "values/ValueError.h"

#include <memory>

namespace brannoc::automation {
namespace {

constexpr LCID kLocale = 0x409;

// Normal accesses raise their errors; silent ones (probes of the default-member fallback) only fail.
enum class Mode { Normal, Silent };

WORD FlagsOf(MemberAccess access)
{
    switch (access) {
    case MemberAccess::Call: return DISPATCH_METHOD;
    case MemberAccess::Get: return DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    case MemberAccess::Let: return DISPATCH_PROPERTYPUT;
    case MemberAccess::Set: return DISPATCH_PROPERTYPUTREF;
    }
    return DISPATCH_METHOD;
}

bool IsAssignment(MemberAccess access) { return access == MemberAccess::Let || access == MemberAccess::Set; }

// The strings of an exception record, freed with the record.
class ExceptionRecord final {
public:
    ExceptionRecord() { m_info = EXCEPINFO{}; }
    ~ExceptionRecord()
    {
        SysFreeString(m_info.bstrSource);
        SysFreeString(m_info.bstrDescription);
        SysFreeString(m_info.bstrHelpFile);
    }
    ExceptionRecord(const ExceptionRecord&) = delete;
    ExceptionRecord& operator=(const ExceptionRecord&) = delete;
    EXCEPINFO* Get() { return &m_info; }
    // The status the record stands for, after its deferred fill-in ran.
    SCODE Status()
    {
        if (m_info.pfnDeferredFillIn) {
            m_info.pfnDeferredFillIn(&m_info);
            m_info.pfnDeferredFillIn = nullptr;
        }
        return m_info.scode != 0 ? m_info.scode : static_cast<SCODE>(m_info.wCode);
    }
    long Number() const { return m_info.wCode != 0 ? static_cast<long>(m_info.wCode) : static_cast<long>(m_info.scode); }
    // Raises the server's error with its description, source and help as the record holds them (an empty
    // description becomes the number's default one: its message, or "Exception" and the code).
    bool Raise() const
    {
        Interpreter* interpreter = Interpreter::Current();
        if (!interpreter)
            return RaiseValueError(Number());
        return interpreter->RaiseServerError(Number(), Text(m_info.bstrDescription), Text(m_info.bstrSource),
                                             Text(m_info.bstrHelpFile), static_cast<long>(m_info.dwHelpContext));
    }

private:
    static std::wstring_view Text(BSTR text) { return text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view(); }

    EXCEPINFO m_info;
};

// One access with its arguments laid out for Invoke.
struct Access {
    IDispatch* object = nullptr;
    DISPID member = DISPID_VALUE;
    MemberAccess kind = MemberAccess::Get;
    // The member was named (o.Value), so it is called even when it is the default one.
    bool named = false;
    DispatchArguments arguments;
    // Identifiers of the named arguments (same order as their names).
    const DISPID* namedIds = nullptr;
    int namedCount = 0;

    int PositionalCount() const { return arguments.count - namedCount - (IsAssignment(kind) ? 1 : 0); }
};

// Invoke with the arguments in IDispatch order: the assigned value first (named DISPID_PROPERTYPUT),
// then the named arguments, then the positional ones last first.
HRESULT CallInvoke(const Access& access, Variant& result, UINT& argumentError, ExceptionRecord& exception)
{
    const int count = access.arguments.count;
    const bool assignment = IsAssignment(access.kind);
    const int positional = access.PositionalCount();
    // Copies of the VARIANT structures (not of what they own): the engine's value stack may move while
    // the object calls back into the engine.
    VARIANT inlineValues[8];
    DISPID inlineIds[8];
    std::unique_ptr<VARIANT[]> moreValues;
    std::unique_ptr<DISPID[]> moreIds;
    VARIANT* values = inlineValues;
    DISPID* ids = inlineIds;
    if (count > 8) {
        moreValues.reset(new (std::nothrow) VARIANT[static_cast<std::size_t>(count)]);
        moreIds.reset(new (std::nothrow) DISPID[static_cast<std::size_t>(count)]);
        if (!moreValues || !moreIds)
            return E_OUTOFMEMORY;
        values = moreValues.get();
        ids = moreIds.get();
    }
    int slot = 0;
    int namedSlots = 0;
    if (assignment) {
        values[slot++] = access.arguments.values[count - 1];
        ids[namedSlots++] = DISPID_PROPERTYPUT;
    }
    for (int i = 0; i < access.namedCount; ++i) {
        values[slot++] = access.arguments.values[positional + i];
        ids[namedSlots++] = access.namedIds[i];
    }
    for (int i = positional - 1; i >= 0; --i)
        values[slot++] = access.arguments.values[i];
    DISPPARAMS parameters{values, namedSlots > 0 ? ids : nullptr, static_cast<UINT>(count),
                          static_cast<UINT>(namedSlots)};
    result.Clear();
    argumentError = static_cast<UINT>(-1);
    OutsideCall outside;
    // A call statement asks for no result: a server may refuse to give one for a method without a
    // value (a Sub), and what a function gives back is not wanted.
    VARIANT* wanted = assignment || access.kind == MemberAccess::Call ? nullptr : &result.Raw();
    return access.object->Invoke(access.member, IID_NULL, kLocale, FlagsOf(access.kind), &parameters, wanted,
                                 exception.Get(), &argumentError);
}

bool Fail(Mode mode, long number)
{
    if (mode == Mode::Normal)
        (void)RaiseValueError(number);
    return false;
}

// Element of a value array at the given indexes (Get), or the value stored into it (Let).
bool AccessElement(Variant& array, const VARIANT* indexes, int count, MemberAccess kind, const VARIANT* value,
                   Variant& result)
{
    SAFEARRAY* data = (array.Tag() & VT_BYREF) ? *array.Raw().pparray : array.Array();
    if (!data || static_cast<int>(SafeArrayGetDim(data)) != count)
        return RaiseValueError(kErrorBadIndex);
    LONG positions[8] = {};
    for (int i = 0; i < count && i < 8; ++i) {
        Variant index;
        if (!index.CopyIndirectFrom(indexes[i]) || FAILED(VariantChangeType(&index.Raw(), &index.Raw(), 0, VT_I4)))
            return RaiseValueError(kErrorTypeMismatch);
        positions[i] = index.Long();
    }
    VARTYPE element = VT_EMPTY;
    if (FAILED(SafeArrayGetVartype(data, &element)))
        return RaiseValueError(kErrorAutomation);
    if (kind == MemberAccess::Get) {
        result.Clear();
        VARIANT& raw = result.Raw();
        // The element's payload lands where a VARIANT of its kind keeps it.
        void* target = element == VT_VARIANT ? static_cast<void*>(&raw) : static_cast<void*>(&raw.lVal);
        const HRESULT status = SafeArrayGetElement(data, positions, target);
        if (FAILED(status))
            return RaiseValueError(status == DISP_E_BADINDEX ? kErrorBadIndex : kErrorAutomation);
        if (element != VT_VARIANT)
            raw.vt = element;
        return true;
    }
    Variant converted;
    if (!converted.CopyIndirectFrom(*value))
        return RaiseValueError(kErrorAutomation);
    if (element != VT_VARIANT && FAILED(VariantChangeType(&converted.Raw(), &converted.Raw(), 0, element)))
        return RaiseValueError(kErrorTypeMismatch);
    VARIANT& raw = converted.Raw();
    void* source = element == VT_VARIANT ? static_cast<void*>(&raw)
                   : (element == VT_BSTR || element == VT_DISPATCH || element == VT_UNKNOWN) ? raw.byref
                                                                                              : static_cast<void*>(&raw.lVal);
    const HRESULT status = SafeArrayPutElement(data, positions, source);
    if (FAILED(status))
        return RaiseValueError(status == DISP_E_BADINDEX ? kErrorBadIndex : kErrorAutomation);
    return true;
}

bool Perform(const Access& access, Variant& result, Mode mode);

// A let that the member refuses even so (obj.Cells(1, 2) = 5 where Cells only gives an object): the
// member is read with the index arguments and the object it gives has its default member let the value.
// False, with applied false, when the member gives no object that way.
bool LetThroughIndexedObject(const Access& access, Variant& result, bool& applied)
{
    Access indexed = access;
    indexed.kind = MemberAccess::Get;
    indexed.arguments.count = access.arguments.count - 1;
    Variant holder;
    if (!Perform(indexed, holder, Mode::Silent))
        return false;
    const VARIANT* inner = FollowByRefChain(&holder.Raw());
    if (inner->vt != VT_DISPATCH || !inner->pdispVal)
        return false;
    applied = true;
    Access let;
    let.object = inner->pdispVal;
    let.member = DISPID_VALUE;
    let.kind = MemberAccess::Let;
    let.arguments.values = &access.arguments.values[access.arguments.count - 1];
    let.arguments.count = 1;
    return Perform(let, result, Mode::Normal);
}

// The member exists but not with these arguments: get its value without arguments and index that (an
// array) or apply the arguments to its default member (an object).
bool DefaultMemberFallback(const Access& access, HRESULT status, Variant& result, bool& applied)
{
    applied = false;
    const int positional = access.PositionalCount();
    if (access.kind != MemberAccess::Get && access.kind != MemberAccess::Let)
        return false;
    if (positional < 1 || access.member == DISPID_VALUE)
        return false;
    Access probe;
    probe.object = access.object;
    probe.member = access.member;
    probe.kind = MemberAccess::Get;
    Variant value;
    if (!Perform(probe, value, Mode::Silent))
        return access.kind == MemberAccess::Let && LetThroughIndexedObject(access, result, applied);
    applied = true;
    VARIANT* inner = FollowByRefChain(&value.Raw());
    if (inner->vt != VT_DISPATCH) {
        if ((inner->vt & VT_ARRAY) != 0 && access.namedCount == 0) {
            Variant array;
            if (!array.CopyFrom(*inner))
                return RaiseValueError(kErrorAutomation);
            const VARIANT* assigned = access.kind == MemberAccess::Let ? &access.arguments.values[access.arguments.count - 1]
                                                                        : nullptr;
            return AccessElement(array, access.arguments.values, positional, access.kind, assigned, result);
        }
        return RaiseValueError(status == DISP_E_MEMBERNOTFOUND ? kErrorNoSuchMember : kErrorWrongParameterCount);
    }
    if (!inner->pdispVal)
        return RaiseValueError(kErrorObjectIsNothing);
    Access onDefault = access;
    onDefault.object = inner->pdispVal;
    onDefault.member = DISPID_VALUE;
    onDefault.named = false;
    return Perform(onDefault, result, Mode::Normal);
}

// Turns the status of Invoke into the language's error (nothing for success).
bool MapStatus(const Access& access, HRESULT status, UINT argumentError, Variant& result, Mode mode)
{
    switch (status) {
    case S_OK: return true;
    case DISP_E_BADINDEX: return Fail(mode, kErrorBadIndex);
    case DISP_E_TYPEMISMATCH: {
        // A server that names no argument leaves the index as it was (Wine's type information does):
        // an index outside the positional arguments names none.
        const long positional = static_cast<long>(access.PositionalCount());
        const long parameter = argumentError < static_cast<UINT>(positional) ? positional - static_cast<long>(argumentError) : 0;
        return Fail(mode, TypeMismatchForParameter(parameter));
    }
    case DISP_E_OVERFLOW: return Fail(mode, kErrorOverflow);
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
    case DISP_E_NOTACOLLECTION: {
        if (mode == Mode::Normal) {
            bool applied = false;
            const bool done = DefaultMemberFallback(access, status, result, applied);
            if (applied)
                return done;
        }
        return Fail(mode, status == DISP_E_MEMBERNOTFOUND ? kErrorNoSuchMember : kErrorWrongParameterCount);
    }
    case DISP_E_UNKNOWNNAME: return Fail(mode, kErrorNoSuchNamedParameter);
    default: return Fail(mode, kErrorAutomation);
    }
}

bool Perform(const Access& access, Variant& result, Mode mode)
{
    if (!access.object)
        return Fail(mode, kErrorObjectIsNothing);
    if (access.member == DISPID_UNKNOWN)
        return Fail(mode, kErrorNoSuchMember);
    if (access.member == DISPID_VALUE && !access.named && access.kind == MemberAccess::Get &&
        access.arguments.count == 0) {
        // The object's own value: nothing to call.
        result.SetObject(access.object);
        return true;
    }
    UINT argumentError = 0;
    ExceptionRecord exception;
    HRESULT status = CallInvoke(access, result, argumentError, exception);
    if (status == DISP_E_EXCEPTION) {
        const SCODE inner = exception.Status();
        const bool mapped = inner == DISP_E_MEMBERNOTFOUND || inner == DISP_E_TYPEMISMATCH || inner == DISP_E_OVERFLOW ||
                            inner == DISP_E_BADINDEX || inner == DISP_E_BADPARAMCOUNT || inner == DISP_E_PARAMNOTOPTIONAL;
        if (mode == Mode::Silent)
            return false;
        if (!mapped)
            return exception.Raise();
        status = inner;
    }
    return MapStatus(access, status, argumentError, result, mode);
}

} // namespace

bool InvokeMember(IDispatch* object, const std::wstring& name, MemberAccess access,
                  const DispatchArguments& arguments, Variant& result)
{
    if (!object)
        return RaiseValueError(kErrorObjectIsNothing);
    static const std::vector<std::wstring> s_none;
    const std::vector<std::wstring>& named = arguments.namedArguments ? *arguments.namedArguments : s_none;
    // One look-up for the member and its named arguments; the names are looked up at every access.
    std::vector<LPOLESTR> names;
    names.reserve(named.size() + 1);
    names.push_back(const_cast<LPOLESTR>(name.c_str()));
    for (const std::wstring& argument : named)
        names.push_back(const_cast<LPOLESTR>(argument.c_str()));
    std::vector<DISPID> ids(names.size(), DISPID_UNKNOWN);
    Access call;
    call.object = object;
    call.kind = access;
    call.arguments = arguments;
    call.namedCount = static_cast<int>(named.size());
    if (name.empty()) {
        call.member = DISPID_VALUE;
    } else {
        HRESULT status = S_OK;
        {
            OutsideCall outside;
            status = object->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), kLocale, ids.data());
        }
        call.member = ids[0];
        call.named = true;
        if (FAILED(status) && ids[0] != DISPID_UNKNOWN)
            return RaiseValueError(kErrorNoSuchNamedParameter);
    }
    call.namedIds = ids.data() + 1;
    return Perform(call, result, Mode::Normal);
}

} // namespace brannoc::automation
