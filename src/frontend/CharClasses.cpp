#include "frontend/CharClasses.h"

#include "frontend/Token.h"

#include <windows.h>

namespace brannoc {

const CharClasses& CharClasses::Get()
{
    static const CharClasses s_classes;
    return s_classes;
}

CharClasses::CharClasses()
{
    m_class.fill(static_cast<std::uint16_t>(Token::Other));
    // A character that begins a two-character operator is class 1 and keeps it; a one-character
    // punctuation token gives its character its own number.
    for (int number = TokenNumber(Token::Bang); number <= TokenNumber(Token::Semicolon); ++number) {
        const std::string_view text = KeywordText(number);
        const std::size_t index = Index(text[0]);
        if (text.size() > 1)
            m_class[index] = static_cast<std::uint16_t>(Token::Operator);
        else if (m_class[index] != static_cast<std::uint16_t>(Token::Operator))
            m_class[index] = static_cast<std::uint16_t>(number);
    }
    for (int c = 1; c < 256; ++c) {
        if (IsCharAlphaA(static_cast<CHAR>(c))) {
            m_class[static_cast<std::size_t>(c)] = static_cast<std::uint16_t>(Token::Id);
            m_flags[static_cast<std::size_t>(c)] = kStart | kChar;
        }
    }
    for (char digit = '0'; digit <= '9'; ++digit) {
        m_class[Index(digit)] = static_cast<std::uint16_t>(Token::LiteralNumber);
        m_flags[Index(digit)] = kChar;
    }
    m_class[Index('[')] = static_cast<std::uint16_t>(Token::Id);
    m_class[Index('"')] = static_cast<std::uint16_t>(Token::LiteralString);
    m_flags[Index('_')] = kChar;

    for (int c = 0; c < 256; ++c) {
        // CharUpperA takes a single character in the low word of its pointer argument.
        const auto upper = reinterpret_cast<std::uintptr_t>(
            CharUpperA(reinterpret_cast<LPSTR>(static_cast<std::uintptr_t>(static_cast<unsigned char>(c)))));
        m_upper[static_cast<std::size_t>(c)] = static_cast<std::uint8_t>(upper & 0xFF);
    }
}

std::string UpperName(std::string_view text)
{
    const CharClasses& classes = CharClasses::Get();
    std::string upper(text);
    for (char& c : upper)
        c = classes.Upper(c);
    return upper;
}

bool SameName(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    const CharClasses& classes = CharClasses::Get();
    for (size_t i = 0; i < a.size(); ++i)
        if (classes.Upper(a[i]) != classes.Upper(b[i]))
            return false;
    return true;
}

} // namespace brannoc
