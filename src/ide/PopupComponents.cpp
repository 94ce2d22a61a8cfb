// Registration and creation of the text area's pop-up components.
#include "ide/PopupComponents.h"

#include <windows.h>

#include <string>

namespace brannoc::ide {

namespace {

// {6286E5E7-ECF6-4EAC-ADBB-A446D880D18C} and {94483C64-AB5D-421C-BC3D-B7113B5C04A5}
constexpr CLSID kCompletionClassId = {0x6286e5e7, 0xecf6, 0x4eac, {0xad, 0xbb, 0xa4, 0x46, 0xd8, 0x80, 0xd1, 0x8c}};
constexpr CLSID kParameterTipClassId = {0x94483c64, 0xab5d, 0x421c, {0xbc, 0x3d, 0xb7, 0x11, 0x3b, 0x5c, 0x04, 0xa5}};

struct PopupClass {
    const wchar_t* progId;
    const CLSID* classId;
    IClassFactory* (*create)();
};

const PopupClass kClasses[] = {
    {kCompletionProgId, &kCompletionClassId, CreateCompletionListClass},
    {kParameterTipProgId, &kParameterTipClassId, CreateParameterTipClass},
};

bool SetValue(HKEY root, const std::wstring& key, const std::wstring& value)
{
    HKEY handle = nullptr;
    if (RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr) != ERROR_SUCCESS)
        return false;
    const LONG status = RegSetValueExW(handle, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                       static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(handle);
    return status == ERROR_SUCCESS;
}

// Writes a class registration value. The machine-wide classes key needs an administrator on Windows; for
// anyone else the user's own classes key takes it, which the system merges into the classes the user sees.
bool SetClassesValue(const std::wstring& key, const std::wstring& value)
{
    return SetValue(HKEY_CLASSES_ROOT, key, value) || SetValue(HKEY_CURRENT_USER, L"Software\\Classes\\" + key, value);
}

std::wstring GuidText(const GUID& id)
{
    wchar_t text[64] = {};
    StringFromGUID2(id, text, 64);
    return text;
}

bool WriteProgramIds()
{
    bool written = true;
    for (const PopupClass& popup : kClasses) {
        const std::wstring progId = popup.progId, classId = GuidText(*popup.classId);
        written = SetClassesValue(progId, progId) && SetClassesValue(progId + L"\\CLSID", classId) &&
                  SetClassesValue(L"CLSID\\" + classId, progId) &&
                  SetClassesValue(L"CLSID\\" + classId + L"\\ProgID", progId) && written;
    }
    return written;
}

// The registrations of the thread's holders: a count and the cookies of the class objects. COM keeps
// class objects registered from a single-threaded apartment for that apartment, hence one set per thread.
thread_local int s_holders = 0;
thread_local DWORD s_cookies[2] = {};

} // namespace

bool RegisterPopupProgramIds()
{
    static const bool registered = WriteProgramIds();
    return registered;
}

PopupClassObjects::PopupClassObjects()
{
    if (s_holders++ > 0)
        return;
    RegisterPopupProgramIds();
    for (size_t i = 0; i < 2; ++i) {
        ComRef<IClassFactory> factory = ComRef<IClassFactory>::Adopt(kClasses[i].create());
        if (!factory || FAILED(CoRegisterClassObject(*kClasses[i].classId, factory.Get(), CLSCTX_INPROC_SERVER,
                                                     REGCLS_MULTIPLEUSE, &s_cookies[i])))
            s_cookies[i] = 0;
    }
}

PopupClassObjects::~PopupClassObjects()
{
    if (--s_holders > 0)
        return;
    for (DWORD& cookie : s_cookies) {
        if (cookie)
            CoRevokeClassObject(cookie);
        cookie = 0;
    }
}

ComRef<IDispatch> CreatePopupComponent(const wchar_t* progId)
{
    CLSID classId;
    ComRef<IDispatch> component;
    if (FAILED(CLSIDFromProgID(progId, &classId)) ||
        FAILED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(component.Out()))))
        return {};
    return component;
}

} // namespace brannoc::ide
