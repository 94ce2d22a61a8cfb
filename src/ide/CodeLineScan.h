#pragma once
// What the editor reads from one line of code: its class flags (procedure headers and ends, With
// blocks), its tokens for colouring (strings, bracketed names, comments, keywords), and the changes
// made when a line is committed (tabs expanded, keywords written in their canonical case).
#include "ide/KeywordSets.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace brannoc::ide {

namespace LineClass {
inline constexpr uint8_t Other = 1;
inline constexpr uint8_t Uses = 2;
inline constexpr uint8_t ProcedureHeader = 4;
inline constexpr uint8_t ProcedureEnd = 8;
inline constexpr uint8_t With = 16;
inline constexpr uint8_t EndWith = 32;
inline constexpr uint8_t HoldsAs = 64;
} // namespace LineClass

// Letters and digits of the system's character classes, and "_".
bool IsWordCharacter(char c);

// The start of the dotted name that ends at `end` (not before `lowest`): word characters, dots, and an
// argument list in parentheses before a dot ("a(1).b").
size_t DottedNameStart(std::string_view line, size_t end, size_t lowest = 0);

// The class flags of a line (never 0).
uint8_t ClassifyLine(std::string_view line);

enum class TokenKind { Plain, String, Bracketed, Keyword, Comment };

struct CodeToken {
    TokenKind kind = TokenKind::Plain;
    size_t start = 0;
    size_t length = 0;
    int keywordSet = -1;            // for Keyword: the set that holds the word
    std::string_view canonical;     // for Keyword: the word as the set writes it
};

// Calls `visit(const CodeToken&)` for each token of the line from left to right; the tokens cover the
// whole line. A comment (an apostrophe outside quotes and brackets, or the keyword "Rem") runs to the end.
template <typename Visit>
void ScanCodeLine(std::string_view line, const KeywordSets& keywords, Visit visit);

// Writes every keyword of the line in its canonical form; quoted text, bracketed names and comments
// are left alone. Answers whether the line changed.
bool CorrectKeywordCase(std::string& line, const KeywordSets& keywords);

// Replaces each tab by blanks up to the next multiple of `tabWidth` (columns counted from 0).
// Answers whether the line changed.
bool ExpandTabs(std::string& line, int tabWidth);

// The column at which a text column is shown, tabs expanded to `tabWidth`.
int DisplayColumn(std::string_view line, size_t column, int tabWidth);

// ---- implementation of the template ----

namespace detail {
size_t ScanQuoted(std::string_view line, size_t start, char close);
size_t ScanWord(std::string_view line, size_t start);
} // namespace detail

template <typename Visit>
void ScanCodeLine(std::string_view line, const KeywordSets& keywords, Visit visit)
{
    size_t plainStart = 0;
    auto flushPlain = [&](size_t end) {
        if (end > plainStart)
            visit(CodeToken{TokenKind::Plain, plainStart, end - plainStart});
    };
    size_t i = 0;
    while (i < line.size()) {
        char c = line[i];
        if (c == '"' || c == '[') {
            size_t end = detail::ScanQuoted(line, i, c == '"' ? '"' : ']');
            flushPlain(i);
            visit(CodeToken{c == '"' ? TokenKind::String : TokenKind::Bracketed, i, end - i});
            i = plainStart = end;
            continue;
        }
        if (c == '\'') {
            flushPlain(i);
            visit(CodeToken{TokenKind::Comment, i, line.size() - i});
            return;
        }
        bool dotWord = c == '.' && (i == 0 || line[i - 1] != '.') && i + 1 < line.size() && IsWordCharacter(line[i + 1]);
        if (IsWordCharacter(c) || dotWord) {
            size_t end = detail::ScanWord(line, dotWord ? i + 1 : i);
            KeywordSets::Match match = keywords.Find(line.substr(i, end - i));
            if (match.set >= 0) {
                flushPlain(i);
                if (match.canonical == "Rem") {
                    visit(CodeToken{TokenKind::Comment, i, line.size() - i, match.set, match.canonical});
                    return;
                }
                visit(CodeToken{TokenKind::Keyword, i, end - i, match.set, match.canonical});
                plainStart = end;
            }
            // A member after a dot that is no keyword is a name, never a keyword.
            i = end;
            continue;
        }
        ++i;
    }
    flushPlain(line.size());
}

} // namespace brannoc::ide
