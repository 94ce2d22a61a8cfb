#include "exec/ErrorMessages.h"

#include "host/ThisModule.h"

namespace brannoc {

namespace {

constexpr long kFirstMessage = 10000;
constexpr long kLastMessage = 10999;

std::wstring ApplicationSpecificText()
{
    std::wstring text = LoadResourceString(static_cast<unsigned>(ToNumber(ErrorId::ApplicationSpecific)));
    // The string table is part of every module that links the engine; the literal only guards a
    // module built without it.
    return text.empty() ? std::wstring(L"Application specific error.") : text;
}

} // namespace

std::wstring MessageFor(long number)
{
    if (number == 0)
        return {};
    if (number >= kFirstMessage && number <= kLastMessage) {
        std::wstring text = LoadResourceString(static_cast<unsigned>(number));
        if (!text.empty())
            return text;
    }
    return ApplicationSpecificText();
}

} // namespace brannoc
