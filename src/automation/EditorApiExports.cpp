// The KZBE_ functions: a C-callable layer over the editor component "Brannoc.BasicEditor2", which is
// supplied outside this library. The handle is the component's IDispatch pointer; every function calls
// one member of it by dispatch number through the OA_ functions (EditorCall.h says how failures end).
// A null handle makes a method do nothing and a getter answer 0 or the default it was given.
#include "automation/ArgumentList.h"
#include "automation/EditorCall.h"
#include "automation/ExportBoundary.h"

#include "brannoc.h"

using namespace brannoc::automation;

namespace {

constexpr char kEditorProgId[] = "Brannoc.BasicEditor2";

// The component's dispatch numbers.
enum EditorMember : DISPID {
    kAddExtension = 1,
    kAttach = 2,
    kCodeUnit = 3,
    kContinue = 4,
    kCurrentMacroName = 5,
    kDetach = 6,
    kEditMacro = 7,
    kInterrupt = 8,
    kIsActive = 9,
    kIsIdle = 10,
    kIsStopped = 11,
    kLoadMacro = 12,
    kMaximize = 13,
    kMinimize = 14,
    kRestore = 15,
    kRunMacro = 16,
    kSetHiddenCode = 17,
    kSetIni = 18,
    kVisible = 19,
    kFileDesc = 20,
    kFileExt = 21,
    kEventMode = 22,
    kFire = 23,
    kCreateHandler = 24,
    kLoadModule = 25,
    kUnloadModule = 26,
    kLocked = 27,
    kEnabled = 28,
    kMultiSheet = 29,
    kReportError = 30,
    kFileChangeDir = 31,
    kCreateHandlers = 32,
    kModuleInstance = 33,
    kDetachNoCancel = 34,
};

// A method without arguments or result.
void Command(IDispatch* editor, EditorMember member)
{
    AtExportBoundary([&] {
        ArgumentList none(0);
        CallEditor(editor, member, none, EditorCallKind::Method, FALSE);
    });
}

// A method with one text argument and no result.
void CommandWithText(IDispatch* editor, EditorMember member, LPCSTR text)
{
    AtExportBoundary([&] {
        ArgumentList arguments(1);
        arguments.AddText(text);
        CallEditor(editor, member, arguments, EditorCallKind::Method, FALSE);
    });
}

// A Boolean property get; fallback for a null editor or a raised exception.
BOOL Flag(IDispatch* editor, EditorMember member, BOOL fallback = FALSE)
{
    return AtExportBoundary<BOOL>(fallback, [&] {
        ArgumentList none(0);
        return CallEditor(editor, member, none, EditorCallKind::BooleanAnswer, fallback);
    });
}

void SetFlag(IDispatch* editor, EditorMember member, BOOL on)
{
    AtExportBoundary([&] {
        ArgumentList arguments(1);
        arguments.AddFlag(on);
        CallEditor(editor, member, arguments, EditorCallKind::Put, FALSE);
    });
}

// A method with one text argument answering a Boolean.
BOOL FlagForText(IDispatch* editor, EditorMember member, LPCSTR text)
{
    return AtExportBoundary<BOOL>(FALSE, [&] {
        ArgumentList arguments(1);
        arguments.AddText(text);
        return CallEditor(editor, member, arguments, EditorCallKind::BooleanAnswer, FALSE);
    });
}

BSTR Text(IDispatch* editor, EditorMember member)
{
    return AtExportBoundary<BSTR>(nullptr, [&] {
        ArgumentList none(0);
        return AskEditorText(editor, member, none);
    });
}

void SetText(IDispatch* editor, EditorMember member, LPCSTR text)
{
    AtExportBoundary([&] {
        ArgumentList arguments(1);
        arguments.AddText(text);
        CallEditor(editor, member, arguments, EditorCallKind::Put, FALSE);
    });
}

// Detach and DetachNoCancel: the component is told, then the caller's handle is released and zeroed,
// whatever the component answered.
BOOL DetachWith(IDispatch** handle, EditorMember member)
{
    if (!handle || !*handle)
        return TRUE;
    AtExportBoundary([&] {
        ArgumentList none(0);
        CallEditorMethodSilently(*handle, member, none);
    });
    OA_Release(*handle);
    *handle = nullptr;
    return TRUE;
}

IDispatch* Attach(LPCSTR hostName, IDispatch* hostObject)
{
    IDispatch* editor = OA_CreateObjectA(kEditorProgId);
    if (!editor)
        return nullptr;
    ArgumentList arguments(2);
    arguments.AddText(hostName);
    arguments.AddObject(hostObject);
    if (CallEditorMethodSilently(editor, kAttach, arguments))
        return editor;
    OA_Release(editor);
    return nullptr;
}

} // namespace

