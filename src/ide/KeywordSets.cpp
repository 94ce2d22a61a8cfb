#include "ide/KeywordSets.h"

#include "frontend/Token.h"

#include <vector>

namespace brannoc::ide {

namespace {

// Splits at CR or LF, dropping the empty pieces between a CR and its LF.
std::vector<std::string_view> Sections(std::string_view text)
{
    std::vector<std::string_view> sections;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '\r' || text[i] == '\n') {
            if (i > start || (i < text.size() && text[i] == '\r'))
                sections.push_back(text.substr(start, i - start));
            if (i + 1 < text.size() && text[i] == '\r' && text[i + 1] == '\n')
                ++i;
            start = i + 1;
        }
    }
    return sections;
}

std::vector<std::string_view> SplitAtBars(std::string_view text)
{
    std::vector<std::string_view> parts;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '|') {
            parts.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

std::string_view PartOrEmpty(const std::vector<std::string_view>& parts, size_t index)
{
    return index < parts.size() ? parts[index] : std::string_view{};
}

} // namespace

EditorColour KeywordSets::ColourOfSet(int set)
{
    static constexpr EditorColour kColours[kSetCount] = {EditorColour::Keyword0, EditorColour::Keyword1,
                                                         EditorColour::Keyword1, EditorColour::Keyword2};
    return kColours[set];
}

void KeywordSets::Build(std::string_view keywordSections, std::string_view extraLists, const EditorColours& colours)
{
    std::vector<std::string_view> sections = Sections(keywordSections);
    std::vector<std::string_view> extras = SplitAtBars(extraLists);
    std::string words[kSetCount];
    words[0] = std::string(PartOrEmpty(sections, 0));
    words[1] = std::string(PartOrEmpty(sections, 1)) + " " + std::string(PartOrEmpty(extras, 1));
    words[3] = std::string(PartOrEmpty(sections, 2)) + " " + std::string(PartOrEmpty(extras, 2));
    for (int set = 0; set < kSetCount; ++set) {
        if (set == 2)
            continue;
        if (colours.IsOff(ColourOfSet(set)))
            m_sets[set].Clear();
        else
            m_sets[set].Build(words[set]);
    }
}

void KeywordSets::SetMacroKeywords(std::string_view words, const EditorColours& colours)
{
    if (colours.IsOff(ColourOfSet(2)))
        m_sets[2].Clear();
    else
        m_sets[2].Build(words);
}

KeywordSets::Match KeywordSets::Find(std::string_view word) const
{
    for (int set = 0; set < kSetCount; ++set) {
        std::string_view canonical = m_sets[set].Find(word);
        if (!canonical.empty())
            return Match{canonical, set};
    }
    return Match{};
}

std::string LanguageKeywordSections()
{
    std::string text;
    for (int number = kFirstReservedWord; number <= kLastReservedWord; ++number) {
        text += KeywordText(number);
        text += ' ';
    }
    text += "\r\n.Print \r\n";
    for (int number = kFirstRecognisedName; number <= kLastRecognisedName; ++number) {
        text += KeywordText(number);
        text += ' ';
    }
    text += "\r\n";
    return text;
}

} // namespace brannoc::ide
