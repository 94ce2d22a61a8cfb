#include "code/FileStatements.h"

#include "exec/Interpreter.h"
#include "library/RecordTransfer.h"
#include "library/StreamTable.h"
#include "library/StreamText.h"
#include "values/Conversion.h"
#include "values/TextForm.h"
#include "values/ValueError.h"

#include <windows.h>

#include <climits>

namespace brannoc {

namespace {

bool NumberOf(Variant& value, long& number)
{
    if (value.Tag() != VT_I4 && !ChangeType(value, VT_I4))
        return false;
    number = value.Long();
    return true;
}

FileStream* StreamOf(Variant& value)
{
    long number = 0;
    return NumberOf(value, number) ? CurrentStream(number) : nullptr;
}

bool TextOf(Variant& value, std::wstring& text)
{
    if (value.Tag() != VT_BSTR && !ChangeType(value, VT_BSTR))
        return false;
    text.assign(value.StringView());
    return true;
}

FieldTarget FieldTargetOf(TypeCode type)
{
    if (type.IsVariant())
        return FieldTarget::kVariant;
    if (type.IsString() || type.IsFixedString())
        return FieldTarget::kString;
    return FieldTarget::kNumber;
}

} // namespace

void SeekStream(FileStream& stream, long position)
{
    if (position < 1)
        return;
    stream.SetPosition(static_cast<long long>(position - 1) * stream.RecordLength());
    if (stream.Mode() == StreamMode::kRandom)
        stream.SetCurrentRecord(position);
}

bool FileStatement::Step(ExecEntry& entry)
{
    const RunContext context = Context();
    if (bool answer; !ExpressionReady(context, m_code, entry, answer))
        return answer;
    ValueStack& values = context.interpreter->Values();
    const std::size_t first = values.Size() - static_cast<std::size_t>(m_count);
    Variant* args = m_count > 0 ? &values.At(first) : nullptr;
    const bool performed = Perform(context, args);
    if (!WriteBack(context) || !performed)
        return Fail(context, entry);
    values.CutBack(first);
    entry.state = ExecEntry::kFinished;
    return true;
}

bool FileStatement::WriteBack(const RunContext& context)
{
    if (m_writeBack.IsEmpty())
        return true;
    int pc = 0;
    return RunExpression(context, m_writeBack, pc) == EvalStatus::kDone;
}

bool OpenStatement::Perform(const RunContext&, Variant* args)
{
    std::wstring path;
    long number = 0;
    long length = 1;
    if (!TextOf(args[0], path) || !NumberOf(args[1], number) || (m_hasLength && !NumberOf(args[2], length)))
        return false;
    StreamTable* table = CurrentStreams();
    if (!table)
        return RaiseValueError(kErrorCouldNotOpenFile);
    return table->Open(number, path, m_mode, m_access, m_sharing, length);
}

bool CloseStatement::Perform(const RunContext&, Variant* args)
{
    StreamTable* table = CurrentStreams();
    if (m_count == 0) {
        if (table)
            table->CloseAll();
        return true;
    }
    for (int i = 0; i < m_count; ++i) {
        long number = 0;
        if (!NumberOf(args[i], number))
            return false;
        if (!table)
            return RaiseValueError(kErrorFileNotOpen);
        if (!table->Close(number))
            return false;
    }
    return true;
}

bool StreamPrintStatement::Perform(const RunContext&, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    if (!stream || !CheckTextWrite(*stream))
        return false;
    std::wstring text;
    for (int i = 1; i <= m_items; ++i) {
        if (m_writeForm && i > 1)
            text += L',';
        if (!(m_writeForm ? WriteWrite(text, args[i]) : WritePrint(text, args[i])))
            return false;
    }
    if (m_newLine)
        text += L"\r\n";
    return WriteStreamText(*stream, text);
}

bool StreamInputStatement::Perform(const RunContext& context, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    if (!stream)
        return false;
    for (const FileTarget& target : m_targets) {
        Variant field;
        if (!ReadInputField(*stream, FieldTargetOf(target.variable.type), field) ||
            !StoreVariableTaking(context, target.variable, field))
            return false;
    }
    return true;
}

bool LineInputStatement::Perform(const RunContext& context, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    Variant line;
    return stream && ReadStreamLine(*stream, line) && StoreVariableTaking(context, m_target.variable, line);
}

bool TransferStatement::Perform(const RunContext& context, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    if (!stream)
        return false;
    if (stream->Mode() != StreamMode::kRandom && stream->Mode() != StreamMode::kBinary)
        return RaiseValueError(kErrorWrongStreamMode);
    if (m_put ? !stream->CanWrite() : !stream->CanRead())
        return RaiseValueError(m_put ? kErrorNoWriteAccess : kErrorNoReadAccess);
    if (m_hasPosition && args[1].Tag() != VT_ERROR) {
        long position = 0;
        if (!NumberOf(args[1], position))
            return false;
        if (position < 1)
            return RaiseValueError(kErrorInvalidArgument);
        SeekStream(*stream, position);
    }
    const VariableRef& target = m_target.variable;
    VARIANT* storage = m_target.recordInPlace ? &args[m_hasPosition ? 2 : 1].Raw()
                                              : StorageOf(context, target.scope, target.index, target.module);
    if (!storage)
        return false;
    const bool random = stream->Mode() == StreamMode::kRandom;
    if (random)
        stream->SetPosition(static_cast<long long>(stream->CurrentRecord() - 1) * stream->RecordLength());
    if (!(m_put ? PutVariable(*stream, *storage, target.type) : GetVariable(*stream, *storage, target.type)))
        return false;
    if (random)
        SeekStream(*stream, stream->CurrentRecord() + 1);
    return true;
}

bool SeekStatement::Perform(const RunContext&, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    long position = 0;
    if (!stream || !NumberOf(args[1], position))
        return false;
    SeekStream(*stream, position);
    return true;
}

bool LockStatement::Perform(const RunContext&, Variant* args)
{
    FileStream* stream = StreamOf(args[0]);
    if (!stream)
        return false;
    long from = 1;
    long to = LONG_MAX;
    if (!stream->IsSequential()) {
        if (m_count >= 2 && !NumberOf(args[1], from))
            return false;
        to = from;
        if (m_count >= 3 && !NumberOf(args[2], to))
            return false;
        if (from < 1 || to < from)
            return RaiseValueError(kErrorInvalidArgument);
    }
    const long long length = stream->RecordLength();
    const long long offset = (static_cast<long long>(from) - 1) * length;
    const long long count = (static_cast<long long>(to) - from + 1) * length;
    return stream->LockBytes(offset, count, !m_unlock) || RaiseValueError(kErrorFileOperation);
}

bool NameStatement::Perform(const RunContext&, Variant* args)
{
    std::wstring from;
    std::wstring to;
    if (!TextOf(args[0], from) || !TextOf(args[1], to))
        return false;
    return MoveFileW(from.c_str(), to.c_str()) || RaiseValueError(kErrorFileNotRenamed);
}

} // namespace brannoc
