// Making a program an automation server: OA_InitializeApplication registers the program (or, when
// started with "/Automation", its class object) and makes the application's dispatch object from the
// descriptor's type and creation function.
#include "automation/DescribedClass.h"
#include "automation/DescribedDispatch.h"
#include "automation/DescribedType.h"
#include "automation/ExportBoundary.h"
#include "host/AnsiText.h"
#include "values/ComRef.h"

#include "brannoc.h"

#include <string>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

constexpr LONG kDescriptorSize = 36;
static_assert(sizeof(OA_APPLICATION) == kDescriptorSize, "the application descriptor is nine 32-bit fields");

bool IsEmpty(LPCSTR text) { return !text || !*text; }

bool AsksForAutomation(LPCSTR commandLine)
{
    return commandLine && (commandLine[0] == '-' || commandLine[0] == '/') &&
           CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, commandLine + 1,
                          static_cast<int>(strnlen(commandLine + 1, 10)), "Automation", 10) == CSTR_EQUAL;
}

// The application's type: a class GUID in braces (from the program's own type library) or a description.
ComRef<ITypeInfo> ServerType(LPCSTR type)
{
    if (type[0] == '{') {
        ComRef<ITypeLib> library = ComRef<ITypeLib>::Adopt(OA_LoadLib(nullptr));
        if (!library)
            return {};
        return ComRef<ITypeInfo>::Adopt(OA_LoadType_A(library.Get(), type));
    }
    return ComRef<ITypeInfo>::Adopt(DescribedType::Create(WideFromAnsi(type), true));
}

IDispatch* __stdcall CreateApplicationInstance(ITypeInfo* type, void* descriptor)
{
    return OA_AppCreateDispatch(type, descriptor);
}

bool SetClassesValue(const std::wstring& key, const std::wstring& value)
{
    HKEY handle = nullptr;
    if (RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr) !=
        ERROR_SUCCESS)
        return false;
    LONG status = RegSetValueExW(handle, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(handle);
    return status == ERROR_SUCCESS;
}

std::wstring ClassesValue(const std::wstring& key)
{
    wchar_t value[128] = {};
    LONG size = sizeof value;
    if (RegQueryValueW(HKEY_CLASSES_ROOT, key.c_str(), value, &size) != ERROR_SUCCESS)
        return {};
    return value;
}

std::wstring GuidText(const GUID& id)
{
    wchar_t text[64] = {};
    StringFromGUID2(id, text, 64);
    return text;
}

// The class identifier of the server: the type's GUID, else the one registered for the ProgID, else new.
std::wstring ServerClassId(ITypeInfo* type, const std::wstring& progId)
{
    TYPEATTR* attributes = nullptr;
    if (SUCCEEDED(type->GetTypeAttr(&attributes))) {
        GUID id = attributes->guid;
        type->ReleaseTypeAttr(attributes);
        if (!IsEqualGUID(id, GUID_NULL))
            return GuidText(id);
    }
    std::wstring registered = ClassesValue(progId + L"\\Clsid");
    if (!registered.empty())
        return registered;
    GUID fresh;
    if (FAILED(CoCreateGuid(&fresh)))
        return {};
    return GuidText(fresh);
}

void RegisterServer(ITypeInfo* type, const std::wstring& progId)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring classId = ServerClassId(type, progId);
    if (classId.empty())
        return;
    SetClassesValue(progId, L"IDispatch");
    SetClassesValue(progId + L"\\Clsid", classId);
    SetClassesValue(L"CLSID\\" + classId, progId);
    SetClassesValue(L"CLSID\\" + classId + L"\\ProgID", progId);
    SetClassesValue(L"CLSID\\" + classId + L"\\LocalServer32", std::wstring(program) + L" /Automation");
    ComRef<ITypeLib> library;
    UINT index = 0;
    TLIBATTR* attributes = nullptr;
    if (FAILED(type->GetContainingTypeLib(library.Out(), &index)) || FAILED(library->GetLibAttr(&attributes)))
        return;
    std::wstring libraryId = GuidText(attributes->guid);
    wchar_t version[32];
    wsprintfW(version, L"%u.%u\\%lx", attributes->wMajorVerNum, attributes->wMinorVerNum,
              static_cast<unsigned long>(attributes->lcid));
    library->ReleaseTLibAttr(attributes);
    SetClassesValue(L"CLSID\\" + classId + L"\\TypeLib", libraryId);
    SetClassesValue(L"TypeLib\\" + libraryId + L"\\" + version + L"\\win32", program);
}

} // namespace

