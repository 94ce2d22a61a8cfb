// Built-ins of file streams: FreeFile, EOF, LOF, Loc, Seek, FileAttr, Input and the instruction Reset.
#include "library/BuiltinGroups.h"

#include "host/AnsiText.h"
#include "library/BuiltinArguments.h"
#include "library/StreamTable.h"
#include "library/StreamText.h"
#include "values/ValueError.h"

#include <algorithm>
#include <string>

namespace brannoc {

namespace {

FileStream* StreamArgument(BuiltinArguments& arguments, int index)
{
    LONG number = 0;
    return arguments.Long(index, number) ? CurrentStream(number) : nullptr;
}

bool FreeFile(BuiltinArguments&, BuiltinResult& result)
{
    StreamTable* table = CurrentStreams();
    const int number = table ? table->FreeNumber() : StreamTable::kFirstFreeFileNumber;
    if (number == 0)
        return RaiseValueError(kErrorBadStreamNumber);
    result.SetInteger(static_cast<SHORT>(number));
    return true;
}

bool Eof(BuiltinArguments& arguments, BuiltinResult& result)
{
    FileStream* stream = StreamArgument(arguments, 0);
    if (!stream || !CheckRead(*stream))
        return false;
    result.SetInteger(stream->IsSequential() && stream->AtTextEnd() ? -1 : 0);
    return true;
}

bool Lof(BuiltinArguments& arguments, BuiltinResult& result)
{
    FileStream* stream = StreamArgument(arguments, 0);
    if (!stream)
        return false;
    const long long length = stream->Length();
    if (length < 0)
        return RaiseValueError(kErrorFileOperation);
    result.SetLong(static_cast<LONG>(length));
    return true;
}

bool Loc(BuiltinArguments& arguments, BuiltinResult& result)
{
    FileStream* stream = StreamArgument(arguments, 0);
    if (!stream)
        return false;
    if (stream->Mode() == StreamMode::kRandom)
        result.SetLong(stream->CurrentRecord() - 1);
    else if (stream->Mode() == StreamMode::kBinary)
        result.SetLong(static_cast<LONG>(stream->Position()));
    else
        result.SetLong(static_cast<LONG>(stream->Position() / 128));
    return true;
}

bool Seek(BuiltinArguments& arguments, BuiltinResult& result)
{
    FileStream* stream = StreamArgument(arguments, 0);
    if (!stream)
        return false;
    if (stream->Mode() == StreamMode::kRandom)
        result.SetLong(stream->CurrentRecord());
    else
        result.SetLong(static_cast<LONG>(stream->Position() + 1));
    return true;
}

bool FileAttr(BuiltinArguments& arguments, BuiltinResult& result)
{
    FileStream* stream = StreamArgument(arguments, 0);
    SHORT which = 0;
    if (!stream || !arguments.Integer(1, which))
        return false;
    if (which == 1)
        result.SetLong(static_cast<LONG>(stream->Mode()));
    else if (which == 2)
        result.SetLong(static_cast<LONG>(stream->SystemHandle()));
    else
        return RaiseValueError(kErrorInvalidArgument);
    return true;
}

bool Input(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG count = 0;
    if (!arguments.Long(0, count))
        return false;
    FileStream* stream = StreamArgument(arguments, 1);
    if (!stream)
        return false;
    if (stream->Mode() != StreamMode::kInput && stream->Mode() != StreamMode::kBinary)
        return RaiseValueError(kErrorWrongStreamMode);
    if (!CheckRead(*stream))
        return false;
    if (count < 0)
        return RaiseValueError(kErrorTypeMismatch);
    // A count beyond the bytes left fails before anything is read, so a huge count asks for no buffer.
    const long long start = stream->Position();
    const long long length = stream->Length();
    if (length >= 0 && count > length - start)
        return RaiseValueError(kErrorReadPastEnd);
    std::string bytes(static_cast<std::size_t>(count), '\0');
    long got = count ? stream->ReadBytes(bytes.data(), bytes.size()) : 0;
    // In a sequential stream the Ctrl-Z mark ends the file: the bytes from it on are not there to read.
    if (stream->IsSequential() && got > 0)
        got = static_cast<long>(std::find(bytes.begin(), bytes.begin() + got, char(kTextEndMark)) - bytes.begin());
    if (got < count) {
        // Nothing is taken when the file holds fewer bytes.
        stream->SetPosition(start);
        return RaiseValueError(kErrorReadPastEnd);
    }
    return result.SetString(WideFromAnsi(bytes));
}

bool Reset(BuiltinArguments&, BuiltinResult&)
{
    if (StreamTable* table = CurrentStreams())
        table->CloseAll();
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::FreeFile, ResultKind::kInteger, "", "", 0, 0, &FreeFile),
    Function(Token::Eof, ResultKind::kInteger, "%", "StreamNum", kBuiltinStreamArgument, 0, &Eof),
    Function(Token::LOF, ResultKind::kLong, "%", "StreamNum", kBuiltinStreamArgument, 0, &Lof),
    Function(Token::Loc, ResultKind::kLong, "%", "StreamNum", kBuiltinStreamArgument, 0, &Loc),
    Function(Token::Seek, ResultKind::kLong, "%", "StreamNum", kBuiltinStreamArgument, 0, &Seek),
    Function(Token::FileAttr, ResultKind::kLong, "%%", "StreamNum ReturnValue", kBuiltinStreamArgument, 0,
             &FileAttr),
    Function(Token::Input, ResultKind::kString, "&%", "N StreamNum", kBuiltinStreamArgument, 0, &Input),
    Instruction(Token::Reset, "", "", 0, &Reset),
};

} // namespace

BuiltinGroup FileFunctions() { return kRecords; }

} // namespace brannoc
