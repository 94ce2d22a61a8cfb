// The CU_ functions over the engine object's members, for hosts that do not call COM interfaces: text
// in as ANSI, out-parameters returned as results, failures shown in task-modal boxes captioned with
// the member's operation name and " Error". The engine's error record is not touched by these boxes.
#include "brannoc.h"
#include "automation/AnsiBstr.h"
#include "automation/ExportBoundary.h"
#include "values/Variant.h"

#include <cwchar>
#include <string>

namespace {

using brannoc::Bstr;
using brannoc::automation::AtExportBoundary;

void ReportWrapperFailure(const wchar_t* operation, const wchar_t* text)
{
    std::wstring caption = std::wstring(operation) + L" Error";
    MessageBoxW(nullptr, text, caption.c_str(), MB_TASKMODAL | MB_OK);
}

// Calls the member through call(unit, &out) and returns out, which stays empty when the call fails.
template <typename Out, typename Call>
Out CallMember(void* handle, const wchar_t* operation, Call&& call)
{
    Out out{};
    auto* unit = static_cast<_CodeUnit*>(handle);
    if (!unit) {
        ReportWrapperFailure(operation, L"CodeUnit object is 'Nothing'.");
        return out;
    }
    HRESULT hr = call(unit, &out);
    if (hr != S_OK) {
        wchar_t text[64];
        std::swprintf(text, 64, L"CodeUnit method/property failed.\nError=0x%lx", static_cast<unsigned long>(hr));
        ReportWrapperFailure(operation, text);
    }
    return out;
}

// A member without an out-parameter.
template <typename Call>
void CallPut(void* handle, const wchar_t* operation, Call&& call)
{
    CallMember<int>(handle, operation, [&](_CodeUnit* unit, int*) { return call(unit); });
}

BOOL AsBoolean(VARIANT_BOOL value) { return value ? -1 : 0; }

// The member's BSTR result as ANSI text (null stays null); the member's string is freed.
BSTR AnsiResult(BSTR wide)
{
    Bstr held;
    held.Attach(wide);
    if (!wide)
        return nullptr;
    return brannoc::automation::AnsiBstrFromWide(brannoc::automation::WideChars(wide));
}

// A temporary BSTR made from ANSI text (null: empty).
Bstr TextIn(LPCSTR text)
{
    Bstr held;
    held.Attach(brannoc::automation::WideBstrFromAnsi(text ? text : ""));
    return held;
}

} // namespace

// The forms of wrapper, one line each below.
#define CU_BOOL_GET(Name, Member, Operation)                                                                       \
    BOOL __stdcall CU_##Name(void* unit)                                                                           \
    {                                                                                                              \
        return AtExportBoundary<BOOL>(0, [&] {                                                                     \
            return AsBoolean(CallMember<VARIANT_BOOL>(unit, Operation,                                             \
                                                      [](_CodeUnit* u, VARIANT_BOOL* r) { return u->Member(r); })); \
        });                                                                                                        \
    }
#define CU_BOOL_METHOD_TEXT(Name, Member, Operation)                                                               \
    BOOL __stdcall CU_##Name(void* unit, LPCSTR text)                                                              \
    {                                                                                                              \
        return AtExportBoundary<BOOL>(0, [&] {                                                                     \
            Bstr argument = TextIn(text);                                                                          \
            return AsBoolean(CallMember<VARIANT_BOOL>(                                                             \
                unit, Operation, [&](_CodeUnit* u, VARIANT_BOOL* r) { return u->Member(argument.Get(), r); }));   \
        });                                                                                                        \
    }
#define CU_TEXT_GET(Name, Member, Operation)                                                                       \
    BSTR __stdcall CU_##Name(void* unit)                                                                           \
    {                                                                                                              \
        return AtExportBoundary<BSTR>(nullptr, [&] {                                                               \
            return AnsiResult(CallMember<BSTR>(unit, Operation, [](_CodeUnit* u, BSTR* r) { return u->Member(r); })); \
        });                                                                                                        \
    }
