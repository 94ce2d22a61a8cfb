#include "host/CodeUnit.h"
#include "host/ErrDispatch.h"

#include "automation/ExtensionTypeArray.h"
#include "exec/ErrorMessages.h"
#include "frontend/CharClasses.h"
#include "frontend/Lexer.h"
#include "frontend/Module.h"
#include "host/AnsiText.h"
#include "host/DefaultCallBack.h"
#include "host/EntryGuard.h"
#include "host/FireObject.h"
#include "host/EventSource.h"
#include "host/Handler.h"
#include "host/HandlerCollection.h"
#include "host/HostSubCall.h"
#include "host/LibraryLifetime.h"
#include "host/MacroKeywords.h"
#include "host/MemoryReserve.h"
#include "host/Prototypes.h"
#include "host/ResumeThread.h"
#include "host/ThisModule.h"
#include "values/TextForm.h"
#include "values/Variant.h"
#include <atomic>
#include <cstdint>
#include <cwchar>
#include <new>

namespace brannoc {
namespace {

std::atomic<unsigned long> s_identifierCounter{0};
CodeUnit* s_first = nullptr;
CodeUnit* s_last = nullptr;

VARIANT_BOOL AsBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

std::wstring Text(BSTR text) { return text ? std::wstring(text, SysStringLen(text)) : std::wstring(); }

// Hands a new BSTR to an out parameter; E_OUTOFMEMORY when it cannot be made.
HRESULT Out(BSTR* result, const std::wstring& text)
{
    if (!result)
        return E_POINTER;
    Bstr value;
    if (!value.Assign(text))
        return E_OUTOFMEMORY;
    *result = value.Detach();
    return S_OK;
}

// The version resource, then " - " and the library file's last-write date in the user's locale.
std::wstring VersionText()
{
    std::wstring version = LoadResourceString(0);
    if (version.empty())
        version = L"0.0.00";
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(ThisModulePath().c_str(), GetFileExInfoStandard, &data))
        return version;
    FILETIME local;
    SYSTEMTIME time;
    DATE date = 0;
    Bstr shown;
    if (FileTimeToLocalFileTime(&data.ftLastWriteTime, &local) && FileTimeToSystemTime(&local, &time) &&
        SystemTimeToVariantTime(&time, &date) &&
        SUCCEEDED(VarBstrFromDate(date, LOCALE_USER_DEFAULT, VAR_DATEVALUEONLY, shown.Out())))
        return version + L" - " + std::wstring(shown.View());
    return version + L" - ?";
}

} // namespace

