// Argument lists (OA_ARG) and the OA_Invoke family: a host builds the arguments of one call with
// OA_ArgStart and OA_ArgAdd..., and an OA_Invoke... call makes the call, converts the result and
// consumes the list. Failures are shown in "OA_Invoke Error" boxes unless an error record is given.
#include "automation/AnsiBstr.h"
#include "automation/ExportBoundary.h"
#include "host/AnsiText.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <new>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

constexpr LCID kLocale = 0x409;

// The next free slot (filled from the last slot down), or null after marking the list as overfilled.
VARIANT* NextSlot(OA_ARG* list)
{
    if (!list || !list->args || list->freeSlots <= 0) {
        if (list)
            list->error = 1;
        return nullptr;
    }
    VARIANT* slot = &list->args[--list->freeSlots];
    VariantInit(slot);
    return slot;
}

BOOL AddByRef(OA_ARG* list, VARTYPE type, void* variable)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = static_cast<VARTYPE>(VT_BYREF | type);
    slot->byref = variable;
    return TRUE;
}

BOOL AddString(OA_ARG* list, BSTR text)
{
    if (!text)
        return FALSE;
    VARIANT* slot = NextSlot(list);
    if (!slot) {
        SysFreeString(text);
        return FALSE;
    }
    slot->vt = VT_BSTR;
    slot->bstrVal = text;
    return TRUE;
}

void ShowInvokeBox(const wchar_t* text)
{
    MessageBoxW(nullptr, text, L"OA_Invoke Error", MB_TASKMODAL | MB_OK);
}

// Frees the strings of an exception the caller does not take.
void FreeException(EXCEPINFO& exception)
{
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
}

enum class CallKind { Method, Put, Get };

// The call of every OA_Invoke... function: result receives the value (converted to resultType unless
// that is VT_VARIANT or VT_EMPTY). False after reporting the failure.
bool InvokeWithList(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error, CallKind kind, VARTYPE resultType,
                    Variant& result)
{
    if (list && list->error) {
        OA_ArgRelease(list);
        ShowInvokeBox(L"OA_ARG too small.");
        list->error = 0;
        return false;
    }
    if (list)
        list->error = 1;
    if (!object) {
        if (list) {
            OA_ArgRelease(list);
            list->error = 0;
        }
        ShowInvokeBox(L"Dispatch pointer is nothing.");
        return false;
    }
    DISPID putId = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{};
    if (list && list->args) {
        parameters.rgvarg = list->args + list->freeSlots;
        parameters.cArgs = static_cast<UINT>(list->count - list->freeSlots);
    }
    WORD flags = DISPATCH_METHOD;
    if (kind == CallKind::Put) {
        flags = DISPATCH_PROPERTYPUT;
        parameters.rgdispidNamedArgs = &putId;
        parameters.cNamedArgs = 1;
    } else if (kind == CallKind::Get) {
        flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
    }
    EXCEPINFO exception{};
    UINT argumentError = static_cast<UINT>(-1);
    HRESULT status = object->Invoke(id, IID_NULL, kLocale, flags, &parameters,
                                    kind == CallKind::Get ? &result.Raw() : nullptr, &exception, &argumentError);
    if (list) {
        OA_ArgRelease(list);
        list->error = 0;
    }
    if (status == DISP_E_EXCEPTION) {
        if (exception.pfnDeferredFillIn)
            exception.pfnDeferredFillIn(&exception);
        if (error) {
            error->wCode = exception.wCode;
            error->wReserved = exception.wReserved;
            error->bstrSource = exception.bstrSource;
            error->bstrDescription = exception.bstrDescription;
            error->bstrHelpFile = exception.bstrHelpFile;
            error->dwHelpContext = exception.dwHelpContext;
            return false;
        }
        ShowInvokeBox(exception.bstrDescription && SysStringLen(exception.bstrDescription)
                          ? exception.bstrDescription
                          : L"Invoke failed.");
        FreeException(exception);
        return false;
    }
    FreeException(exception);
    if (FAILED(status)) {
        if (!error) {
            wchar_t text[64];
            wsprintfW(text, L"Invoke failed.\nError=0x%lx", static_cast<unsigned long>(status));
            ShowInvokeBox(text);
        }
        return false;
    }
    if (kind == CallKind::Get && resultType != VT_VARIANT &&
        FAILED(VariantChangeTypeEx(&result.Raw(), &result.Raw(), GetThreadLocale(), 0, resultType))) {
        if (!error)
            ShowInvokeBox(L"Result type conversion failed.");
        result.Clear();
        return false;
    }
    return true;
}

