// Numbers as text and text as numbers: Hex and Oct write a Long in base 16 or 8, Str writes a number
// with the fixed US-English rules and a leading space, Val reads the number a text starts with.
#include "library/BuiltinGroups.h"
#include "library/StringSupport.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <string>

namespace brannoc {

namespace {

// The digits of the Long's 32 bits in base 2^bits, without leading zeros.
template <int kBits>
bool WriteDigits(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG number = 0;
    if (!arguments.Long(0, number))
        return false;
    auto bits = static_cast<unsigned long>(number);
    wchar_t digits[16];
    int count = 0;
    do {
        digits[count++] = L"0123456789ABCDEF"[bits & ((1u << kBits) - 1)];
        bits >>= kBits;
    } while (bits != 0);
    std::wstring text(digits, digits + count);
    return result.SetString(std::wstring(text.rbegin(), text.rend()));
}

// Str(Num): the invariant text with a leading space for numbers that are not negative; "0." loses its
// zero. Booleans and dates are written as they are.
bool Str(BuiltinArguments& arguments, BuiltinResult& result)
{
    Variant* value = nullptr;
    if (!arguments.OwnValue(0, value))
        return false;
    if (!Resolve(*value))
        return false;
    if (value->Tag() == VT_NULL) {
        result.SetNull();
        return true;
    }
    if (!ToNumber(*value))
        return false;
    Bstr text;
    if (!ToText(*value, TextMode::kInvariant, text))
        return false;
    std::wstring_view written = text.View();
    const bool plain = value->Tag() == VT_BOOL || value->Tag() == VT_DATE;
    if (plain || (!written.empty() && written[0] == L'-'))
        return result.SetString(written);
    if (written.size() > 1 && written[0] == L'0' && written[1] == L'.')
        written.remove_prefix(1);
    std::wstring spaced(L" ");
    spaced.append(written);
    return result.SetString(spaced);
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The text of the number Val reads at text's start (blanks inside dropped, at most 30 characters), and
// where the reading stopped.
class NumberScanner final {
public:
    explicit NumberScanner(std::string_view text) : m_text(text) {}

    // The radix form after "&": H or O and its digits; "" for any other letter.
    std::string RadixText()
    {
        SkipBlanks();
        if (m_position >= m_text.size())
            return {};
        const char base = static_cast<char>(m_text[m_position] | 0x20);
        if (base != 'h' && base != 'o')
            return {};
        ++m_position;
        const std::string_view allowed = base == 'h' ? "0123456789ABCDEFabcdef" : "01234567";
        std::string digits;
        while (m_position < m_text.size() && digits.size() < kMostCharacters) {
            const char c = m_text[m_position];
            if (IsBlank(c)) {
                ++m_position;
                continue;
            }
            if (allowed.find(c) == std::string_view::npos)
                break;
            digits += c;
            ++m_position;
        }
        return digits.empty() ? std::string() : std::string("&") + (base == 'h' ? "H" : "O") + digits;
    }

    // Sign, digits with at most one point, then an exponent whose digits are present.
    std::string DecimalText()
    {
        std::string number;
        if (Peek() == '+' || Peek() == '-')
            Take(number);
        bool digits = false;
        bool point = false;
        for (char c = Peek(); IsDigit(c) || (c == '.' && !point); c = Peek()) {
            digits = digits || IsDigit(c);
            point = point || c == '.';
            if (!Take(number))
                break;
        }
        if (!digits)
            return {};
        const char letter = static_cast<char>(Peek() | 0x20);
        if (letter == 'd' || letter == 'e') {
            const std::size_t kept = number.size();
            const std::size_t position = m_position;
            if (!Take(number))
                return number;
            number.back() = 'E';
            if (Peek() == '+' || Peek() == '-')
                Take(number);
            bool exponentDigits = false;
            while (IsDigit(Peek()) && Take(number))
                exponentDigits = true;
            if (!exponentDigits) {
                number.resize(kept);
                m_position = position;
            }
        }
        return number;
    }

    // The character right after the number (a type character chooses the kind it is read in).
    char Following() const { return m_position < m_text.size() ? m_text[m_position] : '\0'; }

private:
    static constexpr std::size_t kMostCharacters = 30;

    void SkipBlanks()
    {
        while (m_position < m_text.size() && IsBlank(m_text[m_position]))
            ++m_position;
    }
    // The next character that is not a blank, without taking it.
    char Peek()
    {
        std::size_t position = m_position;
        while (position < m_text.size() && IsBlank(m_text[position]))
            ++position;
        if (position >= m_text.size())
            return '\0';
        m_afterBlanks = position;
        return m_text[position];
    }
    // Takes the character Peek saw; false once 30 characters are collected.
    bool Take(std::string& number)
    {
        if (number.size() >= kMostCharacters)
            return false;
        number += m_text[m_afterBlanks];
        m_position = m_afterBlanks + 1;
        return true;
    }

    std::string_view m_text;
    std::size_t m_position = 0;
    std::size_t m_afterBlanks = 0;
};

VARTYPE KindOfTypeCharacter(char c)
{
    switch (c) {
    case '%': return VT_I2;
    case '&': return VT_I4;
    case '!': return VT_R4;
    case '#': return VT_R8;
    case '@': return VT_CY;
    default: return VT_R8;
    }
}

// The number that text starts with, 0 when it starts with none.
double ReadLeadingNumber(std::string_view text)
{
    std::size_t start = 0;
    while (start < text.size() && IsBlank(text[start]))
        ++start;
    text.remove_prefix(start);
    if (text.empty())
        return 0;
    NumberScanner scanner(text.substr(text[0] == '&' ? 1 : 0));
    std::string number = text[0] == '&' ? scanner.RadixText() : scanner.DecimalText();
    if (number.empty())
        return 0;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    Variant value;
    bool read = value.SetString(std::wstring(number.begin(), number.end()));
    // A hexadecimal or octal number without a type character takes the kind its size gives (&HFFFF is
    // the Integer -1); with one it is read in that kind (&HFFFF& is the Long 65535).
    const char following = scanner.Following();
    const bool typed = following == '%' || following == '&' || following == '!' || following == '#' || following == '@';
    if (text[0] == '&' && !typed)
        read = read && StringToNumber(value) && ChangeType(value, VT_R8);
    else
        read = read && ParseInvariant(value, KindOfTypeCharacter(following), RaiseMode::kQuiet) &&
               ChangeType(value, VT_R8);
    (void)SetRaiseHandler(previous);
    return read ? value.Double() : 0;
}

bool Val(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    result.SetDouble(ReadLeadingNumber(Narrow(text)));
    return true;
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Hex, ResultKind::kString, "&", "Num", kPure, 0, &WriteDigits<4>),
    Function(Token::Oct, ResultKind::kString, "&", "Num", kPure, 0, &WriteDigits<3>),
    Function(Token::Str, ResultKind::kString, "/", "Num", kPure, 0, &Str),
    Function(Token::Val, ResultKind::kDouble, "$", "S", kPure, 0, &Val),
};

} // namespace

BuiltinGroup NumberTextFunctions() { return kRecords; }

} // namespace brannoc
