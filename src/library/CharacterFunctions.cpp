// Characters and their codes: Asc, AscB, AscW give the code of a string's first character (in the
// ANSI code page, as a byte, as a UTF-16 code unit); Chr, ChrB, ChrW make the one-character string of a
// code.
#include "library/BuiltinGroups.h"
#include "library/StringSupport.h"
#include "values/ValueError.h"

namespace brannoc {

namespace {

bool Asc(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    SHORT code = 0;
    if (!text.empty()) {
        // A surrogate pair converts as one character.
        const int length = text.size() > 1 && IS_HIGH_SURROGATE(text[0]) ? 2 : 1;
        char bytes[8] = {};
        if (WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes, sizeof bytes, nullptr, nullptr) > 0)
            code = static_cast<unsigned char>(bytes[0]);
    }
    result.SetInteger(code);
    return true;
}

bool AscB(BuiltinArguments& arguments, BuiltinResult& result)
{
    BSTR text = nullptr;
    if (!arguments.StringValue(0, text))
        return false;
    const std::string_view bytes = StorageBytes(text);
    result.SetInteger(bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0]));
    return true;
}

bool AscW(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    result.SetInteger(text.empty() ? 0 : static_cast<SHORT>(text[0]));
    return true;
}

// A character code from 0 to 255; anything else overflows.
bool ReadByteCode(BuiltinArguments& arguments, char& code)
{
    LONG number = 0;
    if (!arguments.Long(0, number))
        return false;
    if (number < 0 || number > 255)
        return RaiseValueError(kErrorOverflow);
    code = static_cast<char>(number);
    return true;
}

bool Chr(BuiltinArguments& arguments, BuiltinResult& result)
{
    char code = 0;
    if (!ReadByteCode(arguments, code))
        return false;
    wchar_t wide[2] = {};
    const int length = MultiByteToWideChar(CP_ACP, 0, &code, 1, wide, 2);
    return result.SetString(std::wstring_view(wide, length > 0 ? static_cast<std::size_t>(length) : 0u));
}

bool ChrB(BuiltinArguments& arguments, BuiltinResult& result)
{
    char code = 0;
    return ReadByteCode(arguments, code) && SetStorageBytes(result, std::string_view(&code, 1));
}

// ChrW takes a 16-bit code, written as a signed (-32768 to -1) or unsigned number.
bool ChrW(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG number = 0;
    if (!arguments.Long(0, number))
        return false;
    if (number < -32768 || number > 65535)
        return RaiseValueError(kErrorInvalidArgument);
    const wchar_t character = static_cast<wchar_t>(number & 0xFFFF);
    return result.SetString(std::wstring_view(&character, 1));
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Asc, ResultKind::kInteger, "$", "S", kPure, 0, &Asc),
    Function(Token::AscB, ResultKind::kInteger, "$", "S", kPure, 0, &AscB),
    Function(Token::AscW, ResultKind::kInteger, "$", "S", kPure, 0, &AscW),
    Function(Token::Chr, ResultKind::kString, "&", "Num", kPure, 0, &Chr),
    Function(Token::ChrB, ResultKind::kString, "&", "Num", kPure, 0, &ChrB),
    Function(Token::ChrW, ResultKind::kString, "&", "Num", kPure, 0, &ChrW),
};

} // namespace

BuiltinGroup CharacterFunctions() { return kRecords; }

} // namespace brannoc
