#include "automation/ClassDescription.h"

#include <cstdint>
#include <set>

namespace brannoc::automation {
namespace {

constexpr size_t kMaxIdentifier = 63;
constexpr size_t kMaxShownLine = 200;

const wchar_t kExpectingType[] =
    L"Expecting '~', '%', '&', '!', '#', '^', '@', '$', '*', '+', '?' or As type";
const wchar_t kExpectingTypeName[] = L"Expecting 'Boolean', 'Byte', 'Integer', 'Long', 'Single', 'Double', "
                                     L"'Date', 'Currency', 'String', 'Object', 'Unknown' or 'Variant'";

struct TypeRow {
    wchar_t character;
    const wchar_t* name;
    VARTYPE type;
};

const TypeRow kTypes[] = {
    {L'~', L"Boolean", VT_BOOL}, {L'/', L"Byte", VT_UI1},       {L'%', L"Integer", VT_I2},
    {L'&', L"Long", VT_I4},      {L'!', L"Single", VT_R4},      {L'#', L"Double", VT_R8},
    {L'^', L"Date", VT_DATE},    {L'@', L"Currency", VT_CY},    {L'$', L"String", VT_BSTR},
    {L'*', L"Object", VT_DISPATCH}, {L'+', L"Unknown", VT_UNKNOWN}, {L'?', L"Variant", VT_VARIANT},
};

bool SameText(std::wstring_view a, std::wstring_view b)
{
    return a.size() == b.size() &&
           CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
               CSTR_EQUAL;
}

const TypeRow* TypeOfCharacter(wchar_t character)
{
    for (const TypeRow& row : kTypes)
        if (row.character == character)
            return &row;
    return nullptr;
}

const TypeRow* TypeOfName(std::wstring_view name)
{
    for (const TypeRow& row : kTypes)
        if (SameText(row.name, name))
            return &row;
    return nullptr;
}

bool IsLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }
bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsHexDigit(wchar_t c) { return IsDigit(c) || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F'); }
bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

struct Token {
    enum class Kind { End, Number, Identifier, Character } kind = Kind::End;
    size_t position = 0;
    std::wstring_view text;
    std::uint64_t number = 0;
    bool tooBig = false;

    bool Is(wchar_t character) const { return kind == Kind::Character && text[0] == character; }
    bool IsWord(const wchar_t* word) const { return kind == Kind::Identifier && SameText(text, word); }
};

// Splits one line into tokens; a ";" ends the line.
class LineTokens final {
public:
    explicit LineTokens(std::wstring_view line) : m_line(line) { m_current = Read(); }

    const Token& Peek() const { return m_current; }
    Token Take()
    {
        Token token = m_current;
        m_current = Read();
        return token;
    }

private:
    Token Read()
    {
        while (m_next < m_line.size() && IsBlank(m_line[m_next]))
            ++m_next;
        Token token;
        token.position = m_next;
        if (m_next >= m_line.size() || m_line[m_next] == L';')
            return token;
        size_t start = m_next;
        wchar_t c = m_line[m_next];
        if (IsDigit(c))
            ReadNumber(token);
        else if (IsLetter(c)) {
            token.kind = Token::Kind::Identifier;
            while (m_next < m_line.size() && (IsLetter(m_line[m_next]) || IsDigit(m_line[m_next])))
                ++m_next;
        } else {
            token.kind = Token::Kind::Character;
            ++m_next;
        }
        token.text = m_line.substr(start, m_next - start);
        return token;
    }

    // Decimal digits, or "0x" and up to eight hexadecimal digits.
    void ReadNumber(Token& token)
    {
        token.kind = Token::Kind::Number;
        if (m_line[m_next] == L'0' && m_next + 1 < m_line.size() && (m_line[m_next + 1] | 0x20) == L'x') {
            m_next += 2;
            int digits = 0;
            for (; m_next < m_line.size() && IsHexDigit(m_line[m_next]); ++m_next, ++digits) {
                wchar_t d = m_line[m_next];
                unsigned value = IsDigit(d) ? d - L'0' : (d | 0x20) - L'a' + 10;
                token.number = (token.number << 4) | value;
            }
            token.tooBig = digits > 8;
            return;
        }
        for (; m_next < m_line.size() && IsDigit(m_line[m_next]); ++m_next) {
            token.number = token.number * 10 + (m_line[m_next] - L'0');
            if (token.number > 0xFFFFFFFFull)
                token.tooBig = true;
        }
    }

    std::wstring_view m_line;
    size_t m_next = 0;
    Token m_current;
};

// Reads the member lines of one description; the first error stops it.
class DescriptionReader final {
public:
    DescriptionReader(bool ansi, ClassDescription& description, DescriptionError& error)
        : m_ansi(ansi), m_description(description), m_error(error)
    {
    }

    bool ReadLine(std::wstring_view line, bool first)
    {
        m_line = line;
        LineTokens tokens(line);
        if (tokens.Peek().kind == Token::Kind::End)
            return true;
        if (first && tokens.Peek().Is(L'=')) {
            tokens.Take();
            if (tokens.Peek().kind == Token::Kind::Identifier)
                m_description.interfaceName = std::wstring(tokens.Take().text);
            return ExpectEnd(tokens);
        }
        return ReadMember(tokens);
    }

private:
    bool Fail(size_t position, std::wstring message)
    {
        m_error.line = std::wstring(m_line);
        m_error.position = position;
        m_error.message = std::move(message);
        return false;
    }

    bool ExpectEnd(LineTokens& tokens)
    {
        if (tokens.Peek().kind != Token::Kind::End)
            return Fail(tokens.Peek().position, L"Unexpected text");
        return true;
    }

    // identifier, at most 63 characters
    bool ReadIdentifier(LineTokens& tokens, std::wstring& name)
    {
        const Token& token = tokens.Peek();
        if (token.kind != Token::Kind::Identifier || token.text.size() > kMaxIdentifier)
            return Fail(token.position, L"Expecting an identifier");
        name = std::wstring(tokens.Take().text);
        return true;
    }

    // type-name after "As"
    bool ReadTypeName(LineTokens& tokens, VARTYPE& type)
    {
        const TypeRow* row = tokens.Peek().kind == Token::Kind::Identifier ? TypeOfName(tokens.Peek().text) : nullptr;
        if (!row)
            return Fail(tokens.Peek().position, kExpectingTypeName);
        tokens.Take();
        type = row->type;
        return true;
    }

    // type = type-character | "As" type-name
    bool ReadType(LineTokens& tokens, VARTYPE& type)
    {
        const Token& token = tokens.Peek();
        if (token.kind == Token::Kind::Character) {
            if (const TypeRow* row = TypeOfCharacter(token.text[0])) {
                tokens.Take();
                type = row->type;
                return true;
            }
        }
        if (token.IsWord(L"As")) {
            tokens.Take();
            return ReadTypeName(tokens, type);
        }
        return Fail(token.position, kExpectingType);
    }

    // param = [ "ByRef" ] name type
    bool ReadParameter(LineTokens& tokens, std::vector<ParameterRecord>& parameters)
    {
        bool byRef = false;
        if (tokens.Peek().IsWord(L"ByRef")) {
            byRef = true;
            tokens.Take();
        }
        size_t position = tokens.Peek().position;
        ParameterRecord parameter;
        if (!ReadIdentifier(tokens, parameter.name) || !ReadType(tokens, parameter.type))
            return false;
        if (byRef) {
            if (m_ansi && parameter.type == VT_BSTR)
                return Fail(position, L"Ascii interface can't handle ByRef String param.");
            parameter.type |= VT_BYREF;
        }
        parameters.push_back(std::move(parameter));
        return true;
    }

    // "(" param { "," param } ")"   (the "(" already taken)
    bool ReadParenthesisedParameters(LineTokens& tokens, std::vector<ParameterRecord>& parameters)
    {
        if (tokens.Peek().Is(L')')) {
            tokens.Take();
            return true;
        }
        for (;;) {
            if (!ReadParameter(tokens, parameters))
                return false;
            if (tokens.Peek().Is(L')')) {
                tokens.Take();
                return true;
            }
            if (!tokens.Peek().Is(L','))
                return Fail(tokens.Peek().position, L"Expecting ')'");
            tokens.Take();
        }
    }

    // param { "," param }   (directly after the name, up to "=" or the end)
    bool ReadBareParameters(LineTokens& tokens, std::vector<ParameterRecord>& parameters)
    {
        for (;;) {
            if (!ReadParameter(tokens, parameters))
                return false;
            const Token& next = tokens.Peek();
            if (next.kind == Token::Kind::End || next.Is(L'='))
                return true;
            if (!next.Is(L','))
                return Fail(next.position, L"Expecting ','");
            tokens.Take();
        }
    }

    // [ dispid ":" ]
    bool ReadExplicitId(LineTokens& tokens, bool& hasId, DISPID& id)
    {
        if (tokens.Peek().kind != Token::Kind::Number)
            return true;
        Token number = tokens.Take();
        if (number.tooBig)
            return Fail(number.position, L"Number is too big");
        if (!tokens.Peek().Is(L':'))
            return Fail(tokens.Peek().position, L"Expecting ':'");
        tokens.Take();
        hasId = true;
        id = static_cast<DISPID>(static_cast<std::uint32_t>(number.number));
        return true;
    }

    // member = [ dispid ":" ] name [ type-suffix ] [ params ] [ result ] [ "=" [ value-name type ] ]
    bool ReadMember(LineTokens& tokens)
    {
        bool hasId = false;
        MemberRecord get;
        if (!ReadExplicitId(tokens, hasId, get.id))
            return false;
        size_t namePosition = tokens.Peek().position;
        if (!ReadIdentifier(tokens, get.name))
            return false;
        if (!hasId)
            get.id = DispatchIdFromName(get.name);
        bool hasSuffix = false;
        if (tokens.Peek().kind == Token::Kind::Character) {
            if (const TypeRow* row = TypeOfCharacter(tokens.Peek().text[0])) {
                tokens.Take();
                get.resultType = row->type;
                hasSuffix = true;
            }
        }
        if (!ReadParametersAndResult(tokens, hasSuffix, get))
            return false;
        if (m_usedIds.count(get.id))
            return Fail(namePosition, L"Same dispatch id used twice. " + get.name);
        m_usedIds.insert(get.id);
        get.methodIndex = m_nextSlot++;
        if (!tokens.Peek().Is(L'=')) {
            if (!ExpectEnd(tokens))
                return false;
            m_description.members.push_back(std::move(get));
            return true;
        }
        tokens.Take();
        get.kind = DISPATCH_PROPERTYGET;
        if (tokens.Peek().kind == Token::Kind::End) {
            m_description.members.push_back(std::move(get));
            return true;
        }
        return ReadPropertyPut(tokens, std::move(get));
    }

    bool ReadParametersAndResult(LineTokens& tokens, bool hasSuffix, MemberRecord& member)
    {
        if (tokens.Peek().Is(L'(')) {
            tokens.Take();
            if (!ReadParenthesisedParameters(tokens, member.parameters))
                return false;
            const Token& next = tokens.Peek();
            if (!hasSuffix && (next.IsWord(L"As") || (next.kind == Token::Kind::Character && TypeOfCharacter(next.text[0]))))
                return ReadType(tokens, member.resultType);
            return true;
        }
        if (hasSuffix)
            return true;
        if (tokens.Peek().IsWord(L"As")) {
            tokens.Take();
            return ReadTypeName(tokens, member.resultType);
        }
        if (tokens.Peek().kind == Token::Kind::Identifier)
            return ReadBareParameters(tokens, member.parameters);
        return true;
    }

    // value-name type   (after "="): the put half of the property
    bool ReadPropertyPut(LineTokens& tokens, MemberRecord get)
    {
        size_t valuePosition = tokens.Peek().position;
        ParameterRecord value;
        if (!ReadIdentifier(tokens, value.name) || !ReadType(tokens, value.type) || !ExpectEnd(tokens))
            return false;
        if (value.type != get.resultType)
            return Fail(valuePosition, L"Property put and get types must be the same.");
        MemberRecord put;
        put.name = get.name;
        put.id = get.id;
        put.methodIndex = m_nextSlot++;
        put.kind = value.type == VT_DISPATCH  ? DISPATCH_PROPERTYPUTREF
                   : value.type == VT_VARIANT ? DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF
                                              : DISPATCH_PROPERTYPUT;
        put.parameters = get.parameters;
        put.parameters.push_back(std::move(value));
        m_description.members.push_back(std::move(get));
        m_description.members.push_back(std::move(put));
        return true;
    }

    bool m_ansi;
    ClassDescription& m_description;
    DescriptionError& m_error;
    std::wstring_view m_line;
    UINT m_nextSlot = 0;
    std::set<DISPID> m_usedIds;
};

bool IsLineBreak(wchar_t c) { return c == L'\n' || c == L'\r' || c == L'|'; }

} // namespace

DISPID DispatchIdFromName(std::wstring_view name)
{
    if (SameText(name, L"_NewEnum"))
        return DISPID_NEWENUM;
    if (SameText(name, L"Evaluate"))
        return DISPID_EVALUATE;
    if (SameText(name, L"Item") || SameText(name, L"Value"))
        return DISPID_VALUE;
    std::uint32_t h = 0;
    for (wchar_t character : name) {
        if (character >= L'a' && character <= L'z')
            character = static_cast<wchar_t>(character - L'a' + L'A');
        std::int32_t c = static_cast<signed char>(static_cast<unsigned char>(character));
        h = (((h & 0x3FFFFFFu) << 5) | (h >> 26)) ^ (static_cast<std::uint32_t>(c) & 0x7FFFFFFFu);
    }
    return h == 0 ? 0x40000000 : static_cast<DISPID>(h);
}

bool ParseClassDescription(std::wstring_view text, bool ansi, ClassDescription& description, DescriptionError& error)
{
    DescriptionReader reader(ansi, description, error);
    bool first = true;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = start;
        while (end < text.size() && !IsLineBreak(text[end]))
            ++end;
        std::wstring_view line = text.substr(start, end - start);
        if (!reader.ReadLine(line, first))
            return false;
        if (line.find_first_not_of(L" \t") != std::wstring_view::npos)
            first = false;
        start = end + 1;
    }
    return true;
}

std::wstring DescriptionError::Text() const
{
    std::wstring shown = line.substr(0, kMaxShownLine);
    shown.insert(position < shown.size() ? position : shown.size(), L"<here>");
    return shown + L"\n\n" + message;
}

void ShowDescriptionError(const DescriptionError& error)
{
    std::wstring text = error.Text();
    MessageBoxW(nullptr, text.c_str(), L"Method Definition Error", MB_TASKMODAL | MB_OK);
}

} // namespace brannoc::automation
