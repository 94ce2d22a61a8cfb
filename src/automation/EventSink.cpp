#include "automation/EventSink.h"

#include "exec/ErrorMessages.h"
#include "exec/ModuleInstance.h"
#include "frontend/CharClasses.h"
#include "frontend/Module.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/CodeUnit.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include "host/EventSource.h"
#include "host/HandlerPrototype.h"
#include "host/HostCallBack.h"
#include "host/LibraryLifetime.h"
#include "host/MemoryReserve.h"
#include "host/ModuleManager.h"
#include "values/Variant.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace brannoc::automation {
namespace {

// Every live sink (all engine code runs under the engine lock), so that a project can disconnect them.
std::vector<EventSink*> s_sinks;

std::wstring SinkAddress(const void* sink)
{
    wchar_t text[32];
    std::swprintf(text, 32, L"Sink 0x%lx", static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(sink)));
    return text;
}

// A procedure of module that an event may call: a Sub or a Function of that name.
Procedure* EventProcedure(const Module& module, const std::string& name)
{
    const CompiledModule* compiled = module.Compiled();
    if (!compiled)
        return nullptr;
    for (const auto& procedure : compiled->procedures) {
        if ((procedure->kind == ProcedureKind::Sub || procedure->kind == ProcedureKind::Function) &&
            procedure->code && SameName(procedure->name, name))
            return procedure.get();
    }
    return nullptr;
}

// An event that running macro code raises runs its procedure plainly inside the raising statement; one
// from outside is a host call that may stop for debugging like a handler's.
HostCallMode ModeFor(EngineContext& context, Interpreter::ErrorExit errorExit)
{
    return errorExit == Interpreter::ErrorExit::kToCaller ? HostCallMode::kPlain : DebuggableCallMode(context, false);
}

// The name of the first function of a source interface that is not restricted (the IUnknown and
// IDispatch methods of a dispatch interface are).
std::wstring FirstEventName(ITypeInfo* source)
{
    TYPEATTR* attr = nullptr;
    if (FAILED(source->GetTypeAttr(&attr)))
        return {};
    const UINT count = attr->cFuncs;
    source->ReleaseTypeAttr(attr);
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(source->GetFuncDesc(i, &function)))
            continue;
        const bool restricted = (function->wFuncFlags & FUNCFLAG_FRESTRICTED) != 0;
        const MEMBERID id = function->memid;
        source->ReleaseFuncDesc(function);
        if (!restricted)
            return MemberNameOf(source, id);
    }
    return {};
}

} // namespace

EventSink* EventSink::ForVariable(EngineContext& context, ModuleInstance& receiver, const std::string& prefix,
                                  ITypeInfo* source)
{
    EventSink* sink = new (std::nothrow) EventSink(context, &receiver, prefix, source);
    // A sink bound to an instance of an object module is traced as it is bound and as it is released.
    if (sink && receiver.OwnModule().Kind() != ModuleKind::Plain)
        sink->TraceSink(L"Connect");
    return sink;
}

EventSink* EventSink::ForExtension(EngineContext& context, const std::string& prefix, ITypeInfo* source)
{
    return new (std::nothrow) EventSink(context, nullptr, prefix, source);
}

EventSink::EventSink(EngineContext& context, ModuleInstance* receiver, std::string prefix, ITypeInfo* source)
    : m_context(&context), m_receiver(receiver), m_prefix(std::move(prefix)),
      m_source(ComRef<ITypeInfo>::Share(source))
{
    if (source)
        m_sourceId = TypeGuidOf(source);
    AddObjectReference();
    s_sinks.push_back(this);
}

EventSink::~EventSink()
{
    std::erase(s_sinks, this);
    ReleaseObjectReference();
}

int EventSink::DisconnectAll(EngineContext& context)
{
    int connected = 0;
    // Copied: a release during the disconnection may end other sinks.
    const std::vector<EventSink*> sinks = s_sinks;
    for (EventSink* sink : sinks) {
        if (sink->m_context != &context || std::find(s_sinks.begin(), s_sinks.end(), sink) == s_sinks.end())
            continue;
        if (sink->IsConnected())
            ++connected;
        sink->AddRef();
        sink->Disconnect();
        sink->Release();
    }
    return connected;
}

