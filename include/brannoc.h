/* Brannoc Basic: the engine library's interface for host programs (C and C++).
 *
 * All functions use the standard calling convention. Text arguments are ANSI strings; text results are
 * byte-length automation strings owned by the caller. This header grows with the exported families. */
#ifndef BRANNOC_H
#define BRANNOC_H

#include <windows.h>
#include <oaidl.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef BRANNOC_BUILDING_ENGINE
#define BRANNOC_API
#else
#define BRANNOC_API __declspec(dllimport)
#endif

/* Identifiers of the engine's type library "BrannocBasicCodeUnitLib" (version 1.1, locale 0x409). */
static const GUID LIBID_BrannocBasicCodeUnitLib =
    {0xC1D60532, 0x6B58, 0x4F6C, {0xAD, 0xF1, 0x32, 0x38, 0x8C, 0x85, 0xC5, 0x58}};
static const GUID CLSID_CodeUnit =
    {0x47E5369F, 0xDBE6, 0x4E83, {0xA2, 0x7B, 0x8B, 0xC4, 0xAF, 0xA1, 0x5D, 0xDD}};
static const GUID IID__CodeUnit =
    {0xF1E1E939, 0xC4D6, 0x4342, {0xA0, 0xAA, 0xF3, 0x02, 0xF6, 0xC5, 0xFC, 0xEB}};
static const GUID IID__CallBack =
    {0x1EEDC639, 0x19E1, 0x434F, {0x80, 0x62, 0x76, 0x3C, 0xB9, 0xC2, 0xDA, 0xE6}};
static const GUID DIID_CallBack =
    {0x18BA2331, 0x6BC6, 0x4759, {0x89, 0x98, 0x38, 0x7F, 0xB3, 0x02, 0x78, 0x8F}};
static const GUID IID__Handlers =
    {0xBDD5FD70, 0x5FBA, 0x442A, {0x9C, 0x89, 0xB9, 0xE5, 0x89, 0xD7, 0x45, 0xFB}};
static const GUID CLSID_Handlers =
    {0x83509556, 0x4E83, 0x4C2D, {0xB9, 0x0A, 0x97, 0xE4, 0x05, 0x45, 0x6C, 0x28}};
static const GUID IID_ErrObject =
    {0xDCBB0C72, 0x31DF, 0x403B, {0xA6, 0x6D, 0xDD, 0x06, 0x50, 0xEC, 0xD4, 0x9C}};
static const GUID IID__BasicObject =
    {0xB82A6414, 0xF56C, 0x4D38, {0xA5, 0x1C, 0x20, 0xB6, 0x7C, 0x07, 0xC8, 0x14}};
static const GUID CLSID_KZB =
    {0xAD65F59E, 0x0D94, 0x4A33, {0xB9, 0x8E, 0xBA, 0xC8, 0xFC, 0x34, 0x29, 0x53}};


#ifdef __cplusplus
}  /* extern "C" */

/* The engine object's dual interface, in its vtable order (after IUnknown and IDispatch). A property with
 * get and put takes two slots, get first. Booleans are VARIANT_BOOL (-1 true, 0 false). */
