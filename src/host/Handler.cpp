#include "host/Handler.h"

#include "exec/ErrorMessages.h"
#include "frontend/Module.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/MemoryReserve.h"
#include "values/Variant.h"

#include <deque>
#include <new>

namespace brannoc {
namespace {

struct MemberName {
    const wchar_t* name;
    DISPID id;
};
constexpr MemberName kMembers[] = {
    {L"Exists", Handler::kExists},         {L"Call", Handler::kCall},
    {L"Evaluate", Handler::kEvaluate},     {L"Start", Handler::kStart},
    {L"StepInto", Handler::kStepInto},     {L"CallPA", Handler::kCallPA},
    {L"EvaluatePA", Handler::kEvaluatePA}, {L"StartPA", Handler::kStartPA},
    {L"Prototype", Handler::kPrototype},   {L"ProcName", Handler::kProcName},
    {L"IsModuleLoaded", Handler::kIsModuleLoaded}};

// The API trace of a host call into a macro: the entry, the handler and the arguments.
void TraceInvokeEntry(EngineContext& context, const std::wstring& procName, const void* handler,
                      const Procedure& procedure, const MatchedArguments& matched)
{
    context.Trace(TraceKind::Entry, L"*Invoke(\"" + procName + L"\")");
    wchar_t address[32];
    swprintf(address, 32, L"Me=0x%lx", static_cast<unsigned long>(reinterpret_cast<uintptr_t>(handler)));
    context.Trace(TraceKind::Detail, address);
    TraceHostCallArguments(context, procedure, matched);
}

void SetBool(VARIANT* result, bool value)
{
    VariantInit(result);
    result->vt = VT_BOOL;
    result->boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

HRESULT SetText(VARIANT* result, const std::wstring& text)
{
    VariantInit(result);
    result->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!result->bstrVal)
        return E_OUTOFMEMORY;
    result->vt = VT_BSTR;
    return S_OK;
}

// The arguments of CallPA and EvaluatePA: the elements of a one-dimensional array of Variants. An
// element that is itself a reference passes a copy of what it refers to; the others pass a reference
// to the element, so that the procedure's assignments land in the array.
class ArrayArguments {
public:
    ~ArrayArguments()
    {
        if (m_array)
            SafeArrayUnaccessData(m_array);
    }
    HRESULT Open(VARIANT& given)
    {
        const VARIANT* value = FollowByRefChain(&given);
        SAFEARRAY* array = nullptr;
        if (value->vt == (VT_ARRAY | VT_VARIANT))
            array = value->parray;
        else if (value->vt == (VT_BYREF | VT_ARRAY | VT_VARIANT))
            array = value->pparray ? *value->pparray : nullptr;
        else
            return DISP_E_TYPEMISMATCH;
        if (!array)
            return S_OK;
        if (SafeArrayGetDim(array) != 1)
            return DISP_E_TYPEMISMATCH;
        VARIANT* elements = nullptr;
        if (FAILED(SafeArrayAccessData(array, reinterpret_cast<void**>(&elements))))
            return E_INVALIDARG;
        m_array = array;
        const ULONG count = array->rgsabound[0].cElements;
        for (ULONG i = 0; i < count; ++i) {
            VARIANT& element = elements[i];
            m_slots.emplace_back();
            VARIANT& slot = m_slots.back().Raw();
            if (element.vt & VT_BYREF) {
                if (!m_slots.back().CopyIndirectFrom(element))
                    return E_OUTOFMEMORY;
            } else {
                slot.vt = VT_BYREF | VT_VARIANT;
                slot.pvarVal = &element;
            }
            m_given.positional.push_back(&slot);
        }
        return S_OK;
    }
    const GivenArguments& Given() const { return m_given; }

private:
    SAFEARRAY* m_array = nullptr;
    std::deque<Variant> m_slots;
    GivenArguments m_given;
};

} // namespace

Handler* Handler::Create(CodeUnit& engine, HandlerPrototype prototype)
{
    return new (std::nothrow) Handler(engine, std::move(prototype));
}

Handler::Handler(CodeUnit& engine, HandlerPrototype prototype) : m_engine(engine), m_prototype(std::move(prototype))
{
    m_engine.AddRef();
}

Handler::~Handler()
{
    // The API trace notes the handler's end; the name is the prototype's, with no lookup in the modules.
    EngineContext& context = m_engine.Context();
    if (context.ApiTraceOn()) {
        std::string name = m_prototype.module + "|" + m_prototype.name;
        if (!m_prototype.project.empty())
            name = m_prototype.project + ">" + name;
        context.Trace(TraceKind::Entry, L"*DestroyHandler(\"" + WideFromAnsi(name) + L"\")");
        context.Trace(TraceKind::Exit, L"");
    }
    m_engine.Release();
}

// Names compare with case.
HRESULT __stdcall Handler::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (count == 0 || !names || !ids)
        return E_INVALIDARG;
    HRESULT outcome = S_OK;
    for (UINT i = 0; i < count; ++i)
        ids[i] = DISPID_UNKNOWN;
    for (const MemberName& member : kMembers) {
        if (names[0] && wcscmp(names[0], member.name) == 0)
            ids[0] = member.id;
    }
    if (ids[0] == DISPID_UNKNOWN)
        outcome = DISP_E_UNKNOWNNAME;
    return count > 1 ? DISP_E_UNKNOWNNAME : outcome;
}

