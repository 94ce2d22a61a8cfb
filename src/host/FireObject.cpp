#include "host/FireObject.h"

#include "exec/ErrorMessages.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/MacroCall.h"
#include "host/MemoryReserve.h"

#include <new>

namespace brannoc {
namespace {

struct MemberName {
    const wchar_t* name;
    DISPID id;
};
constexpr MemberName kMembers[] = {{L"Busy", FireObject::kBusy},
                                   {L"Call", FireObject::kCall},
                                   {L"Eval", FireObject::kEval},
                                   {L"Result", FireObject::kResult},
                                   {L"Succeeded", FireObject::kSucceeded}};

VARIANT BoolValue(bool value)
{
    VARIANT result;
    VariantInit(&result);
    result.vt = VT_BOOL;
    result.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return result;
}

// The procedure's name: the first argument (given last) as text; empty when it has none.
std::string ProcedureName(const DISPPARAMS& parameters)
{
    Variant text;
    VARIANT& first = parameters.rgvarg[parameters.cArgs - 1];
    if (FAILED(VariantChangeType(&text.Raw(), FollowByRefChain(&first), 0, VT_BSTR)) || text.Tag() != VT_BSTR)
        return {};
    BSTR name = text.Raw().bstrVal;
    return AnsiFromWide(name ? std::wstring(name, SysStringLen(name)) : std::wstring());
}

} // namespace

FireObject* FireObject::Create(CodeUnit& engine, bool debugging) { return new (std::nothrow) FireObject(engine, debugging); }

FireObject::FireObject(CodeUnit& engine, bool debugging) : m_engine(engine), m_debugging(debugging) { m_engine.AddRef(); }

FireObject::~FireObject() { m_engine.Release(); }

HRESULT __stdcall FireObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (count == 0 || !names || !ids)
        return E_INVALIDARG;
    ids[0] = DISPID_UNKNOWN;
    for (const MemberName& member : kMembers) {
        if (names[0] && _wcsicmp(names[0], member.name) == 0)
            ids[0] = member.id;
    }
    if (ids[0] == DISPID_UNKNOWN)
        return DISP_E_MEMBERNOTFOUND;
    // The members take no named arguments.
    for (UINT i = 1; i < count; ++i)
        ids[i] = DISPID_UNKNOWN;
    return count > 1 ? DISP_E_PARAMNOTFOUND : S_OK;
}

HRESULT __stdcall FireObject::Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    if (argumentError)
        *argumentError = static_cast<UINT>(-1);
    static DISPPARAMS none{nullptr, nullptr, 0, 0};
    const DISPPARAMS& given = parameters ? *parameters : none;
    switch (member) {
    case kBusy:
    case kResult:
    case kSucceeded:
        return Get(member, flags, given, result);
    case kCall:
    case kEval:
        return CallByName(member, flags, given, result, exception, argumentError);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT FireObject::Get(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result)
{
    if (const HRESULT shape = CheckPropertyGet(flags, parameters, result); FAILED(shape))
        return shape;
    VariantInit(result);
    switch (member) {
    case kBusy:
        *result = BoolValue(m_busy);
        return S_OK;
    case kSucceeded:
        *result = BoolValue(m_succeeded);
        return S_OK;
    default:
        if (m_busy)
            return E_FAIL;
        return SUCCEEDED(VariantCopyInd(result, &m_result.Raw())) ? S_OK : E_OUTOFMEMORY;
    }
}

HRESULT FireObject::CallByName(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                               EXCEPINFO* exception, UINT* argumentError)
{
    if (m_busy)
        return E_FAIL;
    m_succeeded = false;
    if (parameters.cArgs < 1)
        return DISP_E_BADPARAMCOUNT;
    if (!(flags & DISPATCH_METHOD))
        return DISP_E_TYPEMISMATCH;
    if (parameters.cNamedArgs != 0)
        return DISP_E_NONAMEDARGS;
    if (MemoryReserve::IsExhausted())
        return E_OUTOFMEMORY;
    // Held for the call: a procedure may drop the host's last reference.
    AddRef();
    HRESULT outcome = E_OUTOFMEMORY;
    try {
        EntryGuard guard(m_engine.Context());
        outcome = CallInsideEngine(member == kEval, parameters, exception, argumentError);
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
    }
    m_busy = false;
    if (result) {
        VariantInit(result);
        *result = BoolValue(m_succeeded);
    }
    Release();
    return outcome;
}

HRESULT FireObject::CallInsideEngine(bool function, const DISPPARAMS& parameters, EXCEPINFO* exception,
                                     UINT* argumentError)
{
    EngineContext& context = m_engine.Context();
    if (IsHaltedForGood())
        return ExceptionForError(ToNumber(ErrorId::HaltedForGood), exception);
    // A debugging call does not break into a statement that another thread has in progress.
    Interpreter& machine = context.Machine();
    if (m_debugging && machine.ExecutionMarker() < 0 && machine.StepThread() != GetCurrentThreadId())
        return ExceptionForError(ToNumber(ErrorId::BusyForService), exception);
    MacroCallTarget target;
    if (!context.Modules().FindHostProcedure(ProcedureName(parameters),
                                             function ? ProcedureKind::Function : ProcedureKind::Sub,
                                             target.procedure, target.instance))
        return ExceptionForError(ToNumber(ErrorId::SubOrFunctionMissing), exception);
    MatchedArguments matched;
    const HRESULT matching =
        MatchArguments(*target.procedure, GivenArguments::FromDispParams(parameters, 1), matched, argumentError);
    if (FAILED(matching))
        return matching;
    m_busy = true;
    Variant value;
    // A debugging fire object's calls may stop in the debugger; the others run to their end.
    const HostCallMode mode = m_debugging ? DebuggableCallMode(context, false) : HostCallMode::kPlain;
    const HRESULT outcome =
        CallMacroProcedure(context, target, matched, function ? &value : nullptr, exception, mode);
    m_busy = false;
    if (outcome == S_OK) {
        m_succeeded = true;
        if (function)
            m_result = std::move(value);
    }
    return outcome;
}

} // namespace brannoc
