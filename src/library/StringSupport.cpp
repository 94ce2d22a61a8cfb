#include "library/StringSupport.h"

#include "values/Conversion.h"
#include "values/ValueError.h"

#include <algorithm>
#include <vector>

namespace brannoc {

std::string_view StorageBytes(BSTR text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text), SysStringByteLen(text)) : std::string_view();
}

bool SetStorageBytes(BuiltinResult& result, std::string_view bytes)
{
    Bstr text;
    text.Attach(SysAllocStringByteLen(bytes.data(), static_cast<UINT>(bytes.size())));
    if (!text.Get())
        return RaiseValueError(kErrorOutOfMemory);
    result.SetString(std::move(text));
    return true;
}

bool MapString(std::wstring_view text, DWORD flags, Bstr& mapped)
{
    if (text.empty())
        return mapped.Assign(text) || RaiseValueError(kErrorOutOfMemory);
    const int length = static_cast<int>(text.size());
    const int needed = LCMapStringW(EngineLocale(), flags, text.data(), length, nullptr, 0);
    if (needed <= 0)
        return RaiseValueError(kErrorInvalidArgument);
    mapped.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(needed)));
    if (!mapped.Get())
        return RaiseValueError(kErrorOutOfMemory);
    if (LCMapStringW(EngineLocale(), flags, text.data(), length, mapped.Get(), needed) != needed)
        return RaiseValueError(kErrorInvalidArgument);
    return true;
}

std::string Narrow(std::wstring_view text)
{
    if (text.empty())
        return {};
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(needed > 0 ? needed : 0), '\0');
    if (needed > 0)
        WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

namespace {

bool SortKey(const std::string& text, std::vector<BYTE>& key)
{
    const DWORD flags = LCMAP_SORTKEY | NORM_IGNORECASE;
    const int length = static_cast<int>(text.size());
    const int needed = LCMapStringA(EngineLocale(), flags, text.c_str(), length, nullptr, 0);
    if (needed <= 0)
        return RaiseValueError(kErrorInvalidArgument);
    key.resize(static_cast<std::size_t>(needed));
    if (LCMapStringA(EngineLocale(), flags, text.c_str(), length, reinterpret_cast<char*>(key.data()), needed) <= 0)
        return RaiseValueError(kErrorInvalidArgument);
    return true;
}

} // namespace

bool CompareText(std::wstring_view left, std::wstring_view right, int& order)
{
    std::vector<BYTE> leftKey;
    std::vector<BYTE> rightKey;
    // An empty text has an empty key (the platform refuses to map nothing).
    if ((!left.empty() && !SortKey(Narrow(left), leftKey)) || (!right.empty() && !SortKey(Narrow(right), rightKey)))
        return false;
    const int compared = std::lexicographical_compare(leftKey.begin(), leftKey.end(), rightKey.begin(), rightKey.end())
                             ? -1
                             : std::lexicographical_compare(rightKey.begin(), rightKey.end(), leftKey.begin(),
                                                            leftKey.end())
                                   ? 1
                                   : 0;
    order = compared;
    return true;
}

std::size_t FindIgnoringCase(std::wstring_view text, std::wstring_view pattern, std::size_t from)
{
    Bstr lowerText;
    Bstr lowerPattern;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool mapped = MapString(text, LCMAP_LOWERCASE, lowerText) && MapString(pattern, LCMAP_LOWERCASE, lowerPattern);
    (void)SetRaiseHandler(previous);
    if (!mapped || lowerText.Length() != text.size() || lowerPattern.Length() != pattern.size())
        return text.find(pattern, from);
    return lowerText.View().find(lowerPattern.View(), from);
}

} // namespace brannoc