struct __declspec(novtable) _CodeUnit : public IDispatch {
    virtual HRESULT __stdcall get_CallBack(IDispatch** result) = 0;
    virtual HRESULT __stdcall get_CallersLine(short depth, BSTR* result) = 0;
    virtual HRESULT __stdcall get_Caption(BSTR* result) = 0;
    virtual HRESULT __stdcall put_Caption(BSTR caption) = 0;
    virtual HRESULT __stdcall get_CurrentLine(BSTR* result) = 0;
    virtual HRESULT __stdcall get_DefaultCallBack(IDispatch** result) = 0;
    virtual HRESULT __stdcall get_DoEvents(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall put_DoEvents(VARIANT_BOOL on) = 0;
    virtual HRESULT __stdcall get_ErrorDesc(BSTR* result) = 0;
    virtual HRESULT __stdcall put_ErrorDesc(BSTR description) = 0;
    virtual HRESULT __stdcall get_ErrorLimit(short* result) = 0;
    virtual HRESULT __stdcall put_ErrorLimit(short limit) = 0;
    virtual HRESULT __stdcall get_ErrorLine(BSTR* result) = 0;
    virtual HRESULT __stdcall get_ErrorLineNum(short* result) = 0;
    virtual HRESULT __stdcall get_ErrorMacroName(BSTR* result) = 0;
    virtual HRESULT __stdcall get_ErrorOffset(short* result) = 0;
    virtual HRESULT __stdcall get_Evaluate(BSTR expression, short depth, BSTR* result) = 0;
    virtual HRESULT __stdcall put_Evaluate(BSTR expression, short depth, BSTR value) = 0;
    virtual HRESULT __stdcall get_EvaluateObject(BSTR expression, short depth, IDispatch** result) = 0;
    virtual HRESULT __stdcall get_Evaluating(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_ExtensionType(short index, IUnknown** result) = 0;
    virtual HRESULT __stdcall get_ExtensionTypeName(short index, BSTR* result) = 0;
    virtual HRESULT __stdcall get_Fire(VARIANT_BOOL debugging, IDispatch** result) = 0;
    virtual HRESULT __stdcall get_HelpFile(BSTR* result) = 0;
    virtual HRESULT __stdcall get_IsActive(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_IsIdle(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_IsPaused(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_IsStopped(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_Keywords(BSTR* result) = 0;
    virtual HRESULT __stdcall get_LineNum(short* result) = 0;
    virtual HRESULT __stdcall put_LineNum(short line) = 0;
    virtual HRESULT __stdcall get_MacroName(BSTR* result) = 0;
    virtual HRESULT __stdcall get_StackDepth(short* result) = 0;
    virtual HRESULT __stdcall put_StackDepth(short depth) = 0;
    virtual HRESULT __stdcall get_Version(BSTR* result) = 0;
    virtual HRESULT __stdcall AddExtension(BSTR prefix, IDispatch* extension) = 0;
    virtual HRESULT __stdcall Call0(BSTR subName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Call1(BSTR subName, VARIANT* arg1, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Call2(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Call3(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3,
                                    VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Call4(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4,
                                    VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Call5(BSTR subName, VARIANT* arg1, VARIANT* arg2, VARIANT* arg3, VARIANT* arg4,
                                    VARIANT* arg5, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Continue(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Halt(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall HaltAll(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Load(BSTR macroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Run(short depth, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall SetCallBack(IDispatch* callBack) = 0;
    virtual HRESULT __stdcall Start(BSTR macroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Step(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Stop(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall ToggleBreak(BSTR macroName, short line, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Unload(BSTR macroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_BlockedKeywords(BSTR* result) = 0;
    virtual HRESULT __stdcall put_BlockedKeywords(BSTR keywords) = 0;
    virtual HRESULT __stdcall get_LoadedMacroName(short index, BSTR* result) = 0;
    virtual HRESULT __stdcall CreateHandler(BSTR prototype, IDispatch** result) = 0;
    virtual HRESULT __stdcall get_IsMacro(BSTR macroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Shutdown(VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall RemoveExtensions(BSTR prefix, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_Prototypes(BSTR prefix, BSTR* result) = 0;
    virtual HRESULT __stdcall Rename(BSTR oldMacroName, BSTR newMacroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_MacroKeywords(BSTR macroName, BSTR* result) = 0;
    virtual HRESULT __stdcall CreateHandlers(BSTR prefix, IDispatch* eventObject, IDispatch** result) = 0;
    virtual HRESULT __stdcall get_IsMacroActive(BSTR macroName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall Macro(BSTR macroName, VARIANT_BOOL createNew, IDispatch** result) = 0;
    virtual HRESULT __stdcall get_BreakLineNum(BSTR macroName, short index, short* result) = 0;
    virtual HRESULT __stdcall AddExtensionEx(BSTR prefix, IDispatch* extension, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_ExtensionTypeEx(BSTR macro, short index, IUnknown** result) = 0;
    virtual HRESULT __stdcall get_ExtensionTypeNameEx(BSTR macro, short index, BSTR* result) = 0;
    virtual HRESULT __stdcall get_ExtensionTypes(BSTR macro, VARIANT* types, BSTR* result) = 0;
    virtual HRESULT __stdcall get_ErrorNumber(long* result) = 0;
    virtual HRESULT __stdcall get_ErrorSource(BSTR* result) = 0;
    virtual HRESULT __stdcall get_ErrorHelpFile(BSTR* result) = 0;
    virtual HRESULT __stdcall get_ErrorHelpContext(long* result) = 0;
    virtual HRESULT __stdcall ProjectCreate(BSTR projectName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall ProjectDestroy(BSTR projectName, VARIANT_BOOL* result) = 0;
    virtual HRESULT __stdcall get_IsProject(BSTR projectName, VARIANT_BOOL* result) = 0;
};

extern "C" {
#endif

/* Engine objects. */
BRANNOC_API void* __stdcall CU_CreateCodeUnit(void);
BRANNOC_API void* __stdcall KZ_CreateCodeUnit(void);
BRANNOC_API void* __stdcall KZ_CodeCreate(ITypeInfo* classType, LONG reserved);

/* Library lifetime. */
BRANNOC_API BOOL __stdcall CU_FreeLibraryOkay(void);
BRANNOC_API BOOL __stdcall KZ_FreeLibraryOkay(void);
BRANNOC_API BOOL __stdcall KZ_CodeClassLock(SHORT count, LONG reserved);

#ifdef __cplusplus
}
#endif

#endif /* BRANNOC_H */
