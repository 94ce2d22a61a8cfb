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

/* Threads: ends the multi-thread mode for the rest of the process and gives the engine to the first
 * thread that gave it up for another thread. */
BRANNOC_API void __stdcall CU_Yield(void);
BRANNOC_API void __stdcall KZ_Yield(void);

/* ---- Automation toolkit (OA_ family) ----
 * ANSI results are byte-length automation strings freed with OA_SysFreeStringA; wide results are BSTRs
 * freed with OA_SysFreeString. Functions returning an object give the caller one reference. */

/* Argument list: OA_ArgStart, one OA_ArgAdd... per argument, then an OA_Invoke... call (which consumes it).
 * Arguments are stored from the last slot down, the order IDispatch expects. */
typedef struct OA_ARG {
    LONG error;       /* 1 when more arguments were added than announced (and while being invoked) */
    LONG count;       /* the number announced to OA_ArgStart */
    LONG freeSlots;   /* counts down as arguments are added */
    VARIANT* args;    /* count entries */
} OA_ARG;

/* Error record of the OA_Invoke family (the first five fields of an EXCEPINFO); the caller frees the strings. */
typedef struct OA_ERROR {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
} OA_ERROR;

typedef void (__stdcall *OA_DESTROYPROC)(void* implementation, void* userData);
typedef IDispatch* (__stdcall *OA_CREATEPROC)(ITypeInfo* type, void* userData);
typedef BOOL (__stdcall *OA_ENUMPROC)(IUnknown* data, LONG index, VARIANT* element);
typedef HRESULT (__stdcall *OA_WRAPPROC)(REFIID interfaceId, IUnknown* object, IUnknown** wrapped);

struct OA_APPLICATION;
/* Makes the application's implementation object. */
typedef void* (__stdcall *OA_APPCREATEPROC)(struct OA_APPLICATION* descriptor);
/* Application descriptor of OA_InitializeApplication; size must be 36. */
typedef struct OA_APPLICATION {
    LONG size;
    LPCSTR type;                 /* class description, or "{class GUID}"; a leading "*": multiple-use */
    LPCSTR progId;
    OA_APPCREATEPROC create;
    OA_DESTROYPROC destroy;      /* the implementation's own destroy (implementation, descriptor) */
    IUnknown* classObject;       /* out */
    DWORD classCookie;           /* out */
    IDispatch* application;      /* out */
    DWORD activeCookie;          /* out */
} OA_APPLICATION;

/* Start and stop. */
BRANNOC_API BOOL __stdcall OA_Initialize(void);
BRANNOC_API void __stdcall OA_Uninitialize(void);
BRANNOC_API LPCSTR __stdcall OA_Version(void);
BRANNOC_API ULONG __stdcall OA_AddRef(IUnknown* object);
BRANNOC_API ULONG __stdcall OA_Release(IUnknown* object);

/* Argument lists. */
BRANNOC_API BOOL __stdcall OA_ArgStart(LONG count, OA_ARG* list);
BRANNOC_API void __stdcall OA_ArgRelease(OA_ARG* list);
BRANNOC_API BOOL __stdcall OA_ArgAddBOOL(OA_ARG* list, VARIANT_BOOL value);
BRANNOC_API BOOL __stdcall OA_ArgAddI2(OA_ARG* list, SHORT value);
BRANNOC_API BOOL __stdcall OA_ArgAddI4(OA_ARG* list, LONG value);
BRANNOC_API BOOL __stdcall OA_ArgAddR4(OA_ARG* list, FLOAT value);
BRANNOC_API BOOL __stdcall OA_ArgAddR8(OA_ARG* list, DOUBLE value);
BRANNOC_API BOOL __stdcall OA_ArgAddStringA(OA_ARG* list, LPCSTR value);
BRANNOC_API BOOL __stdcall OA_ArgAddStringW(OA_ARG* list, LPCWSTR value);
BRANNOC_API BOOL __stdcall OA_ArgAddBSTRA(OA_ARG* list, BSTR ansiValue);
BRANNOC_API BOOL __stdcall OA_ArgAddBSTRW(OA_ARG* list, BSTR value);
BRANNOC_API BOOL __stdcall OA_ArgAddDisp(OA_ARG* list, IDispatch* value);
BRANNOC_API BOOL __stdcall OA_ArgAddUnk(OA_ARG* list, IUnknown* value);
BRANNOC_API BOOL __stdcall OA_ArgAddVariant(OA_ARG* list, VARIANT* value);
BRANNOC_API BOOL __stdcall OA_ArgAddI2Ref(OA_ARG* list, SHORT* variable);
BRANNOC_API BOOL __stdcall OA_ArgAddI4Ref(OA_ARG* list, LONG* variable);
BRANNOC_API BOOL __stdcall OA_ArgAddR4Ref(OA_ARG* list, FLOAT* variable);
BRANNOC_API BOOL __stdcall OA_ArgAddR8Ref(OA_ARG* list, DOUBLE* variable);
BRANNOC_API BOOL __stdcall OA_ArgAddBSTRRef(OA_ARG* list, BSTR* variable);
BRANNOC_API BOOL __stdcall OA_ArgAddDispRef(OA_ARG* list, IDispatch** variable);
BRANNOC_API BOOL __stdcall OA_ArgAddUnkRef(OA_ARG* list, IUnknown** variable);

