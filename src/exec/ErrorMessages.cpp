#include "exec/ErrorMessages.h"

#include "host/ThisModule.h"

#include <cstdio>

namespace brannoc {

namespace {

constexpr long kFirstMessage = 10000;
constexpr long kLastMessage = 10999;
constexpr long kLastPlainNumber = 65535;

} // namespace

std::wstring FixedText(ErrorId id, const wchar_t* fallback)
{
    std::wstring text = LoadResourceString(static_cast<unsigned>(ToNumber(id)));
    // The string table is part of every module that links the engine; the fallback only guards a
    // module built without it.
    return text.empty() ? std::wstring(fallback) : text;
}

const std::wstring& LanguageHelpFile()
{
    static const std::wstring s_path = [] {
        const std::wstring path = ThisModulePath();
        const std::size_t dot = path.find_last_of(L'.');
        const std::size_t slash = path.find_last_of(L"\\/");
        if (dot == std::wstring::npos || (slash != std::wstring::npos && dot < slash))
            return std::wstring(L"?.HLP");
        return path.substr(0, dot + 1) + L"HLP";
    }();
    return s_path;
}

std::wstring MessageFor(long number)
{
    if (number == 0)
        return {};
    if (number >= kFirstMessage && number <= kLastMessage) {
        std::wstring text = LoadResourceString(static_cast<unsigned>(number));
        if (!text.empty())
            return text;
    }
    return FixedText(ErrorId::ApplicationSpecific, L"Application specific error.");
}

std::wstring DefaultDescription(long number)
{
    if (number >= 0 && number <= kLastPlainNumber)
        return MessageFor(number);
    wchar_t digits[16];
    std::swprintf(digits, 16, L"%lX", static_cast<unsigned long>(number));
    return FixedText(ErrorId::ExceptionPrefix, L"Exception ") + digits;
}

std::wstring WithArgument(std::wstring text, std::wstring_view argument)
{
    if (argument.empty())
        return text;
    if (text.empty() || text.back() != L' ')
        text += L' ';
    text += L'\'';
    text += argument;
    text += L'\'';
    return text;
}

} // namespace brannoc
