// The DLL's export table: every function under its decorated name, the plain name where the rule asks
// for it, and nothing else.
#include "support/EngineLibrary.h"
#include <gtest/gtest.h>
#include <set>
#include <string>

using brannoc::test::EngineLibrary;

namespace {

struct ExportRow {
    const char* name;
    int argumentBytes;
    bool plainToo;
};

const ExportRow kExports[] = {
    {"DllGetClassObject", 12, true},
    {"DllCanUnloadNow", 0, true},
    {"CU_FreeLibraryOkay", 0, false},
    {"KZ_FreeLibraryOkay", 0, false},
    {"KZ_CodeClassLock", 8, false},
    {"CU_CreateCodeUnit", 0, true},
    {"KZ_CreateCodeUnit", 0, false},
    {"KZ_CodeCreate", 8, false},
    {"CU_Yield", 0, true},
    {"KZ_Yield", 0, false},
    {"KZ_TimerWindowProc", 16, false},
    {"OA_Initialize", 0, true},
    {"OA_Uninitialize", 0, true},
    {"OA_Version", 0, true},
    {"OA_AddRef", 4, true},
    {"OA_Release", 4, true},
    {"OA_ArgStart", 8, true},
    {"OA_ArgRelease", 4, true},
    {"OA_ArgAddBOOL", 8, true},
    {"OA_ArgAddI2", 8, true},
    {"OA_ArgAddI4", 8, true},
    {"OA_ArgAddR4", 8, true},
    {"OA_ArgAddR8", 12, true},
    {"OA_ArgAddStringA", 8, true},
    {"OA_ArgAddStringW", 8, true},
    {"OA_ArgAddBSTRA", 8, true},
    {"OA_ArgAddBSTRW", 8, true},
    {"OA_ArgAddDisp", 8, true},
    {"OA_ArgAddUnk", 8, true},
    {"OA_ArgAddVariant", 8, true},
    {"OA_ArgAddI2Ref", 8, true},
    {"OA_ArgAddI4Ref", 8, true},
    {"OA_ArgAddR4Ref", 8, true},
    {"OA_ArgAddR8Ref", 8, true},
    {"OA_ArgAddBSTRRef", 8, true},
    {"OA_ArgAddDispRef", 8, true},
    {"OA_ArgAddUnkRef", 8, true},
    {"OA_Invoke", 16, true},
    {"OA_InvokePut", 16, true},
    {"OA_InvokeBOOL", 16, true},
    {"OA_InvokeI2", 16, true},
    {"OA_InvokeI4", 16, true},
    {"OA_InvokeR4", 16, true},
    {"OA_InvokeR8", 16, true},
    {"OA_InvokeBSTRW", 16, true},
    {"OA_InvokeBSTRA", 16, true},
    {"OA_InvokeDisp", 16, true},
    {"OA_InvokeUnk", 16, true},
    {"OA_InvokeVariant", 20, true},
    {"OA_InvokeError", 16, true},
    {"OA_InvokeErrorSilent", 16, true},
    {"OA_CreateObjectA", 4, true},
    {"OA_CreateObjectW", 4, true},
    {"OA_ActiveObjectA", 4, true},
    {"OA_ActiveObjectW", 4, true},
    {"OA_CreateInstance", 4, true},
    {"OA_RegisterClassObjectA", 16, true},
    {"OA_RegisterClassObjectW", 16, true},
    {"OA_RevokeClassObject", 4, true},
    {"OA_RegisterActiveObjectA", 12, true},
    {"OA_RegisterActiveObjectW", 12, true},
    {"OA_RevokeActiveObject", 4, true},
    {"OA_DisconnectObject", 4, true},
    {"OA_InitializeApplication", 8, true},
    {"OA_UninitializeApplication", 4, true},
    {"OA_AppCreateDispatch", 8, true},
    {"OA_AppDataDestroy", 8, false},
    {"OA_LoadLib", 4, true},
    {"OA_LoadType_A", 8, true},
    {"OA_LoadType_W", 8, true},
    {"OA_GetType", 4, true},
    {"OA_GetCoclassType", 4, true},
    {"OA_GetDispatchType", 4, true},
    {"OA_GetDispatchIDA", 8, true},
    {"OA_GetDispatchIDW", 8, true},
    {"OA_GetDispatchID2A", 12, true},
    {"OA_GetDispatchID2W", 12, true},
    {"OA_GetDispatchNameA", 8, true},
    {"OA_GetDispatchNameW", 8, true},
    {"OA_GetDispatchNamesA", 8, true},
    {"OA_GetDispatchNamesW", 8, true},
    {"OA_GetTypeDescA", 12, true},
    {"OA_GetTypeDescW", 12, true},
    {"OA_GetTypeHelpFileA", 12, true},
    {"OA_GetTypeHelpFileW", 12, true},
    {"OA_GetComp", 4, true},
    {"OA_GetCompDescA", 12, true},
    {"OA_GetCompDescW", 12, true},
    {"OA_RaiseErrorA", 20, true},
    {"OA_RaiseErrorW", 20, true},
    {"OA_RaiseError2A", 20, true},
    {"OA_RaiseError2W", 20, true},
    {"OA_PreInvokeError", 4, true},
    {"OA_PostInvokeError", 4, true},
    {"OA_SysAllocNullString", 0, true},
    {"OA_SysAllocString", 4, true},
    {"OA_SysAllocStringLen", 8, true},
    {"OA_SysReAllocString", 8, true},
    {"OA_SysReAllocStringLen", 12, true},
    {"OA_SysFreeString", 4, true},
    {"OA_SysStringLen", 4, true},
    {"OA_SysDupString", 4, true},
    {"OA_SysCmp", 8, true},
    {"OA_SysAllocStringA", 4, true},
    {"OA_SysAllocStringLenA", 8, true},
    {"OA_SysReAllocStringA", 8, true},
    {"OA_SysReAllocStringLenA", 12, true},
    {"OA_SysFreeStringA", 4, true},
    {"OA_SysStringLenA", 4, true},
    {"OA_SysDupStringA", 4, true},
    {"OA_OLESTRFromBSTRA", 4, true},
    {"OA_OLESTRFromStringA", 4, true},
    {"OA_OLESTRFromStringLenA", 8, true},
    {"OA_AsciiFromBSTRW", 4, true},
    {"OA_AsciiFromStringW", 4, true},
    {"OA_AsciiFromStringLenW", 8, true},
    {"OA_AsciiFromWide", 8, true},
    {"OA_WideFromAscii", 8, true},
    {"OA_StrCat", 8, true},
    {"OA_StrCmp", 8, true},
    {"OA_StrCmpi", 8, true},
    {"OA_StrCpy", 8, true},
    {"OA_StrLen", 4, true},
    {"OA_VariantFromBOOL", 8, true},
    {"OA_VariantFromI2", 8, true},
    {"OA_VariantFromI4", 8, true},
    {"OA_VariantFromR4", 8, true},
    {"OA_VariantFromR8", 12, true},
    {"OA_VariantFromStringA", 8, true},
    {"OA_VariantFromStringW", 8, true},
    {"OA_VariantFromBSTR", 8, true},
    {"OA_VariantFromDisp", 8, true},
    {"OA_NlsSetLangID", 4, true},
    {"OA_NlsGetLangID", 0, true},
    {"OA_NlsGetOleLCID", 0, true},
    {"OA_NlsLock", 4, true},
    {"OA_NlsGetInstance", 0, true},
    {"OA_NlsAdjustPathName", 8, true},
    {"OA_BrannocAboutBox", 12, true},
    {"OA_CreateTypeA", 4, true},
    {"OA_CreateTypeW", 4, true},
    {"OA_CreateDispatch", 16, true},
    {"OA_GetDispatchData", 4, true},
    {"OA_GetMethodData", 12, true},
    {"OA_BindDispatch", 8, true},
    {"OA_CreateClass", 16, true},
    {"OA_CreateEnum", 8, true},
    {"OA_WrapMFCLib", 8, true},
    {"OA_BindMFC", 16, true},
    {"CB_CreateCallBack", 12, true},
    {"CB_CreateCallBack2", 12, true},
    {"OA_DestroyCallBack", 8, true},
    {"OA_DestroyCallBack2", 8, true},
    {"CB_DebugPrintA", 12, true},
    {"CB_DebugPrintW", 12, true},
    {"CB_DoEvents", 8, true},
    {"CB_Notify", 12, true},
    {"CB_ReadMacroA", 12, true},
    {"CB_ReadMacroW", 12, true},
    {"CB_MapMacroNameA", 16, true},
    {"CB_MapMacroNameW", 16, true},
    {"CB_Window", 4, true},
    {"CU_Call", 8, true},
    {"CU_CallBack", 4, true},
    {"CU_BlockedKeywords", 4, true},
    {"CU_BlockedKeywordsPut", 8, true},
    {"CU_DefaultCallBack", 4, true},
    {"CU_IsProject", 8, false},
    {"CU_Keywords", 4, true},
    {"CU_Macro", 12, true},
    {"CU_ProjectCreate", 8, false},
    {"CU_ProjectDestroy", 8, false},
    {"CU_Prototypes", 8, true},
    {"CU_Caption", 4, true},
    {"CU_CaptionPut", 8, true},
    {"CU_BreakLineNum", 12, true},
    {"CU_CallersLine", 8, true},
    {"CU_Continue", 4, true},
    {"CU_CurrentLine", 4, true},
    {"CU_DoEvents", 4, true},
    {"CU_DoEventsPut", 8, true},
    {"CU_ErrorDesc", 4, true},
    {"CU_ErrorDescPut", 8, true},
    {"CU_ErrorHelpContext", 4, false},
    {"CU_ErrorHelpFile", 4, false},
    {"CU_ErrorLimit", 4, true},
    {"CU_ErrorLimitPut", 8, true},
    {"CU_ErrorLine", 4, true},
    {"CU_ErrorLineNum", 4, true},
    {"CU_ErrorMacroName", 4, true},
    {"CU_ErrorNumber", 4, false},
    {"CU_ErrorOffset", 4, true},
    {"CU_ErrorSource", 4, false},
    {"CU_Evaluate", 12, true},
    {"CU_EvaluateObject", 12, true},
    {"CU_EvaluatePut", 16, true},
    {"CU_Evaluating", 4, true},
    {"CU_Halt", 4, true},
    {"CU_HaltAll", 4, true},
    {"CU_HelpFile", 4, true},
    {"CU_IsActive", 4, true},
    {"CU_IsIdle", 4, true},
    {"CU_IsMacro", 8, true},
    {"CU_IsMacroActive", 8, true},
    {"CU_IsPaused", 4, true},
    {"CU_IsStopped", 4, true},
    {"CU_LineNum", 4, true},
    {"CU_LineNumPut", 8, true},
    {"CU_Load", 8, true},
    {"CU_LoadedMacroName", 8, true},
    {"CU_MacroKeywords", 8, true},
    {"CU_MacroName", 4, true},
    {"CU_Rename", 12, true},
    {"CU_Run", 8, true},
    {"CU_SetCallBack", 8, true},
    {"CU_Shutdown", 4, true},
    {"CU_StackDepth", 4, true},
    {"CU_StackDepthPut", 8, true},
    {"CU_Start", 8, true},
    {"CU_Step", 4, true},
    {"CU_Stop", 4, true},
    {"CU_ToggleBreak", 12, true},
    {"CU_Unload", 8, true},
    {"CU_Version", 4, true},
    {"CU_AddExtension", 12, true},
    {"CU_RemoveExtensions", 8, true},
    {"CU_ExtensionType", 8, true},
    {"CU_ExtensionTypeEx", 12, true},
    {"CU_ExtensionTypeName", 8, true},
    {"CU_ExtensionTypeNameEx", 12, true},
    {"CU_ExtensionTypes", 12, false},
    {"CU_Fire", 8, true},
    {"CU_CreateHandler", 8, true},
    {"CU_CreateHandlers", 12, true},
    {"CU_FireBusy", 4, true},
    {"CU_FireCall", 8, true},
    {"CU_FireEval", 8, true},
    {"CU_FireResult", 8, true},
    {"CU_FireSucceeded", 4, true},
    {"CU_HandlerExists", 4, true},
    {"CU_HandlerCall", 12, true},
    {"CU_HandlerEvaluate", 16, true},
    {"CU_HandlerStart", 12, true},
    {"CU_HandlerStepInto", 4, true},
    {"CU_HandlerStepIntoPut", 8, true},
    {"CU_HandlerPrototype", 4, true},
    {"CU_HandlerProcName", 4, true},
    {"CU_HandlerIsModuleLoaded", 4, true},
    {"CU_HandlersItem", 8, true},
    {"KZ_CallProcError", 0, false},
    {"KZ_CallBackDebugPrint", 12, false},
    {"KZ_CallBackDoEvents", 8, false},
    {"KZ_CallBackNotify", 12, false},
    {"KZ_CallBackReadMacro", 12, false},
    {"KZ_CallBackWindow", 4, false},
    {"KZ_NlsLock", 4, false},
    {"KZ_NlsSetLangID", 4, false},
    {"KZ_MC200_DebugLink", 0, false},
    {"KZ_ErrObjectDestroy", 8, false},
    {"KZ_HandlersGetItem", 8, false},
    {"KZ_HandlersDestroy", 8, false},
};

std::string Decorated(const ExportRow& row) { return "_" + std::string(row.name) + "@" + std::to_string(row.argumentBytes); }

} // namespace