#define CU_TEXT_PUT(Name, Member, Operation)                                                                       \
    void __stdcall CU_##Name(void* unit, LPCSTR text)                                                              \
    {                                                                                                              \
        AtExportBoundary([&] {                                                                                     \
            Bstr argument = TextIn(text);                                                                          \
            CallPut(unit, Operation, [&](_CodeUnit* u) { return u->Member(argument.Get()); });                     \
        });                                                                                                        \
    }
#define CU_NUMBER_GET(Name, Type, Member, Operation)                                                               \
    Type __stdcall CU_##Name(void* unit)                                                                           \
    {                                                                                                              \
        return AtExportBoundary<Type>(0, [&] {                                                                     \
            return CallMember<Type>(unit, Operation, [](_CodeUnit* u, Type* r) { return u->Member(r); });         \
        });                                                                                                        \
    }
#define CU_SHORT_PUT(Name, Member, Operation)                                                                      \
    void __stdcall CU_##Name(void* unit, LONG value)                                                               \
    {                                                                                                              \
        AtExportBoundary([&] {                                                                                     \
            CallPut(unit, Operation, [&](_CodeUnit* u) { return u->Member(static_cast<short>(value)); });          \
        });                                                                                                        \
    }

extern "C" {

CU_BOOL_GET(Continue, Continue, L"Continue")
CU_BOOL_GET(Halt, Halt, L"Halt")
CU_BOOL_GET(HaltAll, HaltAll, L"HaltAll")
CU_BOOL_GET(Shutdown, Shutdown, L"Shutdown")
CU_BOOL_GET(Step, Step, L"Step")
CU_BOOL_GET(Stop, Stop, L"Stop")
CU_BOOL_GET(DoEvents, get_DoEvents, L"get_DoEvents")
CU_BOOL_GET(Evaluating, get_Evaluating, L"get_Evaluating")
CU_BOOL_GET(IsActive, get_IsActive, L"get_IsActive")
CU_BOOL_GET(IsIdle, get_IsIdle, L"get_IsIdle")
CU_BOOL_GET(IsPaused, get_IsPaused, L"get_IsPaused")
CU_BOOL_GET(IsStopped, get_IsStopped, L"get_IsStopped")

CU_BOOL_METHOD_TEXT(Load, Load, L"Load")
CU_BOOL_METHOD_TEXT(Start, Start, L"Start")
CU_BOOL_METHOD_TEXT(Unload, Unload, L"Unload")
CU_BOOL_METHOD_TEXT(IsMacro, get_IsMacro, L"get_IsMacro")
CU_BOOL_METHOD_TEXT(IsMacroActive, get_IsMacroActive, L"get_IsMacroActive")
CU_BOOL_METHOD_TEXT(ProjectCreate, ProjectCreate, L"ProjectCreate")
CU_BOOL_METHOD_TEXT(ProjectDestroy, ProjectDestroy, L"ProjectDestroy")
CU_BOOL_METHOD_TEXT(IsProject, get_IsProject, L"get_IsProject")

CU_TEXT_GET(Caption, get_Caption, L"get_Caption")
CU_TEXT_GET(CurrentLine, get_CurrentLine, L"get_CurrentLine")
CU_TEXT_GET(ErrorDesc, get_ErrorDesc, L"get_ErrorDesc")
CU_TEXT_GET(ErrorHelpFile, get_ErrorHelpFile, L"get_ErrorHelpFile")
CU_TEXT_GET(ErrorLine, get_ErrorLine, L"get_ErrorLine")
CU_TEXT_GET(ErrorMacroName, get_ErrorMacroName, L"get_ErrorMacroName")
CU_TEXT_GET(ErrorSource, get_ErrorSource, L"get_ErrorSource")
CU_TEXT_GET(HelpFile, get_HelpFile, L"get_HelpFile")
CU_TEXT_GET(MacroName, get_MacroName, L"get_MacroName")
CU_TEXT_GET(Version, get_Version, L"get_Version")
CU_TEXT_GET(BlockedKeywords, get_BlockedKeywords, L"get_BlockedKeywords")
CU_TEXT_GET(Keywords, get_Keywords, L"get_Keywords")

CU_TEXT_PUT(CaptionPut, put_Caption, L"put_Caption")
CU_TEXT_PUT(ErrorDescPut, put_ErrorDesc, L"put_ErrorDesc")
CU_TEXT_PUT(BlockedKeywordsPut, put_BlockedKeywords, L"put_BlockedKeywords")

CU_NUMBER_GET(ErrorLimit, short, get_ErrorLimit, L"get_ErrorLimit")
CU_NUMBER_GET(LineNum, short, get_LineNum, L"get_LineNum")
CU_NUMBER_GET(ErrorLineNum, short, get_ErrorLineNum, L"get_ErrorLineNum")
CU_NUMBER_GET(ErrorOffset, short, get_ErrorOffset, L"get_ErrorOffset")
CU_NUMBER_GET(StackDepth, short, get_StackDepth, L"get_StackDepth")
CU_NUMBER_GET(ErrorNumber, long, get_ErrorNumber, L"get_ErrorNumber")
CU_NUMBER_GET(ErrorHelpContext, long, get_ErrorHelpContext, L"get_ErrorHelpContext")

CU_SHORT_PUT(ErrorLimitPut, put_ErrorLimit, L"put_ErrorLimit")
CU_SHORT_PUT(StackDepthPut, put_StackDepth, L"put_StackDepth")
CU_SHORT_PUT(LineNumPut, put_LineNum, L"put_LineNum")

void __stdcall CU_DoEventsPut(void* unit, BOOL on)
{
    AtExportBoundary([&] {
        CallPut(unit, L"put_DoEvents", [&](_CodeUnit* u) { return u->put_DoEvents(on ? VARIANT_TRUE : VARIANT_FALSE); });
    });
}

BOOL __stdcall CU_Run(void* unit, LONG depth)
{
    return AtExportBoundary<BOOL>(0, [&] {
        return AsBoolean(CallMember<VARIANT_BOOL>(
            unit, L"Run", [&](_CodeUnit* u, VARIANT_BOOL* r) { return u->Run(static_cast<short>(depth), r); }));
    });
}

BOOL __stdcall CU_Rename(void* unit, LPCSTR oldMacroName, LPCSTR newMacroName)
{
    return AtExportBoundary<BOOL>(0, [&] {
        Bstr oldName = TextIn(oldMacroName);
        Bstr newName = TextIn(newMacroName);
        return AsBoolean(CallMember<VARIANT_BOOL>(unit, L"Rename", [&](_CodeUnit* u, VARIANT_BOOL* r) {
            return u->Rename(oldName.Get(), newName.Get(), r);
        }));
    });
}

BSTR __stdcall CU_LoadedMacroName(void* unit, LONG index)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        return AnsiResult(CallMember<BSTR>(unit, L"get_LoadedMacroName", [&](_CodeUnit* u, BSTR* r) {
            return u->get_LoadedMacroName(static_cast<short>(index), r);
        }));
    });
}