extern "C" {

BOOL __stdcall OA_InitializeApplication(OA_APPLICATION* descriptor, LPCSTR commandLine)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        if (!descriptor || descriptor->size != kDescriptorSize)
            return FALSE;
        descriptor->classObject = nullptr;
        descriptor->classCookie = 0;
        descriptor->application = nullptr;
        descriptor->activeCookie = 0;
        if (!OA_Initialize())
            return FALSE;
        if (IsEmpty(descriptor->type) && IsEmpty(descriptor->progId) && !descriptor->create && !descriptor->destroy)
            return TRUE;
        if (IsEmpty(descriptor->type) || IsEmpty(descriptor->progId) || !descriptor->create) {
            OA_Uninitialize();
            return FALSE;
        }
        LPCSTR typeText = descriptor->type;
        const bool multipleUse = typeText[0] == '*';
        if (multipleUse)
            ++typeText;
        ComRef<ITypeInfo> type = ServerType(typeText);
        if (!type) {
            OA_Uninitialize();
            return FALSE;
        }
        if (AsksForAutomation(commandLine)) {
            ComRef<IClassFactory> factory =
                ComRef<IClassFactory>::Adopt(DescribedClass::Create(type.Get(), CreateApplicationInstance, descriptor));
            if (!factory || !OA_RegisterClassObjectA(factory.Get(), descriptor->progId, multipleUse, &descriptor->classCookie)) {
                OA_Uninitialize();
                return FALSE;
            }
            descriptor->classObject = factory.Detach();
            return TRUE;
        }
        RegisterServer(type.Get(), WideFromAnsi(descriptor->progId));
        IDispatch* application = OA_AppCreateDispatch(type.Get(), descriptor);
        if (application)
            application->Release();   // the descriptor keeps its own reference
        return TRUE;
    });
}

void __stdcall OA_UninitializeApplication(OA_APPLICATION* descriptor)
{
    AtExportBoundary([&] {
        if (!descriptor || descriptor->size != kDescriptorSize)
            return;
        OA_RevokeActiveObject(descriptor->activeCookie);
        descriptor->activeCookie = 0;
        OA_RevokeClassObject(descriptor->classCookie);
        descriptor->classCookie = 0;
        if (IUnknown* classObject = descriptor->classObject) {
            descriptor->classObject = nullptr;
            classObject->Release();
        }
        if (IDispatch* application = descriptor->application) {
            CoDisconnectObject(application, 0);
            application->Release();   // the destroy function clears the field
            descriptor->application = nullptr;
        }
        OA_Uninitialize();
    });
}

IDispatch* __stdcall OA_AppCreateDispatch(ITypeInfo* type, void* descriptorData)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        auto* descriptor = static_cast<OA_APPLICATION*>(descriptorData);
        if (!descriptor || !descriptor->create)
            return nullptr;
        if (descriptor->application) {
            descriptor->application->AddRef();
            return descriptor->application;
        }
        void* implementation = descriptor->create(descriptor);
        IDispatch* application = OA_CreateDispatch(type, OA_AppDataDestroy, implementation, descriptor);
        if (!application)
            return nullptr;
        descriptor->application = application;   // the descriptor's reference
        if (descriptor->classCookie)
            OA_RegisterActiveObjectA(application, descriptor->progId, &descriptor->activeCookie);
        application->AddRef();
        return application;
    });
}

void __stdcall OA_AppDataDestroy(void* implementation, void* descriptorData)
{
    auto* descriptor = static_cast<OA_APPLICATION*>(descriptorData);
    if (!descriptor)
        return;
    descriptor->application = nullptr;
    if (descriptor->destroy)
        descriptor->destroy(implementation, descriptor);
}

} // extern "C"
