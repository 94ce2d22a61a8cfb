#pragma once
// The small pieces of source syntax the dialog editor reads and writes on its own: the comment of a
// line, the words a line starts with, comma-separated arguments (commas inside strings and parentheses
// do not split), string literals with doubled inner quotes, and whole numbers.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

// A line taken apart at its comment: the code (right blanks removed) and the text after the apostrophe.
struct CodeAndComment {
    std::string code;
    std::string comment;
    bool hasComment = false;
};
CodeAndComment SplitComment(std::string_view line);

// The words (letters, digits, "_") at the start of a line, at most `count` of them; other characters
// between them end the scan unless they are blanks.
std::vector<std::string> LeadingWords(std::string_view line, size_t count);
// Whether the line's first words are `words`, compared without regard to case.
bool StartsWithWords(std::string_view line, const std::vector<std::string_view>& words);
bool EqualsNoCase(std::string_view a, std::string_view b);

// The text after the first `count` words and the blanks that follow them.
std::string_view AfterWords(std::string_view line, size_t count);

// Arguments separated by top-level commas, each with its outer blanks removed.
std::vector<std::string> SplitArguments(std::string_view text);

// A whole number written alone ("12", "-1"); nothing for anything else.
std::optional<int> ParseWholeNumber(std::string_view text);

// "text" with every inner quote doubled, and back; Unquoted answers nothing unless the whole argument is
// one string literal.
std::string Quoted(std::string_view text);
std::optional<std::string> Unquoted(std::string_view argument);

std::string_view TrimBlanks(std::string_view text);

// Physical lines of a text split at CR LF (or a lone LF); a final line without a line end counts.
std::vector<std::string> SplitTextLines(std::string_view text);

} // namespace brannoc::ide
