#include "ide/EditorStrings.h"

#include "host/ThisModule.h"

#include <windows.h>

#include <cctype>

namespace brannoc::ide {

void ReplaceAll(std::string& text, std::string_view from, std::string_view to)
{
    if (from.empty())
        return;
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

std::string LoadRawEditorString(unsigned id)
{
    std::wstring wide = LoadResourceString(id);
    if (wide.empty())
        return {};
    int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), text.data(), length, nullptr, nullptr);
    return text;
}

std::string LoadEditorString(unsigned id, const PlaceholderValues& values)
{
    std::string text = LoadRawEditorString(id);
    if (text.find('<') == std::string::npos)
        return text;
    std::string lower = values.macroNoun;
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    std::string upper = values.macroNoun;
    if (!upper.empty())
        upper[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(upper[0])));
    ReplaceAll(text, "<TITLE>", values.title);
    ReplaceAll(text, "<macro>", lower);
    ReplaceAll(text, "<Macro>", upper);
    return text;
}

} // namespace brannoc::ide
