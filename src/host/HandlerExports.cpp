// The CU_ functions over fire objects, handlers and handler collections: each calls its member late
// bound through the OA_Invoke family with the member's fixed DISPID. Failures are shown as that family
// shows them, unless the caller passes an error record, which then receives the exception.
#include "brannoc.h"
#include "automation/ExportBoundary.h"
#include "host/FireObject.h"

namespace {

using brannoc::FireObject;
using brannoc::automation::AtExportBoundary;

// Handler DISPIDs.
enum HandlerMember : DISPID {
    kExists = 0,
    kCall = 1,
    kEvaluate = 2,
    kStart = 3,
    kStepInto = 4,
    kPrototype = 8,
    kProcName = 9,
    kIsModuleLoaded = 10,
};

BOOL Widened(VARIANT_BOOL value) { return value ? -1 : 0; }

} // namespace

extern "C" {

BOOL __stdcall CU_FireBusy(IDispatch* fire)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(fire, FireObject::kBusy, nullptr, nullptr)); });
}

BOOL __stdcall CU_FireCall(IDispatch* fire, OA_ARG* list)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(fire, FireObject::kCall, list, nullptr)); });
}

BOOL __stdcall CU_FireEval(IDispatch* fire, OA_ARG* list)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(fire, FireObject::kEval, list, nullptr)); });
}

BOOL __stdcall CU_FireResult(IDispatch* fire, VARIANT* result)
{
    return AtExportBoundary<BOOL>(0, [&] { return OA_InvokeVariant(fire, FireObject::kResult, nullptr, nullptr, result); });
}

BOOL __stdcall CU_FireSucceeded(IDispatch* fire)
{
    return AtExportBoundary<BOOL>(0, [&] {
        return Widened(OA_InvokeBOOL(fire, FireObject::kSucceeded, nullptr, nullptr));
    });
}

BOOL __stdcall CU_HandlerExists(IDispatch* handler)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(handler, kExists, nullptr, nullptr)); });
}

BOOL __stdcall CU_HandlerCall(IDispatch* handler, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BOOL>(0, [&] { return OA_Invoke(handler, kCall, list, error) ? 1 : 0; });
}

BOOL __stdcall CU_HandlerEvaluate(IDispatch* handler, OA_ARG* list, OA_ERROR* error, VARIANT* result)
{
    return AtExportBoundary<BOOL>(0, [&] { return OA_InvokeVariant(handler, kEvaluate, list, error, result) ? 1 : 0; });
}

BOOL __stdcall CU_HandlerStart(IDispatch* handler, OA_ARG* list, OA_ERROR* error)
{
    return AtExportBoundary<BOOL>(0, [&] { return OA_Invoke(handler, kStart, list, error) ? 1 : 0; });
}

BOOL __stdcall CU_HandlerStepInto(IDispatch* handler)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(handler, kStepInto, nullptr, nullptr)); });
}

void __stdcall CU_HandlerStepIntoPut(IDispatch* handler, BOOL on)
{
    AtExportBoundary([&] {
        OA_ARG list{};
        if (!OA_ArgStart(1, &list))
            return;
        OA_ArgAddBOOL(&list, on ? VARIANT_TRUE : VARIANT_FALSE);
        (void)OA_InvokePut(handler, kStepInto, &list, nullptr);
    });
}

BSTR __stdcall CU_HandlerPrototype(IDispatch* handler)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return OA_InvokeBSTRA(handler, kPrototype, nullptr, nullptr); });
}

BSTR __stdcall CU_HandlerProcName(IDispatch* handler)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return OA_InvokeBSTRA(handler, kProcName, nullptr, nullptr); });
}

BOOL __stdcall CU_HandlerIsModuleLoaded(IDispatch* handler)
{
    return AtExportBoundary<BOOL>(0, [&] { return Widened(OA_InvokeBOOL(handler, kIsModuleLoaded, nullptr, nullptr)); });
}

// The collection's Item (DISPID 0) with the name; nothing is shown when it fails.
IDispatch* __stdcall CU_HandlersItem(IDispatch* handlers, LPCSTR name)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        OA_ARG list{};
        if (!OA_ArgStart(1, &list))
            return nullptr;
        OA_ArgAddStringA(&list, name ? name : "");
        OA_ERROR error{};
        IDispatch* handler = OA_InvokeDisp(handlers, DISPID_VALUE, &list, &error);
        SysFreeString(error.bstrSource);
        SysFreeString(error.bstrDescription);
        SysFreeString(error.bstrHelpFile);
        return handler;
    });
}

// The handler collection's own item and destroy functions: the handler for the named event (held for
// the caller; null when there is none), and the release of a collection (null: nothing).
IDispatch* __stdcall KZ_HandlersGetItem(IDispatch* handlers, BSTR name)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        if (!handlers)
            return nullptr;
        VARIANT argument;
        VariantInit(&argument);
        argument.vt = VT_BSTR;
        argument.bstrVal = name;
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        VARIANT result;
        VariantInit(&result);
        if (FAILED(handlers->Invoke(DISPID_VALUE, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &parameters,
                                    &result, nullptr, nullptr)))
            return nullptr;
        if (result.vt == VT_DISPATCH)
            return result.pdispVal;
        VariantClear(&result);
        return nullptr;
    });
}

void __stdcall KZ_HandlersDestroy(IDispatch* handlers, void* /*userData*/)
{
    AtExportBoundary([&] {
        if (handlers)
            handlers->Release();
    });
}

} // extern "C"
