#include "automation/AnsiBstr.h"

#include "host/AnsiText.h"

namespace brannoc::automation {

BSTR AllocateAnsiBstr(std::string_view bytes)
{
    return SysAllocStringByteLen(bytes.empty() ? "" : bytes.data(), static_cast<UINT>(bytes.size()));
}

BSTR AnsiBstrFromWide(std::wstring_view text) { return AllocateAnsiBstr(AnsiFromWide(text)); }

std::string_view AnsiBytes(BSTR text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text), SysStringByteLen(text)) : std::string_view();
}

BSTR WideBstrFromAnsi(std::string_view bytes)
{
    std::wstring wide = WideFromAnsi(bytes);
    return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::wstring_view WideChars(BSTR text) { return text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view(); }

} // namespace brannoc::automation