std::string Handler::QualifiedName() const
{
    return m_prototype.module.empty() ? m_prototype.name : m_prototype.module + "." + m_prototype.name;
}

bool Handler::Bind(MacroCallTarget& target)
{
    return m_engine.Context().Modules().FindHostProcedure(
        QualifiedName(), m_prototype.isFunction ? ProcedureKind::Function : ProcedureKind::Sub, target.procedure,
        target.instance);
}

std::wstring Handler::ProcName()
{
    std::string module = m_prototype.module;
    MacroCallTarget target;
    if (module.empty() && Bind(target) && target.procedure->code) {
        if (const Module* owner = m_engine.Context().Modules().ModuleOf(*target.procedure->code))
            module = owner->Name();
    }
    return WideFromAnsi(module + "|" + m_prototype.name);
}

std::wstring Handler::TracedProcName()
{
    // A module of a named project is written as the project's name, ">" and the module's name.
    const std::wstring name = ProcName();
    return !name.empty() && name[0] == L'<' ? name.substr(1) : name;
}

HRESULT __stdcall Handler::Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* parameters,
                                  VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    if (argumentError)
        *argumentError = static_cast<UINT>(-1);
    static DISPPARAMS none{nullptr, nullptr, 0, 0};
    const DISPPARAMS& given = parameters ? *parameters : none;
    switch (member) {
    case kStepInto:
        if (given.cArgs == 1)
            return PutStepInto(flags, given);
        [[fallthrough]];
    case kExists:
    case kPrototype:
    case kProcName:
    case kIsModuleLoaded:
        return Describe(member, flags, given, result);
    case kCall:
    case kEvaluate:
    case kStart:
    case kCallPA:
    case kEvaluatePA:
    case kStartPA:
        return Call(member, flags, given, result, exception, argumentError);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT Handler::Describe(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result)
{
    if (const HRESULT shape = CheckPropertyGet(flags, parameters, result); FAILED(shape))
        return shape;
    try {
        EntryGuard guard(m_engine.Context());
        EngineContext& context = m_engine.Context();
        switch (member) {
        case kExists: {
            MacroCallTarget target;
            SetBool(result, Bind(target));
            return S_OK;
        }
        case kStepInto:
            SetBool(result, m_stepInto);
            return S_OK;
        case kPrototype:
            return SetText(result, WideFromAnsi(m_prototype.canonical));
        case kProcName:
            return SetText(result, ProcName());
        default:
            SetBool(result, m_prototype.module.empty()
                                ? context.Control(EngineContext::kActionQuietQuery, 0) != RunState::Idle
                                : context.Modules().FindLoadedModule(m_prototype.module) != nullptr);
            return S_OK;
        }
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
        return E_OUTOFMEMORY;
    }
}

HRESULT Handler::PutStepInto(WORD flags, const DISPPARAMS& parameters)
{
    if (!(flags & DISPATCH_PROPERTYPUT))
        return DISP_E_TYPEMISMATCH;
    Variant on;
    const HRESULT converted = VariantChangeType(&on.Raw(), FollowByRefChain(&parameters.rgvarg[0]), 0, VT_BOOL);
    if (FAILED(converted))
        return converted;
    m_stepInto = on.Raw().boolVal != VARIANT_FALSE;
    return S_OK;
}

HRESULT Handler::Call(DISPID member, WORD flags, const DISPPARAMS& parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* argumentError)
{
    const bool evaluate = member == kEvaluate || member == kEvaluatePA;
    const bool start = member == kStart || member == kStartPA;
    if (start && m_engine.Context().Machine().IsEvaluating())
        return E_INVALIDARG;
    if (start && parameters.cNamedArgs > 0)
        return DISP_E_NONAMEDARGS;
    if (evaluate ? !result : result != nullptr)
        return DISP_E_TYPEMISMATCH;
    if (!(flags & DISPATCH_METHOD))
        return DISP_E_TYPEMISMATCH;
    if (MemoryReserve::IsExhausted())
        return E_OUTOFMEMORY;
    if (member == kCall || member == kEvaluate || member == kStart) {
        const GivenArguments given = GivenArguments::FromDispParams(parameters);
        return start ? StartWith(given, exception, argumentError) : CallWith(given, result, exception, argumentError);
    }
    if (parameters.cArgs != 1)
        return DISP_E_BADPARAMCOUNT;
    ArrayArguments array;
    const HRESULT opened = array.Open(parameters.rgvarg[0]);
    if (FAILED(opened))
        return opened;
    return start ? StartWith(array.Given(), exception, argumentError)
                 : CallWith(array.Given(), result, exception, argumentError);
}

HRESULT Handler::CallWith(const GivenArguments& given, VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    // Held for the call: the procedure may drop the host's last reference.
    AddRef();
    HRESULT outcome = E_OUTOFMEMORY;
    try {
        EngineContext& context = m_engine.Context();
        EntryGuard guard(context);
        MacroCallTarget target;
        if (IsHaltedForGood()) {
            outcome = ExceptionForError(ToNumber(ErrorId::HaltedForGood), exception);
        } else if (!Bind(target)) {
            outcome = DISP_E_UNKNOWNNAME;
        } else if ((target.procedure->kind == ProcedureKind::Sub) == (result != nullptr)) {
            // Evaluate of a Sub, or Call of a Function: the procedure asked for does not exist.
            outcome = ExceptionForError(ToNumber(ErrorId::SubOrFunctionMissing), exception);
        } else {
            MatchedArguments matched;
            outcome = MatchArguments(*target.procedure, given, matched, argumentError);
            Variant value;
            const bool traced = SUCCEEDED(outcome) && context.ApiTraceOn();
            if (traced)
                TraceInvokeEntry(context, TracedProcName(), this, *target.procedure, matched);
            if (SUCCEEDED(outcome))
                outcome = CallMacroProcedure(context, target, matched, result ? &value : nullptr, exception,
                                             DebuggableCallMode(context, m_stepInto));
            if (traced) {
                if (outcome == S_OK && result)
                    context.Trace(TraceKind::Result, L"Result=" + TraceValueText(value.Raw()));
                context.Trace(TraceKind::Exit, L"");
            }
            if (outcome == S_OK && result) {
                VariantInit(result);
                value.Detach(*result);
            }
            if (SUCCEEDED(outcome) && context.Control(EngineContext::kActionQuietQuery, 0) == RunState::Busy)
                outcome = E_ABORT;
        }
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
    }
    Release();
    return outcome;
}

} // namespace brannoc