/* Invocation: object, member id, argument list or null, error record or null. */
BRANNOC_API BOOL __stdcall OA_Invoke(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BOOL __stdcall OA_InvokePut(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API VARIANT_BOOL __stdcall OA_InvokeBOOL(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API SHORT __stdcall OA_InvokeI2(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API LONG __stdcall OA_InvokeI4(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API FLOAT __stdcall OA_InvokeR4(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API DOUBLE __stdcall OA_InvokeR8(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BSTR __stdcall OA_InvokeBSTRW(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BSTR __stdcall OA_InvokeBSTRA(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API IDispatch* __stdcall OA_InvokeDisp(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API IUnknown* __stdcall OA_InvokeUnk(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BOOL __stdcall OA_InvokeVariant(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error,
                                            VARIANT* result);
BRANNOC_API BOOL __stdcall OA_InvokeError(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BOOL __stdcall OA_InvokeErrorSilent(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error);

/* Objects: a ProgID or a class identifier in braces. */
BRANNOC_API IDispatch* __stdcall OA_CreateObjectA(LPCSTR progId);
BRANNOC_API IDispatch* __stdcall OA_CreateObjectW(LPCWSTR progId);
BRANNOC_API IDispatch* __stdcall OA_ActiveObjectA(LPCSTR progId);
BRANNOC_API IDispatch* __stdcall OA_ActiveObjectW(LPCWSTR progId);
BRANNOC_API IDispatch* __stdcall OA_CreateInstance(IUnknown* classObject);
BRANNOC_API BOOL __stdcall OA_RegisterClassObjectA(IUnknown* classObject, LPCSTR progId, BOOL multipleUse, DWORD* cookie);
BRANNOC_API BOOL __stdcall OA_RegisterClassObjectW(IUnknown* classObject, LPCWSTR progId, BOOL multipleUse, DWORD* cookie);
BRANNOC_API void __stdcall OA_RevokeClassObject(DWORD cookie);
BRANNOC_API BOOL __stdcall OA_RegisterActiveObjectA(IUnknown* object, LPCSTR progId, DWORD* cookie);
BRANNOC_API BOOL __stdcall OA_RegisterActiveObjectW(IUnknown* object, LPCWSTR progId, DWORD* cookie);
BRANNOC_API void __stdcall OA_RevokeActiveObject(DWORD cookie);
BRANNOC_API void __stdcall OA_DisconnectObject(IUnknown* object);

/* Automation-server applications. */
BRANNOC_API BOOL __stdcall OA_InitializeApplication(OA_APPLICATION* descriptor, LPCSTR commandLine);
BRANNOC_API void __stdcall OA_UninitializeApplication(OA_APPLICATION* descriptor);
BRANNOC_API IDispatch* __stdcall OA_AppCreateDispatch(ITypeInfo* type, void* descriptor);
BRANNOC_API void __stdcall OA_AppDataDestroy(void* implementation, void* descriptor);

/* Type information. */
BRANNOC_API ITypeLib* __stdcall OA_LoadLib(HMODULE module);
BRANNOC_API ITypeInfo* __stdcall OA_LoadType_A(ITypeLib* library, LPCSTR guidText);
BRANNOC_API ITypeInfo* __stdcall OA_LoadType_W(ITypeLib* library, LPCWSTR guidText);
BRANNOC_API ITypeInfo* __stdcall OA_GetType(IUnknown* object);
BRANNOC_API ITypeInfo* __stdcall OA_GetCoclassType(IUnknown* object);
BRANNOC_API ITypeInfo* __stdcall OA_GetDispatchType(ITypeInfo* type);
BRANNOC_API DISPID __stdcall OA_GetDispatchIDA(IDispatch* object, LPCSTR name);
BRANNOC_API DISPID __stdcall OA_GetDispatchIDW(IDispatch* object, LPCWSTR name);
BRANNOC_API DISPID __stdcall OA_GetDispatchID2A(IDispatch* object, LPCSTR member, LPCSTR parameter);
BRANNOC_API DISPID __stdcall OA_GetDispatchID2W(IDispatch* object, LPCWSTR member, LPCWSTR parameter);
BRANNOC_API BSTR __stdcall OA_GetDispatchNameA(IUnknown* typeOrObject, MEMBERID id);
BRANNOC_API BSTR __stdcall OA_GetDispatchNameW(IUnknown* typeOrObject, MEMBERID id);
BRANNOC_API BSTR __stdcall OA_GetDispatchNamesA(IUnknown* typeOrObject, LPCSTR prefix);
BRANNOC_API BSTR __stdcall OA_GetDispatchNamesW(IUnknown* typeOrObject, LPCWSTR prefix);
BRANNOC_API BSTR __stdcall OA_GetTypeDescA(IUnknown* typeOrObject, LONG index, LONG flags);
BRANNOC_API BSTR __stdcall OA_GetTypeDescW(IUnknown* typeOrObject, LONG index, LONG flags);
BRANNOC_API BSTR __stdcall OA_GetTypeHelpFileA(IUnknown* typeOrObject, MEMBERID id, DWORD* helpContext);
BRANNOC_API BSTR __stdcall OA_GetTypeHelpFileW(IUnknown* typeOrObject, MEMBERID id, DWORD* helpContext);
BRANNOC_API ITypeComp* __stdcall OA_GetComp(IUnknown* object);
BRANNOC_API BSTR __stdcall OA_GetCompDescA(ITypeComp* comp, LPCSTR name, LONG flags);
BRANNOC_API BSTR __stdcall OA_GetCompDescW(ITypeComp* comp, LPCWSTR name, LONG flags);

/* Errors raised from inside methods of dispatch objects. */
BRANNOC_API void __stdcall OA_RaiseErrorA(LONG code, LPCSTR source, LPCSTR description, LPCSTR helpFile, DWORD helpContext);
BRANNOC_API void __stdcall OA_RaiseErrorW(LONG code, LPCWSTR source, LPCWSTR description, LPCWSTR helpFile, DWORD helpContext);
BRANNOC_API void __stdcall OA_RaiseError2A(LONG status, LPCSTR source, LPCSTR description, LPCSTR helpFile, DWORD helpContext);
BRANNOC_API void __stdcall OA_RaiseError2W(LONG status, LPCWSTR source, LPCWSTR description, LPCWSTR helpFile, DWORD helpContext);
BRANNOC_API void* __stdcall OA_PreInvokeError(EXCEPINFO* record);
BRANNOC_API HRESULT __stdcall OA_PostInvokeError(HRESULT status);

/* Strings. */
BRANNOC_API BSTR __stdcall OA_SysAllocNullString(void);
BRANNOC_API BSTR __stdcall OA_SysAllocString(LPCWSTR text);
BRANNOC_API BSTR __stdcall OA_SysAllocStringLen(LPCWSTR text, UINT length);
BRANNOC_API INT __stdcall OA_SysReAllocString(BSTR* text, LPCWSTR value);
BRANNOC_API INT __stdcall OA_SysReAllocStringLen(BSTR* text, LPCWSTR value, UINT length);
BRANNOC_API void __stdcall OA_SysFreeString(BSTR text);
BRANNOC_API UINT __stdcall OA_SysStringLen(BSTR text);
BRANNOC_API BSTR __stdcall OA_SysDupString(BSTR text);
BRANNOC_API INT __stdcall OA_SysCmp(BSTR a, BSTR b);
BRANNOC_API BSTR __stdcall OA_SysAllocStringA(LPCSTR text);
BRANNOC_API BSTR __stdcall OA_SysAllocStringLenA(LPCSTR text, UINT length);
BRANNOC_API INT __stdcall OA_SysReAllocStringA(BSTR* text, LPCSTR value);
BRANNOC_API INT __stdcall OA_SysReAllocStringLenA(BSTR* text, LPCSTR value, UINT length);
BRANNOC_API void __stdcall OA_SysFreeStringA(BSTR text);
BRANNOC_API UINT __stdcall OA_SysStringLenA(BSTR text);
BRANNOC_API BSTR __stdcall OA_SysDupStringA(BSTR text);
BRANNOC_API BSTR __stdcall OA_OLESTRFromBSTRA(BSTR ansiText);
BRANNOC_API BSTR __stdcall OA_OLESTRFromStringA(LPCSTR text);
BRANNOC_API BSTR __stdcall OA_OLESTRFromStringLenA(LPCSTR text, UINT length);
BRANNOC_API BSTR __stdcall OA_AsciiFromBSTRW(BSTR text);
BRANNOC_API BSTR __stdcall OA_AsciiFromStringW(LPCWSTR text);
BRANNOC_API BSTR __stdcall OA_AsciiFromStringLenW(LPCWSTR text, UINT length);
BRANNOC_API BOOL __stdcall OA_AsciiFromWide(LPSTR destination, LPCWSTR source);
BRANNOC_API BOOL __stdcall OA_WideFromAscii(LPWSTR destination, LPCSTR source);
BRANNOC_API LPWSTR __stdcall OA_StrCat(LPWSTR destination, LPCWSTR source);
BRANNOC_API INT __stdcall OA_StrCmp(LPCWSTR a, LPCWSTR b);
BRANNOC_API INT __stdcall OA_StrCmpi(LPCWSTR a, LPCWSTR b);
BRANNOC_API LPWSTR __stdcall OA_StrCpy(LPWSTR destination, LPCWSTR source);
BRANNOC_API UINT __stdcall OA_StrLen(LPCWSTR text);

/* VARIANT setters (the VARIANT is cleared first). */
BRANNOC_API void __stdcall OA_VariantFromBOOL(VARIANT* variant, VARIANT_BOOL value);
BRANNOC_API void __stdcall OA_VariantFromI2(VARIANT* variant, SHORT value);
BRANNOC_API void __stdcall OA_VariantFromI4(VARIANT* variant, LONG value);
BRANNOC_API void __stdcall OA_VariantFromR4(VARIANT* variant, FLOAT value);
BRANNOC_API void __stdcall OA_VariantFromR8(VARIANT* variant, DOUBLE value);
BRANNOC_API void __stdcall OA_VariantFromStringA(VARIANT* variant, LPCSTR value);
BRANNOC_API void __stdcall OA_VariantFromStringW(VARIANT* variant, LPCWSTR value);
BRANNOC_API void __stdcall OA_VariantFromBSTR(VARIANT* variant, BSTR value);
BRANNOC_API void __stdcall OA_VariantFromDisp(VARIANT* variant, IDispatch* value);

/* Language of the user interface (per thread). */
BRANNOC_API BOOL __stdcall OA_NlsSetLangID(LANGID language);
BRANNOC_API LANGID __stdcall OA_NlsGetLangID(void);
BRANNOC_API LCID __stdcall OA_NlsGetOleLCID(void);
BRANNOC_API void __stdcall OA_NlsLock(BOOL on);
BRANNOC_API HINSTANCE __stdcall OA_NlsGetInstance(void);
BRANNOC_API BOOL __stdcall OA_NlsAdjustPathName(LPSTR path, BOOL satellite);

/* The library's about box over owner; TRUE when closed with OK. */
BRANNOC_API BOOL __stdcall OA_BrannocAboutBox(HWND owner, LPCSTR name, void* logoData);

/* Dispatch classes from text descriptions. */
BRANNOC_API ITypeInfo* __stdcall OA_CreateTypeA(LPCSTR description);
BRANNOC_API ITypeInfo* __stdcall OA_CreateTypeW(LPCWSTR description);
BRANNOC_API IDispatch* __stdcall OA_CreateDispatch(ITypeInfo* type, OA_DESTROYPROC destroy, void* implementation,
                                                   void* userData);
BRANNOC_API void* __stdcall OA_GetDispatchData(IUnknown* dispatch);
BRANNOC_API METHODDATA* __stdcall OA_GetMethodData(ITypeInfo* type, DISPID id, WORD kind);
/* A new binding object (one reference); with a null argument, dispatch itself without a reference added. */
BRANNOC_API IDispatch* __stdcall OA_BindDispatch(IDispatch* dispatch, ITypeInfo* type);
BRANNOC_API IClassFactory* __stdcall OA_CreateClass(ITypeInfo* type, OA_CREATEPROC create, LONG reserved, void* userData);
BRANNOC_API IEnumVARIANT* __stdcall OA_CreateEnum(IUnknown* data, OA_ENUMPROC getter);
/* OA_WrapMFCLib and OA_BindMFC take over the reference they are given and answer one reference. */
BRANNOC_API IUnknown* __stdcall OA_WrapMFCLib(ITypeLib* library, OA_WRAPPROC wrap);
BRANNOC_API IDispatch* __stdcall OA_BindMFC(IDispatch* dispatch, LPCSTR typeGuidText, OA_WRAPPROC wrap, BOOL keep);

/* ---- Host callbacks (CB_ family) ----
 * A callback over plain functions (standard calling convention, the user data last). ANSI texts handed
 * to the host are valid for the call; ReadMacro and MapMacroName answer a byte-length ANSI string
 * (OA_SysAllocStringA) that the engine takes over, or null. A null pointer forwards the call to the
 * fallback callback. */
typedef void (__stdcall *CB_DEBUGPRINTPROC)(IDispatch* engine, LPCSTR text, void* userData);
typedef void (__stdcall *CB_DOEVENTSPROC)(IDispatch* engine, void* userData);
typedef void (__stdcall *CB_NOTIFYPROC)(IDispatch* engine, LONG code, void* userData);
typedef BSTR (__stdcall *CB_READMACROPROC)(IDispatch* engine, LPCSTR macroName, void* userData);
typedef LONG (__stdcall *CB_WINDOWPROC)(void* userData);
typedef BSTR (__stdcall *CB_MAPMACRONAMEPROC)(IDispatch* engine, LPCSTR macroName, LPCSTR baseName, void* userData);

typedef struct CB_FUNCTIONS {
    CB_DEBUGPRINTPROC DebugPrint;
    CB_DOEVENTSPROC DoEvents;
    CB_NOTIFYPROC Notify;
    CB_READMACROPROC ReadMacro;
    CB_WINDOWPROC Window;
} CB_FUNCTIONS;

typedef struct CB_FUNCTIONS2 {
    CB_DEBUGPRINTPROC DebugPrint;
    CB_DOEVENTSPROC DoEvents;
    CB_MAPMACRONAMEPROC MapMacroName;
    CB_NOTIFYPROC Notify;
    CB_READMACROPROC ReadMacro;
    CB_WINDOWPROC Window;
} CB_FUNCTIONS2;

/* A callback object (one reference) over the functions; the fallback, when given, is held. */
BRANNOC_API IDispatch* __stdcall CB_CreateCallBack(IDispatch* fallback, const CB_FUNCTIONS* functions, void* userData);
BRANNOC_API IDispatch* __stdcall CB_CreateCallBack2(IDispatch* fallback, const CB_FUNCTIONS2* functions, void* userData);
/* Destroy functions of the adapters behind CB_CreateCallBack and CB_CreateCallBack2. */
BRANNOC_API void __stdcall OA_DestroyCallBack(void* adapter, void* unused);
BRANNOC_API void __stdcall OA_DestroyCallBack2(void* adapter, void* unused);
/* Calls of a callback's members by name; a missing required member is reported as OA_Invoke reports. */
BRANNOC_API void __stdcall CB_DebugPrintA(IDispatch* callBack, IDispatch* engine, LPCSTR text);
BRANNOC_API void __stdcall CB_DebugPrintW(IDispatch* callBack, IDispatch* engine, LPCWSTR text);
BRANNOC_API void __stdcall CB_DoEvents(IDispatch* callBack, IDispatch* engine);
BRANNOC_API void __stdcall CB_Notify(IDispatch* callBack, IDispatch* engine, LONG code);
BRANNOC_API BSTR __stdcall CB_ReadMacroA(IDispatch* callBack, IDispatch* engine, LPCSTR macroName);
BRANNOC_API BSTR __stdcall CB_ReadMacroW(IDispatch* callBack, IDispatch* engine, LPCWSTR macroName);
/* The callback's MapMacroName answer, or a copy of the name when it has no such member. */
BRANNOC_API BSTR __stdcall CB_MapMacroNameA(IDispatch* callBack, IDispatch* engine, LPCSTR macroName, LPCSTR baseName);
BRANNOC_API BSTR __stdcall CB_MapMacroNameW(IDispatch* callBack, IDispatch* engine, LPCWSTR macroName, LPCWSTR baseName);
BRANNOC_API LONG __stdcall CB_Window(IDispatch* callBack);
/* Raises "Declare is not implemented." (10160) in the running macro; answers 0. */
BRANNOC_API LONG __stdcall KZ_CallProcError(void);

/* The default callback's handlers (what an engine object uses while the host sets no callback). */
BRANNOC_API void __stdcall KZ_CallBackDebugPrint(IDispatch* engine, LPCSTR text, void* userData);
BRANNOC_API void __stdcall KZ_CallBackDoEvents(IDispatch* engine, void* userData);
BRANNOC_API void __stdcall KZ_CallBackNotify(IDispatch* engine, LONG code, void* userData);
BRANNOC_API BSTR __stdcall KZ_CallBackReadMacro(IDispatch* engine, LPCSTR macroName, void* userData);
BRANNOC_API LONG __stdcall KZ_CallBackWindow(void* userData);

/* The same as OA_NlsLock and OA_NlsSetLangID. */
BRANNOC_API void __stdcall KZ_NlsLock(BOOL on);
BRANNOC_API BOOL __stdcall KZ_NlsSetLangID(LANGID language);
/* Does nothing; kept for hosts that link to it. */
BRANNOC_API void __stdcall KZ_MC200_DebugLink(void);
/* Destroy function of the Err object's dispatch object: frees its implementation (null: nothing). */
BRANNOC_API void __stdcall KZ_ErrObjectDestroy(void* implementation, void* userData);
/* A handler collection's item (the handler for the named event, held; null when none) and its release. */
BRANNOC_API IDispatch* __stdcall KZ_HandlersGetItem(IDispatch* handlers, BSTR name);
BRANNOC_API void __stdcall KZ_HandlersDestroy(IDispatch* handlers, void* userData);

/* ---- Engine objects through exported functions (CU_ family) ----
 * unit is the handle CU_CreateCodeUnit answered. A null handle or a failed member is reported in a
 * task-modal box; the result is then 0, null or FALSE. Texts are ANSI; text results are freed with
 * OA_SysFreeStringA, objects with OA_Release. 16-bit values are passed in 32-bit slots. */
/* Calls a Sub: the list holds its name, then 0 to 5 values (Call0 ... Call5); the list is consumed. */
BRANNOC_API BOOL __stdcall CU_Call(void* unit, OA_ARG* list);
BRANNOC_API IDispatch* __stdcall CU_CallBack(void* unit);
BRANNOC_API BSTR __stdcall CU_BlockedKeywords(void* unit);
BRANNOC_API void __stdcall CU_BlockedKeywordsPut(void* unit, LPCSTR keywords);
BRANNOC_API IDispatch* __stdcall CU_DefaultCallBack(void* unit);
BRANNOC_API BOOL __stdcall CU_IsProject(void* unit, LPCSTR projectName);
BRANNOC_API BSTR __stdcall CU_Keywords(void* unit);
BRANNOC_API IDispatch* __stdcall CU_Macro(void* unit, LPCSTR macroName, BOOL createNew);
BRANNOC_API BOOL __stdcall CU_ProjectCreate(void* unit, LPCSTR projectName);
BRANNOC_API BOOL __stdcall CU_ProjectDestroy(void* unit, LPCSTR projectName);
BRANNOC_API BSTR __stdcall CU_Prototypes(void* unit, LPCSTR prefix);
BRANNOC_API BSTR __stdcall CU_Caption(void* unit);
BRANNOC_API void __stdcall CU_CaptionPut(void* unit, LPCSTR caption);
BRANNOC_API SHORT __stdcall CU_BreakLineNum(void* unit, LPCSTR macroName, LONG index);
BRANNOC_API BSTR __stdcall CU_CallersLine(void* unit, LONG depth);
BRANNOC_API BOOL __stdcall CU_Continue(void* unit);
BRANNOC_API BSTR __stdcall CU_CurrentLine(void* unit);
BRANNOC_API BOOL __stdcall CU_DoEvents(void* unit);
BRANNOC_API void __stdcall CU_DoEventsPut(void* unit, BOOL on);
BRANNOC_API BSTR __stdcall CU_ErrorDesc(void* unit);
BRANNOC_API void __stdcall CU_ErrorDescPut(void* unit, LPCSTR description);
BRANNOC_API LONG __stdcall CU_ErrorHelpContext(void* unit);
BRANNOC_API BSTR __stdcall CU_ErrorHelpFile(void* unit);
BRANNOC_API SHORT __stdcall CU_ErrorLimit(void* unit);
BRANNOC_API void __stdcall CU_ErrorLimitPut(void* unit, LONG limit);
BRANNOC_API BSTR __stdcall CU_ErrorLine(void* unit);
BRANNOC_API SHORT __stdcall CU_ErrorLineNum(void* unit);
BRANNOC_API BSTR __stdcall CU_ErrorMacroName(void* unit);
BRANNOC_API LONG __stdcall CU_ErrorNumber(void* unit);
BRANNOC_API SHORT __stdcall CU_ErrorOffset(void* unit);
BRANNOC_API BSTR __stdcall CU_ErrorSource(void* unit);
BRANNOC_API BSTR __stdcall CU_Evaluate(void* unit, LPCSTR expression, LONG depth);
BRANNOC_API IDispatch* __stdcall CU_EvaluateObject(void* unit, LPCSTR expression, LONG depth);
BRANNOC_API void __stdcall CU_EvaluatePut(void* unit, LPCSTR expression, LONG depth, LPCSTR value);
BRANNOC_API BOOL __stdcall CU_Evaluating(void* unit);
BRANNOC_API BOOL __stdcall CU_Halt(void* unit);
BRANNOC_API BOOL __stdcall CU_HaltAll(void* unit);
BRANNOC_API BSTR __stdcall CU_HelpFile(void* unit);
BRANNOC_API BOOL __stdcall CU_IsActive(void* unit);
BRANNOC_API BOOL __stdcall CU_IsIdle(void* unit);
BRANNOC_API BOOL __stdcall CU_IsMacro(void* unit, LPCSTR macroName);
BRANNOC_API BOOL __stdcall CU_IsMacroActive(void* unit, LPCSTR macroName);
BRANNOC_API BOOL __stdcall CU_IsPaused(void* unit);
BRANNOC_API BOOL __stdcall CU_IsStopped(void* unit);
BRANNOC_API SHORT __stdcall CU_LineNum(void* unit);
BRANNOC_API void __stdcall CU_LineNumPut(void* unit, LONG line);
BRANNOC_API BOOL __stdcall CU_Load(void* unit, LPCSTR macroName);
BRANNOC_API BSTR __stdcall CU_LoadedMacroName(void* unit, LONG index);
BRANNOC_API BSTR __stdcall CU_MacroKeywords(void* unit, LPCSTR macroName);
BRANNOC_API BSTR __stdcall CU_MacroName(void* unit);
BRANNOC_API BOOL __stdcall CU_Rename(void* unit, LPCSTR oldMacroName, LPCSTR newMacroName);
BRANNOC_API BOOL __stdcall CU_Run(void* unit, LONG depth);
BRANNOC_API void __stdcall CU_SetCallBack(void* unit, IDispatch* callBack);
BRANNOC_API BOOL __stdcall CU_Shutdown(void* unit);
BRANNOC_API SHORT __stdcall CU_StackDepth(void* unit);
BRANNOC_API void __stdcall CU_StackDepthPut(void* unit, LONG depth);
BRANNOC_API BOOL __stdcall CU_Start(void* unit, LPCSTR macroName);
BRANNOC_API BOOL __stdcall CU_Step(void* unit);
BRANNOC_API BOOL __stdcall CU_Stop(void* unit);
BRANNOC_API BOOL __stdcall CU_ToggleBreak(void* unit, LPCSTR macroName, LONG line);
BRANNOC_API BOOL __stdcall CU_Unload(void* unit, LPCSTR macroName);
BRANNOC_API BSTR __stdcall CU_Version(void* unit);
/* Extensions and references: CU_AddExtension calls AddExtensionEx. CU_ExtensionTypes gives the type
 * names each followed by a NUL character and fills types with the two-column array of the types. */
BRANNOC_API BOOL __stdcall CU_AddExtension(void* unit, LPCSTR prefix, IDispatch* extension);
BRANNOC_API BOOL __stdcall CU_RemoveExtensions(void* unit, LPCSTR prefix);
BRANNOC_API IUnknown* __stdcall CU_ExtensionType(void* unit, LONG index);
BRANNOC_API IUnknown* __stdcall CU_ExtensionTypeEx(void* unit, LPCSTR macroName, LONG index);
BRANNOC_API BSTR __stdcall CU_ExtensionTypeName(void* unit, LONG index);
BRANNOC_API BSTR __stdcall CU_ExtensionTypeNameEx(void* unit, LPCSTR macroName, LONG index);
BRANNOC_API BSTR __stdcall CU_ExtensionTypes(void* unit, LPCSTR macroName, VARIANT* types);

/* Fire objects and handlers. CU_Fire gives a fire object (its Call and Eval take the procedure's name
 * first, then its arguments). The other functions call the fire object, handler or handler collection
 * late bound; with an error record (OA_ERROR) given, a failure shows nothing and fills the record. */
BRANNOC_API IDispatch* __stdcall CU_Fire(void* unit, BOOL debugging);
BRANNOC_API IDispatch* __stdcall CU_CreateHandler(void* unit, LPCSTR prototype);
BRANNOC_API IDispatch* __stdcall CU_CreateHandlers(void* unit, LPCSTR prefix, IDispatch* eventObject);
BRANNOC_API BOOL __stdcall CU_FireBusy(IDispatch* fire);
BRANNOC_API BOOL __stdcall CU_FireCall(IDispatch* fire, OA_ARG* list);
BRANNOC_API BOOL __stdcall CU_FireEval(IDispatch* fire, OA_ARG* list);
BRANNOC_API BOOL __stdcall CU_FireResult(IDispatch* fire, VARIANT* result);
BRANNOC_API BOOL __stdcall CU_FireSucceeded(IDispatch* fire);
BRANNOC_API BOOL __stdcall CU_HandlerExists(IDispatch* handler);
BRANNOC_API BOOL __stdcall CU_HandlerCall(IDispatch* handler, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BOOL __stdcall CU_HandlerEvaluate(IDispatch* handler, OA_ARG* list, OA_ERROR* error, VARIANT* result);
BRANNOC_API BOOL __stdcall CU_HandlerStart(IDispatch* handler, OA_ARG* list, OA_ERROR* error);
BRANNOC_API BOOL __stdcall CU_HandlerStepInto(IDispatch* handler);
BRANNOC_API void __stdcall CU_HandlerStepIntoPut(IDispatch* handler, BOOL on);
BRANNOC_API BSTR __stdcall CU_HandlerPrototype(IDispatch* handler);
BRANNOC_API BSTR __stdcall CU_HandlerProcName(IDispatch* handler);
BRANNOC_API BOOL __stdcall CU_HandlerIsModuleLoaded(IDispatch* handler);
BRANNOC_API IDispatch* __stdcall CU_HandlersItem(IDispatch* handlers, LPCSTR name);

/* ---- The editor as an automation component (KZBE_ family) ----
 * editor is the IDispatch pointer of a "Brannoc.BasicEditor2" component (not part of this library) that
 * KZBE_Attach created; each function calls one of its members by dispatch number. Nothing is shown: a
 * null handle makes a method do nothing and a getter answer 0, null or the default it is given; when
 * the component raises an exception in a Boolean or value-less call, the handle is released and that
 * default (FALSE where none is given) answered. BOOL results are 0 or 1. Text results are ANSI, freed with
 * OA_SysFreeStringA; objects are held for the caller (OA_Release). */
BRANNOC_API IDispatch* __stdcall KZBE_Attach(LPCSTR hostName, IDispatch* hostObject);
/* Tell the component, then release the handle and set it to null; 1 (also for a null pointer or handle). */
BRANNOC_API BOOL __stdcall KZBE_Detach(IDispatch** editor);
BRANNOC_API BOOL __stdcall KZBE_DetachNoCancel(IDispatch** editor);
BRANNOC_API BOOL __stdcall KZBE_AddExtension(IDispatch* editor, LPCSTR name, IDispatch* object);
BRANNOC_API IDispatch* __stdcall KZBE_CodeUnit(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_Continue(IDispatch* editor);
BRANNOC_API BSTR __stdcall KZBE_CurrentMacroName(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_EditMacro(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_Interrupt(IDispatch* editor);
BRANNOC_API BOOL __stdcall KZBE_IsActive(IDispatch* editor, BOOL fallback);
BRANNOC_API BOOL __stdcall KZBE_IsIdle(IDispatch* editor, BOOL fallback);
BRANNOC_API BOOL __stdcall KZBE_IsStopped(IDispatch* editor, BOOL fallback);
BRANNOC_API BOOL __stdcall KZBE_LoadMacro(IDispatch* editor, LPCSTR macroName);
BRANNOC_API void __stdcall KZBE_Maximize(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_Minimize(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_Restore(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_RunMacro(IDispatch* editor, LPCSTR macroName);
BRANNOC_API BOOL __stdcall KZBE_SetHiddenCode(IDispatch* editor, LPCSTR code);
BRANNOC_API void __stdcall KZBE_SetIni(IDispatch* editor, LPCSTR fileName, LPCSTR section);
BRANNOC_API BOOL __stdcall KZBE_Visible(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_VisiblePut(IDispatch* editor, BOOL on);
BRANNOC_API BSTR __stdcall KZBE_FileDesc(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_FileDescPut(IDispatch* editor, LPCSTR descriptions);
BRANNOC_API BSTR __stdcall KZBE_FileExt(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_FileExtPut(IDispatch* editor, LPCSTR extensions);
BRANNOC_API BOOL __stdcall KZBE_EventMode(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_EventModePut(IDispatch* editor, BOOL on);
BRANNOC_API IDispatch* __stdcall KZBE_Fire(IDispatch* editor, BOOL debugging);
BRANNOC_API IDispatch* __stdcall KZBE_CreateHandler(IDispatch* editor, LPCSTR name);
BRANNOC_API BOOL __stdcall KZBE_LoadModule(IDispatch* editor, LPCSTR moduleName);
BRANNOC_API BOOL __stdcall KZBE_UnloadModule(IDispatch* editor, LPCSTR moduleName);
BRANNOC_API BOOL __stdcall KZBE_Locked(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_LockedPut(IDispatch* editor, BOOL on);
BRANNOC_API BOOL __stdcall KZBE_Enabled(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_EnabledPut(IDispatch* editor, BOOL on);
BRANNOC_API BOOL __stdcall KZBE_MultiSheet(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_MultiSheetPut(IDispatch* editor, BOOL on);
BRANNOC_API BOOL __stdcall KZBE_ReportError(IDispatch* editor, IDispatch* error);
BRANNOC_API BOOL __stdcall KZBE_FileChangeDir(IDispatch* editor);
BRANNOC_API void __stdcall KZBE_FileChangeDirPut(IDispatch* editor, BOOL on);
BRANNOC_API IDispatch* __stdcall KZBE_CreateHandlers(IDispatch* editor, LPCSTR name, IDispatch* object);
BRANNOC_API IDispatch* __stdcall KZBE_ModuleInstance(IDispatch* editor, LPCSTR moduleName, BOOL createNew);

#ifdef __cplusplus
}
#endif

#endif /* BRANNOC_H */