CodeUnit* CodeUnit::Create(ITypeInfo* classType)
{
    if (!classType)
        return nullptr;
    // Late-bound calls are dispatched through the vtable half of the class's default dual interface.
    HREFTYPE href = 0;
    ComRef<ITypeInfo> defaultInterface;
    ComRef<ITypeInfo> vtableInterface;
    if (FAILED(classType->GetRefTypeOfImplType(0, &href)) ||
        FAILED(classType->GetRefTypeInfo(href, defaultInterface.Out())))
        return nullptr;
    if (SUCCEEDED(defaultInterface->GetRefTypeOfImplType(static_cast<UINT>(-1), &href)))
        defaultInterface->GetRefTypeInfo(href, vtableInterface.Out());
    if (!vtableInterface)
        vtableInterface = defaultInterface;
    MemoryReserve::Install();
    CodeUnit* unit = nullptr;
    bool needsResumeThread = false;
    try {
        EngineLockScope lock;
        unit = new CodeUnit(classType, vtableInterface.Get());
        needsResumeThread = unit->OthersOnOtherThreads();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    // Threads that use the engine at the same time take turns from here on.
    if (needsResumeThread)
        ResumeThread::Start();
    return unit;
}

CodeUnit::CodeUnit(ITypeInfo* classType, ITypeInfo* dispatchType)
    : m_identifier(++s_identifierCounter),
      m_classType(ComRef<ITypeInfo>::Share(classType)),
      m_dispatchType(ComRef<ITypeInfo>::Share(dispatchType)),
      m_context(std::make_unique<EngineContext>(*this))
{
    AddObjectReference();
    // The user-interface language stays as it is while engine objects exist.
    OA_NlsLock(TRUE);
    m_errObject = CreateErrDispatch(*m_context, classType);
    if (FAILED(CoCreateGuid(&m_instanceGuid))) {
        // A locally made value: the identifier and the tick count are enough to tell objects apart.
        m_instanceGuid.Data1 = m_identifier;
        m_instanceGuid.Data2 = static_cast<unsigned short>(GetTickCount());
        m_instanceGuid.Data3 = static_cast<unsigned short>(GetCurrentProcessId());
    }
    Link();
}

CodeUnit::~CodeUnit()
{
    // Late calls on the Err object do nothing once its engine is gone.
    DetachErrDispatch(m_errObject.Get());
    m_errObject = {};
    // Release already holds the engine lock; the context must not be current while it is destroyed.
    m_context.reset();
    OA_NlsLock(FALSE);
    Unlink();
    ReleaseObjectReference();
}

void CodeUnit::Link()
{
    m_previous = s_last;
    if (s_last)
        s_last->m_next = this;
    else
        s_first = this;
    s_last = this;
}

void CodeUnit::Unlink()
{
    (m_previous ? m_previous->m_next : s_first) = m_next;
    (m_next ? m_next->m_previous : s_last) = m_previous;
}

CodeUnit* CodeUnit::First() { return s_first; }

bool CodeUnit::OthersOnOtherThreads() const
{
    for (const CodeUnit* unit = s_first; unit; unit = unit->m_next) {
        if (unit != this && unit->m_creatorThread != m_creatorThread)
            return true;
    }
    return false;
}

bool CodeUnit::OthersOnOneThread() const
{
    const CodeUnit* first = nullptr;
    for (const CodeUnit* unit = s_first; unit; unit = unit->m_next) {
        if (unit == this)
            continue;
        if (first && unit->m_creatorThread != first->m_creatorThread)
            return false;
        first = unit;
    }
    return true;
}

template <typename Work>
HRESULT CodeUnit::Entered(Work&& work)
{
    if (MemoryReserve::IsExhausted()) {
        MemoryReserve::ReportOnce();
        return E_OUTOFMEMORY;
    }
    try {
        EntryGuard guard(*m_context);
        return work();
    } catch (const std::bad_alloc&) {
        MemoryReserve::ReportOnce();
        return E_OUTOFMEMORY;
    }
}

// ---- IUnknown and IDispatch ----

HRESULT __stdcall CodeUnit::QueryInterface(REFIID id, void** object)
{
    if (!object)
        return E_POINTER;
    if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, IID__CodeUnit)) {
        *object = static_cast<_CodeUnit*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

// Not atomic: every user of an engine object is serialised by the engine lock.
ULONG __stdcall CodeUnit::AddRef() { return ++m_references; }

ULONG __stdcall CodeUnit::Release()
{
    ULONG remaining = --m_references;
    if (remaining == 0) {
        // Terminators that run while the engine goes may pass this object to the host, which may take
        // and drop references; the count stays above zero so that none of that deletes it again.
        m_references = 1;
        EngineLockScope lock;
        // The last object that needed the turns of the resume thread stops it.
        if (ResumeThread::IsRunning() && OthersOnOneThread())
            ResumeThread::Stop();
        delete this;
    }
    return remaining;
}

HRESULT __stdcall CodeUnit::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT __stdcall CodeUnit::GetTypeInfo(UINT index, LCID, ITypeInfo** info)
{
    if (!info)
        return E_POINTER;
    *info = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    m_dispatchType->AddRef();
    *info = m_dispatchType.Get();
    return S_OK;
}

HRESULT __stdcall CodeUnit::GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    return DispGetIDsOfNames(m_dispatchType.Get(), names, count, ids);
}

HRESULT __stdcall CodeUnit::Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(id, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    return DispInvoke(static_cast<_CodeUnit*>(this), m_dispatchType.Get(), member, flags, parameters, result,
                      exception, argumentError);
}

// ---- API trace ----

void CodeUnit::TraceEntry(const wchar_t* operation, const std::wstring& argument)
{
    // A name in a named project is written as the project's name, ">" and the name.
    const std::wstring shown = !argument.empty() && argument[0] == L'<' ? argument.substr(1) : argument;
    m_context->Trace(TraceKind::Entry, L"*" + std::wstring(operation) + L"(\"" + shown + L"\")");
}

void CodeUnit::TraceResult(bool result)
{
    m_context->Trace(TraceKind::Result, result ? L"Result=True" : L"Result=False");
    m_context->Trace(TraceKind::Exit, L"");
}

// ---- Execution control ----

