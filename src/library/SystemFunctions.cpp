// Built-ins that reach the system outside files: Environ, Shell, the per-user application settings
// (GetSetting, SaveSetting, DeleteSetting, GetAllSettings) and the text Clipboard.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
#include "host/AnsiText.h"
#include "library/BuiltinArguments.h"
#include "values/ArrayStorage.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace brannoc {

namespace {

bool TextArgument(BuiltinArguments& arguments, int index, std::wstring& text)
{
    std::wstring_view view;
    if (!arguments.String(index, view))
        return false;
    text.assign(view);
    return true;
}

bool Environ(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    if (!arguments.Value(0, value))
        return false;
    const VARIANT& raw = *FollowByRefChain(&value->Raw());
    if ((raw.vt & VT_TYPEMASK) == VT_BSTR) {
        std::wstring name;
        if (!TextArgument(arguments, 0, name))
            return false;
        const DWORD size = GetEnvironmentVariableW(name.c_str(), nullptr, 0);
        if (size == 0)
            return result.SetString(L"");
        std::wstring text(size, L'\0');
        const DWORD length = GetEnvironmentVariableW(name.c_str(), text.data(), size);
        text.resize(length);
        return result.SetString(text);
    }
    SHORT index = 0;
    if (!arguments.Integer(0, index))
        return false;
    if (index < 1)
        return RaiseValueError(kErrorInvalidArgument);
    LPWCH block = GetEnvironmentStringsW();
    std::wstring entry;
    int position = 0;
    for (const wchar_t* p = block; p && *p; p += wcslen(p) + 1) {
        // Entries of the drives' current directories ("=C:=...") are not variables.
        if (*p == L'=')
            continue;
        if (++position == index) {
            entry = p;
            break;
        }
    }
    if (block)
        FreeEnvironmentStringsW(block);
    return result.SetString(entry);
}

// Raises number with the system's own message for a failure as its description.
bool RaiseSystemFailure(long number, DWORD failure)
{
    Interpreter* interpreter = Interpreter::Current();
    wchar_t* message = nullptr;
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                            FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, failure, 0, reinterpret_cast<LPWSTR>(&message), 0, nullptr);
    std::wstring text(message ? message : L"", length);
    if (message)
        LocalFree(message);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' '))
        text.pop_back();
    if (!interpreter || text.empty())
        return RaiseValueError(number);
    return interpreter->RaiseRuntimeError(number, text);
}

bool Shell(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring command;
    SHORT style = 2;
    if (!TextArgument(arguments, 0, command) || (arguments.IsGiven(1) && !arguments.Integer(1, style)))
        return false;
    if (style < 0 || style > 9)
        return RaiseValueError(kErrorWindowStyle);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = static_cast<WORD>(style);
    PROCESS_INFORMATION process{};
    const UINT previousMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    // The new process starts with the default error mode, not the quiet one set for this call.
    const BOOL started = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE,
                                        CREATE_DEFAULT_ERROR_MODE | NORMAL_PRIORITY_CLASS, nullptr, nullptr, &startup,
                                        &process);
    SetErrorMode(previousMode);
    if (!started)
        return RaiseSystemFailure(kErrorWindowNotFound, GetLastError());
    WaitForInputIdle(process.hProcess, 5000);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    result.SetLong(static_cast<LONG>(process.dwProcessId));
    return true;
}

// The registry key of an application's section under the per-user settings.
std::wstring SettingsKey(const std::wstring& application, const std::wstring& section)
{
    std::wstring key = L"Software\\VB and VBA Program Settings\\" + application;
    if (!section.empty())
        key += L"\\" + section;
    return key;
}

class RegistryKey final {
public:
    RegistryKey() = default;
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey()
    {
        if (m_key)
            RegCloseKey(m_key);
    }
    HKEY* Out() { return &m_key; }
    HKEY Get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

bool ReadNames(BuiltinArguments& arguments, int count, std::wstring* names)
{
    for (int i = 0; i < count; ++i) {
        if (!TextArgument(arguments, i, names[i]))
            return false;
        if (names[i].empty())
            return RaiseValueError(kErrorInvalidArgument);
    }
    return true;
}

bool GetSetting(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring names[3];
    std::wstring fallback;
    if (!ReadNames(arguments, 3, names) || (arguments.IsGiven(3) && !TextArgument(arguments, 3, fallback)))
        return false;
    RegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKey(names[0], names[1]).c_str(), 0, KEY_READ, key.Out()) ==
        ERROR_SUCCESS) {
        DWORD type = 0;
        DWORD size = 0;
        if (RegQueryValueExW(key.Get(), names[2].c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS &&
            type == REG_SZ) {
            std::wstring text(size / sizeof(wchar_t) + 1, L'\0');
            size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
            if (RegQueryValueExW(key.Get(), names[2].c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()),
                                 &size) == ERROR_SUCCESS) {
                text.resize(wcsnlen(text.c_str(), size / sizeof(wchar_t)));
                return result.SetString(text);
            }
        }
    }
    return result.SetString(fallback);
}

bool SaveSetting(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring names[3];
    std::wstring setting;
    if (!ReadNames(arguments, 3, names) || !TextArgument(arguments, 3, setting))
        return false;
    RegistryKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, SettingsKey(names[0], names[1]).c_str(), 0, nullptr, 0, KEY_WRITE,
                        nullptr, key.Out(), nullptr) != ERROR_SUCCESS)
        return RaiseValueError(kErrorInvalidArgument);
    // Stored without its terminating zero.
    return RegSetValueExW(key.Get(), names[2].c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(setting.c_str()),
                          static_cast<DWORD>(setting.size() * sizeof(wchar_t))) == ERROR_SUCCESS ||
           RaiseValueError(kErrorInvalidArgument);
}