BSTR __stdcall CU_Prototypes(void* unit, LPCSTR prefix)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        Bstr argument = TextIn(prefix);
        return AnsiResult(CallMember<BSTR>(unit, L"get_Prototypes", [&](_CodeUnit* u, BSTR* r) {
            return u->get_Prototypes(argument.Get(), r);
        }));
    });
}

BSTR __stdcall CU_CallersLine(void* unit, LONG depth)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        return AnsiResult(CallMember<BSTR>(unit, L"get_CallersLine", [&](_CodeUnit* u, BSTR* r) {
            return u->get_CallersLine(static_cast<short>(depth), r);
        }));
    });
}

BSTR __stdcall CU_Evaluate(void* unit, LPCSTR expression, LONG depth)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        Bstr text = TextIn(expression);
        return AnsiResult(CallMember<BSTR>(unit, L"get_Evaluate", [&](_CodeUnit* u, BSTR* r) {
            return u->get_Evaluate(text.Get(), static_cast<short>(depth), r);
        }));
    });
}

IDispatch* __stdcall CU_EvaluateObject(void* unit, LPCSTR expression, LONG depth)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        Bstr text = TextIn(expression);
        return CallMember<IDispatch*>(unit, L"get_EvaluateObject", [&](_CodeUnit* u, IDispatch** r) {
            return u->get_EvaluateObject(text.Get(), static_cast<short>(depth), r);
        });
    });
}