bool InvokeGet(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error, VARTYPE type, Variant& result)
{
    return InvokeWithList(object, id, list, error, CallKind::Get, type, result);
}

} // namespace

extern "C" {

BOOL __stdcall OA_ArgStart(LONG count, OA_ARG* list)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        if (!list)
            return FALSE;
        *list = OA_ARG{};
        if (count < 0)
            count = 0;
        list->count = count;
        list->freeSlots = count;
        if (count > 0) {
            list->args = new (std::nothrow) VARIANT[static_cast<size_t>(count)];
            if (!list->args) {
                list->count = list->freeSlots = 0;
                list->error = 1;
                return FALSE;
            }
            for (LONG i = 0; i < count; ++i)
                VariantInit(&list->args[i]);
        }
        return TRUE;
    });
}

void __stdcall OA_ArgRelease(OA_ARG* list)
{
    if (!list)
        return;
    if (list->args) {
        for (LONG i = 0; i < list->count; ++i)
            VariantClear(&list->args[i]);
        delete[] list->args;
    }
    list->args = nullptr;
    list->count = 0;
    list->freeSlots = 0;
}

BOOL __stdcall OA_ArgAddBOOL(OA_ARG* list, VARIANT_BOOL value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_BOOL;
    slot->boolVal = value;
    return TRUE;
}

BOOL __stdcall OA_ArgAddI2(OA_ARG* list, SHORT value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_I2;
    slot->iVal = value;
    return TRUE;
}

BOOL __stdcall OA_ArgAddI4(OA_ARG* list, LONG value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_I4;
    slot->lVal = value;
    return TRUE;
}

BOOL __stdcall OA_ArgAddR4(OA_ARG* list, FLOAT value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_R4;
    slot->fltVal = value;
    return TRUE;
}

BOOL __stdcall OA_ArgAddR8(OA_ARG* list, DOUBLE value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_R8;
    slot->dblVal = value;
    return TRUE;
}

BOOL __stdcall OA_ArgAddStringA(OA_ARG* list, LPCSTR value)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        return AddString(list, WideBstrFromAnsi(value ? value : ""));
    });
}

BOOL __stdcall OA_ArgAddStringW(OA_ARG* list, LPCWSTR value) { return AddString(list, SysAllocString(value ? value : L"")); }

BOOL __stdcall OA_ArgAddBSTRA(OA_ARG* list, BSTR ansiValue)
{
    return AtExportBoundary<BOOL>(FALSE, [&] { return AddString(list, WideBstrFromAnsi(AnsiBytes(ansiValue))); });
}

BOOL __stdcall OA_ArgAddBSTRW(OA_ARG* list, BSTR value)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        std::wstring_view text = WideChars(value);
        return AddString(list, SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    });
}

BOOL __stdcall OA_ArgAddDisp(OA_ARG* list, IDispatch* value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_DISPATCH;
    slot->pdispVal = value;
    if (value)
        value->AddRef();
    return TRUE;
}

BOOL __stdcall OA_ArgAddUnk(OA_ARG* list, IUnknown* value)
{
    VARIANT* slot = NextSlot(list);
    if (!slot)
        return FALSE;
    slot->vt = VT_UNKNOWN;
    slot->punkVal = value;
    if (value)
        value->AddRef();
    return TRUE;
}

BOOL __stdcall OA_ArgAddVariant(OA_ARG* list, VARIANT* value)
{
    VARIANT copy;
    VariantInit(&copy);
    if (value && FAILED(VariantCopyInd(&copy, value)))
        return FALSE;
    VARIANT* slot = NextSlot(list);
    if (!slot) {
        VariantClear(&copy);
        return FALSE;
    }
    *slot = copy;
    return TRUE;
}

BOOL __stdcall OA_ArgAddI2Ref(OA_ARG* list, SHORT* variable) { return AddByRef(list, VT_I2, variable); }
BOOL __stdcall OA_ArgAddI4Ref(OA_ARG* list, LONG* variable) { return AddByRef(list, VT_I4, variable); }
BOOL __stdcall OA_ArgAddR4Ref(OA_ARG* list, FLOAT* variable) { return AddByRef(list, VT_R4, variable); }
BOOL __stdcall OA_ArgAddR8Ref(OA_ARG* list, DOUBLE* variable) { return AddByRef(list, VT_R8, variable); }
BOOL __stdcall OA_ArgAddBSTRRef(OA_ARG* list, BSTR* variable) { return AddByRef(list, VT_BSTR, variable); }
BOOL __stdcall OA_ArgAddDispRef(OA_ARG* list, IDispatch** variable) { return AddByRef(list, VT_DISPATCH, variable); }
BOOL __stdcall OA_ArgAddUnkRef(OA_ARG* list, IUnknown** variable) { return AddByRef(list, VT_UNKNOWN, variable); }