bool DeleteSetting(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring names[3];
    if (!ReadNames(arguments, 2, names) || (arguments.IsGiven(2) && !ReadNames(arguments, 3, names)))
        return false;
    if (arguments.IsGiven(2)) {
        RegistryKey key;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKey(names[0], names[1]).c_str(), 0, KEY_WRITE, key.Out()) !=
            ERROR_SUCCESS)
            return true;
        const LONG status = RegDeleteValueW(key.Get(), names[2].c_str());
        return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND || RaiseValueError(kErrorInvalidArgument);
    }
    RegistryKey application;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKey(names[0], L"").c_str(), 0, KEY_ALL_ACCESS, application.Out()) !=
        ERROR_SUCCESS)
        return true;
    const LONG status = RegDeleteKeyW(application.Get(), names[1].c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND || RaiseValueError(kErrorInvalidArgument);
}

bool GetAllSettings(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring names[2];
    if (!ReadNames(arguments, 2, names))
        return false;
    RegistryKey key;
    std::vector<std::pair<std::wstring, std::wstring>> settings;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKey(names[0], names[1]).c_str(), 0, KEY_READ, key.Out()) ==
        ERROR_SUCCESS) {
        for (DWORD i = 0;; ++i) {
            wchar_t name[256];
            DWORD nameLength = 256;
            std::wstring value(4096, L'\0');
            DWORD size = static_cast<DWORD>(value.size() * sizeof(wchar_t));
            DWORD type = 0;
            const LONG status = RegEnumValueW(key.Get(), i, name, &nameLength, nullptr, &type,
                                              reinterpret_cast<BYTE*>(value.data()), &size);
            if (status == ERROR_NO_MORE_ITEMS)
                break;
            if (status != ERROR_SUCCESS)
                return RaiseValueError(kErrorInvalidArgument);
            if (type != REG_SZ)
                continue;
            value.resize(wcsnlen(value.c_str(), size / sizeof(wchar_t)));
            settings.emplace_back(std::wstring(name, nameLength), value);
        }
    }
    if (settings.empty()) {
        result.Target().SetEmpty();
        return true;
    }
    const LONG lower[2] = {0, 0};
    const LONG upper[2] = {static_cast<LONG>(settings.size()) - 1, 1};
    SafeArray array(CreateArray(ElementKind{VT_BSTR}, lower, upper, 2, false));
    if (!array.Get())
        return RaiseValueError(kErrorOutOfMemory);
    for (std::size_t row = 0; row < settings.size(); ++row) {
        for (LONG column = 0; column < 2; ++column) {
            const LONG indexes[2] = {static_cast<LONG>(row), column};
            auto* element = static_cast<BSTR*>(ElementAddress(array.Get(), indexes));
            ReplaceString(*element, Bstr(column == 0 ? settings[row].first : settings[row].second));
        }
    }
    result.Target().SetArray(array.Detach(), VT_BSTR);
    return true;
}

// Opens the clipboard, trying for a short while when another program holds it.
bool OpenClipboardShortly()
{
    for (int attempt = 0; attempt < 5; ++attempt) {
        if (OpenClipboard(nullptr))
            return true;
        Sleep(20);
    }
    return false;
}

bool Clipboard(BuiltinArguments& arguments, BuiltinResult& result)
{
    if (arguments.IsGiven(0)) {
        std::wstring text;
        if (!TextArgument(arguments, 0, text))
            return false;
        if (!OpenClipboardShortly())
            return RaiseValueError(kErrorClipboard);
        EmptyClipboard();
        // ANSI text in shareable movable memory; the system offers it in the other text formats too.
        const std::string bytes = AnsiFromWide(text);
        HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, bytes.size() + 1);
        bool placed = false;
        if (memory) {
            if (void* data = GlobalLock(memory)) {
                std::memcpy(data, bytes.c_str(), bytes.size() + 1);
                GlobalUnlock(memory);
                placed = SetClipboardData(CF_TEXT, memory) != nullptr;
            }
            if (!placed)
                GlobalFree(memory);
        }
        CloseClipboard();
        return placed || RaiseValueError(kErrorClipboard);
    }
    if (!OpenClipboardShortly())
        return RaiseValueError(kErrorClipboard);
    std::wstring text;
    if (HANDLE data = GetClipboardData(CF_TEXT)) {
        if (const auto* chars = static_cast<const char*>(GlobalLock(data))) {
            text = WideFromAnsi(chars);
            GlobalUnlock(data);
        }
    }
    CloseClipboard();
    return result.SetString(text);
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Environ, ResultKind::kString, "?", "Index", 0, 0, &Environ),
    Function(Token::Shell, ResultKind::kLong, "$%", "Name WindowType", 0, 0b10, &Shell),
    Function(Token::GetSetting, ResultKind::kString, "$$$$", "AppName Section Key Default", 0, 0b1000, &GetSetting),
    Function(Token::GetAllSettings, ResultKind::kVariant, "$$", "AppName Section", 0, 0, &GetAllSettings),
    Instruction(Token::SaveSetting, "$$$$", "AppName Section Key Setting", 0, &SaveSetting),
    Instruction(Token::DeleteSetting, "$$$", "AppName Section Key", 0b100, &DeleteSetting),
    Function(Token::Clipboard, ResultKind::kString, "$", "Text", 0, 0b1, &Clipboard),
};

} // namespace

BuiltinGroup SystemFunctions() { return kRecords; }

} // namespace brannoc