HRESULT __stdcall EventSink::GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    if (count == 0 || !names || !ids)
        return E_INVALIDARG;
    if (count > 1)
        return DISP_E_PARAMNOTFOUND;
    if (!m_source)
        return DISP_E_UNKNOWNNAME;
    return DispGetIDsOfNames(m_source.Get(), names, 1, ids);
}

HRESULT __stdcall EventSink::Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* parameters,
                                    VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    if (m_cookie == 0 || (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)))
        return E_INVALIDARG;
    if (result)
        VariantInit(result);
    const std::wstring event = MemberNameOf(m_source.Get(), member);
    if (event.empty())
        return S_OK;
    static DISPPARAMS none{nullptr, nullptr, 0, 0};
    GivenArguments given = GivenArguments::FromDispParams(parameters ? *parameters : none);
    Variant positions[2];
    ConvertPositionArguments(m_connected.Get(), PositionsOf(member), given, positions);
    return Deliver(event, given, result, exception, argumentError, Interpreter::ErrorExit::kReport, member);
}

PositionParameters EventSink::PositionsOf(DISPID event) const
{
    PositionParameters positions;
    const std::optional<EventPrototype> prototype = EventPrototypeOf(m_source.Get(), event, m_prefix);
    if (!prototype)
        return positions;
    if (const std::optional<HandlerPrototype> parsed = ParseHandlerPrototype(prototype->declaration)) {
        positions.x = parsed->xParameter;
        positions.pixels = parsed->xInPixels;
    }
    return positions;
}

// An event of an extension's source that no procedure handles, arriving while the engine is idle, is
// offered to the host, which may write the procedure. A variable's module is always loaded while its
// sink listens, so its events are never offered.
void EventSink::OfferEventCode(const std::wstring& event, DISPID member)
{
    if (m_receiver || (m_filter != kAllEvents && member != m_filter) ||
        m_context->Control(EngineContext::kActionQuietQuery, 0) != RunState::Idle)
        return;
    // A sink for one event names it by the source interface's first function.
    const std::wstring name = m_filter == kAllEvents ? event : FirstEventName(m_source.Get());
    (void)HostCallBack::EditEventCode(m_context->CallBack(), m_context->Owner().AsDispatch(),
                                      WideFromAnsi(m_prefix) + L"_" + name, m_filter != kAllEvents);
}

bool EventSink::FindProcedure(const std::wstring& event, MacroCallTarget& target)
{
    const std::string name = m_prefix + "_" + AnsiFromWide(event);
    if (m_receiver) {
        target.procedure = EventProcedure(m_receiver->OwnModule(), name);
        target.instance = m_receiver;
        return target.procedure != nullptr;
    }
    ModuleManager& modules = m_context->Modules();
    return modules.FindHostProcedure(name, ProcedureKind::Sub, target.procedure, target.instance) ||
           modules.FindHostProcedure(name, ProcedureKind::Function, target.procedure, target.instance);
}

// The event's procedure runs to its end inside the call; an event without a procedure changes nothing.
HRESULT EventSink::Deliver(const std::wstring& event, const GivenArguments& given, VARIANT* result,
                           EXCEPINFO* exception, UINT* argumentError, Interpreter::ErrorExit errorExit, DISPID member)
{
    if (argumentError)
        *argumentError = static_cast<UINT>(-1);
    // Only an event that returns a value fills the result.
    if (result)
        VariantInit(result);
    if (m_closed)
        return S_OK;
    // Held for the call: the procedure may set its variable to another object.
    AddRef();
    HRESULT outcome = E_OUTOFMEMORY;
    try {
        EngineContext& context = *m_context;
        EntryGuard guard(context);
        MacroCallTarget target;
        if (IsHaltedForGood()) {
            outcome = ExceptionForError(ToNumber(ErrorId::HaltedForGood), exception);
        } else if (!FindProcedure(event, target)) {
            if (member != DISPID_UNKNOWN)
                OfferEventCode(event, member);
            outcome = S_OK;
        } else {
            if (context.ApiTraceOn()) {
                context.Trace(TraceKind::Entry, L"*RaiseEvent(\"" + WideFromAnsi(m_prefix) + L"_" + event + L"\")");
                context.Trace(TraceKind::Detail, SinkAddress(this));
            }
            MatchedArguments matched;
            outcome = MatchArguments(*target.procedure, given, matched, argumentError);
            if (SUCCEEDED(outcome))
                TraceHostCallArguments(context, *target.procedure, matched);
            const bool givesValue = result && target.procedure->kind != ProcedureKind::Sub;
            Variant value;
            if (SUCCEEDED(outcome))
                outcome = CallMacroProcedure(context, target, matched, givesValue ? &value : nullptr, exception,
                                             ModeFor(context, errorExit), errorExit);
            if (outcome == S_OK && givesValue) {
                if (context.ApiTraceOn())
                    context.Trace(TraceKind::Result, L"Result=" + TraceValueText(value.Raw()));
                value.Detach(*result);
            }
            if (context.ApiTraceOn())
                context.Trace(TraceKind::Exit, L"");
        }
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
    }
    Release();
    return outcome;
}

