#include "host/ThisModule.h"

namespace brannoc {

HMODULE ThisModule()
{
    static HMODULE s_module = [] {
        HMODULE module = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCWSTR>(&ThisModule), &module);
        return module;
    }();
    return s_module;
}

std::wstring ThisModulePath()
{
    wchar_t buffer[MAX_PATH * 2];
    DWORD length = GetModuleFileNameW(ThisModule(), buffer, static_cast<DWORD>(std::size(buffer)));
    if (length == 0 || length >= std::size(buffer))
        return {};
    return std::wstring(buffer, length);
}

std::wstring LoadResourceString(unsigned id)
{
    // With a zero buffer size LoadStringW hands out a pointer into the resource itself.
    const wchar_t* text = nullptr;
    int length = LoadStringW(ThisModule(), id, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0 || !text)
        return {};
    return std::wstring(text, static_cast<size_t>(length));
}

} // namespace brannoc
