#include "ide/KeywordSet.h"


namespace brannoc::ide {

namespace {

bool IsSeparator(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

template <typename Visit>
void ForEachWord(std::string_view text, Visit visit)
{
    size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && IsSeparator(text[i]))
            ++i;
        size_t start = i;
        while (i < text.size() && !IsSeparator(text[i]))
            ++i;
        if (i > start)
            visit(start, i - start);
    }
}

} // namespace

unsigned KeywordSet::Hash(std::string_view word)
{
    unsigned hash = 0;
    for (size_t i = 0; i < word.size(); ++i) {
        unsigned c = static_cast<unsigned char>(word[i]) & 31u;
        hash += (i % 2 == 0) ? c : (c << 4);
    }
    return hash;
}

void KeywordSet::Clear()
{
    m_canonical.clear();
    m_upper.clear();
    m_slots.clear();
    m_mask = m_shift = 0;
    m_count = 0;
}

unsigned KeywordSet::SlotOf(std::string_view upperWord) const
{
    return ((static_cast<unsigned>(upperWord.size()) << m_shift) + Hash(upperWord)) & m_mask;
}

void KeywordSet::Build(std::string_view words)
{
    Clear();
    int wordCount = 0;
    ForEachWord(words, [&](size_t, size_t) { ++wordCount; });
    if (wordCount == 0)
        return;
    unsigned bits = 0;
    while ((1u << bits) < static_cast<unsigned>(wordCount))
        ++bits;
    unsigned tableBits = bits + 1 + (bits < 10 ? 1 : 0);
    m_slots.assign(size_t{1} << tableBits, Slot{});
    m_mask = (1u << tableBits) - 1;
    m_shift = (3 * tableBits) / 4;
    m_canonical.assign(words);
    m_upper.resize(m_canonical.size());
    for (size_t i = 0; i < m_canonical.size(); ++i)
        m_upper[i] = Upper(m_canonical[i]);

    ForEachWord(m_upper, [&](size_t start, size_t length) {
        std::string_view word(m_upper.data() + start, length);
        unsigned slot = SlotOf(word);
        while (m_slots[slot].offset >= 0) {
            std::string_view held(m_upper.data() + m_slots[slot].offset, m_slots[slot].length);
            if (held == word)
                return;
            slot = (slot + 1) & m_mask;
        }
        m_slots[slot] = Slot{static_cast<int>(start), static_cast<int>(length)};
        ++m_count;
    });
}

std::string_view KeywordSet::Find(std::string_view word) const
{
    if (m_count == 0 || word.empty() || word.size() > 255)
        return {};
    char upper[256];
    for (size_t i = 0; i < word.size(); ++i)
        upper[i] = Upper(word[i]);
    std::string_view key(upper, word.size());
    unsigned slot = SlotOf(key);
    while (m_slots[slot].offset >= 0) {
        const Slot& held = m_slots[slot];
        if (std::string_view(m_upper.data() + held.offset, held.length) == key)
            return std::string_view(m_canonical.data() + held.offset, held.length);
        slot = (slot + 1) & m_mask;
    }
    return {};
}

} // namespace brannoc::ide