HRESULT CodeUnit::ControlMethod(const wchar_t* operation, const std::wstring& argument, int request, long value,
                                RunState wanted, VARIANT_BOOL* result, int haltKind)
{
    return Entered([&] {
        TraceEntry(operation, argument);
        if (haltKind != 0 && m_context->HostCallDepth() > 0) {
            // Carried out when the last host call into a macro returns.
            m_context->DeferHalt(haltKind);
            TraceResult(false);
            if (result)
                *result = VARIANT_FALSE;
            return S_OK;
        }
        bool outcome = m_context->Control(request, value) == wanted;
        TraceResult(outcome);
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::Run(short depth, VARIANT_BOOL* result)
{
    long value = depth > 999 ? 999 : depth;
    return ControlMethod(L"Run", std::to_wstring(depth), EngineContext::kActionRun, value, RunState::Active, result);
}

HRESULT __stdcall CodeUnit::Step(VARIANT_BOOL* result)
{
    return ControlMethod(L"Step", L"", EngineContext::kActionRun, EngineContext::kStepDepth, RunState::Active,
                         result);
}

HRESULT __stdcall CodeUnit::Continue(VARIANT_BOOL* result)
{
    return ControlMethod(L"Resume", L"", EngineContext::kActionResume, 0, RunState::Active, result);
}

HRESULT __stdcall CodeUnit::Stop(VARIANT_BOOL* result)
{
    return ControlMethod(L"Stop", L"", EngineContext::kActionStop, 0, RunState::Stopped, result);
}

HRESULT __stdcall CodeUnit::Halt(VARIANT_BOOL* result)
{
    return ControlMethod(L"Halt", L"", EngineContext::kActionHalt, 0, RunState::Stopped, result, 1);
}

HRESULT __stdcall CodeUnit::HaltAll(VARIANT_BOOL* result)
{
    return ControlMethod(L"End", L"", EngineContext::kActionEndAll, 0, RunState::Idle, result, 2);
}

HRESULT __stdcall CodeUnit::Shutdown(VARIANT_BOOL* result)
{
    return ControlMethod(L"Shutdown", L"", EngineContext::kActionEndAll, 0, RunState::Idle, result, 3);
}

// ---- State queries ----

HRESULT __stdcall CodeUnit::get_IsActive(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = AsBool(m_context->Control(EngineContext::kActionQuietQuery, 0) == RunState::Active); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_IsIdle(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = AsBool(m_context->Control(EngineContext::kActionQuietQuery, 0) == RunState::Idle); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_IsStopped(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = AsBool(m_context->Control(EngineContext::kActionQuietQuery, 0) == RunState::Stopped); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_IsPaused(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = AsBool(m_context->Machine().ExecutionMarker() < 0); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_Evaluating(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = AsBool(m_context->Machine().IsEvaluating()); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_StackDepth(short* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = static_cast<short>(m_context->Machine().CallDepth()); return S_OK; });
}

HRESULT __stdcall CodeUnit::put_StackDepth(short depth)
{
    return Entered([&] {
        // The frames of a host call into macros belong to its caller, which waits for them.
        if (m_context->HostCallDepth() == 0)
            (void)m_context->Control(EngineContext::kActionSetStackDepth, depth);
        return S_OK;
    });
}

// ---- Settings ----

HRESULT __stdcall CodeUnit::get_Caption(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->Caption()); });
}

HRESULT __stdcall CodeUnit::put_Caption(BSTR caption)
{
    return Entered([&] { m_context->SetCaption(Text(caption)); return S_OK; });
}

// DoEvents polling and Version do not touch the engine context's run state.
HRESULT __stdcall CodeUnit::get_DoEvents(VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    *result = AsBool(m_context->DoEventsPolling());
    return S_OK;
}

HRESULT __stdcall CodeUnit::put_DoEvents(VARIANT_BOOL on)
{
    m_context->SetDoEventsPolling(on != VARIANT_FALSE);
    return S_OK;
}

HRESULT __stdcall CodeUnit::get_ErrorLimit(short* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = m_context->ErrorLimit(); return S_OK; });
}

HRESULT __stdcall CodeUnit::put_ErrorLimit(short limit)
{
    return Entered([&] { m_context->SetErrorLimit(limit); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_BlockedKeywords(BSTR* result)
{
    return Entered([&] { return Out(result, WideFromAnsi(m_context->BlockedKeywords())); });
}

HRESULT __stdcall CodeUnit::get_Keywords(BSTR* result)
{
    return Entered([&] {
        Lexer lexer;
        lexer.SetBlockedKeywords(m_context->BlockedKeywords());
        std::string list = lexer.HostKeywordList();
        // Bit 0x01 of trace byte B puts the loaded macros' own names at the head of the second line.
        if (m_context->TraceByte(1) & 0x01) {
            std::string macroWords;
            ModuleManager& modules = m_context->Modules();
            for (std::size_t i = 0; i < modules.LoadedCount(); ++i) {
                if (const Module* macro = modules.FindLoadedModule(modules.LoadedName(i)))
                    macroWords += MacroKeywordList(*macro);
            }
            list.insert(list.find("\r\n") + 2, macroWords);
        }
        return Out(result, WideFromAnsi(list));
    });
}

HRESULT __stdcall CodeUnit::get_MacroKeywords(BSTR macroName, BSTR* result)
{
    return Entered([&] {
        if (!result)
            return E_POINTER;
        // Only a loaded macro has compiled names; an empty or unknown name gives empty text.
        std::string name = AnsiFromWide(Text(macroName));
        ModuleManager& modules = m_context->Modules();
        const Module* macro = name.empty() ? nullptr : modules.FindLoadedModule(modules.MapName(name));
        return Out(result, WideFromAnsi(macro ? MacroKeywordList(*macro) : std::string()));
    });
}

HRESULT __stdcall CodeUnit::put_BlockedKeywords(BSTR keywords)
{
    return Entered([&] {
        m_context->SetBlockedKeywords(Lexer::CanonicalBlockedKeywords(AnsiFromWide(Text(keywords))));
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_Version(BSTR* result) { return Out(result, VersionText()); }

HRESULT __stdcall CodeUnit::get_HelpFile(BSTR* result)
{
    return Entered([&] { return Out(result, LanguageHelpFile()); });
}

// The default callback object, made at its first request. While it is the callback the engine keeps no
// callback of its own and takes the same default paths directly.
IDispatch* CodeUnit::DefaultCallBackObject()
{
    if (!m_defaultCallBack)
        m_defaultCallBack = ComRef<IDispatch>::Adopt(CreateDefaultCallBack());
    return m_defaultCallBack.Get();
}

HRESULT __stdcall CodeUnit::get_CallBack(IDispatch** result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] {
        *result = m_context->CallBack() ? m_context->CallBack() : DefaultCallBackObject();
        if (*result)
            (*result)->AddRef();
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_DefaultCallBack(IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = DefaultCallBackObject();
    if (!*result)
        return E_OUTOFMEMORY;
    (*result)->AddRef();
    return S_OK;
}

HRESULT __stdcall CodeUnit::SetCallBack(IDispatch* callBack)
{
    return Entered([&] {
        m_context->SetCallBack(callBack && callBack == m_defaultCallBack.Get() ? nullptr : callBack);
        return S_OK;
    });
}

// ---- Error record ----

HRESULT __stdcall CodeUnit::get_ErrorNumber(long* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = m_context->ErrorReport().number; return S_OK; });
}

HRESULT __stdcall CodeUnit::get_ErrorDesc(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->ErrorReport().description); });
}

HRESULT __stdcall CodeUnit::put_ErrorDesc(BSTR description)
{
    return Entered([&] {
        ErrorLocation& error = m_context->ErrorReport();
        error.Clear();
        std::wstring text = Text(description);
        if (!text.empty()) {
            error.description = text;
            error.helpContext = 5;
            error.helpFile = LanguageHelpFile();
            m_context->ReportHostError();
        }
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_ErrorSource(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->ErrorReport().source); });
}

HRESULT __stdcall CodeUnit::get_ErrorHelpFile(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->ErrorReport().helpFile); });
}

