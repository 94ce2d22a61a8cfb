#pragma once
// The four keyword sets of the editor, shared by all documents of a frame:
// set 0 the reserved words, set 1 the second keyword section plus the host's first extra list,
// set 2 the current macro's own words, set 3 the third section plus the host's second extra list.
// A set whose colour is switched off stays empty, so its words are neither coloured nor corrected.
#include "ide/EditorColours.h"
#include "ide/KeywordSet.h"

#include <array>
#include <string>
#include <string_view>

namespace brannoc::ide {

class KeywordSets final {
public:
    static constexpr int kSetCount = 4;

    struct Match {
        std::string_view canonical; // empty when no set holds the word
        int set = -1;
    };

    // `keywordSections`: three CR LF (or CR) separated sections of blank-separated words, as the
    // engine's Keywords gives them; `extraLists`: "blocked|extra 1|extra 2" from the host (the blocked
    // part belongs to the engine and is not used here).
    void Build(std::string_view keywordSections, std::string_view extraLists, const EditorColours& colours);
    void SetMacroKeywords(std::string_view words, const EditorColours& colours);

    // Looks the word up in the sets in order.
    Match Find(std::string_view word) const;
    // The colour-table index of a set's words.
    static EditorColour ColourOfSet(int set);
    const KeywordSet& Set(int index) const { return m_sets[index]; }

private:
    std::array<KeywordSet, kSetCount> m_sets;
};

// The three keyword sections of the language from its keyword tables: the reserved words, the
// macro words (".Print"), the recognised names; each section ends with CR LF.
std::string LanguageKeywordSections();

} // namespace brannoc::ide
