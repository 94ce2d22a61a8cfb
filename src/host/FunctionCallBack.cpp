#include "host/FunctionCallBack.h"
#include "automation/AnsiBstr.h"
#include "automation/ExportBoundary.h"

#include <new>

namespace brannoc {

namespace {

const char kCallBackDescription[] = "=CallBack\nDebugPrint CodeUnit*,Text$\nDoEvents CodeUnit*\nNotify CodeUnit*,Type%\n"
                                    "ReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n";
const char kCallBack2Description[] = "=CallBack2\nDebugPrint CodeUnit*,Text$\nDoEvents CodeUnit*\n"
                                     "MapMacroName$(CodeUnit*,MacroName$,BaseName$)\nNotify CodeUnit*,Type%\n"
                                     "ReadMacro$(CodeUnit*,MacroName$)\nWindow&=\n";

LPCSTR AnsiArgument(BSTR text) { return text ? reinterpret_cast<LPCSTR>(text) : ""; }

// The engine receives ordinary BSTRs; the host's ANSI answer is converted and freed.
BSTR WideFromHostAnswer(BSTR ansiAnswer)
{
    if (!ansiAnswer)
        return nullptr;
    BSTR wide = automation::WideBstrFromAnsi(automation::AnsiBytes(ansiAnswer));
    OA_SysFreeStringA(ansiAnswer);
    return wide;
}

// The fallback's ANSI answer (or none) as an ordinary BSTR.
BSTR ReadThroughFallback(IDispatch* fallback, IDispatch* engine, BSTR name)
{
    if (!fallback)
        return nullptr;
    return WideFromHostAnswer(CB_ReadMacroA(fallback, engine, AnsiArgument(name)));
}

void DebugPrintThrough(CB_DEBUGPRINTPROC function, IDispatch* fallback, IDispatch* engine, BSTR text, void* userData)
{
    if (function)
        function(engine, AnsiArgument(text), userData);
    else if (fallback)
        CB_DebugPrintA(fallback, engine, AnsiArgument(text));
}

void DoEventsThrough(CB_DOEVENTSPROC function, IDispatch* fallback, IDispatch* engine, void* userData)
{
    if (function)
        function(engine, userData);
    else if (fallback)
        CB_DoEvents(fallback, engine);
}

void NotifyThrough(CB_NOTIFYPROC function, IDispatch* fallback, IDispatch* engine, short code, void* userData)
{
    if (function)
        function(engine, code, userData);
    else if (fallback)
        CB_Notify(fallback, engine, code);
}

BSTR ReadMacroThrough(CB_READMACROPROC function, IDispatch* fallback, IDispatch* engine, BSTR name, void* userData)
{
    if (function)
        return WideFromHostAnswer(function(engine, AnsiArgument(name), userData));
    return ReadThroughFallback(fallback, engine, name);
}

long WindowThrough(CB_WINDOWPROC function, IDispatch* fallback, void* userData)
{
    if (function)
        return function(userData);
    return fallback ? CB_Window(fallback) : 0;
}

// A dispatch object over adapter from the description; the adapter is destroyed with it.
template <typename Adapter>
IDispatch* DispatchOver(const char* description, Adapter* adapter, OA_DESTROYPROC destroy)
{
    if (!adapter)
        return nullptr;
    ITypeInfo* type = OA_CreateTypeA(description);
    if (!type) {
        delete adapter;
        return nullptr;
    }
    IDispatch* dispatch = OA_CreateDispatch(type, destroy, adapter, nullptr);
    type->Release();
    if (!dispatch)
        delete adapter;
    return dispatch;
}

} // namespace

FunctionCallBack::FunctionCallBack(IDispatch* fallback, const CB_FUNCTIONS& functions, void* userData)
    : m_fallback(ComRef<IDispatch>::Share(fallback)), m_functions(functions), m_userData(userData)
{
}

void __stdcall FunctionCallBack::DebugPrint(IDispatch* engine, BSTR text)
{
    DebugPrintThrough(m_functions.DebugPrint, m_fallback.Get(), engine, text, m_userData);
}
void __stdcall FunctionCallBack::DoEvents(IDispatch* engine)
{
    DoEventsThrough(m_functions.DoEvents, m_fallback.Get(), engine, m_userData);
}
void __stdcall FunctionCallBack::Notify(IDispatch* engine, short code)
{
    NotifyThrough(m_functions.Notify, m_fallback.Get(), engine, code, m_userData);
}
BSTR __stdcall FunctionCallBack::ReadMacro(IDispatch* engine, BSTR name)
{
    return ReadMacroThrough(m_functions.ReadMacro, m_fallback.Get(), engine, name, m_userData);
}
long __stdcall FunctionCallBack::Window() { return WindowThrough(m_functions.Window, m_fallback.Get(), m_userData); }

FunctionCallBack2::FunctionCallBack2(IDispatch* fallback, const CB_FUNCTIONS2& functions, void* userData)
    : m_fallback(ComRef<IDispatch>::Share(fallback)), m_functions(functions), m_userData(userData)
{
}

void __stdcall FunctionCallBack2::DebugPrint(IDispatch* engine, BSTR text)
{
    DebugPrintThrough(m_functions.DebugPrint, m_fallback.Get(), engine, text, m_userData);
}
void __stdcall FunctionCallBack2::DoEvents(IDispatch* engine)
{
    DoEventsThrough(m_functions.DoEvents, m_fallback.Get(), engine, m_userData);
}
BSTR __stdcall FunctionCallBack2::MapMacroName(IDispatch* engine, BSTR name, BSTR baseName)
{
    if (m_functions.MapMacroName)
        return WideFromHostAnswer(m_functions.MapMacroName(engine, AnsiArgument(name), AnsiArgument(baseName), m_userData));
    if (m_fallback)
        return WideFromHostAnswer(CB_MapMacroNameA(m_fallback.Get(), engine, AnsiArgument(name), AnsiArgument(baseName)));
    return automation::WideBstrFromAnsi(automation::AnsiBytes(name));
}
void __stdcall FunctionCallBack2::Notify(IDispatch* engine, short code)
{
    NotifyThrough(m_functions.Notify, m_fallback.Get(), engine, code, m_userData);
}
BSTR __stdcall FunctionCallBack2::ReadMacro(IDispatch* engine, BSTR name)
{
    return ReadMacroThrough(m_functions.ReadMacro, m_fallback.Get(), engine, name, m_userData);
}
long __stdcall FunctionCallBack2::Window() { return WindowThrough(m_functions.Window, m_fallback.Get(), m_userData); }

} // namespace brannoc