extern "C" {

BOOL __stdcall KZBE_AddExtension(IDispatch* editor, LPCSTR name, IDispatch* object)
{
    return AtExportBoundary<BOOL>(FALSE, [&] {
        ArgumentList arguments(2);
        arguments.AddText(name);
        arguments.AddObject(object);
        return CallEditor(editor, kAddExtension, arguments, EditorCallKind::BooleanAnswer, FALSE);
    });
}

IDispatch* __stdcall KZBE_Attach(LPCSTR hostName, IDispatch* hostObject)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] { return Attach(hostName, hostObject); });
}

IDispatch* __stdcall KZBE_CodeUnit(IDispatch* editor)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        ArgumentList none(0);
        return AskEditorObject(editor, kCodeUnit, none);
    });
}

void __stdcall KZBE_Continue(IDispatch* editor) { Command(editor, kContinue); }

BSTR __stdcall KZBE_CurrentMacroName(IDispatch* editor) { return Text(editor, kCurrentMacroName); }

BOOL __stdcall KZBE_Detach(IDispatch** editor) { return DetachWith(editor, kDetach); }

void __stdcall KZBE_EditMacro(IDispatch* editor) { Command(editor, kEditMacro); }

void __stdcall KZBE_Interrupt(IDispatch* editor) { Command(editor, kInterrupt); }

BOOL __stdcall KZBE_IsActive(IDispatch* editor, BOOL fallback) { return Flag(editor, kIsActive, fallback); }

BOOL __stdcall KZBE_IsIdle(IDispatch* editor, BOOL fallback) { return Flag(editor, kIsIdle, fallback); }

BOOL __stdcall KZBE_IsStopped(IDispatch* editor, BOOL fallback) { return Flag(editor, kIsStopped, fallback); }

BOOL __stdcall KZBE_LoadMacro(IDispatch* editor, LPCSTR macroName) { return FlagForText(editor, kLoadMacro, macroName); }

void __stdcall KZBE_Maximize(IDispatch* editor) { Command(editor, kMaximize); }

void __stdcall KZBE_Minimize(IDispatch* editor) { Command(editor, kMinimize); }

void __stdcall KZBE_Restore(IDispatch* editor) { Command(editor, kRestore); }

void __stdcall KZBE_RunMacro(IDispatch* editor, LPCSTR macroName) { CommandWithText(editor, kRunMacro, macroName); }

BOOL __stdcall KZBE_SetHiddenCode(IDispatch* editor, LPCSTR code) { return FlagForText(editor, kSetHiddenCode, code); }

void __stdcall KZBE_SetIni(IDispatch* editor, LPCSTR fileName, LPCSTR section)
{
    AtExportBoundary([&] {
        ArgumentList arguments(2);
        arguments.AddText(fileName);
        arguments.AddText(section);
        CallEditor(editor, kSetIni, arguments, EditorCallKind::Method, FALSE);
    });
}

BOOL __stdcall KZBE_Visible(IDispatch* editor) { return Flag(editor, kVisible); }
void __stdcall KZBE_VisiblePut(IDispatch* editor, BOOL on) { SetFlag(editor, kVisible, on); }