void __stdcall CU_EvaluatePut(void* unit, LPCSTR expression, LONG depth, LPCSTR value)
{
    AtExportBoundary([&] {
        Bstr text = TextIn(expression);
        Bstr assigned = TextIn(value);
        CallPut(unit, L"put_Evaluate", [&](_CodeUnit* u) {
            return u->put_Evaluate(text.Get(), static_cast<short>(depth), assigned.Get());
        });
    });
}

BOOL __stdcall CU_ToggleBreak(void* unit, LPCSTR macroName, LONG line)
{
    return AtExportBoundary<BOOL>(0, [&] {
        Bstr name = TextIn(macroName);
        return AsBoolean(CallMember<VARIANT_BOOL>(unit, L"ToggleBreak", [&](_CodeUnit* u, VARIANT_BOOL* r) {
            return u->ToggleBreak(name.Get(), static_cast<short>(line), r);
        }));
    });
}

SHORT __stdcall CU_BreakLineNum(void* unit, LPCSTR macroName, LONG index)
{
    return AtExportBoundary<SHORT>(0, [&] {
        Bstr name = TextIn(macroName);
        return CallMember<short>(unit, L"get_BreakLineNum", [&](_CodeUnit* u, short* r) {
            return u->get_BreakLineNum(name.Get(), static_cast<short>(index), r);
        });
    });
}

IDispatch* __stdcall CU_CallBack(void* unit)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        return CallMember<IDispatch*>(unit, L"get_CallBack", [](_CodeUnit* u, IDispatch** r) { return u->get_CallBack(r); });
    });
}

IDispatch* __stdcall CU_DefaultCallBack(void* unit)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        return CallMember<IDispatch*>(unit, L"get_DefaultCallBack",
                                      [](_CodeUnit* u, IDispatch** r) { return u->get_DefaultCallBack(r); });
    });
}

IDispatch* __stdcall CU_Macro(void* unit, LPCSTR macroName, BOOL createNew)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        Bstr name = TextIn(macroName);
        return CallMember<IDispatch*>(unit, L"Macro", [&](_CodeUnit* u, IDispatch** r) {
            return u->Macro(name.Get(), createNew ? VARIANT_TRUE : VARIANT_FALSE, r);
        });
    });
}

IDispatch* __stdcall CU_Fire(void* unit, BOOL debugging)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        return CallMember<IDispatch*>(unit, L"get_Fire", [&](_CodeUnit* u, IDispatch** r) {
            return u->get_Fire(debugging ? VARIANT_TRUE : VARIANT_FALSE, r);
        });
    });
}

IDispatch* __stdcall CU_CreateHandler(void* unit, LPCSTR prototype)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        Bstr text = TextIn(prototype);
        return CallMember<IDispatch*>(unit, L"CreateHandler", [&](_CodeUnit* u, IDispatch** r) {
            return u->CreateHandler(text.Get(), r);
        });
    });
}

IDispatch* __stdcall CU_CreateHandlers(void* unit, LPCSTR prefix, IDispatch* eventObject)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        Bstr text = TextIn(prefix);
        return CallMember<IDispatch*>(unit, L"CreateHandlers", [&](_CodeUnit* u, IDispatch** r) {
            return u->CreateHandlers(text.Get(), eventObject, r);
        });
    });
}

