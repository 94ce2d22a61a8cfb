#include "frontend/Token.h"

#include <windows.h>

#include <array>
#include <cstring>

namespace brannoc {
namespace {

constexpr std::array<const char*, kTokenCount> kTokenTexts = {
#define BRANNOC_TOKEN_TEXT(name, text) text,
    BRANNOC_TOKEN_TABLE(BRANNOC_TOKEN_TEXT)
#undef BRANNOC_TOKEN_TEXT
};

constexpr unsigned kHashSlots = 2048;
constexpr std::size_t kMaxLookupLength = 1023;

// The 2048-slot keyword hash: each slot holds a token number, 0 for an empty slot. Collisions probe
// linearly to the next slot, wrapping at the end. Built once, on first use.
class KeywordHashTable final {
public:
    KeywordHashTable()
    {
        for (int number = 1; number < kTokenCount; ++number) {
            const char* text = kTokenTexts[static_cast<std::size_t>(number)];
            unsigned slot = KeywordHash(text);
            while (m_slots[slot] != 0)
                slot = (slot + 1) % kHashSlots;
            m_slots[slot] = static_cast<std::uint16_t>(number);
        }
    }

    // text must be NUL-terminated.
    Token Find(const char* text, std::size_t length) const
    {
        unsigned slot = KeywordHash(std::string_view(text, length));
        while (m_slots[slot] != 0) {
            const int number = m_slots[slot];
            if (lstrcmpiA(kTokenTexts[static_cast<std::size_t>(number)], text) == 0)
                return static_cast<Token>(number);
            slot = (slot + 1) % kHashSlots;
        }
        return Token::Id;
    }

private:
    std::array<std::uint16_t, kHashSlots> m_slots{};
};

const KeywordHashTable& HashTable()
{
    static const KeywordHashTable s_table;
    return s_table;
}

} // namespace

std::string_view KeywordText(int number)
{
    if (number <= 0 || number >= kTokenCount)
        return {};
    return kTokenTexts[static_cast<std::size_t>(number)];
}

unsigned KeywordHash(std::string_view text)
{
    unsigned hash = 0;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        hash += static_cast<unsigned char>(text[i]) & 0x1Fu;
        if (i + 1 < text.size())
            hash += (static_cast<unsigned char>(text[i + 1]) & 0x1Fu) * 16u;
    }
    return hash & 0x7FFu;
}

Token LookupKeyword(std::string_view text)
{
    // lstrcmpiA needs a terminated copy; words longer than any token text are never keywords.
    if (text.empty() || text.size() > kMaxLookupLength)
        return Token::Id;
    char buffer[kMaxLookupLength + 1];
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return HashTable().Find(buffer, text.size());
}

Token LookupWord(std::string_view text)
{
    const Token token = LookupKeyword(text);
    return TokenNumber(token) < kFirstReservedWord ? Token::Id : token;
}

} // namespace brannoc
