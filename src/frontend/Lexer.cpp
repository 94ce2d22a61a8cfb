#include "frontend/Lexer.h"

#include "frontend/CharClasses.h"
#include "host/ThisModule.h"

#include <windows.h>

namespace brannoc {
namespace {

constexpr char kEmptyText[] = "";

bool IsLineEnd(char c) { return c == '\r' || c == '\0'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::wstring Widen(std::string_view text)
{
    if (text.empty())
        return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

} // namespace

void Lexer::SetText(const char* text, std::string_view moduleName)
{
    m_textStart = text != nullptr ? text : kEmptyText;
    m_lineStarts.assign(1, m_textStart);
    m_module.assign(moduleName);
    m_statementHasError = false;
    StartLine(m_textStart, 1);
}

void Lexer::SeekLine(int line)
{
    m_statementHasError = false;
    StartLine(LineStart(line), line);
}

const char* Lexer::LineStart(int line)
{
    // Lines found so far are kept, so the parser's many seeks (each procedure's body, then its end)
    // cost one pass over the text in all instead of one from the start per seek.
    const std::size_t wanted = line < 1 ? 0 : static_cast<std::size_t>(line - 1);
    while (m_lineStarts.size() <= wanted) {
        const char* position = m_lineStarts.back();
        if (*position == '\0')
            return position;
        while (!IsLineEnd(*position))
            ++position;
        if (*position == '\r' && *++position == '\n')
            ++position;
        m_lineStarts.push_back(position);
    }
    return m_lineStarts[wanted];
}

void Lexer::StartLine(const char* position, int line)
{
    m_cursor = position;
    m_cursorLineStart = position;
    m_cursorLine = line;
    m_following = '\0';
    SkipBlanksAndContinuations();
    NextToken();
}

bool Lexer::SkipStatement()
{
    const char* position = m_cursor;
    while (!IsLineEnd(*position))
        ++position;
    m_statementHasError = false;
    if (*position == '\0') {
        m_cursor = position;
        NextToken();
        return false;
    }
    if (*++position == '\n')
        ++position;
    StartLine(position, m_cursorLine + 1);
    return *position != '\0';
}

bool Lexer::AtEnd() const
{
    return m_memoryExhausted || (m_kind == Token::EndOfLine && *m_cursor == '\0');
}

bool Lexer::Accept(Token token)
{
    if (m_kind != token)
        return false;
    NextToken();
    return true;
}

bool Lexer::ExpectToken(Token token)
{
    if (Accept(token))
        return true;
    SignalError(CompileMessage::Expecting, KeywordText(token));
    return false;
}

void Lexer::Append(char c)
{
    if (m_length < kMaxTokenLength)
        m_text[m_length++] = c;
}

void Lexer::SkipBlanksAndContinuations()
{
    for (;;) {
        while (IsBlank(*m_cursor))
            ++m_cursor;
        // " _" at the end of a line joins the next line to this statement.
        if (m_cursor == m_textStart || m_cursor[-1] != ' ' || m_cursor[0] != '_' || m_cursor[1] != '\r')
            return;
        m_cursor += 2;
        if (*m_cursor == '\n')
            ++m_cursor;
        m_cursorLineStart = m_cursor;
        ++m_cursorLine;
    }
}

// Reads the next token into the state. Never allocates: the text lives in the fixed buffer.
void Lexer::NextToken()
{
    m_previousFollowing = m_following;
    m_following = '\0';
    m_lineStart = m_cursorLineStart;
    m_line = m_cursorLine;
    m_tokenStart = m_cursor;
    m_length = 0;
    if (IsLineEnd(*m_cursor)) {
        m_kind = Token::EndOfLine;
        m_text[0] = '\0';
        m_tokenEnd = m_cursor;
        return;
    }
    const CharClasses& classes = CharClasses::Get();
    const char first = *m_cursor++;
    m_text[m_length++] = first;
    m_kind = static_cast<Token>(classes.ClassOf(first));
    switch (m_kind) {
    case Token::Operator: {
        const char second = *m_cursor;
        if (first == ':')
            m_kind = second == '=' ? Token::ColonEqual : Token::Colon;
        else if (first == '<')
            m_kind = second == '=' ? Token::LessEqual : second == '>' ? Token::NotEqual : Token::Less;
        else
            m_kind = second == '=' ? Token::GreaterEqual : Token::Greater;
        if (m_kind == Token::ColonEqual || m_kind == Token::LessEqual || m_kind == Token::NotEqual ||
            m_kind == Token::GreaterEqual)
            m_text[m_length++] = *m_cursor++;
        break;
    }
    case Token::LiteralNumber:
        ScanNumber();
        break;
    case Token::Ampersand: {
        const char base = *m_cursor;
        if (base == 'H' || base == 'h' || base == 'O' || base == 'o')
            ScanHexOrOctal();
        break;
    }
    case Token::Dot:
        if (IsDigit(*m_cursor)) {
            // ".5" reads as "0.5": the scan restarts at the point after a leading 0.
            m_kind = Token::LiteralNumber;
            m_text[0] = '0';
            --m_cursor;
            ScanNumber();
        }
        break;
    case Token::LiteralString:
        ScanString();
        break;
    case Token::Id:
        if (first == '[')
            ScanBracketedName();
        else
            ScanIdentifier();
        break;
    default:
        break;
    }
    m_text[m_length] = '\0';
    m_tokenEnd = m_cursor;
    m_following = *m_cursor;
    SkipBlanksAndContinuations();
}

// Digits, an optional fraction and an optional D/E exponent with sign. The first character is stored.
void Lexer::ScanNumber()
{
    while (IsDigit(*m_cursor) && m_length < kMaxTokenLength)
        Append(*m_cursor++);
    if (*m_cursor == '.') {
        Append(*m_cursor++);
        while (IsDigit(*m_cursor) && m_length < kMaxTokenLength)
            Append(*m_cursor++);
    }
    const char exponent = *m_cursor;
    if (exponent == 'D' || exponent == 'E' || exponent == 'd' || exponent == 'e') {
        Append(*m_cursor++);
        if (*m_cursor == '+' || *m_cursor == '-')
            Append(*m_cursor++);
        while (IsDigit(*m_cursor) && m_length < kMaxTokenLength)
            Append(*m_cursor++);
    }
}

// "&H..." or "&O...": the base letter as written, then identifier characters upper-cased. A trailing
// "&" type suffix is not an identifier character and stays for the parser.
void Lexer::ScanHexOrOctal()
{
    const CharClasses& classes = CharClasses::Get();
    m_kind = Token::LiteralNumber;
    Append(*m_cursor++);
    while (classes.IsIdentifierChar(*m_cursor) && m_length < kMaxTokenLength)
        Append(classes.Upper(*m_cursor++));
}

// The contents between the quotes; "" stands for one quote. An unterminated string ends at the line.
void Lexer::ScanString()
{
    m_length = 0;
    while (!IsLineEnd(*m_cursor) && m_length < kMaxTokenLength) {
        if (*m_cursor == '"') {
            if (m_cursor[1] != '"') {
                ++m_cursor;
                return;
            }
            ++m_cursor;
        }
        Append(*m_cursor++);
    }
}

void Lexer::ScanIdentifier()
{
    const CharClasses& classes = CharClasses::Get();
    while (classes.IsIdentifierChar(*m_cursor) && m_length < kMaxTokenLength)
        Append(*m_cursor++);
    m_text[m_length] = '\0';
    m_kind = LookupWord(Text());
}

// "[any text]": "]]" stands for "]" and "[[" for "["; the line end also closes the name. "[]" is kept
// as the two characters. The result is still looked up as a keyword.
void Lexer::ScanBracketedName()
{
    m_length = 0;
    bool closed = false;
    while (!IsLineEnd(*m_cursor) && m_length < kMaxTokenLength) {
        const char c = *m_cursor;
        if (c == ']') {
            if (m_cursor[1] != ']') {
                ++m_cursor;
                closed = true;
                break;
            }
            ++m_cursor;
        } else if (c == '[' && m_cursor[1] == '[') {
            ++m_cursor;
        }
        Append(*m_cursor++);
    }
    if (m_length == 0 && closed) {
        m_text[m_length++] = '[';
        m_text[m_length++] = ']';
    }
    m_text[m_length] = '\0';
    m_kind = LookupWord(Text());
}

bool Lexer::ScanDateLiteral()
{
    // Only a space right after the "#" keeps it a "#" token (as in Print # 1); a tab starts a literal.
    if (m_kind != Token::Hash || m_tokenStart[1] == ' ' || IsLineEnd(m_tokenStart[1]))
        return false;
    const char* end = m_tokenStart + 1;
    while (!IsLineEnd(*end) && *end != '#' && end - m_tokenStart <= kMaxTokenLength)
        ++end;
    if (*end != '#')
        return false;
    m_length = 0;
    for (const char* p = m_tokenStart + 1; p < end; ++p)
        Append(*p);
    m_text[m_length] = '\0';
    m_kind = Token::LiteralDate;
    m_cursor = end + 1;
    m_cursorLineStart = m_lineStart;
    m_cursorLine = m_line;
    m_tokenEnd = m_cursor;
    m_following = *m_cursor;
    SkipBlanksAndContinuations();
    return true;
}

std::string_view Lexer::LineText() const
{
    const char* end = m_lineStart;
    while (!IsLineEnd(*end))
        ++end;
    return {m_lineStart, static_cast<std::size_t>(end - m_lineStart)};
}

std::string_view Lexer::RestOfLine() const
{
    const char* end = m_tokenStart;
    while (!IsLineEnd(*end))
        ++end;
    return {m_tokenStart, static_cast<std::size_t>(end - m_tokenStart)};
}

void Lexer::ResetErrors()
{
    m_errorCount = 0;
    m_statementHasError = false;
}

void Lexer::SignalError(CompileMessage message, std::string_view argument)
{
    Report(message, argument, m_line, m_lineStart, m_tokenStart);
}

void Lexer::SignalErrorAt(CompileMessage message, std::string_view argument, const char* position)
{
    const char* lineStart = m_textStart;
    int line = 1;
    for (const char* p = m_textStart; p < position; ++p) {
        if (*p == '\r') {
            ++line;
            if (p[1] == '\n')
                ++p;
            lineStart = p + 1;
        }
    }
    Report(message, argument, line, lineStart, position);
}

void Lexer::Report(CompileMessage message, std::string_view argument, int line, const char* lineStart,
                   const char* tokenStart)
{
    if (m_statementHasError || m_errorCount >= m_errorLimit)
        return;
    m_statementHasError = true;
    ++m_errorCount;
    if (m_sink == nullptr)
        return;
    CompileError error;
    error.number = MessageNumber(message);
    error.message = LoadResourceString(error.number);
    if (!argument.empty() || message == CompileMessage::Expecting) {
        // A message with an argument reads: text, one blank, the argument in single quotes. "Expecting "
        // already ends with its blank.
        if (error.message.empty() || error.message.back() != L' ')
            error.message += L' ';
        error.message += L"'";
        error.message += Widen(argument);
        error.message += L"'";
    }
    error.module = m_module;
    const char* end = lineStart;
    while (!IsLineEnd(*end))
        ++end;
    error.lineText.assign(lineStart, end);
    error.line = line;
    error.offset = static_cast<int>(tokenStart - lineStart);
    m_sink->Report(error);
}

void Lexer::SetBlockedKeywords(std::string_view words)
{
    m_blocked.reset();
    std::size_t position = 0;
    while (position < words.size()) {
        while (position < words.size() && IsBlank(words[position]))
            ++position;
        std::size_t end = position;
        while (end < words.size() && !IsBlank(words[end]))
            ++end;
        if (end > position) {
            const Token token = LookupKeyword(words.substr(position, end - position));
            if (token != Token::Id)
                m_blocked.set(static_cast<std::size_t>(TokenNumber(token)));
        }
        position = end;
    }
}

std::string Lexer::BlockedKeywords() const
{
    std::string list;
    for (int number = 1; number < kTokenCount; ++number) {
        if (m_blocked.test(static_cast<std::size_t>(number))) {
            list += KeywordText(number);
            list += ' ';
        }
    }
    return list;
}

std::string Lexer::CanonicalBlockedKeywords(std::string_view words)
{
    Lexer lexer;
    lexer.SetBlockedKeywords(words);
    return lexer.BlockedKeywords();
}

namespace {

std::string JoinUnblocked(const std::bitset<344>& blocked, int first, int last)
{
    std::string list;
    for (int number = first; number <= last; ++number) {
        if (blocked.test(static_cast<std::size_t>(number)))
            continue;
        if (!list.empty())
            list += ' ';
        list += KeywordText(number);
    }
    return list;
}

} // namespace

std::string Lexer::Keywords() const { return JoinUnblocked(m_blocked, kFirstReservedWord, kLastReservedWord); }

std::string Lexer::RecognisedNames() const
{
    return JoinUnblocked(m_blocked, kFirstRecognisedName, kLastRecognisedName);
}

std::string Lexer::HostKeywordList() const
{
    auto line = [](std::string words) {
        if (!words.empty())
            words += ' ';
        return words + "\r\n";
    };
    return line(Keywords()) + ".Print \r\n" + line(RecognisedNames());
}

} // namespace brannoc
