// Starting OLE, creating and finding automation objects, and registering class and active objects.
// Failures of creation and look-up answer null or 0 without a message.
#include "automation/ExportBoundary.h"
#include "automation/LanguageState.h"
#include "host/AnsiText.h"
#include "values/ComRef.h"

#include "brannoc.h"

#include <string>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

// The class identifier of a ProgID, or of a class identifier text in braces.
bool ClassIdOf(const std::wstring& name, CLSID& id)
{
    if (name.empty())
        return false;
    if (name[0] == L'{')
        return SUCCEEDED(CLSIDFromString(const_cast<LPOLESTR>(name.c_str()), &id));
    return SUCCEEDED(CLSIDFromProgID(name.c_str(), &id));
}

IDispatch* DispatchOf(IUnknown* object)
{
    IDispatch* dispatch = nullptr;
    if (!object || FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch))))
        return nullptr;
    return dispatch;
}

IDispatch* CreateObject(const std::wstring& name)
{
    CLSID id;
    if (!ClassIdOf(name, id))
        return nullptr;
    ComRef<IUnknown> object;
    if (FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                                reinterpret_cast<void**>(object.Out()))))
        return nullptr;
    if (FAILED(OleRun(object.Get())))
        return nullptr;
    return DispatchOf(object.Get());
}

IDispatch* ActiveObject(const std::wstring& name)
{
    CLSID id;
    if (!ClassIdOf(name, id))
        return nullptr;
    ComRef<IUnknown> object;
    if (FAILED(GetActiveObject(id, nullptr, object.Out())))
        return nullptr;
    return DispatchOf(object.Get());
}

BOOL RegisterClassObject(IUnknown* classObject, const std::wstring& name, BOOL multipleUse, DWORD* cookie)
{
    CLSID id;
    DWORD registration = 0;
    bool done = classObject && ClassIdOf(name, id) &&
                SUCCEEDED(CoRegisterClassObject(id, classObject, CLSCTX_LOCAL_SERVER,
                                                multipleUse ? REGCLS_MULTIPLEUSE : REGCLS_SINGLEUSE, &registration));
    if (cookie)
        *cookie = done ? registration : 0;
    return done ? TRUE : FALSE;
}

BOOL RegisterActive(IUnknown* object, const std::wstring& name, DWORD* cookie)
{
    CLSID id;
    DWORD registration = 0;
    bool done = object && ClassIdOf(name, id) && SUCCEEDED(RegisterActiveObject(object, id, 0, &registration));
    if (cookie)
        *cookie = done ? registration : 0;
    return done ? TRUE : FALSE;
}

std::wstring Wide(LPCSTR text) { return text ? WideFromAnsi(text) : std::wstring(); }
std::wstring Wide(LPCWSTR text) { return text ? std::wstring(text) : std::wstring(); }

} // namespace

extern "C" {

BOOL __stdcall OA_Initialize(void)
{
    HRESULT status = OleInitialize(nullptr);
    if (status != S_OK && status != S_FALSE)
        return FALSE;
    OA_NlsSetLangID(kFollowUserLanguage);
    return TRUE;
}

void __stdcall OA_Uninitialize(void)
{
    OA_NlsSetLangID(kResetLanguage);
    OleUninitialize();
}

LPCSTR __stdcall OA_Version(void) { return "5.0.01"; }

ULONG __stdcall OA_AddRef(IUnknown* object) { return object ? object->AddRef() : 0; }

ULONG __stdcall OA_Release(IUnknown* object) { return object ? object->Release() : 0; }

IDispatch* __stdcall OA_CreateObjectA(LPCSTR progId)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] { return CreateObject(Wide(progId)); });
}
IDispatch* __stdcall OA_CreateObjectW(LPCWSTR progId)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] { return CreateObject(Wide(progId)); });
}
IDispatch* __stdcall OA_ActiveObjectA(LPCSTR progId)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] { return ActiveObject(Wide(progId)); });
}
IDispatch* __stdcall OA_ActiveObjectW(LPCWSTR progId)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&] { return ActiveObject(Wide(progId)); });
}

IDispatch* __stdcall OA_CreateInstance(IUnknown* classObject)
{
    ComRef<IClassFactory> factory;
    if (!classObject ||
        FAILED(classObject->QueryInterface(IID_IClassFactory, reinterpret_cast<void**>(factory.Out()))))
        return nullptr;
    IDispatch* object = nullptr;
    if (FAILED(factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object))))
        return nullptr;
    return object;
}

BOOL __stdcall OA_RegisterClassObjectA(IUnknown* classObject, LPCSTR progId, BOOL multipleUse, DWORD* cookie)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        return RegisterClassObject(classObject, Wide(progId), multipleUse, cookie);
    });
}

BOOL __stdcall OA_RegisterClassObjectW(IUnknown* classObject, LPCWSTR progId, BOOL multipleUse, DWORD* cookie)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        return RegisterClassObject(classObject, Wide(progId), multipleUse, cookie);
    });
}

void __stdcall OA_RevokeClassObject(DWORD cookie)
{
    if (cookie)
        CoRevokeClassObject(cookie);
}

BOOL __stdcall OA_RegisterActiveObjectA(IUnknown* object, LPCSTR progId, DWORD* cookie)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        return RegisterActive(object, Wide(progId), cookie);
    });
}

BOOL __stdcall OA_RegisterActiveObjectW(IUnknown* object, LPCWSTR progId, DWORD* cookie)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        return RegisterActive(object, Wide(progId), cookie);
    });
}

void __stdcall OA_RevokeActiveObject(DWORD cookie)
{
    AtExportBoundary([&] {
        if (cookie)
            RevokeActiveObject(cookie, nullptr);
    });
}

void __stdcall OA_DisconnectObject(IUnknown* object)
{
    if (object)
        CoDisconnectObject(object, 0);
}

} // extern "C"
