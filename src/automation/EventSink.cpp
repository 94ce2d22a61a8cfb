#include "automation/EventSink.h"

#include "exec/ErrorMessages.h"
#include "exec/ModuleInstance.h"
#include "frontend/CharClasses.h"
#include "frontend/Module.h"
#include "frontend/Symbols.h"
#include "host/AnsiText.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include "host/EventSource.h"
#include "host/LibraryLifetime.h"
#include "host/MemoryReserve.h"
#include "host/ModuleManager.h"
#include "values/Variant.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <new>
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

} // namespace

EventSink* EventSink::ForVariable(EngineContext& context, ModuleInstance& receiver, const std::string& prefix,
                                  ITypeInfo* source)
{
    return new (std::nothrow) EventSink(context, &receiver, prefix, source);
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

HRESULT __stdcall EventSink::QueryInterface(REFIID id, void** object)
{
    if (!object)
        return E_POINTER;
    if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
        (!IsEqualIID(m_sourceId, GUID_NULL) && IsEqualIID(id, m_sourceId))) {
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG __stdcall EventSink::AddRef() { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }

ULONG __stdcall EventSink::Release()
{
    const LONG remaining = InterlockedDecrement(&m_references);
    if (remaining == 0) {
        EngineLock::Acquire();
        delete this;
        EngineLock::Release();
    }
    return static_cast<ULONG>(remaining);
}

HRESULT __stdcall EventSink::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = m_source ? 1 : 0;
    return S_OK;
}

HRESULT __stdcall EventSink::GetTypeInfo(UINT index, LCID, ITypeInfo** info)
{
    if (!info)
        return E_POINTER;
    *info = nullptr;
    if (index != 0 || !m_source)
        return DISP_E_BADINDEX;
    *info = ComRef<ITypeInfo>::Share(m_source.Get()).Detach();
    return S_OK;
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
    return Deliver(event, GivenArguments::FromDispParams(parameters ? *parameters : none), result, exception,
                   argumentError, Interpreter::ErrorExit::kReport);
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
                           EXCEPINFO* exception, UINT* argumentError, Interpreter::ErrorExit errorExit)
{
    if (argumentError)
        *argumentError = static_cast<UINT>(-1);
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
            outcome = S_OK;
        } else {
            if (context.ApiTraceOn()) {
                context.Trace(TraceKind::Entry, L"*RaiseEvent(\"" + WideFromAnsi(m_prefix) + L"_" + event + L"\")");
                context.Trace(TraceKind::Detail, SinkAddress(this));
            }
            MatchedArguments matched;
            outcome = MatchArguments(*target.procedure, given, matched, argumentError);
            Variant value;
            if (SUCCEEDED(outcome))
                outcome = CallMacroProcedure(context, target, matched, result ? &value : nullptr, exception,
                                             ModeFor(context, errorExit), errorExit);
            if (outcome == S_OK && result) {
                VariantInit(result);
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
    m_closed = true;
    m_receiver = nullptr;
    Release();
}

} // namespace brannoc::automation
