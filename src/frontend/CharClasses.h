#pragma once
// Character classes and the upper-case map of the lexer, built once from the current ANSI code page.
#include <array>
#include <cstdint>

#include <string>
#include <string_view>

namespace brannoc {

class CharClasses final {
public:
    // The one table of the process, built on first use.
    static const CharClasses& Get();

    // Token number that a character starts: a punctuation token, 1 (operator start), 3 (digit),
    // 4 (double quote), 163 (identifier start or "["), or 5 (other).
    int ClassOf(char c) const { return m_class[Index(c)]; }
    bool IsIdentifierStart(char c) const { return (m_flags[Index(c)] & kStart) != 0; }
    bool IsIdentifierChar(char c) const { return (m_flags[Index(c)] & kChar) != 0; }
    char Upper(char c) const { return static_cast<char>(m_upper[Index(c)]); }

private:
    CharClasses();
    static std::size_t Index(char c) { return static_cast<unsigned char>(c); }

    static constexpr std::uint8_t kStart = 1;
    static constexpr std::uint8_t kChar = 2;

    std::array<std::uint16_t, 256> m_class{};
    std::array<std::uint8_t, 256> m_flags{};
    std::array<std::uint8_t, 256> m_upper{};
};

// A name in upper case through the code page's map.
std::string UpperName(std::string_view text);

// True when two names are equal without regard to case (the language compares names this way).
bool SameName(std::string_view a, std::string_view b);

} // namespace brannoc