TEST(Exports, EachFunctionHasItsDecoratedNameAndThePlainNameWhereDue)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    for (const ExportRow& row : kExports) {
        SCOPED_TRACE(row.name);
        FARPROC decorated = library.Proc(Decorated(row).c_str());
        EXPECT_NE(nullptr, decorated) << Decorated(row);
        FARPROC plain = library.Proc(row.name);
        if (row.plainToo)
            EXPECT_EQ(decorated, plain) << "plain name must reach the same function";
        else
            EXPECT_EQ(nullptr, plain) << "only the decorated name is exported";
    }
}

TEST(Exports, NothingElseIsExported)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    std::set<std::string> expected;
    for (const ExportRow& row : kExports) {
        expected.insert(Decorated(row));
        if (row.plainToo)
            expected.insert(row.name);
    }
    std::set<std::string> actual;
    for (const std::string& name : library.ExportNames())
        actual.insert(name);
    EXPECT_EQ(expected, actual);
    for (const std::string& name : actual) {
        // A decorated name must carry its underscore: a bare "Name@N" would be a leak of the linker's.
        if (name.find('@') != std::string::npos)
            EXPECT_EQ('_', name[0]) << name;
    }
}

TEST(Exports, ImportsOnlyWindowsSystemLibraries)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    const std::set<std::string> allowed = {"KERNEL32.DLL", "USER32.DLL", "GDI32.DLL", "OLE32.DLL", "OLEAUT32.DLL",
                                           "ADVAPI32.DLL", "COMDLG32.DLL", "SHELL32.DLL", "MSVCRT.DLL"};
    for (const std::string& name : library.ImportedLibraries())
        EXPECT_TRUE(allowed.count(name)) << name;
}