void __stdcall CU_SetCallBack(void* unit, IDispatch* callBack)
{
    AtExportBoundary([&] { CallPut(unit, L"SetCallBack", [&](_CodeUnit* u) { return u->SetCallBack(callBack); }); });
}

BSTR __stdcall CU_MacroKeywords(void* unit, LPCSTR macroName)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        Bstr name = TextIn(macroName);
        return AnsiResult(CallMember<BSTR>(unit, L"get_MacroKeywords", [&](_CodeUnit* u, BSTR* r) {
            return u->get_MacroKeywords(name.Get(), r);
        }));
    });
}

// ---- Extensions and references ----

BOOL __stdcall CU_AddExtension(void* unit, LPCSTR prefix, IDispatch* extension)
{
    return AtExportBoundary<BOOL>(0, [&] {
        Bstr text = TextIn(prefix);
        return AsBoolean(CallMember<VARIANT_BOOL>(unit, L"AddExtensionEx", [&](_CodeUnit* u, VARIANT_BOOL* r) {
            return u->AddExtensionEx(text.Get(), extension, r);
        }));
    });
}

CU_BOOL_METHOD_TEXT(RemoveExtensions, RemoveExtensions, L"RemoveExtensions")

IUnknown* __stdcall CU_ExtensionTypeEx(void* unit, LPCSTR macroName, LONG index)
{
    return AtExportBoundary<IUnknown*>(nullptr, [&] {
        Bstr name = TextIn(macroName);
        return CallMember<IUnknown*>(unit, L"get_ExtensionTypeEx", [&](_CodeUnit* u, IUnknown** r) {
            return u->get_ExtensionTypeEx(name.Get(), static_cast<short>(index), r);
        });
    });
}

IUnknown* __stdcall CU_ExtensionType(void* unit, LONG index)
{
    return AtExportBoundary<IUnknown*>(nullptr, [&] {
        return CallMember<IUnknown*>(unit, L"get_ExtensionType", [&](_CodeUnit* u, IUnknown** r) {
            return u->get_ExtensionType(static_cast<short>(index), r);
        });
    });
}

BSTR __stdcall CU_ExtensionTypeNameEx(void* unit, LPCSTR macroName, LONG index)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        Bstr name = TextIn(macroName);
        return AnsiResult(CallMember<BSTR>(unit, L"get_ExtensionTypeNameEx", [&](_CodeUnit* u, BSTR* r) {
            return u->get_ExtensionTypeNameEx(name.Get(), static_cast<short>(index), r);
        }));
    });
}

BSTR __stdcall CU_ExtensionTypeName(void* unit, LONG index)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        return AnsiResult(CallMember<BSTR>(unit, L"get_ExtensionTypeName", [&](_CodeUnit* u, BSTR* r) {
            return u->get_ExtensionTypeName(static_cast<short>(index), r);
        }));
    });
}

BSTR __stdcall CU_ExtensionTypes(void* unit, LPCSTR macroName, VARIANT* types)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        Bstr name = TextIn(macroName);
        return AnsiResult(CallMember<BSTR>(unit, L"get_ExtensionTypes", [&](_CodeUnit* u, BSTR* r) {
            return u->get_ExtensionTypes(name.Get(), types, r);
        }));
    });
}

// The list holds the Sub's name and up to five values: n entries call the member with DISPID n + 2
// (Call0 ... Call5) through Invoke. The list is consumed either way.
BOOL __stdcall CU_Call(void* unit, OA_ARG* list)
{
    return AtExportBoundary<BOOL>(0, [&]() -> BOOL {
        const LONG entries = list ? list->count : 0;
        if (entries < 1 || entries > 6) {
            if (list)
                OA_ArgRelease(list);
            ReportWrapperFailure(L"Call", L"Wrong number of arguments.");
            return 0;
        }
        auto* engine = static_cast<IDispatch*>(static_cast<_CodeUnit*>(unit));
        return AsBoolean(OA_InvokeBOOL(engine, entries + 2, list, nullptr));
    });
}

} // extern "C"