using namespace brannoc;

extern "C" {

void __stdcall OA_DestroyCallBack(void* adapter, void*) { delete static_cast<FunctionCallBack*>(adapter); }
void __stdcall OA_DestroyCallBack2(void* adapter, void*) { delete static_cast<FunctionCallBack2*>(adapter); }

IDispatch* __stdcall CB_CreateCallBack(IDispatch* fallback, const CB_FUNCTIONS* functions, void* userData)
{
    return automation::AtExportBoundary<IDispatch*>(nullptr, [&] {
        CB_FUNCTIONS none{};
        auto* adapter = new (std::nothrow) FunctionCallBack(fallback, functions ? *functions : none, userData);
        return DispatchOver(kCallBackDescription, adapter, OA_DestroyCallBack);
    });
}

IDispatch* __stdcall CB_CreateCallBack2(IDispatch* fallback, const CB_FUNCTIONS2* functions, void* userData)
{
    return automation::AtExportBoundary<IDispatch*>(nullptr, [&] {
        CB_FUNCTIONS2 none{};
        auto* adapter = new (std::nothrow) FunctionCallBack2(fallback, functions ? *functions : none, userData);
        return DispatchOver(kCallBack2Description, adapter, OA_DestroyCallBack2);
    });
}

} // extern "C"
