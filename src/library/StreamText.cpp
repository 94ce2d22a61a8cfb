#include "library/StreamText.h"

#include "host/AnsiText.h"
#include "library/StreamTable.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <string>

namespace brannoc {

namespace {

bool IsBlank(int c) { return c == ' ' || c == '\t'; }

// The next byte of sequential text, or -1 at its end (the end of the file or the Ctrl-Z mark, which is
// not taken).
int NextTextByte(FileStream& stream)
{
    const int c = stream.PeekByte();
    if (c < 0 || (stream.IsSequential() && c == kTextEndMark))
        return -1;
    return stream.ReadByte();
}

int PeekTextByte(FileStream& stream)
{
    const int c = stream.PeekByte();
    return c < 0 || (stream.IsSequential() && c == kTextEndMark) ? -1 : c;
}

void SkipBlanks(FileStream& stream)
{
    while (IsBlank(PeekTextByte(stream)))
        (void)stream.ReadByte();
}

// Reads up to the closing delimiter; false at a CR or the end of the text first.
bool ReadDelimited(FileStream& stream, char delimiter, std::string& field)
{
    for (;;) {
        const int c = NextTextByte(stream);
        if (c < 0 || c == '\r')
            return false;
        if (c == delimiter) {
            // Two double quotes in a row stand for one.
            if (delimiter == '"' && PeekTextByte(stream) == '"') {
                (void)stream.ReadByte();
                field += '"';
                continue;
            }
            return true;
        }
        field += static_cast<char>(c);
    }
}

bool SetText(Variant& value, const std::string& bytes)
{
    return value.SetString(WideFromAnsi(bytes)) || RaiseValueError(kErrorOutOfMemory);
}

bool EqualsWord(std::string_view text, std::string_view word)
{
    if (text.size() != word.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char a = text[i] >= 'a' && text[i] <= 'z' ? static_cast<char>(text[i] - 32) : text[i];
        if (a != word[i])
            return false;
    }
    return true;
}

// The value of a "#...#" field: Null, False, True, Error n or a date.
bool HashFieldValue(const std::string& field, Variant& value)
{
    if (EqualsWord(field, "NULL")) {
        value.SetNull();
        return true;
    }
    if (EqualsWord(field, "TRUE") || EqualsWord(field, "FALSE")) {
        value.SetBoolean(EqualsWord(field, "TRUE"));
        return true;
    }
    if (field.size() > 6 && EqualsWord(std::string_view(field).substr(0, 6), "ERROR ")) {
        Variant number;
        if (!SetText(number, field.substr(6)) || !ParseInvariant(number, VT_I4, RaiseMode::kRaise))
            return false;
        if (number.Long() < 0 || number.Long() > 65535)
            return RaiseValueError(kErrorOverflow);
        value.SetError(kErrorValueBase + number.Long());
        return true;
    }
    return SetText(value, field) && ParseInvariant(value, VT_DATE, RaiseMode::kRaise);
}

// An unquoted field converted for its target.
bool PlainFieldValue(const std::string& field, FieldTarget target, Variant& value)
{
    if (field.empty()) {
        value.SetEmpty();
        return true;
    }
    if (!SetText(value, field))
        return false;
    switch (target) {
    case FieldTarget::kString: return true;
    case FieldTarget::kNumber: return ParseInvariant(value, 0, RaiseMode::kRaise);
    case FieldTarget::kVariant: (void)ParseInvariant(value, 0, RaiseMode::kQuiet); return true;
    }
    return true;
}

} // namespace

bool CheckRead(const FileStream& stream)
{
    return stream.CanRead() || RaiseValueError(kErrorNoReadAccess);
}

bool CheckTextWrite(const FileStream& stream)
{
    if (stream.Mode() == StreamMode::kInput || stream.Mode() == StreamMode::kRandom)
        return RaiseValueError(kErrorWrongStreamMode);
    return stream.CanWrite() || RaiseValueError(kErrorNoWriteAccess);
}

bool WriteStreamText(FileStream& stream, std::wstring_view text)
{
    const std::string bytes = AnsiFromWide(text);
    return stream.WriteBytes(bytes.data(), bytes.size()) || RaiseValueError(kErrorFileOperation);
}

bool ReadInputField(FileStream& stream, FieldTarget target, Variant& value)
{
    if (stream.Mode() != StreamMode::kInput)
        return RaiseValueError(kErrorWrongStreamMode);
    if (!CheckRead(stream))
        return false;
    if (PeekTextByte(stream) < 0)
        return RaiseValueError(kErrorReadPastEnd);
    SkipBlanks(stream);
    std::string field;
    const int first = PeekTextByte(stream);
    bool quoted = false;
    bool hashed = false;
    if (first == '"' || first == '#') {
        (void)stream.ReadByte();
        if (!ReadDelimited(stream, static_cast<char>(first), field))
            return RaiseValueError(kErrorInputMismatch);
        quoted = first == '"';
        hashed = first == '#';
    } else {
        for (int c = PeekTextByte(stream); c >= 0 && c != ',' && c != '\r'; c = PeekTextByte(stream)) {
            if (target == FieldTarget::kNumber && IsBlank(c))
                break;
            field += static_cast<char>(stream.ReadByte());
        }
        if (target != FieldTarget::kNumber) {
            while (!field.empty() && IsBlank(static_cast<unsigned char>(field.back())))
                field.pop_back();
        }
    }
    // After the field: blanks, then a ",", a line end or the end of the text.
    SkipBlanks(stream);
    const int next = PeekTextByte(stream);
    if (next == ',') {
        (void)stream.ReadByte();
    } else if (next == '\r') {
        (void)stream.ReadByte();
        if (PeekTextByte(stream) == '\n')
            (void)stream.ReadByte();
    } else if (next >= 0) {
        return RaiseValueError(kErrorInputMismatch);
    }
    if (quoted)
        return SetText(value, field);
    if (hashed)
        return HashFieldValue(field, value);
    return PlainFieldValue(field, target, value);
}

bool ReadStreamLine(FileStream& stream, Variant& value)
{
    if (stream.Mode() != StreamMode::kInput && stream.Mode() != StreamMode::kBinary)
        return RaiseValueError(kErrorWrongStreamMode);
    if (!CheckRead(stream))
        return false;
    if (PeekTextByte(stream) < 0)
        return RaiseValueError(kErrorReadPastEnd);
    std::string line;
    for (int c = NextTextByte(stream); c >= 0 && c != '\r'; c = NextTextByte(stream))
        line += static_cast<char>(c);
    if (PeekTextByte(stream) == '\n')
        (void)stream.ReadByte();
    return SetText(value, line);
}

} // namespace brannoc