BSTR __stdcall KZBE_FileDesc(IDispatch* editor) { return Text(editor, kFileDesc); }
void __stdcall KZBE_FileDescPut(IDispatch* editor, LPCSTR descriptions) { SetText(editor, kFileDesc, descriptions); }

BSTR __stdcall KZBE_FileExt(IDispatch* editor) { return Text(editor, kFileExt); }
void __stdcall KZBE_FileExtPut(IDispatch* editor, LPCSTR extensions) { SetText(editor, kFileExt, extensions); }

BOOL __stdcall KZBE_EventMode(IDispatch* editor) { return Flag(editor, kEventMode); }
void __stdcall KZBE_EventModePut(IDispatch* editor, BOOL on) { SetFlag(editor, kEventMode, on); }

IDispatch* __stdcall KZBE_Fire(IDispatch* editor, BOOL debugging)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        ArgumentList arguments(1);
        arguments.AddFlag(debugging);
        return AskEditorObject(editor, kFire, arguments);
    });
}

IDispatch* __stdcall KZBE_CreateHandler(IDispatch* editor, LPCSTR name)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        ArgumentList arguments(1);
        arguments.AddText(name);
        return AskEditorObject(editor, kCreateHandler, arguments);
    });
}

BOOL __stdcall KZBE_LoadModule(IDispatch* editor, LPCSTR moduleName)
{
    return FlagForText(editor, kLoadModule, moduleName);
}

BOOL __stdcall KZBE_UnloadModule(IDispatch* editor, LPCSTR moduleName)
{
    return FlagForText(editor, kUnloadModule, moduleName);
}

BOOL __stdcall KZBE_Locked(IDispatch* editor) { return Flag(editor, kLocked); }
void __stdcall KZBE_LockedPut(IDispatch* editor, BOOL on) { SetFlag(editor, kLocked, on); }

BOOL __stdcall KZBE_Enabled(IDispatch* editor) { return Flag(editor, kEnabled); }
void __stdcall KZBE_EnabledPut(IDispatch* editor, BOOL on) { SetFlag(editor, kEnabled, on); }

BOOL __stdcall KZBE_MultiSheet(IDispatch* editor) { return Flag(editor, kMultiSheet); }
void __stdcall KZBE_MultiSheetPut(IDispatch* editor, BOOL on) { SetFlag(editor, kMultiSheet, on); }

BOOL __stdcall KZBE_ReportError(IDispatch* editor, IDispatch* error)
{
    return AtExportBoundary<BOOL>(FALSE, [&] {
        ArgumentList arguments(1);
        arguments.AddObject(error);
        return CallEditor(editor, kReportError, arguments, EditorCallKind::BooleanAnswer, FALSE);
    });
}

BOOL __stdcall KZBE_FileChangeDir(IDispatch* editor) { return Flag(editor, kFileChangeDir); }
void __stdcall KZBE_FileChangeDirPut(IDispatch* editor, BOOL on) { SetFlag(editor, kFileChangeDir, on); }

IDispatch* __stdcall KZBE_CreateHandlers(IDispatch* editor, LPCSTR name, IDispatch* object)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        ArgumentList arguments(2);
        arguments.AddText(name);
        arguments.AddObject(object);
        return AskEditorObject(editor, kCreateHandlers, arguments);
    });
}

IDispatch* __stdcall KZBE_ModuleInstance(IDispatch* editor, LPCSTR moduleName, BOOL createNew)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] {
        ArgumentList arguments(2);
        arguments.AddText(moduleName);
        arguments.AddFlag(createNew);
        return AskEditorObject(editor, kModuleInstance, arguments);
    });
}

BOOL __stdcall KZBE_DetachNoCancel(IDispatch** editor) { return DetachWith(editor, kDetachNoCancel); }

} // extern "C"
