// The CB_ functions: a callback's members called by name through the OA_Invoke family, so a missing
// required member is reported the way that family reports a failed call.
#include "brannoc.h"
#include "automation/ExportBoundary.h"
#include "host/HostCallBack.h"

namespace {

using brannoc::HostCallBack;
using brannoc::automation::AtExportBoundary;

// A list of count arguments that starts with the engine object.
bool StartWithEngine(OA_ARG& list, LONG count, IDispatch* engine)
{
    return OA_ArgStart(count, &list) && OA_ArgAddDisp(&list, engine);
}

} // namespace

extern "C" {

void __stdcall CB_DebugPrintA(IDispatch* callBack, IDispatch* engine, LPCSTR text)
{
    AtExportBoundary([&] {
        OA_ARG list{};
        if (StartWithEngine(list, 2, engine) && OA_ArgAddStringA(&list, text ? text : ""))
            OA_Invoke(callBack, HostCallBack::Find(callBack, L"DebugPrint"), &list, nullptr);
        else
            OA_ArgRelease(&list);
    });
}

void __stdcall CB_DebugPrintW(IDispatch* callBack, IDispatch* engine, LPCWSTR text)
{
    AtExportBoundary([&] {
        OA_ARG list{};
        if (StartWithEngine(list, 2, engine) && OA_ArgAddStringW(&list, text ? text : L""))
            OA_Invoke(callBack, HostCallBack::Find(callBack, L"DebugPrint"), &list, nullptr);
        else
            OA_ArgRelease(&list);
    });
}

void __stdcall CB_DoEvents(IDispatch* callBack, IDispatch* engine)
{
    AtExportBoundary([&] {
        OA_ARG list{};
        if (StartWithEngine(list, 1, engine))
            OA_Invoke(callBack, HostCallBack::Find(callBack, L"DoEvents"), &list, nullptr);
        else
            OA_ArgRelease(&list);
    });
}

void __stdcall CB_Notify(IDispatch* callBack, IDispatch* engine, LONG code)
{
    AtExportBoundary([&] {
        OA_ARG list{};
        if (StartWithEngine(list, 2, engine) && OA_ArgAddI2(&list, static_cast<SHORT>(code)))
            OA_Invoke(callBack, HostCallBack::Find(callBack, L"Notify"), &list, nullptr);
        else
            OA_ArgRelease(&list);
    });
}

BSTR __stdcall CB_ReadMacroA(IDispatch* callBack, IDispatch* engine, LPCSTR macroName)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        OA_ARG list{};
        if (!StartWithEngine(list, 2, engine) || !OA_ArgAddStringA(&list, macroName ? macroName : "")) {
            OA_ArgRelease(&list);
            return nullptr;
        }
        return OA_InvokeBSTRA(callBack, HostCallBack::Find(callBack, L"ReadMacro"), &list, nullptr);
    });
}

BSTR __stdcall CB_ReadMacroW(IDispatch* callBack, IDispatch* engine, LPCWSTR macroName)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        OA_ARG list{};
        if (!StartWithEngine(list, 2, engine) || !OA_ArgAddStringW(&list, macroName ? macroName : L"")) {
            OA_ArgRelease(&list);
            return nullptr;
        }
        return OA_InvokeBSTRW(callBack, HostCallBack::Find(callBack, L"ReadMacro"), &list, nullptr);
    });
}

BSTR __stdcall CB_MapMacroNameA(IDispatch* callBack, IDispatch* engine, LPCSTR macroName, LPCSTR baseName)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        DISPID member = HostCallBack::Find(callBack, L"MapMacroName");
        if (member == DISPID_UNKNOWN)
            return OA_SysAllocStringA(macroName ? macroName : "");
        OA_ARG list{};
        if (!StartWithEngine(list, 3, engine) || !OA_ArgAddStringA(&list, macroName ? macroName : "") ||
            !OA_ArgAddStringA(&list, baseName ? baseName : "")) {
            OA_ArgRelease(&list);
            return nullptr;
        }
        return OA_InvokeBSTRA(callBack, member, &list, nullptr);
    });
}

BSTR __stdcall CB_MapMacroNameW(IDispatch* callBack, IDispatch* engine, LPCWSTR macroName, LPCWSTR baseName)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        DISPID member = HostCallBack::Find(callBack, L"MapMacroName");
        if (member == DISPID_UNKNOWN)
            return SysAllocString(macroName ? macroName : L"");
        OA_ARG list{};
        if (!StartWithEngine(list, 3, engine) || !OA_ArgAddStringW(&list, macroName ? macroName : L"") ||
            !OA_ArgAddStringW(&list, baseName ? baseName : L"")) {
            OA_ArgRelease(&list);
            return nullptr;
        }
        return OA_InvokeBSTRW(callBack, member, &list, nullptr);
    });
}

LONG __stdcall CB_Window(IDispatch* callBack)
{
    return AtExportBoundary<LONG>(0, [&] {
        OA_ARG list{};
        if (!OA_ArgStart(0, &list))
            return LONG{0};
        return OA_InvokeI4(callBack, HostCallBack::Find(callBack, L"Window"), &list, nullptr);
    });
}

} // extern "C"
