#include "ide/EngineLink.h"

#include "ide/Sheet.h"

namespace brannoc::ide {

std::string NarrowText(std::wstring_view text)
{
    if (text.empty())
        return {};
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), size, narrow.data(), length, nullptr, nullptr);
    return narrow;
}

std::wstring WideText(std::string_view text)
{
    if (text.empty())
        return {};
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string TakeEngineText(BSTR text)
{
    if (!text)
        return {};
    std::string bytes(reinterpret_cast<const char*>(text), SysStringByteLen(text));
    SysFreeString(text);
    return bytes;
}

std::string EngineName(const Sheet& sheet) { return "\"" + sheet.name + "\""; }

std::string Unquoted(std::string name)
{
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"')
        return name.substr(1, name.size() - 2);
    return name;
}

int AbsoluteLine(const Sheet& sheet, int codeLine) { return codeLine + 1 + sheet.HiddenLines(); }

int CodeLine(const Sheet& sheet, int absoluteLine) { return absoluteLine - 1 - sheet.HiddenLines(); }

} // namespace brannoc::ide
