#pragma once
// The lexer: turns a module's 8-bit text into tokens in place, one token of look-ahead, and keeps the
// per-engine compile state that belongs to it (error limit and count, one error per statement, the
// blocked-keyword bitmap).
#include "frontend/CompileError.h"
#include "frontend/CompileMessage.h"
#include "frontend/Token.h"

#include <bitset>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc {

class Lexer final {
public:
    static constexpr int kMaxTokenLength = 1023;

    // Attaches the lexer to a NUL-terminated text (or detaches with nullptr) and positions it at line 1
    // with the first token read. The text must outlive the attachment. The module name goes into error
    // records.
    void SetText(const char* text, std::string_view moduleName = {});
    // Positions the lexer at the start of line `line` (1-based) and reads its first token.
    void SeekLine(int line);

    void NextToken();
    bool Accept(Token token);
    // As Accept; on a mismatch reports "Expecting " with the expected token's text and returns false.
    [[nodiscard]] bool ExpectToken(Token token);
    // Skips to the start of the next line, clears the statement's error flag and reads the first token
    // of that line. Returns whether text remains.
    bool SkipStatement();
    // True at the NUL that ends the text, or when memory is exhausted.
    bool AtEnd() const;
    // When the current token is "#" directly followed by anything but a space or the line end, tries to
    // read a date literal up to the next "#" on the line; on success the token becomes LiteralDate with
    // the text between the marks.
    bool ScanDateLiteral();

    Token Kind() const { return m_kind; }
    int KindNumber() const { return TokenNumber(m_kind); }
    std::string_view Text() const { return {m_text, m_length}; }
    const char* TextData() const { return m_text; }
    int Line() const { return m_line; }
    int Offset() const { return static_cast<int>(m_tokenStart - m_lineStart); }
    const char* TokenStart() const { return m_tokenStart; }
    const char* TokenEnd() const { return m_tokenEnd; }
    const char* TextStart() const { return m_textStart; }
    // The character right after the current token and after the previous one (type suffixes).
    char FollowingChar() const { return m_following; }
    char PreviousFollowingChar() const { return m_previousFollowing; }
    // The text of the current token's line, up to its CR or the end of the text.
    std::string_view LineText() const;
    // From the current token to the end of the line.
    std::string_view RestOfLine() const;
    // The line number of the next physical line after the cursor's line (where SkipStatement goes).
    int CursorLine() const { return m_cursorLine; }

    // Error limit (at least 1), error count and the per-statement flag.
    int ErrorLimit() const { return m_errorLimit; }
    void SetErrorLimit(int limit) { m_errorLimit = limit < 1 ? 1 : limit; }
    int ErrorCount() const { return m_errorCount; }
    bool ErrorLimitReached() const { return m_errorCount >= m_errorLimit; }
    void ResetErrors();
    // Starts a new statement for error reporting without moving.
    void ClearStatementError() { m_statementHasError = false; }
    void SetErrorSink(CompileErrorSink* sink) { m_sink = sink; }
    // Reports a compile error at the current token when the statement has none yet and the limit is not
    // reached; otherwise drops it.
    void SignalError(CompileMessage message, std::string_view argument = {});
    // As SignalError, at the line that contains `position` (offset counted from that line's start).
    void SignalErrorAt(CompileMessage message, std::string_view argument, const char* position);

    void SetMemoryExhausted(bool exhausted) { m_memoryExhausted = exhausted; }
    bool MemoryExhausted() const { return m_memoryExhausted; }

    // Blocked keywords.
    bool IsBlocked(Token token) const { return m_blocked.test(static_cast<std::size_t>(TokenNumber(token))); }
    // Clears the bitmap and blocks each blank-separated word that is a keyword; other words are ignored.
    void SetBlockedKeywords(std::string_view words);
    // Every blocked token 1 to 339, each followed by a blank.
    std::string BlockedKeywords() const;
    // The canonical form of a blocked-keyword list: its keywords in keyword-number order, each followed
    // by a blank (what BlockedKeywords gives after SetBlockedKeywords(words)).
    static std::string CanonicalBlockedKeywords(std::string_view words);
    // Reserved words (31 to 162) that are not blocked, separated by blanks.
    std::string Keywords() const;
    // Recognised names (164 to 339) that are not blocked, separated by blanks.
    std::string RecognisedNames() const;
    // The keyword list a host reads: three lines ended by CR LF: the reserved words, then ".Print", then
    // the other built-in names (the language object's members among them), each word followed by one
    // blank; blocked words are left out.
    std::string HostKeywordList() const;

private:
    void StartLine(const char* position, int line);
    void SkipBlanksAndContinuations();
    void Append(char c);
    void ScanNumber();
    void ScanHexOrOctal();
    void ScanString();
    void ScanIdentifier();
    void ScanBracketedName();
    void Report(CompileMessage message, std::string_view argument, int line, const char* lineStart,
                const char* tokenStart);

    // The start of line `line` (1-based) in the attached text, or its terminating NUL past the end.
    const char* LineStart(int line);

    const char* m_textStart = nullptr;
    // Starts of the lines met so far: [0] is line 1.
    std::vector<const char*> m_lineStarts;
    std::string m_module;
    // The current token's line and the cursor's line (the next token's, after continuations).
    const char* m_lineStart = nullptr;
    int m_line = 0;
    const char* m_cursorLineStart = nullptr;
    int m_cursorLine = 0;
    const char* m_cursor = nullptr;
    const char* m_tokenStart = nullptr;
    const char* m_tokenEnd = nullptr;

    char m_text[kMaxTokenLength + 1] = {};
    std::size_t m_length = 0;
    Token m_kind = Token::EndOfLine;
    char m_following = '\0';
    char m_previousFollowing = '\0';

    bool m_statementHasError = false;
    int m_errorLimit = 1;
    int m_errorCount = 0;
    CompileErrorSink* m_sink = nullptr;
    bool m_memoryExhausted = false;

    std::bitset<344> m_blocked;
};

} // namespace brannoc