BOOL __stdcall OA_Invoke(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        Variant unused;
        return InvokeWithList(object, id, list, error, CallKind::Method, VT_EMPTY, unused);
    });
}

BOOL __stdcall OA_InvokePut(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        Variant unused;
        return InvokeWithList(object, id, list, error, CallKind::Put, VT_EMPTY, unused);
    });
}

VARIANT_BOOL __stdcall OA_InvokeBOOL(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<VARIANT_BOOL>(VARIANT_BOOL(0), [&]() -> VARIANT_BOOL {
        Variant result;
        return InvokeGet(object, id, list, error, VT_BOOL, result) ? result.Boolean() : VARIANT_BOOL(0);
    });
}

SHORT __stdcall OA_InvokeI2(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<SHORT>(SHORT(0), [&]() -> SHORT {
        Variant result;
        return InvokeGet(object, id, list, error, VT_I2, result) ? result.Integer() : SHORT(0);
    });
}

LONG __stdcall OA_InvokeI4(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<LONG>(LONG(0), [&]() -> LONG {
        Variant result;
        return InvokeGet(object, id, list, error, VT_I4, result) ? result.Long() : 0;
    });
}

FLOAT __stdcall OA_InvokeR4(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<FLOAT>(0.0f, [&]() -> FLOAT {
        Variant result;
        return InvokeGet(object, id, list, error, VT_R4, result) ? result.Single() : 0.0f;
    });
}

DOUBLE __stdcall OA_InvokeR8(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<DOUBLE>(0.0, [&]() -> DOUBLE {
        Variant result;
        return InvokeGet(object, id, list, error, VT_R8, result) ? result.Double() : 0.0;
    });
}

BSTR __stdcall OA_InvokeBSTRW(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        Variant result;
        if (!InvokeGet(object, id, list, error, VT_BSTR, result))
            return nullptr;
        VARIANT raw;
        result.Detach(raw);
        return raw.bstrVal ? raw.bstrVal : SysAllocString(L"");
    });
}

BSTR __stdcall OA_InvokeBSTRA(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        Variant result;
        if (!InvokeGet(object, id, list, error, VT_BSTR, result))
            return nullptr;
        return AnsiBstrFromWide(result.StringView());
    });
}

IDispatch* __stdcall OA_InvokeDisp(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        Variant result;
        if (!InvokeGet(object, id, list, error, VT_DISPATCH, result))
            return nullptr;
        VARIANT raw;
        result.Detach(raw);
        return raw.pdispVal;
    });
}

IUnknown* __stdcall OA_InvokeUnk(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<IUnknown*>(nullptr, [&]() -> IUnknown* {
        Variant result;
        if (!InvokeGet(object, id, list, error, VT_UNKNOWN, result))
            return nullptr;
        VARIANT raw;
        result.Detach(raw);
        return raw.punkVal;
    });
}

BOOL __stdcall OA_InvokeVariant(IDispatch* object, DISPID id, OA_ARG* list, OA_ERROR* error, VARIANT* result)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        Variant value;
        if (!InvokeGet(object, id, list, error, VT_VARIANT, value))
            return FALSE;
        if (result) {
            VariantClear(result);
            value.Detach(*result);
        }
        return TRUE;
    });
}

BOOL __stdcall OA_InvokeError(IDispatch*, DISPID, OA_ARG*, OA_ERROR*)
{
    MessageBoxW(nullptr, L"OA_InvokeError[Silent] is no longer supported.", L"Program Error", MB_TASKMODAL | MB_OK);
    return FALSE;
}

BOOL __stdcall OA_InvokeErrorSilent(IDispatch*, DISPID, OA_ARG*, OA_ERROR*)
{
    MessageBoxW(nullptr, L"OA_InvokeError[Silent] is no longer supported.", L"Program Error", MB_TASKMODAL | MB_OK);
    return FALSE;
}

} // extern "C"
