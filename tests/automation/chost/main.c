/* A host written in C against the header and the import library: builds a dispatch class from a text
 * description over a plain C object, calls it through argument lists, and uses the string, object and
 * type helpers of the OA_ family. Every call passes an error record, so no message box can stop the run.
 * Exits 0 when everything matches. */
#include <stdio.h>
#include <string.h>
#include "brannoc.h"

static int s_failures = 0;
static int s_checks = 0;

#define CHECK(condition)                                                     \
    do {                                                                     \
        ++s_checks;                                                          \
        if (!(condition)) {                                                  \
            printf("FAIL line %d: %s\n", __LINE__, #condition);              \
            ++s_failures;                                                    \
        }                                                                    \
    } while (0)

/* Every function of the family, bound through the import library under its decorated name. */
static const void* const s_everyFunction[] = {
    (const void*)OA_Initialize,
    (const void*)OA_Uninitialize,
    (const void*)OA_Version,
    (const void*)OA_AddRef,
    (const void*)OA_Release,
    (const void*)OA_ArgStart,
    (const void*)OA_ArgRelease,
    (const void*)OA_ArgAddBOOL,
    (const void*)OA_ArgAddI2,
    (const void*)OA_ArgAddI4,
    (const void*)OA_ArgAddR4,
    (const void*)OA_ArgAddR8,
    (const void*)OA_ArgAddStringA,
    (const void*)OA_ArgAddStringW,
    (const void*)OA_ArgAddBSTRA,
    (const void*)OA_ArgAddBSTRW,
    (const void*)OA_ArgAddDisp,
    (const void*)OA_ArgAddUnk,
    (const void*)OA_ArgAddVariant,
    (const void*)OA_ArgAddI2Ref,
    (const void*)OA_ArgAddI4Ref,
    (const void*)OA_ArgAddR4Ref,
    (const void*)OA_ArgAddR8Ref,
    (const void*)OA_ArgAddBSTRRef,
    (const void*)OA_ArgAddDispRef,
    (const void*)OA_ArgAddUnkRef,
    (const void*)OA_Invoke,
    (const void*)OA_InvokePut,
    (const void*)OA_InvokeBOOL,
    (const void*)OA_InvokeI2,
    (const void*)OA_InvokeI4,
    (const void*)OA_InvokeR4,
    (const void*)OA_InvokeR8,
    (const void*)OA_InvokeBSTRW,
    (const void*)OA_InvokeBSTRA,
    (const void*)OA_InvokeDisp,
    (const void*)OA_InvokeUnk,
    (const void*)OA_InvokeVariant,
    (const void*)OA_InvokeError,
    (const void*)OA_InvokeErrorSilent,
    (const void*)OA_CreateObjectA,
    (const void*)OA_CreateObjectW,
    (const void*)OA_ActiveObjectA,
    (const void*)OA_ActiveObjectW,
    (const void*)OA_CreateInstance,
    (const void*)OA_RegisterClassObjectA,
    (const void*)OA_RegisterClassObjectW,
    (const void*)OA_RevokeClassObject,
    (const void*)OA_RegisterActiveObjectA,
    (const void*)OA_RegisterActiveObjectW,
    (const void*)OA_RevokeActiveObject,
    (const void*)OA_DisconnectObject,
    (const void*)OA_InitializeApplication,
    (const void*)OA_UninitializeApplication,
    (const void*)OA_AppCreateDispatch,
    (const void*)OA_AppDataDestroy,
    (const void*)OA_LoadLib,
    (const void*)OA_LoadType_A,
    (const void*)OA_LoadType_W,
    (const void*)OA_GetType,
    (const void*)OA_GetCoclassType,
    (const void*)OA_GetDispatchType,
    (const void*)OA_GetDispatchIDA,
    (const void*)OA_GetDispatchIDW,
    (const void*)OA_GetDispatchID2A,
    (const void*)OA_GetDispatchID2W,
    (const void*)OA_GetDispatchNameA,
    (const void*)OA_GetDispatchNameW,
    (const void*)OA_GetDispatchNamesA,
    (const void*)OA_GetDispatchNamesW,
    (const void*)OA_GetTypeDescA,
    (const void*)OA_GetTypeDescW,
    (const void*)OA_GetTypeHelpFileA,
    (const void*)OA_GetTypeHelpFileW,
    (const void*)OA_GetComp,
    (const void*)OA_GetCompDescA,
    (const void*)OA_GetCompDescW,
    (const void*)OA_RaiseErrorA,
    (const void*)OA_RaiseErrorW,
    (const void*)OA_RaiseError2A,
    (const void*)OA_RaiseError2W,
    (const void*)OA_PreInvokeError,
    (const void*)OA_PostInvokeError,
    (const void*)OA_SysAllocNullString,
    (const void*)OA_SysAllocString,
    (const void*)OA_SysAllocStringLen,
    (const void*)OA_SysReAllocString,
    (const void*)OA_SysReAllocStringLen,
    (const void*)OA_SysFreeString,
    (const void*)OA_SysStringLen,
    (const void*)OA_SysDupString,
    (const void*)OA_SysCmp,
    (const void*)OA_SysAllocStringA,
    (const void*)OA_SysAllocStringLenA,
    (const void*)OA_SysReAllocStringA,
    (const void*)OA_SysReAllocStringLenA,
    (const void*)OA_SysFreeStringA,
    (const void*)OA_SysStringLenA,
    (const void*)OA_SysDupStringA,
    (const void*)OA_OLESTRFromBSTRA,
    (const void*)OA_OLESTRFromStringA,
    (const void*)OA_OLESTRFromStringLenA,
    (const void*)OA_AsciiFromBSTRW,
    (const void*)OA_AsciiFromStringW,
    (const void*)OA_AsciiFromStringLenW,
    (const void*)OA_AsciiFromWide,
    (const void*)OA_WideFromAscii,
    (const void*)OA_StrCat,
    (const void*)OA_StrCmp,
    (const void*)OA_StrCmpi,
    (const void*)OA_StrCpy,
    (const void*)OA_StrLen,
    (const void*)OA_VariantFromBOOL,
    (const void*)OA_VariantFromI2,
    (const void*)OA_VariantFromI4,
    (const void*)OA_VariantFromR4,
    (const void*)OA_VariantFromR8,
    (const void*)OA_VariantFromStringA,
    (const void*)OA_VariantFromStringW,
    (const void*)OA_VariantFromBSTR,
    (const void*)OA_VariantFromDisp,
    (const void*)OA_NlsSetLangID,
    (const void*)OA_NlsGetLangID,
    (const void*)OA_NlsGetOleLCID,
    (const void*)OA_NlsLock,
    (const void*)OA_NlsGetInstance,
    (const void*)OA_NlsAdjustPathName,
    (const void*)OA_BrannocAboutBox,
    (const void*)OA_CreateTypeA,
    (const void*)OA_CreateTypeW,
    (const void*)OA_CreateDispatch,
    (const void*)OA_GetDispatchData,
    (const void*)OA_GetMethodData,
    (const void*)OA_BindDispatch,
    (const void*)OA_CreateClass,
    (const void*)OA_CreateEnum,
    (const void*)OA_WrapMFCLib,
    (const void*)OA_BindMFC
};

/* The implementation object: a table of functions in description order, each taking the object first. */
typedef struct Counter Counter;
typedef struct CounterSlots {
    LONG (__stdcall *Add)(Counter* self, LONG amount);
    BSTR (__stdcall *Name)(Counter* self);
    void (__stdcall *Rename)(Counter* self, BSTR ansiName);
    LONG (__stdcall *GetTotal)(Counter* self);
    void (__stdcall *Double)(Counter* self, LONG* value);
    void (__stdcall *Fail)(Counter* self);
} CounterSlots;

struct Counter {
    const CounterSlots* slots;
    LONG total;
    char name[32];
    int destroyed;
};

static LONG __stdcall CounterAdd(Counter* self, LONG amount) { self->total += amount; return self->total; }
static BSTR __stdcall CounterName(Counter* self) { return OA_SysAllocStringA(self->name); }
static void __stdcall CounterRename(Counter* self, BSTR ansiName)
{
    /* An ANSI class: the text arrives as ANSI bytes. */
    UINT length = OA_SysStringLenA(ansiName);
    if (length >= sizeof self->name)
        length = sizeof self->name - 1;
    memcpy(self->name, ansiName, length);
    self->name[length] = 0;
}
static LONG __stdcall CounterGetTotal(Counter* self) { return self->total; }
static void __stdcall CounterDouble(Counter* self, LONG* value) { *value *= 2; }
static void __stdcall CounterFail(Counter* self) { OA_RaiseErrorA(99, "Counter", "Counter refused", NULL, 0); }

static const CounterSlots kCounterSlots = {CounterAdd, CounterName, CounterRename, CounterGetTotal, CounterDouble,
                                           CounterFail};

static void __stdcall CounterDestroy(void* implementation, void* userData)
{
    ((Counter*)implementation)->destroyed += 1;
}

static BOOL __stdcall Letters(IUnknown* data, LONG index, VARIANT* element)
{
    if (index >= 3)
        return FALSE;
    OA_VariantFromI2(element, (SHORT)('a' + index));
    return TRUE;
}

static void CheckDescribedClass(void)
{
    Counter counter = {&kCounterSlots, 0, "first", 0};
    OA_ERROR error;
    OA_ARG list;
    LONG value = 21;
    BSTR text;
    ITypeInfo* type;
    type = OA_CreateTypeA("=Counter ; the description of the C object\n"
                          "Add&(Amount&)|Name$=NewName$|Total&|Double ByRef V&|Fail");
    CHECK(type != NULL);
    if (!type)
        return;
    IDispatch* object = OA_CreateDispatch(type, CounterDestroy, &counter, NULL);
    CHECK(object != NULL);
    CHECK(OA_GetDispatchData((IUnknown*)object) == &counter);

    memset(&error, 0, sizeof error);
    OA_ArgStart(1, &list);
    OA_ArgAddI4(&list, 5);
    CHECK(OA_InvokeI4(object, OA_GetDispatchIDA(object, "Add"), &list, &error) == 5);
    OA_ArgStart(1, &list);
    OA_ArgAddI2(&list, 3);
    CHECK(OA_InvokeI4(object, OA_GetDispatchIDA(object, "add"), &list, &error) == 8);
    CHECK(OA_InvokeI2(object, OA_GetDispatchIDA(object, "Total"), NULL, &error) == 8);

    /* An ANSI class answers the ANSI string its implementation made, unconverted. */
    text = OA_InvokeBSTRW(object, OA_GetDispatchIDA(object, "Name"), NULL, &error);
    CHECK(text != NULL && OA_SysStringLenA(text) == 5 && memcmp(text, "first", 5) == 0);
    OA_SysFreeStringA(text);
    OA_ArgStart(1, &list);
    OA_ArgAddStringA(&list, "second");
    CHECK(OA_InvokePut(object, OA_GetDispatchIDA(object, "Name"), &list, &error));
    CHECK(strcmp(counter.name, "second") == 0);

    OA_ArgStart(1, &list);
    OA_ArgAddI4Ref(&list, &value);
    CHECK(OA_Invoke(object, OA_GetDispatchIDA(object, "Double"), &list, &error));
    CHECK(value == 42);

    CHECK(!OA_Invoke(object, OA_GetDispatchIDA(object, "Fail"), NULL, &error));
    CHECK(error.wCode == 99);
    CHECK(error.bstrDescription != NULL && wcscmp(error.bstrDescription, L"Counter refused") == 0);
    OA_SysFreeString(error.bstrSource);
    OA_SysFreeString(error.bstrDescription);
    OA_SysFreeString(error.bstrHelpFile);

    text = OA_GetTypeDescA((IUnknown*)object, 0, 1);
    CHECK(text != NULL && strstr((const char*)text, ":Add(Amount As Long) As Long") != NULL);
    OA_SysFreeStringA(text);
    text = OA_GetDispatchNameA((IUnknown*)type, -1);
    CHECK(text != NULL && strcmp((const char*)text, "Counter") == 0);
    OA_SysFreeStringA(text);

    CHECK(OA_Release((IUnknown*)object) == 0);
    CHECK(counter.destroyed == 1);
    OA_Release((IUnknown*)type);
}

static void CheckStrings(void)
{
    BSTR empty = OA_SysAllocStringA("");
    BSTR wide = OA_OLESTRFromStringA("abc");
    BSTR ansi = OA_AsciiFromBSTRW(wide);
    CHECK(empty != NULL && OA_SysStringLenA(empty) == 0);
    CHECK(OA_SysStringLen(wide) == 3 && OA_StrCmp(wide, L"abc") == 0);
    CHECK(OA_SysStringLenA(ansi) == 3 && memcmp(ansi, "abc", 3) == 0);
    CHECK(OA_AsciiFromBSTRW(NULL) == NULL);
    CHECK(OA_StrCmpi(L"ABC", wide) == 0);
    OA_SysFreeStringA(empty);
    OA_SysFreeString(wide);
    OA_SysFreeStringA(ansi);
}

static void CheckObjects(void)
{
    OA_ERROR error;
    OA_ARG list;
    IDispatch* dictionary = OA_CreateObjectA("Scripting.Dictionary");
    IEnumVARIANT* letters = OA_CreateEnum(NULL, Letters);
    VARIANT element;
    ULONG fetched = 0;
    memset(&error, 0, sizeof error);
    CHECK(dictionary != NULL);
    if (dictionary) {
        OA_ArgStart(2, &list);
        OA_ArgAddStringA(&list, "k");
        OA_ArgAddR8(&list, 2.5);
        CHECK(OA_Invoke(dictionary, OA_GetDispatchIDA(dictionary, "Add"), &list, &error));
        OA_ArgStart(1, &list);
        OA_ArgAddStringW(&list, L"k");
        CHECK(OA_InvokeR8(dictionary, OA_GetDispatchIDA(dictionary, "Item"), &list, &error) == 2.5);
        OA_Release((IUnknown*)dictionary);
    }
    CHECK(OA_CreateObjectA("Brannoc.NoSuchClass.1") == NULL);
    CHECK(letters != NULL);
    if (letters) {
        VariantInit(&element);
        letters->lpVtbl->Skip(letters, 2);
        CHECK(letters->lpVtbl->Next(letters, 1, &element, &fetched) == S_OK && element.iVal == 'c');
        CHECK(letters->lpVtbl->Next(letters, 1, &element, &fetched) == S_FALSE && fetched == 0);
        letters->lpVtbl->Release(letters);
    }
}

int main(void)
{
    size_t i;
    OA_APPLICATION wrongSize;
    for (i = 0; i < sizeof s_everyFunction / sizeof s_everyFunction[0]; ++i)
        CHECK(s_everyFunction[i] != NULL);
    memset(&wrongSize, 0, sizeof wrongSize);
    wrongSize.size = 40;
    CHECK(!OA_InitializeApplication(&wrongSize, ""));
    CHECK(OA_Initialize());
    CHECK(strcmp(OA_Version(), "5.0.01") == 0);
    CheckDescribedClass();
    CheckStrings();
    CheckObjects();
    OA_Uninitialize();
    printf("%d passed, %d failed\n", s_checks - s_failures, s_failures);
    return s_failures ? 1 : 0;
}