HRESULT __stdcall CodeUnit::get_ErrorHelpContext(long* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = m_context->ErrorReport().helpContext; return S_OK; });
}

HRESULT __stdcall CodeUnit::get_ErrorMacroName(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->ErrorReport().macroName); });
}

HRESULT __stdcall CodeUnit::get_ErrorLine(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->ErrorReport().lineText); });
}

HRESULT __stdcall CodeUnit::get_ErrorLineNum(short* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = static_cast<short>(m_context->ErrorReport().lineNumber); return S_OK; });
}

HRESULT __stdcall CodeUnit::get_ErrorOffset(short* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] { *result = m_context->ErrorReport().offset; return S_OK; });
}

// ---- Modules ----


HRESULT __stdcall CodeUnit::Load(BSTR macroName, VARIANT_BOOL* result)
{
    return Entered([&] {
        std::wstring name = Text(macroName);
        TraceEntry(L"LoadModule", name);
        ModuleStatus status = m_context->Modules().Load(m_context->Modules().MapName(AnsiFromWide(name)));
        m_context->Modules().ReportStatus(status, name);
        bool outcome = MessageForStatus(status).number == 0;
        TraceResult(outcome);
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::Start(BSTR macroName, VARIANT_BOOL* result)
{
    return Entered([&] {
        std::wstring text = Text(macroName);
        TraceEntry(L"Start", text);
        std::string project;
        std::string request;
        const bool named = ModuleManager::SplitProject(AnsiFromWide(text), project, request);
        std::string name;
        std::string command;
        ModuleManager::SplitStartText(request, name, command);
        name = m_context->Modules().MapName(named ? "<" + project + ">" + name : name);
        ModuleStatus status = m_context->Modules().Start(name, command);
        m_context->Modules().ReportStatus(status, WideFromAnsi(name));
        bool outcome = MessageForStatus(status).number == 0;
        TraceResult(outcome);
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::Unload(BSTR macroName, VARIANT_BOOL* result)
{
    return Entered([&] {
        std::wstring name = Text(macroName);
        TraceEntry(L"UnloadModule", name);
        ModuleManager& modules = m_context->Modules();
        bool outcome = modules.Unload(modules.MapName(AnsiFromWide(name))) == ModuleStatus::Unloaded;
        TraceResult(outcome);
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::Rename(BSTR oldMacroName, BSTR newMacroName, VARIANT_BOOL* result)
{
    return Entered([&] {
        ModuleManager& modules = m_context->Modules();
        bool outcome = modules.Rename(modules.MapName(AnsiFromWide(Text(oldMacroName))),
                                      modules.MapName(AnsiFromWide(Text(newMacroName))));
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_IsMacro(BSTR macroName, VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] {
        ModuleManager& modules = m_context->Modules();
        *result = AsBool(modules.Status(modules.MapName(AnsiFromWide(Text(macroName)))) != ModuleStatus::NotFound);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_IsMacroActive(BSTR macroName, VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] {
        ModuleManager& modules = m_context->Modules();
        *result = AsBool(modules.IsActive(modules.MapName(AnsiFromWide(Text(macroName)))));
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_LoadedMacroName(short index, BSTR* result)
{
    return Entered([&] {
        std::string name = index < 0 ? std::string() : m_context->Modules().LoadedName(static_cast<std::size_t>(index));
        return Out(result, WideFromAnsi(name));
    });
}

HRESULT __stdcall CodeUnit::get_MacroName(BSTR* result)
{
    return Entered([&] { return Out(result, WideFromAnsi(m_context->Modules().RunningName())); });
}

// ---- Debugging ----

HRESULT __stdcall CodeUnit::get_CallersLine(short depth, BSTR* result)
{
    return Entered([&] { return Out(result, m_context->Debugging().FrameLine(depth)); });
}

HRESULT __stdcall CodeUnit::get_CurrentLine(BSTR* result)
{
    return Entered([&] { return Out(result, m_context->Debugging().FrameLine(0)); });
}

HRESULT __stdcall CodeUnit::get_LineNum(short* result)
{
    return Entered([&] {
        if (!result)
            return E_POINTER;
        *result = static_cast<short>(m_context->Debugging().CurrentLineNumber());
        return S_OK;
    });
}

// Moves the next statement of the current frame; ignored while a statement executes.
HRESULT __stdcall CodeUnit::put_LineNum(short line)
{
    return Entered([&] {
        if (m_context->Machine().ExecutionMarker() == 0 && !m_context->IsBusy())
            (void)m_context->Machine().SetNextLine(line);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::ToggleBreak(BSTR macroName, short line, VARIANT_BOOL* result)
{
    return Entered([&] {
        const std::wstring name = Text(macroName);
        bool outcome = false;
        if (name.empty()) {
            if (line == 0)
                m_context->Debugging().ClearAllBreaks();
            outcome = line == 0;
        } else {
            outcome = m_context->Debugging().ToggleBreak(AnsiFromWide(name), line);
        }
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_BreakLineNum(BSTR macroName, short index, short* result)
{
    return Entered([&] {
        if (!result)
            return E_POINTER;
        *result = static_cast<short>(m_context->Debugging().BreakLineNum(AnsiFromWide(Text(macroName)), index));
        return S_OK;
    });
}

// ---- Calls of Subs by name ----

HRESULT CodeUnit::CallSub(BSTR subName, VARIANT* const* arguments, int count, VARIANT_BOOL* result)
{
    return Entered([&] {
        bool outcome = CallSubForHost(*m_context, AnsiFromWide(Text(subName)), arguments, count);
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::Call0(BSTR subName, VARIANT_BOOL* result) { return CallSub(subName, nullptr, 0, result); }

HRESULT __stdcall CodeUnit::Call1(BSTR subName, VARIANT* arg1, VARIANT_BOOL* result)
{
    VARIANT* arguments[] = {arg1};
    return CallSub(subName, arguments, 1, result);
}

HRESULT __stdcall CodeUnit::Call2(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT_BOOL* result)
{
    VARIANT* arguments[] = {arg1, arg2};
    return CallSub(subName, arguments, 2, result);
}

HRESULT __stdcall CodeUnit::Call3(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT_BOOL* result)
{
    VARIANT* arguments[] = {arg1, arg2, arg3};
    return CallSub(subName, arguments, 3, result);
}

HRESULT __stdcall CodeUnit::Call4(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4,
                                  VARIANT_BOOL* result)
{
    VARIANT* arguments[] = {arg1, arg2, arg3, arg4};
    return CallSub(subName, arguments, 4, result);
}

HRESULT __stdcall CodeUnit::Call5(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4,
                                  VARIANT* arg5, VARIANT_BOOL* result)
{
    VARIANT* arguments[] = {arg1, arg2, arg3, arg4, arg5};
    return CallSub(subName, arguments, 5, result);
}

// ---- Projects and module objects ----

HRESULT __stdcall CodeUnit::ProjectCreate(BSTR projectName, VARIANT_BOOL* result)
{
    return Entered([&] {
        bool outcome = m_context->Modules().CreateProject(AnsiFromWide(Text(projectName)));
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::ProjectDestroy(BSTR projectName, VARIANT_BOOL* result)
{
    return Entered([&] {
        bool outcome = m_context->Modules().DestroyProject(AnsiFromWide(Text(projectName)));
        if (result)
            *result = AsBool(outcome);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_IsProject(BSTR projectName, VARIANT_BOOL* result)
{
    if (!result)
        return E_POINTER;
    return Entered([&] {
        *result = AsBool(m_context->Modules().HasProject(AnsiFromWide(Text(projectName))));
        return S_OK;
    });
}

namespace {

// "*NewInstance" followed by up to 8 hexadecimal digits names an existing class instance by its number.
bool InstanceNumberOf(const std::wstring& name, unsigned& number)
{
    static constexpr std::wstring_view kPrefix = L"*NewInstance";
    if (name.size() <= kPrefix.size() || name.size() > kPrefix.size() + 8 ||
        _wcsnicmp(name.c_str(), kPrefix.data(), kPrefix.size()) != 0)
        return false;
    const wchar_t* digits = name.c_str() + kPrefix.size();
    for (const wchar_t* c = digits; *c; ++c) {
        if (!iswxdigit(*c))
            return false;
    }
    number = static_cast<unsigned>(wcstoul(digits, nullptr, 16));
    return true;
}

} // namespace

void CodeUnit::TraceObjectResult(IDispatch* object)
{
    wchar_t address[32];
    swprintf(address, 32, L"Result=0x%lx", static_cast<unsigned long>(reinterpret_cast<uintptr_t>(object)));
    m_context->Trace(TraceKind::Result, address);
    m_context->Trace(TraceKind::Exit, L"");
}

// The object of a class or object module: a new instance, or its default one; loaded first when needed.
HRESULT __stdcall CodeUnit::Macro(BSTR macroName, VARIANT_BOOL createNew, IDispatch** result)
{
    return Entered([&] {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        const std::wstring text = Text(macroName);
        TraceEntry(createNew ? L"CreateModuleNewInstance" : L"CreateModuleDefaultInstance", text);
        ModuleManager& modules = m_context->Modules();
        if (unsigned number = 0; InstanceNumberOf(text, number)) {
            *result = modules.NumberedObject(number);
            TraceObjectResult(*result);
            return S_OK;
        }
        const std::string name = modules.MapName(AnsiFromWide(text));
        Module* module = modules.FindLoadedModule(name);
        if (!module) {
            ModuleStatus status = modules.Load(name);
            m_context->Modules().ReportStatus(status, WideFromAnsi(name));
            module = MessageForStatus(status).number == 0 ? modules.FindLoadedModule(name) : nullptr;
        }
        if (module && module->Kind() != ModuleKind::Plain)
            *result = createNew ? modules.NewObject(*module) : modules.DefaultObject(*module);
        TraceObjectResult(*result);
        return S_OK;
    });
}

// The declaration lines of the named loaded macro's procedures; empty for a macro that is not loaded.
HRESULT __stdcall CodeUnit::get_Prototypes(BSTR prefix, BSTR* result)
{
    return Entered([&] {
        ModuleManager& modules = m_context->Modules();
        const Module* module = modules.FindLoadedModule(modules.MapName(AnsiFromWide(Text(prefix))));
        return Out(result, module ? WideFromAnsi(PrototypeList(*module)) : std::wstring());
    });
}

// ---- Extensions and references ----

HRESULT __stdcall CodeUnit::AddExtension(BSTR prefix, IDispatch* extension)
{
    return Entered([&] {
        (void)m_context->Extensions().Add(AnsiFromWide(Text(prefix)), extension);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::AddExtensionEx(BSTR prefix, IDispatch* extension, VARIANT_BOOL* result)
{
    return Entered([&] {
        const bool added = m_context->Extensions().Add(AnsiFromWide(Text(prefix)), extension);
        if (result)
            *result = AsBool(added);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::RemoveExtensions(BSTR prefix, VARIANT_BOOL* result)
{
    return Entered([&] {
        const bool removed = m_context->Extensions().Remove(AnsiFromWide(Text(prefix)));
        if (result)
            *result = AsBool(removed);
        return S_OK;
    });
}

// The extension types the named macro sees; an empty name gives the project's.
std::vector<automation::ExtensionTypeEntry> CodeUnit::ExtensionTypesOf(BSTR macro)
{
    std::string name = AnsiFromWide(Text(macro));
    if (!name.empty())
        name = m_context->Modules().MapName(name);
    return m_context->Extensions().Types(name);
}

HRESULT __stdcall CodeUnit::get_ExtensionTypeEx(BSTR macro, short index, IUnknown** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        const std::vector<automation::ExtensionTypeEntry> types = ExtensionTypesOf(macro);
        if (index < 0 || static_cast<std::size_t>(index) >= types.size())
            return S_OK;
        *result = types[static_cast<std::size_t>(index)].type.Get();
        if (*result)
            (*result)->AddRef();
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_ExtensionTypeNameEx(BSTR macro, short index, BSTR* result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        const std::vector<automation::ExtensionTypeEntry> types = ExtensionTypesOf(macro);
        if (index < 0 || static_cast<std::size_t>(index) >= types.size())
            return S_OK;
        return Out(result, types[static_cast<std::size_t>(index)].name);
    });
}

HRESULT __stdcall CodeUnit::get_ExtensionType(short index, IUnknown** result)
{
    return get_ExtensionTypeEx(nullptr, index, result);
}

HRESULT __stdcall CodeUnit::get_ExtensionTypeName(short index, BSTR* result)
{
    return get_ExtensionTypeNameEx(nullptr, index, result);
}

HRESULT __stdcall CodeUnit::get_ExtensionTypes(BSTR macro, VARIANT* types, BSTR* result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        const std::vector<automation::ExtensionTypeEntry> entries = ExtensionTypesOf(macro);
        if (types && !automation::StoreTypeArray(entries, FollowByRefChain(types)))
            return E_OUTOFMEMORY;
        return entries.empty() ? S_OK : Out(result, automation::JoinedTypeNames(entries));
    });
}

// ---- Evaluation ----

namespace {

// A statement given to Evaluate: a Call runs and has no value.
bool IsCallStatement(const std::string& text)
{
    const std::size_t start = text.find_first_not_of(" \t");
    if (start == std::string::npos || text.size() - start < 5)
        return false;
    return _strnicmp(text.c_str() + start, "Call", 4) == 0 && (text[start + 4] == ' ' || text[start + 4] == '\t');
}

} // namespace

// Runs an evaluation for the host; a failure becomes the error that ErrorNumber and ErrorDesc read.
bool CodeUnit::HostEvaluation(const wchar_t* operation, Evaluator::Kind kind, BSTR expression, short depth,
                              const std::wstring& value, Variant& result)
{
    const std::wstring text = Text(expression);
    TraceEntry(operation, text);
    m_context->Trace(TraceKind::Detail, L"depth=" + std::to_wstring(depth));
    if (kind == Evaluator::Kind::kAssign)
        m_context->Trace(TraceKind::Detail, L"rhs=" + value);
    ErrorRecord error;
    const bool evaluated = m_context->Evaluation().EvaluateForHost(kind, AnsiFromWide(text), AnsiFromWide(value),
                                                                   depth, result, error);
    if (!evaluated) {
        ErrorLocation& report = m_context->ErrorReport();
        report.Clear();
        report.number = error.number;
        report.description = error.description;
        report.source = error.source;
        report.helpFile = error.helpFile;
        report.helpContext = error.helpContext;
        report.lineText = text;
        m_context->Trace(TraceKind::Detail, L"ErrorDesc=" + error.description);
    }
    TraceResult(evaluated);
    return evaluated;
}

HRESULT __stdcall CodeUnit::get_Evaluate(BSTR expression, short depth, BSTR* result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        const bool statement = IsCallStatement(AnsiFromWide(Text(expression)));
        Variant value;
        std::wstring shown;
        if (HostEvaluation(L"Evaluate [Get]", statement ? Evaluator::Kind::kStatement : Evaluator::Kind::kValue,
                           expression, depth, {}, value) &&
            !statement && !WriteDebug(shown, value))
            shown.clear();
        return Out(result, shown);
    });
}

HRESULT __stdcall CodeUnit::put_Evaluate(BSTR expression, short depth, BSTR value)
{
    return Entered([&] {
        Variant ignored;
        (void)HostEvaluation(L"Evaluate [Let]", Evaluator::Kind::kAssign, expression, depth, Text(value), ignored);
        return S_OK;
    });
}

HRESULT __stdcall CodeUnit::get_EvaluateObject(BSTR expression, short depth, IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        Variant value;
        if (HostEvaluation(L"EvaluateObject [Get]", Evaluator::Kind::kObject, expression, depth, {}, value) &&
            value.Tag() == VT_DISPATCH && value.Raw().pdispVal) {
            *result = value.Raw().pdispVal;
            (*result)->AddRef();
        }
        return S_OK;
    });
}

// ---- Calls from the host's events ----

// A new fire object; it does not touch the engine's state until it is called.
HRESULT __stdcall CodeUnit::get_Fire(VARIANT_BOOL debugging, IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = FireObject::Create(*this, debugging != VARIANT_FALSE);
    return *result ? S_OK : E_OUTOFMEMORY;
}

namespace {

// While the host makes its object for a new instance (NewMacroInstance), only handlers specific to that
// instance's module may be made; at any other time a handler specific to a module that is already
// loaded is refused. Each refusal is a trace line.
bool ModuleSpecificHandlerAllowed(EngineContext& context, const HandlerModule& owner, const wchar_t* onlyCurrent,
                                  const wchar_t* alreadyExists)
{
    if (const std::string* creating = context.InstanceModuleBeingCreated()) {
        if (owner.module.empty() || !SameName(context.MapModuleName(owner.module), *creating)) {
            context.Trace(TraceKind::Detail, onlyCurrent);
            return false;
        }
        return true;
    }
    if (!owner.module.empty() && context.Modules().FindLoadedModule(owner.module)) {
        context.Trace(TraceKind::Detail, alreadyExists);
        return false;
    }
    return true;
}

} // namespace

// A handler for the prototype; null (with a trace line) when the prototype does not parse or its module
// part is not allowed now.
HRESULT __stdcall CodeUnit::CreateHandler(BSTR prototype, IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        if (m_context->IsCompiling())
            return E_FAIL;
        std::optional<HandlerPrototype> parsed = ParseHandlerPrototype(AnsiFromWide(Text(prototype)));
        TraceEntry(L"CreateHandler", Text(prototype));
        // The module part of a default project's prototype is offered to the host's name mapping.
        if (parsed && parsed->project.empty() && !parsed->module.empty())
            parsed->module = m_context->Modules().MapName(parsed->module);
        if (parsed && !ModuleSpecificHandlerAllowed(*m_context, HandlerModule{parsed->project, parsed->module},
                                                    L"Only a module specific handler for the current NewInstance is allowed.",
                                                    L"Module specific handler not allowed for a module that already exists."))
            parsed.reset();
        if (parsed)
            *result = Handler::Create(*this, std::move(*parsed));
        wchar_t address[32];
        swprintf(address, 32, L"Result=0x%lx", static_cast<unsigned long>(reinterpret_cast<uintptr_t>(*result)));
        m_context->Trace(TraceKind::Result, address);
        m_context->Trace(TraceKind::Exit, L"");
        return S_OK;
    });
}

// The vtable half of the type library's _Handlers interface, which handler collections dispatch through.
ComRef<ITypeInfo> CodeUnit::HandlersInterface()
{
    ComRef<ITypeLib> library;
    UINT index = 0;
    ComRef<ITypeInfo> dispatchType;
    if (FAILED(m_classType->GetContainingTypeLib(library.Out(), &index)) ||
        FAILED(library->GetTypeInfoOfGuid(IID__Handlers, dispatchType.Out())))
        return {};
    HREFTYPE href = 0;
    ComRef<ITypeInfo> vtableType;
    if (SUCCEEDED(dispatchType->GetRefTypeOfImplType(static_cast<UINT>(-1), &href)))
        dispatchType->GetRefTypeInfo(href, vtableType.Out());
    return vtableType ? vtableType : dispatchType;
}

// One handler per event of the object's default source interface, each for prefix + "_" + the event.
HRESULT __stdcall CodeUnit::CreateHandlers(BSTR prefix, IDispatch* eventObject, IDispatch** result)
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return Entered([&] {
        if (m_context->IsCompiling())
            return E_FAIL;
        const std::optional<HandlerModule> split = SplitHandlerModule(AnsiFromWide(Text(prefix)));
        HandlerModule owner = split.value_or(HandlerModule{});
        TraceEntry(L"CreateHandlers", Text(prefix));
        if (owner.project.empty() && !owner.module.empty())
            owner.module = m_context->Modules().MapName(owner.module);
        if (!split || !ModuleSpecificHandlerAllowed(*m_context, owner,
                                          L"Only module specific handlers for the current NewInstance are allowed.",
                                          L"Module specific handlers not allowed for a module that already exists.")) {
            m_context->Trace(TraceKind::Result, L"Result=0x0");
            m_context->Trace(TraceKind::Exit, L"");
            return S_OK;
        }
        ComRef<ITypeInfo> source;
        const SourceLookup lookup = FindDefaultSource(eventObject, source);
        if (lookup == SourceLookup::NoTypeInfo) {
            m_context->Trace(TraceKind::Exit, L"");
            return E_NOINTERFACE;
        }
        if (lookup == SourceLookup::NoSource)
            m_context->Trace(TraceKind::Detail, L"No source type info.");
        if (source) {
            wchar_t guid[64] = {};
            StringFromGUID2(TypeGuidOf(source.Get()), guid, 64);
            m_context->Trace(TraceKind::Detail, L"Source.TypeInfo.Name=" + TypeInfoName(source.Get()));
            m_context->Trace(TraceKind::Detail, L"Source.TypeInfo.UUID=" + std::wstring(guid));
            if (lookup == SourceLookup::NotDispatch)
                m_context->Trace(TraceKind::Detail, L"Unknown or invalid type.");
        }
        ComRef<ITypeInfo> collectionType = HandlersInterface();
        if (lookup == SourceLookup::Found && collectionType) {
            // An event whose declaration the language cannot take (more than 31 parameters) gets no handler.
            std::vector<HandlerCollection::Entry> handlers;
            bool madeAll = true;
            // The module part of the prefix makes every handler specific to that module.
            for (EventPrototype& event : EventPrototypes(source.Get(), owner.rest)) {
                std::optional<HandlerPrototype> parsed = ParseHandlerPrototype(owner.Qualify(event.declaration));
                if (!parsed)
                    continue;
                Handler* handler = Handler::Create(*this, std::move(*parsed));
                madeAll = madeAll && handler;
                if (handler)
                    handlers.push_back(HandlerCollection::Entry{event.event, handler});
            }
            if (madeAll)
                *result = HandlerCollection::Create(*this, Text(prefix), collectionType.Get(), eventObject,
                                                   source.Get(), handlers);
            if (!*result) {
                for (HandlerCollection::Entry& entry : handlers)
                    entry.handler->Release();
            }
        }
        wchar_t address[32];
        swprintf(address, 32, L"Result=0x%lx", static_cast<unsigned long>(reinterpret_cast<uintptr_t>(*result)));
        m_context->Trace(TraceKind::Result, address);
        m_context->Trace(TraceKind::Exit, L"");
        return S_OK;
    });
}

} // namespace brannoc