bool EventSink::Hear(const std::string& event, Variant* arguments, int count)
{
    GivenArguments given;
    for (int i = 0; i < count; ++i)
        given.positional.push_back(&arguments[i].Raw());
    const HRESULT outcome =
        Deliver(WideFromAnsi(event), given, nullptr, nullptr, nullptr, Interpreter::ErrorExit::kToCaller);
    if (SUCCEEDED(outcome))
        return true;
    if (outcome != DISP_E_EXCEPTION && m_context->Machine().Error().number == 0) {
        // The arguments did not fit the procedure's parameters.
        (void)m_context->Machine().SignalError(outcome == DISP_E_BADPARAMCOUNT || outcome == DISP_E_PARAMNOTOPTIONAL
                                                  ? ToNumber(ErrorId::WrongParameterCount)
                                                  : ToNumber(ErrorId::TypeMismatch));
    }
    return false;
}

void EventSink::TraceSink(const wchar_t* verb) const
{
    if (m_context->ApiTraceOn())
        m_context->Trace(TraceKind::Event, std::wstring(verb) + L" " + SinkAddress(this));
}

void EventSink::Assign(IUnknown* object)
{
    Disconnect();
    if (m_closed || !object)
        return;
    if (ModuleInstance* instance = m_context->InstanceOf(object)) {
        // A class instance of the macro raises its events through the sinks that listen to it.
        ComRef<IDispatch> held;
        if (FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(held.Out()))))
            return;
        m_connected = std::move(held);
        m_macroSource = instance;
        instance->AddListener(this);
        TraceSink(L"Advise");
        return;
    }
    ComRef<IDispatch> dispatch;
    if (FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))))
        return;
    Advise(dispatch.Get());
}

// A source without a connection point for the source interface, or one that refuses the advise, is
// simply not connected.
void EventSink::Advise(IDispatch* object)
{
    if (!m_source) {
        // The declared type named no source interface: the object's class may tell it.
        ComRef<ITypeInfo> source;
        if (FindDefaultSource(object, source) != SourceLookup::Found)
            return;
        m_source = std::move(source);
        m_sourceId = TypeGuidOf(m_source.Get());
    }
    ComRef<IConnectionPointContainer> container;
    ComRef<IConnectionPoint> point;
    if (FAILED(object->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(container.Out()))) ||
        FAILED(container->FindConnectionPoint(m_sourceId, point.Out())) || !point)
        return;
    DWORD cookie = 0;
    if (FAILED(point->Advise(static_cast<IDispatch*>(this), &cookie)) || cookie == 0)
        return;
    m_point = std::move(point);
    m_cookie = cookie;
    m_connected = ComRef<IDispatch>::Share(object);
    TraceSink(L"Advise");
}

void EventSink::Disconnect()
{
    if (m_macroSource) {
        m_macroSource->RemoveListener(this);
        m_macroSource = nullptr;
        TraceSink(L"Unadvise");
    }
    if (m_cookie != 0) {
        TraceSink(L"Unadvise");
        const DWORD cookie = std::exchange(m_cookie, 0);
        ComRef<IConnectionPoint> point = std::move(m_point);
        point->Unadvise(cookie);
    }
    m_connected = ComRef<IDispatch>();
}

void EventSink::SourceEnded(ModuleInstance& source)
{
    if (m_macroSource != &source)
        return;
    m_macroSource = nullptr;
    // The object is going: it is not released again here.
    (void)m_connected.Detach();
}

void EventSink::Close()
{
    if (m_closed)
        return;
    Disconnect();
    if (m_receiver && m_receiver->OwnModule().Kind() != ModuleKind::Plain)
        TraceSink(L"Disconnect");
    m_closed = true;
    m_receiver = nullptr;
    Release();
}

} // namespace brannoc::automation
