#pragma once
// An open-addressing hash set of words built from a blank-separated word list. A lookup compares
// without regard to case and answers the word as the list writes it (its canonical form).
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

class KeywordSet final {
public:
    // Replaces the set's words by those of `words` (blanks, tabs, CR and LF separate them).
    void Build(std::string_view words);
    void Clear();

    // The canonical form of `word`, or an empty view when the word is not in the set.
    std::string_view Find(std::string_view word) const;
    bool Empty() const { return m_count == 0; }
    int Count() const { return m_count; }
    int TableSize() const { return static_cast<int>(m_slots.size()); }

    // The hash of a word: its characters' low five bits, those at odd positions shifted left by 4.
    static unsigned Hash(std::string_view word);

private:
    struct Slot {
        int offset = -1; // into m_upper and m_canonical; -1 for an empty slot
        int length = 0;
    };
    unsigned SlotOf(std::string_view upperWord) const;

    std::string m_canonical; // the list as given
    std::string m_upper;     // its upper-case copy, which the slots point into
    std::vector<Slot> m_slots;
    unsigned m_mask = 0;
    unsigned m_shift = 0;
    int m_count = 0;
};

} // namespace brannoc::ide
